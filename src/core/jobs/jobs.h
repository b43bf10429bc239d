#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <stop_token>
#include <type_traits>
#include <utility>

#include "core/jobs/queues.h"

namespace tallowcrest {

/// Counts the changes to the disk that must not be left half done when the program ends.
/// Any thread.
class DiskChanges {
public:
    /// One change under way; it is over when this is destroyed.
    class Change {
    public:
        Change(Change&& other) noexcept : owner_(std::exchange(other.owner_, nullptr)) {}
        Change& operator=(Change&&) = delete;
        ~Change();

    private:
        friend class DiskChanges;
        explicit Change(DiskChanges& owner) : owner_(&owner) {}
        DiskChanges* owner_;
    };

    /// Absent once `finish` was called: the change must then not begin.
    [[nodiscard]] std::optional<Change> begin();

    /// Lets no further change begin and blocks until those under way are over. False when one is
    /// not after `patience`, for example because a disk does not answer.
    bool finish(std::chrono::milliseconds patience);

private:
    std::mutex lock_;
    std::condition_variable changeEnded_;
    std::size_t underWay_ = 0;
    bool isFinishing_ = false;
};

/// Whether a running job should stop, and whether it may still change the disk. Any thread.
class Stop {
public:
    Stop(std::stop_token token, DiskChanges& changes)
        : token_(std::move(token)), changes_(&changes) {}

    /// Whether nobody waits for the result any more: its component is gone, or the program ends.
    bool isRequested() const { return token_.stop_requested(); }
    const std::stop_token& stopToken() const { return token_; }

    /// Hold the result while files are changed in several steps that must all be done or none. The
    /// end of the program waits for it, but not without limit, so that an end between two steps
    /// must lose nothing. Absent when the program is ending: the change must then not begin.
    [[nodiscard]] std::optional<DiskChanges::Change> beginChange() const {
        return changes_->begin();
    }

private:
    std::stop_token token_;
    DiskChanges* changes_;
};

/// The program's background work as a whole. Main thread. The queues must outlive it, and it must
/// outlive every job: its owner joins the work queue's threads before it destroys this object.
class Jobs {
public:
    /// A clock that is never set back. Any thread.
    using SteadyNow = std::function<std::chrono::steady_clock::time_point()>;

    /// The least time between two values of one job's progress, as fast as a person can follow.
    static constexpr std::chrono::milliseconds progressDistance{100};

    Jobs(MainQueue& mainQueue, WorkQueue& workQueue, SteadyNow now = std::chrono::steady_clock::now)
        : mainQueue_(mainQueue), workQueue_(workQueue), now_(std::move(now)) {}
    Jobs(const Jobs&) = delete;
    Jobs& operator=(const Jobs&) = delete;

    MainQueue& mainQueue() { return mainQueue_; }

    /// Asks every job to stop, and blocks until no change to the disk is half done. False when one
    /// still is after `patience`.
    bool stopAll(std::chrono::milliseconds patience = std::chrono::minutes(1));

private:
    friend class JobScope;

    MainQueue& mainQueue_;
    WorkQueue& workQueue_;
    const SteadyNow now_;
    DiskChanges changes_;
    std::stop_source stopAll_;
};

/// A component's background work: a member of the component, declared last. When it is destroyed,
/// the jobs that it began are asked to stop and nothing of them reaches the component any more.
/// Main thread, unless stated otherwise.
class JobScope {
public:
    explicit JobScope(Jobs& jobs);
    ~JobScope();
    JobScope(const JobScope&) = delete;
    JobScope& operator=(const JobScope&) = delete;

    /// Runs `work(const Stop&)` in the background, then `then(result)` on the main thread, or
    /// `then()` where `work` returns nothing. `work` takes its inputs by value, must not throw and
    /// must not refer to the component. `then` may: it is also destroyed on the main thread, after
    /// its call or, if the job was dropped, with this object.
    template <class Work, class Then>
    void run(Lane lane, Work work, Then then) {
        post(lane, [work = std::move(work), then = keep(std::move(then)), stop = stop(),
                    kept = std::weak_ptr(kept_), &mainQueue = jobs_.mainQueue_]() mutable {
            if constexpr (std::is_void_v<std::invoke_result_t<Work&, const Stop&>>) {
                work(std::as_const(stop));
                mainQueue.post([kept, then] {
                    if (const auto function = take(kept, then)) {
                        (*function)();
                    }
                });
            } else {
                mainQueue.post([kept, then, result = work(std::as_const(stop))]() mutable {
                    if (const auto function = take(kept, then)) {
                        (*function)(std::move(result));
                    }
                });
            }
        });
    }

    /// The same for `work(const Stop&, report)`, which may call `report(progress)` as often as it
    /// likes; `onProgress(progress)` is called on the main thread with the latest value, at most
    /// once per turn of it and per `Jobs::progressDistance`, and never after `then`. No value is
    /// kept back for longer than that. It is destroyed with `then`.
    template <class Progress, class Work, class OnProgress, class Then>
    void runWithProgress(Lane lane, Work work, OnProgress onProgress, Then then) {
        auto observer = std::make_shared<OnProgress>(std::move(onProgress));
        auto progress = std::make_shared<LatestProgress<Progress, OnProgress>>(jobs_, observer);
        run(
            lane,
            [work = std::move(work), progress = std::move(progress)](const Stop& stop) mutable {
                const auto report = [&progress](Progress value) {
                    progress->report(std::move(value));
                };
                if constexpr (std::is_void_v<decltype(work(stop, report))>) {
                    work(stop, report);
                    progress->end();
                } else {
                    auto result = work(stop, report);
                    progress->end();
                    return result;
                }
            },
            [observer = std::move(observer), then = std::move(then)](auto&&... result) mutable {
                then(std::forward<decltype(result)>(result)...);
            });
    }

    /// Runs `work` on a later turn of the main thread, unless this object is gone by then.
    /// Any thread, as long as this object is not being destroyed at the same time.
    void postToMain(Task work);

private:
    /// The functions of the component that jobs will call. The scope owns them; a job has weak
    /// pointers and locks them on the main thread alone, so no other thread destroys a function.
    using Kept = std::set<std::shared_ptr<void>>;

    template <class Function>
    std::weak_ptr<Function> keep(Function function) {
        auto added = std::make_shared<Function>(std::move(function));
        kept_->insert(added);
        return added;
    }

    /// Takes a function out of `kept`. Null when the scope is gone. Main thread.
    template <class Function>
    static std::shared_ptr<Function> take(const std::weak_ptr<Kept>& kept,
                                          const std::weak_ptr<Function>& function) {
        const auto functions = kept.lock();
        if (functions == nullptr) {
            return nullptr;
        }
        auto taken = function.lock();
        functions->erase(taken);
        return taken;
    }

    template <class Progress, class OnProgress>
    class LatestProgress
        : public std::enable_shared_from_this<LatestProgress<Progress, OnProgress>> {
    public:
        LatestProgress(Jobs& jobs, std::weak_ptr<OnProgress> function)
            : mainQueue_(jobs.mainQueue_), now_(jobs.now_), onProgress_(std::move(function)) {}

        void report(Progress value) {
            {
                const std::lock_guard guard(lock_);
                latest_ = std::move(value);
                if (std::exchange(isQueued_, true)) {
                    return;
                }
            }
            mainQueue_.post([self = this->shared_from_this()] { self->tellWhenDue(); });
        }

        /// No value follows. Tells the last one, before the result of the work.
        void end() {
            mainQueue_.post([self = this->shared_from_this()] { self->tellNow(); });
        }

    private:
        // Main thread.

        void tellWhenDue() {
            const auto now = now_();
            if (now >= next_) {
                tell(now);
                return;
            }
            const auto rest = std::chrono::ceil<std::chrono::milliseconds>(next_ - now);
            wait_ = mainQueue_.scheduleRepeating(rest, [weak = this->weak_from_this()] {
                if (const auto self = weak.lock()) {
                    self->tellNow();
                }
            });
        }

        void tellNow() {
            wait_.reset();
            tell(now_());
        }

        void tell(std::chrono::steady_clock::time_point now) {
            std::unique_lock guard(lock_);
            isQueued_ = false;
            std::optional<Progress> taken = std::exchange(latest_, std::nullopt);
            guard.unlock();
            if (!taken) {
                return;
            }
            next_ = now + Jobs::progressDistance;
            if (const auto function = onProgress_.lock()) {
                (*function)(*std::move(taken));
            }
        }

        MainQueue& mainQueue_;
        const Jobs::SteadyNow now_;
        const std::weak_ptr<OnProgress> onProgress_;  ///< expires with the kept `then`
        std::mutex lock_;
        std::optional<Progress> latest_;  ///< what has not been told yet
        bool isQueued_ = false;
        // Main thread.
        std::chrono::steady_clock::time_point next_ = {};
        std::unique_ptr<RepeatingTimer> wait_;  ///< until `next_`; null when no value waits
    };

    Stop stop() { return {stop_.get_token(), jobs_.changes_}; }
    /// Drops `job` if it was stopped before it began.
    void post(Lane lane, Task job);

    Jobs& jobs_;
    std::shared_ptr<Kept> kept_;  ///< expires with the object
    std::stop_source stop_;
    std::stop_callback<Task> stopWithAll_;
};

}  // namespace tallowcrest

#pragma once

#include <condition_variable>
#include <cstddef>
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

    /// Lets no further change begin and blocks until those under way are over.
    void finish();

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
    /// program does not end meanwhile. Absent when the program is ending: the change must then not
    /// begin.
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
    Jobs(MainQueue& mainQueue, WorkQueue& workQueue)
        : mainQueue_(mainQueue), workQueue_(workQueue) {}
    Jobs(const Jobs&) = delete;
    Jobs& operator=(const Jobs&) = delete;

    MainQueue& mainQueue() { return mainQueue_; }

    /// Asks every job to stop, and blocks until no change to the disk is half done.
    void stopAll();

private:
    friend class JobScope;

    MainQueue& mainQueue_;
    WorkQueue& workQueue_;
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
    /// once per turn of it and never after `then`. It is destroyed with `then`.
    template <class Progress, class Work, class OnProgress, class Then>
    void runWithProgress(Lane lane, Work work, OnProgress onProgress, Then then) {
        auto observer = std::make_shared<OnProgress>(std::move(onProgress));
        auto progress =
            std::make_shared<LatestProgress<Progress, OnProgress>>(jobs_.mainQueue_, observer);
        run(
            lane,
            [work = std::move(work), progress = std::move(progress)](const Stop& stop) mutable {
                return work(stop, [&progress](Progress value) {
                    progress->report(progress, std::move(value));
                });
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
    struct LatestProgress {
        LatestProgress(MainQueue& queue, std::weak_ptr<OnProgress> function)
            : mainQueue(queue), onProgress(std::move(function)) {}

        void report(const std::shared_ptr<LatestProgress>& self, Progress value) {
            {
                const std::lock_guard guard(lock);
                const bool isQueued = latest.has_value();
                latest = std::move(value);
                if (isQueued) {
                    return;
                }
            }
            mainQueue.post([self] {
                std::unique_lock guard(self->lock);
                const std::optional<Progress> taken = std::exchange(self->latest, std::nullopt);
                guard.unlock();
                if (const auto function = self->onProgress.lock()) {
                    (*function)(*taken);
                }
            });
        }

        MainQueue& mainQueue;
        std::weak_ptr<OnProgress> onProgress;  ///< expires with the kept `then`
        std::mutex lock;
        std::optional<Progress> latest;
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

#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <type_traits>
#include <utility>

#include "core/jobs/disk_changes.h"
#include "core/jobs/queues.h"

namespace tallowcrest {

/// What a job under way is told. Any thread.
class Stop {
public:
    Stop(std::stop_token token, DiskChanges& changes)
        : token_(std::move(token)), changes_(&changes) {}

    /// Whether nobody waits for the result any more: its component is gone, or the program ends.
    bool isRequested() const { return token_.stop_requested(); }
    const std::stop_token& token() const { return token_; }

    /// To be held while files are changed in steps of which none may be the last. The program's end
    /// waits for it. Absent when the program is ending: the change must then not begin.
    [[nodiscard]] std::optional<DiskChanges::Change> beginChange() const {
        return changes_->begin();
    }

private:
    std::stop_token token_;
    DiskChanges* changes_;
};

/// The program's background work as a whole. Main thread. The queues must outlive it, and it must
/// outlive every job, so whoever owns it joins the work queue first.
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
/// Main thread, unless told otherwise.
class JobScope {
public:
    explicit JobScope(Jobs& jobs);
    ~JobScope();
    JobScope(const JobScope&) = delete;
    JobScope& operator=(const JobScope&) = delete;

    /// Runs `work(const Stop&)` in the background, then `then(result)` on the main thread, or
    /// `then()` where `work` returns nothing. `work` takes its inputs by value, must not throw and
    /// must not refer to the component.
    template <class Work, class Then>
    void run(Lane lane, Work work, Then then) {
        post(lane, [work = std::move(work), then = std::move(then), stop = stop(),
                    alive = std::weak_ptr(alive_), &mainQueue = jobs_.mainQueue_]() mutable {
            finish(
                mainQueue, std::move(alive), [&] { return work(std::as_const(stop)); },
                std::move(then));
        });
    }

    /// The same for `work(const Stop&, report)`, which may call `report(progress)` as often as it
    /// likes; `onProgress(progress)` is called on the main thread with the latest value, at most
    /// once per turn of it and never after `then`.
    template <class Progress, class Work, class OnProgress, class Then>
    void runWithProgress(Lane lane, Work work, OnProgress onProgress, Then then) {
        auto progress = std::make_shared<LatestProgress<Progress, OnProgress>>(
            jobs_.mainQueue_, alive_, std::move(onProgress));
        post(lane, [work = std::move(work), then = std::move(then), stop = stop(),
                    alive = std::weak_ptr(alive_), &mainQueue = jobs_.mainQueue_,
                    progress = std::move(progress)]() mutable {
            const auto report = [&](Progress value) {
                progress->report(progress, std::move(value));
            };
            finish(
                mainQueue, std::move(alive), [&] { return work(std::as_const(stop), report); },
                std::move(then));
        });
    }

    /// Runs `work` on a later turn of the main thread, unless this object is gone by then.
    /// Any thread, as long as this object is not being destroyed at the same time.
    void postToMain(Task work);

private:
    struct Alive {};

    template <class Progress, class OnProgress>
    struct LatestProgress {
        LatestProgress(MainQueue& queue, std::weak_ptr<Alive> owner, OnProgress function)
            : mainQueue(queue), alive(std::move(owner)), onProgress(std::move(function)) {}

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
                if (!self->alive.expired()) {
                    self->onProgress(*taken);
                }
            });
        }

        MainQueue& mainQueue;
        std::weak_ptr<Alive> alive;
        OnProgress onProgress;
        std::mutex lock;
        std::optional<Progress> latest;
    };

    template <class Work, class Then>
    static void finish(MainQueue& mainQueue, std::weak_ptr<Alive> alive, Work work, Then then) {
        if constexpr (std::is_void_v<std::invoke_result_t<Work&>>) {
            work();
            mainQueue.post([alive = std::move(alive), then = std::move(then)]() mutable {
                if (!alive.expired()) {
                    then();
                }
            });
        } else {
            mainQueue.post(
                [alive = std::move(alive), then = std::move(then), result = work()]() mutable {
                    if (!alive.expired()) {
                        then(std::move(result));
                    }
                });
        }
    }

    Stop stop() { return {stop_.get_token(), jobs_.changes_}; }
    /// Drops `job` if it was stopped before it began.
    void post(Lane lane, Task job);

    Jobs& jobs_;
    std::shared_ptr<Alive> alive_;
    std::stop_source stop_;
    std::stop_callback<Task> stopWithAll_;
};

}  // namespace tallowcrest

#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "core/jobs/queues.h"

namespace tallowcrest {

/// A main queue that runs only when a test calls it.
class ManualMainQueue final : public MainQueue {
public:
    void post(Task work) override { pending_.push_back(std::move(work)); }

    std::unique_ptr<RepeatingTimer> scheduleRepeating(std::chrono::milliseconds interval,
                                                      std::function<void()> work) override {
        auto entry = std::make_shared<Entry>(Entry{interval, std::move(work)});
        timers_.push_back(entry);
        return std::make_unique<Handle>(std::move(entry));
    }

    /// Runs what was queued before the call; what that work posts waits for the next turn.
    void turn() {
        std::deque<Task> batch = std::exchange(pending_, {});
        for (Task& work : batch) {
            work();
        }
    }

    /// Turns until nothing is queued.
    void drain() {
        while (!pending_.empty()) {
            turn();
        }
    }

    std::size_t pendingCount() const { return pending_.size(); }

    /// The intervals of the timers that are alive, in the order of scheduling.
    std::vector<std::chrono::milliseconds> timerIntervals() const {
        std::vector<std::chrono::milliseconds> result;
        for (const auto& timer : timers_) {
            if (const auto entry = timer.lock()) {
                result.push_back(entry->interval);
            }
        }
        return result;
    }

    /// Lets every live timer fire once.
    void fireTimers() {
        const auto timers = timers_;
        for (const auto& timer : timers) {
            if (const auto entry = timer.lock()) {
                entry->work();
            }
        }
    }

private:
    struct Entry {
        std::chrono::milliseconds interval;
        std::function<void()> work;
    };
    struct Handle final : RepeatingTimer {
        explicit Handle(std::shared_ptr<Entry> kept) : entry(std::move(kept)) {}
        std::shared_ptr<Entry> entry;
    };

    std::deque<Task> pending_;
    std::vector<std::weak_ptr<Entry>> timers_;
};

/// A work queue that runs a job only when a test calls it, in any order.
class ManualWorkQueue final : public WorkQueue {
public:
    void post(Lane lane, Task work) override { pending_.push_back({lane, std::move(work)}); }

    std::size_t pendingCount() const { return pending_.size(); }
    Lane laneOf(std::size_t index) const { return pending_.at(index).first; }

    /// Runs all jobs, those that a job adds included.
    void runAll() {
        while (!pending_.empty()) {
            run();
        }
    }

    /// Runs the waiting job at `index`.
    void run(std::size_t index = 0) {
        Task work = std::move(pending_.at(index).second);
        pending_.erase(pending_.begin() + static_cast<std::ptrdiff_t>(index));
        work();
    }

private:
    std::deque<std::pair<Lane, Task>> pending_;
};

}  // namespace tallowcrest

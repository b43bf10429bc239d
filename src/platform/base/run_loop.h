#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "core/jobs/queues.h"

namespace tallowcrest {

/// The main thread of a run without a window: a plain loop over posted work and timers.
class RunLoop final : public MainQueue {
public:
    void post(Task work) override;
    [[nodiscard]] std::unique_ptr<RepeatingTimer> scheduleRepeating(
        std::chrono::milliseconds interval, std::function<void()> work) override;

    /// Serves the queue on the calling thread until `stop`, and returns its status.
    int run();

    /// Ends `run` after the work that is being done. Any thread.
    void stop(int status);

private:
    using Instant = std::chrono::steady_clock::time_point;

    struct Timer {
        std::chrono::milliseconds interval;
        std::function<void()> work;
        Instant due;
    };
    class TimerHandle;

    /// The timer that is due first; absent when there is none.
    std::shared_ptr<Timer> nextTimer() const;

    std::mutex lock_;
    std::condition_variable workArrived_;
    std::deque<Task> pending_;
    std::vector<std::weak_ptr<Timer>> timers_;  ///< main thread
    bool stopping_ = false;
    int status_ = 0;
};

}  // namespace tallowcrest

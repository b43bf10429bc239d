#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "core/queues.h"

namespace tallowcrest {

/// Background threads of utility priority. A thread is started only when every other one is busy,
/// so a steady tick is served by a single thread and a stalled tool does not hold up the next one.
class ThreadWorkQueue final : public WorkQueue {
public:
    /// Runs first on each new thread; lowers its priority.
    using ThreadSetup = void (*)();

    static constexpr std::size_t maximumThreads = 8;

    explicit ThreadWorkQueue(ThreadSetup setup);

    /// Drops what has not begun and joins what has; without `finishWithin` that can take as long
    /// as the slowest job.
    ~ThreadWorkQueue() override;

    /// Where the system gives no thread at all, `work` runs before this returns.
    void post(std::function<void()> work) override;

    /// Drops what has not begun, takes nothing new, and waits for the jobs under way. False when
    /// one is still running after `timeout`: destroying the queue would then wait for it.
    bool finishWithin(std::chrono::milliseconds timeout);

private:
    void stopTaking();
    void run();
    bool startThread();

    ThreadSetup setup_;
    std::mutex lock_;
    std::condition_variable workArrived_;
    std::condition_variable workEnded_;
    std::deque<std::function<void()>> pending_;
    std::vector<std::jthread> threads_;
    std::size_t idleThreads_ = 0;
    bool finishing_ = false;
};

}  // namespace tallowcrest

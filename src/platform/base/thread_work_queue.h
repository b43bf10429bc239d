#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "core/jobs/queues.h"

namespace tallowcrest {

/// Background threads of utility priority. A thread is started only when every other one is busy,
/// so a steady tick is served by a single thread and a stalled tool does not hold up the next one.
class ThreadPool {
public:
    /// Runs first on each new thread; lowers its priority.
    using ThreadSetup = void (*)();

    static constexpr std::size_t maximumThreads = 8;

    explicit ThreadPool(ThreadSetup setup);
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    /// Drops what has not begun and joins what has; without `finishWithin` that can take as long
    /// as the slowest job.
    ~ThreadPool();

    /// Queues `work` and returns at once. Where the system gives no thread at all, `work` runs
    /// before this returns. Any thread.
    void post(Task work);

    /// Drops what has not begun and takes nothing new.
    void stopTaking();

    /// Does the same, and waits for the jobs under way. False when one is still running after
    /// `timeout`: destroying the pool would then wait for it.
    bool finishWithin(std::chrono::milliseconds timeout);

private:
    void run();
    bool startThread();

    ThreadSetup setup_;
    std::mutex lock_;
    std::condition_variable workArrived_;
    std::condition_variable workEnded_;
    std::deque<Task> pending_;
    std::vector<std::jthread> threads_;
    std::size_t idleThreads_ = 0;
    bool finishing_ = false;
};

/// One pool of threads per lane.
class ThreadWorkQueue final : public WorkQueue {
public:
    explicit ThreadWorkQueue(ThreadPool::ThreadSetup setup);

    void post(Lane lane, Task work) override { pool(lane).post(std::move(work)); }

    /// `ThreadPool::finishWithin` for all lanes together.
    bool finishWithin(std::chrono::milliseconds timeout);

private:
    ThreadPool& pool(Lane lane) { return *pools_.at(static_cast<std::size_t>(lane)); }

    std::array<std::unique_ptr<ThreadPool>, laneCount> pools_;
};

}  // namespace tallowcrest

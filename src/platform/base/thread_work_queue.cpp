#include "platform/base/thread_work_queue.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace tallowcrest {

ThreadPool::ThreadPool(ThreadSetup setup) : setup_(setup) {}

ThreadPool::~ThreadPool() {
    stopTaking();
    threads_.clear();
}

void ThreadPool::post(Task work) {
    std::unique_lock guard(lock_);
    if (finishing_) {
        return;
    }
    if (pending_.size() >= idleThreads_ && threads_.size() < maximumThreads && !startThread() &&
        threads_.empty()) {
        guard.unlock();
        work();
        return;
    }
    pending_.push_back(std::move(work));
    workArrived_.notify_one();
}

/// False when the system gives no further thread.
bool ThreadPool::startThread() {
    try {
        threads_.emplace_back([this] { run(); });
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

bool ThreadPool::finishWithin(std::chrono::milliseconds timeout) {
    stopTaking();
    std::unique_lock guard(lock_);
    return workEnded_.wait_for(guard, timeout, [this] { return idleThreads_ == threads_.size(); });
}

void ThreadPool::stopTaking() {
    // What a job holds may do anything as it is destroyed, so that happens outside the lock.
    std::deque<Task> dropped;
    {
        const std::lock_guard guard(lock_);
        finishing_ = true;
        dropped.swap(pending_);
    }
    workArrived_.notify_all();
}

void ThreadPool::run() {
    setup_();
    std::unique_lock guard(lock_);
    for (;;) {
        ++idleThreads_;
        workEnded_.notify_all();
        workArrived_.wait(guard, [this] { return finishing_ || !pending_.empty(); });
        if (pending_.empty()) {
            return;
        }
        --idleThreads_;
        Task work = std::move(pending_.front());
        pending_.pop_front();
        guard.unlock();
        work();
        work = {};
        guard.lock();
    }
}

ThreadWorkQueue::ThreadWorkQueue(ThreadPool::ThreadSetup setup) {
    for (std::unique_ptr<ThreadPool>& each : pools_) {
        each = std::make_unique<ThreadPool>(setup);
    }
}

bool ThreadWorkQueue::finishWithin(std::chrono::milliseconds timeout) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + timeout;
    for (const std::unique_ptr<ThreadPool>& each : pools_) {
        each->stopTaking();
    }
    bool areFinished = true;
    for (const std::unique_ptr<ThreadPool>& each : pools_) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        areFinished =
            each->finishWithin(std::max(left, std::chrono::milliseconds(0))) && areFinished;
    }
    return areFinished;
}

}  // namespace tallowcrest

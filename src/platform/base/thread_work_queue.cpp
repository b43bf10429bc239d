#include "platform/base/thread_work_queue.h"

#include <system_error>
#include <utility>

namespace tallowcrest {

ThreadWorkQueue::ThreadWorkQueue(ThreadSetup setup) : setup_(setup) {}

ThreadWorkQueue::~ThreadWorkQueue() {
    stopTaking();
    threads_.clear();
}

void ThreadWorkQueue::post(std::function<void()> work) {
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
bool ThreadWorkQueue::startThread() {
    try {
        threads_.emplace_back([this] { run(); });
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

bool ThreadWorkQueue::finishWithin(std::chrono::milliseconds timeout) {
    stopTaking();
    std::unique_lock guard(lock_);
    return workEnded_.wait_for(guard, timeout, [this] { return idleThreads_ == threads_.size(); });
}

void ThreadWorkQueue::stopTaking() {
    // What a job holds may do anything as it is destroyed, so that happens outside the lock.
    std::deque<std::function<void()>> dropped;
    {
        const std::lock_guard guard(lock_);
        finishing_ = true;
        dropped.swap(pending_);
    }
    workArrived_.notify_all();
}

void ThreadWorkQueue::run() {
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
        std::function<void()> work = std::move(pending_.front());
        pending_.pop_front();
        guard.unlock();
        work();
        work = nullptr;
        guard.lock();
    }
}

}  // namespace tallowcrest

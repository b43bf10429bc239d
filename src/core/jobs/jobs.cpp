#include "core/jobs/jobs.h"

namespace tallowcrest {

DiskChanges::Change::~Change() {
    if (owner_ == nullptr) {
        return;
    }
    const std::lock_guard guard(owner_->lock_);
    --owner_->underWay_;
    owner_->changeEnded_.notify_all();
}

std::optional<DiskChanges::Change> DiskChanges::begin() {
    const std::lock_guard guard(lock_);
    if (isFinishing_) {
        return std::nullopt;
    }
    ++underWay_;
    return Change(*this);
}

bool DiskChanges::finish(std::chrono::milliseconds patience) {
    std::unique_lock guard(lock_);
    isFinishing_ = true;
    return changeEnded_.wait_for(guard, patience, [this] { return underWay_ == 0; });
}

bool Jobs::stopAll(std::chrono::milliseconds patience) {
    stopAll_.request_stop();
    return changes_.finish(patience);
}

JobScope::JobScope(Jobs& jobs)
    : jobs_(jobs),
      kept_(std::make_shared<Kept>()),
      stopWithAll_(jobs.stopAll_.get_token(), [stop = stop_]() mutable { stop.request_stop(); }) {}

JobScope::~JobScope() {
    stop_.request_stop();
}

void JobScope::post(Lane lane, Task job) {
    jobs_.workQueue_.post(lane, [job = std::move(job), token = stop_.get_token()]() mutable {
        if (!token.stop_requested()) {
            job();
        }
    });
}

void JobScope::postToMain(Task work) {
    jobs_.mainQueue_.post([kept = std::weak_ptr(kept_), work = std::move(work)]() mutable {
        if (!kept.expired()) {
            work();
        }
    });
}

}  // namespace tallowcrest

#include "platform/base/run_loop.h"

#include <optional>
#include <utility>

namespace tallowcrest {

class RunLoop::TimerHandle final : public RepeatingTimer {
public:
    explicit TimerHandle(std::shared_ptr<Timer> timer) : timer_(std::move(timer)) {}

private:
    std::shared_ptr<Timer> timer_;
};

void RunLoop::post(Task work) {
    {
        const std::lock_guard guard(lock_);
        pending_.push_back(std::move(work));
    }
    workArrived_.notify_one();
}

std::unique_ptr<RepeatingTimer> RunLoop::scheduleRepeating(std::chrono::milliseconds interval,
                                                           std::function<void()> work) {
    auto timer = std::make_shared<Timer>(
        Timer{interval, std::move(work), std::chrono::steady_clock::now() + interval});
    timers_.push_back(timer);
    return std::make_unique<TimerHandle>(std::move(timer));
}

void RunLoop::stop(int status) {
    {
        const std::lock_guard guard(lock_);
        stopping_ = true;
        status_ = status;
    }
    workArrived_.notify_one();
}

std::shared_ptr<RunLoop::Timer> RunLoop::nextTimer() const {
    std::shared_ptr<Timer> next;
    for (const auto& entry : timers_) {
        if (auto timer = entry.lock(); timer && (!next || timer->due < next->due)) {
            next = std::move(timer);
        }
    }
    return next;
}

int RunLoop::run() {
    for (;;) {
        std::erase_if(timers_, [](const auto& timer) { return timer.expired(); });
        const Instant now = std::chrono::steady_clock::now();
        // The one that has waited longest: a timer whose work takes longer than its interval must
        // not keep the others from their turn.
        if (const auto timer = nextTimer(); timer && timer->due <= now) {
            // Ticks that were missed while the thread was busy are skipped, not made up for.
            const auto missed = (now - timer->due) / timer->interval;
            timer->due += timer->interval * (missed + 1);
            timer->work();
        }

        std::optional<Instant> nextDue;
        if (const auto timer = nextTimer()) {
            nextDue = timer->due;
        }
        std::unique_lock guard(lock_);
        const auto hasWork = [this] { return stopping_ || !pending_.empty(); };
        if (nextDue) {
            workArrived_.wait_until(guard, *nextDue, hasWork);
        } else {
            workArrived_.wait(guard, hasWork);
        }
        if (stopping_) {
            stopping_ = false;
            return status_;
        }
        if (pending_.empty()) {
            continue;
        }
        Task work = std::move(pending_.front());
        pending_.pop_front();
        guard.unlock();
        work();
    }
}

}  // namespace tallowcrest

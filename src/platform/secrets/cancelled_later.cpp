#include "platform/secrets/cancelled_later.h"

#include <system_error>

namespace tallowcrest {

CancelledLater::CancelledLater(std::chrono::milliseconds limit, const std::stop_token& stop)
    : cancellable_(g_cancellable_new()),
      deadline_(std::chrono::steady_clock::now() + limit),
      onStop_(stop, [this] { g_cancellable_cancel(cancellable_.get()); }) {
    try {
        clock_ = std::jthread([this](const std::stop_token& over) { wait(over); });
    } catch (const std::system_error&) {
        g_cancellable_cancel(cancellable_.get());
    }
}

void CancelledLater::limitAgain(std::chrono::milliseconds limit) {
    const std::lock_guard guard(lock_);
    deadline_ = std::chrono::steady_clock::now() + limit;
    changed_.notify_all();
}

void CancelledLater::wait(const std::stop_token& over) {
    std::unique_lock guard(lock_);
    while (!over.stop_requested()) {
        const auto deadline = deadline_;
        const auto isChanged = [&] { return deadline_ != deadline; };
        if (!changed_.wait_until(guard, over, deadline, isChanged) && !over.stop_requested()) {
            guard.unlock();
            g_cancellable_cancel(cancellable_.get());
            return;
        }
    }
}

}  // namespace tallowcrest

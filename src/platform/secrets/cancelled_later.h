#pragma once

#include <gio/gio.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>

namespace tallowcrest {

/// A cancellable that is cancelled when a time limit is over or a stop is requested. Calls that
/// have one and block then end with an error. One thread, unless stated otherwise.
class CancelledLater {
public:
    /// Begins with a time limit.
    CancelledLater(std::chrono::milliseconds limit, const std::stop_token& stop);
    CancelledLater(const CancelledLater&) = delete;
    CancelledLater& operator=(const CancelledLater&) = delete;
    ~CancelledLater();

    /// Any thread.
    GCancellable* get() const { return cancellable_; }

    /// Begins the time limit again, or ends it: then only a stop is waited for.
    void limitAgain(std::chrono::milliseconds limit);
    void removeLimit();

private:
    using Time = std::chrono::steady_clock::time_point;

    void setDeadline(std::optional<Time> deadline);
    void wait(const std::stop_token& over);

    GCancellable* cancellable_;
    std::mutex lock_;
    std::condition_variable_any changed_;
    std::optional<Time> deadline_;  ///< absent without a limit
    std::jthread clock_;
    std::stop_callback<std::function<void()>> onStop_;
};

}  // namespace tallowcrest

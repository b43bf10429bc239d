#pragma once

#include <gio/gio.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
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

    /// Begins a new time limit in place of the earlier one.
    void limitAgain(std::chrono::milliseconds limit);

private:
    void wait(const std::stop_token& over);

    GCancellable* cancellable_;
    std::mutex lock_;
    std::condition_variable_any changed_;
    std::chrono::steady_clock::time_point deadline_;
    std::jthread clock_;
    std::stop_callback<std::function<void()>> onStop_;
};

}  // namespace tallowcrest

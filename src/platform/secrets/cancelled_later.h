#pragma once

#include <gio/gio.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>

#include "platform/secrets/g_handles.h"

namespace tallowcrest {

/// A cancellable that is cancelled when a time limit is over or a stop is requested. Calls that
/// have one and block then end with an error. One thread, unless stated otherwise.
class CancelledLater {
public:
    /// Begins with a time limit. Where the system gives no thread to watch it, the cancellable is
    /// cancelled at once: nothing would end a call that hangs.
    CancelledLater(std::chrono::milliseconds limit, const std::stop_token& stop);
    CancelledLater(const CancelledLater&) = delete;
    CancelledLater& operator=(const CancelledLater&) = delete;

    /// Any thread.
    GCancellable* get() const { return cancellable_.get(); }

    /// Begins a new time limit in place of the earlier one.
    void limitAgain(std::chrono::milliseconds limit);

private:
    void wait(const std::stop_token& over);

    GObjectHandle<GCancellable> cancellable_;  ///< the first member: the others use it
    std::mutex lock_;
    std::condition_variable_any changed_;
    std::chrono::steady_clock::time_point deadline_;
    std::jthread clock_;
    std::stop_callback<std::function<void()>> onStop_;
};

}  // namespace tallowcrest

#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>

#include "core/jobs/task.h"

namespace tallowcrest {

/// Keeps a repeating timer alive; destroying it stops the timer. Main thread.
class RepeatingTimer {
public:
    virtual ~RepeatingTimer() = default;
};

/// The main thread, which owns every field of the monitor.
///
/// Work that is still queued when the queue is destroyed is dropped without being run.
class MainQueue {
public:
    virtual ~MainQueue() = default;

    /// Runs `work` on a later turn of the main thread, in the order of posting. Any thread.
    virtual void post(Task work) = 0;

    /// Runs `work` on the main thread once per `interval`, first after one interval, which is above
    /// 0. Ticks that were missed while the thread was busy are not made up for. `work` may destroy
    /// its own timer, and is kept until it returns. Main thread.
    [[nodiscard]] virtual std::unique_ptr<RepeatingTimer> scheduleRepeating(
        std::chrono::milliseconds interval, std::function<void()> work) = 0;
};

/// Who background work is done for. Each lane has threads of its own, so work that blocks in one
/// does not delay another.
enum class Lane {
    sampling,
    details,
    actions,
    reports,
    remoteActions,
    settings,
    tailnet,
    remoteScan,
    secrets,  ///< blocks while the owner is asked for the password of the secret store
    advisor,
    diskCleanup,
    storageScan,
    personalFiles,
    installation,
    updates,
    count,  ///< not a lane; stays the last
};
inline constexpr auto laneCount = static_cast<std::size_t>(Lane::count);

/// Background work of utility priority. Jobs may run at the same time as one another and end in
/// any order. Components do not post here themselves; see `JobScope`.
class WorkQueue {
public:
    virtual ~WorkQueue() = default;

    /// Queues `work` and does not wait for it. Only where the system gives no thread to run it on
    /// does it run before this returns. Any thread. `work` must not throw.
    virtual void post(Lane lane, Task work) = 0;
};

}  // namespace tallowcrest

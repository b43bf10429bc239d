#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "core/queues.h"
#include "core/settings_store.h"
#include "monitor/system_monitor.h"
#include "platform/posix/system_clock.h"
#include "platform/posix/thread_work_queue.h"
#include "platform/posix/tool_launcher_posix.h"

namespace tallowcrest {

/// The monitor together with the parts of this machine that it runs on. Main thread.
class Composition {
public:
    Composition(MainQueue& mainQueue, std::vector<std::string> processArguments,
                MonitorExtensions extensions);
    Composition(const Composition&) = delete;
    Composition& operator=(const Composition&) = delete;

    SystemMonitor& monitor() { return *monitor_; }

    /// Ends the monitor and waits for what is under way. False when a tool hangs beyond its
    /// deadline: the process should then end without destroying this object, which would wait on.
    [[nodiscard]] bool shutDown();

private:
    SystemClock clock_;
    MemorySettingsStore settingsStore_;
    PosixToolLauncher toolLauncher_;
    ThreadWorkQueue workQueue_;
    std::optional<SystemMonitor> monitor_;
};

}  // namespace tallowcrest

#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "actions/graceful_quit.h"
#include "core/jobs/jobs.h"
#include "integration/notification_center.h"
#include "monitor/system_monitor.h"
#include "platform/base/report_folder_posix.h"
#include "platform/base/system_clock.h"
#include "platform/base/thread_work_queue.h"
#include "platform/settings/open_settings_store.h"
#include "platform/tools/tool_launcher_posix.h"

namespace tallowcrest {

/// What a program may do with the owner's stored settings.
enum class SettingsAccess {
    keep,  ///< changes are stored
    /// Changes last as long as the program, nothing is written, and the timeline begins anew.
    look,
};

/// What a desktop adds to the machine. All of it is absent where there is none.
struct DesktopServices {
    std::function<std::shared_ptr<GracefulQuit>(ToolLauncher&)> makeGracefulQuit = {};
    NotificationCenter* notifications = nullptr;  ///< outlives the composition
    PosixReportFolder::Reveal revealFile = {};
    std::function<bool()> openActivityMonitor = {};
    std::function<void(const std::string& text)> storeOnPasteboard = {};
    /// Shows a page in front of all windows.
    std::function<void(AppRoute)> openRoute = {};
};

/// The monitor together with the parts of this machine that it runs on. Main thread.
class Composition {
public:
    /// Says on standard error what could not be read of the settings, and later when they can no
    /// longer be saved, and tells the monitor too. `mainQueue` must outlive the object.
    Composition(MainQueue& mainQueue, SettingsAccess access,
                std::vector<std::string> processArguments, DesktopServices desktop = {});
    Composition(const Composition&) = delete;
    Composition& operator=(const Composition&) = delete;

    SystemMonitor& monitor() { return *monitor_; }

    /// Ends the monitor and waits for what is under way; for a change to the disk until it is
    /// whole. False when a tool hangs beyond its deadline: the process should then end without
    /// destroying this object, which would wait on.
    [[nodiscard]] bool shutDown();

private:
    void reportFailedWrite(const std::string& problem);

    SystemClock clock_;
    PosixToolLauncher toolLauncher_;
    ThreadWorkQueue workQueue_;
    Jobs jobs_;
    JobScope ownJobs_;
    OpenedStore settings_;
    std::optional<SystemMonitor> monitor_;
};

}  // namespace tallowcrest

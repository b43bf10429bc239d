#pragma once

#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

#include "actions/graceful_quit.h"
#include "advisor/advisor_ports.h"
#include "core/clock.h"
#include "core/date.h"
#include "core/jobs/jobs.h"
#include "disk/trash.h"
#include "monitor/system_monitor.h"
#include "platform/base/report_folder_posix.h"
#include "platform/base/system_clock.h"
#include "platform/base/thread_work_queue.h"
#include "platform/settings/open_settings_store.h"
#include "platform/tools/tool_launcher_posix.h"

namespace tallowcrest {

/// When the settings file and its log were changed last.
using SettingsTimes = std::array<std::filesystem::file_time_type, 2>;

/// What a program may do with the owner's stored settings.
enum class SettingsAccess {
    readWrite,  ///< changes are stored
    readOnly,   ///< changes are kept only in memory, and the timeline begins empty
};

/// The services of a desktop. All members are absent where there is none.
struct DesktopServices {
    std::function<std::shared_ptr<GracefulQuit>(ToolLauncher&)> makeGracefulQuit = {};
    DesktopActionPorts actions = {};
    PosixReportFolder::Reveal revealFile = {};
    /// A requested stop ends what waits in the ports.
    std::function<AdvisorPorts(std::stop_token)> makeAdvisorPorts = {};
    DiskDesktopPorts disk = {};
    /// The desktop's Trash; without it nothing is moved there.
    std::function<std::shared_ptr<Trash>(const Clock&, UTCOffset)> makeTrash = {};
    IntegrationPorts integration = {};
    /// Null for that of the C library.
    std::shared_ptr<const Locale> locale = {};
};

/// The monitor together with the parts of this machine that it runs on. Main thread.
class Composition {
public:
    /// When settings cannot be read, and later when they cannot be saved and are saved again, this
    /// is printed on standard error and recorded by the monitor. `sampleApplied` as in
    /// `MonitorPorts`. `mainQueue` must outlive the object.
    Composition(
        MainQueue& mainQueue, SettingsAccess access, DesktopServices desktop = {},
        std::function<void()> sampleApplied = [] {});
    Composition(const Composition&) = delete;
    Composition& operator=(const Composition&) = delete;

    /// Without a `shutDown` before it, stops all work and waits until the last job is over.
    ~Composition();

    /// Must not be called once `shutDown` has returned true: there is no monitor any more.
    SystemMonitor& monitor() { return *monitor_; }

    /// Takes over the warning threshold that another program has stored, the default for one that
    /// is not valid. To be called once per sample; looks for one each fifteenth time, because a
    /// window stores something all the time.
    void followWarningThreshold();

    /// The deadline of the slowest tool.
    static constexpr std::chrono::milliseconds longestToolDeadline{2000};

    /// Stops all work, waits for what is under way and destroys the monitor. Changes to the disk
    /// are waited for until they are whole, then everything else, each for `timeout` at most. False
    /// when a job is still running then: the process should end without destroying this object,
    /// which would wait on.
    [[nodiscard]] bool shutDown(std::chrono::milliseconds timeout = longestToolDeadline);

private:
    /// `problem` as of `SqliteSettingsStore::ReportOutage`.
    void reportOutage(const std::string& problem);

    SystemClock clock_;
    std::stop_source stop_;
    PosixToolLauncher toolLauncher_;
    ThreadWorkQueue workQueue_;
    Jobs jobs_;
    JobScope ownJobs_;
    /// Of the file as it was last read; absent when it could not be read.
    std::optional<SettingsTimes> settingsTimes_;
    OpenedStore settings_;
    int samples_ = 0;
    std::optional<SystemMonitor> monitor_;
};

}  // namespace tallowcrest

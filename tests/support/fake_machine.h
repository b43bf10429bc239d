#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "advisor/advisor_ports.h"
#include "core/jobs/jobs.h"
#include "core/local_records.h"
#include "core/remote_records.h"
#include "core/routes.h"
#include "core/settings/settings_store.h"
#include "disk/disk_ports.h"
#include "integration/integration_ports.h"
#include "remote/tailnet_reading.h"
#include "tests/support/fake_local_actions.h"
#include "tests/support/fake_notification_center.h"
#include "tests/support/fake_process_details_reader.h"
#include "tests/support/fake_readers.h"
#include "tests/support/fake_report_folder.h"
#include "tests/support/fake_tool_launcher.h"
#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"
#include "tests/support/recording_store.h"

namespace tallowcrest {

class Locale;
class SystemMonitor;

/// A whole monitor on a machine whose figures a test sets. The machine has four cores, and no ticks
/// unless a test sets them: its CPU percentage is then the sum over the processes divided by four.
class FakeMachine {
public:
    static constexpr std::int64_t ownPID = 4242;
    static constexpr std::uint64_t firstStartTime = 1000;

    FakeMachine();
    ~FakeMachine();

    /// Built at the first call, from the values that the fields below have then.
    SystemMonitor& monitor();

    /// Destroys the monitor. The next call of `monitor` builds one from what is stored then.
    void restart();

    /// Adds a running process, which the next sample contains.
    ProcessSample& addProcess(std::int64_t pid, std::string command, double cpu, double rssMB);

    /// The next sample no longer contains the process.
    void endProcess(std::int64_t pid);

    /// The devices that the tailnet tells from now on.
    void setTailDevices(std::vector<TailDevice> devices);

    /// Runs every queued sample and all work that it causes.
    void finishSamples();

    /// Advances the clock by one interval, takes a sample and applies it.
    void tick();

    ManualClock clock;
    ManualMainQueue mainQueue;
    ManualWorkQueue workQueue;
    RecordingStore store;
    SettingsStore* settingsStore = &store;
    std::shared_ptr<FakeMetricsReader> metrics = std::make_shared<FakeMetricsReader>();
    std::shared_ptr<FakeTickSource> ticks = std::make_shared<FakeTickSource>();
    std::shared_ptr<FakeProcessDetailsReader> processDetails;  ///< null unless a test sets it
    std::shared_ptr<const Locale> locale;  ///< a `PlainLocale`, unless a test has another one
    FakeLocalActions actions;
    FakeToolLauncher toolLauncher;
    FakeNotificationCenter notifications;
    std::shared_ptr<FakeReportFolder> reportFolder = std::make_shared<FakeReportFolder>();
    /// Each value of progress is told.
    std::chrono::steady_clock::time_point steadyNow = {};
    Jobs jobs{mainQueue, workQueue, [this] { return steadyNow += Jobs::progressDistance; }};
    bool hasLocalPublicKey = false;
    std::vector<std::string> startupProblems;
    bool readOnly = false;
    std::function<bool()> openActivityMonitor;
    std::function<void(const std::string& text)> storeOnPasteboard;
    std::function<bool()> openTailscaleApp;
    DiskPorts disk;                   ///< null unless a test sets them: the disk is left alone
    AdvisorPorts advisor;             ///< null unless a test sets them: no key can be kept
    TailscaleDaemon tailscaleDaemon;  ///< when absent, the tailnet is not read
    std::function<void(AppRoute)> openRoute;
    InstallPorts install;  ///< null unless a test sets them: nothing can be installed
    UpdatePorts updates;   ///< null unless a test sets them: there is no feed
    /// When set, these replace those of each sample.
    std::optional<std::vector<Recommendation>> recommendations;
    std::optional<std::vector<SessionInsight>> sessionInsights;
    /// Called after each sample.
    std::function<void()> sampleApplied;

private:
    /// Puts the fixed recommendations and insights into the sample that was applied.
    void changeSample();

    std::unique_ptr<SystemMonitor> monitor_;
};

}  // namespace tallowcrest

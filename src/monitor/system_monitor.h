#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "actions/external_applications.h"
#include "actions/review_target.h"
#include "core/activity_log.h"
#include "core/clock.h"
#include "core/limits.h"
#include "core/locale.h"
#include "core/observable.h"
#include "core/places.h"
#include "core/queues.h"
#include "core/remote_records.h"
#include "core/settings.h"
#include "core/settings_store.h"
#include "monitor/automation_dates.h"
#include "monitor/dashboard_sections.h"
#include "monitor/navigation.h"
#include "monitor/sample_cycle.h"
#include "monitor/startup_state.h"
#include "sampling/latest_sample.h"
#include "sampling/protection.h"
#include "sampling/system_cpu_load_reader.h"
#include "sampling/system_metrics_reader.h"

namespace tallowcrest {

/// What the monitor needs from the machine it runs on. The references must outlive the monitor and
/// every sample that it has under way.
struct MonitorPorts {
    MainQueue& mainQueue;
    WorkQueue& workQueue;
    const Clock& clock;
    SettingsStore& settingsStore;
    std::shared_ptr<SystemMetricsReader> metrics;
    std::shared_ptr<CPUTickSource> ticks;
    std::shared_ptr<const Locale> locale;  ///< never null
};

/// Facts of this process and machine, fixed for the run.
struct HostFacts {
    int cpuCount = 1;  ///< active cores, at least 1
    ProtectionPolicy protection;
    std::string loginName;
    std::vector<std::string> processArguments;
    /// What the owner has to know about this start, a sentence each; recorded as messages.
    std::vector<std::string> startupProblems = {};
    Places places = {};
};

/// Operations of components that do not belong to the monitor itself; each may be absent. A hook
/// for a step that the monitor does itself takes that step's place.
struct MonitorExtensions {
    BackgroundHooks background;
    MainHooks main;
    /// Registers for notifications and their buttons; called once, when monitoring starts.
    std::function<void()> registerNotifications;
    std::function<bool()> hasOpenAIKey;
    std::function<bool()> hasLocalPublicKey;
    /// The newest scan of other machines, valid until the main thread does something else.
    std::function<std::span<const RemoteHealth>()> remoteHealth;
    ExternalApplications::Open openActivityMonitor;
};

/// The one central object that the views observe and call. It is composed of one component per
/// concern and does no work itself. Main thread.
class SystemMonitor {
public:
    static constexpr std::chrono::milliseconds sampleInterval{4000};

    /// Loads everything stored; starts no sampling and no timer.
    SystemMonitor(const MonitorPorts& ports, const HostFacts& host,
                  MonitorExtensions extensions = {});
    SystemMonitor(const SystemMonitor&) = delete;
    SystemMonitor& operator=(const SystemMonitor&) = delete;

    /// Takes a first sample and one more per `interval` from then on. Every call after the first
    /// does nothing, even after `stopMonitoring`.
    void startMonitoring(std::chrono::milliseconds interval = sampleInterval);
    void stopMonitoring();
    bool isStarted() const { return isStarted_; }

    /// Queues one sample and returns at once.
    void refresh() { cycle_.refresh(); }

    [[nodiscard]] Subscription observe(std::function<void()> observer) {
        return observable_.subscribe(std::move(observer));
    }

    const Settings& settings() const { return settings_; }
    Limits& limits() { return limits_; }
    const StartupState& startup() const { return startup_; }
    const HostFacts& host() const { return host_; }
    const AutomationDates& automationDates() const { return automationDates_; }
    ActivityLog& log() { return log_; }
    const LatestSample& sample() const { return sample_; }
    Navigation& navigation() { return navigation_; }
    DashboardSections& sections() { return sections_; }
    ReviewTarget& review() { return review_; }
    ExternalApplications& applications() { return applications_; }

private:
    /// What construction begins with, in this order: the load is counted from the first moment.
    struct Beginning {
        std::shared_ptr<SampleSources> sources;
        StoredState stored;
    };
    SystemMonitor(const MonitorPorts& ports, HostFacts host, MonitorExtensions extensions,
                  Beginning beginning);

    HostFacts host_;
    SettingsStore& store_;
    MainQueue& mainQueue_;
    std::function<void()> registerNotifications_;
    Observable observable_;
    Settings settings_;
    SettingsTable remoteTopAppSamples_;
    StartupState startup_;
    AutomationDates automationDates_;
    ActivityLog log_;
    LatestSample sample_;
    Navigation navigation_;
    Limits limits_;
    DashboardSections sections_;
    ReviewTarget review_;
    ExternalApplications applications_;
    SampleCycle cycle_;
    std::unique_ptr<RepeatingTimer> timer_;
    bool isStarted_ = false;
};

}  // namespace tallowcrest

#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "actions/automation.h"
#include "actions/confirmation_desk.h"
#include "actions/connection_settings.h"
#include "actions/external_applications.h"
#include "actions/local_actions.h"
#include "actions/pasteboard.h"
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
#include "integration/notification_center.h"
#include "integration/warning_notifications.h"
#include "monitor/auto_rules.h"
#include "monitor/dashboard_sections.h"
#include "monitor/navigation.h"
#include "monitor/sample_cycle.h"
#include "monitor/startup_state.h"
#include "reports/report_folder.h"
#include "reports/reports.h"
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
    LocalActionPorts localActions;
    std::shared_ptr<ReportFolder> reportFolder;   ///< never null
    UTCOffset utcOffset;                          ///< never absent
    NotificationCenter* notifications = nullptr;  ///< null where nobody can be notified
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
    AutoRules::Hooks rules;
    Automation::Hooks automation;
    /// Shows the window in front, on the route that is selected by then.
    std::function<void()> bringToFront;
    std::function<void()> requestAIAnalysis;
    std::function<bool()> hasOpenAIKey;
    std::function<bool()> hasLocalPublicKey;
    /// The newest scan of other machines, valid until the main thread does something else.
    std::function<std::span<const RemoteHealth>()> remoteHealth;
    ExternalApplications::Open openActivityMonitor;
    Pasteboard::Store storeOnPasteboard;
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
    AutoRules& autoRules() { return autoRules_; }
    Automation& automation() { return automation_; }
    ConnectionSettings& connection() { return connection_; }
    WarningNotifications& notifications() { return notifications_; }
    ActivityLog& log() { return log_; }
    const LatestSample& sample() const { return sample_; }
    Navigation& navigation() { return navigation_; }
    DashboardSections& sections() { return sections_; }
    ReviewTarget& review() { return review_; }
    ConfirmationDesk& confirmations() { return confirmations_; }
    LocalActions& localActions() { return localActions_; }
    ExternalApplications& applications() { return applications_; }
    Pasteboard& pasteboard() { return pasteboard_; }
    Reports& reports() { return reports_; }

private:
    /// What construction begins with, in this order: the load is counted from the first moment.
    struct Beginning {
        std::shared_ptr<SampleSources> sources;
        StoredState stored;
    };
    SystemMonitor(const MonitorPorts& ports, HostFacts host, MonitorExtensions extensions,
                  Beginning beginning);

    /// Absent before the first sample.
    std::optional<DiagnosticsFacts> diagnosticsFacts() const;
    /// Empty while nobody scans other machines.
    std::span<const RemoteHealth> remoteHealth() const;

    HostFacts host_;
    SettingsStore& store_;
    MainQueue& mainQueue_;
    std::shared_ptr<const Locale> locale_;
    Observable observable_;
    Settings settings_;
    SettingsTable remoteTopAppSamples_;
    std::map<std::string, AITrustRecord> aiTrustRecords_;
    std::function<std::span<const RemoteHealth>()> remoteHealth_;
    StartupState startup_;
    ActivityLog log_;
    LatestSample sample_;
    Navigation navigation_;
    Limits limits_;
    DashboardSections sections_;
    ReviewTarget review_;
    ConfirmationDesk confirmations_;
    LocalActions localActions_;
    WarningNotifications notifications_;
    Automation automation_;
    ConnectionSettings connection_;
    AutoRules autoRules_;
    ExternalApplications applications_;
    Pasteboard pasteboard_;
    Reports reports_;
    SampleCycle cycle_;
    std::unique_ptr<RepeatingTimer> timer_;
    bool isStarted_ = false;
};

}  // namespace tallowcrest

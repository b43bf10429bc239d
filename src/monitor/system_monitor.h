#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "actions/action_ports.h"
#include "core/advisor_records.h"
#include "core/locale.h"
#include "core/places.h"
#include "core/routes.h"
#include "core/services.h"
#include "monitor/startup_state.h"
#include "sampling/protection.h"

namespace tallowcrest {

class AutoRules;
class AutoScan;
class Automation;
class ConfirmationDesk;
class ExternalApplications;
class LocalActions;
class ReviewTarget;
class CPUTickSource;
class LatestSample;
class NotificationCenter;
class RepeatingTimer;
class ReportFolder;
class Reports;
class SampleCycle;
struct SampleSources;
class SettingsStore;
class SystemMetricsReader;
class WarningNotifications;
struct Actions;
struct DiagnosticsFacts;
struct Settings;

/// What the monitor needs from the machine it runs on. The references must outlive the monitor and
/// every sample that it has under way.
struct MonitorPorts {
    Jobs& jobs;
    const Clock& clock;
    SettingsStore& settingsStore;
    std::shared_ptr<SystemMetricsReader> metrics;  ///< never null
    std::shared_ptr<CPUTickSource> ticks;          ///< never null
    std::shared_ptr<const Locale> locale;          ///< never null
    ActionPorts actions;
    std::shared_ptr<ReportFolder> reportFolder;   ///< never null
    UTCOffset utcOffset;                          ///< never absent
    NotificationCenter* notifications = nullptr;  ///< null where there are no notifications
    /// Shows a page in front of all windows; absent without a window.
    std::function<void(AppRoute)> openRoute = {};
    AutoScan* remoteScan = nullptr;  ///< null where other machines are not watched
};

/// Facts of this process and machine, fixed for the run.
struct HostFacts {
    int cpuCount = 1;  ///< active cores, at least 1
    ProtectionPolicy protection;
    std::string loginName;
    /// Problems of this start that the owner should know, one sentence each; recorded as messages.
    std::vector<std::string> startupProblems = {};
    Places places = {};
    StartupFindings findings = {};
    /// The timeline begins empty and the automatic rules do not run.
    bool readOnly = false;
};

/// The one central object that the views observe and call. It is composed of one component per
/// concern and does no work itself. Main thread.
class SystemMonitor {
public:
    static constexpr std::chrono::milliseconds sampleInterval{4000};

    /// Reads the settings, the activity log, the history and the trust records from the store.
    /// Starts no sampling and no timer.
    SystemMonitor(const MonitorPorts& ports, HostFacts host);
    ~SystemMonitor();
    SystemMonitor(const SystemMonitor&) = delete;
    SystemMonitor& operator=(const SystemMonitor&) = delete;

    /// Takes a first sample and one more per `interval` from then on. Every call after the first
    /// does nothing, even after `stopMonitoring`.
    void startMonitoring(std::chrono::milliseconds interval = sampleInterval);
    /// Ends the regular samples. A sample under way is still applied.
    void stopMonitoring();
    /// Whether `startMonitoring` was called, even if `stopMonitoring` was called later.
    bool isStarted() const { return isStarted_; }

    /// Queues one sample and returns at once.
    void refresh();
    /// `applied` is called once per sample, after everything that follows from it.
    void setSampleApplied(std::function<void()> applied);

    const HostFacts& host() const { return host_; }
    const StartupState& startup() const { return startup_; }
    /// What all components share.
    const Services& services() const { return services_; }
    /// Never null.
    const std::shared_ptr<const Locale>& locale() const { return locale_; }

    const Settings& settings() const;
    SettingsOwner& settingsOwner() { return *settings_; }
    ActivityLog& log() { return *log_; }
    LatestSample& sample() { return *sample_; }
    ConfirmationDesk& confirmations();
    ReviewTarget& review();
    LocalActions& localActions();
    Automation& automation();
    ExternalApplications& applications();
    Reports& reports() { return *reports_; }
    AutoRules& autoRules() { return *autoRules_; }

private:
    /// Absent before the first sample.
    std::optional<DiagnosticsFacts> diagnosticsFacts() const;

    HostFacts host_;
    std::shared_ptr<const Locale> locale_;
    /// Built before everything that takes time: the first sample's CPU load is measured from here.
    std::shared_ptr<SampleSources> sources_;
    std::unique_ptr<SettingsOwner> settings_;
    std::unique_ptr<ActivityLog> log_;
    Services services_;
    StartupState startup_;
    std::map<std::string, AITrustRecord> aiTrustRecords_;
    std::unique_ptr<LatestSample> sample_;
    std::unique_ptr<Actions> actions_;
    std::unique_ptr<Reports> reports_;
    std::unique_ptr<WarningNotifications> notifications_;
    std::unique_ptr<AutoRules> autoRules_;
    std::unique_ptr<SampleCycle> cycle_;
    std::unique_ptr<RepeatingTimer> timer_;
    bool isStarted_ = false;
};

}  // namespace tallowcrest

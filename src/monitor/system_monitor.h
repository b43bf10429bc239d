#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "actions/action_ports.h"
#include "advisor/advisor_ports.h"
#include "core/jobs/queues.h"
#include "core/locale.h"
#include "core/places.h"
#include "core/services.h"
#include "disk/disk_ports.h"
#include "integration/integration_ports.h"
#include "remote/remote_ports.h"
#include "reports/report_ports.h"
#include "sampling/protection.h"

namespace tallowcrest {

class AutoRules;
class ConfirmationDesk;
class CPUTickSource;
class LatestSample;
class ProcessDetails;
class ProcessDetailsReader;
class Reports;
class SampleCycle;
struct SampleSources;
class SettingsStore;
class SystemMetricsReader;
struct Actions;
struct Advisor;
struct DiagnosticsFacts;
struct Disk;
struct Integration;
struct Remote;
struct Settings;

/// What the monitor needs from the machine it runs on. The references must outlive the monitor and
/// every sample that it has under way.
struct MonitorPorts {
    Jobs& jobs;
    const Clock& clock;
    SettingsStore& settingsStore;
    std::shared_ptr<SystemMetricsReader> metrics;  ///< never null
    std::shared_ptr<CPUTickSource> ticks;          ///< never null
    /// Null where nothing more is known about a process than its row.
    std::shared_ptr<ProcessDetailsReader> processDetails = {};
    std::shared_ptr<const Locale> locale;  ///< never null
    ActionPorts actions;
    RemotePorts remote;
    ReportPorts reports;
    AdvisorPorts advisor = {};
    DiskPorts disk = {};
    IntegrationPorts integration = {};
    /// Called once per sample, after everything that follows from it; never absent.
    std::function<void()> sampleApplied = [] {};
};

/// Facts of this process and machine, fixed for the run.
struct HostFacts {
    int cpuCount = 1;  ///< active cores, at least 1
    ProtectionPolicy protection;
    std::string loginName;
    /// Problems of this start that the owner should know, one sentence each; recorded as messages.
    std::vector<std::string> startupProblems = {};
    Places places = {};
    /// Whether the owner had an SSH public key at the start.
    bool hasLocalPublicKey = false;
    /// The automatic rules do not run.
    bool readOnly = false;
};

/// The one central object that the views observe and call. It is composed of one component per
/// concern and does no work itself. Main thread.
class SystemMonitor {
public:
    static constexpr std::chrono::milliseconds sampleInterval{4000};

    /// Reads the settings, the activity log, the history, the trust records and the counts of
    /// remote scans from the store. Starts no sampling and no timer.
    SystemMonitor(const MonitorPorts& ports, HostFacts host);
    ~SystemMonitor();
    SystemMonitor(const SystemMonitor&) = delete;
    SystemMonitor& operator=(const SystemMonitor&) = delete;

    /// Takes a first sample and one more per `interval` from then on. Every call after the first
    /// does nothing.
    void startMonitoring(std::chrono::milliseconds interval = sampleInterval);
    /// Whether `startMonitoring` was called.
    bool isStarted() const { return timer_ != nullptr; }

    /// Queues one sample and returns at once.
    void refresh();

    const HostFacts& host() const { return host_; }
    /// What all components share.
    const Services& services() const { return services_; }
    /// Never null.
    const std::shared_ptr<const Locale>& locale() const { return locale_; }

    const Settings& settings() const;
    SettingsOwner& settingsOwner() { return *settings_; }
    ActivityLog& log() { return *log_; }
    LatestSample& sample() { return *sample_; }
    ProcessDetails& processDetails() { return *processDetails_; }
    ConfirmationDesk& confirmations() { return *confirmations_; }
    Actions& actions() { return *actions_; }
    Remote& remote() { return *remote_; }
    Reports& reports() { return *reports_; }
    Advisor& advisor() { return *advisor_; }
    Disk& disk() { return *disk_; }
    Integration& integration() { return *integration_; }
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
    std::unique_ptr<ConfirmationDesk> confirmations_;
    Services services_;
    std::unique_ptr<LatestSample> sample_;
    std::unique_ptr<ProcessDetails> processDetails_;
    std::unique_ptr<Actions> actions_;
    std::unique_ptr<Remote> remote_;
    std::unique_ptr<Reports> reports_;
    std::unique_ptr<Advisor> advisor_;
    std::unique_ptr<Disk> disk_;
    std::unique_ptr<Integration> integration_;
    std::unique_ptr<AutoRules> autoRules_;
    std::unique_ptr<SampleCycle> cycle_;
    std::unique_ptr<RepeatingTimer> timer_;
};

}  // namespace tallowcrest

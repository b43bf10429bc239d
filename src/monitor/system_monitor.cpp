#include "monitor/system_monitor.h"

#include <utility>

#include "actions/actions.h"
#include "advisor/advisor.h"
#include "core/activity_log.h"
#include "core/confirmation_desk.h"
#include "core/jobs/jobs.h"
#include "core/settings/settings_owner.h"
#include "disk/disk.h"
#include "integration/integration.h"
#include "monitor/auto_rules.h"
#include "monitor/sample_cycle.h"
#include "remote/remote.h"
#include "reports/reports.h"
#include "sampling/latest_sample.h"
#include "sampling/process_details.h"

namespace tallowcrest {
SystemMonitor::SystemMonitor(const MonitorPorts& ports, HostFacts host)
    : host_(std::move(host)),
      locale_(ports.locale),
      sources_(std::make_shared<SampleSources>(ports.metrics, ports.ticks, ports.locale)),
      settings_(std::make_unique<SettingsOwner>(ports.settingsStore, ports.jobs.mainQueue(),
                                                host_.loginName)),
      log_(std::make_unique<ActivityLog>(ports.clock, *settings_, ports.jobs.mainQueue())),
      confirmations_(std::make_unique<ConfirmationDesk>(*log_, ports.jobs.mainQueue())),
      services_{*log_, *settings_, *confirmations_, ports.jobs, ports.clock, *locale_},
      sample_(std::make_unique<LatestSample>(*settings_, services_.jobs.mainQueue())),
      processDetails_(std::make_unique<ProcessDetails>(services_.jobs, ports.processDetails)),
      actions_(std::make_unique<Actions>(
          services_, *sample_, host_.protection, [this] { refresh(); }, ports.actions)),
      remote_(std::make_unique<Remote>(services_, actions_->pasteboard, ports.remote)),
      reports_(std::make_unique<Reports>(
          services_, actions_->pasteboard, [this] { return diagnosticsFacts(); }, ports.reports)),
      advisor_(std::make_unique<Advisor>(Advisor::Dependencies{
          services_, *sample_, *actions_, remote_->scan, *reports_, ports.advisor})),
      disk_(
          std::make_unique<Disk>(Disk::Dependencies{services_, *sample_, *actions_, remote_->tools,
                                                    *advisor_, [this] { refresh(); }, ports.disk})),
      integration_(std::make_unique<Integration>(services_, remote_->scan, remote_->tools,
                                                 advisor_->provider, ports.integration)),
      autoRules_(std::make_unique<AutoRules>(AutoRules::Dependencies{
          services_, *sample_, actions_->review, actions_->local, integration_->warnings,
          host_.protection, remote_->scan, disk_->autopilot})),
      cycle_(std::make_unique<SampleCycle>(
          SampleCycle::Dependencies{.services = services_,
                                    .sources = sources_,
                                    .sample = *sample_,
                                    .rules = *autoRules_,
                                    .tailnet = remote_->tailnet,
                                    .remoteScan = remote_->scan,
                                    .cpuCount = host_.cpuCount,
                                    .protection = host_.protection,
                                    .readOnly = host_.readOnly,
                                    .sampleApplied = ports.sampleApplied})) {
    for (const std::string& problem : host_.startupProblems) {
        log_->recordMessage(problem);
    }
}

SystemMonitor::~SystemMonitor() = default;

void SystemMonitor::startMonitoring(std::chrono::milliseconds interval) {
    if (isStarted()) {
        return;
    }
    integration_->warnings.registerNotificationCategories();
    refresh();
    timer_ = services_.jobs.mainQueue().scheduleRepeating(interval, [this] { refresh(); });
}

const Settings& SystemMonitor::settings() const {
    return settings_->values();
}

void SystemMonitor::refresh() {
    cycle_->refresh();
}

std::optional<DiagnosticsFacts> SystemMonitor::diagnosticsFacts() const {
    if (!sample_->snapshot()) {
        return std::nullopt;
    }
    return DiagnosticsFacts{.snapshot = *sample_->snapshot(),
                            .settings = settings_->values(),
                            .sessionInsights = sample_->sessionInsights(),
                            .remoteHealth = remote_->scan.state().remoteHealth,
                            .openAIKeySaved = advisor_->provider.state().openAIKeySaved,
                            .aiInsight = advisor_->provider.state().aiInsight,
                            .aiActions = advisor_->suggestions.aiActions(),
                            .aiTrustRecords = advisor_->trust.aiTrustRecords(),
                            .activityLog = log_->activityLog()};
}

}  // namespace tallowcrest

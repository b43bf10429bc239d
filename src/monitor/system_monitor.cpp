#include "monitor/system_monitor.h"

#include <utility>

#include "actions/actions.h"
#include "core/activity_log.h"
#include "core/jobs/jobs.h"
#include "core/settings/settings_owner.h"
#include "integration/warning_notifications.h"
#include "monitor/auto_rules.h"
#include "monitor/sample_cycle.h"
#include "reports/reports.h"
#include "sampling/latest_sample.h"

namespace tallowcrest {

SystemMonitor::SystemMonitor(const MonitorPorts& ports, HostFacts host)
    : host_(std::move(host)),
      locale_(ports.locale),
      sources_(std::make_shared<SampleSources>(ports.metrics, ports.ticks, ports.locale)),
      settings_(std::make_unique<SettingsOwner>(ports.settingsStore, ports.jobs.mainQueue(),
                                                host_.loginName)),
      log_(std::make_unique<ActivityLog>(ports.clock, *settings_, ports.jobs.mainQueue())),
      services_{*log_, *settings_, ports.jobs, ports.jobs.mainQueue(), ports.clock, *locale_},
      startup_(startupState(settings_->values(), host_.findings)),
      aiTrustRecords_(
          settings_->load(stored::trustRecords).value_or(std::map<std::string, AITrustRecord>())),
      sample_(std::make_unique<LatestSample>(*settings_, services_.mainQueue)),
      actions_(std::make_unique<Actions>(
          services_, *sample_, host_.protection, [this] { refresh(); }, ports.actions)),
      reports_(std::make_unique<Reports>(Reports::Dependencies{
          services_, actions_->pasteboard, [this] { return diagnosticsFacts(); }, ports.utcOffset,
          ports.reportFolder})),
      notifications_(
          std::make_unique<WarningNotifications>(ports.notifications, *settings_, ports.openRoute)),
      autoRules_(std::make_unique<AutoRules>(
          AutoRules::Dependencies{services_, *sample_, actions_->review, actions_->local,
                                  *notifications_, host_.protection, ports.remoteScan})),
      cycle_(std::make_unique<SampleCycle>(SampleCycle::Dependencies{.services = services_,
                                                                     .sources = sources_,
                                                                     .sample = *sample_,
                                                                     .rules = *autoRules_,
                                                                     .cpuCount = host_.cpuCount,
                                                                     .protection = host_.protection,
                                                                     .readOnly = host_.readOnly})) {
    for (const std::string& problem : host_.startupProblems) {
        log_->recordMessage(problem);
    }
}

SystemMonitor::~SystemMonitor() = default;

void SystemMonitor::startMonitoring(std::chrono::milliseconds interval) {
    if (std::exchange(isStarted_, true)) {
        return;
    }
    notifications_->registerNotificationCategories();
    refresh();
    timer_ = services_.mainQueue.scheduleRepeating(interval, [this] { refresh(); });
}

const Settings& SystemMonitor::settings() const {
    return settings_->values();
}

ConfirmationDesk& SystemMonitor::confirmations() {
    return actions_->confirmations;
}

ReviewTarget& SystemMonitor::review() {
    return actions_->review;
}

LocalActions& SystemMonitor::localActions() {
    return actions_->local;
}

Automation& SystemMonitor::automation() {
    return actions_->automation;
}

ExternalApplications& SystemMonitor::applications() {
    return actions_->applications;
}

void SystemMonitor::stopMonitoring() {
    timer_.reset();
}

void SystemMonitor::refresh() {
    cycle_->refresh();
}

void SystemMonitor::setSampleApplied(std::function<void()> applied) {
    cycle_->setSampleApplied(std::move(applied));
}

std::optional<DiagnosticsFacts> SystemMonitor::diagnosticsFacts() const {
    if (!sample_->snapshot()) {
        return std::nullopt;
    }
    return DiagnosticsFacts{.snapshot = *sample_->snapshot(),
                            .settings = settings_->values(),
                            .sessionInsights = sample_->sessionInsights(),
                            .remoteHealth = {},
                            .openAIKeySaved = startup_.openAIKeySaved,
                            .aiInsight = startup_.aiInsight,
                            .aiActions = {},
                            .aiTrustRecords = aiTrustRecords_,
                            .activityLog = log_->activityLog()};
}

}  // namespace tallowcrest

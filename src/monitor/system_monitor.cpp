#include "monitor/system_monitor.h"

#include <span>
#include <utility>

#include "core/history_encoder.h"
#include "core/settings_save.h"
#include "monitor/recommendations.h"
#include "monitor/session_insights.h"

namespace tallowcrest {
namespace {

StartupFindings findings(const HostFacts& host, const MonitorExtensions& extensions) {
    return {extensions.hasOpenAIKey && extensions.hasOpenAIKey(),
            extensions.hasLocalPublicKey && extensions.hasLocalPublicKey(), host.processArguments};
}

/// The steps that the monitor does itself, unless somebody else took them over. A background sample
/// may outlive the monitor, so it shares what it needs.
BackgroundHooks withOwnSteps(BackgroundHooks hooks, std::shared_ptr<const Locale> locale) {
    if (!hooks.buildRecommendations) {
        hooks.buildRecommendations = [locale = std::move(locale)](
                                         const std::vector<ProcessSample>& processes, double freeGB,
                                         double pressure, double cpuPercent) {
            return buildRecommendations(processes, freeGB, pressure, cpuPercent, *locale);
        };
    }
    return hooks;
}

MainHooks withOwnSteps(MainHooks hooks, const LatestSample& sample,
                       std::function<std::span<const RemoteHealth>()> remoteHealth,
                       const SettingsTable& remoteTopAppSamples,
                       std::shared_ptr<const Locale> locale) {
    if (!hooks.buildSessionInsights) {
        hooks.buildSessionInsights = [&sample, remoteHealth = std::move(remoteHealth),
                                      &remoteTopAppSamples,
                                      locale = std::move(locale)](const SystemSnapshot&) {
            const auto scanned = remoteHealth ? remoteHealth() : std::span<const RemoteHealth>();
            return buildSessionInsights(
                {sample.history(), sample.topAppSamples(), scanned, remoteTopAppSamples}, *locale);
        };
    }
    if (!hooks.addSustainedRecommendations) {
        hooks.addSustainedRecommendations = [&sample](std::vector<Recommendation> recommendations) {
            return addSustainedRecommendations(std::move(recommendations), sample.history(),
                                               sample.snapshot()->appImpacts);
        };
    }
    return hooks;
}

}  // namespace

SystemMonitor::SystemMonitor(const MonitorPorts& ports, const HostFacts& host,
                             MonitorExtensions extensions)
    : SystemMonitor(ports, host, std::move(extensions),
                    Beginning{std::make_shared<SampleSources>(ports.metrics, ports.ticks),
                              loadStoredState(ports.settingsStore, host.loginName)}) {}

SystemMonitor::SystemMonitor(const MonitorPorts& ports, HostFacts host,
                             MonitorExtensions extensions, Beginning beginning)
    : host_(std::move(host)),
      store_(ports.settingsStore),
      mainQueue_(ports.mainQueue),
      registerNotifications_(std::move(extensions.registerNotifications)),
      observable_(ports.mainQueue),
      settings_(std::move(beginning.stored.settings)),
      remoteTopAppSamples_(std::move(beginning.stored.remoteTopAppSamples)),
      startup_(startupState(settings_, findings(host_, extensions))),
      log_(ports.clock, observable_, std::move(beginning.stored.activityLog),
           [this](const auto& events) { saveActivityLog(store_, events); }),
      sample_(observable_, std::move(beginning.stored.history),
              [this, encoder = HistoryEncoder()](const auto& history) mutable {
                  saveHistory(store_, encoder, history);
              }),
      navigation_(observable_, startup_.showSetupWizard),
      limits_(settings_, store_, observable_),
      sections_(settings_.collapsedSections, store_, log_, observable_),
      review_(observable_, log_, sample_, settings_.protectedAppNames, host_.protection),
      applications_(log_, std::move(extensions.openActivityMonitor)),
      cycle_(ports.mainQueue, ports.workQueue, ports.clock, std::move(beginning.sources), sample_,
             withOwnSteps(std::move(extensions.background), ports.locale),
             withOwnSteps(std::move(extensions.main), sample_, std::move(extensions.remoteHealth),
                          remoteTopAppSamples_, ports.locale),
             [this] {
                 return SampleInputs{host_.cpuCount, settings_.protectedAppNames, host_.protection};
             }) {
    for (const std::string& problem : host_.startupProblems) {
        log_.recordMessage(problem);
    }
}

void SystemMonitor::startMonitoring(std::chrono::milliseconds interval) {
    if (std::exchange(isStarted_, true)) {
        return;
    }
    if (registerNotifications_) {
        registerNotifications_();
    }
    refresh();
    timer_ = mainQueue_.scheduleRepeating(interval, [this] { refresh(); });
}

void SystemMonitor::stopMonitoring() {
    timer_.reset();
}

}  // namespace tallowcrest

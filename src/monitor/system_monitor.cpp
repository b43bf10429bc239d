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

MainHooks withOwnSteps(MainHooks hooks, const LatestSample& sample, AutoRules& rules,
                       std::function<std::span<const RemoteHealth>()> remoteHealth,
                       const SettingsTable& remoteTopAppSamples,
                       std::shared_ptr<const Locale> locale) {
    if (!hooks.buildSessionInsights) {
        hooks.buildSessionInsights = [&sample, remoteHealth = std::move(remoteHealth),
                                      &remoteTopAppSamples,
                                      locale = std::move(locale)](const SystemSnapshot&) {
            return buildSessionInsights(
                {sample.history(), sample.topAppSamples(), remoteHealth(), remoteTopAppSamples},
                *locale);
        };
    }
    if (!hooks.addSustainedRecommendations) {
        hooks.addSustainedRecommendations = [&sample](std::vector<Recommendation> recommendations) {
            return addSustainedRecommendations(std::move(recommendations), sample.history(),
                                               sample.snapshot()->appImpacts);
        };
    }
    if (!hooks.runAutoRules) {
        hooks.runAutoRules = [&rules](const SystemSnapshot& snapshot) {
            rules.runAutoRules(snapshot);
        };
    }
    if (!hooks.raiseLoadWarning) {
        hooks.raiseLoadWarning = [&rules](const SystemSnapshot& snapshot) {
            rules.raiseLoadWarning(snapshot);
        };
    }
    return hooks;
}

/// The hooks that lead from one component of the monitor to another.
AutoRules::Hooks withWarnings(AutoRules::Hooks hooks, WarningNotifications& notifications) {
    hooks.postLoadWarning = [&notifications](const std::string& topProcessName) {
        notifications.postLoadWarning(topProcessName);
    };
    return hooks;
}

Automation::Hooks withRegistration(Automation::Hooks hooks, WarningNotifications& notifications) {
    hooks.registerNotificationCategories = [&notifications] {
        notifications.registerNotificationCategories();
    };
    return hooks;
}

WarningNotifications::Hooks leadingTo(Navigation& navigation, const MonitorExtensions& extensions) {
    return {[&navigation, bringToFront = extensions.bringToFront](AppRoute route) {
                navigation.setSelectedRoute(route);
                if (bringToFront) {
                    bringToFront();
                }
            },
            extensions.requestAIAnalysis, extensions.rules.scanRemoteMacs};
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
      locale_(ports.locale),
      observable_(ports.mainQueue),
      settings_(std::move(beginning.stored.settings)),
      remoteTopAppSamples_(std::move(beginning.stored.remoteTopAppSamples)),
      aiTrustRecords_(std::move(beginning.stored.aiTrustRecords)),
      remoteHealth_(std::move(extensions.remoteHealth)),
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
      confirmations_(observable_, log_),
      localActions_(
          {observable_, log_, sample_, review_, confirmations_, settings_, store_, host_.protection,
           ports.mainQueue, ports.workQueue, [this] { refresh(); }, [this] { cycle_.regroup(); }},
          ports.localActions),
      notifications_(ports.notifications, settings_, leadingTo(navigation_, extensions)),
      automation_(observable_, log_, settings_, store_,
                  withRegistration(std::move(extensions.automation), notifications_)),
      connection_(observable_, log_, settings_, store_),
      autoRules_({log_, sample_, review_, localActions_, settings_, host_.protection, ports.clock,
                  *locale_},
                 withWarnings(std::move(extensions.rules), notifications_)),
      applications_(log_, std::move(extensions.openActivityMonitor)),
      pasteboard_(log_, std::move(extensions.storeOnPasteboard)),
      reports_({log_, pasteboard_, ports.clock, *locale_, [this] { return diagnosticsFacts(); },
                ports.utcOffset, ports.reportFolder, ports.mainQueue, ports.workQueue}),
      cycle_(ports.mainQueue, ports.workQueue, ports.clock, std::move(beginning.sources), sample_,
             withOwnSteps(std::move(extensions.background), ports.locale),
             withOwnSteps(
                 std::move(extensions.main), sample_, autoRules_, [this] { return remoteHealth(); },
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
    notifications_.registerNotificationCategories();
    refresh();
    timer_ = mainQueue_.scheduleRepeating(interval, [this] { refresh(); });
}

std::span<const RemoteHealth> SystemMonitor::remoteHealth() const {
    return remoteHealth_ ? remoteHealth_() : std::span<const RemoteHealth>();
}

std::optional<DiagnosticsFacts> SystemMonitor::diagnosticsFacts() const {
    if (!sample_.snapshot()) {
        return std::nullopt;
    }
    return DiagnosticsFacts{.snapshot = *sample_.snapshot(),
                            .settings = settings_,
                            .sessionInsights = sample_.sessionInsights(),
                            .remoteHealth = remoteHealth(),
                            .openAIKeySaved = startup_.openAIKeySaved,
                            .aiInsight = startup_.aiInsight,
                            .aiActions = {},
                            .aiTrustRecords = aiTrustRecords_,
                            .activityLog = log_.activityLog()};
}

void SystemMonitor::stopMonitoring() {
    timer_.reset();
}

}  // namespace tallowcrest

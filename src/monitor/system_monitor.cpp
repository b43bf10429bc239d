#include "monitor/system_monitor.h"

#include <algorithm>
#include <span>
#include <utility>

#include "core/history_encoder.h"
#include "core/record_json.h"
#include "core/settings_keys.h"

namespace tallowcrest {
namespace {

/// What cannot be encoded leaves the older value in the store.
template <class List>
void saveJSON(SettingsStore& store, std::string_view key, const List& values) {
    if (std::optional<std::string> text = record_json::encode(values)) {
        store.write(key, JSONData{std::move(*text)});
    }
}

/// The newest points alone are kept across a restart.
void saveHistory(SettingsStore& store, HistoryEncoder& encoder,
                 std::span<const HistoryPoint> history) {
    const std::size_t saved = std::min(history.size(), StoredState::maximumStoredHistory);
    if (std::optional<std::string> text = encoder.encode(history.last(saved))) {
        store.write(settings_keys::historyKey, JSONData{std::move(*text)});
    }
}

StartupFindings findings(const HostFacts& host, const MonitorExtensions& extensions) {
    return {extensions.hasOpenAIKey && extensions.hasOpenAIKey(),
            extensions.hasLocalPublicKey && extensions.hasLocalPublicKey(), host.processArguments};
}

}  // namespace

SystemMonitor::SystemMonitor(const MonitorPorts& ports, HostFacts host,
                             MonitorExtensions extensions)
    : SystemMonitor(ports, host, std::move(extensions),
                    loadStoredState(ports.settingsStore, host.loginName)) {}

SystemMonitor::SystemMonitor(const MonitorPorts& ports, HostFacts host,
                             MonitorExtensions extensions, StoredState stored)
    : host_(std::move(host)),
      store_(ports.settingsStore),
      mainQueue_(ports.mainQueue),
      registerNotifications_(std::move(extensions.registerNotifications)),
      observable_(ports.mainQueue),
      settings_(std::move(stored.settings)),
      startup_(startupState(settings_, findings(host_, extensions))),
      log_(ports.clock, observable_, std::move(stored.activityLog),
           [this](const auto& events) { saveJSON(store_, settings_keys::activityLogKey, events); }),
      sample_(observable_, std::move(stored.history),
              [this, encoder = HistoryEncoder()](const auto& history) mutable {
                  saveHistory(store_, encoder, history);
              }),
      navigation_(observable_, startup_.showSetupWizard),
      review_(observable_, log_, sample_, settings_.protectedAppNames, host_.protection),
      applications_(log_, std::move(extensions.openActivityMonitor)),
      cycle_(ports.mainQueue, ports.workQueue, ports.clock,
             std::make_shared<SampleSources>(ports.metrics, ports.ticks), sample_,
             std::move(extensions.background), std::move(extensions.main), [this] {
                 return SampleInputs{host_.cpuCount, settings_.protectedAppNames, host_.protection};
             }) {}

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

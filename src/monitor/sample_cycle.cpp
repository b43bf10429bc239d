#include "monitor/sample_cycle.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "core/clock.h"
#include "core/locale.h"
#include "core/settings/settings_owner.h"
#include "monitor/auto_rules.h"
#include "monitor/recommendations.h"
#include "monitor/session_insights.h"
#include "remote/remote_scan.h"
#include "remote/tailnet.h"
#include "sampling/app_impact.h"
#include "sampling/latest_sample.h"
#include "sampling/system_metrics_reader.h"

namespace tallowcrest {
namespace {

double sumOfCPU(const std::vector<ProcessSample>& processes) {
    double sum = 0.0;
    for (const ProcessSample& process : processes) {
        sum += process.cpu;
    }
    return sum;
}

}  // namespace

SampleSources::SampleSources(std::shared_ptr<SystemMetricsReader> metricsReader,
                             std::shared_ptr<CPUTickSource> ticks,
                             std::shared_ptr<const Locale> textLocale)
    : metrics(std::move(metricsReader)),
      tickSource(std::move(ticks)),
      locale(std::move(textLocale)),
      systemCPULoad(*tickSource) {}

double cpuPercentFromProcesses(double processPercent, int cpuCount) {
    return std::min(processPercent / cpuCount, 100.0);
}

// The background half.
BackgroundSample takeSample(SampleSources& sources, const SampleInputs& inputs,
                            const Clock& clock) {
    BackgroundSample result;
    SystemSnapshot& snapshot = result.snapshot;

    result.processes = sources.metrics->readProcesses();
    snapshot.memory = sources.metrics->readMemory();
    snapshot.disk = sources.metrics->readDiskSnapshot();
    const double processPercent = sumOfCPU(result.processes);
    const std::optional<double> load = sources.systemCPULoad.readCPUPercent();
    snapshot.pressureText = sources.metrics->readPressureText();
    result.impactOrder = impactOrder(result.processes);
    snapshot.topProcesses = rowsInOrder(result.processes, result.impactOrder, maximumTopProcesses);
    snapshot.appImpacts =
        listedAppImpacts(result.processes, inputs.protectedAppNames, inputs.protection);
    result.protectedAppNames = inputs.protectedAppNames;
    snapshot.cpuPercent = load ? *load : cpuPercentFromProcesses(processPercent, inputs.cpuCount);
    result.recommendations =
        buildRecommendations(result.processes, snapshot.memory.freeGB, snapshot.memory.pressure,
                             snapshot.cpuPercent, *sources.locale);
    snapshot.sampledAt = clock.now();
    return result;
}

// The main half.
void SampleCycle::applySample(BackgroundSample background) {
    publish(background);
    dependencies_.tailnet.publishReading();
    const SystemSnapshot& snapshot = *dependencies_.sample.snapshot();
    dependencies_.sample.appendHistoryPoint();
    dependencies_.sample.countTopApp();
    const RemoteScanState& remote = dependencies_.remoteScan.state();
    dependencies_.sample.setSessionInsights(
        buildSessionInsights({.history = dependencies_.sample.history(),
                              .topAppSamples = dependencies_.sample.topAppSamples(),
                              .remoteHealth = remote.remoteHealth,
                              .remoteTopAppSamples = remote.remoteTopAppSamples},
                             dependencies_.services.locale));
    dependencies_.sample.setRecommendations(
        addSustainedRecommendations(std::move(background.recommendations),
                                    dependencies_.sample.history(), snapshot.appImpacts));
    if (!dependencies_.readOnly) {
        dependencies_.rules.runAutoRules(snapshot);
    }
    dependencies_.rules.raiseLoadWarning(snapshot);
    dependencies_.sampleApplied();
}

SampleCycle::SampleCycle(Dependencies dependencies)
    : dependencies_(std::move(dependencies)), jobs_(dependencies_.services.jobs) {}

void SampleCycle::refresh() {
    if (!dependencies_.readOnly) {
        dependencies_.tailnet.beginReading();
    }
    jobs_.run(
        Lane::sampling,
        [sources = dependencies_.sources, inputs = inputs(), &clock = dependencies_.services.clock](
            const Stop&) { return takeSample(*sources, inputs, clock); },
        [this](BackgroundSample background) { applySample(std::move(background)); });
}

void SampleCycle::publish(BackgroundSample& background) {
    dependencies_.sample.setLatestProcesses(std::move(background.processes),
                                            std::move(background.impactOrder));
    dependencies_.sample.setSnapshot(std::move(background.snapshot));
    const ProtectedAppNames& protectedNow =
        dependencies_.services.settings.values().protectedAppNames;
    if (background.protectedAppNames != protectedNow) {
        dependencies_.sample.regroup(protectedNow, dependencies_.protection);
    }
}

SampleInputs SampleCycle::inputs() const {
    return {dependencies_.cpuCount, dependencies_.services.settings.values().protectedAppNames,
            dependencies_.protection};
}

}  // namespace tallowcrest

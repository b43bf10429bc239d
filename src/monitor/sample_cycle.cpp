#include "monitor/sample_cycle.h"

#include <algorithm>
#include <optional>
#include <type_traits>
#include <utility>

#include "sampling/app_impact.h"

namespace tallowcrest {
namespace {

template <class Result, class... Arguments>
Result callOr(Result fallback, const std::function<Result(Arguments...)>& hook,
              std::type_identity_t<Arguments>... arguments) {
    return hook ? hook(std::forward<Arguments>(arguments)...) : std::move(fallback);
}

double sumOfCPU(const std::vector<ProcessSample>& processes) {
    double sum = 0.0;
    for (const ProcessSample& process : processes) {
        sum += process.cpu;
    }
    return sum;
}

std::vector<AppImpact> listedAppImpacts(const std::vector<ProcessSample>& processes,
                                        const SampleInputs& inputs) {
    std::vector<AppImpact> groups =
        buildAppImpacts(processes, inputs.protectedAppNames, inputs.protection);
    groups.resize(std::min(groups.size(), maximumAppImpacts));
    return groups;
}

}  // namespace

SampleSources::SampleSources(std::shared_ptr<SystemMetricsReader> metrics,
                             std::shared_ptr<CPUTickSource> ticks)
    : proMetrics(std::move(metrics)), tickSource(std::move(ticks)), systemCPULoad(*tickSource) {}

double cpuPercentFromProcesses(double processPercent, int cpuCount) {
    return std::min(processPercent / cpuCount, 100.0);
}

BackgroundSample takeSample(SampleSources& sources, const BackgroundHooks& hooks,
                            const SampleInputs& inputs, const Clock& clock) {
    BackgroundSample result;
    SystemSnapshot& snapshot = result.snapshot;

    result.processes = sources.proMetrics->readProcesses();
    snapshot.memory = sources.proMetrics->readMemory();
    snapshot.disk = sources.proMetrics->readDiskSnapshot();
    result.devices = callOr({}, hooks.loadTailDevices);
    result.healthIssues = callOr({}, hooks.loadTailscaleHealthIssues);
    const double processPercent = sumOfCPU(result.processes);
    const std::optional<double> load = sources.systemCPULoad.readCPUPercent();
    snapshot.pressureText = sources.proMetrics->readPressureText();
    result.impactOrder = impactOrder(result.processes);
    snapshot.topProcesses = rowsInOrder(result.processes, result.impactOrder, maximumTopProcesses);
    snapshot.appImpacts = listedAppImpacts(result.processes, inputs);
    result.protectedAppNames = inputs.protectedAppNames;
    snapshot.cpuPercent = load ? *load : cpuPercentFromProcesses(processPercent, inputs.cpuCount);
    result.recommendations =
        callOr({}, hooks.buildRecommendations, result.processes, snapshot.memory.freeGB,
               snapshot.memory.pressure, snapshot.cpuPercent);
    snapshot.sampledAt = clock.now();
    return result;
}

SampleCycle::SampleCycle(MainQueue& mainQueue, WorkQueue& workQueue, const Clock& clock,
                         std::shared_ptr<SampleSources> sources, LatestSample& sample,
                         BackgroundHooks backgroundHooks, MainHooks mainHooks,
                         std::function<SampleInputs()> inputs)
    : mainQueue_(mainQueue),
      workQueue_(workQueue),
      clock_(clock),
      sources_(std::move(sources)),
      sample_(sample),
      backgroundHooks_(std::make_shared<const BackgroundHooks>(std::move(backgroundHooks))),
      mainHooks_(std::move(mainHooks)),
      inputs_(std::move(inputs)),
      self_(std::make_shared<SampleCycle*>(this)) {}

void SampleCycle::refresh() {
    workQueue_.post([&mainQueue = mainQueue_, &clock = clock_, sources = sources_,
                     hooks = backgroundHooks_, inputs = inputs_(), self = std::weak_ptr(self_)] {
        // Shared, because a posted function must be copyable and a sample is costly to copy.
        auto background =
            std::make_shared<BackgroundSample>(takeSample(*sources, *hooks, inputs, clock));
        mainQueue.post([self, background] {
            if (const auto cycle = self.lock()) {
                (*cycle)->applySample(std::move(*background));
            }
        });
    });
}

void SampleCycle::applySample(BackgroundSample background) {
    sample_.setLatestProcesses(std::move(background.processes), std::move(background.impactOrder));
    sample_.setSnapshot(std::move(background.snapshot));
    if (background.protectedAppNames != inputs_().protectedAppNames) {
        regroup();
    }
    const SystemSnapshot& snapshot = *sample_.snapshot();
    if (mainHooks_.publishTailnet) {
        mainHooks_.publishTailnet(std::move(background.devices),
                                  std::move(background.healthIssues));
    }
    sample_.appendHistoryPoint();
    sample_.countTopApp();
    sample_.setSessionInsights(callOr({}, mainHooks_.buildSessionInsights, snapshot));
    sample_.setRecommendations(
        mainHooks_.addSustainedRecommendations
            ? mainHooks_.addSustainedRecommendations(std::move(background.recommendations))
            : std::move(background.recommendations));
    if (mainHooks_.runAutoRules) {
        mainHooks_.runAutoRules(snapshot);
    }
    if (mainHooks_.raiseLoadWarning) {
        mainHooks_.raiseLoadWarning(snapshot);
    }
    if (mainHooks_.sampleApplied) {
        mainHooks_.sampleApplied();
    }
}

void SampleCycle::regroup() {
    if (sample_.snapshot()) {
        sample_.setAppImpacts(listedAppImpacts(sample_.latestProcesses(), inputs_()));
    }
}

}  // namespace tallowcrest

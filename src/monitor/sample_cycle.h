#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/clock.h"
#include "core/local_records.h"
#include "core/queues.h"
#include "core/remote_records.h"
#include "sampling/latest_sample.h"
#include "sampling/protection.h"
#include "sampling/system_cpu_load_reader.h"
#include "sampling/system_metrics_reader.h"

namespace tallowcrest {

/// The readers of the background half. Shared with running samples, so that one which outlives the
/// monitor still has something to read.
struct SampleSources {
    SampleSources(std::shared_ptr<SystemMetricsReader> metrics,
                  std::shared_ptr<CPUTickSource> ticks);

    std::shared_ptr<SystemMetricsReader> proMetrics;
    std::shared_ptr<CPUTickSource> tickSource;
    SystemCPULoadReader systemCPULoad;
};

/// Steps of the background half that other components own. Each may be absent: the step then
/// yields nothing. They run on the work queue, several samples at once.
struct BackgroundHooks {
    std::function<std::vector<TailDevice>()> loadTailDevices;
    std::function<std::vector<std::string>()> loadTailscaleHealthIssues;
    std::function<std::vector<Recommendation>(const std::vector<ProcessSample>& processes,
                                              double freeGB, double pressure, double cpuPercent)>
        buildRecommendations;
};

/// Steps of the main half that other components own. Each may be absent. Main thread.
struct MainHooks {
    std::function<void(std::vector<TailDevice>, std::vector<std::string>)> publishTailnet;
    std::function<std::vector<SessionInsight>(const SystemSnapshot&)> buildSessionInsights;
    std::function<std::vector<Recommendation>(std::vector<Recommendation>)>
        addSustainedRecommendations;
    std::function<void(const SystemSnapshot&)> runAutoRules;
    std::function<void(const SystemSnapshot&)> raiseLoadWarning;
    /// After everything else, once per sample.
    std::function<void()> sampleApplied;
};

/// What the background half needs to know of the monitor's state, by value.
struct SampleInputs {
    int cpuCount = 1;
    ProtectedAppNames protectedAppNames;
    ProtectionPolicy protection;
};

/// What the background half hands to the main half.
struct BackgroundSample {
    std::vector<ProcessSample> processes;
    std::vector<std::size_t> impactOrder;  ///< indexes of `processes`
    SystemSnapshot snapshot;
    ProtectedAppNames protectedAppNames;  ///< by which `snapshot` has its groups
    std::vector<TailDevice> devices;
    std::vector<std::string> healthIssues;
    std::vector<Recommendation> recommendations;
};

inline constexpr std::size_t maximumTopProcesses = 120;
inline constexpr std::size_t maximumAppImpacts = 14;

/// The whole-machine load when the tick counters have none to give: the processes' own percentages
/// spread over the cores, at most 100.
double cpuPercentFromProcesses(double processPercent, int cpuCount);

/// The background half of one sample, on the calling thread. Never fails.
BackgroundSample takeSample(SampleSources& sources, const BackgroundHooks& hooks,
                            const SampleInputs& inputs, const Clock& clock);

/// Takes samples in the background and applies them on the main thread, in the order in which
/// they finish; they may overlap. Main thread. The queues and the clock must outlive every sample
/// under way, so whoever owns them joins the work queue first.
class SampleCycle {
public:
    SampleCycle(MainQueue& mainQueue, WorkQueue& workQueue, const Clock& clock,
                std::shared_ptr<SampleSources> sources, LatestSample& sample,
                BackgroundHooks backgroundHooks, MainHooks mainHooks,
                std::function<SampleInputs()> inputs);
    SampleCycle(const SampleCycle&) = delete;
    SampleCycle& operator=(const SampleCycle&) = delete;

    /// Queues one sample and returns at once. Its result is dropped when the cycle is gone by then.
    void refresh();

    /// The main half of one sample.
    void applySample(BackgroundSample background);

    /// Groups the latest processes anew, for when the Never Quit list has changed: which process of
    /// a group may be touched must not wait for the next sample. Without a sample, nothing.
    void regroup();

private:
    MainQueue& mainQueue_;
    WorkQueue& workQueue_;
    const Clock& clock_;
    std::shared_ptr<SampleSources> sources_;
    LatestSample& sample_;
    std::shared_ptr<const BackgroundHooks> backgroundHooks_;
    MainHooks mainHooks_;
    std::function<SampleInputs()> inputs_;
    std::shared_ptr<SampleCycle*> self_;  ///< expires with the cycle
};

}  // namespace tallowcrest

#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "core/jobs/jobs.h"
#include "core/local_records.h"
#include "core/services.h"
#include "sampling/protection.h"
#include "sampling/system_cpu_load_reader.h"

namespace tallowcrest {

class AutoRules;
class LatestSample;
class RemoteScan;
class SystemMetricsReader;
class Tailnet;

/// The sources that the background half of a sample reads. Shared with running samples, because one
/// may outlive the monitor.
struct SampleSources {
    SampleSources(std::shared_ptr<SystemMetricsReader> metrics,
                  std::shared_ptr<CPUTickSource> ticks, std::shared_ptr<const Locale> locale);

    std::shared_ptr<SystemMetricsReader> metrics;
    std::shared_ptr<CPUTickSource> tickSource;
    std::shared_ptr<const Locale> locale;
    SystemCPULoadReader systemCPULoad;
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
    ProtectedAppNames protectedAppNames;  ///< used for the groups of `snapshot`
    std::vector<Recommendation> recommendations;
};

inline constexpr std::size_t maximumTopProcesses = 120;

/// The whole-machine load when the tick counters give none: `processPercent`, the sum of the
/// processes' percentages, divided by the number of cores; at most 100. `cpuCount` is at least 1.
double cpuPercentFromProcesses(double processPercent, int cpuCount);

/// The background half of one sample, on the calling thread, which is not the main one. Never
/// fails: what cannot be read is empty or 0. Several at once.
BackgroundSample takeSample(SampleSources& sources, const SampleInputs& inputs, const Clock& clock);

/// Takes samples in the background and applies them on the main thread, in the order in which
/// they finish; they may overlap. Main thread.
class SampleCycle {
public:
    /// The references must outlive the object.
    struct Dependencies {
        Services services;
        std::shared_ptr<SampleSources> sources;
        LatestSample& sample;
        AutoRules& rules;
        Tailnet& tailnet;
        const RemoteScan& remoteScan;
        int cpuCount = 1;
        ProtectionPolicy protection;
        bool readOnly = false;  ///< nothing is selected, asked for or started by itself
        /// Called once per sample, after everything else; never absent.
        std::function<void()> sampleApplied;
    };

    explicit SampleCycle(Dependencies dependencies);
    SampleCycle(const SampleCycle&) = delete;
    SampleCycle& operator=(const SampleCycle&) = delete;

    /// Queues one sample and returns at once. Its result is dropped if the cycle is destroyed
    /// first.
    void refresh();

    /// The main half of one sample: publishes it and updates everything that depends on it.
    void applySample(BackgroundSample background);

private:
    SampleInputs inputs() const;
    void publish(BackgroundSample& background);

    Dependencies dependencies_;
    JobScope jobs_;
};

}  // namespace tallowcrest

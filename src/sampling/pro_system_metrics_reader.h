#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "sampling/home_volume.h"
#include "sampling/metric_runner.h"
#include "sampling/system_metrics_reader.h"

namespace tallowcrest {

/// Reads the machine through four system tools, one launch of at most 2.0 seconds each. Holds no
/// state of its own, so calls may overlap.
class ProSystemMetricsReader final : public SystemMetricsReader {
public:
    /// When each process that runs now began, by its number, in the unit of
    /// `ProcessSample::startTime`. May be called by several threads at once.
    using StartTimes = std::function<std::unordered_map<std::int64_t, std::uint64_t>()>;

    /// Without `startTimes` no row has a start time.
    ProSystemMetricsReader(MetricRunner runner, std::unique_ptr<HomeVolume> homeVolume,
                           StartTimes startTimes = {})
        : runner_(runner), homeVolume_(std::move(homeVolume)), startTimes_(std::move(startTimes)) {}

    /// The start times are read before the rows, as the two are no one moment. A number that
    /// changes hands in between then bears the start time of the process that is gone, and a
    /// request for that row meets nobody; the other way round it would meet a process that the row
    /// does not show. A process that is younger than the start times has none until the next
    /// sample.
    std::vector<ProcessSample> readProcesses() override;
    MemorySnapshot readMemory() override;
    std::string readPressureText() override;
    DiskSnapshot readDiskSnapshot() override;

private:
    MetricRunner runner_;
    const std::unique_ptr<HomeVolume> homeVolume_;
    const StartTimes startTimes_;
};

}  // namespace tallowcrest

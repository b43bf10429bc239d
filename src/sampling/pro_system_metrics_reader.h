#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "sampling/metric_runner.h"
#include "sampling/system_metrics_reader.h"

namespace tallowcrest {

/// Reads the machine through four system tools, with one launch of at most 2.0 seconds each.
/// Stateless, so calls may overlap.
class ProSystemMetricsReader final : public SystemMetricsReader {
public:
    /// The start time of each running process by its id, in the unit of
    /// `ProcessSample::startTime`. Called by several threads at once.
    using StartTimes = std::function<std::unordered_map<std::int64_t, std::uint64_t>()>;

    /// Without `startTimes` no row has a start time.
    ProSystemMetricsReader(MetricRunner runner, std::unique_ptr<HomeVolume> homeVolume,
                           StartTimes startTimes = {})
        : runner_(runner), homeVolume_(std::move(homeVolume)), startTimes_(std::move(startTimes)) {}

    /// The start times are read before the rows, because the two cannot be read at one moment. If a
    /// process id is reused in between, its row has the start time of the process that ended, so a
    /// later action on the row finds no process. In the other order the action would reach a
    /// process that the row does not show. A process that started after the start times were read
    /// has none until the next sample.
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

#pragma once

#include <memory>
#include <string>
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
    ProSystemMetricsReader(MetricRunner runner, std::unique_ptr<HomeVolume> homeVolume)
        : runner_(runner), homeVolume_(std::move(homeVolume)) {}

    std::vector<ProcessSample> readProcesses() override;
    MemorySnapshot readMemory() override;
    std::string readPressureText() override;
    DiskSnapshot readDiskSnapshot() override;

private:
    MetricRunner runner_;
    const std::unique_ptr<HomeVolume> homeVolume_;
};

}  // namespace tallowcrest

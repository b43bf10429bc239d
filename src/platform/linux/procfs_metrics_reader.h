#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/linux/kernel_file.h"
#include "platform/linux/procfs_process_table.h"
#include "sampling/home_volume.h"
#include "sampling/system_metrics_reader.h"

namespace tallowcrest {

/// Reads the machine from what the kernel tells, without launching a tool. Calls may overlap.
class ProcfsMetricsReader final : public SystemMetricsReader {
public:
    /// The machine that this runs on, and the home directory of this account.
    ProcfsMetricsReader();

    ProcfsMetricsReader(std::unique_ptr<HomeVolume> homeVolume, const ProcfsMachine& machine,
                        const std::string& sysRoot);

    std::vector<ProcessSample> readProcesses() override;
    MemorySnapshot readMemory() override;
    std::string readPressureText() override;
    DiskSnapshot readDiskSnapshot() override;

private:
    const std::unique_ptr<HomeVolume> homeVolume_;
    const double pageSize_;
    const std::string blockDirectory_;
    const KernelFile memoryInfo_;
    const KernelFile memoryPressure_;
    ProcfsProcessTable table_;
};

}  // namespace tallowcrest

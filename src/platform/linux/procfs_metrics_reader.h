#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/linux/kernel_file.h"
#include "platform/linux/procfs_process_table.h"
#include "sampling/system_metrics_reader.h"

namespace tallowcrest {

/// Reads the metrics from the kernel, without launching tools. Any thread, several at once.
class ProcfsMetricsReader final : public SystemMetricsReader {
public:
    /// Reads this machine and the volume of the user's home directory.
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

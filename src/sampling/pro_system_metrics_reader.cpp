#include "sampling/pro_system_metrics_reader.h"

#include "sampling/memory.h"
#include "sampling/ps_parser.h"
#include "sampling/vm_stat_parser.h"

namespace tallowcrest {

std::vector<ProcessSample> ProSystemMetricsReader::readProcesses() {
    const auto startTimes = startTimes_ ? startTimes_() : StartTimes::result_type{};
    std::vector<ProcessSample> rows =
        parseProcessRows(runner_.runMetricTool("/bin/ps", {"-axo", "pid=,pcpu=,pmem=,rss=,comm="}));
    for (ProcessSample& row : rows) {
        const auto known = startTimes.find(row.pid);
        row.startTime = known != startTimes.end() ? known->second : 0;
    }
    return rows;
}

MemorySnapshot ProSystemMetricsReader::readMemory() {
    const std::string memsize = runner_.runMetricTool("/usr/sbin/sysctl", {"-n", "hw.memsize"});
    const std::string pages = runner_.runMetricTool("/usr/bin/vm_stat", {});
    return memorySnapshot(memsize, pages);
}

std::string ProSystemMetricsReader::readPressureText() {
    return pressureText(runner_.runMetricTool("/usr/bin/memory_pressure", {"-Q"}));
}

DiskSnapshot ProSystemMetricsReader::readDiskSnapshot() {
    return homeVolume_->readDiskSnapshot();
}

}  // namespace tallowcrest

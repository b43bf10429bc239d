#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/local_records.h"
#include "platform/base/unique_fd.h"
#include "platform/linux/procfs_clocks.h"
#include "platform/linux/procfs_pid_list.h"
#include "sampling/proc_parser.h"

namespace tallowcrest {

/// The path of the process file system and the units of its figures.
struct ProcfsMachine {
    std::string procRoot = "/proc";
    double pageSize = 4096.0;
    double ticksPerSecond = 100.0;
    double physicalBytes = 0.0;  ///< 0 when unknown; memory shares are then 0

    /// The values of this machine.
    static ProcfsMachine current();
};

/// Reads the process table from /proc. A process whose CPU clock has not advanced since the
/// previous reading has not run and so has hardly changed, and only its clock is read. For the
/// others one small file is read through a descriptor that stays open. Any thread; overlapping
/// calls wait for each other.
class ProcfsProcessTable {
public:
    /// Uses the clocks of the system.
    explicit ProcfsProcessTable(ProcfsMachine machine);
    ProcfsProcessTable(ProcfsMachine machine, ProcfsClocks clocks);

    /// All processes, ascending by pid, without those that cannot be read. Empty when the directory
    /// cannot be listed.
    ///
    /// `cpu` is in percent of one core, since the previous reading of the row. At its first reading
    /// it is the average since the process started, taken as at least one second. A reading less
    /// than `shortestInterval` after the previous one repeats the figure, as the load over a
    /// shorter time is meaningless.
    std::vector<ProcessSample> readProcesses();

    static constexpr std::chrono::milliseconds shortestInterval{200};
    /// The memory of an idle process changes too when the kernel reclaims some of it. So each row
    /// is read in full once in this many samples, a few rows in each sample.
    static constexpr std::uint64_t samplesPerFullReading = 16;

private:
    struct Process {
        std::int32_t pid = 0;
        UniqueFD stat;
        /// Absent before the first reading, and again after the process has ended.
        std::optional<std::uint64_t> startTicks;
        std::uint64_t cpuTicks = 0;
        std::optional<std::chrono::nanoseconds> cpuTime;  ///< absent when only ticks are known
        std::uint64_t residentPages = 0;
        std::chrono::nanoseconds readAt{0};
        double cpu = 0.0;
        std::uint64_t startCode = 0;
        std::uint64_t startStack = 0;
        std::string name;
        std::string command;
        bool commandIsFinal = false;
    };

    void updateProcesses();
    std::optional<std::chrono::nanoseconds> readCPUTime(std::int32_t pid) const;
    bool readRow(Process& process, std::optional<std::chrono::nanoseconds> cpuTime);
    bool readInFull(Process& process, std::optional<std::chrono::nanoseconds> cpuTime);
    bool isIdle(const Process& process, std::optional<std::chrono::nanoseconds> cpuTime) const;
    void fillRow(const Process& process, ProcessSample& row) const;
    std::string_view readStat(Process& process, std::span<char> buffer);
    UniqueFD openStat(std::int32_t pid);
    void updateLoad(Process& process, const ProcessStat& stat,
                    std::optional<std::chrono::nanoseconds> cpuTime, std::chrono::nanoseconds now,
                    bool isFirstReading);
    void updateCommand(Process& process, const ProcessStat& stat, bool isFirstReading);
    void updateDescriptorLimit();
    void releaseDescriptors();

    const ProcfsMachine machine_;
    const ProcfsClocks clocks_;
    std::mutex lock_;
    UniqueFD directory_;
    ProcfsPIDList pidList_;
    std::vector<std::int32_t> pids_;
    /// The calling thread, whose id would give the CPU time of this process although it is no pid;
    /// 0 for the main thread, whose id is the pid.
    std::int32_t readingThread_ = 0;
    std::uint64_t sampleNumber_ = 0;
    std::vector<Process> processes_;  ///< ascending by pid
    std::vector<Process> merged_;     ///< scratch; a member to keep its capacity
    std::size_t openDescriptors_ = 0;
    std::size_t descriptorLimit_ = 0;
    std::size_t shortageLimit_;  ///< lowered when descriptors run out
};

}  // namespace tallowcrest

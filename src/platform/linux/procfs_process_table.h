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

/// Where the process file system is, and the units it counts in.
struct ProcfsMachine {
    std::string procRoot = "/proc";
    double pageSize = 4096.0;
    double ticksPerSecond = 100.0;
    double physicalBytes = 0.0;  ///< 0 when unknown; shares of it are then 0

    /// The machine that this runs on.
    static ProcfsMachine current();
};

/// The process table, read natively. A process that has not run since the previous reading cannot
/// have changed by its own doing, so its processor clock is all that is looked at; for one that
/// has, one small file is read through a descriptor that stays open. Any thread; overlapping calls
/// wait for each other.
class ProcfsProcessTable {
public:
    /// With the clocks of the system.
    explicit ProcfsProcessTable(ProcfsMachine machine);
    ProcfsProcessTable(ProcfsMachine machine, ProcfsClocks clocks);

    /// Every process, ascending by pid. A row that cannot be read is left out; empty when the table
    /// cannot be listed.
    ///
    /// `cpu` is the share of one core since the row's previous reading, and on its first over the
    /// process's whole life, as if that had lasted a second at least. A reading less than
    /// `shortestInterval` after the previous one repeats that one's figure: the load of a shorter
    /// time would say nothing.
    std::vector<ProcessSample> readProcesses();

    static constexpr std::chrono::milliseconds shortestInterval{200};
    /// Others can change an idle process too, by taking memory from it. So each row is read in full
    /// once in so many samples, a few rows in each.
    static constexpr std::uint64_t samplesPerFullReading = 16;

private:
    struct Process {
        std::int32_t pid = 0;
        UniqueFD stat;
        /// Absent before the first reading, and again when the number went to another process.
        std::optional<std::uint64_t> startTicks;
        std::uint64_t busyTicks = 0;
        std::optional<std::chrono::nanoseconds> busyTime;  ///< absent: counted in ticks
        std::uint64_t residentPages = 0;
        std::chrono::nanoseconds readAt{0};
        double cpu = 0.0;
        std::uint64_t startCode = 0;
        std::uint64_t startStack = 0;
        std::string name;
        std::string command;
        bool commandIsFinal = false;
    };

    void followList();
    std::optional<std::chrono::nanoseconds> readBusyTime(std::int32_t pid) const;
    bool readRow(Process& process, std::optional<std::chrono::nanoseconds> busyTime);
    bool readInFull(Process& process, std::optional<std::chrono::nanoseconds> busyTime);
    bool isIdle(const Process& process, std::optional<std::chrono::nanoseconds> busyTime) const;
    void fillRow(const Process& process, ProcessSample& row) const;
    std::string_view readStat(Process& process, std::span<char> buffer);
    UniqueFD openStat(std::int32_t pid);
    void measureLoad(Process& process, const ProcessStat& stat,
                     std::optional<std::chrono::nanoseconds> busyTime, std::chrono::nanoseconds now,
                     bool isFirstReading);
    void followCommand(Process& process, const ProcessStat& stat, bool isFirstReading);
    void chooseKeepLimit();
    void shedDescriptors();

    const ProcfsMachine machine_;
    const ProcfsClocks clocks_;
    std::mutex lock_;
    UniqueFD directory_;
    ProcfsPidFollower follower_;
    std::vector<std::int32_t> listed_;
    /// Its number has a clock, that of this process, but is no process's. 0: it is the main thread,
    /// which bears the process's own number.
    std::int32_t readingThread_ = 0;
    std::uint64_t sampleNumber_ = 0;
    std::vector<Process> processes_;  ///< ascending by pid
    std::vector<Process> merged_;     ///< kept for its capacity
    std::size_t keptDescriptors_ = 0;
    std::size_t keepLimit_ = 0;
    std::size_t learnedLimit_;
};

}  // namespace tallowcrest

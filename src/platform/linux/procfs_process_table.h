#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/local_records.h"
#include "platform/posix/unique_fd.h"
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

/// The two times that processor time is set against.
struct ProcfsClocks {
    using Reading = std::function<std::chrono::nanoseconds()>;

    Reading monotonic;  ///< stands still while the machine is suspended
    Reading sinceBoot;  ///< counts suspension too, like the kernel's start times

    static ProcfsClocks system();
};

/// The process table, read natively. Steady state costs one listing, and one small read per process
/// through a descriptor that stays open. Any thread; overlapping calls wait for each other.
class ProcfsProcessTable {
public:
    explicit ProcfsProcessTable(ProcfsMachine machine,
                                ProcfsClocks clocks = ProcfsClocks::system());

    /// Every process, ascending by pid. A row that cannot be read is left out; empty when the table
    /// cannot be listed.
    ///
    /// `cpu` is the share of one core since the row's previous reading, and over the process's
    /// whole life on its first. Kernels count processor time in ticks of 10 ms: a reading less than
    /// `shortestInterval` after the previous one repeats that one's figure, for the ticks of a
    /// shorter time would say nothing.
    std::vector<ProcessSample> readProcesses();

    static constexpr std::chrono::milliseconds shortestInterval{200};

private:
    struct Process {
        std::int32_t pid = 0;
        UniqueFD stat;
        /// Absent before the first reading, and again when the number went to another process.
        std::optional<std::uint64_t> startTicks;
        std::uint64_t busyTicks = 0;
        std::chrono::nanoseconds readAt{0};
        double cpu = 0.0;
        std::uint64_t startCode = 0;
        std::uint64_t startStack = 0;
        std::string name;
        std::string command;
        bool commandIsFinal = false;
    };

    void followList();
    bool readRow(Process& process, ProcessSample& row);
    std::string_view readStat(Process& process, std::span<char> buffer);
    UniqueFD openStat(std::int32_t pid);
    void measureLoad(Process& process, const ProcessStat& stat, std::chrono::nanoseconds now,
                     bool isFirstReading);
    void followCommand(Process& process, const ProcessStat& stat, bool isFirstReading);
    void chooseKeepLimit();
    void shedDescriptors();

    const ProcfsMachine machine_;
    const ProcfsClocks clocks_;
    std::mutex lock_;
    UniqueFD directory_;
    std::vector<std::int32_t> listed_;
    std::vector<Process> processes_;  ///< ascending by pid
    std::vector<Process> merged_;     ///< kept for its capacity
    std::size_t keptDescriptors_ = 0;
    std::size_t keepLimit_ = 0;
    std::size_t learnedLimit_;
};

}  // namespace tallowcrest

#include "platform/linux/procfs_process_table.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <utility>

#include "platform/linux/kernel_file.h"
#include "platform/linux/procfs_command.h"
#include "platform/linux/procfs_pid_list.h"
#include "sampling/binary_units.h"

namespace tallowcrest {
namespace {

double seconds(std::chrono::nanoseconds duration) {
    return std::chrono::duration<double>(duration).count();
}

double positiveSysconf(int name, double fallback) {
    const long value = ::sysconf(name);
    return value > 0 ? static_cast<double>(value) : fallback;
}

}  // namespace

ProcfsMachine ProcfsMachine::current() {
    ProcfsMachine machine;
    machine.pageSize = positiveSysconf(_SC_PAGESIZE, machine.pageSize);
    machine.ticksPerSecond = positiveSysconf(_SC_CLK_TCK, machine.ticksPerSecond);
    machine.physicalBytes = positiveSysconf(_SC_PHYS_PAGES, 0.0) * machine.pageSize;
    return machine;
}

ProcfsProcessTable::ProcfsProcessTable(ProcfsMachine machine)
    : ProcfsProcessTable(machine, ProcfsClocks::system(machine.procRoot)) {}

ProcfsProcessTable::ProcfsProcessTable(ProcfsMachine machine, ProcfsClocks clocks)
    : machine_(std::move(machine)),
      clocks_(std::move(clocks)),
      pidList_(machine_.procRoot,
               clocks_.processTime
                   ? [this](std::int32_t pid) { return readCPUTime(pid).has_value(); }
                   : ProcfsPIDList::Exists()),
      shortageLimit_(std::numeric_limits<std::size_t>::max()) {}

std::vector<ProcessSample> ProcfsProcessTable::readProcesses() {
    const std::lock_guard guard(lock_);
    if (!directory_.valid()) {
        directory_ =
            UniqueFD(::open(machine_.procRoot.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }
    if (!directory_.valid()) {
        return {};
    }
    readingThread_ = ::gettid() == ::getpid() ? 0 : ::gettid();
    if (!pidList_.update(directory_.get(), pids_)) {
        directory_.reset();
        return {};
    }
    ++sampleNumber_;
    updateProcesses();
    updateDescriptorLimit();
    std::vector<ProcessSample> rows;
    rows.reserve(processes_.size());
    pids_.clear();
    for (Process& process : processes_) {
        const auto cpuTime = readCPUTime(process.pid);
        if (readRow(process, cpuTime)) {
            fillRow(process, rows.emplace_back());
        } else if (clocks_.processTime && !cpuTime) {
            continue;
        }
        pids_.push_back(process.pid);
    }
    return rows;
}

/// Removes the processes that are no longer in `pids_` and adds the new ones.
void ProcfsProcessTable::updateProcesses() {
    const bool isUnchanged =
        std::equal(processes_.begin(), processes_.end(), pids_.begin(), pids_.end(),
                   [](const Process& process, std::int32_t pid) { return process.pid == pid; });
    if (isUnchanged) {
        return;
    }
    merged_.clear();
    merged_.reserve(pids_.size());
    openDescriptors_ = 0;
    auto known = processes_.begin();
    for (const std::int32_t pid : pids_) {
        while (known != processes_.end() && known->pid < pid) {
            ++known;
        }
        if (known != processes_.end() && known->pid == pid) {
            if (known->stat.valid()) {
                ++openDescriptors_;
            }
            merged_.push_back(std::move(*known));
        } else {
            merged_.emplace_back().pid = pid;
        }
    }
    processes_.swap(merged_);
    merged_.clear();
}

std::optional<std::chrono::nanoseconds> ProcfsProcessTable::readCPUTime(std::int32_t pid) const {
    return clocks_.processTime && pid != readingThread_ ? clocks_.processTime(pid) : std::nullopt;
}

bool ProcfsProcessTable::readRow(Process& process,
                                 std::optional<std::chrono::nanoseconds> cpuTime) {
    if (process.cpuTime && !cpuTime) {
        // It has ended. A thread that has its number now has a `stat` file under the same path.
        return false;
    }
    if (!isIdle(process, cpuTime)) {
        return readInFull(process, cpuTime);
    }
    const std::chrono::nanoseconds now = clocks_.monotonic();
    if (now - process.readAt >= shortestInterval) {
        process.cpu = 0.0;
        process.readAt = now;
    }
    return true;
}

/// Whether the process has not run since its previous reading. If its pid had been reused, the
/// clock would show another time.
bool ProcfsProcessTable::isIdle(const Process& process,
                                std::optional<std::chrono::nanoseconds> cpuTime) const {
    const auto turn =
        (sampleNumber_ + static_cast<std::uint64_t>(process.pid)) % samplesPerFullReading;
    return turn != 0 && cpuTime && cpuTime == process.cpuTime && process.startTicks &&
           process.commandIsFinal;
}

bool ProcfsProcessTable::readInFull(Process& process,
                                    std::optional<std::chrono::nanoseconds> cpuTime) {
    std::array<char, 1024> buffer;
    const auto stat = parseProcessStat(readStat(process, buffer));
    if (!stat) {
        // Makes the process count as running until it has been read again.
        process.cpuTime.reset();
        return false;
    }
    // Read for each row, because the machine may stall between two rows.
    const std::chrono::nanoseconds now = clocks_.monotonic();
    const bool isFirstReading = process.startTicks != stat->startTicks;
    process.startTicks = stat->startTicks;
    process.residentPages = stat->residentPages;
    updateLoad(process, *stat, cpuTime, now, isFirstReading);
    updateCommand(process, *stat, isFirstReading);
    return true;
}

void ProcfsProcessTable::fillRow(const Process& process, ProcessSample& row) const {
    const double residentBytes = static_cast<double>(process.residentPages) * machine_.pageSize;
    row.pid = process.pid;
    row.cpu = process.cpu;
    row.memoryPercent =
        machine_.physicalBytes > 0.0 ? residentBytes / machine_.physicalBytes * 100.0 : 0.0;
    row.rssMB = residentBytes * megabytesPerByte;
    row.command = process.command;
    row.arguments = process.command;
    row.startTime = process.startTicks.value_or(0);
}

void ProcfsProcessTable::updateLoad(Process& process, const ProcessStat& stat,
                                    std::optional<std::chrono::nanoseconds> cpuTime,
                                    std::chrono::nanoseconds now, bool isFirstReading) {
    const std::uint64_t addable = std::numeric_limits<std::uint64_t>::max() - stat.systemTicks;
    const std::uint64_t cpuTicks = std::min(stat.userTicks, addable) + stat.systemTicks;
    double newTicks = static_cast<double>(cpuTicks);
    double elapsedTicks = 0.0;
    if (isFirstReading) {
        const double lifetime = seconds(clocks_.sinceBoot()) * machine_.ticksPerSecond -
                                static_cast<double>(stat.startTicks);
        // Otherwise the work of starting a program would show as a high load.
        elapsedTicks = std::max(lifetime, machine_.ticksPerSecond);
    } else {
        if (now - process.readAt < shortestInterval) {
            return;
        }
        if (cpuTime && process.cpuTime) {
            newTicks = seconds(*cpuTime - *process.cpuTime) * machine_.ticksPerSecond;
        } else {
            newTicks = cpuTicks > process.cpuTicks
                           ? static_cast<double>(cpuTicks - process.cpuTicks)
                           : 0.0;
        }
        elapsedTicks = seconds(now - process.readAt) * machine_.ticksPerSecond;
    }
    process.cpu = elapsedTicks > 0.0 ? std::max(newTicks, 0.0) / elapsedTicks * 100.0 : 0.0;
    process.cpuTicks = cpuTicks;
    process.cpuTime = cpuTime;
    process.readAt = now;
}

/// The command of a program is determined once. A changed name or memory address shows that the
/// process has executed another program.
void ProcfsProcessTable::updateCommand(Process& process, const ProcessStat& stat,
                                       bool isFirstReading) {
    const bool isKnown = !isFirstReading && process.commandIsFinal;
    // A zombie has no executable and no memory any more, so it keeps its command.
    if (isKnown && stat.hasEnded()) {
        return;
    }
    if (isKnown && process.startCode == stat.startCode && process.startStack == stat.startStack &&
        process.name == stat.name) {
        return;
    }
    process.startCode = stat.startCode;
    process.startStack = stat.startStack;
    process.name = stat.name;
    ProcfsCommand command =
        resolveProcfsCommand(directory_.get(), process.pid, stat.name, stat.isKernelThread());
    process.command = std::move(command.text);
    process.commandIsFinal = command.isFinal;
}

/// The content of the process's `stat` file; empty when it cannot be read.
std::string_view ProcfsProcessTable::readStat(Process& process, std::span<char> buffer) {
    if (process.stat.valid()) {
        // The descriptor refers to this process: once that has ended, nothing can be read, even if
        // its pid has been reused.
        if (const std::string_view text = readFromStart(process.stat.get(), buffer);
            !text.empty()) {
            return text;
        }
        process.stat.reset();
        --openDescriptors_;
        process.startTicks.reset();
        process.cpuTime.reset();
    }
    UniqueFD opened = openStat(process.pid);
    if (!opened.valid()) {
        return {};
    }
    const std::string_view text = readFromStart(opened.get(), buffer);
    if (!text.empty() && openDescriptors_ < descriptorLimit_) {
        process.stat = std::move(opened);
        ++openDescriptors_;
    }
    return text;
}

UniqueFD ProcfsProcessTable::openStat(std::int32_t pid) {
    std::array<char, 32> path;
    writeProcfsPath(path.data(), pid, "stat");
    UniqueFD opened(::openat(directory_.get(), path.data(), O_RDONLY | O_CLOEXEC));
    if (!opened.valid() && (errno == EMFILE || errno == ENFILE) && openDescriptors_ > 0) {
        releaseDescriptors();
        opened = UniqueFD(::openat(directory_.get(), path.data(), O_RDONLY | O_CLOEXEC));
    }
    return opened;
}

/// Determines how many descriptors may stay open. A quarter of the process's limit, and at least
/// 64, is reserved for the rest of the program. The files of further rows are opened, read and
/// closed.
void ProcfsProcessTable::updateDescriptorLimit() {
    constexpr std::size_t smallestReserve = 64;
    constexpr std::size_t recovery = 16;
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) {
        limit.rlim_cur = 0;
    }
    const auto limitOfProcess = static_cast<std::size_t>(limit.rlim_cur);
    const std::size_t reserve = std::max(smallestReserve, limitOfProcess / 4);
    // Grows slowly after a shortage, so that it does not cause the next one immediately.
    if (shortageLimit_ < limitOfProcess) {
        shortageLimit_ += recovery;
    }
    descriptorLimit_ =
        std::min(limitOfProcess > reserve ? limitOfProcess - reserve : 0, shortageLimit_);
}

/// Closes half of the open descriptors, because other parts of the process or machine need them.
void ProcfsProcessTable::releaseDescriptors() {
    shortageLimit_ = openDescriptors_ / 2;
    descriptorLimit_ = std::min(descriptorLimit_, shortageLimit_);
    for (auto process = processes_.rbegin();
         process != processes_.rend() && openDescriptors_ > shortageLimit_; ++process) {
        if (process->stat.valid()) {
            process->stat.reset();
            --openDescriptors_;
        }
    }
}

}  // namespace tallowcrest

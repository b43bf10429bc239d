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

double positiveSystemFigure(int name, double otherwise) {
    const long figure = ::sysconf(name);
    return figure > 0 ? static_cast<double>(figure) : otherwise;
}

}  // namespace

ProcfsMachine ProcfsMachine::current() {
    ProcfsMachine machine;
    machine.pageSize = positiveSystemFigure(_SC_PAGESIZE, machine.pageSize);
    machine.ticksPerSecond = positiveSystemFigure(_SC_CLK_TCK, machine.ticksPerSecond);
    machine.physicalBytes = positiveSystemFigure(_SC_PHYS_PAGES, 0.0) * machine.pageSize;
    return machine;
}

ProcfsProcessTable::ProcfsProcessTable(ProcfsMachine machine)
    : ProcfsProcessTable(machine, ProcfsClocks::system(machine.procRoot)) {}

ProcfsProcessTable::ProcfsProcessTable(ProcfsMachine machine, ProcfsClocks clocks)
    : machine_(std::move(machine)),
      clocks_(std::move(clocks)),
      follower_(machine_.procRoot,
                clocks_.processTime
                    ? [this](std::int32_t pid) { return readBusyTime(pid).has_value(); }
                    : ProcfsPidFollower::Exists()),
      learnedLimit_(std::numeric_limits<std::size_t>::max()) {}

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
    if (!follower_.follow(directory_.get(), listed_)) {
        directory_.reset();
        return {};
    }
    ++sampleNumber_;
    followList();
    chooseKeepLimit();
    std::vector<ProcessSample> rows;
    rows.reserve(processes_.size());
    listed_.clear();
    for (Process& process : processes_) {
        const auto busyTime = readBusyTime(process.pid);
        if (readRow(process, busyTime)) {
            fillRow(process, rows.emplace_back());
        } else if (clocks_.processTime && !busyTime) {
            continue;
        }
        listed_.push_back(process.pid);
    }
    return rows;
}

/// Drops the processes that are listed no more and takes in the new ones.
void ProcfsProcessTable::followList() {
    const bool isUnchanged =
        std::equal(processes_.begin(), processes_.end(), listed_.begin(), listed_.end(),
                   [](const Process& process, std::int32_t pid) { return process.pid == pid; });
    if (isUnchanged) {
        return;
    }
    merged_.clear();
    merged_.reserve(listed_.size());
    keptDescriptors_ = 0;
    auto known = processes_.begin();
    for (const std::int32_t pid : listed_) {
        while (known != processes_.end() && known->pid < pid) {
            ++known;
        }
        if (known != processes_.end() && known->pid == pid) {
            if (known->stat.valid()) {
                ++keptDescriptors_;
            }
            merged_.push_back(std::move(*known));
        } else {
            merged_.emplace_back().pid = pid;
        }
    }
    processes_.swap(merged_);
    merged_.clear();
}

std::optional<std::chrono::nanoseconds> ProcfsProcessTable::readBusyTime(std::int32_t pid) const {
    return clocks_.processTime && pid != readingThread_ ? clocks_.processTime(pid) : std::nullopt;
}

bool ProcfsProcessTable::readRow(Process& process,
                                 std::optional<std::chrono::nanoseconds> busyTime) {
    if (process.busyTime && !busyTime) {
        // It is gone. A thread that bears its number now has a file in the same place.
        return false;
    }
    if (!isIdle(process, busyTime)) {
        return readInFull(process, busyTime);
    }
    const std::chrono::nanoseconds now = clocks_.monotonic();
    if (now - process.readAt >= shortestInterval) {
        process.cpu = 0.0;
        process.readAt = now;
    }
    return true;
}

/// Whether the process is known not to have run since its previous reading. Had its number gone to
/// another process, that one's clock would read differently.
bool ProcfsProcessTable::isIdle(const Process& process,
                                std::optional<std::chrono::nanoseconds> busyTime) const {
    const auto turn =
        (sampleNumber_ + static_cast<std::uint64_t>(process.pid)) % samplesPerFullReading;
    return turn != 0 && busyTime && busyTime == process.busyTime && process.startTicks &&
           process.commandIsFinal;
}

bool ProcfsProcessTable::readInFull(Process& process,
                                    std::optional<std::chrono::nanoseconds> busyTime) {
    std::array<char, 1024> buffer;
    const auto stat = parseProcessStat(readStat(process, buffer));
    if (!stat) {
        // Not idle until it has been read again, whatever its clock says.
        process.busyTime.reset();
        return false;
    }
    // Taken for each row: the machine can stall between two of them.
    const std::chrono::nanoseconds now = clocks_.monotonic();
    const bool isFirstReading = process.startTicks != stat->startTicks;
    process.startTicks = stat->startTicks;
    process.residentPages = stat->residentPages;
    measureLoad(process, *stat, busyTime, now, isFirstReading);
    followCommand(process, *stat, isFirstReading);
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

void ProcfsProcessTable::measureLoad(Process& process, const ProcessStat& stat,
                                     std::optional<std::chrono::nanoseconds> busyTime,
                                     std::chrono::nanoseconds now, bool isFirstReading) {
    const std::uint64_t room = std::numeric_limits<std::uint64_t>::max() - stat.systemTicks;
    const std::uint64_t busyTicks = std::min(stat.userTicks, room) + stat.systemTicks;
    double newTicks = static_cast<double>(busyTicks);
    double elapsedTicks = 0.0;
    if (isFirstReading) {
        const double lifetime = seconds(clocks_.sinceBoot()) * machine_.ticksPerSecond -
                                static_cast<double>(stat.startTicks);
        // What a program takes to start would otherwise stand for a busy process.
        elapsedTicks = std::max(lifetime, machine_.ticksPerSecond);
    } else {
        if (now - process.readAt < shortestInterval) {
            return;
        }
        if (busyTime && process.busyTime) {
            newTicks = seconds(*busyTime - *process.busyTime) * machine_.ticksPerSecond;
        } else {
            newTicks = busyTicks > process.busyTicks
                           ? static_cast<double>(busyTicks - process.busyTicks)
                           : 0.0;
        }
        elapsedTicks = seconds(now - process.readAt) * machine_.ticksPerSecond;
    }
    process.cpu = elapsedTicks > 0.0 ? std::max(newTicks, 0.0) / elapsedTicks * 100.0 : 0.0;
    process.busyTicks = busyTicks;
    process.busyTime = busyTime;
    process.readAt = now;
}

/// The command is settled once for a program. Another name or another place in memory tells that
/// the process executed a new one.
void ProcfsProcessTable::followCommand(Process& process, const ProcessStat& stat,
                                       bool isFirstReading) {
    const bool isSettled = !isFirstReading && process.commandIsFinal;
    // A process that has ended has neither an executable nor memory, but it still ran what it ran.
    if (isSettled && stat.hasEnded()) {
        return;
    }
    if (isSettled && process.startCode == stat.startCode && process.startStack == stat.startStack &&
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

/// What the process's `stat` file holds, empty when it cannot be had.
std::string_view ProcfsProcessTable::readStat(Process& process, std::span<char> buffer) {
    if (process.stat.valid()) {
        // The descriptor stands for this very process: once that is gone it reads nothing, even
        // when the number has gone to another one.
        if (const std::string_view text = readFromStart(process.stat.get(), buffer);
            !text.empty()) {
            return text;
        }
        process.stat.reset();
        --keptDescriptors_;
        process.startTicks.reset();
        process.busyTime.reset();
    }
    UniqueFD opened = openStat(process.pid);
    if (!opened.valid()) {
        return {};
    }
    const std::string_view text = readFromStart(opened.get(), buffer);
    if (!text.empty() && keptDescriptors_ < keepLimit_) {
        process.stat = std::move(opened);
        ++keptDescriptors_;
    }
    return text;
}

UniqueFD ProcfsProcessTable::openStat(std::int32_t pid) {
    std::array<char, 32> path;
    writeProcfsPath(path.data(), pid, "stat");
    UniqueFD opened(::openat(directory_.get(), path.data(), O_RDONLY | O_CLOEXEC));
    if (!opened.valid() && (errno == EMFILE || errno == ENFILE) && keptDescriptors_ > 0) {
        shedDescriptors();
        opened = UniqueFD(::openat(directory_.get(), path.data(), O_RDONLY | O_CLOEXEC));
    }
    return opened;
}

/// How many descriptors may stay open: a quarter of what the process is granted, and never less
/// than 64, is left to the rest of the program. Rows beyond that are opened, read and closed.
void ProcfsProcessTable::chooseKeepLimit() {
    constexpr std::size_t smallestReserve = 64;
    constexpr std::size_t recovery = 16;
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) {
        limit.rlim_cur = 0;
    }
    const auto granted = static_cast<std::size_t>(limit.rlim_cur);
    const std::size_t reserve = std::max(smallestReserve, granted / 4);
    // After a shortage the table grows back slowly, so that it does not run into the next at once.
    if (learnedLimit_ < granted) {
        learnedLimit_ += recovery;
    }
    keepLimit_ = std::min(granted > reserve ? granted - reserve : 0, learnedLimit_);
}

/// Gives half of the kept descriptors back: others in this process or on this machine need them.
void ProcfsProcessTable::shedDescriptors() {
    learnedLimit_ = keptDescriptors_ / 2;
    keepLimit_ = std::min(keepLimit_, learnedLimit_);
    for (auto process = processes_.rbegin();
         process != processes_.rend() && keptDescriptors_ > learnedLimit_; ++process) {
        if (process->stat.valid()) {
            process->stat.reset();
            --keptDescriptors_;
        }
    }
}

}  // namespace tallowcrest

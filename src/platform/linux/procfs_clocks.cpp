#include "platform/linux/procfs_clocks.h"

#include <unistd.h>

#include <ctime>

#include "platform/linux/process_identity.h"

namespace tallowcrest {
namespace {

std::chrono::nanoseconds duration(const timespec& time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

std::chrono::nanoseconds readClock(clockid_t clock) {
    timespec time{};
    ::clock_gettime(clock, &time);
    return duration(time);
}

/// Processor time in nanoseconds, where the tick counters of the `stat` file know 10 ms.
std::optional<std::chrono::nanoseconds> readProcessTime(std::int32_t pid) {
    // The number of a process's clock, as the kernel's interface lays it down. The library's own
    // function asks the kernel once more whether that clock exists, which reading it tells anyway.
    constexpr std::uint32_t scheduledTime = 2;
    const auto clock =
        static_cast<clockid_t>(~static_cast<std::uint32_t>(pid) << 3U | scheduledTime);
    timespec time{};
    if (pid <= 0 || ::clock_gettime(clock, &time) != 0) {
        return std::nullopt;
    }
    return duration(time);
}

/// Whether this kernel has clocks of processes at all. One that knows its own process's alone would
/// make all others look gone, hence the first process, which is always there.
bool hasProcessClocks() {
    constexpr std::int32_t firstProcess = 1;
    return readProcessTime(::getpid()) && readProcessTime(firstProcess);
}

}  // namespace

ProcfsClocks ProcfsClocks::system(const std::string& procRoot) {
    ProcfsClocks clocks{
        [] { return readClock(CLOCK_MONOTONIC); }, [] { return readClock(CLOCK_BOOTTIME); }, {}};
    if (procfsCountsAsWeDo(procRoot) && hasProcessClocks()) {
        clocks.processTime = readProcessTime;
    }
    return clocks;
}

}  // namespace tallowcrest

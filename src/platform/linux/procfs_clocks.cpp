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

/// CPU time in nanoseconds; the tick counters of the `stat` file have a resolution of 10 ms only.
std::optional<std::chrono::nanoseconds> readProcessTime(std::int32_t pid) {
    // The clock id of a process as the kernel defines it. `clock_getcpuclockid` would make a second
    // system call to test whether the clock exists.
    constexpr std::uint32_t scheduledTime = 2;
    const auto clock =
        static_cast<clockid_t>(~static_cast<std::uint32_t>(pid) << 3U | scheduledTime);
    timespec time{};
    if (pid <= 0 || ::clock_gettime(clock, &time) != 0) {
        return std::nullopt;
    }
    return duration(time);
}

/// Whether the clocks of processes can be read. Process 1, which always exists, is tested too:
/// otherwise a system that shows a process only its own clock would make all others look ended.
bool hasProcessClocks() {
    constexpr std::int32_t firstProcess = 1;
    return readProcessTime(::getpid()) && readProcessTime(firstProcess);
}

}  // namespace

ProcfsClocks ProcfsClocks::system(const std::string& procRoot) {
    ProcfsClocks clocks{
        [] { return readClock(CLOCK_MONOTONIC); }, [] { return readClock(CLOCK_BOOTTIME); }, {}};
    if (procfsShowsOwnPIDNamespace(procRoot) && hasProcessClocks()) {
        clocks.processTime = readProcessTime;
    }
    return clocks;
}

}  // namespace tallowcrest

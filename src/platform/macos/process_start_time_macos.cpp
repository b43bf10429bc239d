#include "platform/macos/process_start_time_macos.h"

#include <sys/sysctl.h>
#include <sys/time.h>
#include <sys/types.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <limits>
#include <vector>

namespace tallowcrest {
namespace {

std::uint64_t startTimeOf(const kinfo_proc& process) {
    constexpr std::uint64_t microsecondsPerSecond = 1'000'000;
    const timeval& started = process.kp_proc.p_starttime;
    return static_cast<std::uint64_t>(started.tv_sec) * microsecondsPerSecond +
           static_cast<std::uint64_t>(started.tv_usec);
}

std::vector<kinfo_proc> allProcesses() {
    std::array<int, 3> name{CTL_KERN, KERN_PROC, KERN_PROC_ALL};
    const auto length = static_cast<unsigned>(name.size());
    // Between the two calls more processes may start than the returned size has room for. After a
    // few attempts the list is left empty for this time.
    constexpr int attempts = 4;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        std::size_t size = 0;
        if (::sysctl(name.data(), length, nullptr, &size, nullptr, 0) != 0) {
            return {};
        }
        std::vector<kinfo_proc> processes(size / sizeof(kinfo_proc) + 1);
        size = processes.size() * sizeof(kinfo_proc);
        if (::sysctl(name.data(), length, processes.data(), &size, nullptr, 0) == 0) {
            processes.resize(size / sizeof(kinfo_proc));
            return processes;
        }
        if (errno != ENOMEM) {
            return {};
        }
    }
    return {};
}

}  // namespace

std::uint64_t processStartTime(std::int64_t pid) {
    if (pid < 1 || pid > std::numeric_limits<pid_t>::max()) {
        return 0;
    }
    std::array<int, 4> name{CTL_KERN, KERN_PROC, KERN_PROC_PID, static_cast<int>(pid)};
    kinfo_proc process{};
    std::size_t size = sizeof process;
    const int status =
        ::sysctl(name.data(), static_cast<unsigned>(name.size()), &process, &size, nullptr, 0);
    // For an unused pid the call succeeds and writes nothing.
    if (status != 0 || size < sizeof process || process.kp_proc.p_pid != pid) {
        return 0;
    }
    return startTimeOf(process);
}

std::unordered_map<std::int64_t, std::uint64_t> processStartTimes() {
    std::unordered_map<std::int64_t, std::uint64_t> startTimes;
    for (const kinfo_proc& process : allProcesses()) {
        startTimes.emplace(process.kp_proc.p_pid, startTimeOf(process));
    }
    return startTimes;
}

}  // namespace tallowcrest

#include "platform/macos/process_start_time_macos.h"

#include <sys/sysctl.h>
#include <sys/time.h>
#include <sys/types.h>

#include <array>
#include <cstddef>
#include <limits>

namespace tallowcrest {

std::uint64_t processStartTime(std::int64_t pid) {
    if (pid < 1 || pid > std::numeric_limits<pid_t>::max()) {
        return 0;
    }
    std::array<int, 4> name{CTL_KERN, KERN_PROC, KERN_PROC_PID, static_cast<int>(pid)};
    kinfo_proc process{};
    std::size_t size = sizeof process;
    const int status =
        ::sysctl(name.data(), static_cast<unsigned>(name.size()), &process, &size, nullptr, 0);
    // For a number that nobody bears the call succeeds and writes nothing.
    if (status != 0 || size < sizeof process || process.kp_proc.p_pid != pid) {
        return 0;
    }
    const timeval& started = process.kp_proc.p_starttime;
    constexpr std::uint64_t microsecondsPerSecond = 1'000'000;
    return static_cast<std::uint64_t>(started.tv_sec) * microsecondsPerSecond +
           static_cast<std::uint64_t>(started.tv_usec);
}

}  // namespace tallowcrest

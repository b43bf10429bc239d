#include <limits.h>
#include <mach-o/dyld.h>
#include <pthread.h>
#include <stdlib.h>
#include <sys/sysctl.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <string>

#include "platform/host.h"

namespace tallowcrest::host {

std::filesystem::path executablePath() {
    std::uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size);
    std::string path(size, '\0');
    if (_NSGetExecutablePath(path.data(), &size) != 0) {
        return {};
    }
    // As it was started: perhaps by a link, or by a path from the working directory of that moment.
    std::array<char, PATH_MAX> real{};
    return ::realpath(path.c_str(), real.data()) == nullptr ? "" : real.data();
}

void lowerThreadPriority() {
    pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, 0);
}

std::chrono::duration<double, std::milli> timeSinceProcessStart() {
    kinfo_proc info{};
    std::size_t size = sizeof info;
    std::array<int, 4> name{CTL_KERN, KERN_PROC, KERN_PROC_PID, getpid()};
    timeval now{};
    if (sysctl(name.data(), static_cast<unsigned>(name.size()), &info, &size, nullptr, 0) != 0 ||
        gettimeofday(&now, nullptr) != 0) {
        return {};
    }
    const timeval& start = info.kp_proc.p_starttime;
    return std::chrono::duration<double, std::milli>(
        static_cast<double>(now.tv_sec - start.tv_sec) * 1e3 +
        static_cast<double>(now.tv_usec - start.tv_usec) / 1e3);
}

}  // namespace tallowcrest::host

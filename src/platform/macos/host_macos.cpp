#include <mach-o/dyld.h>
#include <pthread.h>
#include <sys/sysctl.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include "actions/cache_purge.h"
#include "actions/kill_tool.h"
#include "platform/base/environment.h"
#include "platform/host.h"
#include "platform/macos/home_volume_macos.h"
#include "platform/macos/mach_tick_source.h"
#include "platform/macos/process_start_time_macos.h"
#include "sampling/metric_runner.h"
#include "sampling/pro_system_metrics_reader.h"

namespace tallowcrest::host {

const CommandSafetyPolicy::AllowedExecutables& allowedExecutables() {
    return CommandSafetyPolicy::macOSExecutables();
}

std::shared_ptr<SystemMetricsReader> makeMetricsReader(ToolLauncher& launcher) {
    return std::make_shared<ProSystemMetricsReader>(
        MetricRunner(allowedExecutables(), launcher),
        std::make_unique<MacHomeVolume>(userAccount().homeDirectory), processStartTimes);
}

std::shared_ptr<CPUTickSource> makeTickSource() {
    return std::make_shared<MachTickSource>();
}

std::shared_ptr<ProcessDetailsReader> makeProcessDetailsReader() {
    return nullptr;
}

std::shared_ptr<ProcessControl> makeProcessControl(ToolLauncher& launcher) {
    return std::make_shared<KillTool>(allowedExecutables(), launcher, processStartTime);
}

bool isStillThere(const ProcessSample& sample) {
    const std::uint64_t startTime = processStartTime(sample.pid);
    return startTime != 0 && (sample.startTime == 0 || sample.startTime == startTime);
}

std::vector<ToolRequest> purgeTools() {
    return macOSPurgeTools();
}

ProtectionPolicy protectionPolicy() {
    return {.ownPID = getpid(), .protectsLinuxSystem = false};
}

int activeProcessorCount() {
    return static_cast<int>(std::max(1L, sysconf(_SC_NPROCESSORS_ONLN)));
}

std::string loginName() {
    return userAccount().name;
}

std::filesystem::path dataDirectory() {
    const std::filesystem::path home = userAccount().homeDirectory;
    return home.is_absolute() ? home / "Library/Application Support/Tallowcrest"
                              : std::filesystem::path{};
}

std::filesystem::path executablePath() {
    std::uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size);
    std::string path(size, '\0');
    if (_NSGetExecutablePath(path.data(), &size) != 0) {
        return {};
    }
    path.resize(path.find('\0') == std::string::npos ? path.size() : path.find('\0'));
    return path;
}

std::vector<std::string> activityMonitors() {
    return {"/System/Applications/Utilities/Activity Monitor.app"};
}

std::vector<std::string> tailscaleApps() {
    return {"/Applications/Tailscale.app"};
}

TailscaleDaemon tailscaleDaemon() {
    return {};
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

bool hasDisplay() {
    return true;
}

}  // namespace tallowcrest::host

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <system_error>

#include "actions/cache_purge.h"
#include "platform/base/descriptor_setup.h"
#include "platform/base/environment.h"
#include "platform/base/local_socket_exchange.h"
#include "platform/host.h"
#include "platform/linux/kernel_file.h"
#include "platform/linux/pidfd_process_control.h"
#include "platform/linux/proc_stat_tick_source.h"
#include "platform/linux/process_identity.h"
#include "platform/linux/procfs_details_reader.h"
#include "platform/linux/procfs_metrics_reader.h"
#include "sampling/proc_parser.h"

namespace tallowcrest::host {

const CommandSafetyPolicy::AllowedExecutables& allowedExecutables() {
    return CommandSafetyPolicy::linuxExecutables();
}

std::shared_ptr<SystemMetricsReader> makeMetricsReader(ToolLauncher&) {
    raiseDescriptorLimit();
    return std::make_shared<ProcfsMetricsReader>();
}

std::shared_ptr<CPUTickSource> makeTickSource() {
    return std::make_shared<ProcStatTickSource>();
}

std::shared_ptr<ProcessDetailsReader> makeProcessDetailsReader() {
    return std::make_shared<ProcfsDetailsReader>();
}

std::shared_ptr<ProcessControl> makeProcessControl(ToolLauncher&) {
    return std::make_shared<PidfdProcessControl>();
}

bool isStillThere(const ProcessSample& sample) {
    return isSameProcess(sample);
}

std::vector<ToolRequest> purgeTools() {
    return linuxPurgeTools(geteuid() == 0);
}

ProtectionPolicy protectionPolicy() {
    return {.ownPID = getpid(), .protectsLinuxSystem = true};
}

int activeProcessorCount() {
    return static_cast<int>(std::max(1L, sysconf(_SC_NPROCESSORS_ONLN)));
}

std::string loginName() {
    return userAccount().name;
}

std::filesystem::path dataDirectory() {
    const std::filesystem::path data = baseFolder("XDG_DATA_HOME", ".local/share");
    return data.empty() ? data : data / "tallowcrest";
}

std::filesystem::path executablePath() {
    std::error_code error;
    auto path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path{} : path;
}

std::string updateFeed(const std::string& built) {
    return built;
}

std::vector<std::string> activityMonitors() {
    const auto& monitors = CommandSafetyPolicy::linuxSystemMonitors;
    return {monitors.begin(), monitors.end()};
}

std::vector<std::string> tailscaleApps() {
    const auto& apps = CommandSafetyPolicy::linuxTailscaleApps;
    return {apps.begin(), apps.end()};
}

TailscaleDaemon tailscaleDaemon() {
    return [](std::string_view request, const std::stop_token& stop) {
        return exchangeOverLocalSocket("/var/run/tailscale/tailscaled.sock", request, stop);
    };
}

void lowerThreadPriority() {
    constexpr int utilityNice = 10;
    const auto thread = static_cast<id_t>(gettid());
    // On Linux each thread has its own nice value, so the main thread keeps its priority. A program
    // started with a lower priority than this keeps that.
    if (getpriority(PRIO_PROCESS, thread) < utilityNice) {
        setpriority(PRIO_PROCESS, thread, utilityNice);
    }
    // Constants of the kernel interface, whose header does not compile as C++ everywhere.
    constexpr int whoProcess = 1;
    constexpr int idleClass = 3;
    constexpr int classShift = 13;
    syscall(SYS_ioprio_set, whoProcess, thread, idleClass << classShift);
}

std::chrono::duration<double, std::milli> timeSinceProcessStart() {
    std::array<char, 1024> buffer;
    const auto stat = parseProcessStat(KernelFile("/proc/self/stat").read(buffer));
    timespec sinceBoot{};
    const long ticksPerSecond = sysconf(_SC_CLK_TCK);
    if (!stat || ticksPerSecond <= 0 || clock_gettime(CLOCK_BOOTTIME, &sinceBoot) != 0) {
        return {};
    }
    constexpr double millisecondsPerSecond = 1e3;
    const double now = static_cast<double>(sinceBoot.tv_sec) * millisecondsPerSecond +
                       static_cast<double>(sinceBoot.tv_nsec) / 1e6;
    const double start = static_cast<double>(stat->startTicks) * millisecondsPerSecond /
                         static_cast<double>(ticksPerSecond);
    return std::chrono::duration<double, std::milli>(now - start);
}

bool hasDisplay() {
    const auto isSet = [](const char* name) { return !environmentVariable(name).empty(); };
    // An explicit Qt platform may need neither server.
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM");
}

}  // namespace tallowcrest::host

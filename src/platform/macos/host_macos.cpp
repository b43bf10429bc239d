// The choices of this system. What asks its kernel is in files of its own, so that a test can run
// this one on recorded answers.

#include <unistd.h>

#include <algorithm>
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

std::vector<std::string> activityMonitors() {
    return {"/System/Applications/Utilities/Activity Monitor.app"};
}

std::vector<std::string> tailscaleApps() {
    return {"/Applications/Tailscale.app"};
}

TailscaleDaemon tailscaleDaemon() {
    return {};
}

bool hasDisplay() {
    return true;
}

}  // namespace tallowcrest::host

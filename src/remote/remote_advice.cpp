#include "remote/remote_advice.h"

#include <fmt/format.h>

#include "core/number_text.h"
#include "sampling/binary_units.h"

namespace tallowcrest {

std::string remoteSetupHint(RemoteHealth::Status status, std::string_view address,
                            bool hasTailnetIssues) {
    switch (status) {
        case RemoteHealth::Status::reachable:
            return "SSH is configured and remote metrics are available.";
        case RemoteHealth::Status::noTailnetPath:
            return "Restart Tailscale on both Macs, confirm the remote is awake, then retry "
                   "tailscale ping.";
        case RemoteHealth::Status::noAddress:
            return "Open Tailscale on the remote Mac and confirm it is connected.";
        case RemoteHealth::Status::connectionBlocked:
            return hasTailnetIssues
                       ? fmt::format(
                             "This Mac has Tailscale health issues. Restart Tailscale here, "
                             "confirm the remote is awake, then retry {}.",
                             address)
                       : fmt::format(
                             "On the remote Mac, enable System Settings > General > Sharing > "
                             "Remote Login, then retry {}.",
                             address);
        case RemoteHealth::Status::hostKeyIssue:
            return fmt::format(
                "This Mac can reach SSH, but does not trust the host key. Remove the old key and "
                "add the current key for {}.",
                address);
        case RemoteHealth::Status::authNeeded:
            return fmt::format(
                "Remote Login is reachable, but this Mac's SSH key is not authorized for {}. Add "
                "your public key or enable key access.",
                address);
        case RemoteHealth::Status::unknown:
            return "Confirm the remote Mac is awake, Tailscale is connected, Remote Login is "
                   "enabled, and your SSH key is allowed.";
    }
    return {};
}

std::string remoteRecommendation(RemoteHealth::Status status, bool hasTailnetIssues,
                                 std::optional<double> cpuPercent,
                                 std::optional<double> memoryPercent,
                                 const std::vector<RemoteProcess>& topProcesses) {
    constexpr double muchMemoryMB = 1000.0;
    constexpr double muchCPU = 50.0;
    if (status != RemoteHealth::Status::reachable) {
        return remoteSetupHint(status, "this host", hasTailnetIssues);
    }
    const RemoteProcess* top = topProcesses.empty() ? nullptr : &topProcesses.front();
    const std::string_view name = top == nullptr ? "the top process" : top->displayName();
    if (memoryPercent && *memoryPercent >= highRemoteLoad) {
        return fmt::format("Memory pressure is high. Review {} and consider Remote Purge.", name);
    }
    if (cpuPercent && *cpuPercent >= highRemoteLoad) {
        return fmt::format("CPU is saturated. Review {} before quitting anything remotely.", name);
    }
    if (top != nullptr && top->rssMB >= muchMemoryMB) {
        return fmt::format("{} is using {} GB. Consider copying its process report.", name,
                           withOneDecimal(top->rssMB / megabytesPerGigabyte));
    }
    if (top != nullptr && top->cpu >= muchCPU) {
        return fmt::format(
            "{} is the main CPU user. Watch it or quit it explicitly if it is unwanted.", name);
    }
    return "Remote Mac looks healthy. No remote optimization action is needed.";
}

}  // namespace tallowcrest

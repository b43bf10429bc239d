#include "remote/remote_advice.h"

#include <fmt/format.h>

#include "core/number_text.h"
#include "sampling/binary_units.h"

namespace tallowcrest {

std::string remoteSetupHint(RemoteHealth::Status status, std::string_view address,
                            bool hasTailnetIssues, bool isLinux) {
    switch (status) {
        case RemoteHealth::Status::reachable:
            return "SSH is configured and remote metrics are available.";
        case RemoteHealth::Status::noTailnetPath:
            return isLinux ? "Restart Tailscale on both machines, confirm the remote is awake, "
                             "then retry tailscale ping."
                           : "Restart Tailscale on both Macs, confirm the remote is awake, then "
                             "retry tailscale ping.";
        case RemoteHealth::Status::noAddress:
            return isLinux ? "Start Tailscale on the remote machine and confirm it is connected."
                           : "Open Tailscale on the remote Mac and confirm it is connected.";
        case RemoteHealth::Status::connectionBlocked:
            if (hasTailnetIssues) {
                return fmt::format(
                    "This Mac has Tailscale health issues. Restart Tailscale here, confirm the "
                    "remote is awake, then retry {}.",
                    address);
            }
            return isLinux ? fmt::format(
                                 "On the remote machine, make sure that an SSH server such as "
                                 "openssh-server runs and that port 22 is open, then retry {}.",
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
                "{} is reachable, but this Mac's SSH key is not authorized for {}. Add your public "
                "key or enable key access.",
                isLinux ? "The SSH server" : "Remote Login", address);
        case RemoteHealth::Status::unknown:
            return isLinux ? "Confirm the remote machine is awake, Tailscale is connected, an SSH "
                             "server runs there, and your SSH key is allowed."
                           : "Confirm the remote Mac is awake, Tailscale is connected, Remote "
                             "Login is enabled, and your SSH key is allowed.";
    }
    return {};
}

std::string remoteRecommendation(RemoteHealth::Status status, bool hasTailnetIssues,
                                 std::optional<double> cpuPercent,
                                 std::optional<double> memoryPercent,
                                 const std::vector<RemoteProcess>& topProcesses, bool isLinux) {
    constexpr double muchMemoryMB = 1000.0;
    constexpr double muchCPU = 50.0;
    if (status != RemoteHealth::Status::reachable) {
        return remoteSetupHint(status, "this host", hasTailnetIssues, isLinux);
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
    return fmt::format("Remote {} looks healthy. No remote optimization action is needed.",
                       isLinux ? "machine" : "Mac");
}

}  // namespace tallowcrest

#include "remote/remote_health_record.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "actions/command_validators.h"
#include "core/text.h"
#include "remote/remote_advice.h"
#include "remote/remote_app_impact.h"
#include "remote/remote_sample.h"
#include "remote/tail_device.h"

namespace tallowcrest {
namespace {

using Status = RemoteHealth::Status;

struct FailureWords {
    std::string_view words;
    Status status;
};

/// The first that occurs decides.
constexpr auto failures = std::to_array<FailureWords>({
    {"host key verification failed", Status::hostKeyIssue},
    {"offending", Status::hostKeyIssue},
    {"known_hosts", Status::hostKeyIssue},
    {"permission denied", Status::authNeeded},
    {"publickey", Status::authNeeded},
    {"authentication", Status::authNeeded},
    {"connection refused", Status::connectionBlocked},
    {"operation timed out", Status::connectionBlocked},
    {"no route to host", Status::connectionBlocked},
    {"connection timed out", Status::connectionBlocked},
});

/// What is said of a machine that cannot be asked.
struct Obstacle {
    Status status;
    std::string_view summary;
    std::string_view recommendation;
    std::string_view setupHint;
};

constexpr Obstacle noAddress{Status::noAddress, "No Tailnet address available.",
                             "Connect this Mac to Tailscale before scanning.",
                             "Open Tailscale on that Mac and confirm it has a Tailnet IP."};
constexpr Obstacle noPath{
    Status::noTailnetPath, "No active Tailscale path",
    "Fix Tailscale reachability before SSH or optimization actions.",
    "Tailscale lists this Mac, but there is no active path or relay. Restart Tailscale on both "
    "Macs and confirm the remote is awake."};
constexpr Obstacle noAddressOnLinux{
    noAddress.status, noAddress.summary, "Connect this machine to Tailscale before scanning.",
    "Start Tailscale on that machine and confirm it has a Tailnet IP."};
constexpr Obstacle noPathOnLinux{
    noPath.status, noPath.summary, noPath.recommendation,
    "Tailscale lists this machine, but there is no active path or relay. Restart Tailscale on both "
    "machines and confirm the remote is awake."};
/// There is no status of its own for this.
constexpr Obstacle invalidTarget{Status::noAddress, "Invalid SSH target",
                                 "Tallowcrest blocked an invalid SSH target.",
                                 "Verify the device address reported by Tailscale."};

RemoteHealth recordOf(const TailDevice& device, std::string address, const Obstacle& obstacle,
                      Date now, bool isLinux) {
    return {.id = device.id,
            .hostName = device.hostName,
            .address = std::move(address),
            .status = obstacle.status,
            .recommendation = std::string(obstacle.recommendation),
            .summary = std::string(obstacle.summary),
            .setupHint = std::string(obstacle.setupHint),
            .sampledAt = now,
            .isLinux = isLinux};
}

}  // namespace

std::string remoteAddress(const TailDevice& device) {
    if (device.addresses.empty()) {
        return std::string(noRemoteAddress);
    }
    const auto ipv4 = std::ranges::find_if(device.addresses, [](const std::string& address) {
        return address.find(':') == std::string::npos;
    });
    return ipv4 == device.addresses.end() ? device.addresses.front() : *ipv4;
}

std::variant<RemoteTarget, RemoteHealth> remoteTarget(const TailDevice& device,
                                                      std::string_view sshUsername, Date now,
                                                      bool isLinux) {
    const std::string address = remoteAddress(device);
    if (device.addresses.empty()) {
        return recordOf(device, address, isLinux ? noAddressOnLinux : noAddress, now, isLinux);
    }
    if (!hasPath(device)) {
        return recordOf(device, address, isLinux ? noPathOnLinux : noPath, now, isLinux);
    }
    const auto target = CommandSafetyPolicy::sshTarget(sshUsername, address);
    if (!target) {
        return recordOf(device, address, invalidTarget, now, isLinux);
    }
    return RemoteTarget{address, *target};
}

RemoteHealth::Status statusOfFailure(std::string_view output) {
    const std::string lowered = loweredASCII(output);
    const auto found = std::ranges::find_if(failures, [&](const FailureWords& each) {
        return lowered.find(each.words) != std::string::npos;
    });
    return found == failures.end() ? Status::unknown : found->status;
}

RemoteHealth remoteHealthRecord(const TailDevice& device, const std::string& address,
                                std::string_view output, const RemoteScanContext& context, Date now,
                                bool isLinux) {
    const RemoteSample sample = parseRemoteSample(output);
    const auto cpu = sample.cpuPercent();
    const auto memory = sample.memoryPercent();
    const bool answered = cpu || memory;
    const Status status = answered ? Status::reachable : statusOfFailure(output);
    return {.id = device.id,
            .hostName = device.hostName,
            .address = address,
            .online = answered,
            .status = status,
            .cpuPercent = cpu,
            .memoryPercent = memory,
            .osVersion = sample.value("os"),
            .topCPUProcess = sample.value("topcpu"),
            .topMemoryProcess = sample.value("topmem"),
            .topProcesses = sample.processes,
            .appImpacts = remoteAppImpacts(sample.processes, context.protectedAppNames, isLinux),
            .recommendation = remoteRecommendation(status, context.hasTailnetIssues, cpu, memory,
                                                   sample.processes, isLinux),
            .summary = answered ? "Remote sample received." : std::string(title(status)),
            .setupHint = remoteSetupHint(status, address, context.hasTailnetIssues, isLinux),
            .sampledAt = now,
            .isLinux = isLinux};
}

}  // namespace tallowcrest

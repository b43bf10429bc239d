#include "remote/remote_advice.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using Status = RemoteHealth::Status;

constexpr bool toMac = false;
constexpr bool toLinux = true;

/// Of a machine that is not reachable, the recommendation is the hint, whatever its load.
void expectRecommended(Status status, bool hasTailnetIssues, bool isLinux) {
    if (status != Status::reachable) {
        EXPECT_EQ(remoteRecommendation(status, hasTailnetIssues, 99.0, 99.0, {{1, 99, 9999, "x"}},
                                       isLinux),
                  remoteSetupHint(status, "this host", hasTailnetIssues, isLinux));
    }
}

TEST(RemoteAdvice, EveryStatusHasItsHint) {
    struct Row {
        Status status;
        bool hasTailnetIssues;
        const char* hint;
    };
    for (
        const Row& each : {
            Row{Status::reachable, true, "SSH is configured and remote metrics are available."},
            Row{Status::noTailnetPath, true,
                "Restart Tailscale on both Macs, confirm the remote is awake, then retry tailscale "
                "ping."},
            Row{Status::noAddress, true,
                "Open Tailscale on the remote Mac and confirm it is connected."},
            Row{Status::connectionBlocked, true,
                "This Mac has Tailscale health issues. Restart Tailscale here, confirm the remote "
                "is awake, then retry 100.1.2.3."},
            Row{Status::connectionBlocked, false,
                "On the remote Mac, enable System Settings > General > Sharing > Remote Login, "
                "then retry 100.1.2.3."},
            Row{Status::hostKeyIssue, true,
                "This Mac can reach SSH, but does not trust the host key. Remove the old key and "
                "add the current key for 100.1.2.3."},
            Row{Status::authNeeded, true,
                "Remote Login is reachable, but this Mac's SSH key is not authorized for "
                "100.1.2.3. Add your public key or enable key access."},
            Row{Status::unknown, true,
                "Confirm the remote Mac is awake, Tailscale is connected, Remote Login is enabled, "
                "and your SSH key is allowed."},
        }) {
        EXPECT_EQ(remoteSetupHint(each.status, "100.1.2.3", each.hasTailnetIssues, toMac),
                  each.hint);
        expectRecommended(each.status, each.hasTailnetIssues, toMac);
    }
}

TEST(RemoteAdvice, ALinuxMachineIsToldNothingOfAMac) {
    struct Row {
        Status status;
        const char* hint;
    };
    for (const Row& each : {
             Row{Status::reachable, "SSH is configured and remote metrics are available."},
             Row{Status::noTailnetPath,
                 "Restart Tailscale on both machines, confirm the remote is awake, then retry "
                 "tailscale ping."},
             Row{Status::noAddress,
                 "Start Tailscale on the remote machine and confirm it is connected."},
             Row{Status::connectionBlocked,
                 "On the remote machine, make sure that an SSH server such as openssh-server runs "
                 "and that port 22 is open, then retry 100.1.2.3."},
             Row{Status::authNeeded,
                 "The SSH server is reachable, but this Mac's SSH key is not authorized for "
                 "100.1.2.3. Add your public key or enable key access."},
             Row{Status::unknown,
                 "Confirm the remote machine is awake, Tailscale is connected, an SSH server runs "
                 "there, and your SSH key is allowed."},
         }) {
        EXPECT_EQ(remoteSetupHint(each.status, "100.1.2.3", false, toLinux), each.hint);
        expectRecommended(each.status, false, toLinux);
    }
    // These two speak of this machine only.
    for (const auto& [status, hasTailnetIssues] :
         {std::pair{Status::connectionBlocked, true}, {Status::hostKeyIssue, false}}) {
        EXPECT_EQ(remoteSetupHint(status, "100.1.2.3", hasTailnetIssues, toLinux),
                  remoteSetupHint(status, "100.1.2.3", hasTailnetIssues, toMac));
    }
    EXPECT_EQ(remoteRecommendation(Status::reachable, false, 5.0, 5.0, {}, toLinux),
              "Remote machine looks healthy. No remote optimization action is needed.");
}

TEST(RemoteAdvice, TheFirstRuleThatMatchesAdvises) {
    struct Row {
        std::optional<double> cpu;
        std::optional<double> memory;
        std::vector<RemoteProcess> processes;
        const char* advice;
    };
    const RemoteProcess heavy{1, 50.0, 1000.0, "/opt/heavy tool"};
    constexpr const char* healthy =
        "Remote Mac looks healthy. No remote optimization action is needed.";
    for (const Row& each : {
             Row{90.0,
                 85.0,
                 {heavy},
                 "Memory pressure is high. Review heavy tool and consider Remote Purge."},
             Row{90.0,
                 85.0,
                 {},
                 "Memory pressure is high. Review the top process and consider Remote Purge."},
             Row{85.0,
                 84.9,
                 {heavy},
                 "CPU is saturated. Review heavy tool before quitting anything remotely."},
             Row{85.0,
                 std::nullopt,
                 {},
                 "CPU is saturated. Review the top process before quitting anything remotely."},
             Row{84.9,
                 84.9,
                 {heavy},
                 "heavy tool is using 1.0 GB. Consider copying its process report."},
             Row{std::nullopt,
                 5.0,
                 {{1, 1.0, 2600.0, "/"}},
                 "/ is using 2.5 GB. Consider copying its process report."},
             Row{5.0,
                 5.0,
                 {{1, 50.0, 999.9, "mds"}},
                 "mds is the main CPU user. Watch it or quit it explicitly if it is unwanted."},
             Row{5.0, 5.0, {{1, 49.9, 999.0, "mds"}}, healthy},
             Row{5.0, 5.0, {{1, 1.0, 1.0, "mds"}, heavy}, healthy},
             Row{std::nullopt, std::nullopt, {}, healthy},
         }) {
        EXPECT_EQ(remoteRecommendation(Status::reachable, true, each.cpu, each.memory,
                                       each.processes, toMac),
                  each.advice);
    }
}

}  // namespace
}  // namespace tallowcrest

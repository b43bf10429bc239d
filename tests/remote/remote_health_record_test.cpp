#include "remote/remote_health_record.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Status = RemoteHealth::Status;

constexpr Date sampledAt{800000000.0};

TailDevice studio(std::vector<std::string> addresses) {
    return {.id = "nodekey:1",
            .name = "studio.tail.ts.net",
            .hostName = "studio",
            .online = true,
            .addresses = std::move(addresses),
            .os = "macOS",
            .inMagicSock = true};
}

RemoteHealth recordOf(const std::string& output, bool hasTailnetIssues = false) {
    return remoteHealthRecord(studio({}), "100.1.2.3", output,
                              {"owner", {"Docker"}, hasTailnetIssues}, sampledAt, false);
}

TEST(RemoteTarget, PrefersTheFirstIPv4Address) {
    struct Row {
        std::vector<std::string> addresses;
        const char* user;
        RemoteTarget target;
    };
    for (const Row& each : {
             Row{{"fd7a::1", "100.1.2.3", "100.4.5.6"}, "owner", {"100.1.2.3", "owner@100.1.2.3"}},
             Row{{"fd7a::1", "fd7a::2"}, "owner", {"fd7a::1", "owner@fd7a::1"}},
             Row{{"100.1.2.3"}, "", {"100.1.2.3", "100.1.2.3"}},
         }) {
        const auto way = remoteTarget(studio(each.addresses), each.user, sampledAt, false);
        ASSERT_TRUE(std::holds_alternative<RemoteTarget>(way)) << each.target.address;
        EXPECT_EQ(std::get<RemoteTarget>(way), each.target);
    }
}

TEST(RemoteTarget, AMachineWithoutAnAddressHasWordsInItsPlace) {
    EXPECT_EQ(remoteAddress(studio({})), "no address");
}

TEST(RemoteTarget, WhatCannotBeAskedHasItsRecordAtOnce) {
    const auto record = [](const TailDevice& device, const char* user) {
        const auto way = remoteTarget(device, user, sampledAt, false);
        return std::holds_alternative<RemoteHealth>(way) ? std::get<RemoteHealth>(way)
                                                         : RemoteHealth{};
    };
    EXPECT_EQ(record(studio({}), "owner"),
              (RemoteHealth{.id = "nodekey:1",
                            .hostName = "studio",
                            .address = "no address",
                            .status = Status::noAddress,
                            .recommendation = "Connect this Mac to Tailscale before scanning.",
                            .summary = "No Tailnet address available.",
                            .setupHint = "Open Tailscale on that Mac and confirm it has a Tailnet "
                                         "IP.",
                            .sampledAt = sampledAt}));
    TailDevice withoutPath = studio({"fd7a::1", "100.1.2.3"});
    withoutPath.inMagicSock = false;
    withoutPath.active = true;
    EXPECT_EQ(record(withoutPath, "not valid"),
              (RemoteHealth{.id = "nodekey:1",
                            .hostName = "studio",
                            .address = "100.1.2.3",
                            .status = Status::noTailnetPath,
                            .recommendation = "Fix Tailscale reachability before SSH or "
                                              "optimization actions.",
                            .summary = "No active Tailscale path",
                            .setupHint = "Tailscale lists this Mac, but there is no active path or "
                                         "relay. Restart Tailscale on both Macs and confirm the "
                                         "remote is awake.",
                            .sampledAt = sampledAt}));
    const RemoteHealth invalid{.id = "nodekey:1",
                               .hostName = "studio",
                               .address = "100.1.2.3",
                               .status = Status::noAddress,
                               .recommendation = "Tallowcrest blocked an invalid SSH target.",
                               .summary = "Invalid SSH target",
                               .setupHint = "Verify the device address reported by Tailscale.",
                               .sampledAt = sampledAt};
    EXPECT_EQ(record(studio({"100.1.2.3"}), "two words"), invalid);
    for (const char* hostile : {"-oProxyCommand=touch", "$(touch)", "a b", "a\nb", "a;b", ""}) {
        RemoteHealth expected = invalid;
        expected.address = hostile;
        EXPECT_EQ(record(studio({hostile}), "owner"), expected) << hostile;
    }
}

TEST(RemoteTarget, ALinuxMachineThatCannotBeAskedIsToldNothingOfAMac) {
    TailDevice withoutPath = studio({"100.1.2.3"});
    withoutPath.inMagicSock = false;
    struct Row {
        TailDevice device;
        const char* recommendation;
        const char* hint;
    };
    for (const Row& each :
         {Row{studio({}), "Connect this machine to Tailscale before scanning.",
              "Start Tailscale on that machine and confirm it has a Tailnet IP."},
          Row{withoutPath, "Fix Tailscale reachability before SSH or optimization actions.",
              "Tailscale lists this machine, but there is no active path or relay. Restart "
              "Tailscale on both machines and confirm the remote is awake."},
          Row{studio({"a b"}), "Tallowcrest blocked an invalid SSH target.",
              "Verify the device address reported by Tailscale."}}) {
        const auto ofALinuxMachine =
            std::get<RemoteHealth>(remoteTarget(each.device, "owner", sampledAt, true));
        RemoteHealth expected =
            std::get<RemoteHealth>(remoteTarget(each.device, "owner", sampledAt, false));
        expected.isLinux = true;
        expected.recommendation = each.recommendation;
        expected.setupHint = each.hint;
        EXPECT_EQ(ofALinuxMachine, expected);
    }
}

TEST(RemoteHealthRecord, ASampleIsReachable) {
    const RemoteHealth record = recordOf(
        "cpu=640\nmem=42\ncores=8\nos=15.1\ntopcpu=99.5% mds\ntopmem=812MB Arc\n"
        "proc=812|30.0|120|/usr/local/bin/mds\nproc=77|3.0|812|/opt/docker\n");
    EXPECT_EQ(record,
              (RemoteHealth{
                  .id = "nodekey:1",
                  .hostName = "studio",
                  .address = "100.1.2.3",
                  .online = true,
                  .status = Status::reachable,
                  .cpuPercent = 80.0,
                  .memoryPercent = 42.0,
                  .osVersion = "15.1",
                  .topCPUProcess = "99.5% mds",
                  .topMemoryProcess = "812MB Arc",
                  .topProcesses = {{812, 30.0, 120.0, "/usr/local/bin/mds"},
                                   {77, 3.0, 812.0, "/opt/docker"}},
                  .appImpacts = {{"mds", 1, 30.0, 120.0, 812, 0}, {"Docker", 1, 3.0, 812.0, 77, 1}},
                  .recommendation = "Remote Mac looks healthy. No remote optimization "
                                    "action is needed.",
                  .summary = "Remote sample received.",
                  .setupHint = "SSH is configured and remote metrics are available.",
                  .sampledAt = sampledAt}));
}

TEST(RemoteHealthRecord, OneFigureIsEnoughWhateverTheTextSays) {
    const RemoteHealth record = recordOf("Permission denied (publickey).\ncpu=lots\nmem=42\n");
    EXPECT_EQ(record.status, Status::reachable);
    EXPECT_TRUE(record.online);
    EXPECT_EQ(record.cpuPercent, std::nullopt);
    EXPECT_EQ(record.memoryPercent, 42.0);
    EXPECT_EQ(recordOf("cpu=3\n").status, Status::reachable);
}

TEST(RemoteHealthRecord, AFailureIsNamedByItsWords) {
    struct Row {
        const char* output;
        Status status;
    };
    for (const Row& each : {
             Row{"Host key verification failed.\r\n", Status::hostKeyIssue},
             Row{"Offending ED25519 key in file", Status::hostKeyIssue},
             Row{"Add correct host key in /Users/me/.ssh/known_hosts", Status::hostKeyIssue},
             Row{"owner@100.1.2.3: Permission denied (publickey,password).", Status::authNeeded},
             Row{"no supported methods remain: PUBLICKEY", Status::authNeeded},
             Row{"Too many authentication failures", Status::authNeeded},
             Row{"ssh: connect to host 100.1.2.3 port 22: Connection refused",
                 Status::connectionBlocked},
             Row{"connect: Operation timed out", Status::connectionBlocked},
             Row{"connect: No route to host", Status::connectionBlocked},
             Row{"Connection timed out during banner exchange", Status::connectionBlocked},
             Row{"connection refused\nknown_hosts", Status::hostKeyIssue},
             Row{"connection refused\npermission denied", Status::authNeeded},
             Row{"permission denied\nhost key verification failed", Status::hostKeyIssue},
             Row{"", Status::unknown},
             Row{"fish: Unknown command", Status::unknown},
             Row{"cpu=\nmem=\ncores=8\nos=15.1\n", Status::unknown},
         }) {
        EXPECT_EQ(statusOfFailure(each.output), each.status) << each.output;
        const RemoteHealth record = recordOf(each.output);
        EXPECT_EQ(record.status, each.status) << each.output;
        EXPECT_FALSE(record.online);
        EXPECT_EQ(record.summary, title(each.status));
    }
}

TEST(RemoteHealthRecord, TheHintNamesTheAddressAndTheRecommendationDoesNot) {
    const RemoteHealth record = recordOf("Permission denied (publickey).");
    EXPECT_THAT(record.setupHint, HasSubstr("100.1.2.3"));
    EXPECT_THAT(record.recommendation, HasSubstr("this host"));
    EXPECT_THAT(record.recommendation, ::testing::Not(HasSubstr("100.1.2.3")));
    EXPECT_THAT(recordOf("Connection refused", true).setupHint,
                HasSubstr("This Mac has Tailscale health issues."));
    EXPECT_THAT(recordOf("Connection refused", true).recommendation,
                HasSubstr("This Mac has Tailscale health issues."));
}

TEST(RemoteHealthRecord, WhatAFailedOutputHoldsIsKept) {
    const RemoteHealth record = recordOf("os=15.1\nproc=7|1.0|2|/opt/tool\nConnection refused");
    EXPECT_EQ(record.status, Status::connectionBlocked);
    EXPECT_EQ(record.osVersion, "15.1");
    EXPECT_THAT(record.topProcesses, SizeIs(1));
    EXPECT_THAT(record.appImpacts, SizeIs(1));
    EXPECT_THAT(recordOf(std::string(1 << 20, '=')).topProcesses, IsEmpty());
}

}  // namespace
}  // namespace tallowcrest

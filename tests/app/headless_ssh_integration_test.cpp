// A scan of other machines by the program without a window, with the real secure shell and a
// stand-in for the command line tool of the tailnet.

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "core/settings/settings.h"
#include "tests/app/headless_program.h"
#include "tests/app/private_data.h"
#include "tests/app/stored_setting.h"
#include "tests/support/ssh_machines.h"

namespace tallowcrest {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;

json peer(const std::string& hostName, const std::string& address,
          const std::string& os = "macOS") {
    return {{"HostName", hostName},
            {"DNSName", hostName + ".tail1a2b3.ts.net."},
            {"OS", os},
            {"TailscaleIPs", {address, "fd7a:115c:a1e0::7"}},
            {"Relay", "fra"},
            {"Online", true}};
}

class HeadlessScan : public ::testing::Test {
protected:
    void SetUp() override {
        if (!SshMachines::obstacle().empty()) {
            GTEST_SKIP() << SshMachines::obstacle();
        }
    }

    /// The program with these peers of the tailnet.
    static ProgramResult scan(const json& peers, std::vector<std::string> arguments) {
        SshMachines::program("status.json", json{{"Peer", peers}}.dump());
        SshMachines::installCommand("tailscale",
                                    "#!/bin/sh\n[ \"$2\" != --json ] || cat " +
                                        (SshMachines::folder() / "status.json").string() + "\n");
        arguments.insert(arguments.begin(), {"--headless", "--remote"});
        return run(arguments);
    }

    /// What it prints of them.
    static std::vector<std::string> printed(const json& peers, std::vector<std::string> arguments) {
        const ProgramResult result = scan(peers, std::move(arguments));
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.standardError, "");
        return linesOf(result.standardOutput);
    }

    const PrivateData data;
};

TEST_F(HeadlessScan, PrintsARecordOfEachMachine) {
    SshMachines machines;
    machines.add("100.64.7.1", machines.sshd("ForceCommand " +
                                             SshMachines::program(
                                                 "sample",
                                                 "#!/bin/sh\nprintf 'cpu=50\\nmem=40\\ncores=4\\n"
                                                 "proc=7|30.0|90|/opt/indexer\\n'\n")));
    machines.add("100.64.7.2", machines.sshd("AuthorizedKeysFile none"));
    machines.start();
    const std::string trace = SshMachines::folder() / "trace";
    const std::string hostile = "'; touch " + trace + "; $(touch " + trace + ")\n";
    const json peers{{"nodekey:1", peer("attic", "100.64.7.1")},
                     {"nodekey:2", peer("barn", "100.64.7.2")},
                     {"nodekey:3", peer("cellar", "100.64.7.3")},
                     {"nodekey:4", peer("den", "-oProxyCommand=touch " + trace)},
                     {"nodekey:5", peer("e" + hostile, "100.64.7.1")}};
    std::vector<json> records;
    for (const std::string& line : printed(peers, {"--json"})) {
        records.push_back(json::parse(line));
    }
    ASSERT_THAT(records, SizeIs(5));
    const std::vector<std::string> statuses{"Reachable", "Auth Needed", "Connection Blocked",
                                            "No Address", "Reachable"};
    for (std::size_t i = 0; i < statuses.size(); ++i) {
        EXPECT_EQ(records[i].at("id"), "nodekey:" + std::to_string(i + 1));
        EXPECT_EQ(records[i].at("status"), statuses[i]);
    }
    EXPECT_EQ(records[0].at("hostName"), "attic");
    EXPECT_EQ(records[0].at("address"), "100.64.7.1");
    EXPECT_EQ(records[0].at("cpuPercent"), 12.5);
    EXPECT_EQ(records[0].at("memoryPercent"), 40.0);
    EXPECT_EQ(records[0].at("topProcesses").at(0).at("command"), "/opt/indexer");
    EXPECT_TRUE(records[1].at("cpuPercent").is_null());
    EXPECT_EQ(records[3].at("summary"), "Invalid SSH target");
    EXPECT_EQ(records[4].at("hostName"), "e" + hostile);
    EXPECT_FALSE(std::filesystem::exists(trace));
}

TEST_F(HeadlessScan, ScansLinuxMachinesWhereTheSettingSaysSo) {
    SshMachines machines;
    machines.add("100.64.7.1", machines.sshd());
    machines.addBusyProcess("Render");
    machines.start();
    const json peers{{"nodekey:1", peer("attic", "100.64.7.1", "linux")}};
    const ProgramResult withoutMacs = scan(peers, {"--json"});
    EXPECT_EQ(withoutMacs.status, 0) << "the client has answered";
    EXPECT_EQ(withoutMacs.standardError,
              "tallowcrest: No online Tailscale Macs are available to scan.\n"
              "tallowcrest: Linux machines are not scanned, of which 1 is online: \"Include Linux "
              "machines\" is off.\n");
    storeSetting(data, settings_keys::includeLinuxMachinesKey, true);
    const std::vector<std::string> lines = printed(peers, {"--json"});
    ASSERT_THAT(lines, SizeIs(1));
    const json record = json::parse(lines.front());
    EXPECT_EQ(record.at("hostName"), "attic");
    EXPECT_EQ(record.at("status"), "Reachable");
    EXPECT_GT(record.at("memoryPercent"), 0.0);
    EXPECT_THAT(record.at("topProcesses").dump(), HasSubstr("\"Render\""));
}

TEST_F(HeadlessScan, PrintsABlockForEachMachine) {
    SshMachines machines;
    machines.start();
    EXPECT_THAT(printed({{"nodekey:1", peer("attic", "100.64.7.1")}}, {}),
                ElementsAre("attic  100.64.7.1  Connection Blocked",
                            "  On the remote Mac, enable System Settings > General > Sharing > "
                            "Remote Login, then retry 100.64.7.1.",
                            ""));
}

}  // namespace
}  // namespace tallowcrest

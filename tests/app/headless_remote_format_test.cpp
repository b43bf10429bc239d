#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "app/headless_format.h"
#include "core/text.h"

namespace tallowcrest {
namespace {

using nlohmann::json;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

RemoteHealth reachedMachine() {
    return {.id = "nodekey:1",
            .hostName = "studio",
            .address = "100.1.2.3",
            .online = true,
            .status = RemoteHealth::Status::reachable,
            .cpuPercent = 80.4,
            .memoryPercent = 42.0,
            .osVersion = "15.1",
            .topCPUProcess = "99.5% mds",
            .topMemoryProcess = "812MB Arc",
            .topProcesses = {{812, 99.5, 120.0, "/usr/libexec/mds"}},
            .appImpacts = {{"mds", 1, 99.5, 120.0, 812, 1}},
            .recommendation = "Watch it.",
            .summary = "Remote sample received.",
            .setupHint = "SSH is configured.",
            .sampledAt = {721692800.25}};
}

RemoteHealth lostMachine() {
    return {.id = "nodekey:2",
            .hostName = "attic",
            .address = "no address",
            .status = RemoteHealth::Status::noAddress,
            .recommendation = "Connect it.",
            .summary = "None.",
            .setupHint = "Open Tailscale.",
            .isLinux = true};
}

TEST(RemoteBlock, ShowsFiguresGroupsAndAdvice) {
    EXPECT_EQ(remoteBlock(reachedMachine()),
              "studio  100.1.2.3  Reachable  CPU 80%  Memory 42%  System 15.1\n"
              "  App                               CPU     Memory  Processes\n"
              "  mds                             99.5%     120 MB          1\n"
              "  Watch it.\n"
              "\n");
    EXPECT_EQ(remoteBlock(lostMachine()),
              "attic  no address  No Address\n"
              "  Open Tailscale.\n"
              "\n");
    RemoteHealth nameless = lostMachine();
    nameless.hostName.clear();
    EXPECT_THAT(remoteBlock(nameless), StartsWith("no address  No Address\n"));
}

TEST(RemoteJSON, HasTheMembersOfTheRecord) {
    EXPECT_EQ(json::parse(remoteJSON(reachedMachine())), json::parse(R"({
        "id": "nodekey:1", "hostName": "studio", "address": "100.1.2.3", "online": true,
        "status": "Reachable", "cpuPercent": 80.4, "memoryPercent": 42.0, "osVersion": "15.1",
        "topCPUProcess": "99.5% mds", "topMemoryProcess": "812MB Arc",
        "topProcesses": [{"pid": 812, "cpu": 99.5, "rssMB": 120.0, "command": "/usr/libexec/mds"}],
        "appImpacts": [{"name": "mds", "processCount": 1, "totalCPU": 99.5,
                        "totalMemoryMB": 120.0, "topPID": 812, "protectedCount": 1}],
        "recommendation": "Watch it.", "summary": "Remote sample received.",
        "setupHint": "SSH is configured.", "sampledAt": 721692800.25, "isLinux": false})"));
    const json lost = json::parse(remoteJSON(lostMachine()));
    for (const char* absent :
         {"cpuPercent", "memoryPercent", "osVersion", "topCPUProcess", "topMemoryProcess"}) {
        EXPECT_TRUE(lost.at(absent).is_null()) << absent;
    }
    EXPECT_EQ(lost["online"], false);
    EXPECT_EQ(lost["isLinux"], true);
    EXPECT_EQ(lost["appImpacts"], json::array());
}

TEST(RemoteOutput, NoNameOfAnotherMachineControlsTheTerminal) {
    RemoteHealth machine = reachedMachine();
    const std::string hostile = "\x1B[2J\nfake  100.9.9.9  Reachable\r\xE2\x80\xAE\xFF";
    machine.hostName = machine.address = machine.recommendation = hostile;
    machine.osVersion = machine.topCPUProcess = hostile;
    machine.appImpacts[0].name = machine.topProcesses[0].command = hostile;
    const std::string block = remoteBlock(machine);
    EXPECT_TRUE(isValidUTF8(block));
    EXPECT_THAT(block, Not(HasSubstr("\x1B")));
    EXPECT_THAT(block, Not(HasSubstr("\nfake")));
    const std::string line = remoteJSON(machine);
    EXPECT_THAT(line, EndsWith("}\n"));
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    for (const char c : line.substr(0, line.size() - 1)) {
        EXPECT_TRUE(c >= 0x20 && c < 0x7F);
    }
}

}  // namespace
}  // namespace tallowcrest

#include "remote/remote_scan.h"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_kinds.h"
#include "core/observable.h"
#include "core/record_json.h"
#include "remote/remote_script.h"
#include "tests/support/each_of.h"
#include "tests/support/remote_machines.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Status = RemoteHealth::Status;

constexpr const char* goodSample = "cpu=20\nmem=40\ncores=2\nproc=812|15.0|90|/opt/indexer\n";

RemoteHealth reachable(const std::string& name, const std::string& group, double cpu = 10.0) {
    return {.id = "nodekey:" + name,
            .hostName = name,
            .online = true,
            .status = Status::reachable,
            .cpuPercent = cpu,
            .appImpacts = {{.name = group}},
            .sampledAt = {700000000.0}};
}

class RemoteScanTest : public ::testing::Test, protected TestServices {
protected:
    RemoteScanTest() { machines.launcher.willWrite(goodSample); }

    void willAnswer(std::map<std::string, std::string> outputs) {
        machines.launcher.onLaunch = [this,
                                      outputs = std::move(outputs)](const ToolRequest& request) {
            const auto found = outputs.find(request.arguments.at(request.arguments.size() - 2));
            machines.launcher.willWrite(found == outputs.end() ? "" : found->second);
        };
    }

    /// The targets that were asked, in order.
    std::vector<std::string> asked() const {
        return eachOf(machines.launcher.requests, [](const ToolRequest& request) {
            return request.arguments.at(request.arguments.size() - 2);
        });
    }

    std::vector<Status> statuses() const {
        return eachOf(scan.state().remoteHealth, &RemoteHealth::status);
    }

    std::vector<std::string> messages() const {
        return eachOf(log.activityLog(), [](const ActivityEvent& event) {
            EXPECT_EQ(event.kind, ActivityKind::action);
            return event.detail;
        });
    }

    RemoteMachines machines{services};
    RemoteScan& scan = machines.scan;
};

TEST_F(RemoteScanTest, WithNothingToScanItSaysSoAndKeepsTheOldRows) {
    scan.finishRemoteScan({reachable("studio", "Arc")});
    machines.setDevices(
        {tailDevice("macOS", false), tailDevice("linux", true), tailDevice("unknown", true)});
    EXPECT_FALSE(scan.hasMachinesToScan());
    EXPECT_EQ(scan.scanRemoteMacs(),
              Outcome::refused("No online Tailscale Macs are available to scan."));
    EXPECT_EQ(log.lastAction(), "No online Tailscale Macs are available to scan.");
    EXPECT_EQ(messages().front(), log.lastAction());
    EXPECT_FALSE(scan.state().remoteScanInProgress);
    EXPECT_THAT(scan.state().remoteHealth, SizeIs(1));
    EXPECT_EQ(workQueue.pendingCount(), 0U);
}

TEST_F(RemoteScanTest, AsksEachMachineInOrder) {
    machines.setDevices({onlineMachine("studio", "100.1.1.1"),
                         onlineMachine("phone", "100.2.2.2", "iOS"),
                         onlineMachine("attic", "100.3.3.3", "MacOS")});
    willAnswer({{"owner@100.1.1.1", goodSample}, {"owner@100.3.3.3", "Connection refused"}});
    EXPECT_EQ(scan.scanRemoteMacs(), Outcome::asked("Scanning 2 remote Macs over Tailscale..."));
    EXPECT_TRUE(scan.state().remoteScanInProgress);
    EXPECT_EQ(workQueue.laneOf(0), Lane::remoteScan);
    EXPECT_THAT(machines.launcher.requests, IsEmpty());

    workQueue.run();
    EXPECT_TRUE(scan.state().remoteScanInProgress);
    EXPECT_THAT(scan.state().remoteHealth, IsEmpty())
        << "published in one piece on the main thread";
    mainQueue.drain();
    EXPECT_FALSE(scan.state().remoteScanInProgress);
    EXPECT_THAT(asked(), ElementsAre("owner@100.1.1.1", "owner@100.3.3.3"));
    const ToolRequest& request = machines.launcher.requests.front();
    EXPECT_EQ(request.path, "/usr/bin/ssh");
    EXPECT_EQ(request.timeout, std::chrono::seconds(5));
    EXPECT_TRUE(request.mergeStandardError);
    EXPECT_THAT(request.arguments, ElementsAre("-o", "BatchMode=yes", "-o", "ConnectTimeout=3",
                                               "-o", "StrictHostKeyChecking=accept-new",
                                               "owner@100.1.1.1", std::string(macSampleScript())));
    EXPECT_THAT(eachOf(scan.state().remoteHealth, &RemoteHealth::hostName),
                ElementsAre("studio", "attic"));
    EXPECT_THAT(statuses(), ElementsAre(Status::reachable, Status::connectionBlocked));
    EXPECT_EQ(scan.state().remoteHealth.front().sampledAt, clock.now());
    EXPECT_EQ(log.lastAction(), "Remote scan complete: 1 of 2 Macs responded.");
    EXPECT_THAT(messages(), ElementsAre("Remote scan complete: 1 of 2 Macs responded.",
                                        "Scanning 2 remote Macs over Tailscale..."));
}

TEST_F(RemoteScanTest, OneMachineIsNoPlural) {
    machines.setDevices({onlineMachine("studio", "100.1.1.1")});
    scan.scanRemoteMacs();
    finishWork();
    EXPECT_THAT(messages(), ElementsAre("Remote scan complete: 1 of 1 Mac responded.",
                                        "Scanning 1 remote Mac over Tailscale..."));
}

TEST_F(RemoteScanTest, MachinesThatCannotBeAskedAreNotAsked) {
    TailDevice noAddress = onlineMachine("a", "");
    noAddress.addresses.clear();
    TailDevice noPath = onlineMachine("b", "100.2.2.2");
    noPath.inMagicSock = false;
    machines.setDevices({noAddress, noPath, onlineMachine("c", "-oProxyCommand=touch"),
                         onlineMachine("d", "100.4.4.4")});
    willAnswer({{"owner@100.4.4.4", ""}});
    scan.scanRemoteMacs();
    finishWork();
    EXPECT_THAT(asked(), ElementsAre("owner@100.4.4.4"));
    EXPECT_THAT(statuses(), ElementsAre(Status::noAddress, Status::noTailnetPath, Status::noAddress,
                                        Status::unknown));
    EXPECT_EQ(log.lastAction(), "Remote scan complete: 0 of 4 Macs responded.");
    EXPECT_THAT(scan.remoteHistory(), IsEmpty());
}

TEST_F(RemoteScanTest, ASecureShellThatMayNotRunLeavesTheRecordAndSaysSo) {
    const CommandSafetyPolicy::AllowedExecutables allowed{"/usr/bin/true"};
    ToolRunner restricted(allowed, machines.launcher, jobs, log);
    RemoteScan blocked(services, machines.tailnet, restricted);
    machines.setDevices({onlineMachine("studio", "100.1.1.1")});
    blocked.scanRemoteMacs();
    finishWork();
    EXPECT_EQ(blocked.state().remoteHealth.at(0).status, Status::unknown);
    EXPECT_THAT(messages(),
                ElementsAre("Remote scan complete: 0 of 1 Mac responded.",
                            "Blocked executable outside Tallowcrest's command allowlist.",
                            "Scanning 1 remote Mac over Tailscale..."));
}

TEST_F(RemoteScanTest, ReadsTheSettingsForEachMachine) {
    const std::vector<std::string> issue{"The relay is unreachable."};
    const std::vector<TailDevice> devices{onlineMachine("studio", "100.1.1.1"),
                                          onlineMachine("attic", "100.2.2.2")};
    machines.tailnet.publish({devices, issue});
    settings.set(&Settings::protectedAppNames, {"indexer"});
    mainQueue.drain();
    scan.scanRemoteMacs();
    machines.launcher.willWrite("proc=812|15.0|90|/opt/indexer\nConnection refused");
    machines.launcher.onLaunch = [&](const ToolRequest&) {
        machines.tailnet.publish({devices, {}});
        settings.set(&Settings::sshUsername, "somebody");
        settings.set(&Settings::protectedAppNames, {});
        mainQueue.drain();
    };
    finishWork();
    ASSERT_THAT(scan.state().remoteHealth, SizeIs(2));
    const RemoteHealth& first = scan.state().remoteHealth.front();
    EXPECT_EQ(first.appImpacts.at(0).protectedCount, 1);
    EXPECT_TRUE(first.setupHint.starts_with("This Mac has Tailscale health issues."));
    const RemoteHealth& second = scan.state().remoteHealth.back();
    EXPECT_EQ(second.appImpacts.at(0).protectedCount, 0);
    EXPECT_FALSE(second.setupHint.starts_with("This Mac has Tailscale health issues."));
    EXPECT_THAT(asked(), ElementsAre("owner@100.1.1.1", "somebody@100.2.2.2"));
}

TEST_F(RemoteScanTest, LinuxMachinesAreScannedOnlyWhenTheSettingsIncludeThem) {
    machines.setDevices({onlineMachine("server", "100.1.1.1", "linux")});
    EXPECT_FALSE(scan.hasMachinesToScan());
    EXPECT_EQ(scan.linuxMachinesLeftOut(), 1U);
    settings.set(&Settings::includeLinuxMachines, true);
    EXPECT_TRUE(scan.hasMachinesToScan());
    EXPECT_EQ(scan.linuxMachinesLeftOut(), 0U);
    TailDevice offline = onlineMachine("cellar", "100.2.2.2", "linux");
    offline.online = false;
    machines.setDevices({onlineMachine("server", "100.1.1.1", "Linux"),
                         onlineMachine("studio", "100.3.3.3"), offline,
                         onlineMachine("phone", "100.4.4.4", "android")});
    machines.launcher.willWrite("mem=50\nproc=10|9|5|sshd\n");
    EXPECT_EQ(scan.scanRemoteMacs(), Outcome::asked("Scanning 2 remote Macs over Tailscale..."));
    finishWork();
    ASSERT_THAT(asked(), ElementsAre("owner@100.1.1.1", "owner@100.3.3.3"));
    EXPECT_EQ(machines.launcher.requests[0].arguments.back(), linuxSampleCommand());
    EXPECT_EQ(machines.launcher.requests[1].arguments.back(), macSampleScript());
    EXPECT_TRUE(scan.state().remoteHealth.at(0).isLinux);
    EXPECT_FALSE(scan.state().remoteHealth.at(1).isLinux);
    EXPECT_EQ(scan.state().remoteHealth.at(0).appImpacts.at(0).protectedCount, 1);
    EXPECT_EQ(scan.state().remoteHealth.at(1).appImpacts.at(0).protectedCount, 0);
    settings.set(&Settings::includeLinuxMachines, false);
    EXPECT_EQ(scan.linuxMachinesLeftOut(), 0U) << "there is a Mac to scan";
    machines.setDevices({onlineMachine("phone", "100.4.4.4", "android"), offline});
    EXPECT_EQ(scan.linuxMachinesLeftOut(), 0U);
}

TEST_F(RemoteScanTest, TellsWhichMachineItAsks) {
    machines.setDevices(
        {onlineMachine("studio", "100.1.1.1"), onlineMachine("attic", "100.2.2.2")});
    std::vector<std::optional<RemoteScanProgress>> told;
    const Subscription subscription =
        scan.observable().subscribe([&] { told.push_back(scan.state().progress); });
    machines.launcher.onLaunch = [this](const ToolRequest&) { mainQueue.drain(); };
    scan.scanRemoteMacs();
    mainQueue.drain();
    finishWork();
    EXPECT_THAT(told, ElementsAre(std::nullopt, RemoteScanProgress{1, 2, "studio", "100.1.1.1"},
                                  RemoteScanProgress{2, 2, "attic", "100.2.2.2"}, std::nullopt));
}

TEST_F(RemoteScanTest, TwoScansRunByThemselvesAndTheLastToEndLeavesItsResults) {
    machines.setDevices({onlineMachine("studio", "100.1.1.1")});
    scan.scanRemoteMacs();
    machines.setDevices(
        {onlineMachine("studio", "100.1.1.1"), onlineMachine("attic", "100.2.2.2")});
    scan.scanRemoteMacs();
    ASSERT_EQ(workQueue.pendingCount(), 2U);
    workQueue.run(1);
    mainQueue.drain();
    EXPECT_TRUE(scan.state().remoteScanInProgress) << "the other one runs";
    EXPECT_THAT(scan.state().remoteHealth, SizeIs(2));
    machines.launcher.onLaunch = [this](const ToolRequest&) { mainQueue.drain(); };
    workQueue.run();
    EXPECT_EQ(scan.state().progress, (RemoteScanProgress{1, 1, "studio", "100.1.1.1"}));
    mainQueue.drain();
    EXPECT_EQ(scan.state().progress, std::nullopt);
    EXPECT_THAT(scan.state().remoteHealth, SizeIs(1));
    EXPECT_FALSE(scan.state().remoteScanInProgress);
    EXPECT_THAT(scan.remoteHistory(), SizeIs(3));
}

TEST_F(RemoteScanTest, AScanThatEndsWhileAnotherRunsLeavesItsProgress) {
    machines.setDevices(
        {onlineMachine("studio", "100.1.1.1"), onlineMachine("attic", "100.2.2.2")});
    scan.scanRemoteMacs();
    machines.setDevices({onlineMachine("cellar", "100.3.3.3")});
    scan.scanRemoteMacs();
    std::vector<std::optional<RemoteScanProgress>> shown;
    std::vector<bool> inProgress;
    machines.launcher.onLaunch = [&](const ToolRequest&) {
        mainQueue.drain();
        shown.push_back(scan.state().progress);
        inProgress.push_back(scan.state().remoteScanInProgress);
        if (workQueue.pendingCount() == 1) {
            workQueue.run();
            mainQueue.drain();
            EXPECT_THAT(eachOf(scan.state().remoteHealth, &RemoteHealth::hostName),
                        ElementsAre("cellar"));
            shown.push_back(scan.state().progress);
            inProgress.push_back(scan.state().remoteScanInProgress);
        }
    };
    workQueue.run();
    mainQueue.drain();
    // One machine of the first scan, the whole second one, then the other machine of the first.
    EXPECT_THAT(asked(), ElementsAre("owner@100.1.1.1", "owner@100.3.3.3", "owner@100.2.2.2"));
    EXPECT_THAT(shown, ElementsAre(RemoteScanProgress{1, 2, "studio", "100.1.1.1"},
                                   RemoteScanProgress{1, 1, "cellar", "100.3.3.3"},
                                   RemoteScanProgress{1, 2, "studio", "100.1.1.1"},
                                   RemoteScanProgress{2, 2, "attic", "100.2.2.2"}));
    EXPECT_THAT(inProgress, ElementsAre(true, true, true, true));
    EXPECT_THAT(eachOf(scan.state().remoteHealth, &RemoteHealth::hostName),
                ElementsAre("studio", "attic"));
    EXPECT_FALSE(scan.state().remoteScanInProgress);
}

TEST_F(RemoteScanTest, TheEndOfTheProgramEndsItBetweenTwoMachines) {
    machines.setDevices(
        {onlineMachine("studio", "100.1.1.1"), onlineMachine("attic", "100.2.2.2")});
    machines.launcher.onLaunch = [this](const ToolRequest&) { jobs.stopAll(); };
    scan.scanRemoteMacs();
    workQueue.run();
    EXPECT_THAT(asked(), ElementsAre("owner@100.1.1.1"));
}

TEST_F(RemoteScanTest, OnlyReachableMachinesAreCountedAndKept) {
    RemoteHealth failed = reachable("attic", "Arc");
    failed.status = Status::authNeeded;
    failed.online = false;
    RemoteHealth withoutFigures = reachable("cellar", "");
    withoutFigures.appImpacts.clear();
    withoutFigures.cpuPercent.reset();
    withoutFigures.memoryPercent = 61.0;
    scan.finishRemoteScan({reachable("studio", "Arc", 12.0), failed, withoutFigures});
    scan.finishRemoteScan({reachable("studio", "Arc", 13.0)});
    EXPECT_EQ(scan.state().remoteTopAppSamples, (SettingsTable{{"studio: Arc", 2}}));
    ASSERT_THAT(scan.remoteHistory(), SizeIs(3));
    const RemoteHistoryPoint& first = scan.remoteHistory()[0];
    EXPECT_EQ(first,
              (RemoteHistoryPoint{first.id, "studio", {700000000.0}, 12.0, 0.0, "Reachable"}));
    EXPECT_EQ(scan.remoteHistory()[1].hostName, "cellar");
    EXPECT_EQ(scan.remoteHistory()[1].cpu, 0.0);
    EXPECT_EQ(scan.remoteHistory()[1].memory, 61.0);
    EXPECT_NE(first.id, scan.remoteHistory()[2].id);
    EXPECT_EQ(store.read(settings_keys::remoteTopAppsKey),
              SettingsValue(SettingsTable{{"studio: Arc", 2}}));
    EXPECT_EQ(record_json::decodeRemoteHistory(store.json(settings_keys::remoteHistoryKey)),
              scan.remoteHistory());

    const RemoteScan restarted(services, machines.tailnet, machines.tools);
    EXPECT_THAT(restarted.state().remoteHealth, IsEmpty());
    EXPECT_EQ(restarted.remoteHistory(), scan.remoteHistory());
    EXPECT_EQ(restarted.state().remoteTopAppSamples, scan.state().remoteTopAppSamples);
}

TEST_F(RemoteScanTest, TheHistoryKeepsTheNewest720Points) {
    std::vector<RemoteHealth> results;
    for (int i = 0; i < 720; ++i) {
        results.push_back(reachable("studio", "Arc", i));
    }
    scan.finishRemoteScan(results);
    EXPECT_THAT(scan.remoteHistory(), SizeIs(720));
    scan.finishRemoteScan({reachable("studio", "Arc", 5000.0)});
    EXPECT_THAT(scan.remoteHistory(), SizeIs(720));
    EXPECT_EQ(scan.remoteHistory().front().cpu, 1.0);
    EXPECT_EQ(scan.remoteHistory().back().cpu, 5000.0);
}

TEST_F(RemoteScanTest, Of121CountsTheHighest60AreKept) {
    std::vector<RemoteHealth> results;
    for (int app = 0; app < 120; ++app) {
        for (int times = 0; times <= app % 40; ++times) {
            results.push_back(reachable("studio", std::to_string(app)));
        }
    }
    scan.finishRemoteScan(results);
    EXPECT_THAT(scan.state().remoteTopAppSamples, SizeIs(120));
    scan.finishRemoteScan({reachable("studio", "new")});
    const SettingsTable& kept = scan.state().remoteTopAppSamples;
    EXPECT_THAT(kept, SizeIs(60));
    for (const auto& [name, count] : kept) {
        EXPECT_GT(count, 20) << name;
    }
    EXPECT_EQ(store.read(settings_keys::remoteTopAppsKey), SettingsValue(kept));
}

TEST_F(RemoteScanTest, AResultAfterTheComponentIsGoneReachesNobody) {
    auto gone = std::make_unique<RemoteScan>(services, machines.tailnet, machines.tools);
    machines.setDevices({onlineMachine("studio", "100.1.1.1")});
    gone->scanRemoteMacs();
    gone.reset();
    finishWork();
    EXPECT_THAT(messages(), ElementsAre("Scanning 1 remote Mac over Tailscale..."));
    EXPECT_THAT(machines.launcher.requests, IsEmpty());
}

}  // namespace
}  // namespace tallowcrest

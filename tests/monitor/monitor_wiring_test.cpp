#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/actions.h"
#include "actions/automation.h"
#include "actions/local_actions.h"
#include "actions/review_target.h"
#include "core/activity_log.h"
#include "core/confirmation_desk.h"
#include "core/record_json.h"
#include "core/settings/settings.h"
#include "core/settings/stored_lists.h"
#include "monitor/auto_rules.h"
#include "monitor/system_monitor.h"
#include "remote/remote.h"
#include "remote/remote_setup_script.h"
#include "reports/reports.h"
#include "sampling/latest_sample.h"
#include "tests/support/each_of.h"
#include "tests/support/fake_machine.h"
#include "tests/support/remote_machines.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// The effects of one component of the monitor on another.
class MonitorWiring : public ::testing::Test {
protected:
    MonitorWiring() {
        machine.openRoute = [this](AppRoute route) { opened.push_back(route); };
        machine.storeOnPasteboard = [this](const std::string& text) { copied.push_back(text); };
    }

    SystemMonitor& monitor() { return machine.monitor(); }

    FakeMachine machine;
    std::vector<AppRoute> opened;
    std::vector<std::string> copied;
};

TEST_F(MonitorWiring, AButtonOfAWarningOpensItsRoute) {
    monitor();
    for (const auto& [identifier, route] :
         {std::pair{"OPEN_OPTIMIZE", AppRoute::optimizationSuggestions},
          std::pair{"OPEN_AI", AppRoute::aiAdvisor},
          std::pair{"SCAN_REMOTES", AppRoute::remoteMacs},
          std::pair{NotificationCenter::plainClick, AppRoute::overview}}) {
        opened.clear();
        machine.notifications.respond(identifier);
        EXPECT_THAT(opened, ElementsAre(route)) << identifier;
    }
}

TEST_F(MonitorWiring, TheResultsOfAScanReachInsightsAndReport) {
    machine.setTailDevices({tailDevice("macOS", true)});
    machine.notifications.respond("SCAN_REMOTES");
    EXPECT_TRUE(monitor().remote().scan.state().remoteScanInProgress);
    machine.finishSamples();
    EXPECT_EQ(monitor().log().lastAction(), "Remote scan complete: 0 of 1 Mac responded.");
    monitor().remote().scan.finishRemoteScan({{.hostName = "studio",
                                               .address = "100.1.2.3",
                                               .online = true,
                                               .status = RemoteHealth::Status::reachable,
                                               .memoryPercent = 91.0,
                                               .appImpacts = {{.name = "Arc"}}}});
    machine.tick();
    EXPECT_THAT(eachOf(monitor().sample().sessionInsights(), &SessionInsight::kind),
                ::testing::IsSupersetOf(
                    {SessionInsight::Kind::remoteWatch, SessionInsight::Kind::remoteRepeater}));
    EXPECT_THAT(monitor().reports().diagnosticsReport(false).value(), HasSubstr("100.1.2.3"));
}

TEST_F(MonitorWiring, ABusySampleCausesAWarning) {
    machine.addProcess(700, "/usr/bin/photo-indexer", 390.0, 900.0);
    machine.tick();
    EXPECT_THAT(machine.notifications.posted, SizeIs(1));
    EXPECT_THAT(machine.notifications.posted.front().body, HasSubstr("photo-indexer"));
    EXPECT_EQ(monitor().actions().review.selectedAppImpactName(), "photo-indexer");
    machine.tick();
    EXPECT_THAT(machine.notifications.posted, SizeIs(1));
}

TEST_F(MonitorWiring, TheSwitchForTheButtonsRegistersThemAgain) {
    monitor().startMonitoring();
    EXPECT_THAT(machine.notifications.categories, SizeIs(1));
    monitor().actions().automation.set(AutomationSwitch::notificationsIncludeActions, false);
    machine.mainQueue.turn();
    EXPECT_THAT(machine.notifications.categories, IsEmpty());
    monitor().actions().automation.set(AutomationSwitch::notificationsIncludeActions, true);
    machine.mainQueue.turn();
    EXPECT_THAT(machine.notifications.categories, SizeIs(1));
}

TEST_F(MonitorWiring, BeforeTheFirstSampleThereIsNoReport) {
    monitor().reports().copyDiagnosticsReport();
    EXPECT_THAT(copied, IsEmpty());
    EXPECT_EQ(monitor().log().lastAction(), "Monitoring started.");
    monitor().reports().exportDiagnosticsReport();
    EXPECT_EQ(monitor().log().lastAction(), "No diagnostic sample is available yet.");
}

TEST_F(MonitorWiring, TheReportContainsEveryPartOfTheState) {
    machine.store.write(settings_keys::sshUsernameKey, std::string("someone"));
    AITrustRecord record;
    record.actionType = "local_purge";
    record.approvedCount = 3;
    const std::map<std::string, AITrustRecord> records{{record.actionType, record}};
    machine.store.write(stored::trustRecords.key, JSONData{record_json::encode(records).value()});
    machine.addProcess(700, "/usr/bin/photo-indexer", 40.0, 900.0);
    monitor().actions().automation.set(AutomationSwitch::autoScanRemoteMacs, true);
    monitor().actions().local.toggleNeverQuit("Docker");
    machine.tick();
    monitor().reports().copyDiagnosticsReport();
    ASSERT_THAT(copied, SizeIs(1));
    for (const char* part :
         {"CPU: 10%", "SSH user: someone", "700\t40.0% CPU\t900 MB\tphoto-indexer",
          "No remote scan results.", "Never Quit Apps\nDocker\n", "Auto-scan remote Macs: On",
          "OpenAI key saved: No",
          "Last AI insight: Local recommendations are active. Connect paid AI for deeper "
          "explanations and follow-up questions.\n",
          "local_purge\ttrust ", "Docker added to Never Quit.", "Session Insights\nPeak CPU"}) {
        EXPECT_THAT(copied.front(), HasSubstr(part));
    }
    EXPECT_EQ(monitor().log().lastAction(), "Copied a performance report to the clipboard.");
}

TEST_F(MonitorWiring, TheReportContainsTheLastScanAndWhatItMeans) {
    monitor().remote().scan.finishRemoteScan(
        {{.id = "a",
          .hostName = "studio",
          .address = "100.64.0.7",
          .online = true,
          .status = RemoteHealth::Status::reachable,
          .memoryPercent = 70.5,
          .appImpacts = {{.name = "postgres", .totalCPU = 10}},
          .recommendation = "Remote Mac looks healthy."},
         {.id = "b", .hostName = "mini", .address = "no address"}});
    machine.tick();
    monitor().reports().copyDiagnosticsReport();
    ASSERT_THAT(copied, SizeIs(1));
    for (const char* part :
         {"Remote Watch\tstudio\tHighest scanned remote memory pressure: 71%.\n",
          "Remote Repeater\tstudio: postgres\tLed a remote scan 1 time.\n",
          "Remote Health\nstudio\t100.64.0.7\tReachable\tmacOS unknown\tCPU 0%\tMemory 71%\t",
          "\nmini\tno address\tNeeds Setup\t"}) {
        EXPECT_THAT(copied.front(), HasSubstr(part));
    }
}

/// The members of a group that depend on the Never Quit list.
struct Safety {
    std::optional<std::int64_t> topPID;
    std::int64_t protectedCount = 0;

    bool operator==(const Safety&) const = default;
};

TEST_F(MonitorWiring, TheMemoryOfAnEarlierRunDoesNotAskForAPurge) {
    machine.store.write(settings_keys::autoPurgeKey, true);
    machine.metrics->memory.pressure = 95.0;
    for (int i = 0; i < 15; ++i) {
        machine.tick();
        EXPECT_EQ(monitor().confirmations().pendingConfirmation().has_value(), i == 14) << i;
    }
    machine.restart();
    for (int i = 0; i < 15; ++i) {
        EXPECT_GE(monitor().sample().history().size(), 15U);
        EXPECT_FALSE(monitor().confirmations().pendingConfirmation()) << i;
        machine.tick();
    }
    EXPECT_TRUE(monitor().confirmations().pendingConfirmation());
}

TEST_F(MonitorWiring, AReadOnlyRunWarnsAndDoesNothingElse) {
    machine.store.write(settings_keys::autoPurgeKey, true);
    machine.store.write(settings_keys::autoRemoteScanKey, true);
    machine.metrics->memory.pressure = 95.0;
    machine.addProcess(700, "/usr/bin/photo-indexer", 390.0, 900.0);
    for (const bool readOnly : {true, false}) {
        machine.readOnly = readOnly;
        machine.notifications.posted.clear();
        machine.restart();
        machine.setTailDevices({tailDevice("macOS", true)});
        for (int i = 0; i < 20; ++i) {
            machine.tick();
        }
        EXPECT_THAT(machine.notifications.posted, SizeIs(1));
        EXPECT_EQ(monitor().actions().review.selectedPID().has_value(), !readOnly);
        EXPECT_EQ(monitor().confirmations().pendingConfirmation().has_value(), !readOnly);
        EXPECT_EQ(monitor().remote().scan.state().remoteHealth.size(), readOnly ? 0U : 1U);
    }
}

TEST_F(MonitorWiring, AChangedNeverQuitListRegroupsTheSampleAtOnce) {
    const Safety notListed{701, 1};
    const Safety listed{700, 2};
    machine.addProcess(700, "/usr/libexec/firefox-helper", 60.0, 300.0);
    machine.addProcess(701, "/opt/firefox/firefox", 20.0, 200.0);
    machine.tick();
    const auto firefox = [this] {
        const AppImpact& group = monitor().sample().snapshot()->appImpacts.front();
        EXPECT_EQ(group.name, "Firefox");
        return Safety{group.topPID, group.protectedCount};
    };
    EXPECT_EQ(firefox(), notListed);
    monitor().actions().local.toggleNeverQuit("Firefox");
    EXPECT_EQ(firefox(), listed);
    machine.tick();
    EXPECT_EQ(firefox(), listed);
    monitor().actions().local.toggleNeverQuit("Firefox");
    EXPECT_EQ(firefox(), notListed);
    monitor().actions().review.selectTopApp();
    EXPECT_EQ(monitor().actions().review.selectedPID(), 701);
}

TEST_F(MonitorWiring, ASampleUnderWayDoesNotRestoreTheOldNeverQuitList) {
    machine.addProcess(700, "/usr/libexec/firefox-helper", 60.0, 300.0);
    machine.addProcess(701, "/opt/firefox/firefox", 20.0, 200.0);
    monitor().actions().local.toggleNeverQuit("Firefox");
    monitor().refresh();
    monitor().actions().local.toggleNeverQuit("Firefox");
    machine.finishSamples();
    const AppImpact& group = monitor().sample().snapshot()->appImpacts.front();
    EXPECT_EQ((Safety{group.topPID, group.protectedCount}), (Safety{701, 1}));
}

TEST_F(MonitorWiring, ExportsIntoTheReportFolder) {
    machine.addProcess(700, "/usr/bin/photo-indexer", 40.0, 900.0);
    machine.tick();
    const auto expected = monitor().reports().diagnosticsReport(false);
    monitor().reports().exportDiagnosticsReport();
    machine.workQueue.run();
    machine.mainQueue.drain();
    ASSERT_THAT(machine.reportFolder->written, SizeIs(1));
    const auto& [name, text] = *machine.reportFolder->written.begin();
    EXPECT_EQ(text, expected);
    EXPECT_EQ(monitor().log().lastAction(), "Exported diagnostics to " + name + ".");
    EXPECT_THAT(machine.reportFolder->revealed, ElementsAre(name));
}

TEST_F(MonitorWiring, HelpsWithOtherMachinesThroughTheFolderAndTheClipboard) {
    monitor().remote().actions.exportRemoteSetupScript();
    machine.workQueue.run();
    machine.mainQueue.drain();
    EXPECT_EQ(monitor().log().lastAction(), "Exported remote SSH setup script.");
    ASSERT_THAT(machine.reportFolder->scripts, SizeIs(1));
    EXPECT_EQ(machine.reportFolder->scripts.begin()->second, remoteSetupScript);
    monitor().remote().actions.copyPortTestCommand({.hostName = "studio", .address = "100.64.0.7"});
    EXPECT_THAT(copied, ElementsAre("nc -vz -w 5 '100.64.0.7' 22"));
}

TEST_F(MonitorWiring, ProfilesOfOtherMachinesSurviveARestart) {
    monitor().remote().profiles.updateRemoteProfile("studio", {.allowRemotePurge = true});
    machine.restart();
    EXPECT_TRUE(monitor().remote().profiles.remoteProfile("studio").allowRemotePurge);
}

}  // namespace
}  // namespace tallowcrest

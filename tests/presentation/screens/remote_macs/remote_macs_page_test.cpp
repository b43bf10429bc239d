#include "presentation/screens/remote_macs/remote_macs_page.h"

#include <chrono>

#include <QAbstractItemModelTester>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QScrollBar>

#include "core/settings/settings.h"
#include "core/settings/settings_owner.h"
#include "tests/presentation/screens/remote_macs/remote_macs_fixture.h"
#include "tests/presentation/shown_texts.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class RemoteMacsPageTest : public RemoteMacsFixture {};

// What it shows ----------------------------------------------------------------------------------

TEST_F(RemoteMacsPageTest, ItsPartsStandInTheirOrder) {
    showPage();
    remote().tailnet.publish({fleetPeers(3), {"No DNS server answers."}});
    finishScan(4, 1);
    int below = -1000;
    for (const char* each :
         {"remote.summary", "remote.summary-card-1", "remote.timeline", "remote.detail",
          "remote.tailscale", "remote.local-health", "remote.setup", "remote.health"}) {
        ASSERT_NE(visible(each), nullptr) << each;
        const int top = visible(each)->mapTo(&window(), QPoint()).y();
        EXPECT_GT(top, below) << each;
        below = top;
    }
}

TEST_F(RemoteMacsPageTest, BeforeTheFirstScanNothingIsReachableAndThePeersAreListed) {
    showPage(2000);
    EXPECT_EQ(textOf("remote.summary.attention"), u"0 remote Macs need attention."_s);
    EXPECT_EQ(textOf("remote.summary.scan"), u"Not scanned yet"_s);
    EXPECT_THAT(shownCards(*visible("remote.summary-card-1")->parentWidget()),
                ElementsAre("Reachable: 0, No remote scan yet.",
                            "Known Peers: 2,000, Discovered from Tailscale status.",
                            "Highest Memory: –, Highest pressure from the last remote scan."));
    EXPECT_EQ(textOf("remote.detail.empty"), u"Scan remote Macs, then inspect one machine here."_s);
    EXPECT_EQ(peers().rowCount(), 2000);
    EXPECT_EQ(visible("remote.health"), nullptr);
    EXPECT_EQ(visible("remote.local-health"), nullptr);
}

TEST_F(RemoteMacsPageTest, WithoutPeersItSaysSo) {
    showPage(0);
    EXPECT_EQ(textOf("remote.tailscale.empty"),
              u"No Tailscale peers were reported by the local CLI."_s);
    EXPECT_EQ(visible("remote.tailscale.peers"), nullptr);
    machine.setTailDevices(fleetPeers(1));
    settle();
    EXPECT_EQ(visible("remote.tailscale.empty"), nullptr);
    EXPECT_NE(visible("remote.tailscale.peers"), nullptr);
}

TEST_F(RemoteMacsPageTest, WithoutAnAnswerOfTheTailnetItSaysSo) {
    machine.tailscaleDaemon = [](std::string_view, const std::stop_token&) { return std::nullopt; };
    showPage(0);
    tick();
    tick();
    EXPECT_TRUE(
        textOf("remote.tailscale.empty").endsWith(u"may not be installed or not be running."_s));
}

TEST_F(RemoteMacsPageTest, WithLinuxMachinesAloneItLeadsToTheSettingThatIncludesThem) {
    showPage(1);
    EXPECT_EQ(visible("remote.tailscale.left-out"), nullptr);
    std::vector<TailDevice> peers = fleetPeers(2);
    peers[0].os = peers[1].os = "linux";
    machine.setTailDevices(peers);
    settle();
    EXPECT_EQ(textOf("remote.tailscale.left-out"),
              u"2 Linux machines are online. Turn on Include Linux machines in the automation "
              "settings to scan them."_s);
    click("remote.tailscale.automation-settings");
    EXPECT_EQ(window().state().navigation.settingsTab(), SettingsTabKind::automation);
    EXPECT_TRUE(window().state().navigation.showSettings());
    machine.monitor().settingsOwner().set(&Settings::includeLinuxMachines, true);
    settle();
    EXPECT_EQ(visible("remote.tailscale.left-out"), nullptr);
}

TEST_F(RemoteMacsPageTest, AScanFillsSummaryDetailAndBlocks) {
    showPage();
    finishScan(4, 1);
    EXPECT_EQ(textOf("remote.summary.attention"), u"1 remote Mac need attention."_s);
    EXPECT_EQ(textOf("remote.summary.scan"), u"Last scan: just now"_s);
    EXPECT_EQ(visible<QPushButton>("remote.summary-1.show")->accessibleName(), u"Show mac-3"_s);
    EXPECT_EQ(visible<QPushButton>("remote.summary-2.show")->accessibleName(), u"Show mac-2"_s);
    EXPECT_EQ(visible("remote.summary-3.show"), nullptr);
    EXPECT_EQ(visible("remote.detail")->accessibleName(), u"Remote Detail: mac-1"_s);
    EXPECT_THAT(blockNames(), ElementsAre("mac-1", "mac-2", "mac-3", "mac-4"));
    EXPECT_FALSE(blocks()[0]->isExpanded());
    EXPECT_TRUE(blocks()[1]->isExpanded()) << "it is not reachable";
    EXPECT_TRUE(blocks()[2]->isExpanded()) << "its memory is above the threshold";
}

TEST_F(RemoteMacsPageTest, TheInspectedMachineIsInTheTimeline) {
    showPage();
    std::vector<RemoteHealth> machines = fleetHealth(6, 0, machine.clock.now());
    for (RemoteHealth& each : machines) {
        each.cpuPercent = each.memoryPercent = each.hostName == "mac-5" ? 1.0 : 50.0;
    }
    finishScan(machines);
    const auto drawn = [this] {
        return visible("remote.timeline.memory")->accessibleDescription().toStdString();
    };
    EXPECT_THAT(drawn(), testing::Not(HasSubstr("mac-5")));
    window().state().navigation.setSelectedRemoteID(machines[4].id);
    settle();
    EXPECT_THAT(drawn(), HasSubstr("mac-5 1 percent"));
    goTo(AppRoute::history);
    settle();
    EXPECT_THAT(visible("history.remote-timeline.memory")->accessibleDescription().toStdString(),
                HasSubstr("mac-5 1 percent"));
}

TEST_F(RemoteMacsPageTest, TheDetailsOfAFewMachinesAreOpen) {
    showPage();
    finishScan(1, 0);
    EXPECT_TRUE(blocks().at(0)->isExpanded());
}

TEST_F(RemoteMacsPageTest, AgesGrowWhileThePageShows) {
    showPage();
    finishScan(1, 0);
    machine.clock.advance(std::chrono::seconds(150));
    machine.mainQueue.fireTimers();
    settle();
    EXPECT_EQ(textOf("remote.summary.scan"), u"Last scan: 2 min ago"_s);
    EXPECT_THAT(shownCards(*visible("remote.detail.fact-2")->parentWidget())[1],
                HasSubstr("Checked 2 min ago"));
    EXPECT_THAT(machine.mainQueue.timerIntervals(), testing::Contains(std::chrono::seconds(20)));
    goTo(AppRoute::chat);
    EXPECT_THAT(machine.mainQueue.timerIntervals(),
                testing::Not(testing::Contains(std::chrono::seconds(20))));
}

TEST_F(RemoteMacsPageTest, OpenedBeforeTheFirstSampleItIsRefreshedByThatOneAlone) {
    show();
    goTo(AppRoute::remoteMacs);
    finishScan(1, 0);
    machine.finishSamples();
    settle();
    EXPECT_EQ(textOf("remote.summary.attention"), u"0 remote Macs need attention."_s);
    machine.clock.advance(std::chrono::seconds(150));
    tick();
    settle();
    EXPECT_EQ(textOf("remote.summary.scan"), u"Last scan: just now"_s) << "a sample refreshed it";
}

TEST_F(RemoteMacsPageTest, TheSectionOfThePeersStaysClosed) {
    showPage();
    click("section.tailscale");
    EXPECT_EQ(visible("remote.tailscale.scan"), nullptr);
    EXPECT_TRUE(machine.monitor().settings().collapsedSections.contains("tailscale"));
    click("section.tailscale");
    EXPECT_NE(visible("remote.tailscale.scan"), nullptr);
}

// Peers ------------------------------------------------------------------------------------------

TEST_F(RemoteMacsPageTest, EachPeerIsARowThatIsReadAsOneText) {
    showPage(0);
    const QAbstractItemModelTester tester(&peers(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    machine.setTailDevices(
        {{.id = "1", .name = "studio", .addresses = {"100.64.0.7"}, .os = "macOS", .active = true},
         {.id = "2", .name = "<b>nas</b>\n", .os = "linux"}});
    settle();
    const auto spoken = [this](int row) {
        return peers().index(row).data(Qt::AccessibleTextRole).toString();
    };
    EXPECT_EQ(spoken(0), u"studio, macOS, 100.64.0.7, Tailscale path: path active"_s);
    EXPECT_EQ(spoken(1), u"<b>nas</b>\uFFFD, linux, no address, Offline"_s);
    for (const std::size_t count : {40U, 3U, 0U, 7U}) {
        machine.setTailDevices(fleetPeers(count));
        settle();
        ASSERT_EQ(peers().rowCount(), static_cast<int>(count));
    }
    EXPECT_EQ(spoken(6),
              u"mac-7.tail1a2b3.ts.net, macOS, 100.64.0.7, "
              "Tailscale path: 192.0.2.17:41641"_s);
}

TEST_F(RemoteMacsPageTest, APeerThatChangesDoesNotScrollTheList) {
    showPage(2000);
    QScrollBar* bar = visible<QListView>("remote.tailscale.peers")->verticalScrollBar();
    bar->setValue(1000);
    std::vector<TailDevice> changed = fleetPeers(2000);
    std::rotate(changed.begin(), changed.begin() + 1, changed.begin() + 1500);
    machine.setTailDevices(changed);
    settle();
    EXPECT_EQ(bar->value(), 1000);
}

// The scan ---------------------------------------------------------------------------------------

TEST_F(RemoteMacsPageTest, WhileAScanRunsItsButtonIsDisabledAndOthersMayScan) {
    showPage();
    click("remote.tailscale.scan");
    ASSERT_TRUE(remote().scan.state().remoteScanInProgress);
    const auto* button = visible<QPushButton>("remote.tailscale.scan");
    EXPECT_EQ(button->text(), u"Scanning"_s);
    EXPECT_FALSE(button->isEnabled());
    EXPECT_EQ(textOf("remote.tailscale.progress"), u"Beginning the scan"_s);
    EXPECT_EQ(remote().scan.scanRemoteMacs().kind, Outcome::Kind::asked);
    machine.finishSamples();
    settle();
    EXPECT_EQ(button->text(), u"Scan Remote Macs"_s);
    EXPECT_TRUE(button->isEnabled());
    EXPECT_EQ(textOf("remote.tailscale.progress"), QString());
}

TEST_F(RemoteMacsPageTest, ARunningScanTellsWhichMachineOfHowMany) {
    showPage();
    std::vector<QString> told;
    machine.toolLauncher.onLaunch = [&](const ToolRequest&) {
        settle();
        told.push_back(textOf("remote.tailscale.progress"));
        EXPECT_EQ(textOf("remote.summary.scan"), told.back());
    };
    click("remote.tailscale.scan");
    machine.finishSamples();
    ASSERT_EQ(told.size(), 6U);
    EXPECT_EQ(told[0], u"Scanning mac-1, 1 of 6"_s);
    EXPECT_EQ(told[2], u"Scanning mac-3, 3 of 6"_s);
}

TEST_F(RemoteMacsPageTest, TheHeaderBeginsOneScanAtATime) {
    showPage();
    EXPECT_EQ(visible<QPushButton>("remote.scan")->text(), u"Scan Remotes"_s);
    click("remote.scan");
    ASSERT_TRUE(remote().scan.state().remoteScanInProgress);
    settle();
    EXPECT_EQ(visible<QPushButton>("remote.scan")->text(), u"Scanning"_s);
    EXPECT_EQ(visible("remote.scan")->accessibleName(), u"Scanning"_s);
    const std::size_t events = machine.monitor().log().activityLog().size();
    const std::size_t jobs = machine.workQueue.pendingCount();
    click("remote.scan");
    EXPECT_EQ(machine.workQueue.pendingCount(), jobs);
    EXPECT_EQ(machine.monitor().log().activityLog().size(), events);
    machine.finishSamples();
    settle();
    EXPECT_EQ(visible<QPushButton>("remote.scan")->text(), u"Scan Remotes"_s);
}

TEST_F(RemoteMacsPageTest, AMachineKeepsItsBlockFromScanToScan) {
    showPage();
    finishScan(4, 1);
    const auto before = blocks();
    std::vector<RemoteHealth> next = fleetHealth(5, 1, machine.clock.now());
    std::swap(next[0], next[4]);
    next.erase(next.begin() + 3);
    const QPointer<RemoteHealthBlock> gone = before[3];
    finishScan(next);
    EXPECT_THAT(blockNames(), ElementsAre("mac-5", "mac-2", "mac-3", "mac-1"));
    const auto after = blocks();
    EXPECT_EQ(after[1], before[1]);
    EXPECT_EQ(after[2], before[2]);
    EXPECT_EQ(after[3], before[0]);
    EXPECT_EQ(gone, nullptr);
}

TEST_F(RemoteMacsPageTest, TheTabKeyFollowsTheOrderOfTheMachines) {
    showPage();
    std::vector<RemoteHealth> machines = fleetHealth(5, 0, machine.clock.now());
    machines[1].status = RemoteHealth::Status::authNeeded;
    std::vector<RemoteHealth> fewer(machines.begin() + 1, machines.end());
    finishScan(fewer);
    finishScan(machines);
    std::vector<std::string> heads;
    for (QWidget* each = window().nextInFocusChain(); each != &window();
         each = each->nextInFocusChain()) {
        if (each->objectName().startsWith(u"remote.machine"_s) &&
            each->objectName().endsWith(u".head"_s)) {
            heads.push_back(each->parentWidget()->accessibleName().toStdString());
        }
    }
    EXPECT_THAT(heads, ElementsAre("mac-1", "mac-2", "mac-3", "mac-4", "mac-5"));
}

TEST_F(RemoteMacsPageTest, TheFirstSampleEndsTheWaitWhileThePageShows) {
    window().resize(1200, 800);
    show();
    goTo(AppRoute::remoteMacs);
    EXPECT_EQ(textOf("remote.summary.attention"), u"Sampling this Mac..."_s);
    machine.finishSamples();
    settle();
    EXPECT_EQ(textOf("remote.summary.attention"), u"0 remote Macs need attention."_s);
}

TEST_F(RemoteMacsPageTest, TwoRecordsWithOneIdentifierHaveTwoBlocks) {
    showPage();
    std::vector<RemoteHealth> twins = fleetHealth(2, 0, machine.clock.now());
    twins[1].id = twins[0].id;
    finishScan(twins);
    finishScan(twins);
    EXPECT_THAT(blockNames(), ElementsAre("mac-1", "mac-2"));
    visible<QPushButton>("remote.machine-2.process-500.quit")->click();
    settle();
    EXPECT_EQ(machine.monitor().confirmations().pendingConfirmation()->hostName, "mac-2");
}

TEST_F(RemoteMacsPageTest, AScanLeavesTheFieldInWhichTheOwnerTypesWhereItIs) {
    showPage();
    finishScan(4, 1);
    QScrollBar* bar = scrollAreaAround(*visible("remote.health")).verticalScrollBar();
    bar->setValue(bar->maximum());
    settle();
    auto* field = visible<QLineEdit>("remote.machine-3.nickname");
    ASSERT_NE(field, nullptr);
    field->setFocus();
    field->clear();
    QTest::keyClicks(field, u"Big one "_s);
    settle();
    const int place = placeInView("remote.machine-3.nickname");
    // More machines than before need attention, which makes the summary higher.
    std::vector<RemoteHealth> next = fleetHealth(4, 1, machine.clock.now());
    next[0].status = next[3].status = RemoteHealth::Status::authNeeded;
    remote().tailnet.publish({fleetPeers(40), {"One.", "Two."}});
    finishScan(next);
    EXPECT_EQ(visible<QLineEdit>("remote.machine-3.nickname"), field);
    EXPECT_TRUE(field->hasFocus());
    EXPECT_EQ(field->text(), u"Big one "_s);
    EXPECT_EQ(placeInView("remote.machine-3.nickname"), place);
    EXPECT_EQ(remote().profiles.remoteProfile("mac-3").nickname, "Big one");
    EXPECT_EQ(visible<QPushButton>("remote.summary-1.show")->accessibleName(), u"Show Big one"_s);
}

}  // namespace
}  // namespace tallowcrest

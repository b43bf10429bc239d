#include "presentation/screens/remote_macs/remote_macs_page.h"

#include <chrono>

#include <QAbstractItemModelTester>
#include <QAction>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QScrollBar>

#include "core/settings/settings.h"
#include "core/settings/settings_owner.h"
#include "presentation/screens/remote_macs/peer_list_model.h"
#include "presentation/screens/remote_macs/remote_health_block.h"
#include "remote/remote.h"
#include "tests/presentation/remote_fleet.h"
#include "tests/presentation/shown_texts.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class RemoteMacsPageTest : public WindowFixture {
protected:
    RemoteMacsPageTest() {
        machine.storeOnPasteboard = [this](const std::string& text) { copied.push_back(text); };
    }

    void showPage(std::size_t peers = 6) {
        window().resize(1200, 800);
        showWithSample();
        machine.setTailDevices(fleetPeers(peers));
        goTo(AppRoute::remoteMacs);
    }

    Remote& remote() { return machine.monitor().remote(); }

    void finishScan(std::vector<RemoteHealth> machines) {
        remote().scan.finishRemoteScan(std::move(machines));
        settle();
    }
    void finishScan(std::size_t machines, std::size_t troubled) {
        finishScan(fleetHealth(machines, troubled, machine.clock.now()));
    }

    std::vector<RemoteHealthBlock*> blocks() {
        std::vector<RemoteHealthBlock*> found;
        for (auto* each : window().findChildren<RemoteHealthBlock*>()) {
            if (each->isVisible()) {
                found.push_back(each);
            }
        }
        std::ranges::sort(found, {}, [](const auto* each) { return each->y(); });
        return found;
    }
    std::vector<std::string> blockNames() {
        std::vector<std::string> names;
        for (const auto* each : blocks()) {
            names.push_back(each->accessibleName().toStdString());
        }
        return names;
    }

    PeerListModel& peers() { return *window().findChild<PeerListModel*>(); }

    int placeInView(const char* identifier) {
        const QWidget& part = *visible(identifier);
        return part.mapTo(scrollAreaAround(part).viewport(), QPoint()).y();
    }

    /// Uses a command of the first machine, which has a button or an entry of a menu.
    void use(const char* tool) {
        const QString name = u"remote.machine-1."_s + QString::fromLatin1(tool);
        if (auto* button = visible<QPushButton>(name.toLatin1().constData())) {
            button->click();
        } else {
            auto* entry = window().findChild<QAction*>(name);
            ASSERT_NE(entry, nullptr) << tool;
            ASSERT_TRUE(entry->isEnabled()) << tool;
            entry->trigger();
        }
        settle();
    }

    std::vector<std::string> copied;
};

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

TEST_F(RemoteMacsPageTest, AScanFillsSummaryDetailAndBlocks) {
    showPage();
    finishScan(4, 1);
    EXPECT_EQ(textOf("remote.summary.attention"), u"1 remote Mac need attention."_s);
    EXPECT_EQ(textOf("remote.summary.scan"), u"Last scan: just now"_s);
    EXPECT_EQ(visible<QPushButton>("remote.summary-1.show")->accessibleName(), u"Show mac-2"_s);
    EXPECT_EQ(visible<QPushButton>("remote.summary-2.show")->accessibleName(), u"Show mac-3"_s);
    EXPECT_EQ(visible("remote.summary-3.show"), nullptr);
    EXPECT_EQ(visible("remote.detail")->accessibleName(), u"Remote Detail: mac-1"_s);
    EXPECT_THAT(blockNames(), ElementsAre("mac-1", "mac-2", "mac-3", "mac-4"));
    EXPECT_FALSE(blocks()[0]->isExpanded());
    EXPECT_TRUE(blocks()[1]->isExpanded()) << "it is not reachable";
    EXPECT_TRUE(blocks()[2]->isExpanded()) << "its memory is above the threshold";
}

TEST_F(RemoteMacsPageTest, TheDetailsOfAFewMachinesAreOpen) {
    showPage();
    finishScan(1, 0);
    EXPECT_TRUE(blocks().at(0)->isExpanded());
}

TEST_F(RemoteMacsPageTest, AgesGrowOnceAMinuteWhileThePageShows) {
    showPage();
    finishScan(1, 0);
    machine.clock.advance(std::chrono::seconds(150));
    machine.mainQueue.fireTimers();
    settle();
    EXPECT_EQ(textOf("remote.summary.scan"), u"Last scan: 2 min ago"_s);
    EXPECT_THAT(shownCards(*visible("remote.detail.fact-2")->parentWidget())[1],
                HasSubstr("Checked 2 min ago"));
    EXPECT_THAT(machine.mainQueue.timerIntervals(), testing::Contains(std::chrono::minutes(1)));
    goTo(AppRoute::chat);
    EXPECT_THAT(machine.mainQueue.timerIntervals(),
                testing::Not(testing::Contains(std::chrono::minutes(1))));
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
    ASSERT_EQ(told.size(), 4U) << "two of the six have no path";
    EXPECT_EQ(told[0], u"Scanning mac-1, 1 of 6"_s);
    EXPECT_EQ(told[2], u"Scanning mac-4, 4 of 6"_s);
}

TEST_F(RemoteMacsPageTest, TheHeaderBeginsOneScanAtATime) {
    showPage();
    click("remote.scan");
    ASSERT_TRUE(remote().scan.state().remoteScanInProgress);
    const std::size_t events = machine.monitor().log().activityLog().size();
    const std::size_t jobs = machine.workQueue.pendingCount();
    click("remote.scan");
    EXPECT_EQ(machine.workQueue.pendingCount(), jobs);
    EXPECT_EQ(machine.monitor().log().activityLog().size(), events);
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
    EXPECT_EQ(visible<QPushButton>("remote.summary-4.show")->accessibleName(), u"Show Big one"_s);
}

// What it does -----------------------------------------------------------------------------------

TEST_F(RemoteMacsPageTest, ShowGoesToTheMachine) {
    showPage();
    finishScan(8, 2);
    click("remote.summary-2.show");
    EXPECT_EQ(placeInView("remote.machine-6"), spacing::gap);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), u"remote.machine-6.head"_s);
}

TEST_F(RemoteMacsPageTest, InspectShowsTheMachineInTheDetail) {
    showPage();
    std::vector<RemoteHealth> machines = fleetHealth(4, 1, machine.clock.now());
    std::rotate(machines.begin(), machines.begin() + 1, machines.end());
    finishScan(machines);
    window().state().navigation.setSelectedRemoteID(machines[2].id);
    settle();
    EXPECT_EQ(visible("remote.detail")->accessibleName(), u"Remote Detail: mac-4"_s);
    QScrollBar* bar = scrollAreaAround(*visible("remote.health")).verticalScrollBar();
    bar->setValue(bar->maximum());
    use("inspect");
    EXPECT_EQ(window().state().navigation.selectedRemoteID(), machines[0].id);
    EXPECT_EQ(visible("remote.detail")->accessibleName(), u"Remote Detail: mac-2"_s);
    EXPECT_EQ(placeInView("remote.detail"), spacing::gap);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), u"remote.detail.copy-report"_s);
    finishScan({machines[3]});
    EXPECT_EQ(visible("remote.detail")->accessibleName(), u"Remote Detail: mac-1"_s);
}

TEST_F(RemoteMacsPageTest, EachCommandCallsItsOperation) {
    showPage();
    finishScan(1, 0);
    machine.hasLocalPublicKey = true;
    for (const auto& [tool, message] :
         {std::pair{"copy-ping", "Copied Tailscale ping command for mac-1."},
          {"copy-port-test", "Copied port 22 test command for mac-1."},
          {"copy-test", "Copied SSH diagnostic command for mac-1."},
          {"copy-host-key-fix", "Copied host key repair command for mac-1."},
          {"copy-key-install", "Copied SSH key generation command."},
          {"remote-purge",
           "Remote purge is disabled for mac-1. Enable it in that Mac's profile first."},
          {"remote-safe", "Remote Optimize Safely selected worker-0 on mac-1 and copied a report."},
          {"process-500.copy", "Copied remote process report for worker."},
          {"app-worker-1.copy", "Copied remote app report for worker-1."}}) {
        use(tool);
        EXPECT_EQ(lastAction(), message) << tool;
    }
    EXPECT_EQ(copied.size(), 8U);
    use("app-worker-1.never-quit");
    EXPECT_TRUE(machine.monitor().settings().protectedAppNames.contains("worker-1"));
    use("process-501.quit");
    EXPECT_EQ(machine.monitor().confirmations().pendingConfirmation()->pid, 501);
}

TEST_F(RemoteMacsPageTest, TheDetailCopiesAReportAndTakesTheSafeStep) {
    showPage();
    finishScan(1, 0);
    click("remote.detail.copy-report");
    EXPECT_EQ(lastAction(), "Copied remote report for mac-1.");
    click("remote.detail.remote-safe");
    EXPECT_EQ(lastAction(),
              "Remote Optimize Safely selected worker-0 on mac-1 and copied a report.");
}

TEST_F(RemoteMacsPageTest, TheTailnetsClientIsOpenedAndTested) {
    int opened = 0;
    machine.openTailscaleApp = [&] { return ++opened == 1; };
    showPage();
    remote().tailnet.publish({fleetPeers(2), {"No DNS.", "<b>stopped</b>"}});
    settle();
    EXPECT_EQ(textOf("remote.local-health-1"), u"No DNS."_s);
    EXPECT_EQ(textOf("remote.local-health-2"), u"<b>stopped</b>"_s);
    click("remote.tailscale.open");
    EXPECT_EQ(opened, 1);
    click("remote.local-health.open");
    EXPECT_EQ(opened, 2);
    EXPECT_EQ(lastAction(), "No Tailscale application is installed.");
    click("remote.local-health.copy-test");
    EXPECT_THAT(copied, ElementsAre("tailscale status && tailscale netcheck"));
    remote().tailnet.publish({fleetPeers(2), {"No DNS."}});
    settle();
    EXPECT_EQ(visible("remote.local-health-2"), nullptr);
}

TEST_F(RemoteMacsPageTest, TheChecklistExportsTheScriptAndOpensTheSettingsOfTheRemoteAccess) {
    window().state().navigation.setSettingsTab(SettingsTabKind::safety);
    showPage();
    click("remote.setup.script");
    machine.finishSamples();
    settle();
    EXPECT_EQ(lastAction(), "Exported remote SSH setup script.");
    click("remote.setup.settings");
    EXPECT_TRUE(window().state().navigation.showSettings());
    EXPECT_NE(visible("settings.ssh-user"), nullptr);
}

}  // namespace
}  // namespace tallowcrest

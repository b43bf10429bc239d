// A scan while the page shows, and what becomes of its records.

#include <chrono>

#include <QPushButton>

#include "tests/presentation/screens/remote_macs/remote_macs_fixture.h"
#include "tests/presentation/shown_texts.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::HasSubstr;
using testing::Not;

using RemoteMacsScanTest = RemoteMacsFixture;

TEST_F(RemoteMacsScanTest, ItIsCanceledBesideItsProgress) {
    showPage();
    EXPECT_EQ(visible("remote.tailscale.cancel"), nullptr);
    machine.toolLauncher.onLaunch = [&](const ToolRequest&) {
        settle();
        if (textOf("remote.tailscale.progress") == u"Scanning mac-3, 3 of 6"_s) {
            click("remote.tailscale.cancel");
            settle();
            EXPECT_EQ(textOf("remote.tailscale.progress"), u"Canceling the scan"_s);
            EXPECT_FALSE(visible<QPushButton>("remote.tailscale.cancel")->isEnabled());
        }
    };
    click("remote.tailscale.scan");
    EXPECT_TRUE(visible<QPushButton>("remote.tailscale.cancel")->isEnabled());
    machine.finishSamples();
    settle();
    EXPECT_EQ(lastAction(), "Remote scan canceled: 2 of 6 Macs scanned.");
    EXPECT_THAT(blockNames(), testing::ElementsAre("mac-1", "mac-2"));
    EXPECT_EQ(visible("remote.tailscale.cancel"), nullptr);
    EXPECT_TRUE(visible<QPushButton>("remote.tailscale.scan")->isEnabled());
    machine.toolLauncher.onLaunch = {};
    click("remote.tailscale.scan");
    EXPECT_TRUE(visible<QPushButton>("remote.tailscale.cancel")->isEnabled());
}

TEST_F(RemoteMacsScanTest, ItIsCanceledByTheKeyboardWhereTheHeaderLeads) {
    showPage();
    EXPECT_EQ(visible("remote.summary.cancel"), nullptr);
    const int height = visible("remote.summary")->height();
    click("remote.scan");
    settle();
    ASSERT_NE(visible("remote.summary.cancel"), nullptr);
    EXPECT_EQ(visible("remote.summary")->height(), height);
    click("remote.scan");
    EXPECT_TRUE(visible("remote.summary.cancel")->hasFocus());
    const auto begun = machine.monitor().log().activityLog().size();
    press(Qt::Key_Space);
    EXPECT_EQ(textOf("remote.summary.scan"), u"Canceling the scan"_s);
    EXPECT_FALSE(visible("remote.summary.cancel")->isEnabled());
    EXPECT_EQ(window().focusWidget(), nullptr) << "a second press is for nothing else";
    press(Qt::Key_Space);
    machine.finishSamples();
    settle();
    EXPECT_EQ(lastAction(), "Remote scan canceled: 0 of 6 Macs scanned.");
    EXPECT_EQ(machine.monitor().log().activityLog().size(), begun + 1);
    EXPECT_EQ(visible("remote.summary.cancel"), nullptr);
    EXPECT_EQ(window().focusWidget(), nullptr);
}

TEST_F(RemoteMacsScanTest, TheEndOfTheScanDoesNotPassTheFocusOn) {
    showPage();
    click("remote.tailscale.scan");
    settle();
    visible("remote.tailscale.cancel")->setFocus();
    machine.finishSamples();
    settle();
    ASSERT_EQ(visible("remote.tailscale.cancel"), nullptr);
    EXPECT_EQ(window().focusWidget(), nullptr);
}

TEST_F(RemoteMacsScanTest, TheButtonComesBackWhenTheLastOfSeveralScansHasEnded) {
    showPage();
    click("remote.tailscale.scan");
    EXPECT_EQ(remote().scan.scanRemoteMacs().kind, Outcome::Kind::asked);
    settle();
    EXPECT_FALSE(visible<QPushButton>("remote.tailscale.scan")->isEnabled());
    machine.workQueue.run();
    machine.mainQueue.drain();
    settle();
    EXPECT_EQ(machine.workQueue.pendingCount(), 1U);
    EXPECT_EQ(blocks().size(), 6U);
    EXPECT_FALSE(visible<QPushButton>("remote.tailscale.scan")->isEnabled());
    EXPECT_TRUE(visible<QPushButton>("remote.tailscale.cancel")->isEnabled());
    machine.finishSamples();
    settle();
    EXPECT_FALSE(remote().scan.state().remoteScanInProgress);
    EXPECT_TRUE(visible<QPushButton>("remote.tailscale.scan")->isEnabled());
    EXPECT_EQ(blocks().size(), 6U);
}

TEST_F(RemoteMacsScanTest, AMachineWhosePeerHasGoneOfflineSaysSo) {
    showPage();
    finishScan(2, 0);
    std::vector<TailDevice> peers = fleetPeers(6);
    peers[0].online = false;
    machine.setTailDevices(peers);
    settle();
    EXPECT_THAT(visible("remote.machine-1.head")->accessibleDescription().toStdString(),
                HasSubstr("just now, now offline"));
    EXPECT_THAT(visible("remote.machine-2.head")->accessibleDescription().toStdString(),
                Not(HasSubstr("offline")));
    EXPECT_THAT(shownCards(*visible("remote.detail.fact-2")->parentWidget())[1],
                HasSubstr("Checked just now · now offline"));
    machine.setTailDevices(fleetPeers(6));
    settle();
    EXPECT_THAT(visible("remote.machine-1.head")->accessibleDescription().toStdString(),
                Not(HasSubstr("offline")));
}

TEST_F(RemoteMacsScanTest, TheResultOfAnActionOutlivesTheScanThatFollowsIt) {
    showPage();
    finishScan(1, 0);
    machine.toolLauncher.willWrite("quit_ok");
    visible<QPushButton>("remote.machine-1.process-500.quit")->click();
    machine.monitor().confirmations().confirmPending();
    machine.finishSamples();
    ASSERT_THAT(lastAction(), HasSubstr("Scanning"));
    machine.finishSamples();
    settle();
    EXPECT_THAT(lastAction(), HasSubstr("Remote scan complete"));
    EXPECT_EQ(textOf("remote.machine-1.result"),
              u"Last action: Asked worker to quit on mac-1. · just now"_s);
    EXPECT_EQ(textOf("remote.detail.result"), textOf("remote.machine-1.result"));
    machine.clock.advance(std::chrono::seconds(150));
    machine.mainQueue.fireTimers();
    settle();
    EXPECT_EQ(textOf("remote.machine-1.result"),
              u"Last action: Asked worker to quit on mac-1. · 2 min ago"_s);
    finishScan(1, 0);
    visible<QPushButton>("remote.machine-1.process-500.quit")->click();
    machine.monitor().confirmations().confirmPending();
    settle();
    EXPECT_EQ(textOf("remote.machine-1.result"),
              u"Last action: Asking worker to quit on mac-1... · just now"_s);
    EXPECT_EQ(textOf("remote.detail.result"), textOf("remote.machine-1.result"));
}

TEST_F(RemoteMacsScanTest, AllProblemsOfTheClientCanBeRead) {
    showPage();
    std::vector<std::string> issues(9, "Bad.");
    issues[0] = "First. " + std::string(600, 'x') + " end";
    issues[8] = "Last.";
    remote().tailnet.publish({fleetPeers(2), issues});
    settle();
    EXPECT_NE(visible("remote.local-health-6"), nullptr);
    EXPECT_EQ(visible("remote.local-health-7"), nullptr);
    const int height = visible("remote.local-health-1")->height();
    click("remote.local-health.show-all");
    settle();
    EXPECT_EQ(textOf("remote.local-health-9"), u"Last."_s);
    EXPECT_GT(visible("remote.local-health-1")->height(), height);
    EXPECT_EQ(visible("remote.local-health.show-all")->accessibleName(), u"Show Less"_s);
    click("remote.local-health.show-all");
    EXPECT_EQ(visible("remote.local-health-7"), nullptr);
    remote().tailnet.publish({fleetPeers(2), {"One."}});
    settle();
    EXPECT_EQ(visible("remote.local-health.show-all"), nullptr);
    EXPECT_EQ(visible("remote.local-health-2"), nullptr);
}

}  // namespace
}  // namespace tallowcrest

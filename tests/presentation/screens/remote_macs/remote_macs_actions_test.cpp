// The controls of Remote Macs and the operations that they call.

#include <QAction>
#include <QPushButton>
#include <QScrollBar>

#include "core/settings/settings.h"
#include "tests/presentation/screens/remote_macs/remote_macs_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;

class RemoteMacsActionsTest : public RemoteMacsFixture {
protected:
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
};

TEST_F(RemoteMacsActionsTest, ShowGoesToTheMachine) {
    showPage();
    finishScan(8, 2);
    click("remote.summary-2.show");
    EXPECT_EQ(placeInView("remote.machine-2"), spacing::gap);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), u"remote.machine-2.head"_s);
}

TEST_F(RemoteMacsActionsTest, InspectShowsTheMachineInTheDetail) {
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

TEST_F(RemoteMacsActionsTest, EachCommandCallsItsOperation) {
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

TEST_F(RemoteMacsActionsTest, TheDetailCopiesAReportAndTakesTheSafeStep) {
    showPage();
    finishScan(1, 0);
    click("remote.detail.copy-report");
    EXPECT_EQ(lastAction(), "Copied remote report for mac-1.");
    click("remote.detail.remote-safe");
    EXPECT_EQ(lastAction(),
              "Remote Optimize Safely selected worker-0 on mac-1 and copied a report.");
}

TEST_F(RemoteMacsActionsTest, TheTailnetsClientIsOpenedAndTested) {
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

TEST_F(RemoteMacsActionsTest, TheChecklistExportsTheScriptAndOpensTheSettingsOfTheRemoteAccess) {
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

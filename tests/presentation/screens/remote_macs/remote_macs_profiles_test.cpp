// The profiles of machines, and the questions that depend on them.

#include <QAbstractButton>
#include <QAction>
#include <QLineEdit>
#include <QPushButton>
#include <QToolTip>

#include "presentation/widgets/step_slider.h"
#include "tests/presentation/screens/remote_macs/remote_macs_fixture.h"
#include "tests/presentation/shown_texts.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

class RemoteMacsProfilesTest : public RemoteMacsFixture {
protected:
    std::string said(const char* identifier) {
        return visible(identifier)->accessibleDescription().toStdString();
    }
    const std::optional<ConfirmationRequest>& pending() {
        return machine.monitor().confirmations().pendingConfirmation();
    }
    std::size_t launches() const { return machine.toolLauncher.requests.size(); }
};

TEST_F(RemoteMacsProfilesTest, RecordsOfOneHostNameShareTheProfileAndAreActedOnEachForItself) {
    showPage();
    std::vector<RemoteHealth> twins = fleetHealth(2, 0, machine.clock.now());
    twins[1].hostName = twins[0].hostName;
    finishScan(twins);
    visible<QLineEdit>("remote.machine-1.nickname")->setText(u"Pair"_s);
    click("remote.machine-2.allow-remote-purge");
    settle();
    EXPECT_THAT(blockNames(), testing::ElementsAre("Pair", "Pair"));
    EXPECT_EQ(visible<QLineEdit>("remote.machine-2.nickname")->text(), u"Pair"_s);
    EXPECT_TRUE(visible<QAbstractButton>("remote.machine-1.allow-remote-purge")->isChecked());
    const auto target = [&] {
        const auto& arguments = machine.toolLauncher.requests.back().arguments;
        return arguments.at(arguments.size() - 2);
    };
    machine.toolLauncher.willWrite("");
    for (std::size_t i : {1U, 0U}) {
        const QString block = u"remote.machine-%1."_s.arg(i + 1);
        for (const QString& button : {block + u"remote-purge"_s, block + u"process-501.quit"_s}) {
            visible<QPushButton>(button.toLatin1().constData())->click();
            settle();
            ASSERT_TRUE(pending()) << button.toStdString();
            EXPECT_EQ(pending()->hostName, "mac-1");
            machine.monitor().confirmations().confirmPending();
            machine.finishSamples();
            settle();
            EXPECT_THAT(target(), testing::EndsWith(twins[i].address)) << button.toStdString();
        }
    }
    EXPECT_THAT(textOf("remote.machine-1.result").toStdString(), HasSubstr("Could not quit"));
}

TEST_F(RemoteMacsProfilesTest, APermissionTakenBackWhileTheQuestionStandsRefusesThePurge) {
    showPage();
    finishScan(1, 0);
    click("remote.machine-1.allow-remote-purge");
    settle();
    click("remote.machine-1.remote-purge");
    settle();
    ASSERT_TRUE(pending());
    // The question covers the page; assistive technology or another window may still reach it.
    window().findChild<QAbstractButton*>(u"remote.machine-1.allow-remote-purge"_s)->click();
    settle();
    const std::size_t before = launches();
    machine.monitor().confirmations().confirmPending();
    machine.finishSamples();
    settle();
    EXPECT_EQ(lastAction(),
              "Remote purge was blocked because reachability, profile permission, or host "
              "validation changed.");
    EXPECT_EQ(launches(), before);
    EXPECT_EQ(pending(), std::nullopt);
}

TEST_F(RemoteMacsProfilesTest, TheSliderDecidesFromWhenOnMemoryIsHigh) {
    showPage();
    std::vector<RemoteHealth> machines = fleetHealth(1, 0, machine.clock.now());
    machines[0].memoryPercent = 70.0;
    finishScan(machines);
    EXPECT_THAT(said("remote.machine-1.head"), Not(HasSubstr("High")));
    auto* slider = visible<StepSlider>("remote.machine-1.threshold");
    slider->setFocus();
    QTest::keyClick(slider, Qt::Key_Home);
    settle();
    EXPECT_EQ(remote().profiles.remoteProfile("mac-1").warningThreshold, 65.0);
    EXPECT_THAT(said("remote.machine-1.head"), HasSubstr("Memory 70%, High"));
    EXPECT_EQ(visible<QPushButton>("remote.summary-1.show")->accessibleName(), u"Show mac-1"_s);
    for (int i = 0; i < 6; ++i) {
        QTest::keyClick(slider, Qt::Key_Right);
    }
    settle();
    EXPECT_EQ(remote().profiles.remoteProfile("mac-1").warningThreshold, 71.0);
    EXPECT_THAT(said("remote.machine-1.head"), Not(HasSubstr("High")));
    EXPECT_EQ(visible("remote.summary-1.show"), nullptr);
}

TEST_F(RemoteMacsProfilesTest, ANicknameIsUsedWhereverTheMachineIsNamed) {
    showPage();
    finishScan(4, 1);
    remote().profiles.updateRemoteProfile("mac-3", {.nickname = "Render box"});
    settle();
    EXPECT_THAT(said("remote.timeline.memory"), HasSubstr("Render box 93 percent"));
    EXPECT_EQ(visible<QPushButton>("remote.summary-1.show")->accessibleName(),
              u"Show Render box"_s);
    EXPECT_THAT(shownTexts(*visible("remote.summary")), Contains("Render box"));
    const auto labels = visible("remote.summary")->findChildren<QWidget*>();
    EXPECT_TRUE(std::ranges::any_of(labels, [](const QWidget* each) {
        return each->toolTip().contains(u"Render box · mac-3"_s);
    }));
    goTo(AppRoute::history);
    EXPECT_THAT(said("history.remote-timeline.memory"), HasSubstr("Render box 93 percent"));
    remote().profiles.updateRemoteProfile("mac-3", {.nickname = "Attic"});
    settle();
    EXPECT_THAT(said("history.remote-timeline.memory"), HasSubstr("Attic 93 percent"));
}

TEST_F(RemoteMacsProfilesTest, ALinuxMachineIsNoMacUnlessTheOwnerSaysSo) {
    showPage();
    std::vector<RemoteHealth> machines = fleetHealth(1, 0, machine.clock.now());
    machines[0].isLinux = true;
    finishScan(machines);
    EXPECT_EQ(visible<QLineEdit>("remote.machine-1.role")->text(), u"Linux"_s);
    click("remote.machine-1.allow-remote-purge");
    settle();
    EXPECT_EQ(remote().profiles.remoteProfile("mac-1").role, "Linux");
}

}  // namespace
}  // namespace tallowcrest

#include <algorithm>

#include <QAccessible>
#include <QHelpEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>
#include <QTimerEvent>
#include <QToolTip>

#include "tests/presentation/screens/remote_macs/activate.h"
#include "tests/presentation/screens/remote_macs/remote_health_block_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

using RemoteHealthBlockTest = RemoteHealthBlockFixture;

// The head ----------------------------------------------------------------------------------------

TEST_F(RemoteHealthBlockTest, AHealthyMachineIsOnlyItsHeadUntilTheOwnerOpensIt) {
    show();
    EXPECT_FALSE(block.isExpanded());
    EXPECT_FALSE(hasDetails());
    EXPECT_EQ(heightOf(block), visible("probe.head")->height());
    const QSignalSpy changed(&block, &RemoteHealthBlock::expandedChanged);
    click("probe.head");
    EXPECT_TRUE(block.isExpanded());
    EXPECT_NE(visible("probe.nickname"), nullptr);
    click("probe.head");
    EXPECT_EQ(visible("probe.nickname"), nullptr);
    EXPECT_EQ(changed, (QList<QVariantList>{{true}, {false}}));
}

TEST_F(RemoteHealthBlockTest, WhatNeedsAttentionIsInspectedOrWantedOpensByItself) {
    RemoteHealthFacts high = facts;
    high.machine.memoryPercent = 80.0;
    RemoteHealthFacts inspected = facts;
    inspected.isSelected = true;
    RemoteHealthFacts wanted = facts;
    wanted.showsDetails = true;
    const QSignalSpy changed(&block, &RemoteHealthBlock::expandedChanged);
    for (const RemoteHealthFacts& each :
         {unreachableMachine(RemoteHealth::Status::authNeeded), high, inspected, wanted}) {
        RemoteHealthBlock fresh(u"fresh"_s);
        fresh.show(each);
        EXPECT_TRUE(fresh.isExpanded());
    }
    // Trouble that begins later, too.
    show();
    EXPECT_FALSE(block.isExpanded());
    facts = unreachableMachine(RemoteHealth::Status::connectionBlocked);
    show();
    EXPECT_TRUE(block.isExpanded());
    // It does not close under the eyes of the owner.
    facts = reachableMachine();
    show();
    EXPECT_TRUE(block.isExpanded());
    EXPECT_THAT(changed, IsEmpty()) << "only the owner's own choice is told";
}

TEST_F(RemoteHealthBlockTest, TheOwnersChoiceHolds) {
    facts = unreachableMachine(RemoteHealth::Status::authNeeded);
    show();
    click("probe.head");
    facts.isSelected = true;
    facts.showsDetails = true;
    show();
    EXPECT_FALSE(block.isExpanded());
}

TEST_F(RemoteHealthBlockTest, TheHeadIsSpokenAsAButtonWithItsState) {
    show();
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(visible("probe.head"));
    EXPECT_EQ(spoken->role(), QAccessible::Button);
    EXPECT_TRUE(spoken->state().collapsed);
    EXPECT_EQ(spoken->text(QAccessible::Name), u"studio-mac, Reachable"_s);
    EXPECT_EQ(spoken->text(QAccessible::Description),
              u"CPU 12%, Memory 41%, 2 min ago. Shows the details of this machine"_s);
    spoken->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(spoken->state().expanded);
    EXPECT_TRUE(block.isExpanded());
    EXPECT_EQ(block.accessibleName(), u"studio-mac"_s);
}

TEST_F(RemoteHealthBlockTest, TheHeadHasTwoLinesInANarrowBlock) {
    show();
    const int wide = heightOf(block);
    page.resize(560, 1200);
    settle();
    EXPECT_GT(heightOf(block), wide);
    page.resize(1000, 1200);
    settle();
    EXPECT_EQ(heightOf(block), wide);
}

TEST_F(RemoteHealthBlockTest, TheHeadHasAToolTipOnlyForANameWithoutRoom) {
    const auto tip = [this] {
        QHelpEvent event(QEvent::ToolTip, {20, 20}, {20, 20});
        QApplication::sendEvent(visible("probe.head"), &event);
        return QToolTip::text();
    };
    show();
    EXPECT_EQ(tip(), QString());
    facts.profile.nickname = "<b>" + std::string(300, 'W');
    show();
    EXPECT_TRUE(tip().contains(u"&lt;b&gt;WWW"_s));
    QToolTip::hideText();
}

// The details -------------------------------------------------------------------------------------

TEST_F(RemoteHealthBlockTest, TheDetailsHaveTheWordsInTheirOrder) {
    showOpen();
    std::vector<std::string> wanted{
        "Profile: studio-mac · Mac · Warn at 80%",
        "macOS 14.5",
        "Top CPU: 92.1% /usr/local/bin/yes",
        "Top Memory: 2048MB /Applications/Xcode.app/Contents/MacOS/Xcode",
        "Recommendation: Remote Mac looks healthy. No remote optimization action is needed.",
        "SSH is configured and remote metrics are available.",
        "Nickname",
        "Role",
        "Warn at",
        "80%",
        "Allow remote purge on this Mac",
        "Remote Processes",
        "yes",
        "92.1% CPU",
        "1,240 MB",
        "Remote App Impact"};
    std::vector<std::string> found;
    for (const std::string& text : texts(block)) {
        if (std::ranges::find(wanted, text) != wanted.end() &&
            std::ranges::find(found, text) == found.end()) {
            found.push_back(text);
        }
    }
    EXPECT_EQ(found, wanted);
}

TEST_F(RemoteHealthBlockTest, WhatWasLastDoneForTheMachineStaysReadable) {
    showOpen();
    EXPECT_EQ(visible("probe.result"), nullptr);
    facts.lastResult = {Outcome::failed("Remote purge failed on studio-mac."), {1070.0}};
    show();
    EXPECT_EQ(textOf("probe.result"),
              u"Last action: Remote purge failed on studio-mac. · 1 min ago"_s);
    facts.lastResult.reset();
    show();
    EXPECT_EQ(visible("probe.result"), nullptr);
}

TEST_F(RemoteHealthBlockTest, OnLinuxTheSwitchDoesNotSpeakOfAMac) {
    showOpen();
    EXPECT_EQ(visible("probe.allow-remote-purge")->accessibleName(),
              u"Allow remote purge on this Mac"_s);
    facts.machine.isLinux = true;
    show();
    EXPECT_EQ(visible("probe.allow-remote-purge")->accessibleName(),
              u"Allow remote purge on this machine"_s);
}

TEST_F(RemoteHealthBlockTest, AMachineThatWasNotReachedHasNoRows) {
    facts = unreachableMachine(RemoteHealth::Status::unknown);
    show();
    EXPECT_THAT(
        texts(block),
        AllOf(Contains("Recommendation: What to do next."), Contains("How to repair access."),
              Not(Contains("Remote Processes")), Not(Contains("Remote App Impact"))));
    facts.machine.status = RemoteHealth::Status::reachable;
    show();
    EXPECT_THAT(texts(block),
                AllOf(Contains("Remote Processes"), Contains("The last sample named no process.")));
}

TEST_F(RemoteHealthBlockTest, RowsEmitWhatTheyShow) {
    showOpen();
    click("probe.process-88.copy");
    click("probe.process-700.copy");
    click("probe.process-700.quit");
    EXPECT_THAT(taken(), ElementsAre("copy 88", "copy 700", "quit 700"));
    EXPECT_FALSE(button("probe.process-88.quit").isEnabled());
    click("probe.app-yes.copy");
    EXPECT_THAT(taken(), ElementsAre("copy yes"));
    // Refused with a message when it is pressed.
    facts.neverQuit = {"yes"};
    show();
    EXPECT_TRUE(button("probe.process-700.quit").isEnabled());
}

TEST_F(RemoteHealthBlockTest, NeverQuitShowsTheListAndIsToggledByAPressOfAnyKind) {
    showOpen();
    QPushButton& toggle = button("probe.app-yes.never-quit");
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&toggle);
    EXPECT_EQ(spoken->text(QAccessible::Name), u"Never Quit yes"_s);
    EXPECT_EQ(spoken->role(), QAccessible::CheckBox);
    EXPECT_EQ(toggle.text(), u"Never Quit: Off"_s);
    click("probe.app-yes.never-quit");
    spoken->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    toggle.setFocus();
    QTest::keyClick(&toggle, Qt::Key_Space);
    EXPECT_THAT(taken(), ElementsAre("never quit yes", "never quit yes", "never quit yes"));
    EXPECT_FALSE(toggle.isChecked()) << "the list has not changed";
    facts.neverQuit = {"yes"};
    show();
    EXPECT_TRUE(toggle.isChecked());
    EXPECT_TRUE(spoken->state().checked);
    EXPECT_EQ(toggle.text(), u"Never Quit: On"_s);
}

TEST_F(RemoteHealthBlockTest, WhatIsHiddenTakesNoPress) {
    showOpen();
    QPushButton& quit = button("probe.process-700.quit");
    QAccessibleActionInterface& spoken =
        *QAccessible::queryAccessibleInterface(&quit)->actionInterface();
    EXPECT_THAT(spoken.actionNames(), Contains(QAccessibleActionInterface::pressAction()));
    click("probe.head");
    facts.machine.topProcesses.clear();
    show();
    EXPECT_THAT(spoken.actionNames(), Not(Contains(QAccessibleActionInterface::pressAction())));
    spoken.doAction(QAccessibleActionInterface::pressAction());
    EXPECT_THAT(taken(), IsEmpty());
}

// A new scan --------------------------------------------------------------------------------------

TEST_F(RemoteHealthBlockTest, NewFiguresChangeOnlyTheFigures) {
    showOpen();
    const QList<QWidget*> before = block.findChildren<QWidget*>();
    const int height = heightOf(block);
    PaintCount paints(block);
    show();
    EXPECT_EQ(paints.take(), 0) << "nothing has changed";
    machine.topProcesses[0].cpu = 11.2;
    machine.cpuPercent = 97.0;
    show();
    EXPECT_GT(paints.take(), 0);
    EXPECT_EQ(block.findChildren<QWidget*>(), before);
    EXPECT_EQ(heightOf(block), height);
    EXPECT_THAT(texts(block), Contains("11.2% CPU"));
}

TEST_F(RemoteHealthBlockTest, ARowKeepsItsButtonsAndTheFocusWhereverItStands) {
    ASSERT_NO_FATAL_FAILURE(activate(page));
    showOpen();
    QPushButton& quit = button("probe.process-700.quit");
    const int top = quit.mapTo(&block, QPoint()).y();
    quit.setFocus();
    std::ranges::reverse(machine.topProcesses);
    show();
    EXPECT_GT(quit.mapTo(&block, QPoint()).y(), top);
    EXPECT_TRUE(quit.hasFocus());
    QTest::keyClick(&quit, Qt::Key_Space);
    EXPECT_THAT(taken(), ElementsAre("quit 700"));
    // The PID belongs to another program now.
    machine.topProcesses[1].command = "/usr/bin/other";
    show();
    EXPECT_NE(block.findChild<QPushButton*>(u"probe.process-700.quit"_s), &quit);
    EXPECT_TRUE(visible("probe.head")->hasFocus()) << "no other row's button";
    button("probe.process-88.copy").setFocus();
    machine.topProcesses.clear();
    machine.appImpacts.clear();
    machine.status = RemoteHealth::Status::authNeeded;
    show();
    EXPECT_TRUE(visible("probe.head")->hasFocus()) << "nor one below rows that are all gone";
}

TEST_F(RemoteHealthBlockTest, PressesAreIgnoredForAMomentAfterRowsHaveMoved) {
    showOpen();
    click("probe.app-yes.never-quit");
    std::ranges::reverse(machine.appImpacts);
    show();
    click("probe.app-yes.never-quit");
    click("probe.app-yes.copy");
    QTest::mouseDClick(visible("probe.app-yes.never-quit"), Qt::LeftButton);
    EXPECT_THAT(taken(), ElementsAre("never quit yes"));
    click("probe.process-700.copy");
    EXPECT_THAT(taken(), ElementsAre("copy 700")) << "these are where they were";
    auto* pause = visible("probe.apps")->findChild<QTimer*>(u"pause"_s);
    ASSERT_TRUE(pause->isActive());
    EXPECT_EQ(pause->interval(), 300);
    QTimerEvent end(pause->timerId());
    QCoreApplication::sendEvent(pause, &end);
    click("probe.app-yes.never-quit");
    show();
    click("probe.app-yes.copy");
    EXPECT_THAT(taken(), ElementsAre("never quit yes", "copy yes"));
}

TEST_F(RemoteHealthBlockTest, ARowThatGoesLeavesTheFocusOfOthersAlone) {
    ASSERT_NO_FATAL_FAILURE(activate(page));
    showOpen();
    button("probe.process-700.copy").setFocus();
    auto* other = new QLineEdit(&page);
    page.layout()->addWidget(other);
    settle();
    other->setFocus();
    machine.topProcesses.clear();
    show();
    EXPECT_TRUE(other->hasFocus());
}

TEST_F(RemoteHealthBlockTest, EqualRowsOfAHostileMachineStaySeparate) {
    machine.topProcesses.assign(3, machine.topProcesses[0]);
    showOpen();
    EXPECT_EQ(block.findChildren<QPushButton*>(u"probe.process-700.quit"_s).size(), 3);
    machine.topProcesses.pop_back();
    show();
    EXPECT_EQ(block.findChildren<QPushButton*>(u"probe.process-700.quit"_s).size(), 2);
}

TEST_F(RemoteHealthBlockTest, TheTabKeyGoesThroughTheBlockFromTopToBottom) {
    ASSERT_NO_FATAL_FAILURE(activate(page));
    addNext();
    showOpen();
    std::ranges::reverse(machine.topProcesses);
    machine.topProcesses.push_back({900, 1.0, 1.0, "/usr/bin/new"});
    show();
    EXPECT_THAT(
        tabOrder(),
        ElementsAre("probe.nickname", "probe.role", "probe.threshold", "probe.allow-remote-purge",
                    "probe.process-88.copy", "probe.process-700.copy", "probe.process-700.quit",
                    "probe.process-900.copy", "probe.process-900.quit", "probe.app-yes.copy",
                    "probe.app-yes.never-quit", "probe.app-loginwindow.copy",
                    "probe.app-loginwindow.never-quit", "probe.remote-purge", "probe.remote-safe",
                    "probe.more", "next"));
}

TEST_F(RemoteHealthBlockTest, TheTabKeyGoesThroughABlockThatOpenedByItself) {
    ASSERT_NO_FATAL_FAILURE(activate(page));
    facts = unreachableMachine(RemoteHealth::Status::authNeeded);
    addNext();
    show();
    EXPECT_THAT(tabOrder(), ElementsAre("probe.nickname", "probe.role", "probe.threshold",
                                        "probe.allow-remote-purge", "probe.copy-test",
                                        "probe.copy-key-install", "probe.more", "next"));
}

}  // namespace
}  // namespace tallowcrest

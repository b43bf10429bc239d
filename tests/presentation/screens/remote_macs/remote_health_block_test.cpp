#include "presentation/screens/remote_macs/remote_health_block.h"

#include <algorithm>

#include <QAccessible>
#include <QAction>
#include <QHelpEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QToolTip>

#include "presentation/widgets/menu_button.h"
#include "tests/presentation/screens/remote_macs/activate.h"
#include "tests/presentation/screens/remote_macs/remote_machine.h"
#include "tests/presentation/screens/shared/block_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class RemoteHealthBlockTest : public OverviewBlockTest {
protected:
    RemoteHealthBlockTest() {
        QObject::connect(&block, &RemoteHealthBlock::processCopyWanted,
                         [this](const RemoteProcess& process) { record("copy", process.pid); });
        QObject::connect(&block, &RemoteHealthBlock::processQuitWanted,
                         [this](const RemoteProcess& process) { record("quit", process.pid); });
        QObject::connect(
            &block, &RemoteHealthBlock::appCopyWanted,
            [this](const RemoteAppImpact& app) { asked.push_back("copy " + app.name); });
        QObject::connect(
            &block, &RemoteHealthBlock::neverQuitWanted,
            [this](const RemoteAppImpact& app) { asked.push_back("never quit " + app.name); });
        QObject::connect(&block, &RemoteHealthBlock::operationWanted,
                         [this](RemoteOperation operation) { operations.push_back(operation); });
    }

    void record(const std::string& what, std::int64_t pid) {
        asked.push_back(what + ' ' + std::to_string(pid));
    }
    void show() {
        block.show(facts);
        settle();
    }
    void showOpen() {
        facts.showsDetails = true;
        show();
    }
    std::vector<std::string> taken() { return std::exchange(asked, {}); }
    bool hasDetails() { return block.findChild<QLineEdit*>() != nullptr; }
    QPushButton& button(const char* identifier) {
        return *block.findChild<QPushButton*>(QString::fromLatin1(identifier));
    }
    std::vector<std::string> shownButtons() {
        std::vector<std::string> titles;
        for (const auto& tool : remote_health_lines::tools()) {
            const auto* each =
                visible<QPushButton>((std::string("probe.") + tool.identifier).c_str());
            if (each != nullptr) {
                titles.push_back(each->text().toStdString());
            }
        }
        return titles;
    }
    QMenu& menu() { return block.findChild<MenuButton*>()->menu(); }
    std::vector<std::string> menuEntries() {
        std::vector<std::string> titles;
        for (const QAction* each : menu().actions()) {
            if (each->isVisible()) {
                titles.push_back(each->text().toStdString());
            }
        }
        return titles;
    }

    RemoteHealthFacts facts = reachableMachine();
    RemoteHealth& machine = facts.machine;
    std::vector<std::string> asked;
    std::vector<RemoteOperation> operations;
    RemoteHealthBlock& block = place(new RemoteHealthBlock(u"probe"_s));
};

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
    facts.neverQuit = {"yes"};
    show();
    EXPECT_FALSE(button("probe.process-700.quit").isEnabled());
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
    const QWidget* focus = QApplication::focusWidget();
    EXPECT_TRUE(qobject_cast<const QPushButton*>(focus) == nullptr) << "no other row's button";
}

TEST_F(RemoteHealthBlockTest, APressRightAfterTheRowsMovedIsIgnored) {
    showOpen();
    click("probe.process-700.quit");
    EXPECT_THAT(taken(), ElementsAre("quit 700")) << "the first rows replaced no others";
    machine.topProcesses[0].cpu = 1.0;
    show();
    click("probe.process-700.quit");
    EXPECT_THAT(taken(), ElementsAre("quit 700")) << "no row has moved";
    std::ranges::reverse(machine.topProcesses);
    show();
    click("probe.process-700.quit");
    click("probe.process-700.copy");
    EXPECT_THAT(taken(), IsEmpty());
    click("probe.app-yes.copy");
    EXPECT_THAT(taken(), ElementsAre("copy yes")) << "the app groups have not moved";
    setSettlingTime(block, std::chrono::milliseconds(0));
    settle();
    click("probe.process-700.quit");
    EXPECT_THAT(taken(), ElementsAre("quit 700"));
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
    auto* next = new QPushButton(u"Next"_s, &page);
    next->setObjectName(u"next"_s);
    page.layout()->addWidget(next);
    showOpen();
    std::ranges::reverse(machine.topProcesses);
    machine.topProcesses.push_back({900, 1.0, 1.0, "/usr/bin/new"});
    show();
    visible("probe.head")->setFocus();
    std::vector<std::string> order;
    while (QApplication::focusWidget() != next && order.size() < 20) {
        press(Qt::Key_Tab);
        order.push_back(QApplication::focusWidget()->objectName().toStdString());
    }
    EXPECT_THAT(
        order,
        ElementsAre("probe.nickname", "probe.role", "probe.threshold", "probe.allow-remote-purge",
                    "probe.process-88.copy", "probe.process-700.copy", "probe.process-700.quit",
                    "probe.process-900.copy", "probe.process-900.quit", "probe.app-yes.copy",
                    "probe.app-yes.never-quit", "probe.app-loginwindow.copy",
                    "probe.app-loginwindow.never-quit", "probe.remote-purge", "probe.remote-safe",
                    "probe.more", "next"));
}

// The tool row ------------------------------------------------------------------------------------

TEST_F(RemoteHealthBlockTest, EachToolIsAButtonOrInTheMenu) {
    showOpen();
    EXPECT_THAT(shownButtons(), ElementsAre("Remote Purge", "Remote Safe"));
    EXPECT_THAT(menuEntries(), ElementsAre("Copy Ping", "Copy Port Test", "Copy Test",
                                           "Copy Host Key Fix", "Copy Key Install", "Inspect"));
    machine.status = RemoteHealth::Status::hostKeyIssue;
    show();
    EXPECT_THAT(shownButtons(), ElementsAre("Copy Test", "Copy Host Key Fix"));
    EXPECT_THAT(menuEntries(), ElementsAre("Copy Ping", "Copy Port Test", "Copy Key Install",
                                           "Inspect", "Remote Purge", "Remote Safe"));
}

TEST_F(RemoteHealthBlockTest, EachToolEmitsItsOperationFromTheButtonAndFromTheMenu) {
    showOpen();
    for (const remote_health_lines::Tool& tool : remote_health_lines::tools()) {
        const QString name = u"probe."_s + QString::fromLatin1(tool.identifier);
        block.findChild<QAction*>(name)->trigger();
        block.findChild<QPushButton*>(name)->click();
        EXPECT_THAT(std::exchange(operations, {}), ElementsAre(tool.operation, tool.operation))
            << tool.title;
    }
}

TEST_F(RemoteHealthBlockTest, WithoutAnAddressToolsAreDisabledWhereverTheyAre) {
    facts = unreachableMachine(RemoteHealth::Status::hostKeyIssue);
    machine.address = "no address";
    show();
    EXPECT_FALSE(button("probe.copy-host-key-fix").isEnabled());
    EXPECT_FALSE(block.findChild<QAction*>(u"probe.copy-key-install"_s)->isEnabled());
    EXPECT_TRUE(block.findChild<QAction*>(u"probe.remote-purge"_s)->isEnabled());
    machine.address = "100.64.0.7";
    show();
    EXPECT_TRUE(button("probe.copy-host-key-fix").isEnabled());
}

}  // namespace
}  // namespace tallowcrest

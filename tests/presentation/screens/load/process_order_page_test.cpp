#include <QAccessible>
#include <QLineEdit>

#include "actions/actions.h"
#include "presentation/widgets/text_button.h"
#include "tests/presentation/pointer.h"
#include "tests/presentation/window_fixture.h"
#include "tests/support/pids_of.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;

/// The order of the process list, and when its rows may move.
class ProcessOrderPageTest : public WindowFixture {
protected:
    /// 800 photo-indexer, 700 editor, 1 systemd, by impact as by CPU and memory.
    std::vector<std::int64_t> shown() { return pids(model().rows()); }
    QString status() { return textOf("processes.sort-status").section(u" · "_s, 0, 0); }

    void sendToRows(QEvent::Type type, const QPoint& place, Qt::MouseButton button = Qt::NoButton,
                    Qt::MouseButtons buttons = Qt::NoButton) {
        sendMouse(*table().viewport(), type, place, button, buttons);
    }
    void movePointer() { sendToRows(QEvent::MouseMove, cell(1, 1).center()); }
    void leaveRows() {
        pointerLeaves(*table().viewport());
        settle();
    }

    /// Takes a sample in which the editor is the heaviest process, this long after the last one.
    void editorRises(std::chrono::milliseconds later) {
        machine.metrics->processes.at(1).cpu = 300.0;
        sample(later);
    }
    void sample(std::chrono::milliseconds later) {
        machine.clock.advance(later);
        machine.monitor().refresh();
        machine.finishSamples();
        settle();
    }
};

// The order --------------------------------------------------------------------------------------

TEST_F(ProcessOrderPageTest, AClickOnATitleOrdersReversesAndReturnsToImpact) {
    showProcesses();
    EXPECT_EQ(visible("processes.impact-order"), nullptr);
    click("processes.order.process");
    EXPECT_THAT(shown(), ElementsAre(700, 800, 1));
    EXPECT_EQ(status(), u"Sorted by Process ↑"_s);
    EXPECT_EQ(visible<TextButton>("processes.order.process")->text(), u"Process ↑"_s);
    EXPECT_TRUE(table().accessibleDescription().startsWith(u"Processes by Process."_s));
    click("processes.order.process");
    EXPECT_THAT(shown(), ElementsAre(1, 800, 700));
    click("processes.order.process");
    EXPECT_THAT(shown(), ElementsAre(800, 700, 1));
    EXPECT_EQ(status(), u"Sorted by Impact ↓"_s);
    EXPECT_EQ(visible<TextButton>("processes.order.process")->text(), u"Process"_s);
}

TEST_F(ProcessOrderPageTest, TheOrderHoldsForLaterSamplesAndTheFilter) {
    showProcesses();
    click("processes.order.cpu");
    click("processes.order.cpu");
    EXPECT_THAT(shown(), ElementsAre(1, 700, 800));
    machine.addProcess(900, "/usr/bin/new", 10.0, 1.0);
    tick();
    EXPECT_THAT(shown(), ElementsAre(1, 900, 700, 800));
    EXPECT_EQ(status(), u"Sorted by CPU ↑"_s);
    window().state().navigation.setProcessFilter("e");
    settle();
    EXPECT_THAT(shown(), ElementsAre(1, 900, 700, 800));
    click("processes.select-top-row");
    EXPECT_EQ(selectedPID(), 1) << "the first row as displayed";
}

TEST_F(ProcessOrderPageTest, OneClickLeadsBackToImpact) {
    showProcesses();
    click("processes.order.memory-percent");
    click("processes.order.memory-percent");
    ASSERT_THAT(shown(), ElementsAre(1, 700, 800));
    click("processes.impact-order");
    EXPECT_THAT(shown(), ElementsAre(800, 700, 1));
    EXPECT_EQ(visible("processes.impact-order"), nullptr);
    click("processes.order.memory");
    visible("processes.impact-order")->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Space);
    EXPECT_EQ(status(), u"Sorted by Impact ↓"_s);
    EXPECT_TRUE(table().hasFocus()) << "the focus goes on from the hidden button";
}

TEST_F(ProcessOrderPageTest, EachWindowBeginsWithImpact) {
    showProcesses();
    const auto stored = machine.store.written.size();
    click("processes.order.memory");
    goTo(AppRoute::overview);
    goTo(AppRoute::load);
    EXPECT_EQ(status(), u"Sorted by Memory ↓"_s) << "the order stays while the window does";
    EXPECT_EQ(machine.store.written.size(), stored) << "nothing is stored";
    DashboardWindow next(machine.monitor());
    next.state().navigation.setSelectedRoute(AppRoute::load);
    next.show();
    settle();
    EXPECT_THAT(next.findChild<ElidedLabel*>(u"processes.sort-status"_s)->text().toStdString(),
                testing::StartsWith("Sorted by Impact ↓"));
}

TEST_F(ProcessOrderPageTest, KeyboardAndAssistiveTechnologyCanOrder) {
    showProcesses();
    auto* title = visible<TextButton>("processes.order.cpu");
    title->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Space);
    EXPECT_EQ(status(), u"Sorted by CPU ↓"_s);
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(title);
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->role(), QAccessible::Button);
    EXPECT_EQ(spoken->text(QAccessible::Name), u"CPU, highest first"_s);
    spoken->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(status(), u"Sorted by CPU ↑"_s);
}

TEST_F(ProcessOrderPageTest, TheTitlesStandAboveTheirColumns) {
    for (const int width : {640, 1600}) {
        window().resize(width, 700);
        showProcesses();
        const char* titles[] = {"processes.order.process", "processes.order.cpu",
                                "processes.order.memory", "processes.order.memory-percent"};
        for (int column = 0; column < 4; ++column) {
            const QWidget* title = visible(titles[column]);
            EXPECT_EQ(title->mapTo(&window(), QPoint()).x(),
                      table().viewport()->mapTo(&window(), cell(0, column).topLeft()).x());
            EXPECT_EQ(title->width(), table().columnWidth(column));
            EXPECT_GE(title->width(), title->sizeHint().width());
        }
    }
}

TEST_F(ProcessOrderPageTest, NoOrderMovesATitle) {
    for (const int width : {640, 900, 1200, 1600}) {
        window().resize(width, 600);
        showProcesses();
        const QWidget* title = visible("processes.order.cpu");
        const auto place = [&] { return title->mapTo(&window(), QPoint()); };
        const QPoint before = place();
        for (const char* each : {"processes.order.process", "processes.order.memory-percent"}) {
            click(each);
            EXPECT_EQ(place(), before) << width << each;
        }
        click("processes.impact-order");
        EXPECT_EQ(place(), before) << width;
    }
}

TEST_F(ProcessOrderPageTest, TheWayBackStandsBehindTheFirstTitle) {
    window().resize(640, 480);
    showProcesses();
    click("processes.order.process");
    const QWidget* title = visible("processes.order.process");
    const QWidget* way = visible("processes.impact-order");
    EXPECT_EQ(way->x(), title->sizeHint().width());
    EXPECT_EQ(way->width(), way->sizeHint().width());
    EXPECT_LE(way->geometry().right(), title->geometry().right());
    visible("processes.order.process")->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(tabOrder(3), u"processes.order.process processes.impact-order processes.order.cpu"_s);
}

// Assistive technology ---------------------------------------------------------------------------

TEST_F(ProcessOrderPageTest, TheAccessibleActionOfAReviewCellReviews) {
    showProcesses();
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&table());
    ASSERT_NE(spoken, nullptr);
    ASSERT_NE(spoken->tableInterface(), nullptr);
    for (const int row : {1, 0, 1}) {
        QAccessibleInterface* cell =
            spoken->tableInterface()->cellAt(row, ProcessTableModel::actionColumn);
        ASSERT_NE(cell, nullptr);
        ASSERT_TRUE(cell->text(QAccessible::Name).startsWith(u"Review "_s));
        ASSERT_NE(cell->actionInterface(), nullptr);
        ASSERT_FALSE(cell->actionInterface()->actionNames().isEmpty());
        cell->actionInterface()->doAction(cell->actionInterface()->actionNames().first());
        settle();
        EXPECT_EQ(selectedPID(), row == 0 ? 800 : 700);
        EXPECT_FALSE(cell->state().selected);
    }
}

TEST_F(ProcessOrderPageTest, ClicksAndKeysSelectNoCell) {
    showProcesses();
    QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, cell(1, 0).center());
    press(Qt::Key_Down);
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_FALSE(table().selectionModel()->hasSelection());
    EXPECT_EQ(selectedPID(), std::nullopt);
}

// Rows in their places ---------------------------------------------------------------------------

TEST_F(ProcessOrderPageTest, RowsStayWhileThePointerMovesOverThem) {
    showProcesses();
    machine.clock.advance(std::chrono::milliseconds(3000));
    movePointer();
    machine.addProcess(900, "/usr/bin/new", 500.0, 1.0);
    editorRises(std::chrono::milliseconds(1000));
    EXPECT_THAT(shown(), ElementsAre(800, 700, 1, 900));
    EXPECT_EQ(model().index(1, ProcessTableModel::cpuColumn).data().toString(), u"300.0%"_s)
        << "the figures are new";
    EXPECT_TRUE(textOf("processes.sort-status").contains(u"4 visible processes"_s));
    leaveRows();
    EXPECT_THAT(shown(), ElementsAre(900, 700, 800, 1));
}

TEST_F(ProcessOrderPageTest, RowsMoveAgainWhenThePointerRests) {
    showProcesses();
    movePointer();
    editorRises(std::chrono::milliseconds(1000));
    ASSERT_THAT(shown(), ElementsAre(800, 700, 1));
    sample(std::chrono::milliseconds(1000));
    EXPECT_THAT(shown(), ElementsAre(700, 800, 1));
}

TEST_F(ProcessOrderPageTest, RowsStayWhileAButtonIsDown) {
    showProcesses();
    const QPoint place = cell(1, 1).center();
    sendToRows(QEvent::MouseButtonPress, place, Qt::LeftButton, Qt::LeftButton);
    editorRises(std::chrono::milliseconds(4000));
    EXPECT_THAT(shown(), ElementsAre(800, 700, 1));
    sendToRows(QEvent::MouseButtonRelease, place, Qt::LeftButton, Qt::NoButton);
    sample(std::chrono::milliseconds(4000));
    EXPECT_THAT(shown(), ElementsAre(700, 800, 1));
}

TEST_F(ProcessOrderPageTest, RowsStayRightAfterAKey) {
    showProcesses();
    table().setFocus();
    press(Qt::Key_Down);
    editorRises(std::chrono::milliseconds(500));
    EXPECT_THAT(shown(), ElementsAre(800, 700, 1));
}

TEST_F(ProcessOrderPageTest, AnEndedProcessKeepsItsPlaceOnlyWhileRowsAreHeld) {
    showProcesses();
    movePointer();
    machine.endProcess(800);
    sample(std::chrono::milliseconds(500));
    EXPECT_THAT(shown(), ElementsAre(800, 700, 1));
    EXPECT_TRUE(textOf("processes.sort-status").contains(u"2 visible processes"_s));
    leaveRows();
    EXPECT_THAT(shown(), ElementsAre(700, 1));
}

TEST_F(ProcessOrderPageTest, AFilterOrAnOrderMovesRowsAtOnce) {
    showProcesses();
    movePointer();
    window().state().navigation.setProcessFilter("editor");
    settle();
    EXPECT_THAT(shown(), ElementsAre(700));
    window().state().navigation.setProcessFilter("");
    settle();
    movePointer();
    click("processes.order.process");
    EXPECT_THAT(shown(), ElementsAre(700, 800, 1));
}

TEST_F(ProcessOrderPageTest, LeavingThePageReleasesTheRows) {
    showProcesses();
    movePointer();
    editorRises(std::chrono::milliseconds(500));
    ASSERT_THAT(shown(), ElementsAre(800, 700, 1));
    goTo(AppRoute::overview);
    goTo(AppRoute::load);
    EXPECT_THAT(shown(), ElementsAre(700, 800, 1));
}

TEST_F(ProcessOrderPageTest, AClockSetBackHoldsNoRows) {
    showProcesses();
    movePointer();
    editorRises(std::chrono::hours(-1));
    EXPECT_THAT(shown(), ElementsAre(700, 800, 1));
}

// Another row below the pointer ------------------------------------------------------------------

class ReplacedRowTest : public ProcessOrderPageTest {
protected:
    /// The pointer rests on "Review" of a row while the first two rows change places.
    void changePlacesBelow(int row) {
        showProcesses();
        place = cell(row, ProcessTableModel::actionColumn).center();
        sendToRows(QEvent::MouseMove, place);
        editorRises(std::chrono::milliseconds(4000));
        ASSERT_THAT(shown(), ElementsAre(700, 800, 1));
        endReview();  // of the process that became so heavy
    }
    void endReview() {
        machine.monitor().actions().review.clearOperationTarget();
        settle();
    }
    void clickAfter(int milliseconds) {
        machine.clock.advance(std::chrono::milliseconds(milliseconds));
        QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, place);
        settle();
    }

    QPoint place;
};

TEST_F(ReplacedRowTest, APressRightAfterwardsIsIgnored) {
    changePlacesBelow(1);
    clickAfter(200);
    EXPECT_EQ(selectedPID(), std::nullopt);
    EXPECT_FALSE(table().currentIndex().isValid());
    clickAfter(200);
    EXPECT_EQ(selectedPID(), 800);
}

TEST_F(ReplacedRowTest, TheReleaseOfAnIgnoredPressIsIgnoredHoweverLate) {
    changePlacesBelow(0);
    clickAfter(400);
    ASSERT_EQ(selectedPID(), 700);
    machine.metrics->processes.at(1).cpu = 30.0;
    sample(std::chrono::milliseconds(4000));
    machine.metrics->processes.at(1).cpu = 300.0;
    sample(std::chrono::milliseconds(4000));
    ASSERT_EQ(shown().front(), 700) << "the row that was pressed last";
    endReview();
    sendToRows(QEvent::MouseButtonPress, place, Qt::LeftButton, Qt::LeftButton);
    sendToRows(QEvent::MouseMove, place, Qt::NoButton, Qt::LeftButton);
    machine.clock.advance(std::chrono::seconds(1));
    sendToRows(QEvent::MouseButtonRelease, place, Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(selectedPID(), std::nullopt);
    EXPECT_FALSE(table().isPressed());
}

TEST_F(ReplacedRowTest, APressOnARowThatStayedCounts) {
    changePlacesBelow(2);
    clickAfter(0);
    EXPECT_EQ(selectedPID(), 1);
}

TEST_F(ReplacedRowTest, AKeyAndAnAccessibleActionCount) {
    changePlacesBelow(1);
    table().setFocus();
    table().setCurrentIndex(model().index(0, 0));
    press(Qt::Key_Return);
    EXPECT_EQ(selectedPID(), 700);
    auto* cells = QAccessible::queryAccessibleInterface(&table())->tableInterface();
    auto* action = cells->cellAt(1, ProcessTableModel::actionColumn)->actionInterface();
    action->doAction(action->actionNames().first());
    settle();
    EXPECT_EQ(selectedPID(), 800);
}

}  // namespace
}  // namespace tallowcrest

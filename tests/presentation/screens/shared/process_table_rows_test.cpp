#include <QMouseEvent>
#include <QScrollBar>
#include <QTextDocument>
#include <QToolTip>

#include "actions/actions.h"
#include "presentation/screens/shared/process_table_view.h"
#include "presentation/widgets/theme.h"
#include "tests/presentation/window_fixture.h"

namespace tallowcrest {
namespace {

/// How the rows of the process table are painted.
class ProcessTableRowsTest : public WindowFixture {
protected:
    /// The background colour of a cell, beside its text.
    QColor groundOf(int row, int column) {
        return paintedTable().pixelColor(cell(row, column).topRight() + QPoint(-2, 2));
    }

    void movePointerTo(const QPoint& place) {
        QMouseEvent move(QEvent::MouseMove, place, table().viewport()->mapToGlobal(place),
                         Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(table().viewport(), &move);
        settle();
    }
};

TEST_F(ProcessTableRowsTest, OnlyTheRowBelowThePointerIsHighlighted) {
    showProcesses();
    const CrestTheme& theme = CrestTheme::current();
    const auto expectHovered = [&](int hovered) {
        for (int row = 0; row < 3; ++row) {
            for (const int column :
                 {ProcessTableModel::processColumn, ProcessTableModel::memoryColumn}) {
                EXPECT_EQ(groundOf(row, column),
                          row == hovered ? theme.hoveredRow : theme.cardBackground)
                    << row << ' ' << column << " while " << hovered;
            }
        }
    };
    expectHovered(-1);
    movePointerTo(cell(1, ProcessTableModel::memoryColumn).center());
    expectHovered(1);
    tick();
    expectHovered(1);
    movePointerTo(cell(2, ProcessTableModel::processColumn).center());
    expectHovered(2);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(table().viewport(), &leave);
    expectHovered(-1);
}

TEST_F(ProcessTableRowsTest, ScrollingHighlightsTheRowThatIsNowBelowThePointer) {
    for (std::int64_t pid = 2000; pid < 2100; ++pid) {
        machine.addProcess(pid, "/usr/bin/idle", 0.0, 1.0);
    }
    showProcesses();
    movePointerTo(cell(0, 0).center());
    table().verticalScrollBar()->setValue(3 * table().rowHeight(0));
    settle();
    EXPECT_EQ(groundOf(3, 0), CrestTheme::current().hoveredRow);
    EXPECT_EQ(groundOf(4, 0), CrestTheme::current().cardBackground);
}

TEST_F(ProcessTableRowsTest, ALongNameStaysInItsColumnAndIsWholeInTheToolTip) {
    const std::string name(200, 'W');
    machine.metrics->processes[0].command = "/usr/bin/" + name;
    showProcesses();
    const QImage image = paintedTable();
    const QRect figure = cell(0, ProcessTableModel::cpuColumn);
    const QColor ground = CrestTheme::current().cardBackground;
    // The figure stands at the right of its cell.
    for (int y = figure.top() + 1; y < figure.bottom(); ++y) {
        EXPECT_EQ(image.pixelColor(figure.left() + 2, y), ground) << y;
    }
    const QModelIndex index = model().index(0, ProcessTableModel::processColumn);
    QTextDocument tip;
    tip.setHtml(index.data(Qt::ToolTipRole).toString());
    EXPECT_EQ(tip.toPlainText().remove(u'\n').toStdString(), "PID 800/usr/bin/" + name);
}

TEST_F(ProcessTableRowsTest, TheRowUnderReviewKeepsItsColorBelowThePointer) {
    showProcesses();
    machine.monitor().actions().review.selectProcess(model().rows().front());
    settle();
    EXPECT_EQ(groundOf(0, ProcessTableModel::memoryColumn), CrestTheme::current().selectedRow);
    movePointerTo(cell(0, ProcessTableModel::memoryColumn).center());
    EXPECT_EQ(groundOf(0, ProcessTableModel::memoryColumn), CrestTheme::current().selectedRow);
}

TEST_F(ProcessTableRowsTest, AToolTipIsHiddenWhenItsRowMoves) {
    showProcesses();
    const QPoint place = cell(0, ProcessTableModel::processColumn).center();
    movePointerTo(place);
    QHelpEvent asks(QEvent::ToolTip, place, table().viewport()->mapToGlobal(place));
    QApplication::sendEvent(table().viewport(), &asks);
    ASSERT_TRUE(QToolTip::isVisible());
    tick();
    EXPECT_TRUE(QToolTip::isVisible()) << "the rows stay where they are";
    machine.metrics->processes[0].cpu = 0.0;
    machine.metrics->processes[0].rssMB = 1.0;
    tick();
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
}

}  // namespace
}  // namespace tallowcrest

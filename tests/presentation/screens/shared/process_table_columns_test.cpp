#include <QFontMetrics>
#include <QImage>

#include "presentation/screens/shared/process_row_delegate.h"
#include "presentation/widgets/theme.h"
#include "tests/presentation/window_fixture.h"

namespace tallowcrest {
namespace {

/// The widths of the columns and the height of the process table.
class ProcessTableColumnsTest : public WindowFixture {};

TEST_F(ProcessTableColumnsTest, ColumnsKeepTheirPlaceForAnyFigures) {
    showProcesses();
    std::vector<int> before;
    for (int column = 0; column < ProcessTableModel::columnTotal; ++column) {
        before.push_back(table().columnViewportPosition(column));
    }
    machine.metrics->processes[0].cpu = 6399.9;
    machine.metrics->processes[0].rssMB = 524288.0;
    machine.metrics->processes[0].memoryPercent = 100.0;
    tick();
    for (int column = 0; column < ProcessTableModel::columnTotal; ++column) {
        EXPECT_EQ(table().columnViewportPosition(column), before[static_cast<std::size_t>(column)]);
        const QString shown = model().index(0, column).data().toString();
        if (column != ProcessTableModel::actionColumn) {
            const QFontMetrics metrics(CrestFonts::current().body);
            EXPECT_LE(metrics.horizontalAdvance(shown) + 2 * spacing::unit,
                      table().columnWidth(column))
                << shown.toStdString();
        }
    }
}

TEST_F(ProcessTableColumnsTest, ColumnsFillTheTable) {
    showProcesses();
    int width = 0;
    for (int column = 0; column < ProcessTableModel::columnTotal; ++column) {
        width += table().columnWidth(column);
    }
    EXPECT_EQ(width, table().viewport()->width());
}

TEST_F(ProcessTableColumnsTest, AWideWindowKeepsTheFiguresNearTheNames) {
    window().resize(1600, 1000);
    showProcesses();
    EXPECT_EQ(table().columnWidth(ProcessTableModel::processColumn), 420);
    const int afterFigures = table().columnViewportPosition(ProcessTableModel::actionColumn);
    EXPECT_LT(afterFigures, table().viewport()->width() * 3 / 4);
    EXPECT_EQ(afterFigures + table().columnWidth(ProcessTableModel::actionColumn),
              table().viewport()->width());
    window().resize(900, 600);
    settle();
    EXPECT_LT(table().columnWidth(ProcessTableModel::processColumn), 420);
    EXPECT_EQ(table().columnViewportPosition(ProcessTableModel::actionColumn) +
                  ProcessRowDelegate::actionWidth(),
              table().viewport()->width());
}

TEST_F(ProcessTableColumnsTest, TheTableEndsWithAWholeRowAtAnySize) {
    for (std::int64_t pid = 5000; pid < 5100; ++pid) {
        machine.addProcess(pid, "/usr/bin/worker-" + std::to_string(pid), 2.0, 50.0);
    }
    showProcesses();
    for (const int height : {480, 600, 605, 617, 1000}) {
        window().resize(900, height);
        settle();
        EXPECT_GT(table().viewport()->height(), 0) << height;
        EXPECT_EQ(table().viewport()->height() % ProcessRowDelegate::rowHeight, 0) << height;
    }
    table().scrollToBottom();
    settle();
    EXPECT_EQ(cell(model().rowCount() - 1, 0).bottom(), table().viewport()->rect().bottom());
}

TEST_F(ProcessTableColumnsTest, ALongProtectedNameStaysInItsCell) {
    machine.addProcess(2, "[" + std::string(400, 'w') + "]", 500.0, 1.0);
    window().resize(640, 480);
    showProcesses();
    const QImage painted = paintedTable();
    const QRect figures = cell(0, ProcessTableModel::cpuColumn);
    // There is always empty background between a name and its figure.
    for (int y = figures.top() + 2; y < figures.bottom() - 2; ++y) {
        EXPECT_EQ(painted.pixelColor(figures.left() + 1, y),
                  painted.pixelColor(figures.left() + 1, figures.top() + 2));
    }
}

TEST_F(ProcessTableColumnsTest, TheProtectedMarkLeavesRoomForTheName) {
    const auto mark = [](int cellWidth, int nameWidth) {
        return ProcessRowDelegate::protectedMark(QRect(8, 0, cellWidth, 32), nameWidth);
    };
    const QRect withWord = mark(400, 60);
    EXPECT_EQ(withWord.left(), 8 + 60 + 2 * spacing::unit) << "it follows the name";
    const QRect alone = mark(120, 60);
    EXPECT_LT(alone.width(), withWord.width() / 2);
    EXPECT_GE(alone.left(), 8 + 60 + spacing::unit) << "and leaves the name its full width";
    const QRect afterALongName = mark(400, 1000);
    EXPECT_EQ(afterALongName.width(), withWord.width());
    EXPECT_LE(afterALongName.right(), 8 + 400);
    EXPECT_GE(afterALongName.left(), 8 + 96);
    EXPECT_LE(mark(120, 1000).right(), 8 + 120);
}

TEST_F(ProcessTableColumnsTest, ColumnsKeepTheirPlaceWithFewRows) {
    showProcesses();
    for (std::int64_t pid = 5000; pid < 5100; ++pid) {
        machine.addProcess(pid, "/usr/bin/worker-" + std::to_string(pid), 2.0, 50.0);
    }
    tick();
    const QRect before = cell(0, ProcessTableModel::cpuColumn);
    window().state().navigation.setProcessFilter("photo-indexer");
    settle();
    ASSERT_EQ(model().rowCount(), 1);
    EXPECT_EQ(cell(0, ProcessTableModel::cpuColumn), before);
}

}  // namespace
}  // namespace tallowcrest

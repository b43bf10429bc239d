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

TEST_F(ProcessTableColumnsTest, TheColumnsShareTheWidthAtAnySize) {
    showProcesses();
    for (const int width : {640, 900, 1200, 1600, 2400}) {
        SCOPED_TRACE(width);
        window().resize(width, 800);
        settle();
        const int whole = table().viewport()->width();
        EXPECT_EQ(cell(0, ProcessTableModel::actionColumn).right(), whole - 1);
        EXPECT_EQ(table().columnWidth(ProcessTableModel::actionColumn),
                  ProcessRowDelegate::actionWidth());
        const int name = table().columnWidth(ProcessTableModel::processColumn);
        EXPECT_GT(name, 96);
        // The figures are not far from a name of ordinary length.
        EXPECT_LT(name, 420 + whole / 3);
    }
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

TEST_F(ProcessTableColumnsTest, EveryWindowShowsManyRows) {
    struct Case {
        QSize window;
        int rows;
    };
    for (std::int64_t pid = 5000; pid < 5100; ++pid) {
        machine.addProcess(pid, "/usr/bin/worker", 2.0, 50.0);
    }
    showProcesses();
    for (const Case& each : {Case{{1200, 800}, 21}, Case{{900, 600}, 12}, Case{{640, 480}, 7}}) {
        window().resize(each.window);
        settle();
        ASSERT_EQ(window().size(), each.window);
        EXPECT_GE(table().viewport()->height() / ProcessRowDelegate::rowHeight, each.rows)
            << each.window.width();
    }
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

TEST_F(ProcessTableColumnsTest, ANameCellKeepsRoomForItsPID) {
    constexpr int pid = 40;
    const auto parts = [](int cellWidth, int nameWidth, bool isProtected) {
        return ProcessRowDelegate::nameCell(QRect(8, 0, cellWidth, 24), nameWidth, pid,
                                            isProtected);
    };
    const auto shortName = parts(400, 60, false);
    EXPECT_EQ(shortName.name.width(), 60);
    EXPECT_TRUE(shortName.mark.isNull());
    EXPECT_EQ(shortName.note.left(), 8 + 60 + spacing::unit) << "the note follows the name";
    for (const bool isProtected : {false, true}) {
        for (const int cellWidth : {200, 400}) {
            const auto longName = parts(cellWidth, 1000, isProtected);
            EXPECT_GE(longName.note.width(), pid);
            EXPECT_EQ(longName.note.right(), 8 + cellWidth - 1);
            EXPECT_GE(longName.name.width(), 90);
            EXPECT_LT(longName.name.right(), longName.note.left());
            EXPECT_EQ(longName.mark.isNull(), !isProtected);
            EXPECT_LT(longName.mark.right(), longName.note.left());
        }
    }
    EXPECT_EQ(parts(90, 1000, false).note.width(), 0) << "a very narrow cell shows the name";
    EXPECT_EQ(parts(90, 1000, false).name.width(), 90);
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

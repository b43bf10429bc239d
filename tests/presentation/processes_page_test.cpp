#include "presentation/processes_page.h"

#include <QHeaderView>
#include <QImage>
#include <QLineEdit>
#include <QScrollBar>

#include "presentation/process_row_delegate.h"
#include "presentation/theme.h"
#include "tests/presentation/window_fixture.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ProcessesPageTest : public WindowFixture {
protected:
    void showProcesses() {
        machine.monitor().navigation().setSelectedRoute(AppRoute::load);
        showWithSample();
    }

    QLineEdit& filter() { return *visible<QLineEdit>("processes.filter"); }

    void type(const char* text) {
        filter().setFocus();
        filter().clear();
        QTest::keyClicks(&filter(), QString::fromUtf8(text));
        settle();
    }

    std::vector<std::int64_t> shownPIDs() {
        std::vector<std::int64_t> pids;
        for (const ProcessSample& row : model().rows()) {
            pids.push_back(row.pid);
        }
        return pids;
    }

    QRect cell(int row, int column) { return table().visualRect(model().index(row, column)); }

    QImage paintedTable() {
        return table().viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    }
};

TEST_F(ProcessesPageTest, SaysThatItSamplesUntilTheFirstSample) {
    machine.monitor().navigation().setSelectedRoute(AppRoute::load);
    show();
    EXPECT_EQ(textOf("processes.sort-status"), QStringLiteral("Sampling this Mac..."));
    EXPECT_EQ(model().rowCount(), 0);
}

TEST_F(ProcessesPageTest, ListsEveryProcessInOrderOfImpact) {
    showProcesses();
    EXPECT_THAT(shownPIDs(), ElementsAre(800, 700, 1));
    EXPECT_TRUE(
        textOf("processes.sort-status")
            .startsWith(QStringLiteral("Sorted by Impact ↓ · 3 visible processes · updated ")));
}

TEST_F(ProcessesPageTest, ListsMoreThanTheSnapshotsOwnRanking) {
    for (std::int64_t pid = 2000; pid < 2400; ++pid) {
        machine.addProcess(pid, "/usr/bin/idle", 0.0, 1.0);
    }
    showProcesses();
    EXPECT_EQ(model().rowCount(), 403);
    type("2399");
    EXPECT_THAT(shownPIDs(), ElementsAre(2399));
}

TEST_F(ProcessesPageTest, KeepsWhatTheFilterNames) {
    showProcesses();
    type("EDITOR");
    EXPECT_THAT(shownPIDs(), ElementsAre(700));
    EXPECT_TRUE(textOf("processes.sort-status").contains(QStringLiteral("1 visible processes")));
    type("800");
    EXPECT_THAT(shownPIDs(), ElementsAre(800));
    type("   ");
    EXPECT_THAT(shownPIDs(), ElementsAre(800, 700, 1));
}

TEST_F(ProcessesPageTest, AFilterThatMatchesNothingLeavesAHint) {
    showProcesses();
    const QImage full = paintedTable();
    type("no such process");
    EXPECT_THAT(shownPIDs(), IsEmpty());
    EXPECT_TRUE(textOf("processes.sort-status").contains(QStringLiteral("0 visible processes")));
    const QRect hint(table().viewport()->width() / 4, table().viewport()->height() / 4,
                     table().viewport()->width() / 2, table().viewport()->height() / 2);
    const QImage painted = paintedTable().copy(hint);
    const QColor ground = painted.pixelColor(0, 0);
    int inked = 0;
    for (int y = 0; y < painted.height(); ++y) {
        for (int x = 0; x < painted.width(); ++x) {
            inked += painted.pixelColor(x, y) != ground ? 1 : 0;
        }
    }
    EXPECT_GT(inked, 100);
    EXPECT_EQ(table().accessibleDescription(),
              QStringLiteral("Select Process. No process matches the filter. "
                             "Clear it to see all."));
    type("");
    EXPECT_THAT(shownPIDs(), ElementsAre(800, 700, 1));
    EXPECT_FALSE(table().accessibleDescription().contains(QStringLiteral("Select Process.")));
}

TEST_F(ProcessesPageTest, TheFilterOutlivesAChangeOfRouteAndAClosedWindow) {
    showProcesses();
    type("editor");
    goTo(AppRoute::overview);
    tick();
    goTo(AppRoute::load);
    EXPECT_EQ(filter().text(), QStringLiteral("editor"));
    EXPECT_THAT(shownPIDs(), ElementsAre(700));
    window().close();
    settle();
    window().openRoute(AppRoute::load);
    settle();
    EXPECT_EQ(filter().text(), QStringLiteral("editor"));
    EXPECT_THAT(shownPIDs(), ElementsAre(700));
}

TEST_F(ProcessesPageTest, ASampleNeverDisturbsTyping) {
    showProcesses();
    filter().setFocus();
    QTest::keyClicks(&filter(), QStringLiteral(" ed"));
    filter().setCursorPosition(1);
    tick();
    EXPECT_EQ(filter().text(), QStringLiteral(" ed"));
    EXPECT_EQ(filter().cursorPosition(), 1);
    EXPECT_TRUE(filter().hasFocus());
}

TEST_F(ProcessesPageTest, BirthsAndDeathsShow) {
    showProcesses();
    machine.metrics->processes.erase(machine.metrics->processes.begin());
    machine.addProcess(901, "/usr/bin/newcomer", 80.0, 10.0);
    tick();
    EXPECT_THAT(shownPIDs(), ElementsAre(901, 700, 1));
}

// Review -----------------------------------------------------------------------------------------

TEST_F(ProcessesPageTest, ReviewByClickSelects) {
    showProcesses();
    QTest::mouseClick(table().viewport(), Qt::LeftButton, Qt::NoModifier,
                      cell(1, ProcessTableModel::actionColumn).center());
    settle();
    EXPECT_EQ(selectedPID(), 700);
    EXPECT_TRUE(model().index(1, 0).data(ProcessTableModel::isSelectedRole).toBool());
}

TEST_F(ProcessesPageTest, AClickBesideTheButtonSelectsNothing) {
    showProcesses();
    QTest::mouseClick(table().viewport(), Qt::LeftButton, Qt::NoModifier,
                      cell(1, ProcessTableModel::processColumn).center());
    QTest::mouseClick(table().viewport(), Qt::RightButton, Qt::NoModifier,
                      cell(1, ProcessTableModel::actionColumn).center());
    settle();
    EXPECT_EQ(selectedPID(), std::nullopt);
}

TEST_F(ProcessesPageTest, APressThatIsDraggedAwayFromTheButtonSelectsNothing) {
    showProcesses();
    QTest::mousePress(table().viewport(), Qt::LeftButton, Qt::NoModifier,
                      cell(0, ProcessTableModel::processColumn).center());
    QTest::mouseRelease(table().viewport(), Qt::LeftButton, Qt::NoModifier,
                        cell(1, ProcessTableModel::actionColumn).center());
    settle();
    EXPECT_EQ(selectedPID(), std::nullopt);
}

TEST_F(ProcessesPageTest, ReviewByKeySelects) {
    showProcesses();
    table().setFocus();
    press(Qt::Key_Down);
    ASSERT_EQ(table().currentIndex().row(), 1);
    press(Qt::Key_Return);
    EXPECT_EQ(selectedPID(), 700);
    press(Qt::Key_Up);
    press(Qt::Key_Space);
    EXPECT_EQ(selectedPID(), 800);
}

TEST_F(ProcessesPageTest, TheRowUnderReviewIsHighlighted) {
    showProcesses();
    const auto ground = [this](int row) {
        const QRect name = cell(row, ProcessTableModel::memoryColumn);
        return paintedTable().pixelColor(name.left() + 3, name.center().y());
    };
    const QColor plain = ground(1);
    machine.monitor().review().selectProcess(model().rows().at(1));
    settle();
    EXPECT_NE(ground(1), plain);
    EXPECT_EQ(ground(0), plain);
}

TEST_F(ProcessesPageTest, ReviewStaysWithItsProcessWhenTheOrderChanges) {
    showProcesses();
    machine.monitor().review().selectProcess(model().rows().at(1));
    machine.metrics->processes[1].cpu = 300.0;
    tick();
    ASSERT_THAT(shownPIDs(), ElementsAre(700, 800, 1));
    EXPECT_TRUE(model().index(0, 0).data(ProcessTableModel::isSelectedRole).toBool());
    EXPECT_FALSE(model().index(1, 0).data(ProcessTableModel::isSelectedRole).toBool());
}

TEST_F(ProcessesPageTest, SelectTopRowTakesTheFirstRowOfTheFilteredList) {
    showProcesses();
    type("editor");
    click("processes.select-top-row");
    EXPECT_EQ(selectedPID(), 700);
    EXPECT_EQ(textOf("status.last-action"),
              QStringLiteral("Selected editor from CPU + Memory Processes. "
                             "No action has run yet."));
}

TEST_F(ProcessesPageTest, SelectTopRowOfAnEmptyListSaysSo) {
    showProcesses();
    type("no such process");
    click("processes.select-top-row");
    EXPECT_EQ(selectedPID(), std::nullopt);
    EXPECT_EQ(textOf("status.last-action"), QStringLiteral("No process is available to select."));
}

TEST_F(ProcessesPageTest, SelectTopTakesTheHeaviestWhateverTheFilter) {
    showProcesses();
    type("editor");
    click("load.select-top");
    EXPECT_EQ(selectedPID(), 800);
    EXPECT_EQ(textOf("status.last-action"),
              QStringLiteral("Selected photo-indexer, currently the heaviest process."));
    EXPECT_THAT(shownPIDs(), ElementsAre(800, 700, 1)) << "its row is to be seen";
}

TEST_F(ProcessesPageTest, SelectTopWithoutASampleSaysSo) {
    machine.monitor().navigation().setSelectedRoute(AppRoute::load);
    show();
    click("load.select-top");
    EXPECT_EQ(textOf("status.last-action"), QStringLiteral("No process sample is available yet."));
}

TEST_F(ProcessesPageTest, ActivityOpensTheViewerAndElseSaysThatThereIsNone) {
    int asked = 0;
    bool opens = true;
    machine.extensions.openActivityMonitor = [&] {
        ++asked;
        return opens;
    };
    showProcesses();
    click("load.activity");
    click("processes.activity-monitor");
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(lastAction(), "Monitoring started.");
    opens = false;
    click("load.activity");
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(textOf("status.last-action"),
              QStringLiteral("No activity monitor application is installed."));
}

TEST_F(ProcessesPageTest, WithoutADesktopToOpenOnActivitySaysSo) {
    showProcesses();
    click("processes.activity-monitor");
    EXPECT_EQ(textOf("status.last-action"),
              QStringLiteral("No activity monitor application is installed."));
}

// The table --------------------------------------------------------------------------------------

TEST_F(ProcessesPageTest, ColumnsStayWhereTheyAreWhateverTheFigures) {
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

TEST_F(ProcessesPageTest, ColumnsFillTheTable) {
    showProcesses();
    int width = 0;
    for (int column = 0; column < ProcessTableModel::columnTotal; ++column) {
        width += table().columnWidth(column);
    }
    EXPECT_EQ(width, table().viewport()->width());
}

TEST_F(ProcessesPageTest, AWideWindowKeepsTheFiguresNearTheNames) {
    window().resize(1600, 1000);
    showProcesses();
    EXPECT_EQ(table().columnWidth(ProcessTableModel::processColumn), 420);
    const int behindFigures = table().columnViewportPosition(ProcessTableModel::actionColumn);
    EXPECT_LT(behindFigures, table().viewport()->width() * 3 / 4);
    EXPECT_EQ(behindFigures + table().columnWidth(ProcessTableModel::actionColumn),
              table().viewport()->width());
    window().resize(900, 600);
    settle();
    EXPECT_LT(table().columnWidth(ProcessTableModel::processColumn), 420);
    EXPECT_EQ(table().columnViewportPosition(ProcessTableModel::actionColumn) +
                  ProcessRowDelegate::actionWidth(),
              table().viewport()->width());
}

TEST_F(ProcessesPageTest, TheTableEndsWithAWholeRowAtAnySize) {
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

TEST_F(ProcessesPageTest, ALongProtectedNameStaysInItsCell) {
    machine.addProcess(2, "[" + std::string(400, 'w') + "]", 500.0, 1.0);
    window().resize(640, 480);
    showProcesses();
    const QImage painted = paintedTable();
    const QRect figures = cell(0, ProcessTableModel::cpuColumn);
    // Between a name and its figure there is always some ground.
    for (int y = figures.top() + 2; y < figures.bottom() - 2; ++y) {
        EXPECT_EQ(painted.pixelColor(figures.left() + 1, y),
                  painted.pixelColor(figures.left() + 1, figures.top() + 2));
    }
}

TEST_F(ProcessesPageTest, TheProtectedMarkLeavesANameItsRoom) {
    const auto mark = [](int cellWidth, int nameWidth) {
        return ProcessRowDelegate::protectedMark(QRect(8, 0, cellWidth, 32), nameWidth);
    };
    const QRect withWord = mark(400, 60);
    EXPECT_EQ(withWord.left(), 8 + 60 + 2 * spacing::unit) << "it stands behind the name";
    const QRect alone = mark(120, 60);
    EXPECT_LT(alone.width(), withWord.width() / 2);
    EXPECT_GE(alone.left(), 8 + 60 + spacing::unit) << "and lets the name stand whole";
    const QRect behindALongName = mark(400, 1000);
    EXPECT_EQ(behindALongName.width(), withWord.width());
    EXPECT_LE(behindALongName.right(), 8 + 400);
    EXPECT_GE(behindALongName.left(), 8 + 96);
    EXPECT_LE(mark(120, 1000).right(), 8 + 120);
}

TEST_F(ProcessesPageTest, TabLeavesTheTable) {
    showProcesses();
    table().setFocus();
    press(Qt::Key_Tab);
    EXPECT_NE(QApplication::focusWidget(), &table());
}

TEST_F(ProcessesPageTest, FewRowsMoveNoColumn) {
    showProcesses();
    for (std::int64_t pid = 5000; pid < 5100; ++pid) {
        machine.addProcess(pid, "/usr/bin/worker-" + std::to_string(pid), 2.0, 50.0);
    }
    tick();
    const QRect before = cell(0, ProcessTableModel::cpuColumn);
    type("photo-indexer");
    ASSERT_EQ(model().rowCount(), 1);
    EXPECT_EQ(cell(0, ProcessTableModel::cpuColumn), before);
}

TEST_F(ProcessesPageTest, TheFilterIsReachedAndLeftByKey) {
    show();
    machine.finishSamples();
    settle();
    press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(route(), AppRoute::load);
    EXPECT_TRUE(filter().hasFocus());
    QTest::keyClicks(&filter(), QStringLiteral("editor"));
    settle();
    EXPECT_THAT(shownPIDs(), ElementsAre(700));
    press(Qt::Key_Down);
    EXPECT_TRUE(table().hasFocus());
    EXPECT_EQ(table().currentIndex().row(), 0);
    filter().setFocus();
    press(Qt::Key_Escape);
    EXPECT_EQ(filter().text(), QString());
    EXPECT_THAT(shownPIDs(), ElementsAre(800, 700, 1));
}

TEST_F(ProcessesPageTest, TheKeysGoFromRowToRow) {
    showProcesses();
    table().setFocus();
    table().setCurrentIndex(model().index(0, 0));
    press(Qt::Key_End);
    EXPECT_EQ(table().currentIndex(), model().index(2, 0));
    press(Qt::Key_Right);
    EXPECT_EQ(table().currentIndex(), model().index(2, 0));
    press(Qt::Key_Up);
    EXPECT_EQ(table().currentIndex(), model().index(1, 0));
    press(Qt::Key_Home);
    EXPECT_EQ(table().currentIndex(), model().index(0, 0));
}

}  // namespace
}  // namespace tallowcrest

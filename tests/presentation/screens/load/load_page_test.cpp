#include "presentation/screens/load/load_page.h"

#include <QAccessible>
#include <QImage>
#include <QLineEdit>

#include "actions/actions.h"
#include "tests/presentation/window_fixture.h"
#include "tests/support/pids_of.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LoadPageTest : public WindowFixture {
protected:
    QLineEdit& filter() { return *visible<QLineEdit>("processes.filter"); }

    void type(const char* text) {
        filter().setFocus();
        filter().clear();
        QTest::keyClicks(&filter(), QString::fromUtf8(text));
        settle();
    }

    std::vector<std::int64_t> shownPIDs() { return pids(model().rows()); }
};

TEST_F(LoadPageTest, SaysThatItSamplesUntilTheFirstSample) {
    window().state().navigation.setSelectedRoute(AppRoute::load);
    show();
    EXPECT_EQ(textOf("processes.sort-status"), u"Sampling this Mac..."_s);
    EXPECT_EQ(model().rowCount(), 0);
    click("load.select-top");
    EXPECT_EQ(textOf("status.last-action"), u"No process sample is available yet."_s);
}

TEST_F(LoadPageTest, ListsEveryProcessInOrderOfImpact) {
    showProcesses();
    EXPECT_THAT(shownPIDs(), ElementsAre(800, 700, 1));
    EXPECT_TRUE(textOf("processes.sort-status")
                    .startsWith(u"Sorted by Impact ↓ · 3 visible processes · updated "_s));
    machine.metrics->processes.erase(machine.metrics->processes.begin());
    machine.addProcess(901, "/usr/bin/newcomer", 80.0, 10.0);
    tick();
    EXPECT_THAT(shownPIDs(), ElementsAre(901, 700, 1));
    // More than the top processes of the snapshot.
    for (std::int64_t pid = 2000; pid < 2400; ++pid) {
        machine.addProcess(pid, "/usr/bin/idle", 0.0, 1.0);
    }
    tick();
    EXPECT_EQ(model().rowCount(), 403);
    type("2399");
    EXPECT_THAT(shownPIDs(), ElementsAre(2399));
}

TEST_F(LoadPageTest, FiltersByNameAndPID) {
    showProcesses();
    type("EDITOR");
    EXPECT_THAT(shownPIDs(), ElementsAre(700));
    EXPECT_TRUE(textOf("processes.sort-status").contains(u"1 visible processes"_s));
    type("800");
    EXPECT_THAT(shownPIDs(), ElementsAre(800));
    type("   ");
    EXPECT_THAT(shownPIDs(), ElementsAre(800, 700, 1));
}

TEST_F(LoadPageTest, ShowsAHintWhenNothingMatchesTheFilter) {
    showProcesses();
    const QImage full = paintedTable();
    type("no such process");
    EXPECT_THAT(shownPIDs(), IsEmpty());
    EXPECT_TRUE(textOf("processes.sort-status").contains(u"0 visible processes"_s));
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
              u"Select Process. No process matches the filter. "
              "Clear it to see all."_s);
    type("");
    EXPECT_THAT(shownPIDs(), ElementsAre(800, 700, 1));
    EXPECT_FALSE(table().accessibleDescription().contains(u"Select Process."_s));
}

TEST_F(LoadPageTest, TheFilterSurvivesAChangeOfRouteAndAClosedWindow) {
    showProcesses();
    type("editor");
    goTo(AppRoute::overview);
    tick();
    goTo(AppRoute::load);
    EXPECT_EQ(filter().text(), u"editor"_s);
    EXPECT_THAT(shownPIDs(), ElementsAre(700));
    window().close();
    settle();
    window().openRoute(AppRoute::load);
    settle();
    EXPECT_EQ(filter().text(), u"editor"_s);
    EXPECT_THAT(shownPIDs(), ElementsAre(700));
}

TEST_F(LoadPageTest, ASampleNeverDisturbsTyping) {
    showProcesses();
    filter().setFocus();
    QTest::keyClicks(&filter(), u" ed"_s);
    filter().setCursorPosition(1);
    tick();
    EXPECT_EQ(filter().text(), u" ed"_s);
    EXPECT_EQ(filter().cursorPosition(), 1);
    EXPECT_TRUE(filter().hasFocus());
}

TEST_F(LoadPageTest, TheStatusStandsBesideTheFilterWhereItFits) {
    window().resize(1600, 1000);
    showProcesses();
    const auto place = [this](const char* identifier) {
        const QWidget* shown = visible(identifier);
        return QRect(shown->mapTo(&window(), QPoint()), shown->size());
    };
    for (const int width : {1600, 640, 900, 1600}) {
        window().resize(width, 600);
        settle();
        const QRect status = place("processes.sort-status");
        const QRect field = place("processes.filter");
        if (width == 1600) {
            EXPECT_EQ(status.center().y(), field.center().y());
            EXPECT_LT(status.right(), place("processes.select-top-row").left());
        } else {
            EXPECT_GE(status.top(), field.bottom()) << width;
        }
        const auto* label = visible<ElidedLabel>("processes.sort-status");
        EXPECT_EQ(label->shownLines().join(u'|'), label->text()) << width;
    }
}

// Review -----------------------------------------------------------------------------------------

TEST_F(LoadPageTest, OnlyACompleteClickOnTheButtonSelects) {
    showProcesses();
    QWidget* rows = table().viewport();
    const QPoint name = cell(1, ProcessTableModel::processColumn).center();
    const QPoint button = cell(1, ProcessTableModel::actionColumn).center();
    QTest::mouseClick(rows, Qt::LeftButton, Qt::NoModifier, name);
    QTest::mouseClick(rows, Qt::RightButton, Qt::NoModifier, button);
    QTest::mousePress(rows, Qt::LeftButton, Qt::NoModifier, name);
    QTest::mouseRelease(rows, Qt::LeftButton, Qt::NoModifier, button);
    settle();
    EXPECT_EQ(selectedPID(), std::nullopt);
    QTest::mouseClick(rows, Qt::LeftButton, Qt::NoModifier, button);
    settle();
    EXPECT_EQ(selectedPID(), 700);
    EXPECT_TRUE(model().index(1, 0).data(ProcessTableModel::isSelectedRole).toBool());
}

TEST_F(LoadPageTest, ReviewByKeySelects) {
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

TEST_F(LoadPageTest, TheRowUnderReviewIsHighlighted) {
    showProcesses();
    const auto ground = [this](int row) {
        const QRect name = cell(row, ProcessTableModel::memoryColumn);
        return paintedTable().pixelColor(name.left() + 3, name.center().y());
    };
    const QColor plain = ground(1);
    machine.monitor().actions().review.selectProcess(model().rows().at(1));
    settle();
    EXPECT_NE(ground(1), plain);
    EXPECT_EQ(ground(0), plain);
}

TEST_F(LoadPageTest, ReviewStaysWithItsProcessWhenTheOrderChanges) {
    showProcesses();
    machine.monitor().actions().review.selectProcess(model().rows().at(1));
    machine.metrics->processes[1].cpu = 300.0;
    tick();
    ASSERT_THAT(shownPIDs(), ElementsAre(700, 800, 1));
    EXPECT_TRUE(model().index(0, 0).data(ProcessTableModel::isSelectedRole).toBool());
    EXPECT_FALSE(model().index(1, 0).data(ProcessTableModel::isSelectedRole).toBool());
}

TEST_F(LoadPageTest, SelectTopRowTakesTheFirstRowOfTheFilteredListIfAny) {
    showProcesses();
    type("no such process");
    click("processes.select-top-row");
    EXPECT_EQ(selectedPID(), std::nullopt);
    EXPECT_EQ(textOf("status.last-action"), u"No process is available to select."_s);
    type("editor");
    click("processes.select-top-row");
    EXPECT_EQ(selectedPID(), 700);
    EXPECT_EQ(textOf("status.last-action"),
              u"Selected editor from CPU + Memory Processes. "
              "No action has run yet."_s);
}

TEST_F(LoadPageTest, SelectTopIgnoresTheFilter) {
    showProcesses();
    type("editor");
    click("load.select-top");
    EXPECT_EQ(selectedPID(), 800);
    EXPECT_EQ(textOf("status.last-action"),
              u"Selected photo-indexer, currently the heaviest process."_s);
    EXPECT_THAT(shownPIDs(), ElementsAre(800, 700, 1)) << "the filter that hid its row is cleared";
}

TEST_F(LoadPageTest, ActivityOpensTheViewerOrReportsThatThereIsNone) {
    int asked = 0;
    bool opens = true;
    machine.openActivityMonitor = [&] {
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
    EXPECT_EQ(textOf("status.last-action"), u"No activity monitor application is installed."_s);
}

TEST_F(LoadPageTest, WithoutADesktopActivityReportsThatThereIsNone) {
    showProcesses();
    click("processes.activity-monitor");
    EXPECT_EQ(textOf("status.last-action"), u"No activity monitor application is installed."_s);
}

// The table --------------------------------------------------------------------------------------

TEST_F(LoadPageTest, TheFilterCanBeReachedAndLeftByKeyboard) {
    show();
    machine.finishSamples();
    settle();
    press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(route(), AppRoute::load);
    EXPECT_TRUE(filter().hasFocus());
    QTest::keyClicks(&filter(), u"editor"_s);
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

TEST_F(LoadPageTest, KeysMoveByWholeRowsAndTabLeavesTheTable) {
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
    press(Qt::Key_Tab);
    EXPECT_NE(QApplication::focusWidget(), &table());
}

TEST_F(LoadPageTest, CellsOfAHiddenPageNeitherShowNorHaveTheFocus) {
    showProcesses();
    table().setFocus();
    table().setCurrentIndex(model().index(1, 0));
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&table());
    const auto state = [spoken] { return spoken->tableInterface()->cellAt(1, 0)->state(); };
    for (int visits = 0; visits < 2; ++visits) {
        EXPECT_FALSE(state().invisible);
        EXPECT_TRUE(state().focused);
        goTo(AppRoute::overview);
        EXPECT_TRUE(state().invisible);
        EXPECT_FALSE(state().focused);
        goTo(AppRoute::load);
    }
    EXPECT_EQ(table().currentIndex(), model().index(1, 0)) << "keys continue from the same row";
}

}  // namespace
}  // namespace tallowcrest

#include <QLineEdit>
#include <QScrollBar>

#include "actions/actions.h"
#include "actions/review_target.h"
#include "core/settings/settings.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// Selections, most of them made outside the list: their row must be scrolled into view.
class ProcessSelectionTest : public WindowFixture {
protected:
    static constexpr std::int64_t lightest = 2399;  ///< far below the visible rows

    ProcessSelectionTest() {
        for (std::int64_t pid = 2000; pid <= lightest; ++pid) {
            machine.addProcess(pid, "/usr/bin/idle", 0.0, static_cast<double>(2500 - pid));
        }
        // Last in the list, and the only one of its name.
        machine.metrics->processes.back().command = "/usr/bin/straggler";
        machine.recommendations = {
            {UUID::random(), "Memory", "It grows", Recommendation::Severity::caution, lightest}};
        machine.store.write(settings_keys::autoSelectKey, false);
        machine.sampleApplied = [this] {
            if (selectedByRule) {
                machine.monitor().actions().review.setTarget(*selectedByRule, "idle",
                                                             ReviewTarget::ChosenBy::rule);
            }
        };
        window().resize(900, 600);
    }

    ProcessSample row(std::int64_t pid) {
        for (const ProcessSample& each : machine.metrics->processes) {
            if (each.pid == pid) {
                return each;
            }
        }
        return {};
    }

    void filter(const char* text) {
        window().state().navigation.setProcessFilter(text);
        settle();
    }
    const std::string& filter() { return window().state().navigation.processFilter(); }

    int scrolled() { return table().verticalScrollBar()->value(); }
    void scrollTo(int value) { table().verticalScrollBar()->setValue(value); }

    /// The process of the current row, if all of that row is visible.
    std::optional<std::int64_t> currentInView() {
        const QModelIndex current = table().currentIndex();
        const QRect place = table().visualRect(current);
        if (!current.isValid() || place.top() < 0 ||
            place.bottom() >= table().viewport()->height()) {
            return std::nullopt;
        }
        return model().rows().at(static_cast<std::size_t>(current.row())).pid;
    }

    std::optional<std::int64_t> selectedByRule;
};

TEST_F(ProcessSelectionTest, ReviewScrollsToItsRow) {
    showWithSample();
    click("overview.recommendation-1.review");
    EXPECT_EQ(selectedPID(), lightest);
    EXPECT_EQ(currentInView(), lightest);
    EXPECT_GT(scrolled(), 0);
    EXPECT_EQ(textOf("status.last-action"),
              u"Selected straggler from CPU + Memory Processes. No action has run "
              "yet."_s);
}

TEST_F(ProcessSelectionTest, ReviewClearsAFilterThatHidesItsRow) {
    showWithSample();
    filter("photo");
    click("overview.recommendation-1.review");
    EXPECT_EQ(filter(), "");
    EXPECT_EQ(visible<QLineEdit>("processes.filter")->text(), QString());
    EXPECT_EQ(currentInView(), lightest);

    // The same for the process that is under review already.
    filter("photo");
    goTo(AppRoute::overview);
    click("overview.recommendation-1.review");
    EXPECT_EQ(filter(), "");
    EXPECT_EQ(currentInView(), lightest);
}

TEST_F(ProcessSelectionTest, ReviewKeepsAFilterThatShowsItsRow) {
    showWithSample();
    filter(" STRAGG");
    click("overview.recommendation-1.review");
    EXPECT_EQ(filter(), " STRAGG");
    EXPECT_EQ(currentInView(), lightest);
}

TEST_F(ProcessSelectionTest, SamplesDoNotScrollTheListAfterwards) {
    showWithSample();
    click("overview.recommendation-1.review");
    scrollTo(40);
    tick();
    EXPECT_EQ(scrolled(), 40);
    machine.metrics->processes.at(1).cpu = 300.0;
    tick();
    EXPECT_EQ(scrolled(), 40);
    machine.endProcess(lightest);
    tick();
    EXPECT_EQ(scrolled(), 40);
    EXPECT_EQ(selectedPID(), lightest);
    tick();
    EXPECT_EQ(scrolled(), 40);
}

TEST_F(ProcessSelectionTest, SelectTopScrollsToItsRowEachTime) {
    window().state().navigation.setSelectedRoute(AppRoute::load);
    showWithSample();
    filter("straggler");
    click("load.select-top");
    EXPECT_EQ(filter(), "");
    EXPECT_EQ(currentInView(), 800);

    scrollTo(table().verticalScrollBar()->maximum());
    ASSERT_EQ(currentInView(), std::nullopt);
    click("load.select-top");
    EXPECT_EQ(currentInView(), 800);
}

TEST_F(ProcessSelectionTest, ARefusedSelectTopMovesNothing) {
    machine.metrics->processes.at(2).cpu = 400.0;  // systemd
    window().state().navigation.setSelectedRoute(AppRoute::load);
    showWithSample();
    click("load.select-top");
    ASSERT_EQ(selectedPID(), std::nullopt);
    machine.monitor().actions().review.selectProcess(row(700));
    settle();
    filter("straggler");
    click("load.select-top");
    EXPECT_TRUE(lastAction().starts_with("Top process is protected: ")) << lastAction();
    EXPECT_EQ(selectedPID(), 700);
    EXPECT_EQ(filter(), "straggler");
}

TEST_F(ProcessSelectionTest, SelectTopRowScrollsToTheFirstRow) {
    window().state().navigation.setSelectedRoute(AppRoute::load);
    showWithSample();
    filter("idle");
    scrollTo(table().verticalScrollBar()->maximum());
    click("processes.select-top-row");
    EXPECT_EQ(filter(), "idle");
    EXPECT_EQ(selectedPID(), 2000);
    EXPECT_EQ(currentInView(), 2000);
}

TEST_F(ProcessSelectionTest, ASelectionOnAnotherRouteIsInViewWhenTheListOpens) {
    window().state().navigation.setSelectedRoute(AppRoute::load);
    showWithSample();
    scrollTo(table().verticalScrollBar()->maximum());
    filter("straggler");
    goTo(AppRoute::optimize);
    click("optimize.select-top");
    tick();
    EXPECT_EQ(filter(), "straggler") << "the filter stays until the list is visible";
    goTo(AppRoute::load);
    EXPECT_EQ(filter(), "");
    EXPECT_EQ(currentInView(), 800);
}

TEST_F(ProcessSelectionTest, OpeningTheListScrollsToTheRowButKeepsALaterFilter) {
    showWithSample();
    click("overview.recommendation-1.review");
    scrollTo(0);
    goTo(AppRoute::overview);
    goTo(AppRoute::load);
    EXPECT_EQ(currentInView(), lightest);

    filter("photo");
    goTo(AppRoute::overview);
    goTo(AppRoute::load);
    EXPECT_EQ(filter(), "photo");
}

TEST_F(ProcessSelectionTest, ASelectionByARuleDoesNotScroll) {
    window().state().navigation.setSelectedRoute(AppRoute::load);
    showWithSample();
    filter("idle");
    scrollTo(40);
    selectedByRule = lightest;
    tick();
    ASSERT_EQ(selectedPID(), lightest);
    EXPECT_EQ(filter(), "idle");
    EXPECT_EQ(scrolled(), 40);
    selectedByRule.reset();
    tick();
    EXPECT_EQ(filter(), "idle");
    EXPECT_EQ(scrolled(), 40);
}

TEST_F(ProcessSelectionTest, SelectingARowInTheListDoesNotScroll) {
    window().state().navigation.setSelectedRoute(AppRoute::load);
    showWithSample();
    // Half of the first visible row is above the edge.
    scrollTo(table().rowHeight(0) / 2);
    const int before = scrolled();
    const QRect button = table().visualRect(model().index(0, ProcessTableModel::actionColumn));
    QTest::mouseClick(table().viewport(), Qt::LeftButton, {},
                      {button.center().x(), button.bottom() - 6});
    settle();
    ASSERT_EQ(selectedPID(), 800);
    EXPECT_EQ(scrolled(), before);
    tick();
    EXPECT_EQ(scrolled(), before);
}

TEST_F(ProcessSelectionTest, AnEndedProcessDoesNotClearTheFilter) {
    showWithSample();
    filter("photo");
    const ProcessSample gone = row(lightest);
    machine.endProcess(lightest);
    tick();
    machine.monitor().actions().review.selectProcess(gone);
    goTo(AppRoute::load);
    EXPECT_EQ(filter(), "photo");
    EXPECT_EQ(model().rowCount(), 1);
}

TEST_F(ProcessSelectionTest, ASelectionBeforeTheFirstSampleIsShownWithIt) {
    show();
    machine.monitor().actions().review.selectProcess(row(lightest));
    filter("photo");
    goTo(AppRoute::load);
    EXPECT_EQ(filter(), "photo");
    machine.finishSamples();
    settle();
    EXPECT_EQ(filter(), "");
    EXPECT_EQ(currentInView(), lightest);
}

class NeverQuitMarksTest : public WindowFixture {};

TEST_F(NeverQuitMarksTest, AChangeOfTheListShowsInTheTableAtOnce) {
    showWithSample();
    goTo(AppRoute::load);
    const auto isProtectedInTable = [this](const char* name) {
        for (int row = 0; row < model().rowCount(); ++row) {
            const QModelIndex index = model().index(row, ProcessTableModel::processColumn);
            if (index.data(Qt::DisplayRole).toString() == QLatin1String(name)) {
                return index.data(ProcessTableModel::isProtectedRole).toBool();
            }
        }
        ADD_FAILURE() << name << " is not listed";
        return false;
    };
    EXPECT_FALSE(isProtectedInTable("editor"));
    machine.monitor().actions().local.toggleNeverQuit("editor");
    settle();
    EXPECT_TRUE(isProtectedInTable("editor"));
    EXPECT_FALSE(isProtectedInTable("photo-indexer"));
    machine.monitor().actions().local.toggleNeverQuit("editor");
    settle();
    EXPECT_FALSE(isProtectedInTable("editor"));
}

}  // namespace
}  // namespace tallowcrest

#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include "presentation/screens/overview/gauges_block.h"
#include "presentation/screens/overview/recent_activity_block.h"
#include "presentation/screens/overview/session_blocks.h"
#include "presentation/screens/overview/timeline_block.h"
#include "presentation/screens/overview/top_app_memory_block.h"
#include "presentation/screens/overview/top_offender_block.h"
#include "presentation/widgets/bar_list.h"
#include "presentation/widgets/figure_row.h"
#include "presentation/widgets/gauge_card.h"
#include "presentation/widgets/stable_line_graph.h"
#include "tests/presentation/screens/shared/block_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

// Gauges -----------------------------------------------------------------------------------------

std::string spoken(const QWidget* figure) {
    return dynamic_cast<const AccessibleFigure&>(*figure).accessibleValue().toStdString();
}

TEST_F(OverviewBlockTest, GaugesShowTheSample) {
    GaugesBlock& block = place(new GaugesBlock);
    block.show(snapshot);
    EXPECT_EQ(spoken(visible("overview.cpu-load")), "Sampling this Mac...");
    SystemSnapshot& taken = sample();
    taken.cpuPercent = 40.0;
    taken.memory = {16.0, 9.5, 6.5, 2.25, 0.5, 59.4};
    block.show(snapshot);
    EXPECT_EQ(visible<GaugeCard>("overview.cpu-load")->value(), 40.0);
    EXPECT_EQ(spoken(visible("overview.cpu-load")), "40%, Normal, 40% normalized across cores");
    EXPECT_EQ(visible<GaugeCard>("overview.memory-pressure")->value(), 59.4);
    EXPECT_EQ(spoken(visible("overview.memory-pressure")), "59%, Normal, 9.5 GB used of 16.0 GB");
    EXPECT_EQ(spoken(visible("overview.free-reclaimable")),
              "6.5 GB, 6.5 GB free · Wired 2.3 GB · Compressed 0.5 GB");
    taken.memory.freeGB = 0.25;
    block.show(snapshot);
    EXPECT_EQ(spoken(visible("overview.free-reclaimable")),
              "256 MB, 0.3 GB free · Wired 2.3 GB · Compressed 0.5 GB");
}

TEST_F(OverviewBlockTest, GaugesAreAGroupWithItsOwnName) {
    const GaugesBlock& block = place(new GaugesBlock);
    const QWidget* gauges = visible("overview.gauges");
    ASSERT_NE(gauges, nullptr);
    for (const char* each :
         {"overview.cpu-load", "overview.memory-pressure", "overview.free-reclaimable"}) {
        EXPECT_TRUE(gauges->isAncestorOf(visible(each))) << each;
    }
    EXPECT_NE(gauges->accessibleName(), block.accessibleName());
}

TEST_F(OverviewBlockTest, UnreadableFiguresAreShownAsZero) {
    GaugesBlock& block = place(new GaugesBlock);
    sample();
    block.show(snapshot);
    EXPECT_EQ(spoken(visible("overview.cpu-load")), "0%, Normal, 0% normalized across cores");
    EXPECT_EQ(spoken(visible("overview.memory-pressure")), "0%, Normal, 0.0 GB used of 0.0 GB");
}

// Timeline ---------------------------------------------------------------------------------------

TEST_F(OverviewBlockTest, TimelineSaysWhatThePointsAndMarksAre) {
    TimelineBlock& block = place(new TimelineBlock);
    const auto at = [](double seconds) {
        return dashboard_text::timeText(Date{seconds}).toStdString();
    };
    const std::vector<HistoryPoint> history{{UUID::random(), Date{4.0}, 40.0, 59.4},
                                            {UUID::random(), Date{16.0}, 70.0, 30.0},
                                            {UUID::random(), Date{60.0}, 20.0, 50.0},
                                            {UUID::random(), Date{64.0}, 10.0, 50.0}};
    const std::vector<ActivityEvent> log{{UUID::random(), Date{5.0}, "Warning", "Load is high"}};
    block.show({history, log, 82.0}, true);
    auto* graph = visible<StableLineGraph>("overview.timeline.graph");
    const auto said = [graph] { return graph->accessibleDescription().toStdString(); };
    EXPECT_EQ(said(),
              "CPU 10 percent, Memory 50 percent. Not measured from " + at(16) + " to " + at(60));
    QTest::keyClick(graph, Qt::Key_Home);
    EXPECT_EQ(said(),
              at(4) + ": CPU 40 percent, Memory 59 percent. Warning, " + at(5) + ": Load is high");
}

TEST_F(OverviewBlockTest, TimelineShowsNowPeakAverageAndThreshold) {
    TimelineBlock& block = place(new TimelineBlock);
    const std::vector<HistoryPoint> history{{UUID::random(), Date{4.0}, 40.0, 59.4},
                                            {UUID::random(), Date{8.0}, 70.0, 30.0},
                                            {UUID::random(), Date{12.0}, 20.0, 44.6}};
    block.show({history, {}, 82.0}, false);
    EXPECT_THAT(texts(block), Not(Contains("20%"))) << "an earlier run's history is not now";
    block.show({history, {}, 82.0}, true);
    QStringList figures;
    for (const NamedFigure* each : block.findChildren<NamedFigure*>()) {
        figures.append(each->accessibleValue());
    }
    EXPECT_EQ(figures.join(u'|'), u"CPU now: 20%|Memory now: 45%|CPU peak: 70%|Memory peak: 59%"_s);
    EXPECT_THAT(texts(block), IsSupersetOf({"Avg 43% · Warn 82%",
                                            "Current session · last 12 seconds · updates every 4 "
                                            "seconds"}));
    EXPECT_EQ(block.findChild<StableLineGraph*>()->accessibleValue(),
              u"CPU 20 percent, Memory 45 percent"_s);
}

TEST_F(OverviewBlockTest, AClosedTimelineKeepsItsCaption) {
    TimelineBlock& block = place(new TimelineBlock);
    block.setCollapsed(true);
    const std::vector<HistoryPoint> history{{UUID::random(), Date{4.0}, 40.0, 59.4},
                                            {UUID::random(), Date{8.0}, 70.0, 30.0}};
    block.show({history, {}, 82.0}, true);
    EXPECT_THAT(texts(block),
                Contains("Current session · last 8 seconds · updates every 4 seconds"));
    EXPECT_THAT(texts(block), Not(Contains("CPU now")));
}

// Memory by group --------------------------------------------------------------------------------

TEST_F(OverviewBlockTest, TopAppMemoryListsTheLargestGroups) {
    TopAppMemoryBlock& block = place(new TopAppMemoryBlock);
    block.show(snapshot);
    const BarList& bars = *block.findChild<BarList*>();
    EXPECT_EQ(bars.accessibleValue(), u"Sampling apps…"_s);
    sample().appImpacts = {group("editor", 1024.0), group("photo-indexer", 2048.0)};
    block.show(snapshot);
    ASSERT_THAT(bars.rows(), SizeIs(2));
    EXPECT_EQ(bars.rows()[0].label, u"photo-indexer"_s);
    EXPECT_EQ(bars.rows()[0].valueText, u"2.0 GB"_s);
    EXPECT_EQ(bars.rows()[0].fraction, 1.0);
    EXPECT_EQ(bars.rows()[1].label, u"editor"_s);
    EXPECT_EQ(bars.rows()[1].fraction, 0.5);
    EXPECT_THAT(texts(block), Contains("Largest app groups by resident memory right now"));
    EXPECT_THAT(texts(block), Not(Contains("Collecting app impact samples…")));
}

TEST_F(OverviewBlockTest, ASampleWithoutGroupsSaysThatItCollects) {
    TopAppMemoryBlock& block = place(new TopAppMemoryBlock);
    sample().appImpacts = {group("editor", 1024.0)};
    block.show(snapshot);
    sample().appImpacts.clear();
    block.show(snapshot);
    EXPECT_THAT(block.findChild<BarList*>()->rows(), IsEmpty());
    EXPECT_THAT(texts(block), Contains("Collecting app impact samples…"));
}

TEST_F(OverviewBlockTest, TopAppMemoryGrowsAtOnceAndShrinksLater) {
    TopAppMemoryBlock& block = place(new TopAppMemoryBlock);
    block.show(snapshot);
    const int waiting = heightOf(block);
    const auto tick = [&](std::size_t groups) {
        sample().appImpacts.assign(groups, group("app", 100.0));
        block.show(snapshot);
    };
    tick(2);
    EXPECT_EQ(heightOf(block), waiting);
    tick(8);
    const int many = heightOf(block);
    EXPECT_GT(many, waiting);
    for (int samples = 1; samples < ReservedRows::samplesUntilShrink; ++samples) {
        tick(2);
        EXPECT_EQ(heightOf(block), many) << samples;
    }
    tick(2);
    EXPECT_EQ(heightOf(block), waiting);
}

// The top offender -------------------------------------------------------------------------------

class TopOffenderBlockTest : public OverviewBlockTest {
protected:
    TopOffenderBlockTest() {
        ProcessSample& row = processes.emplace_back();
        row.pid = 800;
        row.command = row.arguments = "/usr/bin/photo-indexer";
    }

    void show() { block.show({snapshot, processes, settings, {}}, alerts, false); }
    void showOffender() {
        sample().appImpacts = {group("photo-indexer", 2048.0, 800)};
        snapshot->memory.pressure = 82.0;
        show();
    }

    Settings settings;
    std::vector<ProcessSample> processes;
    RemoteAlerts alerts;
    TopOffenderBlock& block = place(new TopOffenderBlock);
};

TEST_F(TopOffenderBlockTest, HasThreeStates) {
    show();
    EXPECT_THAT(texts(*block.body()), ElementsAre("No top offender yet"));
    EXPECT_EQ(visible("overview.review-cleanup-options"), nullptr);
    const int height = heightOf(block);
    sample().appImpacts = {group("photo-indexer", 2048.0, 800)};
    show();
    EXPECT_THAT(texts(*block.body()),
                ElementsAre("System Looks Stable",
                            "CPU and memory pressure are below your warning threshold. Keep "
                            "monitoring or run an on-device second opinion."));
    EXPECT_EQ(visible("overview.review-cleanup-options"), nullptr);
    EXPECT_EQ(visible("overview.review-top-offender"), nullptr) << "nothing offends";
    EXPECT_EQ(heightOf(block), height);
    showOffender();
    EXPECT_THAT(texts(*block.body()),
                ElementsAre("photo-indexer is the most useful place to start. Review the Optimize "
                            "workspace before quitting or purging anything."));
    EXPECT_EQ(heightOf(block), height);
}

TEST_F(TopOffenderBlockTest, CountsTheOtherMachinesThatNeedAttention) {
    show();
    EXPECT_EQ(visible("overview.remote-alerts"), nullptr);
    alerts = {u"2 Remote Alerts"_s, u"Scanned 2 min ago"_s};
    show();
    settle();
    EXPECT_EQ(textOf("overview.remote-alerts"), u"2 Remote Alerts"_s);
    EXPECT_EQ(textOf("overview.remote-alerts.age"), u"Scanned 2 min ago"_s);
}

TEST_F(TopOffenderBlockTest, EmitsReviewAndCleanup) {
    const QSignalSpy reviews(&block, &TopOffenderBlock::reviewWanted);
    const QSignalSpy cleanups(&block, &TopOffenderBlock::cleanupWanted);
    showOffender();
    click("overview.review-top-offender");
    EXPECT_EQ(reviews.count(), 1);
    EXPECT_EQ(cleanups.count(), 0);
    click("overview.review-cleanup-options");
    EXPECT_EQ(cleanups.count(), 1);
    EXPECT_EQ(visible("overview.review-top-offender")->accessibleName(),
              u"Review: photo-indexer"_s);
}

TEST_F(TopOffenderBlockTest, AProtectedOffenderHasNoReviewButton) {
    settings.protectedAppNames = {"photo-indexer"};
    showOffender();
    EXPECT_NE(visible("overview.review-cleanup-options"), nullptr);
    EXPECT_EQ(visible("overview.review-top-offender"), nullptr);
}

// Activity ---------------------------------------------------------------------------------------

class RecentActivityBlockTest : public OverviewBlockTest {
protected:
    void record(const char* title, const char* detail) {
        events.insert(events.begin(), {UUID::random(), Date{}, title, detail});
    }
    void show() { block.show(events, snapshot->sampledAt); }

    std::vector<ActivityEvent> events;  ///< newest first
    RecentActivityBlock& block = place(new RecentActivityBlock);
};

TEST_F(RecentActivityBlockTest, ListsTheNewestFive) {
    const auto* list = block.body()->findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    sample();
    show();
    EXPECT_THAT(texts(*list), ElementsAre("No actions or warnings have been logged yet."));
    const int empty = heightOf(block);
    record("Action", "one");
    show();
    EXPECT_EQ(heightOf(block), empty);
    for (const char* detail : {"two", "three", "four", "five", "six"}) {
        record("Action", detail);
    }
    record("Warning", "seven");
    show();
    EXPECT_THAT(texts(*list), AllOf(Contains("seven"), Contains("Warning"), Contains("three")));
    EXPECT_THAT(texts(*list), AllOf(Not(Contains("two")),
                                    Not(Contains("No actions or warnings have been logged yet."))));
    const int full = heightOf(block);
    EXPECT_GT(full, empty);
    sample();
    show();
    events.clear();
    show();
    EXPECT_THAT(texts(*list), ElementsAre("No actions or warnings have been logged yet."));
    for (int samples = 0; samples < ReservedRows::samplesUntilShrink; ++samples) {
        EXPECT_EQ(heightOf(block), full) << samples;
        sample();
        show();
    }
    EXPECT_EQ(heightOf(block), empty);
}

// Figures of the session -------------------------------------------------------------------------

TEST_F(OverviewBlockTest, TheSummaryCountsTheSession) {
    SessionSummaryBlock& block = place(new SessionSummaryBlock);
    block.show(
        {{UUID::random(), Date{}, "Action", "Something"},
         {UUID::random(), Date{}, "Warning", "Load is high"}},
        {{UUID::random(), "Recurring Top App", "editor", "Led", SessionInsight::Kind::topApp}}, {});
    EXPECT_THAT(
        shownCards(block),
        ElementsAre("Events: 1 warnings, 1 logged actions. Use Export for a full diagnostics file.",
                    "Recurring Top App: editor, Most visible app group in this Tallowcrest "
                    "session.",
                    "Remote Repeater: None yet, Most repeated top remote app group across SSH "
                    "scans.",
                    "Never Quit: 0 apps, No custom app groups are protected yet."));
}

TEST_F(OverviewBlockTest, InsightsAreShownUnchanged) {
    SessionInsightsBlock& block = place(new SessionInsightsBlock);
    block.show({}, {});
    EXPECT_THAT(shownCards(block),
                ElementsAre("Session: Starting, Tallowcrest is collecting enough samples to "
                            "identify patterns."));
    std::vector<SessionInsight> insights{
        {UUID::random(), "Peak CPU", "97%", "Average 40% across this session."},
        {UUID::random(), "Peak Memory", "80%", "Average 50% pressure across this session."}};
    block.show(insights, {});
    EXPECT_THAT(shownCards(block),
                ElementsAre("Peak CPU: 97%, Average 40% across this session.",
                            "Peak Memory: 80%, Average 50% pressure across this session."));
    insights.pop_back();
    block.show(insights, {});
    EXPECT_THAT(shownCards(block), ElementsAre("Peak CPU: 97%, Average 40% across this session."));
}

}  // namespace
}  // namespace tallowcrest

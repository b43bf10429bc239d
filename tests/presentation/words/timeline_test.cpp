#include "presentation/words/timeline.h"

#include <source_location>

#include <gmock/gmock.h>

#include "tests/support/each_of.h"
#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pointwise;

constexpr Date start{1000.0};

Date after(double seconds) {
    return {start.secondsSinceReference + seconds};
}

std::vector<HistoryPoint> historyAt(std::initializer_list<double> seconds) {
    return eachOf(seconds, [](double second) { return HistoryPoint{{}, after(second), 1.0, 2.0}; });
}

std::vector<ActivityEvent> eventsAt(std::initializer_list<double> seconds) {
    return eachOf(seconds, [](double second) {
        return ActivityEvent{{}, after(second), "Action", ""};
    });
}

/// 180 points, one every `step` seconds.
std::vector<HistoryPoint> fullHistory(double step) {
    std::vector<HistoryPoint> full(180);
    for (std::size_t i = 0; i < full.size(); ++i) {
        full[i].date = after(step * static_cast<double>(i));
    }
    return full;
}

TEST(TimelineSummary, IsEmptyWithoutHistory) {
    const TimelineSummary summary = timelineSummary({});
    EXPECT_THAT(summary.cpu, IsEmpty());
    EXPECT_THAT(summary.memory, IsEmpty());
    EXPECT_EQ(summary.cpuNow, 0.0);
    EXPECT_EQ(summary.memoryNow, 0.0);
    EXPECT_EQ(summary.cpuPeak, 0.0);
    EXPECT_EQ(summary.memoryPeak, 0.0);
    EXPECT_EQ(summary.cpuAverage, 0.0);
}

TEST(TimelineSummary, GivesNowPeakAndAverage) {
    std::vector<HistoryPoint> history = historyAt({0, 4, 8});
    history[0].cpu = 10.0;
    history[1].cpu = 70.0;
    history[2].cpu = 40.0;
    history[0].memory = 55.0;
    history[1].memory = 50.0;
    history[2].memory = 45.0;
    const TimelineSummary summary = timelineSummary(history);
    EXPECT_THAT(summary.cpu, ElementsAre(10.0, 70.0, 40.0));
    EXPECT_THAT(summary.memory, ElementsAre(55.0, 50.0, 45.0));
    EXPECT_EQ(summary.cpuNow, 40.0);
    EXPECT_EQ(summary.memoryNow, 45.0);
    EXPECT_EQ(summary.cpuPeak, 70.0);
    EXPECT_EQ(summary.memoryPeak, 55.0);
    EXPECT_EQ(summary.cpuAverage, 40.0);
}

TEST(SessionSeconds, CountForwardStepsOfTheClockAndAGapAsOneTick) {
    EXPECT_EQ(sessionSeconds({}), 0);
    EXPECT_EQ(sessionSeconds(historyAt({0})), 4);
    EXPECT_EQ(sessionSeconds(historyAt({0, 4, 8})), 12);
    EXPECT_EQ(sessionSeconds(historyAt({0, 4.3, 8.2})), 12);
    EXPECT_EQ(sessionSeconds(fullHistory(4.0)), 720);
    EXPECT_EQ(sessionSeconds(historyAt({0, 4, 5, 5.5, 8})), 12) << "a sample in between";
    EXPECT_EQ(sessionSeconds(historyAt({0, 4, 3604, 3608})), 16) << "a gap";
    EXPECT_EQ(sessionSeconds(historyAt({0, 12})), 16) << "three ticks are a delay and not a gap";
    EXPECT_EQ(sessionSeconds(historyAt({0, 12.1})), 8);
    EXPECT_EQ(sessionSeconds(historyAt({3600, 3604, 0, 4, 8})), 16) << "the clock was set back";
    EXPECT_EQ(sessionSeconds(historyAt({100, 50})), 4);
    EXPECT_EQ(sessionSeconds(historyAt({0, nan, 8, 12})), 8);
    EXPECT_EQ(sessionSeconds(historyAt({0, 1e300, 2e300})), 12);
}

TEST(SessionSeconds, AreAtMostTheLongestSession) {
    for (const double step : {4.0, 11.99, 12.0, 12.01, 86'400.0}) {
        EXPECT_LE(sessionSeconds(fullHistory(step)), longestSessionSeconds) << step;
        EXPECT_GE(sessionSeconds(fullHistory(step)), 720) << step;
    }
}

void expectFractions(std::initializer_list<double> events, std::initializer_list<double> history,
                     double now, const std::vector<double>& expected, double tolerance = 1e-12,
                     std::source_location row = std::source_location::current()) {
    const testing::ScopedTrace trace(row.file_name(), static_cast<int>(row.line()), "row");
    const std::vector<ActivityEvent> log = eventsAt(events);
    std::vector<double> fractions;
    for (const TimelineEvent& each : timelineEvents(log, historyAt(history), after(now))) {
        fractions.push_back(each.fraction);
    }
    EXPECT_THAT(fractions, Pointwise(DoubleNear(tolerance), expected));
}

TEST(TimelineEvents, LieBetweenTheirNeighboursInTime) {
    expectFractions({12, 10, 4, 1, 0}, {0, 4, 12}, 12, {1.0, 0.875, 0.5, 0.125, 0.0});
    // Of several points with the same date the last counts.
    expectFractions({5}, {5, 5}, 5, {1.0});
    expectFractions({6, 4, 2}, {0, 4, 4, 4, 8}, 8, {0.875, 0.75, 0.125});
    // Fewer than two points.
    expectFractions({0}, {}, 0, {});
    expectFractions({0}, {0}, 0, {});
}

TEST(TimelineEvents, AreThoseThatArePlaced) {
    const std::vector<ActivityEvent> log = eventsAt({6, 50, 2});
    const auto placed = timelineEvents(log, historyAt({0, 4, 8}), after(8));
    ASSERT_EQ(placed.size(), 2U);
    EXPECT_EQ(placed[0].event, &log[0]);
    EXPECT_EQ(placed[1].event, &log[2]);
}

TEST(TimelineGaps, AreMoreThanThreeTicksLong) {
    EXPECT_THAT(timelineGaps({}), IsEmpty());
    EXPECT_THAT(timelineGaps(historyAt({0})), IsEmpty());
    EXPECT_THAT(timelineGaps(historyAt({0, 4, 16})), IsEmpty()) << "three ticks";
    EXPECT_THAT(timelineGaps(historyAt({0, 4, 16.1, 20, 90000, 90004})), ElementsAre(2, 4));
    EXPECT_THAT(timelineGaps(historyAt({3600, 0, 4})), IsEmpty()) << "the clock was set back";
    EXPECT_THAT(timelineGaps(historyAt({0, nan, 100})), IsEmpty());
}

TEST(TimelineEvents, AGapMovesNoEventAwayFromItsPoint) {
    // Restarted in the morning, just before the last three points.
    const auto history = {0.0, 4.0, 8.0, 30000.0, 30004.0, 30008.0};
    expectFractions({30006, 30000}, history, 30008, {0.9, 0.6});
    // Recorded while the first sample of the new run was still being taken.
    expectFractions({29999}, history, 30008, {0.6}, 1e-4);
    expectFractions({8, 4}, history, 30008, {});
}

TEST(TimelineEvents, EventsOutsideThePeriodAreOmitted) {
    expectFractions({100.5, -0.5, 50}, {0, 100}, 102, {0.5});
    // Only the last 600 seconds count: seen from 716 seconds, that is 116.
    expectFractions({115.9, 116, 358}, {0, 716}, 716, {116.0 / 716.0, 0.5});
}

TEST(TimelineEvents, AfterAStepBackOfTheClockTheLatestPointsCount) {
    expectFractions({103, 99}, {100, 104, 98, 102, 106}, 106, {0.8125, 0.5625});
    expectFractions({50}, {100, 10}, 10, {});
    // The event is dated in the future.
    expectFractions({3600, 20}, {0, 40}, 40, {0.5});
    expectFractions({3602}, {3600, 3604, 0, 4}, 4, {});
}

TEST(TimelineEvents, DatesThatAreNotNumbersAreOmitted) {
    expectFractions({nan}, {0, 40}, 40, {});
    expectFractions({20}, {0, nan}, 40, {});
    expectFractions({20}, {0, 40}, nan, {});
}

}  // namespace
}  // namespace tallowcrest

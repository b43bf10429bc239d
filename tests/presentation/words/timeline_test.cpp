#include "presentation/words/timeline.h"

#include <limits>

#include <gmock/gmock.h>

namespace tallowcrest {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr Date start{1000.0};

Date after(double seconds) {
    return {start.secondsSinceReference + seconds};
}

std::vector<HistoryPoint> historyAt(std::initializer_list<double> seconds) {
    std::vector<HistoryPoint> history;
    for (const double second : seconds) {
        history.push_back({.id = {}, .date = after(second), .cpu = 1.0, .memory = 2.0});
    }
    return history;
}

std::vector<ActivityEvent> eventsAt(std::initializer_list<double> seconds) {
    std::vector<ActivityEvent> events;
    for (const double second : seconds) {
        events.push_back({.id = {}, .date = after(second), .title = "Action", .detail = ""});
    }
    return events;
}

TEST(TimelineSummary, OfNothingIsNothing) {
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

TEST(SessionSeconds, AreTheSpanOfThePointsAndTheIntervalBeforeThem) {
    EXPECT_EQ(sessionSeconds({}), 0);
    EXPECT_EQ(sessionSeconds(historyAt({0})), 4);
    EXPECT_EQ(sessionSeconds(historyAt({0, 4, 8})), 12);
    EXPECT_EQ(sessionSeconds(historyAt({0, 4.3, 8.2})), 12);
    std::vector<HistoryPoint> full(180);
    for (std::size_t i = 0; i < full.size(); ++i) {
        full[i].date = after(4.0 * static_cast<double>(i));
    }
    EXPECT_EQ(sessionSeconds(full), 720);
}

TEST(SessionSeconds, ASampleInBetweenAddsNoTime) {
    EXPECT_EQ(sessionSeconds(historyAt({0, 4, 5, 5.5, 8})), 12);
}

TEST(SessionSeconds, AGapCountsAsOneTick) {
    EXPECT_EQ(sessionSeconds(historyAt({0, 4, 3604, 3608})), 16);
    EXPECT_EQ(sessionSeconds(historyAt({0, 12})), 16) << "three ticks are late, and no break";
    EXPECT_EQ(sessionSeconds(historyAt({0, 12.1})), 8);
}

TEST(SessionSeconds, AreAtMostTheLongestSession) {
    for (const double step : {4.0, 11.99, 12.0, 12.01, 86'400.0}) {
        std::vector<HistoryPoint> full(180);
        for (std::size_t i = 0; i < full.size(); ++i) {
            full[i].date = after(step * static_cast<double>(i));
        }
        EXPECT_LE(sessionSeconds(full), longestSessionSeconds) << step;
        EXPECT_GE(sessionSeconds(full), 720) << step;
    }
}

TEST(SessionSeconds, CountOnlyForwardStepsOfTheClock) {
    EXPECT_EQ(sessionSeconds(historyAt({3600, 3604, 0, 4, 8})), 16);
    EXPECT_EQ(sessionSeconds(historyAt({100, 50})), 4);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(sessionSeconds(historyAt({0, nan, 8, 12})), 8);
    EXPECT_EQ(sessionSeconds(historyAt({0, 1e300, 2e300})), 12);
}

TEST(EventFractions, LieBetweenTheirNeighboursInTime) {
    const auto history = historyAt({0, 4, 12});
    EXPECT_THAT(eventFractions(eventsAt({12, 10, 4, 1, 0}), history, after(12)),
                ElementsAre(1.0, DoubleNear(0.875, 1e-12), 0.5, DoubleNear(0.125, 1e-12), 0.0));
}

TEST(EventFractions, AGapMovesNoEventAwayFromItsPoint) {
    // Restarted in the morning, just before the last three points.
    const auto history = historyAt({0, 4, 8, 30000, 30004, 30008});
    EXPECT_THAT(eventFractions(eventsAt({30006, 30000}), history, after(30008)),
                ElementsAre(DoubleNear(0.9, 1e-12), 0.6));
    // Told while the first sample of the new run was still being taken.
    EXPECT_THAT(eventFractions(eventsAt({29999}), history, after(30008)),
                ElementsAre(DoubleNear(0.6, 1e-4)));
    EXPECT_THAT(eventFractions(eventsAt({8, 4}), history, after(30008)), IsEmpty());
}

TEST(EventFractions, EventsOutsideThePeriodAreOmitted) {
    const auto history = historyAt({0, 100});
    EXPECT_THAT(eventFractions(eventsAt({100.5, -0.5, 50}), history, after(102)),
                ElementsAre(DoubleNear(0.5, 1e-12)));
}

TEST(EventFractions, OnlyTheLastSixHundredSecondsCount) {
    const auto history = historyAt({0, 716});
    // Seen from 716 seconds, 600 seconds ago is 116.
    EXPECT_THAT(eventFractions(eventsAt({115.9, 116, 358}), history, after(716)),
                ElementsAre(DoubleNear(116.0 / 716.0, 1e-12), DoubleNear(0.5, 1e-12)));
}

TEST(EventFractions, AreEmptyForFewerThanTwoPoints) {
    EXPECT_THAT(eventFractions(eventsAt({0}), {}, after(0)), IsEmpty());
    EXPECT_THAT(eventFractions(eventsAt({0}), historyAt({0}), after(0)), IsEmpty());
}

TEST(EventFractions, OfSeveralPointsAtOneDateTheLastCounts) {
    EXPECT_THAT(eventFractions(eventsAt({5}), historyAt({5, 5}), after(5)), ElementsAre(1.0));
    EXPECT_THAT(eventFractions(eventsAt({6, 4, 2}), historyAt({0, 4, 4, 4, 8}), after(8)),
                ElementsAre(DoubleNear(0.875, 1e-12), 0.75, DoubleNear(0.125, 1e-12)));
}

TEST(EventFractions, AfterAStepBackOfTheClockTheLatestPointsCount) {
    const auto history = historyAt({100, 104, 98, 102, 106});
    EXPECT_THAT(eventFractions(eventsAt({103, 99}), history, after(106)),
                ElementsAre(DoubleNear(0.8125, 1e-12), DoubleNear(0.5625, 1e-12)));
    EXPECT_THAT(eventFractions(eventsAt({50}), historyAt({100, 10}), after(10)), IsEmpty());
}

TEST(EventFractions, EventsFromBeforeAStepBackOfTheClockAreOmitted) {
    // The event says that it is yet to come.
    EXPECT_THAT(eventFractions(eventsAt({3600, 20}), historyAt({0, 40}), after(40)),
                ElementsAre(DoubleNear(0.5, 1e-12)));
    EXPECT_THAT(eventFractions(eventsAt({3602}), historyAt({3600, 3604, 0, 4}), after(4)),
                IsEmpty());
}

TEST(EventFractions, DatesThatAreNotNumbersAreOmitted) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THAT(eventFractions(eventsAt({nan}), historyAt({0, 40}), after(40)), IsEmpty());
    EXPECT_THAT(eventFractions(eventsAt({20}), historyAt({0, nan}), after(40)), IsEmpty());
    EXPECT_THAT(eventFractions(eventsAt({20}), historyAt({0, 40}), Date{nan}), IsEmpty());
}

}  // namespace
}  // namespace tallowcrest

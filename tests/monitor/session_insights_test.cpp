#include "monitor/session_insights.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/each_of.h"
#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using Counts = std::map<std::string, std::int64_t>;
using Fact = std::tuple<std::string, std::string, std::string>;

struct Run {
    std::vector<HistoryPoint> history = {HistoryPoint{}};
    Counts topAppSamples = {};
    std::vector<RemoteHealth> remoteHealth = {};
    Counts remoteTopAppSamples = {};
};

std::vector<SessionInsight> insightsOf(const Run& run) {
    return buildSessionInsights(
        {run.history, run.topAppSamples, run.remoteHealth, run.remoteTopAppSamples}, PlainLocale());
}

std::vector<Fact> factsOf(const Run& run) {
    return eachOf(insightsOf(run), [](const SessionInsight& insight) {
        return Fact(insight.title, insight.value, insight.detail);
    });
}

/// The facts after the two that are always there.
std::vector<Fact> furtherFacts(const Run& run) {
    std::vector<Fact> facts = factsOf(run);
    EXPECT_GE(facts.size(), 2U);
    facts.erase(facts.begin(), facts.begin() + 2);
    return facts;
}

HistoryPoint point(double cpu, double memory) {
    return {UUID(), Date(), cpu, memory};
}

RemoteHealth machine(const std::string& name, bool online, std::optional<double> memoryPercent) {
    RemoteHealth health;
    health.id = "id of " + name;
    health.hostName = name;
    health.online = online;
    health.memoryPercent = memoryPercent;
    return health;
}

TEST(SessionInsights, WithoutHistoryTheRunIsStarting) {
    EXPECT_THAT(
        factsOf({.history = {},
                 .topAppSamples = {{"Editor", 3}},
                 .remoteHealth = {machine("studio", true, 50.0)},
                 .remoteTopAppSamples = {{"Editor", 3}}}),
        ElementsAre(Fact{"Session", "Starting",
                         "Tallowcrest is collecting enough samples to identify patterns."}));
}

TEST(SessionInsights, OnePointIsBothPeakAndAverage) {
    EXPECT_THAT(
        factsOf({.history = {point(37.0, 61.0)}}),
        ElementsAre(Fact{"Peak CPU", "37%", "Average 37% across this session."},
                    Fact{"Peak Memory", "61%", "Average 61% pressure across this session."}));
}

TEST(SessionInsights, PeaksAndAveragesCoverTheWholeHistory) {
    std::vector<HistoryPoint> history(178, point(10.0, 50.0));
    history.insert(history.begin(), point(100.0, 1.0));
    history.push_back(point(0.0, 99.0));
    // 1,880 and 9,000 over 180 points
    EXPECT_THAT(
        factsOf({.history = history}),
        ElementsAre(Fact{"Peak CPU", "100%", "Average 10% across this session."},
                    Fact{"Peak Memory", "99%", "Average 50% pressure across this session."}));
}

TEST(SessionInsights, PercentagesAreRoundedHalfUp) {
    struct Case {
        double percent;
        std::string shown;
    };
    for (const Case& c :
         {Case{0.0, "0%"}, Case{-0.0, "0%"}, Case{-0.4, "0%"}, Case{0.49, "0%"}, Case{0.5, "1%"},
          Case{81.5, "82%"}, Case{82.4, "82%"}, Case{82.5, "83%"}, Case{99.5, "100%"},
          Case{100.0, "100%"}, Case{nan, "0%"}, Case{infinity, "0%"}}) {
        const auto facts = factsOf({.history = {point(c.percent, c.percent)}});
        EXPECT_EQ(facts[0],
                  Fact("Peak CPU", c.shown, "Average " + c.shown + " across this session."));
        EXPECT_EQ(facts[1], Fact("Peak Memory", c.shown,
                                 "Average " + c.shown + " pressure across this session."));
    }
}

TEST(SessionInsights, NamesTheGroupThatLedMostSamples) {
    const std::string led = "Led App Impact for about ";
    for (const auto& [counts, seconds] :
         {std::pair{Counts{{"Browser", 2}, {"Editor", 3}, {"Indexer", 1}}, "12"},
          {Counts{{"Editor", 180}}, "720"},
          {Counts{{"Editor", 3000}}, "12000"}}) {
        EXPECT_THAT(
            furtherFacts({.topAppSamples = counts}),
            ElementsAre(Fact{"Recurring Top App", "Editor", led + seconds + "s of sampled time."}));
    }
}

TEST(SessionInsights, OfEqualCountsTheFirstNameWins) {
    struct Case {
        Counts counts;
        std::string name;
    };
    for (const Case& c : std::vector<Case>{
             {{{"b", 7}, {"a", 7}, {"c", 7}}, "a"},
             // In byte order, every capital letter would come before every small one.
             {{{"Zed", 7}, {"atom", 7}}, "atom"},
             {{{"EDITOR", 7}, {"editor", 7}}, "EDITOR"},
             {{{"Editor", 7}, {"editor", 8}}, "editor"},
             {{{"", 7}, {"a", 7}}, ""},
         }) {
        EXPECT_EQ(std::get<1>(furtherFacts({.topAppSamples = c.counts}).at(0)), c.name);
    }
}

TEST(SessionInsights, WatchesTheReachedMachineWithTheHighestPressure) {
    const std::string highest = "Highest scanned remote memory pressure: ";
    EXPECT_THAT(
        furtherFacts({.remoteHealth = {machine("low", true, 40.0), machine("off", false, 99.0),
                                       machine("high", true, 71.5), machine("high too", true, 71.5),
                                       machine("unread", true, std::nullopt)}}),
        ElementsAre(Fact{"Remote Watch", "high", highest + "72%."}));
    EXPECT_THAT(furtherFacts({.remoteHealth = {machine("off", false, 99.0),
                                               machine("first", true, std::nullopt),
                                               machine("second", true, 0.0)}}),
                ElementsAre(Fact{"Remote Watch", "first", highest + "0%."}));
    EXPECT_THAT(furtherFacts({}), ElementsAre());
    EXPECT_THAT(furtherFacts({.remoteHealth = {machine("off", false, 99.0)}}), ElementsAre());
}

TEST(SessionInsights, OnlyTheFigureOfAnotherMachineHasATimeOfItsOwn) {
    RemoteHealth studio = machine("studio", true, 50.0);
    studio.sampledAt = Date{700000000.0};
    EXPECT_THAT(eachOf(insightsOf({.topAppSamples = {{"Editor", 3}}, .remoteHealth = {studio}}),
                       &SessionInsight::sampledAt),
                ElementsAre(std::nullopt, std::nullopt, std::nullopt, studio.sampledAt));
}

TEST(SessionInsights, NamesTheGroupThatLedMostRemoteScans) {
    for (const auto& [counts, times] : {std::pair{Counts{{"Editor", 1}}, "1 time."},
                                        {Counts{{"Browser", 1}, {"Editor", 2}}, "2 times."},
                                        {Counts{{"Editor", 0}}, "0 times."}}) {
        EXPECT_THAT(furtherFacts({.remoteTopAppSamples = counts}),
                    ElementsAre(Fact{"Remote Repeater", "Editor",
                                     std::string("Led a remote scan ") + times}));
    }
}

TEST(SessionInsights, AreInOrder) {
    using Kind = SessionInsight::Kind;
    const auto order =
        eachOf(insightsOf({.topAppSamples = {{"Editor", 3}},
                           .remoteHealth = {machine("studio", true, 50.0)},
                           .remoteTopAppSamples = {{"Browser", 3}}}),
               [](const SessionInsight& each) { return std::pair(each.kind, each.title); });
    EXPECT_THAT(order, ElementsAre(std::pair(Kind::peakCPU, "Peak CPU"),
                                   std::pair(Kind::peakMemory, "Peak Memory"),
                                   std::pair(Kind::topApp, "Recurring Top App"),
                                   std::pair(Kind::remoteWatch, "Remote Watch"),
                                   std::pair(Kind::remoteRepeater, "Remote Repeater")));
    EXPECT_EQ(insightsOf({.history = {}}).front().kind, Kind::starting);
}

TEST(SessionInsights, EveryBuildGivesNewIdentifiers) {
    const auto first = insightsOf({});
    const auto second = insightsOf({});
    ASSERT_EQ(first.size(), 2U);
    EXPECT_NE(first[0].id, first[1].id);
    EXPECT_NE(first[0].id, second[0].id);
    EXPECT_NE(first[1].id, second[1].id);
}

}  // namespace
}  // namespace tallowcrest

#include "monitor/sample_cycle.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/monitor/sample_cycle_fixture.h"
#include "tests/support/manual_queues.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SampleCycleTest : public SampleFixture {
protected:
    void makeCycle() {
        cycle = std::make_unique<SampleCycle>(mainQueue, workQueue, clock, sources, *sample,
                                              background, main, [this] { return inputs; });
    }

    ManualMainQueue mainQueue;
    ManualWorkQueue workQueue;
    Observable observable{mainQueue};
    MainHooks main;
    SampleInputs inputs;
    std::unique_ptr<LatestSample> sample =
        std::make_unique<LatestSample>(observable, std::vector<HistoryPoint>{},
                                       [this](const auto&) { calls.emplace_back("saveHistory"); });
    std::unique_ptr<SampleCycle> cycle;
};

// The main half ----------------------------------------------------------------------------------

TEST_F(SampleCycleTest, MainHalfGoesInItsOrder) {
    metrics->processes = rows(2);
    metrics->memory.pressure = 61;
    ticks->pass(30);
    background.loadTailDevices = [] { return std::vector{device("a")}; };
    background.loadTailscaleHealthIssues = [] { return std::vector<std::string>{"DNS"}; };
    background.buildRecommendations = [](const auto&, double, double, double) {
        return std::vector{card("Built")};
    };
    main.publishTailnet = [this](const std::vector<TailDevice>& devices,
                                 const std::vector<std::string>& issues) {
        calls.emplace_back("publishTailnet");
        EXPECT_THAT(devices, ElementsAre(device("a")));
        EXPECT_THAT(issues, ElementsAre("DNS"));
        EXPECT_EQ(sample->latestProcesses().size(), 2U);
        EXPECT_EQ(sample->snapshot()->cpuPercent, 30);
        EXPECT_THAT(sample->history(), IsEmpty());
    };
    main.buildSessionInsights = [this](const SystemSnapshot& snapshot) {
        calls.emplace_back("buildSessionInsights");
        EXPECT_EQ(snapshot, *sample->snapshot());
        EXPECT_EQ(sample->history().size(), 1U);
        EXPECT_EQ(sample->topAppSamples().size(), 1U);
        SessionInsight insight;
        insight.title = "Peak";
        return std::vector{insight};
    };
    main.addSustainedRecommendations = [this](std::vector<Recommendation> cards) {
        calls.emplace_back("addSustainedRecommendations");
        EXPECT_THAT(cards, ElementsAre(card("Built")));
        EXPECT_EQ(sample->sessionInsights().size(), 1U);
        EXPECT_THAT(sample->recommendations(), IsEmpty());
        cards.push_back(card("Sustained"));
        return cards;
    };
    main.runAutoRules = [this](const SystemSnapshot& snapshot) {
        calls.emplace_back("runAutoRules");
        EXPECT_EQ(snapshot, *sample->snapshot());
        EXPECT_THAT(sample->recommendations(), ElementsAre(card("Built"), card("Sustained")));
    };
    main.raiseLoadWarning = [this](const SystemSnapshot& snapshot) {
        calls.emplace_back("raiseLoadWarning");
        EXPECT_EQ(snapshot, *sample->snapshot());
    };
    main.sampleApplied = [this] { calls.emplace_back("sampleApplied"); };
    makeCycle();
    cycle->refresh();
    workQueue.run();
    calls.clear();
    mainQueue.drain();
    EXPECT_THAT(calls, ElementsAre("publishTailnet", "saveHistory", "buildSessionInsights",
                                   "addSustainedRecommendations", "runAutoRules",
                                   "raiseLoadWarning", "sampleApplied"));
    ASSERT_EQ(sample->history().size(), 1U);
    EXPECT_EQ(sample->history()[0].cpu, 30);
    EXPECT_EQ(sample->history()[0].memory, 61);
    EXPECT_EQ(sample->history()[0].date, sample->snapshot()->sampledAt);
    EXPECT_EQ(sample->sessionInsights()[0].title, "Peak");
}

TEST_F(SampleCycleTest, MainHalfDoesWithoutHooks) {
    background.buildRecommendations = [](const auto&, double, double, double) {
        return std::vector{card("Built")};
    };
    metrics->processes = rows(1);
    makeCycle();
    cycle->refresh();
    workQueue.run();
    mainQueue.drain();
    EXPECT_EQ(sample->history().size(), 1U);
    EXPECT_THAT(sample->recommendations(), ElementsAre(card("Built")));
    EXPECT_THAT(sample->sessionInsights(), IsEmpty());
}

TEST_F(SampleCycleTest, AnEmptySampleEntersTheHistoryAndLeadsNothing) {
    makeCycle();
    cycle->refresh();
    workQueue.run();
    mainQueue.drain();
    EXPECT_EQ(sample->history().size(), 1U);
    EXPECT_THAT(sample->topAppSamples(), IsEmpty());
}

TEST_F(SampleCycleTest, AHookOfTheMainHalfMayAskForTheNextSample) {
    main.runAutoRules = [this](const SystemSnapshot&) { cycle->refresh(); };
    makeCycle();
    cycle->refresh();
    workQueue.run();
    mainQueue.drain();
    EXPECT_EQ(workQueue.pendingCount(), 1U);
    EXPECT_EQ(sample->history().size(), 1U);
}

// Threads ----------------------------------------------------------------------------------------

TEST_F(SampleCycleTest, RefreshOnlyQueues) {
    makeCycle();
    cycle->refresh();
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_EQ(workQueue.pendingCount(), 1U);
    EXPECT_EQ(mainQueue.pendingCount(), 0U);
    workQueue.run();
    EXPECT_EQ(sample->snapshot(), std::nullopt);
    EXPECT_EQ(mainQueue.pendingCount(), 1U);
    mainQueue.turn();
    EXPECT_NE(sample->snapshot(), std::nullopt);
}

TEST_F(SampleCycleTest, OverlappingSamplesApplyInTheOrderInWhichTheyFinish) {
    makeCycle();
    cycle->refresh();
    clock.advance(std::chrono::seconds(4));
    cycle->refresh();
    EXPECT_EQ(workQueue.pendingCount(), 2U);

    metrics->pressureText = "queued second, finished first";
    workQueue.run(1);
    clock.advance(std::chrono::seconds(1));
    metrics->pressureText = "queued first, finished second";
    workQueue.run(0);
    mainQueue.drain();

    ASSERT_EQ(sample->history().size(), 2U);
    EXPECT_EQ(secondsBetween(sample->history()[0].date, sample->history()[1].date), 1.0);
    EXPECT_EQ(sample->snapshot()->pressureText, "queued first, finished second");
}

TEST_F(SampleCycleTest, ASampleThatEndsAfterTheMonitorIsDropped) {
    int applied = 0;
    main.sampleApplied = [&applied] { ++applied; };
    makeCycle();
    cycle->refresh();
    cycle->refresh();
    workQueue.run();  // its result waits on the main queue
    sources.reset();  // the sample under way keeps its readers
    cycle.reset();
    sample.reset();
    workQueue.run();
    EXPECT_EQ(mainQueue.pendingCount(), 2U);
    mainQueue.drain();
    EXPECT_EQ(applied, 0);
    EXPECT_THAT(calls, ::testing::Not(::testing::Contains("saveHistory")));
}

TEST_F(SampleCycleTest, InputsAreThoseOfTheMomentOfRefreshAndTheNeverQuitListThatOfNow) {
    metrics->processes = {row(7, 50.0, "/usr/bin/node")};
    makeCycle();
    cycle->refresh();
    inputs.protectedAppNames = {"Node.js"};
    inputs.cpuCount = 2;
    workQueue.run();
    mainQueue.drain();
    EXPECT_EQ(sample->snapshot()->appImpacts.at(0).protectedCount, 1);
    EXPECT_EQ(sample->snapshot()->cpuPercent, 50.0);

    cycle->refresh();
    workQueue.run();
    mainQueue.drain();
    EXPECT_EQ(sample->snapshot()->appImpacts.at(0).protectedCount, 1);
    EXPECT_EQ(sample->snapshot()->cpuPercent, 25.0);
}

TEST_F(SampleCycleTest, TellsObserversOncePerSample) {
    int told = 0;
    const Subscription subscription = observable.subscribe([&told] { ++told; });
    makeCycle();
    cycle->refresh();
    workQueue.run();
    mainQueue.drain();
    EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace tallowcrest

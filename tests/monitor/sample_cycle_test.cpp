#include "monitor/sample_cycle.h"

#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/fake_readers.h"
#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

ProcessSample row(std::int64_t pid, double cpu, const std::string& command = "/usr/bin/app") {
    return {pid, cpu, 0.5, 100.0, command, command};
}

/// `count` rows of as many groups, the heaviest first.
std::vector<ProcessSample> rows(int count) {
    std::vector<ProcessSample> result;
    for (int i = 0; i < count; ++i) {
        result.push_back(row(100 + i, 5.0 * (count - i), fmt::format("/usr/bin/tool {:03}", i)));
    }
    return result;
}

/// A device and a recommendation that can be told from others.
TailDevice device(const std::string& id) {
    TailDevice result;
    result.id = id;
    return result;
}

Recommendation card(const std::string& title) {
    Recommendation result;
    result.title = title;
    return result;
}

class SampleCycleTest : public ::testing::Test {
protected:
    SampleCycleTest() {
        metrics->calls = &calls;
        sources = std::make_shared<SampleSources>(metrics, ticks);
        ticks->calls = &calls;
    }

    BackgroundSample take(const SampleInputs& known = {}) {
        return takeSample(*sources, background, known, clock);
    }

    BackgroundSample takeOn(int cpuCount) {
        SampleInputs onCores;
        onCores.cpuCount = cpuCount;
        return take(onCores);
    }

    void makeCycle() {
        cycle = std::make_unique<SampleCycle>(mainQueue, workQueue, clock, sources, *sample,
                                              background, main, [this] { return inputs; });
    }

    std::vector<std::string> calls;
    ManualClock clock;
    ManualMainQueue mainQueue;
    ManualWorkQueue workQueue;
    Observable observable{mainQueue};
    std::shared_ptr<FakeMetricsReader> metrics = std::make_shared<FakeMetricsReader>();
    std::shared_ptr<FakeTickSource> ticks = std::make_shared<FakeTickSource>();
    std::shared_ptr<SampleSources> sources;
    BackgroundHooks background;
    MainHooks main;
    SampleInputs inputs;
    std::unique_ptr<LatestSample> sample =
        std::make_unique<LatestSample>(observable, std::vector<HistoryPoint>{},
                                       [this](const auto&) { calls.emplace_back("saveHistory"); });
    std::unique_ptr<SampleCycle> cycle;
};

// The background half ----------------------------------------------------------------------------

TEST_F(SampleCycleTest, BackgroundHalfReadsInItsOrder) {
    background.loadTailDevices = [this] {
        calls.emplace_back("loadTailDevices");
        return std::vector<TailDevice>{};
    };
    background.loadTailscaleHealthIssues = [this] {
        calls.emplace_back("loadTailscaleHealthIssues");
        return std::vector<std::string>{};
    };
    background.buildRecommendations = [this](const auto&, double, double, double) {
        calls.emplace_back("buildRecommendations");
        clock.advance(std::chrono::seconds(5));
        return std::vector<Recommendation>{};
    };
    const Date before = clock.now();
    const BackgroundSample result = take();
    EXPECT_THAT(calls, ElementsAre("readProcesses", "readMemory", "readDiskSnapshot",
                                   "loadTailDevices", "loadTailscaleHealthIssues", "readTicks",
                                   "readPressureText", "buildRecommendations"));
    // The time of the record is that of its building, which is the last step.
    EXPECT_EQ(result.snapshot.sampledAt, Date{before.secondsSinceReference + 5.0});
}

TEST_F(SampleCycleTest, BackgroundHalfHandsOverWhatItRead) {
    metrics->processes = {row(1, 3.0), row(2, 50.0), row(3, 20.0)};
    metrics->memory = {16, 8, 8, 2, 1, 50};
    metrics->disk = {500, 123};
    metrics->pressureText = "Free percentage: 50%";
    ticks->pass(37);
    background.loadTailDevices = [] { return std::vector{device("a"), device("b")}; };
    background.loadTailscaleHealthIssues = [] { return std::vector<std::string>{"DNS"}; };
    background.buildRecommendations = [this](const std::vector<ProcessSample>& processes,
                                             double freeGB, double pressure, double cpuPercent) {
        EXPECT_EQ(processes, metrics->processes);  // all rows, in the order of the table
        EXPECT_EQ(freeGB, 8);
        EXPECT_EQ(pressure, 50);
        EXPECT_EQ(cpuPercent, 37);
        return std::vector{card("Rest")};
    };
    const BackgroundSample result = take();
    EXPECT_EQ(result.processes, metrics->processes);
    EXPECT_EQ(result.snapshot.memory, metrics->memory);
    EXPECT_EQ(result.snapshot.disk, metrics->disk);
    EXPECT_EQ(result.snapshot.pressureText, "Free percentage: 50%");
    EXPECT_EQ(result.snapshot.cpuPercent, 37);
    EXPECT_THAT(result.snapshot.topProcesses,
                ElementsAre(metrics->processes[1], metrics->processes[2], metrics->processes[0]));
    ASSERT_EQ(result.snapshot.appImpacts.size(), 1U);
    EXPECT_EQ(result.snapshot.appImpacts[0].processCount, 3);
    EXPECT_EQ(result.snapshot.appImpacts[0].topPID, 2);
    EXPECT_THAT(result.devices, ElementsAre(device("a"), device("b")));
    EXPECT_THAT(result.healthIssues, ElementsAre("DNS"));
    EXPECT_THAT(result.recommendations, ElementsAre(card("Rest")));
}

TEST_F(SampleCycleTest, RankedRowsAreCutTo120AndTheTableIsNot) {
    for (const int count : {119, 120, 121, 300}) {
        metrics->processes = rows(count);
        const BackgroundSample result = take();
        const auto expected = static_cast<std::size_t>(std::min(count, 120));
        ASSERT_EQ(result.snapshot.topProcesses.size(), expected) << count;
        EXPECT_EQ(result.snapshot.topProcesses.front().pid, 100);
        EXPECT_EQ(result.snapshot.topProcesses.back().pid, 99 + static_cast<int>(expected));
        EXPECT_EQ(result.processes.size(), static_cast<std::size_t>(count));
    }
}

TEST_F(SampleCycleTest, GroupsAreCutTo14AndBuiltFromAllRows) {
    for (const int count : {13, 14, 15, 200}) {
        metrics->processes = rows(count);
        const BackgroundSample result = take();
        EXPECT_EQ(result.snapshot.appImpacts.size(), static_cast<std::size_t>(std::min(count, 14)));
    }
    // 150 members of one group, more than the ranked list holds, all count.
    metrics->processes.clear();
    for (int i = 0; i < 150; ++i) {
        metrics->processes.push_back(row(i + 10, 1.0));
    }
    const BackgroundSample result = take();
    ASSERT_EQ(result.snapshot.appImpacts.size(), 1U);
    EXPECT_EQ(result.snapshot.appImpacts[0].processCount, 150);
}

TEST_F(SampleCycleTest, WithoutALoadTheProcessesTellTheLoad) {
    struct Case {
        std::vector<double> cpu;
        int cpuCount;
        double percent;
    };
    for (const Case& c : std::vector<Case>{
             {{150.0, 100.0}, 2, 100.0},
             {{150.0, 50.0}, 2, 100.0},
             {{100.0, 50.0}, 2, 75.0},
             {{250.0}, 8, 31.25},
             {{}, 4, 0.0},
             {{-30.0, -10.0}, 2, -20.0},  // no lower bound
             {{250.0}, 1, 100.0},
         }) {
        metrics->processes.clear();
        for (const double cpu : c.cpu) {
            metrics->processes.push_back(row(7, cpu));
        }
        // The counters stand still, so there is no load.
        EXPECT_EQ(takeOn(c.cpuCount).snapshot.cpuPercent, c.percent);
    }
}

TEST_F(SampleCycleTest, AnUnreadableCounterFallsBackTooAndALoadOfZeroDoesNot) {
    metrics->processes = {row(7, 50.0)};
    ticks->ticks.reset();
    EXPECT_EQ(takeOn(2).snapshot.cpuPercent, 25.0);
    ticks->ticks = CPUTicks{};
    ticks->pass(0);
    EXPECT_EQ(takeOn(2).snapshot.cpuPercent, 0.0);
}

TEST_F(SampleCycleTest, SumsAllRowsNotOnlyTheRankedOnes) {
    metrics->processes.assign(200, row(7, 0.5));
    EXPECT_EQ(takeOn(2).snapshot.cpuPercent, 50.0);
}

TEST_F(SampleCycleTest, ASampleWithoutAProcessTableIsStillASample) {
    ticks->pass(40);
    const BackgroundSample result = take();
    EXPECT_THAT(result.processes, IsEmpty());
    EXPECT_THAT(result.snapshot.topProcesses, IsEmpty());
    EXPECT_THAT(result.snapshot.appImpacts, IsEmpty());
    EXPECT_EQ(result.snapshot.cpuPercent, 40.0);
}

TEST_F(SampleCycleTest, BackgroundHalfDoesWithoutHooks) {
    metrics->processes = rows(3);
    const BackgroundSample result = take();
    EXPECT_THAT(result.devices, IsEmpty());
    EXPECT_THAT(result.healthIssues, IsEmpty());
    EXPECT_THAT(result.recommendations, IsEmpty());
    EXPECT_EQ(result.snapshot.topProcesses.size(), 3U);
}

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

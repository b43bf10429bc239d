#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/monitor/sample_cycle_fixture.h"

/// The background half of a sample.
namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TakeSampleTest : public SampleFixture {
protected:
    BackgroundSample take(const SampleInputs& known = {}) {
        return takeSample(*sources, background, known, clock);
    }

    BackgroundSample takeOn(int cpuCount) {
        SampleInputs onCores;
        onCores.cpuCount = cpuCount;
        return take(onCores);
    }
};

TEST_F(TakeSampleTest, ReadsInItsOrder) {
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

TEST_F(TakeSampleTest, HandsOverWhatItRead) {
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

TEST_F(TakeSampleTest, RankedRowsAreCutTo120AndTheTableIsNot) {
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

TEST_F(TakeSampleTest, GroupsAreCutTo14AndBuiltFromAllRows) {
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

TEST_F(TakeSampleTest, WithoutALoadTheProcessesTellTheLoad) {
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

TEST_F(TakeSampleTest, AnUnreadableCounterFallsBackTooAndALoadOfZeroDoesNot) {
    metrics->processes = {row(7, 50.0)};
    ticks->ticks.reset();
    EXPECT_EQ(takeOn(2).snapshot.cpuPercent, 25.0);
    ticks->ticks = CPUTicks{};
    ticks->pass(0);
    EXPECT_EQ(takeOn(2).snapshot.cpuPercent, 0.0);
}

TEST_F(TakeSampleTest, SumsAllRowsNotOnlyTheRankedOnes) {
    metrics->processes.assign(200, row(7, 0.5));
    EXPECT_EQ(takeOn(2).snapshot.cpuPercent, 50.0);
}

TEST_F(TakeSampleTest, ASampleWithoutAProcessTableIsStillASample) {
    ticks->pass(40);
    const BackgroundSample result = take();
    EXPECT_THAT(result.processes, IsEmpty());
    EXPECT_THAT(result.snapshot.topProcesses, IsEmpty());
    EXPECT_THAT(result.snapshot.appImpacts, IsEmpty());
    EXPECT_EQ(result.snapshot.cpuPercent, 40.0);
}

TEST_F(TakeSampleTest, DoesWithoutHooks) {
    metrics->processes = rows(3);
    const BackgroundSample result = take();
    EXPECT_THAT(result.devices, IsEmpty());
    EXPECT_THAT(result.healthIssues, IsEmpty());
    EXPECT_THAT(result.recommendations, IsEmpty());
    EXPECT_EQ(result.snapshot.topProcesses.size(), 3U);
}

}  // namespace
}  // namespace tallowcrest

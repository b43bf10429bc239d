#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/monitor/recommendation_cards.h"
#include "tests/monitor/sample_cycle_fixture.h"
#include "tests/support/manual_clock.h"

/// The background half of a sample.
namespace tallowcrest {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class TakeSampleTest : public ::testing::Test, protected SampleMachine {
protected:
    BackgroundSample take(const SampleInputs& known = {}) {
        return takeSample(*sources, known, ManualClock());
    }

    BackgroundSample takeOn(int cpuCount) {
        SampleInputs onCores;
        onCores.cpuCount = cpuCount;
        return take(onCores);
    }
};

/// Records in `calls` when a number is formatted, as the recommendations do.
class RecordingLocale final : public Locale {
public:
    explicit RecordingLocale(std::vector<std::string>& calls) : calls_(calls) {}

    std::weak_ordering compareIgnoringCase(std::string_view left,
                                           std::string_view right) const override {
        return plain_.compareIgnoringCase(left, right);
    }
    bool containsIgnoringCase(std::string_view text, std::string_view part) const override {
        return plain_.containsIgnoringCase(text, part);
    }
    std::string decimal(double value, int fractionDigits) const override {
        calls_.emplace_back("buildRecommendations");
        return plain_.decimal(value, fractionDigits);
    }
    std::string dateAndTime(Date date) const override { return plain_.dateAndTime(date); }
    std::string timeOfDay(Date date) const override { return plain_.timeOfDay(date); }
    std::string hoursAndMinutes(Date date) const override { return plain_.hoursAndMinutes(date); }
    std::int64_t localDay(Date date) const override { return plain_.localDay(date); }

private:
    std::vector<std::string>& calls_;
    PlainLocale plain_;
};

/// Records in `calls` when it is read.
class RecordingClock final : public Clock {
public:
    explicit RecordingClock(std::vector<std::string>& calls) : calls_(calls) {}
    Date now() const override {
        calls_.emplace_back("now");
        return Date{5.0};
    }

private:
    std::vector<std::string>& calls_;
};

TEST_F(TakeSampleTest, ReadsInOrder) {
    metrics->memory.pressure = 75.0;
    SampleSources recording(metrics, ticks, std::make_shared<RecordingLocale>(calls));
    calls.clear();
    const BackgroundSample result = takeSample(recording, {}, RecordingClock(calls));
    // The time of the sample is read in the last step.
    EXPECT_THAT(calls, ElementsAre("readProcesses", "readMemory", "readDiskSnapshot", "readTicks",
                                   "readPressureText", "buildRecommendations", "now"));
    EXPECT_EQ(result.snapshot.sampledAt, Date{5.0});
}

TEST_F(TakeSampleTest, ReturnsWhatItRead) {
    metrics->processes = {row(1, 3.0), row(2, 50.0), row(3, 20.0)};
    metrics->memory = {16, 8, 1.5, 2, 1, 75};
    metrics->disk = {500, 123};
    metrics->pressureText = "Free percentage: 25%";
    ticks->pass(97);
    const BackgroundSample result = take();
    EXPECT_EQ(result.processes, metrics->processes);
    EXPECT_EQ(result.snapshot.memory, metrics->memory);
    EXPECT_EQ(result.snapshot.disk, metrics->disk);
    EXPECT_EQ(result.snapshot.pressureText, "Free percentage: 25%");
    EXPECT_EQ(result.snapshot.cpuPercent, 97);
    EXPECT_THAT(result.snapshot.topProcesses,
                ElementsAre(metrics->processes[1], metrics->processes[2], metrics->processes[0]));
    ASSERT_EQ(result.snapshot.appImpacts.size(), 1U);
    EXPECT_EQ(result.snapshot.appImpacts[0].processCount, 3);
    EXPECT_EQ(result.snapshot.appImpacts[0].topPID, 2);
    EXPECT_THAT(titlesOf(result.recommendations),
                ElementsAre("Memory pressure is rising", "CPU load is very high"));
    EXPECT_THAT(result.recommendations.front().detail, HasSubstr("You have 1.5 GB free"));
    EXPECT_EQ(result.recommendations.back().relatedPID, 2);
}

TEST_F(TakeSampleTest, RecommendationsAreBuiltFromTheWholeTable) {
    for (int pid = 10; pid < 160; ++pid) {
        metrics->processes.push_back(row(pid, 0.1, "/opt/chrome"));
    }
    ticks->pass(0);
    EXPECT_THAT(titlesOf(take().recommendations), Contains("Chrome has 150 helper processes"));
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
    // All 150 members of one group count, more than the ranked list contains.
    metrics->processes.clear();
    for (int i = 0; i < 150; ++i) {
        metrics->processes.push_back(row(i + 10, 1.0));
    }
    const BackgroundSample result = take();
    ASSERT_EQ(result.snapshot.appImpacts.size(), 1U);
    EXPECT_EQ(result.snapshot.appImpacts[0].processCount, 150);
}

TEST_F(TakeSampleTest, WithoutTicksTheLoadIsComputedFromTheProcesses) {
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

TEST_F(TakeSampleTest, UnreadableTicksFallBackToTheProcessesAndALoadOfZeroDoesNot) {
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

TEST_F(TakeSampleTest, ASampleWithoutAProcessTableHasItsOtherFigures) {
    ticks->pass(40);
    const BackgroundSample result = take();
    EXPECT_THAT(result.processes, IsEmpty());
    EXPECT_THAT(result.snapshot.topProcesses, IsEmpty());
    EXPECT_THAT(result.snapshot.appImpacts, IsEmpty());
    EXPECT_EQ(result.snapshot.cpuPercent, 40.0);
}

}  // namespace
}  // namespace tallowcrest

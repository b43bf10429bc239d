// The recommendations and session insights of a whole monitor, which must be built from the newest
// state.

#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/settings/settings.h"
#include "monitor/system_monitor.h"
#include "sampling/latest_sample.h"
#include "tests/support/fake_machine.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class SampleWords : public ::testing::Test {
protected:
    std::vector<std::string> recommendations() {
        std::vector<std::string> titles;
        for (const Recommendation& card : machine.monitor().sample().recommendations()) {
            titles.push_back(card.title);
        }
        return titles;
    }

    std::vector<std::string> insights() {
        std::vector<std::string> lines;
        for (const SessionInsight& insight : machine.monitor().sample().sessionInsights()) {
            lines.push_back(insight.title + ": " + insight.value + ". " + insight.detail);
        }
        return lines;
    }

    void setLoad(double cpuPercent, double pressure) {
        machine.metrics->processes.clear();
        machine.addProcess(700, "/usr/bin/editor", 4.0 * cpuPercent, 1024.0);
        machine.metrics->memory.pressure = pressure;
    }

    FakeMachine machine;
};

TEST_F(SampleWords, ThereAreNoneBeforeTheFirstSample) {
    EXPECT_THAT(recommendations(), IsEmpty());
    EXPECT_THAT(insights(), IsEmpty());
}

TEST_F(SampleWords, TheFirstSampleCountsInItsOwnInsights) {
    setLoad(40.0, 59.0);
    machine.tick();
    EXPECT_THAT(recommendations(), ElementsAre("This Mac looks healthy"));
    EXPECT_THAT(insights(),
                ElementsAre("Peak CPU: 40%. Average 40% across this session.",
                            "Peak Memory: 59%. Average 59% pressure across this session.",
                            "Recurring Top App: editor. Led App Impact for about 4s of sampled "
                            "time."));
}

TEST_F(SampleWords, EachSampleReplacesTheTextsOfTheLast) {
    setLoad(90.0, 90.0);
    machine.tick();
    EXPECT_THAT(recommendations(), ElementsAre("Memory pressure is high", "CPU load is very high"));
    EXPECT_EQ(machine.monitor().sample().recommendations().front().relatedPID, 700);
    setLoad(0.0, 30.0);
    machine.tick();
    EXPECT_THAT(recommendations(), ElementsAre("This Mac looks healthy"));
    EXPECT_THAT(insights(),
                ElementsAre("Peak CPU: 90%. Average 45% across this session.",
                            "Peak Memory: 90%. Average 60% pressure across this session.",
                            "Recurring Top App: editor. Led App Impact for about 8s of sampled "
                            "time."));
}

TEST_F(SampleWords, SustainedCardsAppearWithTheTenthSample) {
    setLoad(90.0, 10.0);
    for (int i = 0; i < 9; ++i) {
        machine.tick();
    }
    EXPECT_THAT(recommendations(), ElementsAre("CPU load is very high"));
    machine.tick();
    EXPECT_THAT(recommendations(),
                ElementsAre("CPU has stayed high for about a minute", "CPU load is very high"));
    EXPECT_EQ(machine.monitor().sample().recommendations().front().relatedPID, 700);
}

TEST_F(SampleWords, SustainedCardsRelateToTheGroupsOfTheNewSample) {
    setLoad(90.0, 10.0);
    for (int i = 0; i < 10; ++i) {
        machine.tick();
    }
    machine.metrics->processes.clear();
    machine.addProcess(900, "/usr/bin/compiler", 360.0, 1024.0);
    machine.tick();
    EXPECT_EQ(machine.monitor().sample().recommendations().front().relatedPID, 900);
    machine.metrics->processes.clear();
    machine.tick();
    EXPECT_THAT(recommendations(),
                ElementsAre("CPU has stayed high for about a minute", "This Mac looks healthy"));
    EXPECT_EQ(machine.monitor().sample().recommendations().front().relatedPID, std::nullopt);
}

TEST_F(SampleWords, InsightsIncludeTheRemoteScansOfEarlierRuns) {
    machine.store.write(settings_keys::remoteTopAppsKey, SettingsTable{{"Browser", 2}});
    machine.tick();
    EXPECT_THAT(insights(), SizeIs(3));
    EXPECT_EQ(insights().back(), "Remote Repeater: Browser. Led a remote scan 2 times.");
}

}  // namespace
}  // namespace tallowcrest

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/jobs/jobs.h"
#include "tests/support/manual_queues.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class JobProgressTest : public ::testing::Test {
protected:
    void finishWork() {
        workQueue.runAll();
        mainQueue.drain();
    }

    ManualMainQueue mainQueue;
    ManualWorkQueue workQueue;
    std::chrono::steady_clock::time_point steadyNow = {};
    Jobs jobs{mainQueue, workQueue, [this] { return steadyNow; }};
    std::optional<JobScope> scope{std::in_place, jobs};
};

TEST_F(JobProgressTest, ProgressIsToldOncePerTurnWithTheLatestValue) {
    std::vector<std::string> told;
    const auto onProgress = [&](int value) { told.push_back(std::to_string(value)); };
    scope->runWithProgress<int>(
        Lane::actions,
        [&](const Stop&, const auto& report) {
            report(1);
            report(2);
            EXPECT_EQ(mainQueue.pendingCount(), 1U);
            mainQueue.turn();
            EXPECT_THAT(told, ElementsAre("2"));
            report(3);
            report(4);
            return 5;
        },
        onProgress, [&](int result) { told.push_back("then " + std::to_string(result)); });
    finishWork();
    EXPECT_THAT(told, ElementsAre("2", "4", "then 5"));
}

TEST_F(JobProgressTest, ProgressIsPacedAndTheLastValueIsToldBeforeTheResult) {
    std::vector<int> told;
    scope->runWithProgress<int>(
        Lane::actions,
        [&](const Stop&, const auto& tell) {
            int value = 0;
            for (const auto after : {0ms, 100ms, 50ms, 10ms}) {
                steadyNow += after;
                tell(++value);
                mainQueue.drain();
            }
            EXPECT_THAT(told, ElementsAre(1, 2));
            EXPECT_THAT(mainQueue.timerIntervals(), ElementsAre(50ms));
            steadyNow += 40ms;
            mainQueue.fireTimers();
            mainQueue.drain();
            EXPECT_THAT(told, ElementsAre(1, 2, 4)) << "although no other value has come";
            EXPECT_THAT(mainQueue.timerIntervals(), IsEmpty());
            tell(5);
            mainQueue.drain();
            return 6;
        },
        [&](int value) { told.push_back(value); }, [&](int result) { told.push_back(result); });
    finishWork();
    EXPECT_THAT(told, ElementsAre(1, 2, 4, 5, 6));
    EXPECT_THAT(mainQueue.timerIntervals(), IsEmpty());
}

TEST_F(JobProgressTest, WorkThatReportsNothingTellsNoProgress) {
    std::vector<std::string> told;
    scope->runWithProgress<int>(
        Lane::actions, [](const Stop&, const auto&) {}, [&](int) { told.emplace_back("progress"); },
        [&] { told.emplace_back("then"); });
    finishWork();
    EXPECT_THAT(told, ElementsAre("then"));
}

TEST_F(JobProgressTest, NoProgressReachesAScopeThatIsGone) {
    int told = 0;
    scope->runWithProgress<int>(
        Lane::actions,
        [&](const Stop&, const auto& report) {
            report(1);
            scope.reset();
            report(2);
            mainQueue.turn();
            report(3);
        },
        [&](int) { ++told; }, [&] { ++told; });
    finishWork();
    EXPECT_EQ(told, 0);
}

}  // namespace
}  // namespace tallowcrest

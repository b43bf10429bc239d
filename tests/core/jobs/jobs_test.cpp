#include "core/jobs/jobs.h"

#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/all_lanes.h"
#include "tests/support/manual_queues.h"

namespace tallowcrest {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class JobsTest : public ::testing::Test {
protected:
    void finishWork() {
        workQueue.runAll();
        mainQueue.drain();
    }

    ManualMainQueue mainQueue;
    ManualWorkQueue workQueue;
    Jobs jobs{mainQueue, workQueue};
    std::optional<JobScope> scope{std::in_place, jobs};
};

// Results ----------------------------------------------------------------------------------------

TEST_F(JobsTest, WorkRunsInItsLaneAndItsResultReachesTheMainQueue) {
    std::vector<std::string> steps;
    scope->run(
        Lane::reports,
        [&](const Stop&) {
            steps.emplace_back("work");
            return 5;
        },
        [&](int result) { steps.push_back("then " + std::to_string(result)); });
    EXPECT_EQ(workQueue.laneOf(0), Lane::reports);
    mainQueue.drain();
    EXPECT_THAT(steps, IsEmpty());
    workQueue.run();
    EXPECT_THAT(steps, ElementsAre("work"));
    mainQueue.turn();
    EXPECT_THAT(steps, ElementsAre("work", "then 5"));
}

TEST_F(JobsTest, EveryLaneGetsItsOwnJobs) {
    for (const Lane lane : allLanes) {
        scope->run(
            lane, [](const Stop&) {}, [] {});
        EXPECT_EQ(workQueue.laneOf(workQueue.pendingCount() - 1), lane);
    }
}

TEST_F(JobsTest, WorkWithoutAResultIsFollowedUpToo) {
    std::vector<std::string> steps;
    scope->run(
        Lane::actions, [&](const Stop&) { steps.emplace_back("work"); },
        [&] { steps.emplace_back("then"); });
    workQueue.run();
    EXPECT_THAT(steps, ElementsAre("work"));
    mainQueue.turn();
    EXPECT_THAT(steps, ElementsAre("work", "then"));
}

TEST_F(JobsTest, InputsResultsAndFollowUpsMayBeMoveOnly) {
    std::unique_ptr<int> taken;
    int kept = 0;
    scope->run(
        Lane::actions,
        [input = std::make_unique<int>(5)](const Stop&) mutable { return std::move(input); },
        [&, own = std::make_unique<int>(7)](std::unique_ptr<int> result) {
            taken = std::move(result);
            kept = *own;
        });
    finishWork();
    ASSERT_NE(taken, nullptr);
    EXPECT_EQ(*taken, 5);
    EXPECT_EQ(kept, 7);
}

TEST_F(JobsTest, AFollowUpMayBeginTheNextJobAndEndItsScope) {
    int result = 0;
    scope->run(
        Lane::actions, [](const Stop&) { return 1; },
        [&](int first) {
            scope->run(
                Lane::actions, [first](const Stop&) { return first + 1; },
                [&](int second) {
                    result = second;
                    scope.reset();
                });
        });
    finishWork();
    EXPECT_EQ(result, 0);
    finishWork();
    EXPECT_EQ(result, 2);
    EXPECT_FALSE(scope);
}

// The end of a scope -----------------------------------------------------------------------------

TEST_F(JobsTest, AScopeThatEndsBeforeTheWorkDropsIt) {
    bool ran = false;
    const auto held = std::make_shared<int>(0);
    scope->run(
        Lane::actions, [&ran, held](const Stop&) { ran = true; }, [&ran, held] { ran = true; });
    scope.reset();
    finishWork();
    EXPECT_FALSE(ran);
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(JobsTest, AScopeThatEndsDuringTheWorkStopsItAndDropsItsResult) {
    bool wasRequested = true;
    bool isRequested = false;
    bool isTokenSet = false;
    bool followedUp = false;
    scope->run(
        Lane::actions,
        [&](const Stop& stop) {
            wasRequested = stop.isRequested();
            scope.reset();
            isRequested = stop.isRequested();
            isTokenSet = stop.stopToken().stop_requested();
            return 5;
        },
        [&](int) { followedUp = true; });
    finishWork();
    EXPECT_FALSE(wasRequested);
    EXPECT_TRUE(isRequested);
    EXPECT_TRUE(isTokenSet);
    EXPECT_FALSE(followedUp);
}

TEST_F(JobsTest, AScopeThatEndsAfterTheWorkDropsItsResult) {
    bool followedUp = false;
    const auto followUp = [&] { followedUp = true; };
    scope->run(
        Lane::actions, [](const Stop&) {}, followUp);
    scope->run(
        Lane::actions, [](const Stop&) { return 5; }, [&](int) { followedUp = true; });
    workQueue.run();
    workQueue.run();
    EXPECT_EQ(mainQueue.pendingCount(), 2U);
    scope.reset();
    mainQueue.drain();
    EXPECT_FALSE(followedUp);
}

TEST_F(JobsTest, TheEndOfOneScopeLeavesTheOthersAlone) {
    JobScope other(jobs);
    bool isRequested = true;
    bool followedUp = false;
    other.run(
        Lane::actions, [&](const Stop& stop) { isRequested = stop.isRequested(); },
        [&] { followedUp = true; });
    scope.reset();
    finishWork();
    EXPECT_FALSE(isRequested);
    EXPECT_TRUE(followedUp);
}

TEST_F(JobsTest, AScopeMayFollowOneThatIsGone) {
    scope.reset();
    scope.emplace(jobs);
    bool followedUp = false;
    scope->run(
        Lane::actions, [](const Stop&) {}, [&] { followedUp = true; });
    finishWork();
    EXPECT_TRUE(followedUp);
}

// The end of the program -------------------------------------------------------------------------

TEST_F(JobsTest, StopAllReachesTheJobsOfAllScopes) {
    JobScope other(jobs);
    std::vector<bool> requests;
    std::vector<std::string> followUps;
    other.run(
        Lane::actions, [&](const Stop&) { requests.push_back(false); },
        [&] { followUps.emplace_back("not begun"); });
    scope->run(
        Lane::actions,
        [&](const Stop& stop) {
            requests.push_back(stop.isRequested());
            jobs.stopAll();
            requests.push_back(stop.isRequested());
        },
        [&] { followUps.emplace_back("under way"); });
    workQueue.run(1);
    finishWork();
    EXPECT_THAT(requests, ElementsAre(false, true));
    // Its scope is still there, and may want to know how far it came.
    EXPECT_THAT(followUps, ElementsAre("under way"));
}

TEST_F(JobsTest, NothingBeginsAfterStopAll) {
    jobs.stopAll();
    bool ran = false;
    JobScope later(jobs);
    for (JobScope* each : {&*scope, &later}) {
        each->run(
            Lane::actions, [&](const Stop&) { ran = true; }, [&] { ran = true; });
    }
    finishWork();
    EXPECT_FALSE(ran);
}

TEST_F(JobsTest, ChangesToTheDiskBeginUntilTheProgramEnds) {
    std::vector<bool> begun;
    scope->run(
        Lane::actions,
        [&](const Stop& stop) {
            begun.push_back(stop.beginChange().has_value());
            jobs.stopAll();
            begun.push_back(stop.beginChange().has_value());
        },
        [] {});
    finishWork();
    EXPECT_THAT(begun, ElementsAre(true, false));
}

TEST_F(JobsTest, AChangeToTheDiskMayBeginForAScopeThatIsGone) {
    bool begun = false;
    scope->run(
        Lane::actions,
        [&](const Stop& stop) {
            scope.reset();
            begun = stop.beginChange().has_value();
        },
        [] {});
    finishWork();
    EXPECT_TRUE(begun);
}

// The main thread --------------------------------------------------------------------------------

/// The functions that a scope calls note the thread that destroys them.
class JobFunctions : public JobsTest {
protected:
    ~JobFunctions() override { scope.reset(); }

    /// Begins a job with progress and one without; together they have three functions.
    void begin() {
        const auto noted = [this] {
            return std::shared_ptr<void>(
                nullptr, [this](void*) { destroyedBy.push_back(std::this_thread::get_id()); });
        };
        scope->run(
            Lane::actions, [](const Stop&) { return 1; }, [held = noted()](int) {});
        scope->runWithProgress<int>(
            Lane::actions, [](const Stop&, const auto& report) { report(1); },
            [held = noted()](int) {}, [held = noted()] {});
    }
    void workOnAnotherThread() {
        std::thread([this] { workQueue.runAll(); }).join();
    }
    void expectDestroyedByTheMainThread() const {
        EXPECT_THAT(destroyedBy, SizeIs(3));
        EXPECT_THAT(destroyedBy, Each(std::this_thread::get_id()));
    }

    std::vector<std::thread::id> destroyedBy;
};

TEST_F(JobFunctions, AreDestroyedAfterTheCall) {
    begin();
    workOnAnotherThread();
    EXPECT_THAT(destroyedBy, IsEmpty());
    mainQueue.drain();
    expectDestroyedByTheMainThread();
}

TEST_F(JobFunctions, OfADroppedJobAreDestroyedWithTheScope) {
    begin();
    scope.reset();
    expectDestroyedByTheMainThread();
    workOnAnotherThread();
    expectDestroyedByTheMainThread();
}

TEST_F(JobFunctions, OfADroppedResultAreDestroyedWithTheScope) {
    begin();
    workOnAnotherThread();
    scope.reset();
    expectDestroyedByTheMainThread();
    mainQueue.drain();
    expectDestroyedByTheMainThread();
}

TEST_F(JobFunctions, AreKeptByTheScopeWhenTheProgramsEndDropsTheJob) {
    begin();
    jobs.stopAll();
    workOnAnotherThread();
    mainQueue.drain();
    EXPECT_THAT(destroyedBy, IsEmpty());
    scope.reset();
    expectDestroyedByTheMainThread();
}

TEST_F(JobsTest, PostToMainRunsOnALaterTurnInOrder) {
    std::vector<int> ran;
    scope->postToMain([&, first = std::make_unique<int>(1)] { ran.push_back(*first); });
    std::thread([&] { scope->postToMain([&] { ran.push_back(2); }); }).join();
    EXPECT_THAT(ran, IsEmpty());
    mainQueue.turn();
    EXPECT_THAT(ran, ElementsAre(1, 2));
}

TEST_F(JobsTest, PostToMainDropsTheWorkOfAScopeThatIsGone) {
    bool ran = false;
    const auto held = std::make_shared<int>(0);
    scope->postToMain([&ran, held] { ran = true; });
    scope.reset();
    mainQueue.drain();
    EXPECT_FALSE(ran);
    EXPECT_EQ(held.use_count(), 1);
}

}  // namespace
}  // namespace tallowcrest

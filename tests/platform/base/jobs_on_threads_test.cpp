#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <future>
#include <latch>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/jobs/jobs.h"
#include "platform/base/run_loop.h"
#include "platform/base/thread_work_queue.h"
#include "tests/platform/base/hang_guard.h"
#include "tests/support/all_lanes.h"

namespace tallowcrest {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// Keeps threads of a queue busy until it lets go.
class HangingJobs {
public:
    HangingJobs(ThreadWorkQueue& queue, const std::vector<Lane>& where)
        : begun_(static_cast<std::ptrdiff_t>(where.size())) {
        for (const Lane lane : where) {
            queue.post(lane, [this, released = released_] {
                begun_.count_down();
                released.wait();
            });
        }
        begun_.wait();
    }

    void letGo() { release_.set_value(); }

private:
    std::latch begun_;
    std::promise<void> release_;
    std::shared_future<void> released_ = release_.get_future().share();
};

/// As many as a lane has threads.
std::vector<Lane> allThreadsOf(Lane lane) {
    return std::vector<Lane>(ThreadPool::maximumThreads, lane);
}

// Lanes ------------------------------------------------------------------------------------------

TEST(ThreadWorkQueue, AFullLaneDoesNotDelayTheOthers) {
    for (const Lane full : allLanes) {
        ThreadWorkQueue queue(noSetup);
        HangingJobs hanging(queue, allThreadsOf(full));
        for (const Lane other : allLanes) {
            if (other != full) {
                std::promise<void> ran;
                queue.post(other, [&ran] { ran.set_value(); });
                EXPECT_EQ(ran.get_future().wait_for(stuck), std::future_status::ready);
            }
        }
        hanging.letGo();
        EXPECT_TRUE(queue.finishWithin(stuck));
    }
}

TEST(ThreadWorkQueue, FinishWithinTellsOfAJobInAnyLane) {
    for (const Lane lane : allLanes) {
        ThreadWorkQueue queue(noSetup);
        HangingJobs hanging(queue, {lane});
        EXPECT_FALSE(queue.finishWithin(milliseconds(0)));
        EXPECT_FALSE(queue.finishWithin(milliseconds(1)));
        hanging.letGo();
        EXPECT_TRUE(queue.finishWithin(stuck));
    }
}

TEST(ThreadWorkQueue, FinishingDropsWhatHasNotBegunInAnyLaneAndTakesNothingNew) {
    ThreadWorkQueue queue(noSetup);
    std::vector<Lane> all;
    for (const Lane lane : allLanes) {
        all.insert(all.end(), ThreadPool::maximumThreads, lane);
    }
    HangingJobs hanging(queue, all);
    std::atomic<bool> ran = false;
    const auto held = std::make_shared<int>(0);
    const auto postToAll = [&] {
        for (const Lane lane : allLanes) {
            queue.post(lane, [&ran, held] { ran = true; });
        }
    };
    postToAll();
    EXPECT_EQ(held.use_count(), 1 + static_cast<long>(laneCount));
    EXPECT_FALSE(queue.finishWithin(milliseconds(0)));
    EXPECT_EQ(held.use_count(), 1);
    postToAll();
    EXPECT_EQ(held.use_count(), 1);
    hanging.letGo();
    EXPECT_TRUE(queue.finishWithin(stuck));
    EXPECT_FALSE(ran);
}

TEST(ThreadWorkQueue, TheTimeoutIsThatOfAllLanesTogether) {
    constexpr milliseconds timeout{200};
    ThreadWorkQueue queue(noSetup);
    HangingJobs hanging(queue, {allLanes.begin(), allLanes.end()});
    // The timeout is what is tested, so this test has to measure it. One per lane would take
    // several times as long each time. A busy machine may hold up some of the calls, not all of
    // them.
    steady_clock::duration shortest = stuck;
    for (int attempt = 0; attempt < 10 && shortest >= 2 * timeout; ++attempt) {
        const auto start = steady_clock::now();
        EXPECT_FALSE(queue.finishWithin(timeout));
        shortest = std::min(shortest, steady_clock::now() - start);
    }
    EXPECT_GE(shortest, timeout);
    EXPECT_LT(shortest, 2 * timeout);
    hanging.letGo();
    EXPECT_TRUE(queue.finishWithin(stuck));
}

// Jobs -------------------------------------------------------------------------------------------

class JobsOnThreads : public ::testing::Test {
protected:
    ~JobsOnThreads() override { EXPECT_TRUE(queue.finishWithin(stuck)); }

    RunLoop loop;
    ThreadWorkQueue queue{noSetup};
    Jobs jobs{loop, queue};
};

TEST_F(JobsOnThreads, TheResultOfAnotherThreadReachesTheMainThread) {
    JobScope scope(jobs);
    std::thread::id worked;
    std::thread::id followedUp;
    scope.run(
        Lane::actions, [](const Stop&) { return std::this_thread::get_id(); },
        [&](std::thread::id result) {
            worked = result;
            followedUp = std::this_thread::get_id();
            loop.stop(0);
        });
    loop.run();
    EXPECT_EQ(followedUp, std::this_thread::get_id());
    EXPECT_NE(worked, std::thread::id());
    EXPECT_NE(worked, followedUp);
}

TEST_F(JobsOnThreads, AScopeMayEndWhileItsJobsBeginRunAndEnd) {
    struct Component {
        explicit Component(Jobs& jobs) : scope(jobs) {}
        int results = 0;
        JobScope scope;
    };
    int followUps = 0;
    int destroyed = 0;  // by the main thread alone, hence plain
    for (int round = 0; round < 200; ++round) {
        auto component = std::make_unique<Component>(jobs);
        std::shared_ptr<int> held(&destroyed, [](int* count) { ++*count; });
        for (const Lane lane : allLanes) {
            component->scope.runWithProgress<int>(
                lane,
                [](const Stop& stop, const auto& report) {
                    report(1);
                    return stop.isRequested() ? 1 : 2;
                },
                [&followUps, held, of = component.get()](int progress) {
                    ++followUps;
                    of->results += progress;
                },
                [&followUps, held, of = component.get()](int result) {
                    ++followUps;
                    of->results += result;
                });
        }
        held.reset();
        component.reset();
        EXPECT_EQ(destroyed, round + 1);
    }
    EXPECT_TRUE(queue.finishWithin(stuck));
    loop.post([this] { loop.stop(0); });
    loop.run();
    EXPECT_EQ(followUps, 0);
}

TEST_F(JobsOnThreads, AJobThatWaitsIsWokenByTheEndOfItsScope) {
    std::promise<void> begun;
    {
        JobScope scope(jobs);
        scope.run(
            Lane::actions,
            [&begun](const Stop& stop) {
                std::mutex lock;
                std::condition_variable_any never;
                std::unique_lock guard(lock);
                begun.set_value();
                never.wait(guard, stop.stopToken(), [] { return false; });
            },
            [] {});
        begun.get_future().wait();
    }
    EXPECT_TRUE(queue.finishWithin(stuck));
}

TEST_F(JobsOnThreads, ProgressComesInOrderAndTheLastOfItBeforeTheResult) {
    constexpr int last = 2000;
    JobScope scope(jobs);
    std::vector<int> told;
    scope.runWithProgress<int>(
        Lane::actions,
        [](const Stop&, const auto& report) {
            for (int i = 1; i <= last; ++i) {
                report(i);
            }
            return last + 1;
        },
        [&](int progress) { told.push_back(progress); },
        [&](int result) {
            told.push_back(result);
            loop.post([this] { loop.stop(0); });
        });
    loop.run();
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    ASSERT_GE(told.size(), 2U);
    EXPECT_EQ(told.at(told.size() - 2), last);
    EXPECT_EQ(told.back(), last + 1);
}

// The end of the program -------------------------------------------------------------------------

TEST_F(JobsOnThreads, StopAllWaitsForAChangeToTheDiskToBecomeWhole) {
    JobScope scope(jobs);
    std::promise<void> begun;
    std::atomic<bool> isWhole = false;
    scope.run(
        Lane::actions,
        [&](const Stop& stop) {
            const auto change = stop.beginChange();
            begun.set_value();
            // No other change begins once the program waits for this one.
            while (stop.beginChange()) {
                std::this_thread::yield();
            }
            EXPECT_TRUE(stop.isRequested());
            isWhole = true;
        },
        [] {});
    begun.get_future().wait();
    jobs.stopAll();
    EXPECT_TRUE(isWhole);
}

TEST_F(JobsOnThreads, StopAllGivesUpAChangeThatHangs) {
    JobScope scope(jobs);
    std::promise<void> release;
    std::promise<void> begun;
    scope.run(
        Lane::actions,
        [&](const Stop& stop) {
            const auto change = stop.beginChange();
            begun.set_value();
            release.get_future().wait();
        },
        [] {});
    begun.get_future().wait();
    EXPECT_FALSE(jobs.stopAll(milliseconds(1)));
    release.set_value();
    EXPECT_TRUE(jobs.stopAll(stuck));
}

TEST_F(JobsOnThreads, StopAllDoesNotWaitForAHangingJobWithoutAChange) {
    JobScope scope(jobs);
    std::promise<void> release;
    std::promise<void> begun;
    scope.run(
        Lane::actions,
        [&](const Stop& stop) {
            EXPECT_TRUE(stop.beginChange());  // over at once
            begun.set_value();
            release.get_future().wait();
        },
        [] {});
    begun.get_future().wait();
    jobs.stopAll();
    EXPECT_FALSE(queue.finishWithin(milliseconds(1)));
    release.set_value();
    EXPECT_TRUE(queue.finishWithin(stuck));
}

}  // namespace
}  // namespace tallowcrest

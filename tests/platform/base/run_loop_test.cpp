#include "platform/base/run_loop.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using ::testing::ElementsAre;

/// Keeps the calling thread busy until `instant`: what a callback that takes its time does.
void workUntil(steady_clock::time_point instant) {
    while (steady_clock::now() < instant) {
    }
}

TEST(RunLoop, RunsPostedWorkInOrderAndReturnsTheStatusOfTheStop) {
    RunLoop loop;
    std::vector<int> order;
    loop.post([&] { order.push_back(1); });
    loop.post([&] {
        order.push_back(2);
        loop.post([&] {
            order.push_back(4);
            loop.stop(7);
        });
    });
    loop.post([&] { order.push_back(3); });
    EXPECT_EQ(loop.run(), 7);
    EXPECT_THAT(order, ElementsAre(1, 2, 3, 4));
}

TEST(RunLoop, StopsAfterTheWorkThatIsBeingDone) {
    RunLoop loop;
    bool ranToItsEnd = false;
    bool ranTheNext = false;
    loop.post([&] {
        loop.stop(0);
        ranToItsEnd = true;
    });
    loop.post([&] { ranTheNext = true; });
    EXPECT_EQ(loop.run(), 0);
    EXPECT_TRUE(ranToItsEnd);
    EXPECT_FALSE(ranTheNext);
}

TEST(RunLoop, AStopBeforeTheRunEndsItAtOnceAndOnce) {
    RunLoop loop;
    loop.stop(3);
    EXPECT_EQ(loop.run(), 3);
    loop.post([&] { loop.stop(4); });
    EXPECT_EQ(loop.run(), 4);
}

TEST(RunLoop, WorkThatIsStillQueuedIsDroppedUnrun) {
    bool ran = false;
    const auto held = std::make_shared<int>(1);
    {
        RunLoop loop;
        loop.post([&ran, held] { ran = true; });
        EXPECT_EQ(held.use_count(), 2);
    }
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_FALSE(ran);
}

TEST(RunLoop, IsWokenByAPostAndAStopFromOtherThreads) {
    RunLoop loop;
    std::thread::id workThread;
    std::jthread other([&] {
        loop.post([&] {
            workThread = std::this_thread::get_id();
            loop.stop(5);
        });
    });
    EXPECT_EQ(loop.run(), 5);
    EXPECT_EQ(workThread, std::this_thread::get_id());

    std::jthread stopper([&] { loop.stop(6); });
    EXPECT_EQ(loop.run(), 6);
}

TEST(RunLoop, KeepsTheOrderOfEachThreadThatPosts) {
    constexpr int threadCount = 4;
    constexpr int postsEach = 500;
    RunLoop loop;
    std::vector<std::vector<int>> seen(threadCount);
    int total = 0;
    std::vector<std::jthread> threads;
    for (std::size_t thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < postsEach; ++i) {
                loop.post([&, thread, i] {
                    seen[thread].push_back(i);
                    if (++total == threadCount * postsEach) {
                        loop.stop(0);
                    }
                });
            }
        });
    }
    loop.run();
    for (const auto& numbers : seen) {
        ASSERT_EQ(numbers.size(), static_cast<std::size_t>(postsEach));
        EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
    }
}

// Timers -----------------------------------------------------------------------------------------

TEST(RunLoopTimer, FiresAgainAndAgainAndNotBeforeItsInterval) {
    RunLoop loop;
    const auto start = steady_clock::now();
    std::vector<steady_clock::time_point> ticks;
    const auto timer = loop.scheduleRepeating(milliseconds(5), [&] {
        ticks.push_back(steady_clock::now());
        if (ticks.size() == 4) {
            loop.stop(9);
        }
    });
    EXPECT_EQ(loop.run(), 9);
    ASSERT_EQ(ticks.size(), 4U);
    for (std::size_t i = 0; i < ticks.size(); ++i) {
        EXPECT_GE(ticks[i] - start, milliseconds(5 * (static_cast<int>(i) + 1)));
    }
}

TEST(RunLoopTimer, EndsWithItsHandle) {
    RunLoop loop;
    bool fired = false;
    auto dropped = loop.scheduleRepeating(milliseconds(1), [&] { fired = true; });
    dropped.reset();
    const auto other = loop.scheduleRepeating(milliseconds(5), [&] { loop.stop(0); });
    loop.run();
    EXPECT_FALSE(fired);
}

TEST(RunLoopTimer, MayBeDestroyedInItsOwnCallback) {
    RunLoop loop;
    int fired = 0;
    // Held by the callback alone: it goes away while it is being run.
    const auto held = std::make_shared<std::string>("held");
    std::unique_ptr<RepeatingTimer> timer;
    timer = loop.scheduleRepeating(milliseconds(1), [&fired, &timer, held] {
        timer.reset();
        fired += static_cast<int>(held->size());
    });
    const auto other = loop.scheduleRepeating(milliseconds(10), [&] { loop.stop(0); });
    loop.run();
    EXPECT_EQ(fired, 4);
    EXPECT_EQ(held.use_count(), 1);
}

TEST(RunLoopTimer, MayBeScheduledAndDestroyedInTheCallbackOfAnother) {
    RunLoop loop;
    bool victimFired = false;
    auto victim = loop.scheduleRepeating(milliseconds(20), [&] { victimFired = true; });
    std::unique_ptr<RepeatingTimer> scheduledLater;
    std::unique_ptr<RepeatingTimer> first = loop.scheduleRepeating(milliseconds(1), [&] {
        victim.reset();
        scheduledLater = loop.scheduleRepeating(milliseconds(30), [&] { loop.stop(2); });
        first.reset();
    });
    EXPECT_EQ(loop.run(), 2);
    EXPECT_FALSE(victimFired);
}

TEST(RunLoopTimer, MayOutliveItsLoop) {
    std::unique_ptr<RepeatingTimer> timer;
    {
        RunLoop loop;
        timer = loop.scheduleRepeating(milliseconds(1), [] {});
    }
    timer.reset();
}

TEST(RunLoopTimer, DoesNotMakeUpForMissedTicks) {
    RunLoop loop;
    int fired = 0;
    int firedByTheThirdTurn = -1;
    std::int64_t due = 0;
    constexpr milliseconds interval{200};
    constexpr int missed = 4;
    const auto start = steady_clock::now();
    const auto timer = loop.scheduleRepeating(interval, [&] { ++fired; });
    loop.post([&] {
        workUntil(start + interval * missed + interval / 2);
        // Each turn of the loop lets one due timer fire: one that made up for missed ticks would
        // have fired three times by the third turn.
        loop.post([] {});
        loop.post([] {});
        loop.post([&] {
            firedByTheThirdTurn = fired;
            // One for all that were missed, and on a slow machine those that came due since.
            due = 1 + (steady_clock::now() - start) / interval - missed;
            loop.stop(0);
        });
    });
    loop.run();
    EXPECT_GE(firedByTheThirdTurn, 1);
    EXPECT_LE(firedByTheThirdTurn, due);
}

TEST(RunLoopTimer, LetsPostedWorkAndOtherTimersPassWhenItIsAlwaysDue) {
    RunLoop loop;
    int slow = 0;
    int posted = 0;
    int other = 0;
    const auto timer = loop.scheduleRepeating(milliseconds(1), [&] {
        ++slow;
        workUntil(steady_clock::now() + milliseconds(3));
        loop.post([&] { ++posted; });
    });
    const auto starved = loop.scheduleRepeating(milliseconds(2), [&] {
        if (++other == 5 && posted > 0) {
            loop.stop(0);
        }
        if (other > 100) {
            loop.stop(1);
        }
    });
    EXPECT_EQ(loop.run(), 0);
    EXPECT_GT(slow, 0);
}

}  // namespace
}  // namespace tallowcrest

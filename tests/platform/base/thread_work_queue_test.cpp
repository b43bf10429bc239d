#include "platform/base/thread_work_queue.h"

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <future>
#include <latch>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/host.h"
#include "tests/platform/base/hang_guard.h"
#include "tests/support/is_asleep.h"

namespace tallowcrest {
namespace {

using std::chrono::milliseconds;

template <class Value>
Value getOrFail(std::future<Value> future) {
    if (future.wait_for(stuck) != std::future_status::ready) {
        ADD_FAILURE() << "stuck";
        std::abort();
    }
    return future.get();
}

/// Posts `work` and returns what it answers.
template <class Work>
auto runOn(ThreadPool& pool, Work work) {
    using Result = std::invoke_result_t<Work>;
    const auto promise = std::make_shared<std::promise<Result>>();
    auto future = promise->get_future();
    pool.post([promise, work] { promise->set_value(work()); });
    return getOrFail(std::move(future));
}

TEST(ThreadPool, AStalledJobDoesNotHoldUpTheNext) {
    std::promise<void> release;
    ThreadPool pool(noSetup);
    std::promise<void> stalled;
    pool.post([&] {
        stalled.set_value();
        release.get_future().wait();
    });
    stalled.get_future().wait();
    EXPECT_EQ(runOn(pool, [] { return 5; }), 5);
    release.set_value();
    EXPECT_TRUE(pool.finishWithin(stuck));
}

TEST(ThreadPool, JobsPostedTogetherRunTogether) {
    constexpr int count = static_cast<int>(ThreadPool::maximumThreads);
    ThreadPool pool(noSetup);
    // Each job waits until all of them have begun.
    std::latch begun(count);
    std::latch ended(count);
    for (int i = 0; i < count; ++i) {
        pool.post([&] {
            begun.arrive_and_wait();
            ended.count_down();
        });
    }
    ended.wait();
    EXPECT_TRUE(pool.finishWithin(stuck));
}

TEST(ThreadPool, StartsNoMoreThanItsMaximumOfThreads) {
    constexpr int most = static_cast<int>(ThreadPool::maximumThreads);
    constexpr int count = 40;
    static_assert(most == 8);
    std::atomic<int> running = 0;
    std::atomic<int> highest = 0;
    std::latch allBusy(most);
    std::latch ended(count);
    std::promise<void> release;
    const std::shared_future<void> released = release.get_future().share();
    ThreadPool pool(noSetup);
    for (int i = 0; i < count; ++i) {
        pool.post([&, i] {
            const int now = ++running;
            int seen = highest;
            while (now > seen && !highest.compare_exchange_weak(seen, now)) {
            }
            if (i < most) {
                allBusy.count_down();
                released.wait();
            }
            --running;
            ended.count_down();
        });
    }
    allBusy.wait();
    EXPECT_EQ(running, most);  // the other 32 wait
    release.set_value();
    ended.wait();
    EXPECT_EQ(highest, most);
}

TEST(ThreadPool, ASteadyTickIsServedByOneThread) {
    static std::atomic<int> threadsStarted;
    threadsStarted = 0;
    ThreadPool pool([] { ++threadsStarted; });
    EXPECT_EQ(threadsStarted, 0);
    for (int tick = 0; tick < 50; ++tick) {
        const pid_t thread = runOn(pool, [] { return gettid(); });
        // A tick comes long after the job before it has ended and its thread has gone to sleep.
        const auto deadline = std::chrono::steady_clock::now() + stuck;
        while (!isAsleep(thread)) {
            ASSERT_LT(std::chrono::steady_clock::now(), deadline);
            std::this_thread::yield();
        }
    }
    EXPECT_EQ(threadsStarted, 1);
}

TEST(ThreadPool, RunsWorkOnAnotherThreadAfterItsSetup) {
    static thread_local bool isSetUp = false;
    ThreadPool pool([] { isSetUp = true; });
    EXPECT_NE(runOn(pool, [] { return std::this_thread::get_id(); }), std::this_thread::get_id());
    EXPECT_TRUE(runOn(pool, [] { return isSetUp; }));
    EXPECT_FALSE(isSetUp);
}

TEST(ThreadPool, TakesPostsFromSeveralThreads) {
    constexpr int threadCount = 4;
    constexpr int postsEach = 250;
    std::atomic<int> ran = 0;
    std::latch ended(threadCount * postsEach);
    ThreadPool pool(noSetup);
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&] {
            for (int i = 0; i < postsEach; ++i) {
                pool.post([&] {
                    ++ran;
                    ended.count_down();
                });
            }
        });
    }
    ended.wait();
    EXPECT_EQ(ran, threadCount * postsEach);
}

TEST(ThreadPool, AJobAndItsCapturesMayPostTheNext) {
    ThreadPool pool(noSetup);
    std::promise<int> ofJob;
    std::promise<int> ofHeld;
    const auto post = [&](void*) { pool.post([&] { ofHeld.set_value(4); }); };
    pool.post([&, held = std::shared_ptr<void>(nullptr, post)] {
        pool.post([&] { ofJob.set_value(3); });
    });
    EXPECT_EQ(getOrFail(ofJob.get_future()), 3);
    EXPECT_EQ(getOrFail(ofHeld.get_future()), 4);
}

// The end ----------------------------------------------------------------------------------------

TEST(ThreadPool, FinishesAtOnceWhenNothingRuns) {
    ThreadPool unused(noSetup);
    EXPECT_TRUE(unused.finishWithin(milliseconds(0)));
    ThreadPool used(noSetup);
    runOn(used, [] { return 0; });
    EXPECT_TRUE(used.finishWithin(stuck));
}

TEST(ThreadPool, FinishWithinTellsOfAJobThatGoesOn) {
    std::promise<void> release;
    std::promise<void> begun;
    bool ended = false;
    {
        ThreadPool pool(noSetup);
        pool.post([&] {
            begun.set_value();
            release.get_future().wait();
            ended = true;
        });
        begun.get_future().wait();
        EXPECT_FALSE(pool.finishWithin(milliseconds(1)));
        EXPECT_FALSE(pool.finishWithin(milliseconds(0)));
        release.set_value();
        EXPECT_TRUE(pool.finishWithin(stuck));
        EXPECT_TRUE(ended);
    }
}

/// Keeps every thread that a pool can have with a job until it lets go.
class AllThreadsBusy {
public:
    explicit AllThreadsBusy(ThreadPool& pool) {
        for (std::ptrdiff_t i = 0; i < most; ++i) {
            pool.post([this] {
                begun_.count_down();
                released_.wait();
            });
        }
        begun_.wait();
    }

    void letGo() { release_.set_value(); }

private:
    static constexpr auto most = static_cast<std::ptrdiff_t>(ThreadPool::maximumThreads);

    std::latch begun_{most};
    std::promise<void> release_;
    std::shared_future<void> released_ = release_.get_future().share();
};

TEST(ThreadPool, FinishingDropsWhatHasNotBegunAndTakesNothingNew) {
    std::atomic<bool> ranLate = false;
    const auto held = std::make_shared<int>(0);
    ThreadPool pool(noSetup);
    AllThreadsBusy busy(pool);
    // No thread is left for these.
    pool.post([&ranLate, held] { ranLate = true; });
    EXPECT_EQ(held.use_count(), 2);
    EXPECT_FALSE(pool.finishWithin(milliseconds(0)));
    EXPECT_EQ(held.use_count(), 1);
    pool.post([&ranLate, held] { ranLate = true; });
    EXPECT_EQ(held.use_count(), 1);
    busy.letGo();
    EXPECT_TRUE(pool.finishWithin(stuck));
    EXPECT_FALSE(ranLate);
}

TEST(ThreadPool, DestroyingADroppedJobMayPost) {
    bool destroyed = false;
    ThreadPool pool(noSetup);
    AllThreadsBusy busy(pool);
    const auto post = [&](void*) {
        pool.post([] {});
        destroyed = true;
    };
    pool.post([held = std::shared_ptr<void>(nullptr, post)] {});
    busy.letGo();
    EXPECT_TRUE(pool.finishWithin(stuck));
    EXPECT_TRUE(destroyed);
}

TEST(ThreadPool, DestructionWaitsForTheJobUnderWay) {
    std::promise<void> begun;
    std::promise<void> release;
    std::atomic<bool> ended = false;
    std::jthread releaser;
    {
        ThreadPool pool(noSetup);
        pool.post([&] {
            begun.set_value();
            release.get_future().wait();
            ended = true;
        });
        begun.get_future().wait();
        releaser = std::jthread([&] { release.set_value(); });
    }
    EXPECT_TRUE(ended);
}

TEST(ThreadPool, DestructionRightAfterAPostIsSafe) {
    for (int round = 0; round < 200; ++round) {
        std::atomic<int> ran = 0;
        {
            ThreadPool pool(noSetup);
            pool.post([&] { ++ran; });
        }
        EXPECT_LE(ran, 1);
    }
}

// Priority ---------------------------------------------------------------------------------------

int niceOf(pid_t thread) {
    errno = 0;
    const int value = getpriority(PRIO_PROCESS, static_cast<id_t>(thread));
    EXPECT_EQ(errno, 0);
    return value;
}

TEST(ThreadPool, WorkersHaveUtilityPriorityAndTheMainThreadKeepsItsOwn) {
    const int before = niceOf(gettid());
    ThreadPool pool(host::lowerThreadPriority);
    // Somebody who runs the tests at a lower priority than that keeps it.
    EXPECT_EQ(runOn(pool, [] { return niceOf(gettid()); }), std::max(before, 10));
    // Disk access only when nobody else asks: the kernel's class 3.
    EXPECT_EQ(runOn(pool, [] { return syscall(SYS_ioprio_get, 1, gettid()) >> 13; }), 3);
    EXPECT_EQ(niceOf(gettid()), before);
    EXPECT_EQ(niceOf(getpid()), before);
}

}  // namespace
}  // namespace tallowcrest

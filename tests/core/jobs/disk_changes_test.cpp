#include <atomic>
#include <chrono>
#include <optional>
#include <thread>
#include <utility>

#include <gtest/gtest.h>

#include "core/jobs/jobs.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;

TEST(DiskChangesTest, NoneBeginsAfterTheFinish) {
    DiskChanges changes;
    EXPECT_TRUE(changes.begin());
    EXPECT_TRUE(changes.finish(0ms));
    EXPECT_FALSE(changes.begin());
    EXPECT_TRUE(changes.finish(0ms));
}

TEST(DiskChangesTest, AChangeThatMovesEndsOnce) {
    DiskChanges changes;
    auto first = changes.begin();
    {
        DiskChanges::Change moved = std::move(first).value();
        first.reset();
        EXPECT_TRUE(changes.begin());
    }
    EXPECT_TRUE(changes.finish(0ms));
    EXPECT_FALSE(changes.begin());
}

TEST(DiskChangesTest, TheFinishGivesUpAChangeThatDoesNotEnd) {
    DiskChanges changes;
    auto change = changes.begin();
    EXPECT_FALSE(changes.finish(0ms));
    EXPECT_FALSE(changes.begin());
    change.reset();
    EXPECT_TRUE(changes.finish(0ms));
}

TEST(DiskChangesTest, TheFinishWaitsForAllThatAreUnderWay) {
    DiskChanges changes;
    auto first = changes.begin();
    auto second = changes.begin();
    std::atomic<int> ended = 0;
    int endedBeforeTheFinish = 0;
    std::jthread finishing([&] {
        EXPECT_TRUE(changes.finish(std::chrono::minutes(1)));
        endedBeforeTheFinish = ended;
    });
    // Once none may begin, the other thread is inside `finish`.
    while (changes.begin()) {
        std::this_thread::yield();
    }
    ++ended;
    first.reset();
    EXPECT_FALSE(changes.begin());
    ++ended;
    second.reset();
    finishing.join();
    EXPECT_EQ(endedBeforeTheFinish, 2);
}

}  // namespace
}  // namespace tallowcrest

#include <atomic>
#include <optional>
#include <thread>
#include <utility>

#include <gtest/gtest.h>

#include "core/jobs/jobs.h"

namespace tallowcrest {
namespace {

TEST(DiskChangesTest, NoneBeginsAfterTheFinish) {
    DiskChanges changes;
    EXPECT_TRUE(changes.begin());
    changes.finish();
    EXPECT_FALSE(changes.begin());
    changes.finish();
}

TEST(DiskChangesTest, AChangeThatMovesEndsOnce) {
    DiskChanges changes;
    auto first = changes.begin();
    {
        DiskChanges::Change moved = std::move(first).value();
        first.reset();
        EXPECT_TRUE(changes.begin());
    }
    changes.finish();  // would hang if the count were not 0
    EXPECT_FALSE(changes.begin());
}

TEST(DiskChangesTest, TheFinishWaitsForAllThatAreUnderWay) {
    DiskChanges changes;
    auto first = changes.begin();
    auto second = changes.begin();
    std::atomic<int> ended = 0;
    int endedBeforeTheFinish = 0;
    std::jthread finishing([&] {
        changes.finish();
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

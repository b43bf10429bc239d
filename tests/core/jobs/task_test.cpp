#include "core/jobs/task.h"

#include <memory>
#include <utility>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

TEST(TaskTest, IsEmptyUntilItHasAFunction) {
    Task task;
    EXPECT_FALSE(task);
    task = [] {};
    EXPECT_TRUE(task);
    task = {};
    EXPECT_FALSE(task);
}

TEST(TaskTest, RunsAFunctionThatCannotBeCopied) {
    int result = 0;
    Task task = [&result, value = std::make_unique<int>(5)] { result = *value; };
    task();
    EXPECT_EQ(result, 5);
}

TEST(TaskTest, RunsAFunctionThatChangesWhatItHolds) {
    std::unique_ptr<int> taken;
    Task task = [&taken, value = std::make_unique<int>(5)]() mutable { taken = std::move(value); };
    task();
    EXPECT_EQ(*taken, 5);
}

TEST(TaskTest, KeepsACopyOfANamedFunction) {
    int calls = 0;
    Task task;
    {
        const auto function = [&calls] { ++calls; };
        task = function;
    }
    task();
    EXPECT_EQ(calls, 1);
}

TEST(TaskTest, AMoveTakesTheFunctionAlong) {
    int calls = 0;
    Task task = [&calls] { ++calls; };
    Task moved = std::move(task);
    moved();
    EXPECT_EQ(calls, 1);
    task = std::move(moved);
    EXPECT_TRUE(task);
}

TEST(TaskTest, DestroysItsFunctionWhenResetOrDestroyed) {
    const auto held = std::make_shared<int>(0);
    {
        Task task = [held] {};
        EXPECT_EQ(held.use_count(), 2);
        task = {};
        EXPECT_EQ(held.use_count(), 1);
        task = [held] {};
    }
    EXPECT_EQ(held.use_count(), 1);
}

}  // namespace
}  // namespace tallowcrest

#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "core/advisor_records.h"

namespace tallowcrest {
namespace {

constexpr std::int64_t mostEvents = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t leastEvents = std::numeric_limits<std::int64_t>::min();

AITrustRecord record(std::int64_t approved, std::int64_t run, std::int64_t blocked) {
    return {.actionType = "disk_cleanup",
            .approvedCount = approved,
            .runCount = run,
            .blockedCount = blocked,
            .lastUpdated = {}};
}

TEST(Trust, ScoreAndPercent) {
    struct Case {
        std::int64_t approved;
        std::int64_t run;
        std::int64_t blocked;
        std::int64_t score;
        std::int64_t percent;
    };
    for (const Case& c : {Case{0, 0, 0, 20, 20}, Case{1, 0, 0, 28, 28}, Case{0, 1, 0, 34, 34},
                          Case{0, 0, 1, 0, 0}, Case{2, 3, 0, 78, 78}, Case{4, 2, 0, 80, 80},
                          Case{3, 2, 0, 72, 72}, Case{0, 3, 1, 42, 42}, Case{10, 0, 0, 100, 100},
                          Case{2, 1, 0, 50, 50}, Case{12, 1, 0, 130, 100}, Case{0, 0, 2, -20, 0},
                          Case{100, 0, 40, 20, 20}, Case{-1, 0, 0, 12, 12}}) {
        EXPECT_EQ(trustScore(record(c.approved, c.run, c.blocked)), c.score)
            << c.approved << ", " << c.run << ", " << c.blocked;
        EXPECT_EQ(trustPercent(record(c.approved, c.run, c.blocked)), c.percent)
            << c.approved << ", " << c.run << ", " << c.blocked;
    }
}

TEST(Trust, HugeCountsStayWithinPercents) {
    EXPECT_EQ(trustPercent(record(mostEvents, mostEvents, 0)), 100);
    EXPECT_EQ(trustPercent(record(0, 0, mostEvents)), 0);
    EXPECT_EQ(trustPercent(record(mostEvents, mostEvents, mostEvents)), 100);
    EXPECT_EQ(trustPercent(record(mostEvents, 0, mostEvents)), 0);
    EXPECT_EQ(trustPercent(record(leastEvents, leastEvents, mostEvents)), 0);
    EXPECT_EQ(trustPercent(record(0, 0, leastEvents)), 100);
}

}  // namespace
}  // namespace tallowcrest

#include "disk/disk_autopilot_policy.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace tallowcrest::DiskAutopilotSafetyPolicy {
namespace {

constexpr std::int64_t gigabyte = 1073741824;

TEST(DiskAutopilotSafetyPolicy, TheLimitsAreThoseThatWereDecided) {
    EXPECT_EQ(maxFilesPerRun, 500U);
    EXPECT_EQ(planExpirySeconds, 1800.0);
}

TEST(DiskAutopilotSafetyPolicy, OnlyWhatIsBelowTheCachesFolderIsInside) {
    struct Row {
        std::string file;
        std::string caches;
        bool isInside;
    };
    const Row rows[] = {
        {"/home/o/.cache/a", "/home/o/.cache", true},
        {"/home/o/.cache/a/b c\n/d", "/home/o/.cache", true},
        {"/home/o/.cache/a", "/home/o/.cache/", true},
        {"/home/o/.cache", "/home/o/.cache", false},
        {"/home/o/.cache/", "/home/o/.cache", false},
        {"/home/o/.cache2/a", "/home/o/.cache", false},
        {"/home/o/.cache.old", "/home/o/.cache", false},
        {"/home/o/Documents/a", "/home/o/.cache", false},
        {"/home/p/.cache/a", "/home/o/.cache", false},
        {"", "/home/o/.cache", false},
        {"/home/o/a", "", false},
        {"", "", false},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(isInsideUserCaches(row.file, row.caches), row.isInside)
            << row.file << " in " << row.caches;
    }
}

TEST(DiskAutopilotSafetyPolicy, CachesDoNotContainTheHomeDirectory) {
    struct Row {
        std::string caches;
        bool containsHome;
    };
    const Row rows[] = {{"/home/o/.cache", false},
                        {"/data/cache", false},
                        {"/home/o", true},
                        {"/home", true},
                        {"/", true},
                        {"/home/o2", false}};
    for (const Row& row : rows) {
        EXPECT_EQ(containsHome(row.caches, "/home/o"), row.containsHome) << row.caches;
    }
}

TEST(DiskAutopilotSafetyPolicy, CachesOverlapWithWhatTheyAreContainOrAreInside) {
    struct Row {
        std::string caches;
        bool overlaps;
    };
    const Row rows[] = {
        {"/home/o/.cache", false},     {"/home/o/Documents", true}, {"/home/o/Documents/x", true},
        {"/home/o/Documents2", false}, {"/home/o", true},           {"/data/cache", false}};
    for (const Row& row : rows) {
        EXPECT_EQ(overlaps(row.caches, "/home/o/Documents"), row.overlaps) << row.caches;
    }
}

TEST(DiskAutopilotSafetyPolicy, TheByteCapIsHeldToItsLimits) {
    EXPECT_EQ(byteCap(2.0), 2 * gigabyte);
    EXPECT_EQ(byteCap(0.5), gigabyte / 2);
    EXPECT_EQ(byteCap(0.1), 107374182);
    EXPECT_EQ(byteCap(10.0), 2 * gigabyte);
    EXPECT_EQ(byteCap(0.0), 107374182);
    EXPECT_EQ(byteCap(std::nan("")), 2 * gigabyte);
    EXPECT_EQ(byteCap(std::numeric_limits<double>::infinity()), 2 * gigabyte);
}

TEST(DiskAutopilotSafetyPolicy, TheDateMustBeStrictlyBeforeTheCutOff) {
    const Date now{800000000.0};
    const Date cutOff = cutOffDate(now, 30.0);
    EXPECT_EQ(secondsBetween(cutOff, now), 30 * 86400.0);
    EXPECT_EQ(cutOffDate(now, 1.0), cutOffDate(now, 7.0));
    EXPECT_EQ(cutOffDate(now, 1000.0), cutOffDate(now, 365.0));
    struct Row {
        std::optional<double> modifiedAt;
        std::int64_t bytes;
        bool isEligible;
    };
    const double at = cutOff.unixSeconds();
    const Row rows[] = {{at - 1.0, 1, true},
                        {at, 1, false},
                        {at + 1.0, 1, false},
                        {at + 1e12, 1, false},
                        {std::nullopt, 1, false},
                        {std::nan(""), 1, false},
                        {at - 1.0, 0, false},
                        {at - 1.0, -1, false},
                        {0.0, std::numeric_limits<std::int64_t>::max(), true}};
    for (const Row& row : rows) {
        EXPECT_EQ(isEligible({"/f", row.bytes, row.modifiedAt, {}}, cutOff), row.isEligible)
            << row.modifiedAt.value_or(-1.0) << ' ' << row.bytes;
    }
}

TEST(DiskAutopilotSafetyPolicy, AFileOfExactlyTheCapFits) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    EXPECT_TRUE(fits(0, gigabyte, gigabyte));
    EXPECT_FALSE(fits(0, gigabyte + 1, gigabyte));
    EXPECT_FALSE(fits(1, gigabyte, gigabyte));
    EXPECT_TRUE(fits(1, gigabyte - 1, gigabyte));
    EXPECT_FALSE(fits(1, most, gigabyte));
    EXPECT_FALSE(fits(most, 1, gigabyte));
    EXPECT_FALSE(fits(gigabyte, 1, gigabyte));
}

TEST(DiskAutopilotSafetyPolicy, APlanLivesForLessThanHalfAnHour) {
    const Date made{800000000.0};
    struct Row {
        double age;
        bool isExpired;
    };
    const Row rows[] = {{0.0, false},    {1799.0, false}, {1799.99, false}, {1800.0, true},
                        {86400.0, true}, {-1.0, false},   {-1800.0, true},  {std::nan(""), true}};
    for (const Row& row : rows) {
        EXPECT_EQ(isExpired(made, {made.secondsSinceReference + row.age}), row.isExpired)
            << row.age;
    }
}

TEST(DiskAutopilotSafetyPolicy, APlanWithoutSomeFilesIsAsMuchSmaller) {
    const CleanupCandidate a{"/a", {1, 1}, 5};
    const CleanupCandidate b{"/b", {1, 2}, 7};
    const DiskCleanupPlan rest = planWithout(
        {.urls = {a, b}, .bytes = 12, .createdAt = {}, .keptFolder = {}}, {{1, 1}, {2, 2}});
    EXPECT_EQ(rest.urls, std::vector{b});
    EXPECT_EQ(rest.bytes, 7);
}

}  // namespace
}  // namespace tallowcrest::DiskAutopilotSafetyPolicy

#include "monitor/load_rules.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/numbers.h"

namespace tallowcrest::load_rules {
namespace {

SystemSnapshot load(double cpu, double pressure) {
    SystemSnapshot snapshot;
    snapshot.cpuPercent = cpu;
    snapshot.memory.pressure = pressure;
    return snapshot;
}

std::vector<HistoryPoint> points(std::size_t count, double memory) {
    std::vector<HistoryPoint> history(count);
    for (HistoryPoint& point : history) {
        point.memory = memory;
    }
    return history;
}

TEST(LoadRules, ALoadAtTheThresholdIsOver) {
    EXPECT_TRUE(isOverThreshold(load(82.0, 0.0), 82.0));
    EXPECT_TRUE(isOverThreshold(load(0.0, 82.0), 82.0));
    EXPECT_TRUE(isOverThreshold(load(99.0, 99.0), 82.0));
    EXPECT_FALSE(isOverThreshold(load(81.999, 81.999), 82.0));
}

TEST(LoadRules, NaNIsNotOver) {
    EXPECT_FALSE(isOverThreshold(load(nan, nan), 82.0));
}

TEST(LoadRules, AWarningMayFollowExactlyAtItsDistance) {
    EXPECT_TRUE(mayWarn(std::nullopt, Date{0.0}));
    EXPECT_FALSE(mayWarn(Date{1000.0}, Date{1179.0}));
    EXPECT_FALSE(mayWarn(Date{1000.0}, Date{1179.999}));
    EXPECT_TRUE(mayWarn(Date{1000.0}, Date{1180.0}));
}

TEST(LoadRules, ARuleMayActAgainAfterMoreThanItsDistance) {
    for (const double distance : {autoPurgeDistance, autoRemoteScanDistance, diskCheckDistance}) {
        EXPECT_TRUE(mayAct(std::nullopt, Date{0.0}, distance));
        EXPECT_FALSE(mayAct(Date{1000.0}, Date{1000.0 + distance}, distance));
        EXPECT_TRUE(mayAct(Date{1000.0}, Date{1000.0 + distance + 0.001}, distance));
    }
    EXPECT_EQ(autoPurgeDistance, 900.0);
    EXPECT_EQ(autoRemoteScanDistance, 900.0);
    EXPECT_EQ(diskCheckDistance, 3600.0);
}

TEST(LoadRules, TheMemoryAverageNeedsFifteenPoints) {
    EXPECT_EQ(sustainedMemoryAverage({}), 0.0);
    EXPECT_EQ(sustainedMemoryAverage(points(14, 95.0)), 0.0);
    EXPECT_EQ(sustainedMemoryAverage(points(15, 95.0)), 95.0);
}

TEST(LoadRules, TheMemoryAverageCoversTheNewestThirtyPoints) {
    std::vector<HistoryPoint> history = points(150, 10.0);
    for (const HistoryPoint& point : points(30, 90.0)) {
        history.push_back(point);
    }
    EXPECT_EQ(sustainedMemoryAverage(history), 90.0);
    history.back().memory = 60.0;
    EXPECT_DOUBLE_EQ(sustainedMemoryAverage(history), 89.0);
}

TEST(LoadRules, TheWarningRoundsToWholeNumbers) {
    SystemSnapshot snapshot = load(82.5, 59.4);
    snapshot.topProcesses.resize(1);
    snapshot.topProcesses.front().command = "/usr/bin/photo-indexer";
    EXPECT_EQ(warningDetail(snapshot),
              "High load detected. CPU 83%, memory 59%. Top process: photo-indexer.");
    snapshot.topProcesses.clear();
    EXPECT_EQ(warningDetail(snapshot),
              "High load detected. CPU 83%, memory 59%. Top process: Unknown.");
}

TEST(LoadRules, TheThresholdIsTruncated) {
    EXPECT_EQ(autoSelectDetail("Firefox", 82.9),
              "Selected Firefox because system load crossed 82%.");
    EXPECT_EQ(autoSelectDetail("Firefox", 95.0),
              "Selected Firefox because system load crossed 95%.");
}

}  // namespace
}  // namespace tallowcrest::load_rules

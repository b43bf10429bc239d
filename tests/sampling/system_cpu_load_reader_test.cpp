#include "sampling/system_cpu_load_reader.h"

#include <deque>
#include <limits>
#include <optional>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

/// Gives the readings in order, then repeats the last one.
class FakeTickSource final : public CPUTickSource {
public:
    explicit FakeTickSource(std::deque<std::optional<CPUTicks>> readings)
        : readings_(std::move(readings)) {}

    std::optional<CPUTicks> readTicks() override {
        const auto reading = readings_.front();
        if (readings_.size() > 1) {
            readings_.pop_front();
        }
        return reading;
    }

private:
    std::deque<std::optional<CPUTicks>> readings_;
};

TEST(BusyPercentTest, IsTheShareOfBusyTicks) {
    const CPUTicks before{100, 200, 300, 400};
    const struct {
        CPUTicks after;
        std::optional<double> percent;
    } cases[] = {
        {{110, 200, 330, 400}, 25.0},        {{100, 210, 330, 400}, 25.0},
        {{100, 200, 330, 410}, 25.0},        {{110, 220, 300, 430}, 100.0},
        {{100, 200, 350, 400}, 0.0},         {{100, 200, 300, 400}, std::nullopt},
        {{90, 200, 300, 400}, std::nullopt}, {{0, 0, 0, 0}, std::nullopt},
        {{90, 230, 310, 400}, 75.0},         {{110, 200, 200, 400}, 100.0},
    };
    for (const auto& [after, percent] : cases) {
        EXPECT_EQ(busyPercent(before, after), percent);
    }
}

TEST(BusyPercentTest, HandlesTheLargestCounters) {
    constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    EXPECT_DOUBLE_EQ(*busyPercent({}, {largest, largest, largest, largest}), 75.0);
}

TEST(SystemCPULoadReaderTest, FirstCallGivesTheLoadSinceConstruction) {
    FakeTickSource source({CPUTicks{0, 0, 0, 0}, CPUTicks{30, 0, 70, 0}, CPUTicks{30, 0, 80, 0}});
    SystemCPULoadReader reader(source);

    EXPECT_EQ(reader.readCPUPercent(), 30.0);
    EXPECT_EQ(reader.readCPUPercent(), 0.0);
}

TEST(SystemCPULoadReaderTest, FirstCallAfterAFailedPrimingGivesNothing) {
    FakeTickSource source({std::nullopt, CPUTicks{10, 0, 90, 0}, CPUTicks{20, 0, 100, 0}});
    SystemCPULoadReader reader(source);

    EXPECT_EQ(reader.readCPUPercent(), std::nullopt);
    EXPECT_EQ(reader.readCPUPercent(), 50.0);
}

TEST(SystemCPULoadReaderTest, AFailedReadKeepsThePreviousCounters) {
    FakeTickSource source(
        {CPUTicks{0, 0, 0, 0}, std::nullopt, std::nullopt, CPUTicks{40, 0, 60, 0}});
    SystemCPULoadReader reader(source);

    EXPECT_EQ(reader.readCPUPercent(), std::nullopt);
    EXPECT_EQ(reader.readCPUPercent(), std::nullopt);
    EXPECT_EQ(reader.readCPUPercent(), 40.0);
}

TEST(SystemCPULoadReaderTest, ADecreasedCounterCountsAsUnchanged) {
    FakeTickSource source(
        {CPUTicks{4294967290, 0, 0, 0}, CPUTicks{5, 50, 50, 0}, CPUTicks{15, 50, 60, 0}});
    SystemCPULoadReader reader(source);

    EXPECT_EQ(reader.readCPUPercent(), 50.0);
    EXPECT_EQ(reader.readCPUPercent(), 50.0);
}

TEST(SystemCPULoadReaderTest, NoTickInBetweenGivesNothing) {
    FakeTickSource source({CPUTicks{10, 10, 10, 10}});
    SystemCPULoadReader reader(source);

    EXPECT_EQ(reader.readCPUPercent(), std::nullopt);
}

/// Advances with each reading, from any thread; a quarter of the time is busy.
class RunningTickSource final : public CPUTickSource {
public:
    std::optional<CPUTicks> readTicks() override {
        const std::lock_guard guard(lock_);
        ticks_.user += 1;
        ticks_.idle += 3;
        return ticks_;
    }

private:
    std::mutex lock_;
    CPUTicks ticks_;
};

TEST(SystemCPULoadReaderTest, OverlappingCallsKeepTheFourCountersTogether) {
    RunningTickSource source;
    SystemCPULoadReader reader(source);
    constexpr int callsPerThread = 2000;

    std::vector<std::vector<double>> loads(4);
    std::vector<std::jthread> threads;
    for (auto& seen : loads) {
        threads.emplace_back([&reader, &seen] {
            for (int call = 0; call < callsPerThread; ++call) {
                if (const auto load = reader.readCPUPercent()) {
                    seen.push_back(*load);
                }
            }
        });
    }
    threads.clear();

    std::size_t count = 0;
    for (const auto& seen : loads) {
        count += seen.size();
        for (const double load : seen) {
            EXPECT_DOUBLE_EQ(load, 25.0);
        }
    }
    // A call that another one overtook before the lock sees decreased counters.
    EXPECT_GT(count, 0U);
}

}  // namespace
}  // namespace tallowcrest

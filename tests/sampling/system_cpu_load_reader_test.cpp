#include "sampling/system_cpu_load_reader.h"

#include <chrono>
#include <limits>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/fake_readers.h"

namespace tallowcrest {
namespace {

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

TEST(SystemCPULoadReaderTest, EachCallGivesTheLoadSinceTheLastSuccessfulReading) {
    using Ticks = std::optional<CPUTicks>;
    using Load = std::optional<double>;
    constexpr Load none;
    struct Case {
        const char* name;
        Ticks atConstruction;
        std::vector<std::pair<Ticks, Load>> readings;  ///< and the load that each gives
    };
    const Case cases[] = {
        {"since construction",
         CPUTicks{0, 0, 0, 0},
         {{CPUTicks{30, 0, 70, 0}, 30.0}, {CPUTicks{30, 0, 80, 0}, 0.0}}},
        {"the read at construction failed",
         std::nullopt,
         {{CPUTicks{10, 0, 90, 0}, none}, {CPUTicks{20, 0, 100, 0}, 50.0}}},
        {"failed reads keep the previous counters",
         CPUTicks{0, 0, 0, 0},
         {{std::nullopt, none}, {std::nullopt, none}, {CPUTicks{40, 0, 60, 0}, 40.0}}},
        {"a decreased counter counts as unchanged",
         CPUTicks{4294967290, 0, 0, 0},
         {{CPUTicks{5, 50, 50, 0}, 50.0}, {CPUTicks{15, 50, 60, 0}, 50.0}}},
        {"no tick in between", CPUTicks{10, 10, 10, 10}, {{CPUTicks{10, 10, 10, 10}, none}}},
    };
    for (const Case& each : cases) {
        FakeTickSource source;
        source.ticks = each.atConstruction;
        SystemCPULoadReader reader(source);
        for (const auto& [ticks, load] : each.readings) {
            source.ticks = ticks;
            EXPECT_EQ(reader.readCPUPercent(), load) << each.name;
        }
    }
}

TEST(SystemCPULoadReaderTest, AShortIntervalIsMeasuredFromTheReadingBeforeIt) {
    using std::chrono_literals::operator""ms;
    FakeTickSource source;
    source.interval = {};
    SystemCPULoadReader reader(source);
    const struct {
        std::chrono::milliseconds passed;
        std::uint64_t user;
        std::uint64_t idle;
        std::optional<double> load;
    } readings[] = {
        {10ms, 0, 0, std::nullopt},  // no tick yet
        {10ms, 1, 1, 50.0},          // since construction
        {3980ms, 199, 599, 25.0},    // since construction too
        {199ms, 40, 0, 28.6},        // since construction
        {1ms, 0, 0, 100.0},          // 200 ms: since the reading before
        {1ms, 0, 0, 100.0},          // since the same one
        {399ms, 0, 80, 0.0},
    };
    for (const auto& each : readings) {
        source.now += each.passed;
        source.ticks->user += each.user;
        source.ticks->idle += each.idle;
        const std::optional<double> load = reader.readCPUPercent();
        ASSERT_EQ(load.has_value(), each.load.has_value());
        EXPECT_NEAR(load.value_or(0.0), each.load.value_or(0.0), 0.1);
    }
}

/// Advances with each reading, from any thread; a quarter of the time is busy.
class RunningTickSource final : public CPUTickSource {
public:
    std::optional<CPUTickReading> readTicks() override {
        const std::lock_guard guard(lock_);
        ticks_.user += 1;
        ticks_.idle += 3;
        now_ += SystemCPULoadReader::shortestInterval;
        return CPUTickReading{ticks_, now_};
    }

private:
    std::mutex lock_;
    CPUTicks ticks_;
    std::chrono::nanoseconds now_{};
};

TEST(SystemCPULoadReaderTest, OverlappingCallsKeepTheFourCountersTogether) {
    RunningTickSource running;
    SystemCPULoadReader shared(running);
    constexpr int callsPerThread = 2000;

    std::vector<std::vector<double>> loads(4);
    std::vector<std::jthread> threads;
    for (auto& seen : loads) {
        threads.emplace_back([&shared, &seen] {
            for (int call = 0; call < callsPerThread; ++call) {
                if (const auto load = shared.readCPUPercent()) {
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

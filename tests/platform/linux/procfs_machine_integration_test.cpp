#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "platform/base/home_volume.h"
#include "platform/linux/proc_stat_tick_source.h"
#include "platform/linux/procfs_metrics_reader.h"
#include "platform/linux/procfs_process_table.h"
#include "sampling/system_cpu_load_reader.h"
#include "tests/platform/support/test_children.h"
#include "tests/support/eventually.h"
#include "tests/support/run_program.h"

/// The readers of figures of the whole machine, checked against other sources.
namespace tallowcrest {
namespace {

using namespace std::chrono_literals;

/// The busy and total ticks, computed in another way than by the reader.
std::array<double, 2> busyAndTotal() {
    std::ifstream file("/proc/stat");
    std::string label;
    std::array<double, 8> counters{};
    file >> label;
    for (double& counter : counters) {
        file >> counter;
    }
    double total = 0.0;
    for (const double counter : counters) {
        total += counter;
    }
    return {total - counters[3] - counters[4], total};
}

TEST(ProcfsMachineTest, WholeMachineLoad) {
    // One core is kept busy, so that the load is not close to 0.
    const TestChild child([] { spin(); });
    ProcStatTickSource source;
    SystemCPULoadReader reader(source);
    const auto before = busyAndTotal();
    std::this_thread::sleep_for(1s);
    const auto load = reader.readCPUPercent();
    const auto after = busyAndTotal();

    ASSERT_TRUE(load);
    ASSERT_GT(after[1], before[1]);
    EXPECT_NEAR(*load, (after[0] - before[0]) / (after[1] - before[1]) * 100.0, 3.0);
    EXPECT_GT(*load, 0.0);
}

double memoryInfoBytes(const std::string& key) {
    std::ifstream file("/proc/meminfo");
    std::string word;
    double kibibytes = 0.0;
    std::string rest;
    while (file >> word >> kibibytes && std::getline(file, rest)) {
        if (word == key + ':') {
            return kibibytes * 1024.0;
        }
    }
    return 0.0;
}

TEST(ProcfsMachineTest, FreeMemoryIsWhatIsAvailable) {
    ProcfsMetricsReader reader;
    // Other programs allocate and free memory between the two readings.
    EXPECT_TRUE(eventually([&] {
        const MemorySnapshot memory = reader.readMemory();
        const double availableGB =
            std::max(memoryInfoBytes("MemAvailable"), memoryInfoBytes("MemFree")) / 1073741824.0;
        return std::abs(memory.freeGB - availableGB) <= availableGB * 0.01;
    }));
    const MemorySnapshot memory = reader.readMemory();
    EXPECT_DOUBLE_EQ(memory.totalGB, memoryInfoBytes("MemTotal") / 1073741824.0);
    EXPECT_NEAR(memory.totalGB * 1073741824.0, ProcfsMachine::current().physicalBytes, 4096.0);
    EXPECT_DOUBLE_EQ(memory.usedGB, std::max(memory.totalGB - memory.freeGB, 0.0));
    EXPECT_GT(memory.wiredGB, 0.0);
    EXPECT_GT(memory.pressure, 0.0);
    EXPECT_LE(memory.pressure, 100.0);
}

TEST(ProcfsMachineTest, PressureText) {
    ProcfsMetricsReader reader;
    const std::string text = reader.readPressureText();
    if (std::ifstream("/proc/pressure/memory").get() == 's') {
        EXPECT_TRUE(text.starts_with("some avg10=")) << text;
        EXPECT_NE(text.find("\nfull avg10="), std::string::npos) << text;
        EXPECT_FALSE(text.ends_with('\n'));
    } else {
        EXPECT_EQ(text, "Memory pressure unavailable");
    }
}

TEST(ProcfsMachineTest, DiskAgreesWithDF) {
    const char* home = std::getenv("HOME");
    ASSERT_NE(home, nullptr);
    PosixHomeVolume volume(home);
    EXPECT_TRUE(eventually([&] {
        std::istringstream output(shellOutput("df -kP \"$HOME\" | tail -n 1"));
        std::string device;
        double totalKibibytes = 0.0;
        double usedKibibytes = 0.0;
        double freeKibibytes = 0.0;
        output >> device >> totalKibibytes >> usedKibibytes >> freeKibibytes;
        const DiskSnapshot disk = volume.readDiskSnapshot();
        EXPECT_GT(totalKibibytes, 0.0);
        EXPECT_NEAR(disk.totalGB, totalKibibytes / 1048576.0, 1e-5);
        return std::abs(disk.freeGB - freeKibibytes / 1048576.0) <= 0.01;
    }));
}

}  // namespace
}  // namespace tallowcrest

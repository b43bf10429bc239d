#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/procfs_process_table.h"
#include "tests/support/each_of.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {

/// One process of a fake tree, by default an ordinary sleeping one.
struct FakeProcess {
    std::string name = "worker";
    char state = 'S';
    std::uint64_t flags = 4194560;
    std::uint64_t userTicks = 0;
    std::uint64_t systemTicks = 0;
    std::uint64_t startTicks = 1000;
    std::uint64_t residentPages = 256;
    std::uint64_t startCode = 94208000000000;
    std::uint64_t startStack = 140720000000000;

    std::string statText(std::int64_t pid) const;
};

/// A temporary directory in the form of /proc, with manual clocks. The machine has 4096-byte pages,
/// 100 ticks a second and 1 GB of memory.
class FakeProcTree {
public:
    const std::filesystem::path& root() const { return folder_.path(); }
    ProcfsMachine machine() const;
    /// Without CPU clocks of processes.
    ProcfsClocks clocks();
    /// With the CPU clocks of the processes in `processTimes`.
    ProcfsClocks clocksWithProcessTimes();

    /// Writes the process's `stat` file in place, so that open descriptors read the new content.
    void put(std::int64_t pid, const FakeProcess& process);
    void putStatText(std::int64_t pid, const std::string& text);
    void putExecutable(std::int64_t pid, const std::string& target);
    void putCommandLine(std::int64_t pid, const std::string& arguments);
    void putFile(const std::string& path, const std::string& text);
    void remove(std::int64_t pid);
    /// Sets the last assigned pid.
    void putNewest(std::int64_t pid);

    void advance(std::chrono::nanoseconds duration) {
        monotonic += duration;
        sinceBoot += duration;
    }

    std::chrono::nanoseconds monotonic = std::chrono::seconds(500);
    std::chrono::nanoseconds sinceBoot = std::chrono::seconds(1000);
    std::map<std::int64_t, std::chrono::nanoseconds> processTimes;
    /// How often each process's clock was read.
    std::map<std::int64_t, int> clockReadings;

private:
    TemporaryFolder folder_;
};

/// A process table over a fake tree.
class ProcfsProcessTableTest : public testing::Test {
protected:
    /// The only row of the table.
    ProcessSample onlyRow() {
        const auto rows = table.readProcesses();
        EXPECT_EQ(rows.size(), 1U);
        return rows.empty() ? ProcessSample{} : rows.front();
    }

    std::vector<std::int64_t> pids() { return eachOf(table.readProcesses(), &ProcessSample::pid); }

    FakeProcTree tree;
    ProcfsProcessTable table{tree.machine(), tree.clocks()};
};

}  // namespace tallowcrest

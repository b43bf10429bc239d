#include "platform/linux/procfs_process_table.h"

#include <atomic>
#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/linux/fake_proc_tree.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(ProcfsProcessTableTest, FillsEveryField) {
    tree.put(812,
             {.userTicks = 300, .systemTicks = 150, .startTicks = 91000, .residentPages = 51200});
    tree.putExecutable(812, "/opt/web browser/web");

    const ProcessSample row = onlyRow();

    EXPECT_EQ(row.pid, 812);
    // 4.5 seconds of CPU time in a lifetime of 90.
    EXPECT_DOUBLE_EQ(row.cpu, 5.0);
    EXPECT_DOUBLE_EQ(row.rssMB, 200.0);
    EXPECT_DOUBLE_EQ(row.memoryPercent, 200.0 / 1024.0 * 100.0);
    EXPECT_EQ(row.command, "/opt/web browser/web");
    EXPECT_EQ(row.arguments, row.command);
}

TEST_F(ProcfsProcessTableTest, RowsAscendWhateverTheOrderOfTheListing) {
    for (const std::int64_t pid : {70000, 9, 1, 812, 10, 100}) {
        tree.put(pid, {});
    }
    EXPECT_THAT(pids(), ElementsAre(1, 9, 10, 100, 812, 70000));
}

TEST_F(ProcfsProcessTableTest, OnlyNumbersNameProcesses) {
    tree.put(812, {});
    const std::string stat = FakeProcess{}.statText(5);
    for (const char* name : {"self", "5x", "05", "+5", "-5", "0", "99999999999", "irq", " 5"}) {
        tree.putFile(std::string(name) + "/stat", stat);
    }
    EXPECT_THAT(pids(), ElementsAre(812));
}

TEST_F(ProcfsProcessTableTest, LoadIsMeasuredSinceThePreviousReading) {
    tree.put(812, {.userTicks = 100000});
    onlyRow();
    tree.advance(4s);
    tree.put(812, {.userTicks = 100100, .systemTicks = 50});
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 37.5);

    tree.advance(2s);
    tree.put(812, {.userTicks = 100500, .systemTicks = 50});
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 200.0);

    tree.advance(2s);
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 0.0);
}

TEST_F(ProcfsProcessTableTest, SuspensionCountsForTheLifetimeButNotForAnInterval) {
    tree.put(812, {.userTicks = 100, .startTicks = 90000});
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 1.0);

    tree.advance(4s);
    tree.sinceBoot += 10000s;
    tree.put(812, {.userTicks = 300, .startTicks = 90000});
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 50.0);
}

TEST_F(ProcfsProcessTableTest, ReadingsInQuickSuccessionRepeatTheFigure) {
    tree.put(812, {.userTicks = 0});
    onlyRow();
    tree.advance(4s);
    tree.put(812, {.userTicks = 200});
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 50.0);

    tree.advance(199ms);
    tree.put(812, {.userTicks = 219, .residentPages = 512});
    const ProcessSample early = onlyRow();
    EXPECT_DOUBLE_EQ(early.cpu, 50.0);
    EXPECT_DOUBLE_EQ(early.rssMB, 2.0);

    // Still measured since the reading before the early one.
    tree.advance(1ms);
    tree.put(812, {.userTicks = 220});
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 100.0);
}

TEST_F(ProcfsProcessTableTest, LoadIsNeverNegativeOrInfinite) {
    constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    // Younger than one tick, started in the future, and counters that overflow when added.
    tree.put(1, {.userTicks = 5, .startTicks = 100000});
    tree.put(2, {.userTicks = 5, .startTicks = largest});
    tree.put(3, {.userTicks = largest, .systemTicks = largest, .residentPages = largest});

    auto rows = table.readProcesses();
    ASSERT_EQ(rows.size(), 3U);
    // The lifetime counts as at least one second.
    EXPECT_DOUBLE_EQ(rows[0].cpu, 5.0);
    EXPECT_DOUBLE_EQ(rows[1].cpu, 5.0);
    EXPECT_TRUE(std::isfinite(rows[2].cpu));
    EXPECT_TRUE(std::isfinite(rows[2].rssMB));

    // Counters that run backwards.
    tree.advance(4s);
    tree.put(3, {.userTicks = 10});
    rows = table.readProcesses();
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[2].cpu, 0.0);
}

TEST_F(ProcfsProcessTableTest, UnknownPhysicalMemoryGivesZeroPercent) {
    ProcfsMachine machine = tree.machine();
    machine.physicalBytes = 0.0;
    tree.put(812, {});
    ProcfsProcessTable withoutTotal(machine, tree.clocks());

    const auto rows = withoutTotal.readProcesses();

    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].memoryPercent, 0.0);
    EXPECT_DOUBLE_EQ(rows[0].rssMB, 1.0);
}

TEST_F(ProcfsProcessTableTest, ARowThatCannotBeReadIsLeftOutAndTheOthersRemain) {
    tree.put(1, {});
    tree.putStatText(2, "");
    tree.putStatText(3, "3 (cut) S 1 2 3");
    tree.putStatText(4, "not a stat file at all\n");
    std::filesystem::create_directory(tree.root() / "5");
    std::filesystem::create_directories(tree.root() / "6" / "stat");
    std::filesystem::create_directory(tree.root() / "7");
    std::filesystem::create_symlink("stat", tree.root() / "7" / "stat");
    tree.putFile("8", "a file where a directory should be");
    tree.put(9, {});

    EXPECT_THAT(pids(), ElementsAre(1, 9));

    tree.putStatText(3, FakeProcess{}.statText(3));
    EXPECT_THAT(pids(), ElementsAre(1, 3, 9));
}

TEST_F(ProcfsProcessTableTest, ProcessesComeAndGo) {
    tree.put(10, {});
    tree.put(20, {});
    tree.put(30, {});
    EXPECT_THAT(pids(), ElementsAre(10, 20, 30));

    tree.remove(20);
    tree.put(5, {});
    tree.put(40, {});
    EXPECT_THAT(pids(), ElementsAre(5, 10, 30, 40));

    for (const std::int64_t pid : {5, 10, 30, 40}) {
        tree.remove(pid);
    }
    EXPECT_THAT(pids(), IsEmpty());
}

TEST_F(ProcfsProcessTableTest, AProcessThatEndsAfterTheListingIsLeftOut) {
    tree.put(10, {});
    tree.put(20, {});
    EXPECT_THAT(pids(), ElementsAre(10, 20));

    // Its directory is still listed, but its file is empty.
    tree.putStatText(10, "");
    EXPECT_THAT(pids(), ElementsAre(20));
    std::filesystem::remove(tree.root() / "10" / "stat");
    EXPECT_THAT(pids(), ElementsAre(20));
}

TEST_F(ProcfsProcessTableTest, AReusedPIDIsANewProcess) {
    tree.put(812, {.name = "old", .userTicks = 90000, .startTicks = 1000});
    tree.putExecutable(812, "/usr/bin/old");
    EXPECT_EQ(onlyRow().command, "/usr/bin/old");

    // One second old, with a quarter of a second of CPU time; otherwise like its predecessor.
    tree.advance(4s);
    tree.put(812, {.name = "old", .userTicks = 25, .startTicks = 100300});
    tree.putExecutable(812, "/usr/bin/new");
    const ProcessSample row = onlyRow();
    EXPECT_DOUBLE_EQ(row.cpu, 25.0);
    EXPECT_EQ(row.command, "/usr/bin/new");
}

TEST_F(ProcfsProcessTableTest, AMissingDirectoryGivesNoRows) {
    ProcfsMachine machine = tree.machine();
    machine.procRoot = tree.root() / "mounted later";
    ProcfsProcessTable late(machine, tree.clocks());
    EXPECT_THAT(late.readProcesses(), IsEmpty());

    tree.putFile("mounted later/1/stat", FakeProcess{}.statText(1));
    EXPECT_EQ(late.readProcesses().size(), 1U);
}

TEST_F(ProcfsProcessTableTest, CallsMayOverlap) {
    for (std::int64_t pid = 1; pid <= 50; ++pid) {
        tree.put(pid, {});
    }
    std::atomic<int> wholeTables = 0;
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&] {
                for (int call = 0; call < 50; ++call) {
                    wholeTables += table.readProcesses().size() == 50 ? 1 : 0;
                }
            });
        }
    }
    EXPECT_EQ(wholeTables, 200);
}

}  // namespace
}  // namespace tallowcrest

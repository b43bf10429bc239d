#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/procfs_process_table.h"
#include "tests/platform/linux/fake_proc_tree.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// A table with CPU clocks of processes. An idle process is recognised by changes that the table
/// does not see.
class ProcfsProcessClockTest : public testing::Test {
protected:
    ProcfsProcessClockTest() { tree.putNewest(100000); }

    void put(std::int64_t pid, const FakeProcess& process, std::chrono::nanoseconds time) {
        tree.put(pid, process);
        tree.processTimes[pid] = time;
    }

    void breakStat(std::int64_t pid) { tree.putStatText(pid, "not a stat file at all\n"); }

    void remove(std::int64_t pid) {
        tree.remove(pid);
        tree.processTimes.erase(pid);
    }

    /// The rows of the next sample, 4 seconds after the previous one.
    std::vector<ProcessSample> sample(std::chrono::nanoseconds interval = 4s) {
        tree.advance(interval);
        return table.readProcesses();
    }

    std::vector<std::int64_t> pids() { return eachOf(sample(), &ProcessSample::pid); }

    /// Adds ordinary processes with these PIDs, then takes the samples that list all processes.
    void settleWith(const std::vector<std::int64_t>& numbers) {
        for (const std::int64_t pid : numbers) {
            put(pid, {}, 1s);
        }
        for (int settling = 0; settling < 3; ++settling) {
            EXPECT_EQ(pids(), numbers);
        }
    }

    ProcessSample onlyRow(std::chrono::nanoseconds interval = 4s) {
        const auto rows = sample(interval);
        EXPECT_EQ(rows.size(), 1U);
        return rows.empty() ? ProcessSample{} : rows.front();
    }

    /// The pid of a process that is read in full in the 16th sample, the 32nd and so on.
    static constexpr std::int64_t sixteenth = 816;
    static constexpr int period = static_cast<int>(ProcfsProcessTable::samplesPerFullReading);

    FakeProcTree tree;
    ProcfsProcessTable table{tree.machine(), tree.clocksWithProcessTimes()};
};

TEST_F(ProcfsProcessClockTest, ForAnIdleProcessOnlyItsClockIsRead) {
    put(sixteenth, {.userTicks = 500}, 5s);
    tree.putExecutable(sixteenth, "/usr/bin/worker");
    onlyRow();
    breakStat(sixteenth);
    for (int number = 2; number < period; ++number) {
        tree.clockReadings.clear();
        const ProcessSample row = onlyRow();
        EXPECT_EQ(row.cpu, 0.0) << number;
        EXPECT_EQ(row.rssMB, 1.0);
        EXPECT_EQ(row.command, "/usr/bin/worker");
        EXPECT_EQ(tree.clockReadings[sixteenth], 1);
    }
    EXPECT_THAT(sample(), IsEmpty()) << "now it is read in full";
    EXPECT_THAT(sample(), IsEmpty()) << "and again until that succeeds";
    put(sixteenth, {.userTicks = 500, .residentPages = 512}, 5s);
    EXPECT_EQ(onlyRow().rssMB, 2.0);
    breakStat(sixteenth);
    EXPECT_EQ(onlyRow().rssMB, 2.0);
}

TEST_F(ProcfsProcessClockTest, FullReadingsAreSpreadEvenly) {
    constexpr std::int64_t count = 4 * period;
    for (std::int64_t pid = 1; pid <= count; ++pid) {
        put(pid, {}, 1s);
    }
    sample();
    for (std::int64_t pid = 1; pid <= count; ++pid) {
        put(pid, {.residentPages = 512}, 1s);
    }
    for (int number = 1; number <= period; ++number) {
        const auto rows = sample();
        EXPECT_EQ(std::count_if(rows.begin(), rows.end(),
                                [](const ProcessSample& row) { return row.rssMB == 2.0; }),
                  count / period * number);
    }
}

TEST_F(ProcfsProcessClockTest, AProcessThatRanIsRead) {
    put(812, {}, 1s);
    put(813, {}, 1s);
    sample();
    put(812, {.residentPages = 512}, 1s + 1ns);
    put(813, {.residentPages = 512}, 1s);
    const auto rows = sample();
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].rssMB, 2.0);
    EXPECT_EQ(rows[1].rssMB, 1.0);
}

TEST_F(ProcfsProcessClockTest, LoadIsExactToTheNanosecond) {
    put(812, {.userTicks = 100}, 1s);
    onlyRow();
    tree.processTimes[812] += 1234567891ns;
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 1.234567891 / 4.0 * 100.0);
    tree.processTimes[812] += 1us;
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 1e-6 / 4.0 * 100.0) << "far less than a tick";
    tree.processTimes[812] += 16s;
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 400.0);
    EXPECT_EQ(onlyRow().cpu, 0.0);
    tree.processTimes[812] += 2s;
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 50.0) << "also since an idle reading";
    tree.processTimes[812] -= 1s;
    EXPECT_EQ(onlyRow().cpu, 0.0) << "a clock that runs backwards counts nothing";
    tree.processTimes[812] += 2s;
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 50.0);
}

TEST_F(ProcfsProcessClockTest, TheFirstReadingAveragesOverTheWholeLifetime) {
    tree.advance(-4s);
    put(812, {.userTicks = 300, .systemTicks = 150, .startTicks = 91000}, 4500ms);
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 5.0);
    EXPECT_EQ(onlyRow().cpu, 0.0);
}

TEST_F(ProcfsProcessClockTest, ReadingsInQuickSuccessionRepeatTheFigure) {
    put(812, {}, 1s);
    onlyRow();
    tree.processTimes[812] = 3s;
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 50.0);
    EXPECT_DOUBLE_EQ(onlyRow(100ms).cpu, 50.0) << "idle since, but the time is too short";
    tree.processTimes[812] = 3100ms;
    EXPECT_DOUBLE_EQ(onlyRow(99ms).cpu, 50.0);
    EXPECT_DOUBLE_EQ(onlyRow(1ms).cpu, 50.0) << "since the reading before the quick ones";
    EXPECT_EQ(onlyRow(199ms).cpu, 50.0);
    EXPECT_EQ(onlyRow(1ms).cpu, 0.0);
}

TEST_F(ProcfsProcessClockTest, AProcessWithoutAClockIsMeasuredInTicks) {
    tree.put(812, {.userTicks = 100});
    onlyRow();
    tree.put(812, {.userTicks = 300});
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 50.0);
    put(812, {.userTicks = 700}, 123s);
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 100.0) << "its clock is new, so there is no interval yet";
    tree.processTimes[812] += 1s;
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 25.0);
}

TEST_F(ProcfsProcessClockTest, AReusedPIDIsDetectedByItsClock) {
    put(812, {.userTicks = 90000, .startTicks = 1000}, 900s);
    tree.putExecutable(812, "/usr/bin/old");
    EXPECT_EQ(onlyRow().command, "/usr/bin/old");

    // One second old at the next sample, with a quarter of a second of CPU time.
    put(812, {.userTicks = 25, .startTicks = 100700}, 250ms);
    tree.putExecutable(812, "/usr/bin/new");
    const ProcessSample row = onlyRow();
    EXPECT_DOUBLE_EQ(row.cpu, 25.0);
    EXPECT_EQ(row.command, "/usr/bin/new");
}

TEST_F(ProcfsProcessClockTest, AnotherProgramIsDetectedWhenItRuns) {
    put(812, {.name = "shell"}, 1s);
    tree.putExecutable(812, "/bin/shell");
    EXPECT_EQ(onlyRow().command, "/bin/shell");
    put(812, {.name = "tool"}, 1001ms);
    tree.putExecutable(812, "/bin/tool");
    EXPECT_EQ(onlyRow().command, "/bin/tool");
}

TEST_F(ProcfsProcessClockTest, NewProcessesAreFoundWithoutAListing) {
    settleWith({812});
    put(100001, {}, 0s);
    tree.putNewest(100001);
    put(900, {}, 1s);
    EXPECT_THAT(pids(), ElementsAre(812, 100001)) << "900 was not given out lately";
    while (pids().size() < 3) {
    }
    EXPECT_THAT(pids(), ElementsAre(812, 900, 100001));
}

TEST_F(ProcfsProcessClockTest, TheClockOfAnEndedProcessIsNotReadAgain) {
    settleWith({812, 813});
    remove(813);
    EXPECT_THAT(pids(), ElementsAre(812));
    tree.clockReadings.clear();
    for (int number = 0; number < 2 * period; ++number) {
        EXPECT_THAT(pids(), ElementsAre(812));
    }
    EXPECT_EQ(tree.clockReadings[813], 0);
    EXPECT_EQ(tree.clockReadings[812], 2 * period);
}

TEST_F(ProcfsProcessClockTest, AThreadWithThePIDOfAnEndedProcessIsNotARow) {
    settleWith({812, 813});
    // A thread has no process clock, but a `stat` file under the same path.
    tree.processTimes.erase(813);
    EXPECT_THAT(pids(), ElementsAre(812));
    EXPECT_THAT(pids(), ElementsAre(812));
}

TEST_F(ProcfsProcessClockTest, ARowThatCannotBeReadIsTriedAgain) {
    settleWith({812, 813});
    breakStat(813);
    tree.processTimes[813] = 2s;
    EXPECT_THAT(pids(), ElementsAre(812));
    EXPECT_THAT(pids(), ElementsAre(812));
    put(813, {}, 2s);
    EXPECT_THAT(pids(), ElementsAre(812, 813));
}

TEST_F(ProcfsProcessClockTest, AProcessHiddenByTheFileSystemIsNotARow) {
    settleWith({812});
    tree.processTimes[100001] = 1s;
    tree.putNewest(100001);
    for (int number = 0; number < period; ++number) {
        EXPECT_THAT(pids(), ElementsAre(812));
    }
    tree.clockReadings.clear();
    EXPECT_THAT(pids(), ElementsAre(812));
    EXPECT_EQ(tree.clockReadings[100001], 0) << "a listing has cleared it away";
}

TEST_F(ProcfsProcessClockTest, ARemountedDirectoryIsReadAgain) {
    ProcfsMachine machine = tree.machine();
    machine.procRoot = tree.root() / "mount";
    const std::string stat = FakeProcess{}.statText(812);
    tree.putFile("mount/812/stat", stat);
    tree.processTimes[812] = 1s;
    ProcfsProcessTable remounted(machine, tree.clocksWithProcessTimes());
    EXPECT_EQ(remounted.readProcesses().size(), 1U);

    std::filesystem::remove_all(machine.procRoot);
    EXPECT_THAT(remounted.readProcesses(), IsEmpty());
    tree.putFile("mount/812/stat", stat);
    EXPECT_EQ(remounted.readProcesses().size(), 1U);
}

struct NumberingCase {
    const char* description;
    std::string status;
    bool isOurs;
};

TEST(ProcfsClocksTest, ProcessClocksAreUsedOnlyInTheOwnPIDNamespace) {
    const std::int32_t own = ::getpid();
    const std::string before = "Name:\tname\nTgid:\t1\nPid:\t1\nNStgid:\t1\n";
    const std::string after = fmt::format("NSpgid:\t{}\nNSsid:\t{}\n", own, own);
    const NumberingCase cases[] = {
        {"mounted here", before + fmt::format("NSpid:\t{}\n", own) + after, true},
        {"of another process", before + fmt::format("NSpid:\t{}\n", own + 1) + after, false},
        {"mounted outside", before + fmt::format("NSpid:\t{}\t{}\n", own + 1, own) + after, false},
        {"the same number by chance", before + fmt::format("NSpid:\t{}\t{}\n", own, own) + after,
         false},
        {"an old kernel", before + after, false},
        {"nothing", "", false},
    };
    for (const auto& [description, status, isOurs] : cases) {
        FakeProcTree tree;
        tree.putFile("self/status", status);
        EXPECT_EQ(static_cast<bool>(ProcfsClocks::system(tree.root()).processTime), isOurs)
            << description;
    }
    EXPECT_FALSE(ProcfsClocks::system("/nonexistent/proc").processTime);
}

TEST(ProcfsClocksTest, AnOrdinaryDirectoryIsMeasuredInTicks) {
    FakeProcTree tree;
    tree.put(1, {.userTicks = 100});
    ProcfsProcessTable table(tree.machine());
    EXPECT_EQ(table.readProcesses().size(), 1U);
    tree.put(1, {.userTicks = 100, .residentPages = 512});
    const auto rows = table.readProcesses();
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].rssMB, 2.0) << "read, although the real first process may be idle";
}

}  // namespace
}  // namespace tallowcrest

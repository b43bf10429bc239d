#include "platform/linux/procfs_process_table.h"

#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/utf8.h"
#include "sampling/protection.h"
#include "tests/platform/fake_proc_tree.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class ProcfsProcessTableTest : public testing::Test {
protected:
    /// The one row that there is.
    ProcessSample onlyRow() {
        const auto rows = table.readProcesses();
        EXPECT_EQ(rows.size(), 1U);
        return rows.empty() ? ProcessSample{} : rows.front();
    }

    std::vector<std::int64_t> pids() {
        std::vector<std::int64_t> result;
        for (const ProcessSample& row : table.readProcesses()) {
            result.push_back(row.pid);
        }
        return result;
    }

    FakeProcTree tree;
    ProcfsProcessTable table{tree.machine(), tree.clocks()};
};

TEST_F(ProcfsProcessTableTest, FillsEveryField) {
    tree.put(812,
             {.userTicks = 300, .systemTicks = 150, .startTicks = 91000, .residentPages = 51200});
    tree.putExecutable(812, "/opt/web browser/web");

    const ProcessSample row = onlyRow();

    EXPECT_EQ(row.pid, 812);
    // 4.5 seconds of work in a life of 90.
    EXPECT_DOUBLE_EQ(row.cpu, 5.0);
    EXPECT_DOUBLE_EQ(row.rssMB, 200.0);
    EXPECT_DOUBLE_EQ(row.memoryPercent, 200.0 / 1024.0 * 100.0);
    EXPECT_EQ(row.command, "/opt/web browser/web");
    EXPECT_EQ(row.arguments, row.command);
}

TEST_F(ProcfsProcessTableTest, RowsAscendWhateverTheListingsOrder) {
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

TEST_F(ProcfsProcessTableTest, LoadIsThatSinceThePreviousReading) {
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

TEST_F(ProcfsProcessTableTest, SuspensionCountsForALifeButNotForAnInterval) {
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

    // The base is still the reading before the early one.
    tree.advance(1ms);
    tree.put(812, {.userTicks = 220});
    EXPECT_DOUBLE_EQ(onlyRow().cpu, 100.0);
}

TEST_F(ProcfsProcessTableTest, LoadIsNeverNegativeOrEndless) {
    constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    // Younger than one tick, born later than now, and counters that overflow when added.
    tree.put(1, {.userTicks = 5, .startTicks = 100000});
    tree.put(2, {.userTicks = 5, .startTicks = largest});
    tree.put(3, {.userTicks = largest, .systemTicks = largest, .residentPages = largest});

    auto rows = table.readProcesses();
    ASSERT_EQ(rows.size(), 3U);
    // What a program takes to start counts as the work of a second.
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

TEST_F(ProcfsProcessTableTest, UnknownPhysicalMemoryGivesNoShare) {
    ProcfsMachine machine = tree.machine();
    machine.physicalBytes = 0.0;
    tree.put(812, {});
    ProcfsProcessTable unknowing(machine, tree.clocks());

    const auto rows = unknowing.readProcesses();

    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].memoryPercent, 0.0);
    EXPECT_DOUBLE_EQ(rows[0].rssMB, 1.0);
}

TEST_F(ProcfsProcessTableTest, ARowThatCannotBeReadIsLeftOutAndTheRestSurvives) {
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

    // Its directory is still listed, but there is nothing more to read in its file.
    tree.putStatText(10, "");
    EXPECT_THAT(pids(), ElementsAre(20));
    std::filesystem::remove(tree.root() / "10" / "stat");
    EXPECT_THAT(pids(), ElementsAre(20));
}

TEST_F(ProcfsProcessTableTest, AReusedNumberStartsAnew) {
    tree.put(812, {.name = "old", .userTicks = 90000, .startTicks = 1000});
    tree.putExecutable(812, "/usr/bin/old");
    EXPECT_EQ(onlyRow().command, "/usr/bin/old");

    // One second old, of which it worked a quarter. All else is like that of its forerunner.
    tree.advance(4s);
    tree.put(812, {.name = "old", .userTicks = 25, .startTicks = 100300});
    tree.putExecutable(812, "/usr/bin/new");
    const ProcessSample row = onlyRow();
    EXPECT_DOUBLE_EQ(row.cpu, 25.0);
    EXPECT_EQ(row.command, "/usr/bin/new");
}

TEST_F(ProcfsProcessTableTest, AnotherProgramIsNoticedByNameAndByPlace) {
    tree.put(812, {.name = "shell", .userTicks = 10});
    tree.putExecutable(812, "/bin/shell");
    EXPECT_EQ(onlyRow().command, "/bin/shell");

    tree.advance(1s);
    tree.put(812, {.name = "tool", .userTicks = 60});
    tree.putExecutable(812, "/bin/tool");
    const ProcessSample renamed = onlyRow();
    EXPECT_EQ(renamed.command, "/bin/tool");
    EXPECT_DOUBLE_EQ(renamed.cpu, 50.0) << "it is still the same process";

    tree.put(812, {.name = "tool", .startCode = 4194304});
    tree.putExecutable(812, "/opt/tool");
    EXPECT_EQ(onlyRow().command, "/opt/tool");

    tree.put(812, {.name = "tool", .startCode = 4194304, .startStack = 7});
    tree.putExecutable(812, "/opt/newer/tool");
    EXPECT_EQ(onlyRow().command, "/opt/newer/tool");
}

TEST_F(ProcfsProcessTableTest, ASettledCommandIsNotAskedForAgain) {
    tree.put(812, {});
    tree.putExecutable(812, "/bin/first");
    EXPECT_EQ(onlyRow().command, "/bin/first");

    tree.putExecutable(812, "/bin/second");
    EXPECT_EQ(onlyRow().command, "/bin/first");
}

TEST_F(ProcfsProcessTableTest, AnEndedProcessKeepsItsCommand) {
    tree.put(812, {});
    tree.putExecutable(812, "/bin/tool");
    EXPECT_EQ(onlyRow().command, "/bin/tool");

    std::filesystem::remove(tree.root() / "812" / "exe");
    tree.put(812, {.state = 'Z', .residentPages = 0, .startCode = 0, .startStack = 0});
    EXPECT_EQ(onlyRow().command, "/bin/tool");
}

TEST_F(ProcfsProcessTableTest, WithoutAnExecutableTheFirstArgumentIsTheCommand) {
    tree.put(1, {});
    tree.putCommandLine(1, std::string("/usr/sbin/daemon\0--flag\0", 24));
    tree.put(2, {.name = "server"});
    tree.putCommandLine(2, "server: accepting on /run/socket");
    tree.put(3, {.name = "no arguments"});
    tree.putCommandLine(3, "");
    tree.put(4, {.name = "empty first"});
    tree.putCommandLine(4, std::string("\0second\0", 8));
    tree.put(5, {.name = "nothing"});

    std::vector<std::string> commands;
    for (const auto& row : table.readProcesses()) {
        commands.push_back(row.command);
    }
    EXPECT_THAT(commands, ElementsAre("/usr/sbin/daemon", "server", "no arguments", "empty first", "nothing"));
}

TEST_F(ProcfsProcessTableTest, OnlyKernelThreadsAreNamedInBrackets) {
    // A process that was already ending at its first reading has neither executable nor arguments.
    tree.put(3, {.name = "as", .state = 'Z', .residentPages = 0, .startCode = 0, .startStack = 0});
    tree.putCommandLine(3, "");
    tree.put(4, {.name = "as", .flags = 0x0040400c});
    tree.put(5, {.name = "as", .flags = 0x00200040});
    std::vector<std::string> commands;
    std::vector<bool> areProtected;
    for (const auto& row : table.readProcesses()) {
        commands.push_back(row.command);
        areProtected.push_back(isProtectedOnLinux(row));
    }
    EXPECT_THAT(commands, ElementsAre("as", "as", "[as]"));
    EXPECT_THAT(areProtected, ElementsAre(false, false, true));
}

TEST_F(ProcfsProcessTableTest, AKernelThreadIsKnownByItsNameAlone) {
    tree.put(2, {.name = "kworker/0:1-events",
                 .flags = 69238880,
                 .residentPages = 0,
                 .startCode = 0,
                 .startStack = 0});
    tree.putExecutable(2, "/bin/not_asked_for");

    const ProcessSample row = onlyRow();

    EXPECT_EQ(row.command, "[kworker/0:1-events]");
    EXPECT_EQ(row.rssMB, 0.0);
}

TEST_F(ProcfsProcessTableTest, NamesMayHoldBlanksAndBrackets) {
    tree.put(812, {.name = "we ird) (x", .userTicks = 100, .startTicks = 90000});

    const ProcessSample row = onlyRow();

    EXPECT_EQ(row.command, "we ird) (x");
    EXPECT_DOUBLE_EQ(row.cpu, 1.0);
}

TEST_F(ProcfsProcessTableTest, TheMarkOfADeletedExecutableIsTakenOff) {
    const std::string present = tree.root() / "still here (deleted)";
    tree.putFile("still here (deleted)", "");
    tree.put(1, {});
    tree.putExecutable(1, "/nonexistent/old tool (deleted)");
    tree.put(2, {});
    tree.putExecutable(2, present);

    const auto rows = table.readProcesses();

    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].command, "/nonexistent/old tool");
    EXPECT_EQ(rows[1].command, present);
}

TEST_F(ProcfsProcessTableTest, AllTextIsValid) {
    tree.put(1, {.name = "na\xffme"});
    tree.put(2, {});
    tree.putExecutable(2, "/opt/\xc3(");
    tree.put(3, {});
    tree.putCommandLine(3, "\xed\xa0\x80");

    const auto rows = table.readProcesses();

    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].command, "na\xef\xbf\xbdme");
    EXPECT_EQ(rows[1].command, "/opt/\xef\xbf\xbd(");
    for (const auto& row : rows) {
        EXPECT_TRUE(isValidUTF8(row.command));
        EXPECT_EQ(row.arguments, row.command);
    }
}

TEST_F(ProcfsProcessTableTest, NoTableGivesNoRows) {
    ProcfsMachine machine = tree.machine();
    machine.procRoot = tree.root() / "mounted later";
    ProcfsProcessTable late(machine, tree.clocks());
    EXPECT_THAT(late.readProcesses(), IsEmpty());

    tree.putFile("mounted later/1/stat", FakeProcess{}.statText(1));
    EXPECT_EQ(late.readProcesses().size(), 1U);
}

/// Lowers the limit of open files, and gives the old one back at the end.
class DescriptorLimit {
public:
    explicit DescriptorLimit(rlim_t limit) {
        ::getrlimit(RLIMIT_NOFILE, &before_);
        const rlimit lowered{limit, before_.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &lowered);
    }
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;
    ~DescriptorLimit() { ::setrlimit(RLIMIT_NOFILE, &before_); }

private:
    rlimit before_{};
};

std::size_t openDescriptors() {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator("/proc/self/fd")) {
        ++count;
    }
    return count - 1;  // the listing's own
}

class ProcfsDescriptorTest : public ProcfsProcessTableTest {
protected:
    void putProcesses(std::int64_t count) {
        for (std::int64_t pid = 1; pid <= count; ++pid) {
            tree.put(pid, {.userTicks = 0});
            tree.putExecutable(pid, "/usr/bin/worker");
        }
    }

    /// Whether every process has a row with the load of half a core over the next 4 seconds.
    void expectHalfACoreEach(std::int64_t count) {
        tree.advance(4s);
        for (std::int64_t pid = 1; pid <= count; ++pid) {
            tree.put(pid, {.userTicks = 200});
        }
        const auto rows = table.readProcesses();
        ASSERT_EQ(rows.size(), static_cast<std::size_t>(count));
        for (const auto& row : rows) {
            EXPECT_DOUBLE_EQ(row.cpu, 50.0);
            EXPECT_EQ(row.command, "/usr/bin/worker");
        }
    }
};

TEST_F(ProcfsDescriptorTest, OneDescriptorPerProcessStaysOpen) {
    const DescriptorLimit limit(1024);
    putProcesses(50);
    const std::size_t before = openDescriptors();
    EXPECT_EQ(table.readProcesses().size(), 50U);
    EXPECT_EQ(openDescriptors(), before + 51) << "the directory, and one for each process";

    for (std::int64_t pid = 1; pid <= 20; ++pid) {
        tree.remove(pid);
    }
    EXPECT_EQ(table.readProcesses().size(), 30U);
    EXPECT_EQ(openDescriptors(), before + 31);
}

TEST_F(ProcfsDescriptorTest, AReserveIsLeftToTheRestOfTheProgram) {
    putProcesses(200);
    const std::size_t before = openDescriptors();
    const DescriptorLimit limit(128);

    EXPECT_EQ(table.readProcesses().size(), 200U);

    EXPECT_EQ(openDescriptors(), before + 1 + 64);
    expectHalfACoreEach(200);
    EXPECT_EQ(openDescriptors(), before + 1 + 64);
}

TEST_F(ProcfsDescriptorTest, KeepsNothingOpenUnderATinyLimit) {
    putProcesses(20);
    const std::size_t before = openDescriptors();
    const DescriptorLimit limit(40);

    EXPECT_EQ(table.readProcesses().size(), 20U);
    EXPECT_EQ(openDescriptors(), before + 1);
    expectHalfACoreEach(20);
}

/// Takes descriptors until there are no more.
std::vector<UniqueFD> takeAllDescriptors() {
    std::vector<UniqueFD> taken;
    for (;;) {
        UniqueFD descriptor(::dup(0));
        if (!descriptor.valid()) {
            return taken;
        }
        taken.push_back(std::move(descriptor));
    }
}

TEST_F(ProcfsDescriptorTest, GivesDescriptorsBackWhenNoneAreLeft) {
    putProcesses(100);
    const DescriptorLimit limit(256);
    EXPECT_EQ(table.readProcesses().size(), 100U);

    tree.put(101, {.userTicks = 0});
    tree.putExecutable(101, "/usr/bin/worker");
    const std::vector<UniqueFD> taken = takeAllDescriptors();
    EXPECT_EQ(table.readProcesses().size(), 101U) << "the new process has been read too";
    expectHalfACoreEach(101);

    const UniqueFD another(::dup(0));
    EXPECT_TRUE(another.valid()) << "the rest of the program can open files again";
}

TEST_F(ProcfsDescriptorTest, LeavesRowsOutWhenThereIsNoDescriptorAtAll) {
    const DescriptorLimit limit(64);
    tree.put(1, {});
    EXPECT_EQ(table.readProcesses().size(), 1U);

    std::vector<ProcessSample> rows;
    std::vector<ProcessSample> unopenedRows;
    {
        // Judged afterwards: a sanitizer needs a descriptor for its own checks.
        const std::vector<UniqueFD> taken = takeAllDescriptors();
        rows = table.readProcesses();
        ProcfsProcessTable unopened(tree.machine(), tree.clocks());
        unopenedRows = unopened.readProcesses();
    }
    EXPECT_THAT(rows, IsEmpty());
    EXPECT_THAT(unopenedRows, IsEmpty());
    EXPECT_EQ(table.readProcesses().size(), 1U);
}

TEST_F(ProcfsDescriptorTest, ACommandThatWasAMakeshiftIsSettledLater) {
    // With room for a single file more, the row can be kept open, and then there is none left for
    // the command.
    const DescriptorLimit limit(256);
    tree.put(1, {});
    tree.putCommandLine(1, "/usr/sbin/daemon");
    EXPECT_EQ(table.readProcesses().size(), 1U);
    tree.put(2, {});
    tree.putCommandLine(2, "/usr/sbin/other");
    {
        std::vector<UniqueFD> taken = takeAllDescriptors();
        taken.pop_back();
        const auto rows = table.readProcesses();
        ASSERT_EQ(rows.size(), 2U);
        EXPECT_EQ(rows[1].command, "worker");
    }
    const auto rows = table.readProcesses();
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[1].command, "/usr/sbin/other");
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

#include <fcntl.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "core/text.h"
#include "platform/base/descriptor_setup.h"
#include "platform/linux/procfs_process_table.h"
#include "tests/platform/support/started_program.h"
#include "tests/platform/support/test_children.h"
#include "tests/support/eventually.h"
#include "tests/support/run_program.h"
#include "tests/support/temporary_folder.h"

/// The process table of the running machine, checked against other sources.
namespace tallowcrest {
namespace {

using namespace std::chrono_literals;

double secondsOn(clockid_t clock) {
    timespec time{};
    ::clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

class ProcfsIntegrationTest : public testing::Test {
protected:
    ProcfsIntegrationTest() { raiseDescriptorLimit(); }

    ProcfsProcessTable table{ProcfsMachine::current()};
};

std::set<std::int64_t> pidsOfPS() {
    // Without the two processes that this command itself starts.
    std::istringstream lines(shellOutput("ps -eo pid=,ppid=,comm="));
    std::set<std::int64_t> pids;
    std::int64_t pid = 0;
    std::int64_t parent = 0;
    std::map<std::int64_t, std::int64_t> parents;
    std::string rest;
    while (lines >> pid >> parent && std::getline(lines, rest)) {
        parents[pid] = parent;
    }
    for (const auto& [child, parentOfChild] : parents) {
        const auto grandparent = parents.find(parentOfChild);
        const bool isOurs = parentOfChild == ::getpid() ||
                            (grandparent != parents.end() && grandparent->second == ::getpid());
        if (!isOurs) {
            pids.insert(child);
        }
    }
    return pids;
}

TEST_F(ProcfsIntegrationTest, ListsTheProcessesThatPSLists) {
    // Processes come and go, so compare only when the set was the same before and after.
    const bool compared = eventually([&] {
        const auto before = pidsOfPS();
        const auto rows = table.readProcesses();
        const auto after = pidsOfPS();
        if (before != after || before.empty()) {
            return false;
        }
        std::set<std::int64_t> pids;
        for (const auto& row : rows) {
            pids.insert(row.pid);
        }
        EXPECT_TRUE(std::is_sorted(
            rows.begin(), rows.end(),
            [](const auto& first, const auto& second) { return first.pid < second.pid; }));
        // One can also have come and gone in between.
        return pids == before;
    });
    EXPECT_TRUE(compared) << "the sets differed, or changed all the time";
}

TEST_F(ProcfsIntegrationTest, AgreesWithPSOnEveryFieldOfASleepingChild) {
    const StartedProgram child({"/bin/sleep", "1000"});
    std::optional<ProcessSample> row;
    double residentKibibytes = 0.0;
    double memoryPercent = 0.0;
    // The memory of a program that has just started grows between the two readings.
    ASSERT_TRUE(eventually([&] {
        row = rowOf(table.readProcesses(), child.pid());
        std::istringstream columns(
            shellOutput("ps -o rss=,pmem= -p " + std::to_string(child.pid())));
        columns >> residentKibibytes >> memoryPercent;
        return row && row->displayName() == "sleep" && residentKibibytes > 0.0 &&
               std::abs(row->rssMB - residentKibibytes / 1024.0) <= 0.25;
    }));

    EXPECT_NEAR(row->memoryPercent, memoryPercent, 0.1);
    EXPECT_EQ(row->command, std::filesystem::canonical("/bin/sleep").string());
}

/// Compares the load of a child with its CPU clock, read at about the same times.
TEST_F(ProcfsIntegrationTest, ASpinningChildTakesOneCore) {
    const TestChild child([] {
        // Pinned to one core.
        cpu_set_t allowed;
        CPU_ZERO(&allowed);
        ::sched_getaffinity(0, sizeof allowed, &allowed);
        for (unsigned core = CPU_SETSIZE; core-- > 0;) {
            if (CPU_ISSET(core, &allowed)) {
                CPU_ZERO(&allowed);
                CPU_SET(core, &allowed);
                break;
            }
        }
        ::sched_setaffinity(0, sizeof allowed, &allowed);
        spin();
    });
    clockid_t childClock{};
    ASSERT_EQ(::clock_getcpuclockid(child.pid(), &childClock), 0);
    ASSERT_TRUE(eventually([&] { return secondsOn(childClock) > 0.1; }));
    ASSERT_TRUE(rowOf(table.readProcesses(), child.pid()));

    bool hadWholeCore = false;
    for (int attempt = 0; attempt < 10 && !hadWholeCore; ++attempt) {
        const double workBefore = secondsOn(childClock);
        const double timeBefore = secondsOn(CLOCK_MONOTONIC);
        ASSERT_TRUE(rowOf(table.readProcesses(), child.pid()));
        std::this_thread::sleep_for(1s);
        const double work = secondsOn(childClock) - workBefore;
        const double time = secondsOn(CLOCK_MONOTONIC) - timeBefore;
        const auto row = rowOf(table.readProcesses(), child.pid());
        ASSERT_TRUE(row);

        const double independent = work / time * 100.0;
        EXPECT_NEAR(row->cpu, independent, 5.0);
        hadWholeCore = independent > 97.0;
        if (hadWholeCore) {
            EXPECT_NEAR(row->cpu, 100.0, 5.0);
        }
    }
    if (!hadWholeCore) {
        std::puts("the machine was too busy to give the child a whole core");
    }
}

TEST_F(ProcfsIntegrationTest, ASleepingChildTakesNothing) {
    const TestChild child([] { waitForever(); });
    ASSERT_TRUE(rowOf(table.readProcesses(), child.pid()));
    std::this_thread::sleep_for(500ms);
    const auto row = rowOf(table.readProcesses(), child.pid());

    ASSERT_TRUE(row);
    EXPECT_LE(row->cpu, 1.0);
    EXPECT_GT(row->rssMB, 0.0);
}

TEST_F(ProcfsIntegrationTest, HandlesANameWithSpacesAndBrackets) {
    const TemporaryFolder folder;
    const auto program = folder.path() / "we ird) (x";
    std::filesystem::copy_file("/bin/sleep", program);
    const StartedProgram child({program.string(), "1000"});
    EXPECT_TRUE(eventually([&] {
        const auto row = rowOf(table.readProcesses(), child.pid());
        return row && row->command == program.string() && row->displayName() == "we ird) (x";
    }));
    // Deleted, but still the program of the process.
    std::filesystem::remove(program);
    ProcfsProcessTable fresh(ProcfsMachine::current());
    const auto row = rowOf(fresh.readProcesses(), child.pid());
    ASSERT_TRUE(row);
    EXPECT_EQ(row->command, program.string());
}

TEST_F(ProcfsIntegrationTest, DetectsThatAProcessExecutedAnotherProgram) {
    std::array<int, 2> gate{};
    ASSERT_EQ(::pipe2(gate.data(), O_CLOEXEC), 0);
    const TestChild child([&] {
        char signal = 0;
        if (::read(gate[0], &signal, 1) == 1) {
            ::execl("/bin/sleep", "sleep", "1000", nullptr);
        }
    });
    const auto before = rowOf(table.readProcesses(), child.pid());
    ASSERT_TRUE(before);
    EXPECT_EQ(before->command, std::filesystem::read_symlink("/proc/self/exe").string());

    ASSERT_EQ(::write(gate[1], "x", 1), 1);
    EXPECT_TRUE(eventually([&] {
        const auto row = rowOf(table.readProcesses(), child.pid());
        return row && row->displayName() == "sleep";
    }));
    ::close(gate[0]);
    ::close(gate[1]);
}

TEST_F(ProcfsIntegrationTest, AZombieKeepsItsCommandAndIsGoneOnceWaitedFor) {
    TestChild child([] { ::execl("/bin/sleep", "sleep", "1000", nullptr); });
    ASSERT_TRUE(eventually([&] {
        const auto row = rowOf(table.readProcesses(), child.pid());
        return row && row->displayName() == "sleep";
    }));
    const pid_t pid = child.pid();
    child.becomeZombie();
    const auto zombie = rowOf(table.readProcesses(), pid);
    ASSERT_TRUE(zombie);
    EXPECT_EQ(zombie->displayName(), "sleep");
    EXPECT_EQ(zombie->rssMB, 0.0);

    child.end();
    EXPECT_FALSE(rowOf(table.readProcesses(), pid));
}

TEST_F(ProcfsIntegrationTest, HasARowForThisProcess) {
    const auto row = rowOf(table.readProcesses(), ::getpid());

    ASSERT_TRUE(row);
    EXPECT_EQ(row->command, std::filesystem::read_symlink("/proc/self/exe").string());
    EXPECT_GT(row->rssMB, 1.0);
    EXPECT_GT(row->memoryPercent, 0.0);
}

TEST_F(ProcfsIntegrationTest, ListsAThousandProcesses) {
    std::vector<TestChild> children;
    for (int count = 0; count < 1000; ++count) {
        children.emplace_back([] { waitForever(); });
    }
    for (int reading = 0; reading < 3; ++reading) {
        const auto rows = table.readProcesses();
        std::set<std::int64_t> pids;
        for (const auto& row : rows) {
            pids.insert(row.pid);
        }
        for (const auto& child : children) {
            EXPECT_TRUE(pids.contains(child.pid()));
        }
    }
}

TEST_F(ProcfsIntegrationTest, ProcessesThatEndDuringAReadingDoNoHarm) {
    const TestChild steady([] { waitForever(); });
    const TestChild churner([] {
        std::array<pid_t, 16> running{};
        for (std::size_t next = 0;; next = (next + 1) % running.size()) {
            if (running[next] > 0) {
                ::waitpid(running[next], nullptr, 0);
            }
            running[next] = ::fork();
            if (running[next] == 0) {
                ::_exit(0);
            }
        }
    });
    const std::size_t atFirst = table.readProcesses().size();
    std::set<std::int64_t> seen;
    for (int reading = 0; reading < 200; ++reading) {
        const auto rows = table.readProcesses();
        std::int64_t previous = 0;
        for (const auto& row : rows) {
            EXPECT_GT(row.pid, previous);
            previous = row.pid;
            EXPECT_TRUE(std::isfinite(row.cpu));
            EXPECT_GE(row.cpu, 0.0);
            EXPECT_FALSE(row.command.empty());
            EXPECT_TRUE(isValidUTF8(row.command));
            seen.insert(row.pid);
        }
        EXPECT_TRUE(rowOf(rows, steady.pid()));
    }
    EXPECT_GT(seen.size(), atFirst + 20) << "the children were not started";
}

}  // namespace
}  // namespace tallowcrest

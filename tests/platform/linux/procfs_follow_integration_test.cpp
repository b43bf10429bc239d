#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <new>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/base/descriptor_setup.h"
#include "platform/base/unique_fd.h"
#include "platform/linux/procfs_process_table.h"
#include "tests/platform/linux/pid_namespace.h"
#include "tests/platform/support/test_children.h"
#include "tests/support/eventually.h"
#include "tests/support/is_asleep.h"

/// How the table tracks starting, ending and executing processes between listings.
namespace tallowcrest {
namespace {

using namespace std::chrono_literals;

std::int64_t nanosecondsNow() {
    return std::chrono::steady_clock::now().time_since_epoch().count();
}

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) == 0) {
            readEnd = UniqueFD(ends[0]);
            writeEnd = UniqueFD(ends[1]);
        }
    }

    bool send() const { return ::write(writeEnd.get(), "x", 1) == 1; }
    bool receive() const {
        char signal = 0;
        return ::read(readEnd.get(), &signal, 1) == 1;
    }

    UniqueFD readEnd;
    UniqueFD writeEnd;
};

class ProcfsFollowTest : public testing::Test {
protected:
    ProcfsFollowTest() {
        raiseDescriptorLimit();
        table.readProcesses();
        table.readProcesses();
    }

    // Has taken two samples when a test begins, so that the next ones need not make a listing.
    ProcfsProcessTable table{ProcfsMachine::current()};
};

TEST_F(ProcfsFollowTest, ThisMachineHasProcessClocks) {
    EXPECT_TRUE(ProcfsClocks::system("/proc").processTime);
}

TEST_F(ProcfsFollowTest, ThreadsAreNotRows) {
    constexpr int count = 16;
    const Pipe gate;
    const Pipe answer;
    const TestChild child([&] {
        gate.receive();
        std::vector<std::thread> threads;
        for (int index = 0; index < count; ++index) {
            threads.emplace_back([&] {
                const std::int32_t tid = ::gettid();
                if (::write(answer.writeEnd.get(), &tid, sizeof tid) == sizeof tid) {
                    waitForever();
                }
            });
        }
        waitForever();
    });
    ASSERT_TRUE(rowOf(table.readProcesses(), child.pid()));
    ASSERT_TRUE(gate.send());
    std::set<std::int64_t> threadIDs;
    for (int index = 0; index < count; ++index) {
        std::int32_t tid = 0;
        ASSERT_EQ(::read(answer.readEnd.get(), &tid, sizeof tid), static_cast<ssize_t>(sizeof tid));
        threadIDs.insert(tid);
    }
    for (int sample = 0; sample < 10; ++sample) {
        const auto rows = table.readProcesses();
        EXPECT_TRUE(rowOf(rows, child.pid()));
        for (const auto& row : rows) {
            EXPECT_FALSE(threadIDs.contains(row.pid));
        }
    }
}

TEST_F(ProcfsFollowTest, TheReadingThreadIsNotARow) {
    // The kernel treats the id of the calling thread as that of its process.
    for (int number = 0; number < 10; ++number) {
        std::jthread([&] {
            const auto rows = table.readProcesses();
            EXPECT_TRUE(rowOf(rows, ::getpid()));
            EXPECT_FALSE(rowOf(rows, ::gettid()));
        });
    }
}

TEST_F(ProcfsFollowTest, AProgramExecutedAfterAPauseIsDetectedImmediately) {
    for (int attempt = 0; attempt < 10; ++attempt) {
        const Pipe gate;
        const TestChild child([&] {
            if (gate.receive()) {
                ::execl("/bin/sleep", "sleep", "1000", nullptr);
            }
        });
        ASSERT_TRUE(eventually([&] { return isAsleep(child.pid()); }));
        // In these samples it is idle.
        for (int sample = 0; sample < 5; ++sample) {
            const auto row = rowOf(table.readProcesses(), child.pid());
            ASSERT_TRUE(row);
            EXPECT_EQ(row->command, std::filesystem::read_symlink("/proc/self/exe").string());
        }
        ASSERT_TRUE(gate.send());
        const auto sleep = std::filesystem::canonical("/bin/sleep");
        const std::string link = "/proc/" + std::to_string(child.pid()) + "/exe";
        // Asleep in the new program, and not while that is still being loaded.
        ASSERT_TRUE(eventually([&] {
            return std::filesystem::read_symlink(link) == sleep && isAsleep(child.pid()) &&
                   (std::this_thread::sleep_for(20ms), isAsleep(child.pid()));
        }));
        const auto row = rowOf(table.readProcesses(), child.pid());
        ASSERT_TRUE(row);
        EXPECT_EQ(row->command, sleep.string());
    }
}

/// The record of one child, in memory shared with the test.
struct Life {
    std::atomic<std::int32_t> pid = 0;
    std::atomic<std::int64_t> startedBy = 0;     ///< it existed from this time on
    std::atomic<std::int64_t> existedUntil = 0;  ///< 0: until the end
};

struct Churn {
    std::atomic<bool> mustEnd = false;
    std::atomic<bool> hasEnded = false;
    std::atomic<std::size_t> started = 0;
    std::array<Life, 20000> lives;
};

void killAndWait(Life& life) {
    life.existedUntil = nanosecondsNow();
    ::kill(life.pid, SIGKILL);
    ::waitpid(life.pid, nullptr, 0);
}

/// Starts and kills processes until `mustEnd`, with a few dozen alive at a time, and other ones in
/// between that end immediately.
void churn(Churn& notes) {
    constexpr std::size_t alive = 48;
    std::size_t ended = 0;
    std::size_t next = 0;
    for (; next < notes.lives.size() && !notes.mustEnd; ++next) {
        if (next - ended == alive) {
            killAndWait(notes.lives[ended++]);
        }
        if (next % 3 == 0) {
            const pid_t brief = ::fork();
            if (brief == 0) {
                ::_exit(0);
            }
            ::waitpid(brief, nullptr, 0);
        }
        const pid_t child = ::fork();
        if (child == 0) {
            waitForever();
        }
        notes.lives[next].pid = child;
        notes.lives[next].startedBy = nanosecondsNow();
        notes.started = next + 1;
    }
    while (ended < next) {
        killAndWait(notes.lives[ended++]);
    }
    notes.hasEnded = true;
}

TEST_F(ProcfsFollowTest, AProcessThatLivesAcrossTwoSamplesIsInTheSecond) {
    void* const memory =
        ::mmap(nullptr, sizeof(Churn), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    Churn& notes = *new (memory) Churn;

    struct Sample {
        std::int64_t begin = 0;
        std::int64_t end = 0;
        std::set<std::int64_t> pids;
    };
    std::vector<Sample> samples;
    {
        const TestChild churner([&] { churn(notes); });
        const auto deadline = std::chrono::steady_clock::now() + 30s;
        while ((samples.size() < 200 || notes.started < 1000U) &&
               std::chrono::steady_clock::now() < deadline) {
            Sample& sample = samples.emplace_back();
            sample.begin = nanosecondsNow();
            const auto rows = table.readProcesses();
            sample.end = nanosecondsNow();
            for (const auto& row : rows) {
                sample.pids.insert(row.pid);
            }
        }
        notes.mustEnd = true;
        ASSERT_TRUE(eventually([&] { return notes.hasEnded.load(); }));
    }
    const std::size_t started = notes.started;
    int seenOnce = 0;
    int foundInSecond = 0;
    for (std::size_t index = 0; index < started; ++index) {
        const Life& life = notes.lives[index];
        const std::int64_t until = life.existedUntil;
        int survived = 0;
        for (const Sample& sample : samples) {
            if (sample.begin < life.startedBy || (until != 0 && sample.end > until)) {
                continue;
            }
            ++survived;
            const bool isSeen = sample.pids.contains(life.pid);
            seenOnce += isSeen ? 1 : 0;
            if (survived == 2 && life.startedBy > samples.front().begin) {
                ++foundInSecond;
            }
            EXPECT_TRUE(isSeen || survived < 2)
                << "child " << index << " at its sample " << survived;
        }
    }
    EXPECT_GT(foundInSecond, 100) << "the children were not started";
    EXPECT_GT(seenOnce, foundInSecond);
    RecordProperty("started", static_cast<int>(started));
    RecordProperty("foundInSecond", foundInSecond);
    ::munmap(memory, sizeof(Churn));
}

TEST_F(ProcfsFollowTest, ClocksAreNotUsedForAnotherPIDNamespace) {
    const TestChild outside([] { waitForever(); });
    const auto run = pid_namespace::run(pid_namespace::Procfs::outer, [&] {
        if (ProcfsClocks::system("/proc").processTime) {
            return 1;
        }
        ProcfsProcessTable nested(ProcfsMachine::current());
        for (int sample = 0; sample < 4; ++sample) {
            if (!rowOf(nested.readProcesses(), outside.pid())) {
                return 2;
            }
        }
        // A table that probes pids of the inner namespace would not find this new process.
        const auto own = std::filesystem::read_symlink("/proc/self");
        return rowOf(nested.readProcesses(), std::stoll(own.string())) ? 0 : 3;
    });
    if (!run.isPossible) {
        GTEST_SKIP() << run.reason;
    }
    EXPECT_EQ(run.status, 0);
}

/// Makes the clocks of all processes fail, as on a kernel without them, or of all but the calling
/// one.
bool refuseProcessClocks(bool ownToo) {
    const auto own = static_cast<std::uint32_t>(~::getpid()) << 3U | 2U;
    constexpr std::uint32_t signBit = 0x80000000U;
    std::array<sock_filter, 7> filter{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_clock_gettime, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, ownToo ? 0U : own, 1, 0),
        BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, signBit, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EINVAL),
    }};
    sock_fprog program{filter.size(), filter.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

TEST_F(ProcfsFollowTest, AKernelWithoutProcessClocksIsMeasuredInTicks) {
    const TestChild outside([] { waitForever(); });
    for (const bool ownToo : {true, false}) {
        const pid_t pid = ::fork();
        if (pid == 0) {
            timespec time{};
            if (!refuseProcessClocks(ownToo)) {
                ::_exit(255);
            }
            if ((::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time) != 0) ||
                ProcfsClocks::system("/proc").processTime) {
                ::_exit(1);
            }
            ProcfsProcessTable inTicks(ProcfsMachine::current());
            for (int sample = 0; sample < 4; ++sample) {
                if (!rowOf(inTicks.readProcesses(), outside.pid())) {
                    ::_exit(2);
                }
            }
            ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(pid, &status, 0), pid);
        ASSERT_TRUE(WIFEXITED(status));
        if (WEXITSTATUS(status) == 255) {
            GTEST_SKIP() << "this account may not install filters";
        }
        EXPECT_EQ(WEXITSTATUS(status), 0) << ownToo;
    }
}

}  // namespace
}  // namespace tallowcrest

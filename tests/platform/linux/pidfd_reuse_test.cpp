#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "platform/linux/pidfd_process_control.h"
#include "tests/platform/linux/pid_namespace.h"
#include "tests/platform/linux/watched_child.h"

/// Pids that are reused by another process while the first one is under review. In a pid namespace
/// they can be reused immediately.
namespace tallowcrest {
namespace {

using Kind = TerminationResult::Kind;

/// Counts of process 1 of the namespace, in memory shared with the test.
struct Tally {
    int rounds = 0;
    int sameNumber = 0;         ///< the later process has the pid of the reviewed one
    int blocked = 0;            ///< results for the reviewed process
    int wrongSignals = 0;       ///< rounds in which the later process was sent anything
    int asked = 0;              ///< results for the later process itself
    int delivered = 0;          ///< rounds in which that was sent only SIGTERM
    int knownStartTimes = 0;    ///< rounds with a start time from the process table
    int unknownStartTimes = 0;  ///< rounds without one
    int zombies = 0;            ///< rounds in which it was a zombie when held
};

class SharedTally {
public:
    SharedTally()
        : memory_(::mmap(nullptr, sizeof(Tally), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                         -1, 0)) {
        if (memory_ == MAP_FAILED) {
            throw std::bad_alloc();
        }
        new (memory_) Tally;
    }
    SharedTally(const SharedTally&) = delete;
    SharedTally& operator=(const SharedTally&) = delete;
    ~SharedTally() { ::munmap(memory_, sizeof(Tally)); }

    Tally& get() const { return *static_cast<Tally*>(memory_); }

private:
    void* memory_;
};

constexpr pid_t reusedPID = 4242;

/// What prevented the test from counting.
enum Failure : int { none = 0, noSuchPID = 1, noStartTime = 2, mayNotChoosePIDs = 3 };

/// Terminates the held process while a later one has its pid, and then that one.
void terminateBoth(HeldProcess& reviewed, std::uint64_t laterStartTime, Tally& tally) {
    const Kind outcome = reviewed.terminate().kind;
    tally.blocked += outcome == Kind::blocked ? 1 : 0;
    tally.wrongSignals += pendingSignals(reusedPID) != noSignal ? 1 : 0;

    PidfdProcessControl control;
    tally.asked += control.hold(reusedPID, laterStartTime)->terminate().kind == Kind::asked ? 1 : 0;
    tally.delivered += pendingSignals(reusedPID) == termOnly ? 1 : 0;
    ++tally.rounds;
}

Failure reuseAfterTheHold(int rounds, Tally& tally) {
    const BlockedSignals inheritedByAll;
    PidfdProcessControl control;
    for (int round = 0; round < rounds; ++round) {
        const bool isStartKnown = round % 2 == 0;
        const bool isZombie = round % 4 >= 2;
        if (pid_namespace::startAs(reusedPID) != reusedPID) {
            return errno == EPERM ? mayNotChoosePIDs : noSuchPID;
        }
        const std::uint64_t startTime = isStartKnown ? startTimeOf(reusedPID) : 0;
        if (isStartKnown && startTime == 0) {
            return noStartTime;
        }
        if (isZombie) {
            siginfo_t info{};
            ::kill(reusedPID, SIGKILL);
            ::waitid(P_PID, static_cast<id_t>(reusedPID), &info, WEXITED | WNOWAIT);
        }
        const auto held = control.hold(reusedPID, startTime);
        pid_namespace::killAndWait(reusedPID);
        const pid_t later = pid_namespace::startAs(reusedPID);
        tally.sameNumber += later == reusedPID ? 1 : 0;
        ++(isStartKnown ? tally.knownStartTimes : tally.unknownStartTimes);
        tally.zombies += isZombie ? 1 : 0;
        terminateBoth(*held, isStartKnown ? startTimeOf(reusedPID) : 0, tally);
        pid_namespace::killAndWait(reusedPID);
    }
    return none;
}

Failure reuseBeforeTheHold(int rounds, Tally& tally) {
    const BlockedSignals inheritedByAll;
    PidfdProcessControl control;
    for (int round = 0; round < rounds; ++round) {
        if (pid_namespace::startAs(reusedPID) != reusedPID) {
            return errno == EPERM ? mayNotChoosePIDs : noSuchPID;
        }
        const std::uint64_t startTime = startTimeOf(reusedPID);
        pid_namespace::killAndWait(reusedPID);
        if (startTime == 0) {
            return noStartTime;
        }
        // Started within the same tick, the two could not be told apart. Normally no pid is reused
        // that fast.
        std::uint64_t laterStartTime = 0;
        do {
            if (laterStartTime != 0) {
                pid_namespace::killAndWait(reusedPID);
            }
            if (pid_namespace::startAs(reusedPID) != reusedPID) {
                return noSuchPID;
            }
            laterStartTime = startTimeOf(reusedPID);
            if (laterStartTime == 0) {
                return noStartTime;
            }
        } while (laterStartTime == startTime);
        ++tally.sameNumber;
        terminateBoth(*control.hold(reusedPID, startTime), laterStartTime, tally);
        pid_namespace::killAndWait(reusedPID);
    }
    return none;
}

/// Empty if the test was possible.
std::string reasonToSkip(const pid_namespace::Run& run) {
    if (!run.isPossible) {
        return run.reason;
    }
    return run.status == mayNotChoosePIDs ? "this account may not choose pids" : "";
}

void expectNoWrongSignal(const Tally& tally, int rounds) {
    EXPECT_EQ(tally.rounds, rounds);
    EXPECT_EQ(tally.sameNumber, rounds);
    EXPECT_EQ(tally.blocked, rounds);
    EXPECT_EQ(tally.wrongSignals, 0);
    EXPECT_EQ(tally.asked, rounds);
    EXPECT_EQ(tally.delivered, rounds);
}

void recordTally(const Tally& tally) {
    testing::Test::RecordProperty("rounds", tally.rounds);
    testing::Test::RecordProperty("blocked", tally.blocked);
    testing::Test::RecordProperty("wrongSignals", tally.wrongSignals);
    testing::Test::RecordProperty("delivered", tally.delivered);
}

TEST(PidfdReuse, ALaterProcessWithTheSamePIDIsNeverSignalled) {
    constexpr int rounds = 1000;
    const SharedTally shared;
    const auto run = pid_namespace::run(pid_namespace::Procfs::own,
                                        [&] { return reuseAfterTheHold(rounds, shared.get()); });
    if (const std::string reason = reasonToSkip(run); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    ASSERT_EQ(run.status, none);
    const Tally& tally = shared.get();
    expectNoWrongSignal(tally, rounds);
    EXPECT_EQ(tally.knownStartTimes, rounds / 2);
    EXPECT_EQ(tally.unknownStartTimes, rounds / 2);
    EXPECT_EQ(tally.zombies, rounds / 2);
    recordTally(tally);
}

TEST(PidfdReuse, AProcessThatReusedThePIDBeforeTheHoldIsNeverSignalled) {
    constexpr int rounds = 100;
    const SharedTally shared;
    const auto run = pid_namespace::run(pid_namespace::Procfs::own,
                                        [&] { return reuseBeforeTheHold(rounds, shared.get()); });
    if (const std::string reason = reasonToSkip(run); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    ASSERT_EQ(run.status, none);
    expectNoWrongSignal(shared.get(), rounds);
    recordTally(shared.get());
}

/// Waits until `gate` is closed, and returns whether SIGTERM is pending for the calling process.
int isTermPending(int gate) {
    char byte = 0;
    while (::read(gate, &byte, 1) > 0) {
    }
    sigset_t pending;
    ::sigpending(&pending);
    return ::sigismember(&pending, SIGTERM);
}

TEST(PidfdReuse, PIDsOfAnotherNamespaceAreNotSignalled) {
    enum Result : int { unharmed = 0, wasSignalled, wasNotBlocked, noSuchProcess, notAllowed };
    const WatchedChild outside;
    const std::uint64_t outsideStartTime = startTimeOf(outside.pid());
    ASSERT_NE(outsideStartTime, 0U);
    const auto run = pid_namespace::run(pid_namespace::Procfs::outer, [&]() -> int {
        const BlockedSignals inheritedByAll;
        std::array<int, 2> gate{};
        if (::pipe(gate.data()) != 0) {
            return noSuchProcess;
        }
        // `/proc` shows the process outside under this pid.
        const pid_t inside = pid_namespace::startAs(outside.pid(), [&gate] {
            ::close(gate[1]);
            return isTermPending(gate[0]);
        });
        if (inside != outside.pid()) {
            return errno == EPERM ? notAllowed : noSuchProcess;
        }
        PidfdProcessControl control;
        for (const std::uint64_t startTime : {std::uint64_t{0}, outsideStartTime}) {
            if (control.hold(inside, startTime)->terminate().kind != Kind::blocked) {
                return wasNotBlocked;
            }
        }
        ::close(gate[1]);
        int status = 0;
        ::waitpid(inside, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? unharmed : wasSignalled;
    });
    if (!run.isPossible) {
        GTEST_SKIP() << run.reason;
    }
    if (run.status == notAllowed) {
        GTEST_SKIP() << "this account may not choose pids";
    }
    EXPECT_EQ(run.status, unharmed);
    EXPECT_EQ(outside.pending(), noSignal);
}

}  // namespace
}  // namespace tallowcrest

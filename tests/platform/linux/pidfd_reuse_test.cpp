#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "platform/linux/pidfd_process_control.h"
#include "tests/platform/linux/pid_namespace.h"
#include "tests/platform/linux/watched_child.h"

/// Process numbers that go to another process while the first one is under review. The numbers are
/// those of a namespace, where they can be given out again at once.
namespace tallowcrest {
namespace {

using Outcome = TerminationResult::Outcome;

/// What the first process of the namespace counts, in memory that it shares with the test.
struct Tally {
    int rounds = 0;
    int sameNumber = 0;         ///< the later process bears the number of the reviewed one
    int blocked = 0;            ///< results for the reviewed process
    int wrongSignals = 0;       ///< rounds in which the later process was sent anything
    int asked = 0;              ///< results for the later process, held in its own right
    int delivered = 0;          ///< which was then sent TERM and nothing else
    int knownStartTimes = 0;    ///< rounds with the start time that the process table told
    int unknownStartTimes = 0;  ///< rounds without one
    int zombies = 0;            ///< rounds in which it had ended, not yet waited for, at the hold
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

constexpr pid_t number = 4242;

/// What went wrong before there was anything to count.
enum Trouble : int { none = 0, noSuchNumber = 1, noStartTime = 2, mayNotChooseNumbers = 3 };

/// Asks the process that was held to quit while a later one bears its number, and then that one.
void judge(HeldProcess& reviewed, std::uint64_t laterStartTime, Tally& tally) {
    const Outcome outcome = reviewed.terminate().outcome;
    tally.blocked += outcome == Outcome::blocked ? 1 : 0;
    tally.wrongSignals += pendingSignals(number) != noSignal ? 1 : 0;

    PidfdProcessControl control;
    tally.asked +=
        control.hold(number, laterStartTime)->terminate().outcome == Outcome::asked ? 1 : 0;
    tally.delivered += pendingSignals(number) == termOnly ? 1 : 0;
    ++tally.rounds;
}

Trouble reuseAfterTheHold(int rounds, Tally& tally) {
    const BlockedSignals inheritedByAll;
    PidfdProcessControl control;
    for (int round = 0; round < rounds; ++round) {
        const bool isStartKnown = round % 2 == 0;
        const bool isZombie = round % 4 >= 2;
        if (pid_namespace::startAs(number) != number) {
            return errno == EPERM ? mayNotChooseNumbers : noSuchNumber;
        }
        const std::uint64_t startTime = isStartKnown ? startTimeOf(number) : 0;
        if (isStartKnown && startTime == 0) {
            return noStartTime;
        }
        if (isZombie) {
            siginfo_t info{};
            ::kill(number, SIGKILL);
            ::waitid(P_PID, static_cast<id_t>(number), &info, WEXITED | WNOWAIT);
        }
        const auto held = control.hold(number, startTime);
        pid_namespace::bury(number);
        const pid_t later = pid_namespace::startAs(number);
        tally.sameNumber += later == number ? 1 : 0;
        ++(isStartKnown ? tally.knownStartTimes : tally.unknownStartTimes);
        tally.zombies += isZombie ? 1 : 0;
        judge(*held, isStartKnown ? startTimeOf(number) : 0, tally);
        pid_namespace::bury(number);
    }
    return none;
}

Trouble reuseBeforeTheHold(int rounds, Tally& tally) {
    const BlockedSignals inheritedByAll;
    PidfdProcessControl control;
    for (int round = 0; round < rounds; ++round) {
        if (pid_namespace::startAs(number) != number) {
            return errno == EPERM ? mayNotChooseNumbers : noSuchNumber;
        }
        const std::uint64_t startTime = startTimeOf(number);
        pid_namespace::bury(number);
        if (startTime == 0) {
            return noStartTime;
        }
        // Born within the same tick they could not be told apart, and no number comes around again
        // that fast by itself.
        std::uint64_t laterStartTime = 0;
        do {
            if (laterStartTime != 0) {
                pid_namespace::bury(number);
            }
            if (pid_namespace::startAs(number) != number) {
                return noSuchNumber;
            }
            laterStartTime = startTimeOf(number);
            if (laterStartTime == 0) {
                return noStartTime;
            }
        } while (laterStartTime == startTime);
        ++tally.sameNumber;
        judge(*control.hold(number, startTime), laterStartTime, tally);
        pid_namespace::bury(number);
    }
    return none;
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

TEST(PidfdReuse, ALaterProcessWithTheSameNumberIsNeverSignalled) {
    constexpr int rounds = 1000;
    const SharedTally shared;
    const auto run = pid_namespace::run(pid_namespace::Procfs::own,
                                        [&] { return reuseAfterTheHold(rounds, shared.get()); });
    if (!run.isPossible) {
        GTEST_SKIP() << run.reason;
    }
    if (run.status == mayNotChooseNumbers) {
        GTEST_SKIP() << "this account may not choose process numbers";
    }
    ASSERT_EQ(run.status, none);
    const Tally& tally = shared.get();
    expectNoWrongSignal(tally, rounds);
    EXPECT_EQ(tally.knownStartTimes, rounds / 2);
    EXPECT_EQ(tally.unknownStartTimes, rounds / 2);
    EXPECT_EQ(tally.zombies, rounds / 2);
    recordTally(tally);
}

TEST(PidfdReuse, AProcessThatTookTheNumberBeforeTheHoldIsNeverSignalled) {
    constexpr int rounds = 100;
    const SharedTally shared;
    const auto run = pid_namespace::run(pid_namespace::Procfs::own,
                                        [&] { return reuseBeforeTheHold(rounds, shared.get()); });
    if (!run.isPossible) {
        GTEST_SKIP() << run.reason;
    }
    if (run.status == mayNotChooseNumbers) {
        GTEST_SKIP() << "this account may not choose process numbers";
    }
    ASSERT_EQ(run.status, none);
    expectNoWrongSignal(shared.get(), rounds);
    recordTally(shared.get());
}

/// Waits for the end of what `gate` gives, and then looks at what was sent to the calling process.
int wasAskedToQuit(int gate) {
    char byte = 0;
    while (::read(gate, &byte, 1) > 0) {
    }
    sigset_t pending;
    ::sigpending(&pending);
    return ::sigismember(&pending, SIGTERM);
}

TEST(PidfdReuse, NumbersReadOutsideOfTheNamespaceAreNotSignalled) {
    enum Finding : int { unharmed = 0, wasSignalled, wasNotBlocked, noSuchProcess, notAllowed };
    const WatchedChild outside;
    const std::uint64_t outsideStartTime = startTimeOf(outside.pid());
    ASSERT_NE(outsideStartTime, 0U);
    const auto run = pid_namespace::run(pid_namespace::Procfs::outer, [&]() -> int {
        const BlockedSignals inheritedByAll;
        std::array<int, 2> gate{};
        if (::pipe(gate.data()) != 0) {
            return noSuchProcess;
        }
        // `/proc` tells of the process outside under the number of this one.
        const pid_t inside = pid_namespace::startAs(outside.pid(), [&gate] {
            ::close(gate[1]);
            return wasAskedToQuit(gate[0]);
        });
        if (inside != outside.pid()) {
            return errno == EPERM ? notAllowed : noSuchProcess;
        }
        PidfdProcessControl control;
        for (const std::uint64_t startTime : {std::uint64_t{0}, outsideStartTime}) {
            if (control.hold(inside, startTime)->terminate().outcome != Outcome::blocked) {
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
        GTEST_SKIP() << "this account may not choose process numbers";
    }
    EXPECT_EQ(run.status, unharmed);
    EXPECT_EQ(outside.pending(), noSignal);
}

}  // namespace
}  // namespace tallowcrest

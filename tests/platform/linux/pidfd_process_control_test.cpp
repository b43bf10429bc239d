#include "platform/linux/pidfd_process_control.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/platform/linux/watched_child.h"
#include "tests/platform/support/refused_call.h"
#include "tests/platform/support/test_children.h"

/// Tests with real processes.
namespace tallowcrest {
namespace {

using Kind = TerminationResult::Kind;

constexpr std::uint64_t unknownStart = 0;

class PidfdProcessControlTest : public testing::Test {
protected:
    PidfdProcessControl control;
};

TEST_F(PidfdProcessControlTest, AProcessThatQuitsWhenAsked) {
    const pid_t child = ::fork();
    if (child == 0) {
        waitForever();
    }
    ASSERT_GT(child, 0);
    const auto held = control.hold(child, startTimeOf(child));
    EXPECT_EQ(held->terminate(), (TerminationResult{Kind::asked, ""}));

    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
    EXPECT_EQ(held->terminate(), (TerminationResult{Kind::refused, ""}));
}

TEST_F(PidfdProcessControlTest, AProcessThatIgnoresTheRequestLivesOn) {
    const auto before = ::signal(SIGTERM, SIG_IGN);
    const TestChild child([] { waitForever(); });
    ::signal(SIGTERM, before);
    {
        const auto held = control.hold(child.pid(), startTimeOf(child.pid()));
        for (int time = 0; time < 3; ++time) {
            EXPECT_EQ(held->terminate().kind, Kind::asked);
        }
    }
    EXPECT_TRUE(isRunning(child.pid()));
}

TEST_F(PidfdProcessControlTest, NothingButTermIsSent) {
    const WatchedChild child;
    {
        const auto held = control.hold(child.pid(), startTimeOf(child.pid()));
        EXPECT_EQ(child.pending(), noSignal) << "nothing is signalled before the confirmation";
        for (int time = 0; time < 3; ++time) {
            EXPECT_EQ(held->terminate(), (TerminationResult{Kind::asked, ""}));
        }
    }
    EXPECT_EQ(child.pending(), termOnly);
    EXPECT_TRUE(child.isUnharmed());
}

TEST_F(PidfdProcessControlTest, ReleasingSendsNothing) {
    const WatchedChild child;
    control.hold(child.pid(), startTimeOf(child.pid())).reset();
    EXPECT_EQ(child.pending(), noSignal);
    EXPECT_TRUE(child.isUnharmed());
}

TEST_F(PidfdProcessControlTest, AnUnknownStartTimeMatchesAnyProcessWithThePID) {
    const WatchedChild child;
    EXPECT_EQ(control.hold(child.pid(), unknownStart)->terminate().kind, Kind::asked);
    EXPECT_EQ(child.pending(), termOnly);
}

TEST_F(PidfdProcessControlTest, AnotherStartTimeIsAnotherProcess) {
    const WatchedChild child;
    const std::uint64_t started = startTimeOf(child.pid());
    ASSERT_GT(started, 1U);
    for (const std::uint64_t other :
         {started - 1, started + 1, std::uint64_t{1}, std::numeric_limits<std::uint64_t>::max()}) {
        EXPECT_EQ(control.hold(child.pid(), other)->terminate(),
                  (TerminationResult{Kind::blocked, ""}))
            << other;
    }
    EXPECT_EQ(child.pending(), noSignal);
    EXPECT_TRUE(child.isUnharmed());
}

TEST_F(PidfdProcessControlTest, AProcessThatEndedBeforeTheHold) {
    WatchedChild child;
    const pid_t pid = child.pid();
    const std::uint64_t started = startTimeOf(pid);
    child.end();
    for (const std::uint64_t startTime : {started, unknownStart}) {
        EXPECT_EQ(control.hold(pid, startTime)->terminate(),
                  (TerminationResult{Kind::refused, ""}));
    }
}

TEST_F(PidfdProcessControlTest, AProcessThatEndsBetweenTheHoldAndTheSignal) {
    WatchedChild child;
    const auto held = control.hold(child.pid(), startTimeOf(child.pid()));
    child.end();
    EXPECT_EQ(held->terminate(), (TerminationResult{Kind::refused, ""}));
}

/// The kernel accepts and drops signals to a zombie, which still owns its pid.
TEST_F(PidfdProcessControlTest, AZombie) {
    WatchedChild child;
    const std::uint64_t started = startTimeOf(child.pid());
    const auto heldAlive = control.hold(child.pid(), started);
    child.becomeZombie();
    const auto heldDead = control.hold(child.pid(), started);
    EXPECT_EQ(heldAlive->terminate(), (TerminationResult{Kind::asked, ""}));
    EXPECT_EQ(heldDead->terminate(), (TerminationResult{Kind::asked, ""}));
    EXPECT_EQ(control.hold(child.pid(), started + 1)->terminate().kind, Kind::blocked);
    child.end();
    EXPECT_EQ(heldAlive->terminate(), (TerminationResult{Kind::refused, ""}));
    EXPECT_EQ(heldDead->terminate(), (TerminationResult{Kind::refused, ""}));
}

/// Any process that this account may not signal.
std::optional<pid_t> processOfAnotherAccount() {
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") == std::string::npos) {
            const auto pid = static_cast<pid_t>(std::stol(name));
            if (::kill(pid, 0) != 0 && errno == EPERM) {
                return pid;
            }
        }
    }
    return std::nullopt;
}

/// The numeric outcome for an account that may not signal the process.
std::optional<int> outcomeForNobody(pid_t pid, std::uint64_t startTime) {
    return statusOfChild([=] {
        constexpr uid_t nobody = 65534;
        constexpr int noSuchAccount = 99;
        if (::geteuid() == 0 && ::setresuid(nobody, nobody, nobody) != 0) {
            return noSuchAccount;
        }
        const TerminationResult result = PidfdProcessControl().hold(pid, startTime)->terminate();
        return static_cast<int>(result.kind) + (result.error.empty() ? 0 : 50);
    });
}

TEST_F(PidfdProcessControlTest, AProcessOfAnotherAccount) {
    std::optional<WatchedChild> child;
    std::optional<pid_t> other;
    if (::geteuid() == 0) {
        other = child.emplace().pid();
    } else {
        other = processOfAnotherAccount();
    }
    ASSERT_TRUE(other) << "every process belongs to this account";
    const std::uint64_t started = startTimeOf(*other);
    EXPECT_EQ(outcomeForNobody(*other, started), static_cast<int>(Kind::refused));
    EXPECT_EQ(outcomeForNobody(*other, unknownStart), static_cast<int>(Kind::refused));
    EXPECT_EQ(outcomeForNobody(*other, started + 1), static_cast<int>(Kind::blocked));
    if (child) {
        EXPECT_EQ(child->pending(), noSignal);
        child->end();
        EXPECT_EQ(outcomeForNobody(*other, started), static_cast<int>(Kind::refused));
    }
}

/// Excluding this process is the responsibility of the caller.
TEST_F(PidfdProcessControlTest, TheCallingProcessIsNotExempt) {
    const BlockedSignals inheritedByTheChild;
    const auto status = statusOfChild([] {
        const pid_t own = ::getpid();
        const auto outcome = PidfdProcessControl().hold(own, startTimeOf(own))->terminate().kind;
        return outcome == Kind::asked && pendingSignals(own) == termOnly ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
}

TEST_F(PidfdProcessControlTest, AThreadIDIsNotAPID) {
    const BlockedSignals inheritedByChildAndThread;
    const auto status = statusOfChild([] {
        std::mutex lock;
        std::condition_variable changed;
        pid_t threadID = 0;
        bool isOver = false;
        std::jthread thread([&] {
            std::unique_lock guard(lock);
            threadID = ::gettid();
            changed.notify_all();
            changed.wait(guard, [&] { return isOver; });
        });
        {
            std::unique_lock guard(lock);
            changed.wait(guard, [&] { return threadID != 0; });
        }
        const auto outcome = PidfdProcessControl().hold(threadID, unknownStart)->terminate().kind;
        const auto pending = pendingSignals(::getpid());
        const auto pendingOfThread = pendingSignals(threadID);
        {
            const std::lock_guard guard(lock);
            isOver = true;
        }
        changed.notify_all();
        return outcome == Kind::blocked && pending == noSignal && pendingOfThread == noSignal ? 0
                                                                                              : 1;
    });
    EXPECT_EQ(status, 0);
}

TEST_F(PidfdProcessControlTest, KeepsOneDescriptorThatNoChildInherits) {
    const WatchedChild child;
    const std::uint64_t started = startTimeOf(child.pid());
    const int before = openDescriptorCount();
    {
        const auto held = control.hold(child.pid(), started);
        EXPECT_EQ(openDescriptorCount(), before + 1);
        int found = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code gone;
            if (std::filesystem::read_symlink(entry.path(), gone) == "anon_inode:[pidfd]" ||
                std::filesystem::read_symlink(entry.path(), gone).string().starts_with("pidfd:")) {
                ++found;
                const int descriptor = std::stoi(entry.path().filename().string());
                EXPECT_EQ(::fcntl(descriptor, F_GETFD), FD_CLOEXEC);
            }
        }
        EXPECT_EQ(found, 1);
        held->terminate();
        EXPECT_EQ(openDescriptorCount(), before + 1);
    }
    EXPECT_EQ(openDescriptorCount(), before);
    control.hold(child.pid(), started + 1)->terminate();
    EXPECT_EQ(openDescriptorCount(), before);
}

TEST_F(PidfdProcessControlTest, WithoutAFreeDescriptor) {
    const WatchedChild child;
    const auto status = statusOfChild([&child] {
        // A sanitizer opens a descriptor when it first checks an object of a class.
        PidfdProcessControl().hold(child.pid(), unknownStart);
        const int lowestFree = ::dup(STDERR_FILENO);
        ::close(lowestFree);
        rlimit limit{};
        ::getrlimit(RLIMIT_NOFILE, &limit);
        limit.rlim_cur = static_cast<rlim_t>(lowestFree);
        if (::setrlimit(RLIMIT_NOFILE, &limit) != 0) {
            return 1;
        }
        const TerminationResult expected{Kind::failed, std::generic_category().message(EMFILE)};
        return PidfdProcessControl().hold(child.pid(), unknownStart)->terminate() == expected ? 0
                                                                                              : 2;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(child.pending(), noSignal);
}

TEST_F(PidfdProcessControlTest, AKernelWithoutTheCallsSignalsNobody) {
    const WatchedChild child;
    for (const std::uint32_t call :
         {std::uint32_t{SYS_pidfd_open}, std::uint32_t{SYS_pidfd_send_signal}}) {
        const auto status = statusOfChild([&child, call] {
            if (!refuseCall(call, ENOSYS)) {
                return 1;
            }
            const TerminationResult expected{Kind::failed, std::generic_category().message(ENOSYS)};
            const auto held = PidfdProcessControl().hold(child.pid(), startTimeOf(child.pid()));
            return held->terminate() == expected ? 0 : 2;
        });
        EXPECT_EQ(status, 0) << call;
    }
    EXPECT_EQ(child.pending(), noSignal);
    EXPECT_TRUE(child.isUnharmed());
}

TEST_F(PidfdProcessControlTest, HeldProcessesAreIndependent) {
    std::vector<WatchedChild> children(3);
    std::vector<std::unique_ptr<HeldProcess>> held;
    for (const WatchedChild& child : children) {
        held.push_back(control.hold(child.pid(), startTimeOf(child.pid())));
    }
    EXPECT_EQ(held[1]->terminate().kind, Kind::asked);
    EXPECT_EQ(children[0].pending(), noSignal);
    EXPECT_EQ(children[1].pending(), termOnly);
    EXPECT_EQ(children[2].pending(), noSignal);
}

}  // namespace
}  // namespace tallowcrest

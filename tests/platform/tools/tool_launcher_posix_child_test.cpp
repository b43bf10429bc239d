// The state in which a child starts, and what a launch leaves behind in this process.

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <sstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/base/unique_fd.h"
#include "platform/tools/tool_launcher_posix.h"
#include "tests/platform/support/test_children.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;

class LaunchedChildTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_FALSE(hasChild()) << "a child was left unwaited for"; }

    PosixToolLauncher launcher;
};

/// Sets the disposition of a signal during its lifetime.
class SignalGuard {
public:
    SignalGuard(int signal, void (*handler)(int)) : signal_(signal) {
        struct sigaction action {};
        action.sa_handler = handler;
        ::sigaction(signal, &action, &previous_);
    }
    SignalGuard(const SignalGuard&) = delete;
    SignalGuard& operator=(const SignalGuard&) = delete;
    ~SignalGuard() { ::sigaction(signal_, &previous_, nullptr); }

private:
    int signal_;
    struct sigaction previous_ {};
};

TEST_F(LaunchedChildTest, InheritsTheEnvironmentAndTheWorkingDirectory) {
    const char* path = std::getenv("PATH");
    ASSERT_NE(path, nullptr);
    std::array<char, 4096> here{};
    ASSERT_NE(::getcwd(here.data(), here.size()), nullptr);

    const ToolResult result = launcher.launch(shellTool("echo \"$PATH\"; pwd -P", 30s));

    EXPECT_EQ(result.output, std::string(path) + "\n" + here.data() + "\n");
}

TEST_F(LaunchedChildTest, DoesNotInheritAnActivationTokenSetLater) {
    // The main thread may change it at any time, so a launch must not read the environment.
    ASSERT_EQ(::setenv("XDG_ACTIVATION_TOKEN", "token", 1), 0);
    const ToolResult result = launcher.launch(shellTool("echo \"<$XDG_ACTIVATION_TOKEN>\"", 30s));
    ::unsetenv("XDG_ACTIVATION_TOKEN");
    EXPECT_EQ(result.output, "<>\n");
}

TEST_F(LaunchedChildTest, ReadsAnEmptyStandardInput) {
    const ToolResult result = launcher.launch({"/bin/cat", {}, 60s, false});
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.terminationStatus, 0);
}

TEST_F(LaunchedChildTest, HasOnlyTheStandardThreeDescriptors) {
    // Opened without close-on-exec, as a library might do.
    const UniqueFD inheritable(::open("/dev/null", O_RDONLY));
    const UniqueFD further(::fcntl(inheritable.get(), F_DUPFD, 25));
    ASSERT_TRUE(further.valid());

    const ToolResult result = launcher.launch(shellTool(
        "n=0; while [ $n -lt 200 ]; do [ -e /proc/$$/fd/$n ] && echo $n; n=$((n+1)); done; true",
        60s));

    EXPECT_EQ(result.output, "0\n1\n2\n");
}

TEST_F(LaunchedChildTest, StartsWithDefaultSignalHandlingAndNothingBlocked) {
    const SignalGuard ignored(SIGPIPE, SIG_IGN);
    const SignalGuard ignoredToo(SIGTERM, SIG_IGN);
    sigset_t blocked;
    sigset_t previous;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::sigaddset(&blocked, SIGUSR1);
    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &blocked, &previous), 0);

    const ToolResult result =
        launcher.launch({"/bin/grep", {"-E", "^Sig(Blk|Ign):", "/proc/self/status"}, 30s, false});
    ::pthread_sigmask(SIG_SETMASK, &previous, nullptr);

    std::istringstream fields(result.output);
    std::string blockedName;
    std::string ignoredName;
    std::uint64_t childBlocks = 0;
    std::uint64_t childIgnores = 0;
    fields >> std::hex >> blockedName >> childBlocks >> ignoredName >> childIgnores;
    ASSERT_TRUE(fields) << result.output;
    EXPECT_EQ(childBlocks, 0U);
    // Without the two signals after the standard ones, which the C library reserves.
    EXPECT_EQ(childIgnores & 0x7FFFFFFFU, 0U);
}

TEST_F(LaunchedChildTest, LeadsItsOwnGroupAndSession) {
    const ToolResult result = launcher.launch({"/bin/cat", {"/proc/self/stat"}, 30s, false});
    std::istringstream fields(result.output.substr(result.output.rfind(')') + 1));
    std::string state;
    pid_t parent = 0;
    pid_t group = 0;
    pid_t session = 0;
    fields >> state >> parent >> group >> session;
    EXPECT_EQ(parent, ::getpid());
    EXPECT_EQ(group, static_cast<pid_t>(std::stol(result.output)));
    EXPECT_EQ(session, group);
}

TEST_F(LaunchedChildTest, IsCapturedEvenIfThisProcessHasNoStandardStreams) {
    std::array<UniqueFD, 3> kept;
    for (int number = 0; number < 3; ++number) {
        kept.at(static_cast<std::size_t>(number)) = UniqueFD(::fcntl(number, F_DUPFD_CLOEXEC, 10));
        ::close(number);
    }
    const ToolResult plain = launcher.launch(shellTool("cat; echo one; echo two >&2", 30s));
    ToolRequest request = shellTool("cat; echo one; echo two >&2", 30s);
    request.mergeStandardError = true;
    const ToolResult merged = launcher.launch(request);
    for (int number = 0; number < 3; ++number) {
        if (kept.at(static_cast<std::size_t>(number)).valid()) {
            ::dup2(kept.at(static_cast<std::size_t>(number)).get(), number);
        }
    }

    EXPECT_EQ(plain.output, "one\n");
    EXPECT_EQ(plain.terminationStatus, 0);
    EXPECT_EQ(merged.output, "one\ntwo\n");
    EXPECT_EQ(merged.terminationStatus, 0);
}

TEST_F(LaunchedChildTest, SignalsToThisProcessDoNotDisturbTheLaunch) {
    const SignalGuard handled(SIGALRM, [](int) {});
    const itimerval often{{0, 1000}, {0, 1000}};
    ASSERT_EQ(::setitimer(ITIMER_REAL, &often, nullptr), 0);
    const ToolResult result =
        launcher.launch(shellTool("echo begin; sleep 0.3; head -c 300000 /dev/zero", 60s));
    const itimerval never{};
    ::setitimer(ITIMER_REAL, &never, nullptr);

    EXPECT_EQ(result.output, "begin\n" + std::string(300000, '\0'));
    EXPECT_EQ(result.terminationStatus, 0);
}

TEST_F(LaunchedChildTest, ALostStatusIsAbsent) {
    const SignalGuard ignored(SIGCHLD, SIG_IGN);
    const ToolResult result = launcher.launch(shellTool("echo hello; exit 6", 60s));
    EXPECT_TRUE(result.launched);
    EXPECT_EQ(result.output, "hello\n");
    EXPECT_EQ(result.terminationStatus, std::nullopt);
}

TEST_F(LaunchedChildTest, LeavesNoDescriptorBehind) {
    const int before = openDescriptorCount();
    for (int round = 0; round < 200; ++round) {
        ToolRequest request{"/bin/true", {}, 30s, round % 2 == 0};
        if (round % 5 == 0) {
            request.path = "/missing/tool";
        }
        ASSERT_EQ(launcher.launch(request).launched, round % 5 != 0);
    }
    EXPECT_EQ(openDescriptorCount(), before);
}

TEST_F(LaunchedChildTest, ScarceDescriptorsGiveACleanFailureOrACleanLaunch) {
    rlimit original{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &original), 0);
    const int before = openDescriptorCount();
    int failures = 0;
    int launches = 0;
    for (int spare = 0; spare < 12; ++spare) {
        rlimit tight = original;
        tight.rlim_cur = static_cast<rlim_t>(before) + static_cast<rlim_t>(spare);
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &tight), 0);
        const ToolResult result = launcher.launch({"/bin/echo", {"hello"}, 60s, false});
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &original), 0);
        if (result.launched) {
            ++launches;
            EXPECT_EQ(result.output, "hello\n") << spare;
            EXPECT_EQ(result.terminationStatus, 0) << spare;
        } else {
            ++failures;
            EXPECT_EQ(result.launchError, "Too many open files") << spare;
        }
        EXPECT_EQ(openDescriptorCount(), before) << spare;
        EXPECT_FALSE(hasChild()) << spare;
    }
    EXPECT_GT(failures, 0);
    EXPECT_GT(launches, 0);
}

TEST_F(LaunchedChildTest, ALauncherWithoutFreeDescriptorsStillStops) {
    rlimit original{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &original), 0);
    rlimit tight = original;
    tight.rlim_cur = static_cast<rlim_t>(openDescriptorCount());
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &tight), 0);
    PosixToolLauncher poor;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &original), 0);

    EXPECT_EQ(poor.launch({"/bin/echo", {"hello"}, 60s, false}).output, "hello\n");
    poor.requestStop();
    EXPECT_FALSE(poor.launch({"/bin/echo", {"hello"}, 60s, false}).launched);
}

}  // namespace
}  // namespace tallowcrest

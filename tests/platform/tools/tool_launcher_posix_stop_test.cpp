#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/tools/tool_launcher_posix.h"
#include "tests/platform/support/test_children.h"
#include "tests/support/eventually.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;

class RequestStopTest : public testing::Test {
protected:
    /// A script that writes its pid to a file right before `body`, with `trap` set.
    std::string writingPID(const std::string& trap, const std::string& body) const {
        const std::string file = folder.path("pid");
        return trap + "; echo $$ > " + file + ".new; mv " + file + ".new " + file + "; " + body;
    }

    pid_t waitForPID() const {
        EXPECT_TRUE(eventually([this] { return !folder.read("pid").empty(); }));
        return static_cast<pid_t>(std::stol(folder.read("pid")));
    }

    /// Kills a tool that the launcher has abandoned.
    static void killAbandonedTool(pid_t pid) {
        EXPECT_TRUE(isRunning(pid));
        ::kill(-pid, SIGKILL);
        EXPECT_EQ(::waitpid(pid, nullptr, 0), pid);
    }

    void TearDown() override { EXPECT_FALSE(hasChild()); }

    TemporaryFolder folder;
    PosixToolLauncher launcher;
};

TEST_F(RequestStopTest, LaunchesNothingAfterwards) {
    launcher.requestStop();
    launcher.requestStop();

    const ToolResult result =
        launcher.launch({"/usr/bin/touch", {folder.path("trace")}, 30s, false});

    EXPECT_FALSE(result.launched);
    EXPECT_EQ(result.launchError, "Operation canceled");
    EXPECT_FALSE(hasChild());
    EXPECT_NE(::access(folder.path("trace").c_str(), F_OK), 0);
}

TEST_F(RequestStopTest, TerminatesRunningTools) {
    for (const std::optional<std::chrono::milliseconds> timeout :
         {std::optional<std::chrono::milliseconds>(), std::optional(600000ms)}) {
        PosixToolLauncher stopped;
        ToolResult result;
        std::jthread caller([&] {
            result = stopped.launch(shellTool(writingPID("true", "exec sleep 600"), timeout));
        });
        const pid_t pid = waitForPID();

        stopped.requestStop();
        caller.join();

        EXPECT_TRUE(result.launched);
        EXPECT_EQ(result.terminationStatus, std::nullopt);
        EXPECT_FALSE(result.deadlinePassed);
        EXPECT_FALSE(isRunning(pid));
        EXPECT_FALSE(hasChild());
        ::unlink(folder.path("pid").c_str());
    }
}

TEST_F(RequestStopTest, AToolThatHandlesTheSignalKeepsItsStatusAndOutput) {
    ToolResult result;
    std::jthread caller([&] {
        result = launcher.launch(shellTool(
            writingPID("trap 'echo ending; exit 3' TERM", "while :; do sleep 0.02; done")));
    });
    waitForPID();

    launcher.requestStop();
    caller.join();

    EXPECT_EQ(result.terminationStatus, 3);
    EXPECT_EQ(result.output, "ending\n");
}

TEST_F(RequestStopTest, AbandonsAToolThatIgnoresTheSignal) {
    const int before = openDescriptorCount();
    ToolResult result;
    std::jthread caller([&] {
        result = launcher.launch(shellTool(writingPID("trap '' TERM; echo hi", "exec sleep 600")));
    });
    const pid_t pid = waitForPID();

    launcher.requestStop();
    caller.join();

    EXPECT_TRUE(result.launched);
    EXPECT_EQ(result.terminationStatus, std::nullopt);
    EXPECT_FALSE(result.deadlinePassed);
    EXPECT_EQ(result.output, "hi\n");
    EXPECT_EQ(openDescriptorCount(), before);
    killAbandonedTool(pid);
}

TEST_F(RequestStopTest, AbandonsAToolThatHangsBeyondItsDeadline) {
    ToolResult result;
    std::atomic<bool> returned = false;
    std::jthread caller([&] {
        result =
            launcher.launch(shellTool(writingPID("trap 'touch " + folder.path("asked") + "' TERM",
                                                 "while :; do sleep 0.02; done"),
                                      1s));
        returned = true;
    });
    const pid_t pid = waitForPID();
    ASSERT_TRUE(eventually([this] { return ::access(folder.path("asked").c_str(), F_OK) == 0; }));
    EXPECT_FALSE(returned);

    launcher.requestStop();
    caller.join();

    EXPECT_TRUE(result.deadlinePassed);
    EXPECT_EQ(result.terminationStatus, std::nullopt);
    killAbandonedTool(pid);
}

TEST_F(RequestStopTest, ARequestCanBeStoppedByItself) {
    std::stop_source stop;
    ToolRequest request = shellTool(writingPID("echo hi", "exec sleep 600"), 600000ms);
    request.stop = stop.get_token();
    ToolResult result;
    std::jthread caller([&] { result = launcher.launch(request); });
    const pid_t pid = waitForPID();

    stop.request_stop();
    caller.join();

    EXPECT_TRUE(result.launched);
    EXPECT_EQ(result.terminationStatus, std::nullopt);
    EXPECT_FALSE(result.deadlinePassed);
    EXPECT_EQ(result.output, "hi\n");
    EXPECT_FALSE(isRunning(pid));
    EXPECT_EQ(launcher.launch(request).launchError, "Operation canceled");
    EXPECT_EQ(launcher.launch(shellTool("exit 3", 30s)).terminationStatus, 3) << "another request";
}

TEST_F(RequestStopTest, ARequestThatIsStoppedLeavesNoToolThatIgnoresIt) {
    std::stop_source stop;
    ToolRequest request =
        shellTool(writingPID("trap '' TERM", "while :; do sleep 600; done"), std::nullopt);
    request.stop = stop.get_token();
    ToolResult result;
    std::jthread caller([&] { result = launcher.launch(request); });
    const pid_t pid = waitForPID();

    stop.request_stop();
    caller.join();

    EXPECT_TRUE(result.launched);
    EXPECT_FALSE(isRunning(pid));
}

TEST_F(RequestStopTest, ALaunchThatCanBeStoppedSleepsMeanwhile) {
    const auto waits = [] {
        rusage usage{};
        ::getrusage(RUSAGE_THREAD, &usage);
        return usage.ru_nvcsw;
    };
    std::stop_source stop;
    ToolRequest request = shellTool("sleep 1", 60s);
    request.stop = stop.get_token();
    const auto before = waits();
    EXPECT_EQ(launcher.launch(request).terminationStatus, 0);
    EXPECT_LT(waits() - before, 20) << "one for each 20 ms would be 50";
}

TEST_F(RequestStopTest, WakesEveryWaitingLaunch) {
    std::vector<ToolResult> results(8);
    std::vector<std::jthread> callers;
    callers.reserve(results.size());
    for (ToolResult& result : results) {
        callers.emplace_back([&] {
            result = launcher.launch({"/bin/sleep", {"600"}, std::nullopt, false});
        });
    }
    // Launches that have not begun yet fail.
    launcher.requestStop();
    callers.clear();

    for (const ToolResult& result : results) {
        EXPECT_EQ(result.terminationStatus, std::nullopt);
        EXPECT_EQ(result.launchError, result.launched ? "" : "Operation canceled");
    }
}

}  // namespace
}  // namespace tallowcrest

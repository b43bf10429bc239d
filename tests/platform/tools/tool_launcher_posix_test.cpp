#include "platform/tools/tool_launcher_posix.h"

#include <signal.h>

#include <chrono>
#include <cstddef>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sampling/command_safety_policy.h"
#include "sampling/metric_runner.h"
#include "tests/platform/support/test_children.h"
#include "tests/support/eventually.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

class PosixToolLauncherTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_FALSE(hasChild()) << "a child was left unwaited for"; }

    TemporaryFolder folder;
    PosixToolLauncher launcher;
};

TEST_F(PosixToolLauncherTest, CapturesTheWholeOutputOfAToolThatExitsImmediately) {
    for (int round = 0; round < 50; ++round) {
        const ToolResult result = launcher.launch({"/bin/echo", {"two words", ""}, 30s, false});
        ASSERT_TRUE(result.launched);
        ASSERT_EQ(result.output, "two words \n");
        ASSERT_EQ(result.terminationStatus, 0);
        ASSERT_FALSE(result.deadlinePassed);
        ASSERT_EQ(result.launchError, "");
    }
}

TEST_F(PosixToolLauncherTest, PassesArgumentsUnchanged) {
    const ToolResult result = launcher.launch(
        {"/usr/bin/printf", {"%s|", "$HOME", "`id`", "a'b\"c", "", "-n", "x\ny", "; true"}, {}});
    EXPECT_EQ(result.output, "$HOME|`id`|a'b\"c||-n|x\ny|; true|");
}

TEST_F(PosixToolLauncherTest, ReturnsTheTerminationStatusOfTheToolUnlessASignalEndedIt) {
    EXPECT_EQ(launcher.launch(shellTool("exit 0")).terminationStatus, 0);
    EXPECT_EQ(launcher.launch(shellTool("exit 42")).terminationStatus, 42);
    EXPECT_EQ(launcher.launch(shellTool("exit 42", 30s)).terminationStatus, 42);
    const ToolResult killed = launcher.launch(shellTool("echo before; kill -KILL $$"));
    EXPECT_TRUE(killed.launched);
    EXPECT_EQ(killed.output, "before\n");
    EXPECT_EQ(killed.terminationStatus, std::nullopt);
    EXPECT_FALSE(killed.deadlinePassed);
}

TEST_F(PosixToolLauncherTest, AFailedLaunchGivesTheMessageOfTheSystem) {
    struct Failure {
        std::string path;
        std::string words;
        std::string argument = "hello";
    };
    const std::vector<Failure> failures{
        {folder.path("missing"), "No such file or directory"},
        {folder.file("plain", "echo hello\n", 0644), "Permission denied"},
        {folder.path(""), "Permission denied"},
        {folder.file("text", "echo hello\n", 0755), "Exec format error"},
        {"/dev/null/tool", "Not a directory"},
        {"", "No such file or directory"},
        {"echo", "No such file or directory"},
        {"bin/echo", "No such file or directory"},
        {"/bin/echo\0/harmless"s, "Invalid argument"},
        {"/bin/echo", "Invalid argument", "kept\0lost"s},
    };
    for (const Failure& failure : failures) {
        const ToolResult result = launcher.launch({failure.path, {failure.argument}, 30s, false});
        EXPECT_FALSE(result.launched) << failure.path;
        EXPECT_EQ(result.launchError, failure.words) << failure.path;
        EXPECT_EQ(result.output, "") << failure.path;
        EXPECT_EQ(result.terminationStatus, std::nullopt) << failure.path;
        EXPECT_FALSE(result.deadlinePassed) << failure.path;
    }
}

TEST_F(PosixToolLauncherTest, MoreThanAPipeHoldsDoesNotStallTheTool) {
    for (const auto& [request, output] :
         {std::pair{ToolRequest{"/usr/bin/head", {"-c", "3000000", "/dev/zero"}, 60s, false},
                    std::string(3000000, '\0')},
          {shellTool("head -c 10485760 /dev/zero >&2; echo done", 60s), "done\n"}}) {
        const ToolResult result = launcher.launch(request);
        EXPECT_EQ(result.output, output);
        EXPECT_EQ(result.terminationStatus, 0);
        EXPECT_FALSE(result.deadlinePassed);
    }
}

TEST_F(PosixToolLauncherTest, StandardErrorIsCapturedOnlyWhenMerged) {
    ToolRequest request = shellTool("echo one; echo two >&2; echo three", 30s);
    EXPECT_EQ(launcher.launch(request).output, "one\nthree\n");
    request.mergeStandardError = true;
    EXPECT_EQ(launcher.launch(request).output, "one\ntwo\nthree\n");
}

TEST_F(PosixToolLauncherTest, CapturesUpToTheLimitWhileTheToolGoesOn) {
    const std::size_t limit = PosixToolLauncher::maximumOutputBytes;
    const ToolResult result = launcher.launch(
        {"/usr/bin/head", {"-c", std::to_string(limit + 100000), "/dev/zero"}, 100s, false});
    EXPECT_EQ(result.output.size(), limit);
    EXPECT_EQ(result.terminationStatus, 0);
}

TEST_F(PosixToolLauncherTest, AToolThatClosesItsOutputIsStillWaitedFor) {
    const ToolResult result =
        launcher.launch(shellTool("echo early; exec >&- 2>&-; sleep 0.3; exit 5", 60s));
    EXPECT_EQ(result.output, "early\n");
    EXPECT_EQ(result.terminationStatus, 5);
}

TEST_F(PosixToolLauncherTest, ATimeoutKeepsTheOutputWrittenBefore) {
    const ToolResult result = launcher.launch(shellTool("echo partial; exec sleep 600", 1s));
    EXPECT_TRUE(result.launched);
    EXPECT_EQ(result.output, "partial\n");
    EXPECT_TRUE(result.deadlinePassed);
    EXPECT_EQ(result.terminationStatus, std::nullopt);
}

TEST_F(PosixToolLauncherTest, ATimeoutEndsAToolThatKeepsWriting) {
    const ToolResult result = launcher.launch({"/usr/bin/yes", {}, 300ms, false});
    EXPECT_TRUE(result.deadlinePassed);
    EXPECT_EQ(result.terminationStatus, std::nullopt);
    EXPECT_THAT(result.output, testing::StartsWith("y\ny\n"));
}

TEST_F(PosixToolLauncherTest, ExtremeTimeoutsAreHandled) {
    for (const auto timeout : {0ms, -5ms, std::chrono::milliseconds::min()}) {
        const ToolResult result = launcher.launch({"/bin/sleep", {"600"}, timeout, false});
        EXPECT_TRUE(result.launched);
        EXPECT_TRUE(result.deadlinePassed);
        EXPECT_EQ(result.terminationStatus, std::nullopt);
    }
    const ToolResult result =
        launcher.launch({"/bin/echo", {"hello"}, std::chrono::milliseconds::max(), false});
    EXPECT_EQ(result.output, "hello\n");
    EXPECT_FALSE(result.deadlinePassed);
}

TEST_F(PosixToolLauncherTest, WaitsForAToolThatIgnoresOrHandlesTheSignal) {
    for (const auto& [script, status, output] :
         {std::tuple{"trap '' TERM; echo before; sleep 3; echo after; exit 7", 7,
                     "before\nafter\n"},
          {"trap 'echo ending; exit 3' TERM; echo ready; while :; do sleep 0.05; done", 3,
           "ready\nending\n"}}) {
        const ToolResult result = launcher.launch(shellTool(script, 1500ms));
        EXPECT_TRUE(result.deadlinePassed);
        EXPECT_EQ(result.terminationStatus, status);
        EXPECT_EQ(result.output, output);
    }
}

TEST_F(PosixToolLauncherTest, KillsAToolThatIgnoresTheSignalWhereItMay) {
    ToolRequest request =
        shellTool("trap '' TERM; echo $$; while :; do sleep 0.05; done; echo after", 500ms);
    request.isKilledAfterDeadline = true;
    const ToolResult result = launcher.launch(request);
    EXPECT_TRUE(result.deadlinePassed);
    EXPECT_EQ(result.terminationStatus, std::nullopt);
    EXPECT_FALSE(isRunning(static_cast<pid_t>(std::stol(result.output))));
    EXPECT_THAT(result.output, testing::EndsWith("\n"));

    request = shellTool("trap 'echo ending; exit 3' TERM; while :; do sleep 0.05; done", 500ms);
    request.isKilledAfterDeadline = true;
    EXPECT_EQ(launcher.launch(request).output, "ending\n") << "it ends in time by itself";
}

TEST_F(PosixToolLauncherTest, TheSignalReachesTheChildrenOfTheTool) {
    const ToolResult result = launcher.launch(shellTool("sleep 600 & echo $!; wait", 1s));
    EXPECT_TRUE(result.deadlinePassed);
    const auto grandchild = static_cast<pid_t>(std::stol(result.output));
    EXPECT_TRUE(eventually([grandchild] { return !isRunning(grandchild); }));
}

TEST_F(PosixToolLauncherTest, AGrandchildThatKeepsThePipeOpenDoesNotBlock) {
    for (const std::optional<std::chrono::milliseconds> timeout :
         {std::optional<std::chrono::milliseconds>(), std::optional(60000ms)}) {
        const ToolResult result =
            launcher.launch(shellTool("sleep 600 & echo $!; exit 4", timeout));
        EXPECT_EQ(result.terminationStatus, 4);
        EXPECT_FALSE(result.deadlinePassed);
        const auto grandchild = static_cast<pid_t>(std::stol(result.output));
        EXPECT_TRUE(isRunning(grandchild));
        EXPECT_EQ(::kill(grandchild, SIGTERM), 0);
    }
}

TEST_F(PosixToolLauncherTest, AGrandchildThatKeepsWritingDoesNotBlock) {
    const ToolResult result = launcher.launch(shellTool("yes & echo first; exit 4"));
    EXPECT_EQ(result.terminationStatus, 4);
    EXPECT_THAT(result.output, testing::HasSubstr("first\n"));
}

TEST_F(PosixToolLauncherTest, ConcurrentLaunchesKeepTheirOutputsApart) {
    constexpr int count = 20;
    std::vector<ToolResult> results(count);
    {
        std::vector<std::jthread> threads;
        threads.reserve(count);
        for (int index = 0; index < count; ++index) {
            threads.emplace_back([this, index, &results] {
                results[static_cast<std::size_t>(index)] = launcher.launch(shellTool(
                    fmt::format("echo {0}; sleep 0.1; echo {0} >&2; echo end; exit {0}", index),
                    100s));
            });
        }
    }
    for (int index = 0; index < count; ++index) {
        const ToolResult& result = results[static_cast<std::size_t>(index)];
        EXPECT_EQ(result.output, std::to_string(index) + "\nend\n");
        EXPECT_EQ(result.terminationStatus, index);
    }
}

TEST_F(PosixToolLauncherTest, TheMetricRunnerRejectsInvalidUTF8) {
    const CommandSafetyPolicy::AllowedExecutables allowed{"/usr/bin/printf"};
    MetricRunner runner(allowed, launcher);
    EXPECT_EQ(runner.runMetricTool("/usr/bin/printf", {"good\\n\\377"}), "");
    EXPECT_EQ(runner.runMetricTool("/usr/bin/printf", {"Caf\\303\\251"}), "Caf\u00E9");
    EXPECT_EQ(runner.runMetricTool("/bin/echo", {"refused"}), "");
}

}  // namespace
}  // namespace tallowcrest

#include "sampling/metric_runner.h"

#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/fake_tool_launcher.h"

namespace tallowcrest {
namespace {

class MetricRunnerTest : public testing::Test {
protected:
    FakeToolLauncher launcher;
    MetricRunner runner{CommandSafetyPolicy::macOSExecutables(), launcher};
};

TEST_F(MetricRunnerTest, LaunchesAnAllowedToolForAtMostTwoSeconds) {
    launcher.willWrite("figures\n");

    EXPECT_EQ(runner.runMetricTool("/usr/sbin/sysctl", {"-n", "hw.memsize"}), "figures\n");

    ASSERT_EQ(launcher.requests.size(), 1U);
    const ToolRequest& request = launcher.requests.front();
    EXPECT_EQ(request.path, "/usr/sbin/sysctl");
    EXPECT_THAT(request.arguments, testing::ElementsAre("-n", "hw.memsize"));
    EXPECT_EQ(request.timeout, std::chrono::milliseconds(2000));
    EXPECT_FALSE(request.mergeStandardError);
}

TEST_F(MetricRunnerTest, LaunchesNothingOutsideTheList) {
    launcher.willWrite("never seen");

    for (const char* path : {"/usr/bin/env", "ps", "/bin//ps", "/bin/ps/", ""}) {
        EXPECT_EQ(runner.runMetricTool(path, {}), "") << path;
    }
    EXPECT_TRUE(launcher.requests.empty());
}

TEST_F(MetricRunnerTest, AFailedLaunchIsTheEmptyText) {
    launcher.result.launchError = "No such file or directory";
    launcher.result.output = "not from a tool";

    EXPECT_EQ(runner.runMetricTool("/bin/ps", {}), "");
}

TEST_F(MetricRunnerTest, WhatAnOverrunningToolWroteIsUsed) {
    launcher.willWrite("first half");
    launcher.result.terminationStatus.reset();
    launcher.result.deadlinePassed = true;

    EXPECT_EQ(runner.runMetricTool("/bin/ps", {}), "first half");
}

TEST_F(MetricRunnerTest, TheExitStatusIsNotLookedAt) {
    launcher.willWrite("said before failing");
    launcher.result.terminationStatus = 1;

    EXPECT_EQ(runner.runMetricTool("/bin/ps", {}), "said before failing");
}

TEST_F(MetricRunnerTest, OutputThatIsNotUTF8IsDroppedWhole) {
    launcher.willWrite("good line\nbad \xFF line\n");
    EXPECT_EQ(runner.runMetricTool("/bin/ps", {}), "");

    launcher.willWrite("cut in the middle of \xE2\x82");
    EXPECT_EQ(runner.runMetricTool("/bin/ps", {}), "");

    launcher.willWrite("/Applications/Caf\xC3\xA9");
    EXPECT_EQ(runner.runMetricTool("/bin/ps", {}), "/Applications/Caf\xC3\xA9");
}

}  // namespace
}  // namespace tallowcrest

#include "sampling/metric_runner.h"

#include <chrono>
#include <optional>
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

TEST_F(MetricRunnerTest, GivesTheOutputUnlessTheLaunchFailedOrItIsInvalid) {
    struct Case {
        ToolResult result;
        std::string output;
    };
    const std::optional<int> noStatus;
    const Case cases[] = {
        {{false, "No such file", "failed launch", noStatus, false}, ""},
        {{true, "", "first half before the deadline", noStatus, true},
         "first half before the deadline"},
        {{true, "", "written before failing", 1, false}, "written before failing"},
        {{true, "", "good line\nbad \xFF line\n", 0, false}, ""},
        {{true, "", "truncated \xE2\x82", 0, false}, ""},
        {{true, "", "/Applications/Caf\xC3\xA9", 0, false}, "/Applications/Caf\xC3\xA9"},
    };
    for (const Case& c : cases) {
        launcher.result = c.result;
        EXPECT_EQ(runner.runMetricTool("/bin/ps", {}), c.output) << c.result.output;
    }
}

}  // namespace
}  // namespace tallowcrest

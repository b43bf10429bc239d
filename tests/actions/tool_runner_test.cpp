#include "actions/tool_runner.h"

#include <chrono>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_kinds.h"
#include "tests/support/fake_tool_launcher.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;

constexpr const char* blockedMessage =
    "Blocked executable outside Tallowcrest's command allowlist.";

class ToolRunnerTest : public testing::Test, protected TestServices {
protected:
    FakeToolLauncher launcher;
    std::unique_ptr<ToolRunner> runner =
        std::make_unique<ToolRunner>(CommandSafetyPolicy::macOSExecutables(), launcher, jobs, log);
};

TEST_F(ToolRunnerTest, RunToolPassesTheCallersTimeout) {
    launcher.willWrite("12 /tmp\n");

    EXPECT_EQ(runner->runTool("/usr/bin/du", {"-sk", "/tmp"}, 60s), "12 /tmp\n");

    ASSERT_EQ(launcher.requests.size(), 1U);
    EXPECT_EQ(launcher.requests[0].path, "/usr/bin/du");
    EXPECT_THAT(launcher.requests[0].arguments, testing::ElementsAre("-sk", "/tmp"));
    EXPECT_EQ(launcher.requests[0].timeout, 60000ms);
    EXPECT_FALSE(launcher.requests[0].mergeStandardError);
    EXPECT_FALSE(launcher.requests[0].isKilledAfterDeadline);
    EXPECT_EQ(mainQueue.pendingCount(), 0U);
}

TEST_F(ToolRunnerTest, TheBytesOfATextThatIsNoneAreKeptWhereTheyAreWanted) {
    launcher.willWrite("12\t/caf\xE9\n");
    std::stop_source source;

    EXPECT_EQ(runner->runToolForBytes("/usr/bin/du", {"-sk"}, 60s, source.get_token()),
              "12\t/caf\xE9\n");
    EXPECT_EQ(runner->runToolForBytes("/usr/bin/env", {}, 60s, {}), "") << "not allowed";

    ASSERT_EQ(launcher.requests.size(), 1U);
    EXPECT_EQ(launcher.requests[0].timeout, 60000ms);
    EXPECT_FALSE(launcher.requests[0].mergeStandardError);
    EXPECT_FALSE(launcher.requests[0].isKilledAfterDeadline);
    source.request_stop();
    EXPECT_TRUE(launcher.requests[0].stop.stop_requested());
}

TEST_F(ToolRunnerTest, RunSSHLaunchesOnlyTheSecureShellWithStandardErrorMerged) {
    launcher.willWrite("Permission denied (publickey).\n");
    launcher.result.terminationStatus = 255;

    EXPECT_EQ(runner->runSSH({"studio", "uptime"}, 8s), "Permission denied (publickey).\n");

    ASSERT_EQ(launcher.requests.size(), 1U);
    EXPECT_EQ(launcher.requests[0].path, "/usr/bin/ssh");
    EXPECT_THAT(launcher.requests[0].arguments, testing::ElementsAre("studio", "uptime"));
    EXPECT_EQ(launcher.requests[0].timeout, 8000ms);
    EXPECT_TRUE(launcher.requests[0].mergeStandardError);
    EXPECT_TRUE(launcher.requests[0].isKilledAfterDeadline);
}

TEST_F(ToolRunnerTest, ARefusalReturnsAtOnceAndIsRecordedLater) {
    launcher.willWrite("never seen");
    const std::string lastAction = log.lastAction();

    EXPECT_EQ(runner->runTool("/usr/bin/env", {}, 2s), "");

    EXPECT_TRUE(launcher.requests.empty());
    EXPECT_EQ(log.lastAction(), lastAction);
    EXPECT_TRUE(log.activityLog().empty());

    mainQueue.drain();

    EXPECT_EQ(log.lastAction(), blockedMessage);
    ASSERT_EQ(log.activityLog().size(), 1U);
    EXPECT_EQ(log.activityLog()[0].kind, ActivityKind::action);
    EXPECT_EQ(log.activityLog()[0].detail, blockedMessage);
}

TEST_F(ToolRunnerTest, EachRefusalIsRecorded) {
    for (const char* path : {"ssh", "/usr//bin/ssh", ""}) {
        EXPECT_EQ(runner->runTool(path, {}, 2s), "") << path;
    }
    mainQueue.drain();

    EXPECT_TRUE(launcher.requests.empty());
    EXPECT_EQ(log.activityLog().size(), 3U);
}

TEST_F(ToolRunnerTest, RunSSHIsRefusedWhenItIsNotAllowed) {
    const CommandSafetyPolicy::AllowedExecutables without{"/usr/bin/du"};
    ToolRunner restricted(without, launcher, jobs, log);
    launcher.willWrite("never seen");

    EXPECT_EQ(restricted.runSSH({"studio"}, 2s), "");
    mainQueue.drain();

    EXPECT_TRUE(launcher.requests.empty());
    EXPECT_EQ(log.lastAction(), blockedMessage);
}

TEST_F(ToolRunnerTest, NothingIsRecordedAfterTheRunnerIsGone) {
    EXPECT_EQ(runner->runTool("/usr/bin/env", {}, 2s), "");
    ASSERT_EQ(mainQueue.pendingCount(), 1U);

    runner.reset();
    mainQueue.drain();

    EXPECT_TRUE(log.activityLog().empty());
}

TEST_F(ToolRunnerTest, AFailedToolGivesAnEmptyTextWithoutAMessage) {
    launcher.result.launchError = "No such file or directory";
    EXPECT_EQ(runner->runTool("/usr/bin/du", {}, 2s), "");
    EXPECT_EQ(runner->runSSH({}, 2s), "");

    launcher.willWrite("half a character \xC3");
    EXPECT_EQ(runner->runTool("/usr/bin/du", {}, 2s), "");
    EXPECT_EQ(runner->runSSH({}, 2s), "");

    EXPECT_EQ(launcher.requests.size(), 4U);
    EXPECT_EQ(mainQueue.pendingCount(), 0U);
}

TEST_F(ToolRunnerTest, ATimeoutGivesTheOutputBeforeIt) {
    launcher.willWrite("partial");
    launcher.result.terminationStatus.reset();
    launcher.result.deadlinePassed = true;

    EXPECT_EQ(runner->runTool("/usr/bin/du", {}, 2s), "partial");
    EXPECT_EQ(runner->runSSH({"studio"}, 2s), "partial");
}

}  // namespace
}  // namespace tallowcrest

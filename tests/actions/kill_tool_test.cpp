#include "actions/kill_tool.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/fake_tool_launcher.h"

namespace tallowcrest {
namespace {

using Termination = TerminationResult::Kind;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t reviewed = 1'700'000'000'000'001;
constexpr std::uint64_t later = 1'700'000'000'000'002;

class KillToolTest : public testing::Test {
protected:
    KillToolTest() { launcher.willWrite(""); }

    std::map<std::int64_t, std::uint64_t> startTimes;
    CommandSafetyPolicy::AllowedExecutables allowed{"/bin/kill"};
    FakeToolLauncher launcher;
    KillTool tool{allowed, launcher, [this](std::int64_t pid) {
                      const auto found = startTimes.find(pid);
                      return found == startTimes.end() ? 0 : found->second;
                  }};
};

TEST_F(KillToolTest, LaunchesTheToolWithTERMAndThePid) {
    startTimes[4242] = reviewed;
    const auto held = tool.hold(4242, reviewed);
    EXPECT_THAT(launcher.requests, IsEmpty()) << "nothing is signalled before the confirmation";

    EXPECT_EQ(held->terminate(), (TerminationResult{Termination::asked, ""}));
    ASSERT_EQ(launcher.requests.size(), 1U);
    const ToolRequest& request = launcher.requests.front();
    EXPECT_EQ(request.path, "/bin/kill");
    EXPECT_THAT(request.arguments, ElementsAre("-TERM", "4242"));
    EXPECT_EQ(request.timeout, std::nullopt);
    EXPECT_FALSE(request.mergeStandardError);
}

TEST_F(KillToolTest, AcceptsTheSmallestAndTheLargestPid) {
    startTimes = {{2, reviewed}, {2147483647, later}};
    EXPECT_EQ(tool.hold(2, reviewed)->terminate().kind, Termination::asked);
    EXPECT_EQ(tool.hold(2147483647, later)->terminate().kind, Termination::asked);
    ASSERT_EQ(launcher.requests.size(), 2U);
    EXPECT_THAT(launcher.requests[0].arguments, ElementsAre("-TERM", "2"));
    EXPECT_THAT(launcher.requests[1].arguments, ElementsAre("-TERM", "2147483647"));
}

struct Exit {
    const char* name;
    bool launched;
    std::string launchError;
    std::optional<int> status;
    TerminationResult expected;
};

class KillToolExitTest : public KillToolTest, public testing::WithParamInterface<Exit> {};

TEST_P(KillToolExitTest, DecidesTheResult) {
    const Exit& exit = GetParam();
    launcher.result = {};
    launcher.result.launched = exit.launched;
    launcher.result.launchError = exit.launchError;
    launcher.result.terminationStatus = exit.status;
    startTimes[4242] = reviewed;

    EXPECT_EQ(tool.hold(4242, reviewed)->terminate(), exit.expected);
    EXPECT_EQ(launcher.requests.size(), 1U) << "one attempt, whatever its result";
}

INSTANTIATE_TEST_SUITE_P(
    All, KillToolExitTest,
    testing::Values(Exit{"Success", true, "", 0, {Termination::asked, ""}},
                    Exit{"Failure", true, "", 1, {Termination::refused, ""}},
                    Exit{"UsageError", true, "", 64, {Termination::refused, ""}},
                    Exit{"CommandNotFound", true, "", 127, {Termination::refused, ""}},
                    Exit{"HighestStatus", true, "", 255, {Termination::refused, ""}},
                    Exit{"EndedByASignal", true, "", std::nullopt, {Termination::refused, ""}},
                    Exit{"NotLaunched",
                         false,
                         "No such file or directory",
                         std::nullopt,
                         {Termination::failed, "No such file or directory"}}),
    [](const auto& instance) { return instance.param.name; });

TEST_F(KillToolTest, IsNotLaunchedWhereItIsNotAllowed) {
    CommandSafetyPolicy::AllowedExecutables others{"/usr/bin/kill", "/bin/ps"};
    KillTool refused(others, launcher, [](std::int64_t) { return reviewed; });
    EXPECT_EQ(refused.hold(4242, reviewed)->terminate(),
              (TerminationResult{Termination::blocked, ""}));
    EXPECT_THAT(launcher.requests, IsEmpty());
}

TEST_F(KillToolTest, TheAllowlistIsCheckedFirst) {
    CommandSafetyPolicy::AllowedExecutables none{};
    KillTool refused(none, launcher, [](std::int64_t) { return 0; });
    EXPECT_EQ(refused.hold(4242, reviewed)->terminate().kind, Termination::blocked);
}

TEST_F(KillToolTest, APidReusedAfterTheHoldIsNotSignalled) {
    startTimes[4242] = reviewed;
    const auto held = tool.hold(4242, reviewed);
    startTimes[4242] = later;
    EXPECT_EQ(held->terminate(), (TerminationResult{Termination::blocked, ""}));
    EXPECT_THAT(launcher.requests, IsEmpty());

    EXPECT_EQ(tool.hold(4242, later)->terminate().kind, Termination::asked);
    EXPECT_EQ(launcher.requests.size(), 1U);
}

TEST_F(KillToolTest, APidReusedBeforeTheHoldIsNotSignalled) {
    startTimes[4242] = later;
    EXPECT_EQ(tool.hold(4242, reviewed)->terminate(),
              (TerminationResult{Termination::blocked, ""}));
    EXPECT_THAT(launcher.requests, IsEmpty());
}

TEST_F(KillToolTest, AProcessThatHasEndedIsNotSignalled) {
    startTimes[4242] = reviewed;
    const auto held = tool.hold(4242, reviewed);
    startTimes.clear();
    EXPECT_EQ(held->terminate(), (TerminationResult{Termination::refused, ""}));
    EXPECT_THAT(launcher.requests, IsEmpty());
}

TEST_F(KillToolTest, AnUnknownStartTimeMeansTheProcessWithThePidAtTheHold) {
    startTimes[4242] = reviewed;
    const auto held = tool.hold(4242, 0);
    EXPECT_EQ(held->terminate().kind, Termination::asked);
    startTimes[4242] = later;
    EXPECT_EQ(held->terminate().kind, Termination::blocked);
    EXPECT_EQ(launcher.requests.size(), 1U);
}

TEST_F(KillToolTest, APidUnusedAtTheHoldIsNotSignalled) {
    const auto held = tool.hold(4242, 0);
    EXPECT_EQ(held->terminate(), (TerminationResult{Termination::refused, ""}));
    startTimes[4242] = later;
    EXPECT_EQ(held->terminate(), (TerminationResult{Termination::blocked, ""}));
    EXPECT_THAT(launcher.requests, IsEmpty());
}

TEST_F(KillToolTest, AHeldProcessOutlivesTheControl) {
    auto shortLived = std::make_unique<KillTool>(
        allowed, launcher, [start = reviewed](std::int64_t) { return start; });
    const auto held = shortLived->hold(4242, reviewed);
    shortLived.reset();
    EXPECT_EQ(held->terminate().kind, Termination::asked);
}

}  // namespace
}  // namespace tallowcrest

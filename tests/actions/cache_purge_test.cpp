#include "actions/cache_purge.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using Outcome = PurgeResult::Outcome;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::vector<std::string>> commandLines(const std::vector<ToolRequest>& tools) {
    std::vector<std::vector<std::string>> lines;
    for (const ToolRequest& tool : tools) {
        std::vector<std::string>& line = lines.emplace_back();
        line.push_back(tool.path);
        line.insert(line.end(), tool.arguments.begin(), tool.arguments.end());
    }
    return lines;
}

TEST(PurgeTools, OfMacOS) {
    EXPECT_THAT(commandLines(macOSPurgeTools()), ElementsAre(ElementsAre("/usr/sbin/purge")));
}

TEST(PurgeTools, OfLinuxForRoot) {
    EXPECT_THAT(commandLines(linuxPurgeTools(true)),
                ElementsAre(ElementsAre("/usr/bin/sync"),
                            ElementsAre("/usr/sbin/sysctl", "-w", "vm.drop_caches=1")));
}

TEST(PurgeTools, OfLinuxForOthers) {
    EXPECT_THAT(commandLines(linuxPurgeTools(false)),
                ElementsAre(ElementsAre("/usr/bin/sync"),
                            ElementsAre("/usr/bin/pkexec", "--disable-internal-agent",
                                        "/usr/sbin/sysctl", "-w", "vm.drop_caches=1")));
}

TEST(PurgeTools, AllAreWaitedForAndAllowedOnTheirSystem) {
    const auto check = [](const std::vector<ToolRequest>& tools,
                          const CommandSafetyPolicy::AllowedExecutables& allowed) {
        for (const ToolRequest& tool : tools) {
            EXPECT_EQ(tool.timeout, std::nullopt) << tool.path;
            EXPECT_FALSE(tool.mergeStandardError) << tool.path;
            EXPECT_TRUE(isAllowedExecutable(allowed, tool.path)) << tool.path;
        }
    };
    check(macOSPurgeTools(), CommandSafetyPolicy::macOSExecutables());
    check(linuxPurgeTools(true), CommandSafetyPolicy::linuxExecutables());
    check(linuxPurgeTools(false), CommandSafetyPolicy::linuxExecutables());
}

ToolResult exitedWith(std::optional<int> status) {
    ToolResult result;
    result.launched = true;
    result.terminationStatus = status;
    return result;
}

ToolResult notLaunched(std::string words) {
    ToolResult result;
    result.launchError = std::move(words);
    return result;
}

/// Answers each launch with the next result; a launch beyond the last is not launched.
class SteppedLauncher final : public ToolLauncher {
public:
    ToolResult launch(const ToolRequest& request) override {
        const std::size_t step = paths.size();
        paths.push_back(request.path);
        return step < results.size() ? results[step] : notLaunched("one launch too many");
    }

    std::vector<ToolResult> results;
    std::vector<std::string> paths;
};

/// What three steps came to, and how many of them were launched.
struct Steps {
    const char* name;
    CommandSafetyPolicy::AllowedExecutables allowed;
    std::vector<ToolResult> results;
    std::size_t launches;
    PurgeResult expected;
};

class ToolCachePurgeTest : public testing::TestWithParam<Steps> {
protected:
    const std::vector<std::string> steps{"/first", "/second", "/third"};
};

TEST_P(ToolCachePurgeTest, StopsAtTheFirstStepThatFails) {
    const Steps& run = GetParam();
    SteppedLauncher launcher;
    launcher.results = run.results;
    std::vector<ToolRequest> tools;
    for (const std::string& path : steps) {
        tools.push_back({.path = path});
    }
    ToolCachePurge purge(run.allowed, launcher, tools);
    EXPECT_THAT(launcher.paths, IsEmpty());

    EXPECT_EQ(purge.purge(), run.expected);
    EXPECT_EQ(launcher.paths,
              std::vector<std::string>(steps.begin(),
                                       steps.begin() + static_cast<std::ptrdiff_t>(run.launches)));
}

INSTANTIATE_TEST_SUITE_P(
    All, ToolCachePurgeTest,
    testing::Values(Steps{"EveryStepSucceeds",
                          {"/first", "/second", "/third"},
                          {exitedWith(0), exitedWith(0), exitedWith(0)},
                          3,
                          {Outcome::purged, ""}},
                    Steps{"FirstIsNotAllowed",
                          {"/second", "/third"},
                          {exitedWith(0), exitedWith(0), exitedWith(0)},
                          0,
                          {Outcome::blocked, ""}},
                    Steps{"SecondIsNotAllowed",
                          {"/first", "/third"},
                          {exitedWith(0), exitedWith(0), exitedWith(0)},
                          1,
                          {Outcome::blocked, ""}},
                    Steps{"LastIsNotAllowed",
                          {"/first", "/second"},
                          {exitedWith(0), exitedWith(0), exitedWith(0)},
                          2,
                          {Outcome::blocked, ""}},
                    Steps{"FirstReportsFailure",
                          {"/first", "/second", "/third"},
                          {exitedWith(1), exitedWith(0), exitedWith(0)},
                          1,
                          {Outcome::refused, ""}},
                    Steps{"SecondReportsThatAuthorisationWasDeclined",
                          {"/first", "/second", "/third"},
                          {exitedWith(0), exitedWith(126), exitedWith(0)},
                          2,
                          {Outcome::refused, ""}},
                    Steps{"LastReportsFailure",
                          {"/first", "/second", "/third"},
                          {exitedWith(0), exitedWith(0), exitedWith(255)},
                          3,
                          {Outcome::refused, ""}},
                    Steps{"FirstEndsByASignal",
                          {"/first", "/second", "/third"},
                          {exitedWith(std::nullopt), exitedWith(0), exitedWith(0)},
                          1,
                          {Outcome::refused, ""}},
                    Steps{"LastEndsByASignal",
                          {"/first", "/second", "/third"},
                          {exitedWith(0), exitedWith(0), exitedWith(std::nullopt)},
                          3,
                          {Outcome::refused, ""}},
                    Steps{"FirstIsNotLaunched",
                          {"/first", "/second", "/third"},
                          {notLaunched("No such file or directory"), exitedWith(0), exitedWith(0)},
                          1,
                          {Outcome::failed, "No such file or directory"}},
                    Steps{"SecondIsNotLaunched",
                          {"/first", "/second", "/third"},
                          {exitedWith(0), notLaunched("Permission denied"), exitedWith(0)},
                          2,
                          {Outcome::failed, "Permission denied"}},
                    Steps{"LastIsNotLaunched",
                          {"/first", "/second", "/third"},
                          {exitedWith(0), exitedWith(0), notLaunched("Too many open files")},
                          3,
                          {Outcome::failed, "Too many open files"}}),
    [](const auto& instance) { return instance.param.name; });

TEST(ToolCachePurge, MayBeAskedAgain) {
    SteppedLauncher launcher;
    launcher.results = {exitedWith(1), exitedWith(0)};
    const CommandSafetyPolicy::AllowedExecutables allowed{"/only"};
    ToolCachePurge purge(allowed, launcher, {{.path = "/only"}});
    EXPECT_EQ(purge.purge().outcome, Outcome::refused);
    EXPECT_EQ(purge.purge().outcome, Outcome::purged);
}

}  // namespace
}  // namespace tallowcrest

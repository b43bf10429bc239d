#include "actions/cache_purge.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/each_of.h"

namespace tallowcrest {
namespace {

using Purge = PurgeResult::Kind;
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

TEST(PurgeTools, OfEachSystem) {
    EXPECT_THAT(commandLines(macOSPurgeTools()), ElementsAre(ElementsAre("/usr/sbin/purge")));
    EXPECT_THAT(commandLines(linuxPurgeTools(true)),
                ElementsAre(ElementsAre("/usr/bin/sync"),
                            ElementsAre("/usr/sbin/sysctl", "-w", "vm.drop_caches=1")));
    EXPECT_THAT(commandLines(linuxPurgeTools(false)),
                ElementsAre(ElementsAre("/usr/bin/sync"),
                            ElementsAre("/usr/bin/pkexec", "--disable-internal-agent",
                                        "/usr/sbin/sysctl", "-w", "vm.drop_caches=1")));
}

TEST(PurgeTools, HaveNoTimeoutAndAreAllowedOnTheirSystem) {
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

ToolResult notLaunched(std::string message) {
    ToolResult result;
    result.launchError = std::move(message);
    return result;
}

/// Returns the next result for each launch; a launch after the last result fails.
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

TEST(ToolCachePurge, StopsAtTheFirstStepThatFails) {
    using Paths = std::vector<std::string>;
    const Paths all{"/first", "/second", "/third"};
    const std::optional<int> signal;
    const auto purgeWith = [&all](const CommandSafetyPolicy::AllowedExecutables& allowed,
                                  std::vector<ToolResult> results, std::size_t launches) {
        SteppedLauncher launcher;
        launcher.results = std::move(results);
        ToolCachePurge purge(allowed, launcher, eachOf(all, [](const std::string& path) {
                                 return ToolRequest{.path = path};
                             }));
        EXPECT_THAT(launcher.paths, IsEmpty());
        const PurgeResult result = purge.purge();
        EXPECT_EQ(launcher.paths, Paths(all.begin(), all.begin() + static_cast<int>(launches)));
        return result;
    };
    const auto exits = [&](std::optional<int> first, std::optional<int> second,
                           std::optional<int> third, std::size_t launches) {
        return purgeWith({"/first", "/second", "/third"},
                         {exitedWith(first), exitedWith(second), exitedWith(third)}, launches);
    };
    EXPECT_EQ(exits(0, 0, 0, 3), (PurgeResult{Purge::purged, ""}));
    const PurgeResult refused{Purge::refused, ""};
    EXPECT_EQ(exits(1, 0, 0, 1), refused);
    EXPECT_EQ(exits(0, 126, 0, 2), refused) << "the authorisation was declined";
    EXPECT_EQ(exits(0, 0, 255, 3), refused);
    EXPECT_EQ(exits(signal, 0, 0, 1), refused);
    EXPECT_EQ(exits(0, 0, signal, 3), refused);

    const std::vector<ToolResult> good(3, exitedWith(0));
    const PurgeResult blocked{Purge::blocked, ""};
    EXPECT_EQ(purgeWith({"/second", "/third"}, good, 0), blocked);
    EXPECT_EQ(purgeWith({"/first", "/third"}, good, 1), blocked);
    EXPECT_EQ(purgeWith({"/first", "/second"}, good, 2), blocked);
    for (const std::size_t step : {0U, 1U, 2U}) {
        std::vector<ToolResult> results = good;
        results.at(step) = notLaunched("Permission denied");
        EXPECT_EQ(purgeWith({"/first", "/second", "/third"}, results, step + 1),
                  (PurgeResult{Purge::failed, "Permission denied"}));
    }
}

TEST(ToolCachePurge, CanRunAgainAfterAFailure) {
    SteppedLauncher launcher;
    launcher.results = {exitedWith(1), exitedWith(0)};
    const CommandSafetyPolicy::AllowedExecutables allowed{"/only"};
    ToolCachePurge purge(allowed, launcher, {{.path = "/only"}});
    EXPECT_EQ(purge.purge().kind, Purge::refused);
    EXPECT_EQ(purge.purge().kind, Purge::purged);
}

}  // namespace
}  // namespace tallowcrest

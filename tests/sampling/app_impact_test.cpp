#include "sampling/app_impact.h"

#include <algorithm>
#include <limits>
#include <map>
#include <random>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/each_of.h"
#include "tests/support/numbers.h"
#include "tests/support/pids_of.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr ProtectionPolicy policy{.ownPID = 4242, .protectsLinuxSystem = false};

ProcessSample process(std::int64_t pid, std::string command, double cpu, double rssMB) {
    return {.pid = pid,
            .cpu = cpu,
            .memoryPercent = 0.0,
            .rssMB = rssMB,
            .command = command,
            .arguments = command};
}

/// The rows in impact order, at most `limit` of them.
std::vector<ProcessSample> ranked(const std::vector<ProcessSample>& rows,
                                  std::size_t limit = std::numeric_limits<std::size_t>::max()) {
    return rowsInOrder(rows, impactOrder(rows), limit);
}

std::vector<std::string> names(const std::vector<AppImpact>& impacts) {
    return eachOf(impacts, &AppImpact::name);
}

std::vector<AppImpact> impactsOf(const std::vector<ProcessSample>& rows,
                                 const ProtectedAppNames& neverQuit = {}) {
    return buildAppImpacts(rows, neverQuit, policy);
}

// Names -------------------------------------------------------------------------------------------

TEST(NormalizedAppName, IsTheGroup) {
    struct Case {
        const char* name;
        const char* group;
    };
    for (const Case& each :
         {// One row for each rule
          Case{"Google Chrome", "Google Chrome"}, Case{"Chrome Helper", "Google Chrome"},
          Case{"chrome", "Google Chrome"}, Case{"Safari", "Safari"}, Case{"WebKit", "Safari"},
          Case{"firefox-bin", "Firefox"}, Case{"Arc", "Arc"}, Case{"dockerd", "Docker"},
          Case{"com.docker.backend", "Docker"}, Case{"Electron Helper", "Electron Apps"},
          Case{"node", "Node.js"}, Case{"python3.11", "Python"}, Case{"swiftc", "Developer Tools"},
          Case{"Xcode", "Developer Tools"}, Case{"clangd", "Developer Tools"},
          Case{"com.apple.Virtualization", "Virtualization"},
          Case{"VirtualMachine", "Virtualization"},

          // Whole or part of the name
          Case{"Google Chrome Helper (Renderer)", "Google Chrome"}, Case{"CHROME", "Google Chrome"},
          Case{"chromedriver", "chromedriver"}, Case{"Chrome", "Google Chrome"},
          Case{"chrome ", "chrome "}, Case{"chrome_crashpad_handler", "chrome_crashpad_handler"},
          Case{"com.apple.WebKit.WebContent", "Safari"}, Case{"WebKitWebProcess", "Safari"},
          Case{"nodemon", "Node.js"}, Case{"sourcekit-lsp", "sourcekit-lsp"},

          // Deliberately broad
          Case{"Archive Utility", "Arc"}, Case{"search", "Arc"}, Case{"xarchiver", "Arc"},
          Case{"systemd-node-exporter", "Node.js"},

          // The first matching rule decides
          Case{"safari-firefox", "Safari"}, Case{"search-node-python", "Arc"},
          Case{"google chrome safari", "Google Chrome"}, Case{"clang-python", "Python"},
          Case{"electron-node", "Electron Apps"},

          // No rule matches: the name itself
          Case{"Terminal", "Terminal"}, Case{"WindowServer", "WindowServer"}, Case{"", ""},
          Case{"A", "A"}, Case{"ar c", "ar c"}, Case{"cra", "cra"},
          Case{"gnome-shell", "gnome-shell"}, Case{"ÄÖÜ Größe", "ÄÖÜ Größe"},

          // Letters outside ASCII
          Case{"Größe-NODE", "Node.js"}, Case{"doc\u212Aer", "Docker"}, Case{"\u212A", "\u212A"},
          Case{"SAFAR\u0130", "Safari"}, Case{"SW\u0130FT", "SW\u0130FT"},
          Case{"a\u0280c", "a\u0280c"}, Case{"n\u00F6de", "n\u00F6de"},

          // Invalid UTF-8
          Case{"\xFF\xFE node", "Node.js"}, Case{"doc\xE2\x84", "doc\xE2\x84"},
          Case{"\xC4", "\xC4"}}) {
        EXPECT_EQ(normalizedAppName(each.name), each.group) << each.name;
    }
}

TEST(AppGroupName, UsesOnlyTheLastPathComponent) {
    EXPECT_EQ(appGroupName(process(1, "/opt/google/chrome/chrome", 0, 0)), "Google Chrome");
    EXPECT_EQ(appGroupName(process(1, "/opt/node/bin/htop", 0, 0)), "htop");
    EXPECT_EQ(appGroupName(process(1, "", 0, 0)), "");
}

// The process order -------------------------------------------------------------------------------

TEST(ImpactOrder, MemoryDecidesWithinOnePointAndCPUBeyond) {
    struct Case {
        double cpu, rssMB, otherCPU, otherRSSMB;
        std::int64_t first;
    };
    for (const Case& each : {Case{50.9, 10, 50.0, 20, 2}, Case{50.0, 20, 50.9, 10, 1},
                             Case{51.0, 10, 50.0, 20, 2}, Case{50.0, 20, 51.1, 10, 2}}) {
        EXPECT_THAT(pids(ranked({process(1, "a", each.cpu, each.rssMB),
                                 process(2, "b", each.otherCPU, each.otherRSSMB)})),
                    ElementsAre(each.first, 3 - each.first))
            << each.cpu << " and " << each.otherCPU;
    }
}

TEST(ImpactOrder, FullTiesKeepTheOrderOfTheTable) {
    std::vector<ProcessSample> rows;
    std::vector<std::int64_t> expected;
    for (std::int64_t pid = 1; pid <= 50; ++pid) {
        rows.push_back(process(pid, "idle", 0, 4));
        expected.push_back(pid);
    }
    EXPECT_EQ(pids(ranked(rows)), expected);
}

TEST(ImpactOrder, CapsAtTheLimitAndCopiesWholeRows) {
    const std::vector<ProcessSample> rows{process(1, "/bin/a", 1, 1), process(2, "/bin/b", 30, 1),
                                          process(3, "/bin/c", 20, 1)};
    EXPECT_THAT(ranked(rows, 2), ElementsAre(rows[1], rows[2]));
    EXPECT_THAT(ranked(rows, 0), IsEmpty());
    EXPECT_EQ(ranked(rows, 3).size(), 3U);
    EXPECT_EQ(ranked(rows, 99).size(), 3U);
    EXPECT_THAT(ranked({}), IsEmpty());
}

TEST(ImpactOrder, ToleratesACyclicRelation) {
    // 1 before 2 and 2 before 3 by memory, but 3 before 1 by CPU.
    const std::vector<ProcessSample> rows{process(1, "a", 10.0, 30), process(2, "b", 10.8, 20),
                                          process(3, "c", 11.6, 10)};
    const std::vector<std::int64_t> once = pids(ranked(rows));
    EXPECT_THAT(once, ::testing::UnorderedElementsAre(1, 2, 3));
    EXPECT_EQ(pids(ranked(rows)), once);
}

TEST(ImpactOrder, KeepsEveryRowWithNaNAndInfinities) {
    std::vector<ProcessSample> rows;
    std::int64_t pid = 0;
    for (const double cpu : {nan, 0.0, infinity, -infinity, 50.0, infinity}) {
        for (const double rssMB : {nan, 1.0, infinity}) {
            rows.push_back(process(++pid, "odd", cpu, rssMB));
        }
    }
    std::vector<std::int64_t> order = pids(ranked(rows));
    std::sort(order.begin(), order.end());
    EXPECT_EQ(order, pids(rows));
}

TEST(ImpactOrder, PutsTheHeaviestFirstInALargeTable) {
    std::mt19937 generator(5);
    std::uniform_real_distribution<double> figure(0.0, 90.0);
    std::vector<ProcessSample> rows;
    for (std::int64_t pid = 1; pid <= 2000; ++pid) {
        rows.push_back(process(pid, "p", figure(generator), figure(generator)));
    }
    rows[1234].cpu = 99.0;
    EXPECT_EQ(ranked(rows).front().pid, rows[1234].pid);
    EXPECT_EQ(pids(ranked(rows, 120)), [&rows] {
        auto all = pids(ranked(rows));
        all.resize(120);
        return all;
    }());
}

// Groups ------------------------------------------------------------------------------------------

TEST(BuildAppImpacts, AddsUpAllMembersAndSelectsASafeTopProcess) {
    struct Case {
        const char* name;
        std::vector<ProcessSample> rows;
        std::vector<AppImpact> groups;
        ProtectedAppNames neverQuit = {};
    };
    const Case cases[] = {
        {"no rows", {}, {}},
        {"two groups",
         {process(10, "/opt/chrome", 5, 100), process(11, "/bin/vi", 9, 9),
          process(12, "/opt/Chrome Helper", 7, 50)},
         {{"Google Chrome", 2, 12.0, 150.0, 12, 0}, {"vi", 1, 9.0, 9.0, 11, 0}}},
        {"the process order names the top",
         {process(10, "firefox", 30.0, 10), process(11, "firefox", 30.9, 5),
          process(12, "firefox", 30.5, 40)},
         {{"Firefox", 3, 91.4, 55.0, 12, 0}}},
        {"a safe process comes before a protected one",
         {process(10, "/System/node", 90, 900), process(11, "/usr/bin/node", 2, 20),
          process(12, "/usr/bin/node", 4, 10)},
         {{"Node.js", 3, 96.0, 930.0, 12, 1}}},
        {"a group of protected processes keeps its row",
         {process(10, "/System/a/helper", 3, 20), process(11, "/System/b/helper", 8, 10)},
         {{"helper", 2, 11.0, 30.0, 11, 2}}},
        {"a Never Quit group is protected whole",
         {process(10, "/System/node", 9, 9), process(11, "/usr/bin/node", 2, 20),
          process(12, "/usr/bin/vi", 2, 20)},
         {{"Node.js", 2, 11.0, 29.0, 10, 2}, {"vi", 1, 2.0, 20.0, 12, 0}},
         {"Node.js"}},
        {"this process is protected",
         {process(policy.ownPID, "node", 50, 9), process(8, "node", 1, 9)},
         {{"Node.js", 2, 51.0, 18.0, 8, 1}}},
        {"Linux is not protected on other systems",
         {process(10, "/usr/bin/gnome-shell", 9, 300)},
         {{"gnome-shell", 1, 9.0, 300.0, 10, 0}}},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(impactsOf(each.rows, each.neverQuit), each.groups) << each.name;
    }
}

TEST(BuildAppImpacts, LeavesOutGroupsBelowBothLimits) {
    EXPECT_THAT(impactsOf({process(10, "light", 0.9, 79.9)}), IsEmpty());
    EXPECT_THAT(names(impactsOf({process(10, "heavy", 0.9, 80.0)})), ElementsAre("heavy"));
    EXPECT_THAT(names(impactsOf({process(10, "busy", 1.0, 0.0)})), ElementsAre("busy"));
    EXPECT_THAT(names(impactsOf({process(10, "many", 0.5, 1), process(11, "many", 0.5, 1)})),
                ElementsAre("many"));
}

TEST(BuildAppImpacts, WithinTwoPointsMemoryDecides) {
    EXPECT_THAT(names(impactsOf({process(1, "a", 12.0, 10), process(2, "b", 10.0, 20)})),
                ElementsAre("b", "a"));
    EXPECT_THAT(names(impactsOf({process(1, "b", 10.0, 20), process(2, "a", 12.5, 10)})),
                ElementsAre("a", "b"));
}

TEST(BuildAppImpacts, FullTiesKeepTheOrderOfTheTable) {
    EXPECT_THAT(
        names(impactsOf({process(1, "c", 3, 1), process(2, "a", 3, 1), process(3, "b", 3, 1)})),
        ElementsAre("c", "a", "b"));
}

TEST(BuildAppImpacts, NeverQuitNamesAreExact) {
    const std::vector<ProcessSample> rows{process(10, "node", 9, 9)};
    for (const char* other : {"node.js", "Node", "NODE.JS", "node", ""}) {
        EXPECT_EQ(impactsOf(rows, {other})[0].protectedCount, 0) << other;
    }
    EXPECT_EQ(impactsOf(rows, {"Node.js"})[0].protectedCount, 1);
}

TEST(BuildAppImpacts, ProtectsTheLinuxSystemOnLinux) {
    const auto impacts = buildAppImpacts({process(10, "/usr/bin/gnome-shell", 9, 300)}, {},
                                         {.ownPID = 1000, .protectsLinuxSystem = true});
    EXPECT_EQ(impacts.front().protectedCount, 1);
}

TEST(BuildAppImpacts, NaNInOneGroupDoesNotAffectTheOthers) {
    EXPECT_THAT(names(impactsOf({process(1, "odd", nan, 500), process(2, "gone", nan, nan),
                                 process(3, "even", 5, 5)})),
                ElementsAre("odd", "even"));
}

TEST(BuildAppImpacts, AgreesWithASimpleCountOnALargeTable) {
    std::mt19937 generator(9);
    std::uniform_real_distribution<double> figure(0.0, 40.0);
    std::vector<ProcessSample> rows;
    std::map<std::string, std::int64_t> counts;
    for (std::int64_t pid = 1; pid <= 3000; ++pid) {
        rows.push_back(process(pid, "/usr/bin/program-" + std::to_string(generator() % 60),
                               1 + figure(generator), figure(generator)));
        ++counts[appGroupName(rows.back())];
    }
    const auto impacts = impactsOf(rows);
    ASSERT_EQ(impacts.size(), counts.size());
    std::set<std::string> seen;
    for (const AppImpact& impact : impacts) {
        EXPECT_TRUE(seen.insert(impact.name).second) << impact.name;
        EXPECT_EQ(impact.processCount, counts[impact.name]) << impact.name;
        std::vector<ProcessSample> members;
        for (const ProcessSample& row : rows) {
            if (appGroupName(row) == impact.name) {
                members.push_back(row);
            }
        }
        EXPECT_EQ(impact.topPID, ranked(members, 1).front().pid) << impact.name;
    }
}

TEST(ListedAppImpacts, AreTheFirst14) {
    std::vector<ProcessSample> rows;
    for (int i = 0; i < 20; ++i) {
        rows.push_back(process(100 + i, "/opt/app" + std::to_string(i), 90.0 - 3.0 * i, 10.0));
        const auto all = impactsOf(rows);
        const auto listed = listedAppImpacts(rows, {}, policy);
        ASSERT_EQ(listed.size(), std::min<std::size_t>(all.size(), 14));
        EXPECT_TRUE(std::equal(listed.begin(), listed.end(), all.begin()));
    }
    EXPECT_EQ(impactsOf(rows).size(), 20U);
}

}  // namespace
}  // namespace tallowcrest

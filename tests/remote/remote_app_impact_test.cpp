#include "remote/remote_app_impact.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/each_of.h"

namespace tallowcrest {
namespace {

constexpr bool onMac = false;
constexpr bool onLinux = true;

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> namesOf(const std::vector<RemoteAppImpact>& groups) {
    return eachOf(groups, &RemoteAppImpact::name);
}

TEST(RemoteAppImpact, AddsUpItsRows) {
    EXPECT_EQ(remoteAppImpact("Tool", {{10, 5.5, 100.0, "/opt/tool"}, {11, 20.0, 50.0, "tool"}}, {},
                              onMac),
              (RemoteAppImpact{"Tool", 2, 25.5, 150.0, 11, 0}));
}

TEST(RemoteAppImpact, TheTopIsTheHeaviestThatIsNotProtected) {
    const RemoteProcess busy{20, 90.0, 10.0, "/usr/libexec/busy"};
    const RemoteProcess finder{21, 80.0, 10.0, "/any/Finder"};
    const RemoteProcess light{22, 10.0, 50.0, "/opt/light"};
    const RemoteProcess closeBy{23, 9.0, 60.0, "/opt/close"};
    const RemoteProcess farther{24, 8.9, 900.0, "/opt/far"};
    struct Row {
        std::vector<RemoteProcess> rows;
        std::int64_t topPID;
        std::int64_t protectedCount;
    };
    for (const Row& each : {
             Row{{busy, finder, light}, 22, 2},
             Row{{busy, finder}, 20, 2},
             Row{{light, closeBy}, 23, 0},
             Row{{light, farther}, 22, 0},
             Row{{closeBy, farther}, 24, 0},
             Row{{light, {25, 10.0, 50.0, "/opt/equal"}}, 22, 0},
         }) {
        const RemoteAppImpact group = remoteAppImpact("Tool", each.rows, {"Other"}, onMac);
        EXPECT_EQ(group.topPID, each.topPID);
        EXPECT_EQ(group.protectedCount, each.protectedCount) << each.topPID;
    }
    // Of a wholly protected group, all rows count, and one is named still.
    EXPECT_EQ(remoteAppImpact("Tool", {light, busy}, {"Tool"}, onMac),
              (RemoteAppImpact{"Tool", 2, 100.0, 60.0, 20, 2}));
}

TEST(RemoteAppImpact, RowsOfOneGroupAreCountedTogether) {
    EXPECT_THAT(remoteAppImpacts({}, {}, onMac), IsEmpty());
    const std::vector<RemoteProcess> rows{{1, 10.0, 100.0, "/Applications/Google Chrome"},
                                          {2, 30.0, 10.0, "/usr/bin/make"},
                                          {3, 40.0, 200.0, "Google Chrome Helper (GPU)"},
                                          {4, 0.0, 1.0, "/"},
                                          {5, 0.0, 0.5, ""}};
    EXPECT_THAT(remoteAppImpacts(rows, {"Google Chrome"}, onMac),
                ElementsAre(RemoteAppImpact{"Google Chrome", 2, 50.0, 300.0, 3, 2},
                            RemoteAppImpact{"make", 1, 30.0, 10.0, 2, 0},
                            RemoteAppImpact{"/", 1, 0.0, 1.0, 4, 0},
                            RemoteAppImpact{"", 1, 0.0, 0.5, 5, 0}));
}

TEST(RemoteAppImpact, WithinTwoPointsMemoryDecides) {
    EXPECT_THAT(namesOf(remoteAppImpacts({{1, 10.0, 5.0, "a"}, {2, 12.0, 4.0, "b"}}, {}, onMac)),
                ElementsAre("a", "b"));
    EXPECT_THAT(namesOf(remoteAppImpacts({{1, 10.0, 5.0, "a"}, {2, 12.1, 4.0, "b"}}, {}, onMac)),
                ElementsAre("b", "a"));
    EXPECT_THAT(namesOf(remoteAppImpacts({{1, 10.0, 5.0, "a"}, {2, 9.0, 5.0, "b"}}, {}, onMac)),
                ElementsAre("a", "b"));
    // A relation with a cycle: every group is still there, once.
    EXPECT_THAT(namesOf(remoteAppImpacts(
                    {{1, 10.0, 1.0, "a"}, {2, 11.5, 2.0, "b"}, {3, 13.0, 0.5, "c"}}, {}, onMac)),
                ::testing::UnorderedElementsAre("a", "b", "c"));
}

TEST(RemoteAppImpact, CountsTheSystemProcessesOfALinuxMachine) {
    const std::vector<RemoteProcess> rows{{10, 9.0, 5.0, "sshd"}};
    EXPECT_EQ(remoteAppImpacts(rows, {}, onLinux).front().protectedCount, 1);
    EXPECT_EQ(remoteAppImpacts(rows, {}, onMac).front().protectedCount, 0);
}

}  // namespace
}  // namespace tallowcrest

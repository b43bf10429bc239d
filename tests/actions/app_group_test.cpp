#include "actions/app_group.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/pids_of.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr ProtectionPolicy policy{.ownPID = 4242, .protectsLinuxSystem = true};

ProcessSample row(std::int64_t pid, const std::string& command) {
    ProcessSample result;
    result.pid = pid;
    result.command = command;
    result.arguments = command;
    return result;
}

AppImpact group(const std::string& name, std::optional<std::int64_t> topPID) {
    AppImpact result;
    result.name = name;
    result.topPID = topPID;
    return result;
}

TEST(AppGroup, MembersAreTheRowsOfTheGroupInTableOrder) {
    const std::vector<ProcessSample> rows{row(9, "/opt/firefox/firefox"), row(3, "/usr/bin/editor"),
                                          row(5, "/opt/firefox/firefox-bin"),
                                          row(7, "/usr/bin/Firefox")};
    EXPECT_THAT(pids(groupMembers(rows, "Firefox")), ElementsAre(9, 5, 7));
    EXPECT_THAT(groupMembers(rows, "firefox"), IsEmpty());
    EXPECT_THAT(groupMembers(rows, "Fire"), IsEmpty());
    EXPECT_THAT(groupMembers(rows, ""), IsEmpty());
    EXPECT_THAT(groupMembers({}, "Firefox"), IsEmpty());
}

TEST(AppGroup, VisibleMembersExcludeTheProtected) {
    struct Case {
        const char* what;
        ProcessSample member;
        bool isVisible;
    };
    const std::string group = "Python";
    const Case cases[] = {
        {"an ordinary one", row(100, "/usr/bin/python3"), true},
        {"this program's own process", row(4242, "/usr/bin/python3"), false},
        {"the system's folder", row(101, "/System/Library/python3"), false},
        {"the system's helpers", row(102, "/usr/libexec/python3"), false},
        {"the first process", row(1, "/usr/bin/python3"), false},
        {"a path that only contains such a folder", row(103, "/opt/usr/libexec/python3"), true},
    };
    for (const Case& each : cases) {
        const std::vector<ProcessSample> rows{each.member};
        EXPECT_EQ(!visibleMembers(rows, group, {}, policy).empty(), each.isVisible) << each.what;
        EXPECT_THAT(visibleMembers(rows, group, {group}, policy), IsEmpty()) << each.what;
        EXPECT_EQ(!visibleMembers(rows, group, {"python"}, policy).empty(), each.isVisible)
            << each.what;
    }
}

TEST(AppGroup, VisibleMembersExcludeTheBuiltInNames) {
    for (const char* name : {"kernel_task", "launchd", "WindowServer", "loginwindow", "Finder",
                             "SystemUIServer", "ControlCenter", "Dock", "cfprefsd", "distnoted",
                             "notifyd", "powerd", "runningboardd", "Tallowcrest"}) {
        const std::vector<ProcessSample> rows{row(50, std::string("/opt/bin/") + name),
                                              row(51, name)};
        EXPECT_THAT(groupMembers(rows, name), ::testing::SizeIs(2)) << name;
        EXPECT_THAT(visibleMembers(rows, name, {}, {}), IsEmpty()) << name;
    }
}

TEST(AppGroup, TheFirstSafeGroupSkipsProtectedGroups) {
    const std::vector<ProcessSample> rows{row(10, "/usr/bin/docker"),
                                          row(11, "/usr/libexec/helper"),
                                          row(12, "/usr/bin/editor"), row(13, "/usr/bin/safari")};
    const AppImpact neverQuit = group("Docker", 10);
    const AppImpact withoutTop = group("Empty", std::nullopt);
    const AppImpact protectedTop = group("helper", 11);
    const AppImpact safe = group("editor", 12);
    const AppImpact gone = group("photos", 99);
    // Its top process belongs to a group on the Never Quit list, although the group itself is not.
    const AppImpact foreignTop = group("browser", 13);
    const ProtectedAppNames names{"Docker", "Safari"};

    const auto nameOf = [&](const std::vector<AppImpact>& groups) -> std::string {
        const AppImpact* found = firstSafeGroup(groups, rows, names, policy);
        return found == nullptr ? "(none)" : found->name;
    };
    EXPECT_EQ(nameOf({neverQuit, withoutTop, protectedTop, foreignTop, safe, gone}), "editor");
    EXPECT_EQ(nameOf({neverQuit, gone, safe}), "photos");
    EXPECT_EQ(nameOf({neverQuit, withoutTop, protectedTop, foreignTop}), "(none)");
    EXPECT_EQ(nameOf({}), "(none)");
}

}  // namespace
}  // namespace tallowcrest

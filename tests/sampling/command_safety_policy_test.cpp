#include "sampling/command_safety_policy.h"

#include <array>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest::CommandSafetyPolicy {
namespace {

using namespace std::string_view_literals;

TEST(CommandSafetyPolicy, MacOSAllowsExactlyTwelveTools) {
    constexpr std::array tools{"/bin/kill"sv,
                               "/bin/launchctl"sv,
                               "/bin/ps"sv,
                               "/usr/bin/du"sv,
                               "/usr/bin/memory_pressure"sv,
                               "/usr/bin/osascript"sv,
                               "/usr/bin/rsync"sv,
                               "/usr/bin/ssh"sv,
                               "/usr/bin/vm_stat"sv,
                               "/usr/local/bin/tailscale"sv,
                               "/usr/sbin/purge"sv,
                               "/usr/sbin/sysctl"sv};
    EXPECT_EQ(macOSExecutables().size(), tools.size());
    for (const std::string_view tool : tools) {
        EXPECT_TRUE(isAllowedExecutable(macOSExecutables(), tool)) << tool;
    }
}

TEST(CommandSafetyPolicy, LinuxAllowsExactlySevenToolsAndTheApplicationsToOpen) {
    constexpr std::array tools{"/usr/bin/du"sv,     "/usr/bin/pkexec"sv, "/usr/bin/rsync"sv,
                               "/usr/bin/ssh"sv,    "/usr/bin/sync"sv,   "/usr/bin/tailscale"sv,
                               "/usr/sbin/sysctl"sv};
    EXPECT_EQ(linuxExecutables().size(),
              tools.size() + linuxSystemMonitors.size() + linuxTailscaleApps.size());
    for (const std::string_view tool : tools) {
        EXPECT_TRUE(isAllowedExecutable(linuxExecutables(), tool)) << tool;
    }
    for (const std::string_view monitor : linuxSystemMonitors) {
        EXPECT_TRUE(isAllowedExecutable(linuxExecutables(), monitor)) << monitor;
    }
    for (const std::string_view app : linuxTailscaleApps) {
        EXPECT_TRUE(isAllowedExecutable(linuxExecutables(), app)) << app;
    }
    EXPECT_FALSE(isAllowedExecutable(linuxExecutables(), "/bin/ps"));
    EXPECT_FALSE(isAllowedExecutable(linuxExecutables(), "/bin/kill"));
}

TEST(CommandSafetyPolicy, SystemMonitorsAreTriedInAFixedOrder) {
    EXPECT_THAT(
        linuxSystemMonitors,
        testing::ElementsAre("/usr/bin/gnome-system-monitor", "/usr/bin/plasma-systemmonitor",
                             "/usr/bin/ksysguard", "/usr/bin/mate-system-monitor",
                             "/usr/bin/xfce4-taskmanager", "/usr/bin/lxtask"));
}

TEST(CommandSafetyPolicy, PathsAreComparedExactly) {
    for (const std::string_view path : {""sv,
                                        "ssh"sv,
                                        "usr/bin/ssh"sv,
                                        "./usr/bin/ssh"sv,
                                        "/usr/bin/env"sv,
                                        "/bin/sh"sv,
                                        "/usr/bin/open"sv,
                                        "/usr//bin/ssh"sv,
                                        "//usr/bin/ssh"sv,
                                        "/usr/bin/ssh/"sv,
                                        "/usr/bin/./ssh"sv,
                                        "/usr/bin/../bin/ssh"sv,
                                        "/usr/bin/SSH"sv,
                                        "/usr/bin/ssh "sv,
                                        " /usr/bin/ssh"sv,
                                        "/usr/bin/ssh\0"sv,
                                        "/usr/bin/ssh\n"sv,
                                        "/usr/bin/ssh-keygen"sv,
                                        "/usr/bin/ss"sv,
                                        "/bin/sync"sv,
                                        "/sbin/sysctl"sv,
                                        "/usr/bin/sysctl"sv,
                                        "/usr/local/bin/pkexec"sv}) {
        EXPECT_FALSE(isAllowedExecutable(macOSExecutables(), path)) << path;
        EXPECT_FALSE(isAllowedExecutable(linuxExecutables(), path)) << path;
    }
}

}  // namespace
}  // namespace tallowcrest::CommandSafetyPolicy

#include "remote/remote_process.h"

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

constexpr bool onMac = false;
constexpr bool onLinux = true;

RemoteProcess process(std::string command) {
    return {.pid = 900, .command = std::move(command)};
}

TEST(RemoteProcess, SystemProcessesAreProtected) {
    for (const char* command : {"kernel_task", "/sbin/launchd", "/any/WindowServer", "loginwindow",
                                "/Applications/Finder", "Dock", "SystemUIServer",
                                "/System/Library/tool", "/usr/libexec/logd"}) {
        EXPECT_TRUE(isProtectedRemoteProcess(process(command), {}, onMac)) << command;
    }
    for (const char* command : {"", "/", "finder", "Finder Helper", "/usr/lib/exec",
                                "/opt/System/x", "System/tool", "/Users/me/usr/libexec/x"}) {
        EXPECT_FALSE(isProtectedRemoteProcess(process(command), {}, onMac)) << command;
    }
}

TEST(RemoteProcess, ALinuxMachineHasSystemProcessesOfItsOwn) {
    // The kernel shortens names to 15 characters.
    for (const char* command :
         {"systemd", "sshd", "tailscaled", "[kworker/0:1]", "gnome-session-b", "Xorg"}) {
        EXPECT_TRUE(isProtectedRemoteProcess(process(command), {}, onLinux)) << command;
        EXPECT_FALSE(isProtectedRemoteProcess(process(command), {}, onMac)) << command;
    }
    EXPECT_TRUE(isProtectedRemoteProcess(process("launchd"), {}, onLinux));
    EXPECT_FALSE(isProtectedRemoteProcess(process("editor"), {}, onLinux));
}

TEST(RemoteProcess, GroupsOfTheNeverQuitListAreProtected) {
    const RemoteProcess helper = process("/Applications/Google Chrome Helper (Renderer)");
    const std::string group = remoteAppGroupName(helper);
    EXPECT_NE(group, helper.displayName());
    EXPECT_FALSE(isProtectedRemoteProcess(helper, {}, onMac));
    EXPECT_TRUE(isProtectedRemoteProcess(helper, {group}, onMac));
    EXPECT_FALSE(isProtectedRemoteProcess(helper, {"google chrome"}, onMac));
}

}  // namespace
}  // namespace tallowcrest

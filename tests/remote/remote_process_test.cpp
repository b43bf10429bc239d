#include "remote/remote_process.h"

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

RemoteProcess process(std::string command) {
    return {.pid = 900, .command = std::move(command)};
}

TEST(RemoteProcess, SystemProcessesAreProtected) {
    for (const char* command : {"kernel_task", "/sbin/launchd", "/any/WindowServer", "loginwindow",
                                "/Applications/Finder", "Dock", "SystemUIServer",
                                "/System/Library/tool", "/usr/libexec/logd"}) {
        EXPECT_TRUE(isProtectedRemoteProcess(process(command), {})) << command;
    }
    for (const char* command : {"", "/", "finder", "Finder Helper", "/usr/lib/exec",
                                "/opt/System/x", "System/tool", "/Users/me/usr/libexec/x"}) {
        EXPECT_FALSE(isProtectedRemoteProcess(process(command), {})) << command;
    }
}

TEST(RemoteProcess, ALinuxMachineHasSystemProcessesOfItsOwn) {
    // The kernel shortens names to 15 characters.
    for (const char* command : {"systemd", "sshd", "[kworker/0:1]", "gnome-session-b", "Xorg"}) {
        EXPECT_TRUE(isProtectedRemoteProcess(process(command), {}, true)) << command;
        EXPECT_FALSE(isProtectedRemoteProcess(process(command), {}, false)) << command;
    }
    EXPECT_TRUE(isProtectedRemoteProcess(process("launchd"), {}, true));
    EXPECT_FALSE(isProtectedRemoteProcess(process("editor"), {}, true));
}

TEST(RemoteProcess, GroupsOfTheNeverQuitListAreProtected) {
    const RemoteProcess helper = process("/Applications/Google Chrome Helper (Renderer)");
    const std::string group = remoteAppGroupName(helper);
    EXPECT_NE(group, helper.displayName());
    EXPECT_FALSE(isProtectedRemoteProcess(helper, {}));
    EXPECT_TRUE(isProtectedRemoteProcess(helper, {group}));
    EXPECT_FALSE(isProtectedRemoteProcess(helper, {"google chrome"}));
}

}  // namespace
}  // namespace tallowcrest

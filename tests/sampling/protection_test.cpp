#include "sampling/protection.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/support/process_row.h"
#include "tests/support/words_of.h"

namespace tallowcrest {
namespace {

constexpr std::int64_t ownPID = 4242;
constexpr ProtectionPolicy everywhere{.ownPID = ownPID, .protectsLinuxSystem = false};
constexpr ProtectionPolicy onLinux{.ownPID = ownPID, .protectsLinuxSystem = true};

constexpr const char* builtIn[] = {
    "kernel_task",    "launchd",       "WindowServer",  "loginwindow", "Finder",
    "SystemUIServer", "ControlCenter", "Dock",          "cfprefsd",    "distnoted",
    "notifyd",        "powerd",        "runningboardd", "Tallowcrest"};

TEST(IsProtected, TheFourteenBuiltInNamesApplyOnEveryPlatform) {
    static_assert(std::size(builtIn) == 14);
    for (const std::string name : builtIn) {
        EXPECT_TRUE(isBuiltInProtectedName(name)) << name;
        for (const ProtectionPolicy& policy : {everywhere, onLinux}) {
            EXPECT_TRUE(isProtected(processRow(7, name), policy)) << name;
            EXPECT_TRUE(isProtected(processRow(7, "/Applications/" + name), policy)) << name;
        }
    }
}

TEST(IsProtected, BuiltInNamesAreComparedExactly) {
    for (const char* name : {"dock", "DOCK", "Dock ", " Dock", "Docker", "finder", "Finder2",
                             "tallow", "", "powerd.d", "/Dock/other", "Dock/other"}) {
        EXPECT_FALSE(isBuiltInProtectedName(name)) << name;
        EXPECT_FALSE(isProtected(processRow(7, name), everywhere)) << name;
        EXPECT_FALSE(isProtected(processRow(7, name), onLinux)) << name;
    }
}

TEST(IsProtected, ThisProcessIsProtectedUnderAnyName) {
    EXPECT_TRUE(isProtected(processRow(ownPID, "/tmp/some-other-name"), everywhere));
    EXPECT_FALSE(isProtected(processRow(ownPID + 1, "/tmp/some-other-name"), everywhere));
}

TEST(IsProtected, ProgramsInSystemFolders) {
    EXPECT_TRUE(isProtected(processRow(7, "/System/Library/anything"), everywhere));
    EXPECT_TRUE(isProtected(processRow(7, "/usr/libexec/gvfsd"), everywhere));
    for (const char* command :
         {"/System", "/Systems/a", "/system/a", "/usr/libexec", "/usr/libexecutive/a",
          "/opt/System/a", "/opt/usr/libexec/a", " /System/a", "/usr/bin/a"}) {
        EXPECT_FALSE(isProtected(processRow(7, command), everywhere)) << command;
    }
}

TEST(IsProtectedOnLinux, TheFirstProcessWithAnyProgram) {
    EXPECT_TRUE(isProtectedOnLinux(processRow(1, "/bin/busybox")));
    EXPECT_TRUE(isProtected(processRow(1, "/bin/busybox"), onLinux));
    EXPECT_FALSE(isProtected(processRow(1, "/bin/busybox"), everywhere));
    EXPECT_FALSE(isProtectedOnLinux(processRow(2, "/bin/busybox")));
}

TEST(IsProtectedOnLinux, KernelThreads) {
    for (const char* command : {"[kthreadd]", "[kworker/0:1-events]", "[migration/0]", "[]"}) {
        EXPECT_TRUE(isProtectedOnLinux(processRow(50, command))) << command;
        EXPECT_FALSE(isProtected(processRow(50, command), everywhere)) << command;
    }
    for (const char* command : {"[open", "close]", "/tmp/[a]", "[a] b", "a [b]", ""}) {
        EXPECT_FALSE(isProtectedOnLinux(processRow(50, command))) << command;
    }
}

TEST(IsProtectedOnLinux, TheSystemOnLinuxOnly) {
    for (const std::string& command : wordsOf(
             "/usr/bin/tallowcrest /opt/tallowcrest/bin/tallowcrest-desktop "
             "/usr/lib/systemd/systemd /lib/systemd/systemd (sd-pam) "
             "/usr/lib/systemd/systemd-journald /lib/systemd/systemd-udevd "
             "/usr/lib/systemd/systemd-resolved /usr/lib/systemd/systemd-networkd "
             "/usr/lib/systemd/systemd-timesyncd /usr/lib/systemd/systemd-oomd "
             "/usr/lib/systemd/systemd-logind /usr/lib/xorg/Xorg /usr/bin/Xwayland /usr/bin/X "
             "/usr/bin/gnome-shell /usr/bin/kwin_x11 /usr/bin/kwin_wayland /usr/bin/mutter "
             "/usr/bin/weston /usr/bin/sway /usr/bin/labwc /usr/bin/wayfire /usr/bin/Hyprland "
             "/usr/bin/xfwm4 /usr/bin/openbox /usr/bin/marco /usr/bin/muffin /usr/bin/cinnamon "
             "/usr/bin/plasmashell /usr/bin/xfce4-panel /usr/lib/gnome-session-binary "
             "/usr/bin/ksmserver /usr/bin/plasma_session /usr/bin/startplasma-x11 "
             "/usr/bin/startplasma-wayland /usr/bin/xfce4-session /usr/bin/mate-session "
             "/usr/bin/lxsession /usr/bin/lxqt-session /usr/bin/cinnamon-session /usr/sbin/gdm3 "
             "/usr/lib/gdm3/gdm-session-worker /usr/lib/gdm3/gdm-x-session "
             "/usr/lib/gdm3/gdm-wayland-session /usr/bin/sddm /usr/lib/sddm/sddm-helper "
             "/usr/sbin/lightdm /usr/sbin/greetd /usr/sbin/lxdm /usr/bin/xdm /usr/lib/elogind "
             "/usr/bin/login /sbin/agetty /usr/bin/dbus-daemon /usr/bin/dbus-broker "
             "/usr/bin/dbus-broker-launch /usr/bin/pipewire /usr/bin/pipewire-pulse "
             "/usr/bin/pipewire-media-session /usr/bin/wireplumber /usr/bin/pulseaudio "
             "/usr/sbin/NetworkManager /sbin/wpa_supplicant /usr/lib/iwd /usr/lib/polkit-1/polkitd "
             "/usr/lib/policykit-1-gnome/polkit-gnome-authentication-agent-1 "
             "/usr/lib/x86_64-linux-gnu/polkit-kde-authentication-agent-1 /usr/sbin/sshd")) {
        const ProcessSample row = processRow(900, command);
        EXPECT_TRUE(isProtectedOnLinux(row)) << command;
        EXPECT_TRUE(isProtected(row, onLinux)) << command;
        EXPECT_FALSE(isProtected(row, everywhere)) << command;
    }
}

TEST(IsProtectedOnLinux, OrdinaryProgramsAreNot) {
    std::vector<std::string> others = wordsOf(
        "/usr/bin/firefox /usr/bin/bash /usr/bin/systemd-inhibit /usr/bin/ssh /usr/bin/ssh-agent "
        "/usr/bin/xterm /usr/bin/sshd2 /usr/bin/SYSTEMD /usr/bin/Sway /usr/bin/x "
        "/usr/bin/gnome-shell-calendar-server /home/user/sway/editor bash -bash /");
    others.insert(others.end(), {"/usr/bin/sshd (replaced)", "/opt/sshd: tool", "notsshd: user", "",
                                 " sway", ": sway"});
    for (const std::string& command : others) {
        EXPECT_FALSE(isProtectedOnLinux(processRow(900, command))) << command;
    }
}

}  // namespace
}  // namespace tallowcrest

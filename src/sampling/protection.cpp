#include "sampling/protection.h"

#include <unordered_set>

namespace tallowcrest {
namespace {

using Names = std::unordered_set<std::string_view>;

const Names& builtInNames() {
    static const Names names{
        "kernel_task",    "launchd",       "WindowServer",  "loginwindow", "Finder",
        "SystemUIServer", "ControlCenter", "Dock",          "cfprefsd",    "distnoted",
        "notifyd",        "powerd",        "runningboardd", "Tallowcrest",
    };
    return names;
}

/// With the forms to which the kernel shortens a longer name where only that is known.
Names withShortForms(Names names) {
    constexpr std::size_t longestShortForm = 15;
    for (const std::string_view name : Names(names)) {
        names.insert(name.substr(0, longestShortForm));
    }
    return names;
}

/// Processes whose end would end the session, or leave the machine without display, sound, network
/// or login.
const Names& linuxNames() {
    static const Names names = withShortForms({
        // This program
        "tallowcrest",
        "tallowcrest-desktop",

        // Service manager, of the system and of each user
        "systemd",
        "(sd-pam)",
        "init",

        // Services that the service manager depends on
        "systemd-homed",
        "systemd-journald",
        "systemd-logind",
        "systemd-machined",
        "systemd-networkd",
        "systemd-oomd",
        "systemd-resolved",
        "systemd-timesyncd",
        "systemd-udevd",
        "systemd-userdbd",
        "systemd-userwork",

        // Display servers
        "X",
        "Xorg",
        "Xtigervnc",
        "Xvfb",
        "Xvnc",
        "Xwayland",

        // Compositors and window managers
        "Hyprland",
        "awesome",
        "bspwm",
        "budgie-wm",
        "cage",
        "cinnamon",
        "compiz",
        "cosmic-comp",
        "dwm",
        "enlightenment",
        "fluxbox",
        "fvwm2",
        "fvwm3",
        "gala",
        "gamescope",
        "gamescope-wl",
        "gnome-shell",
        "herbstluftwm",
        "i3",
        "icewm",
        "jwm",
        "kwin_wayland",
        "kwin_wayland_wrapper",
        "kwin_x11",
        "labwc",
        "marco",
        "metacity",
        "muffin",
        "mutter",
        "niri",
        "openbox",
        "phoc",
        "picom",
        "river",
        "sway",
        "twm",
        "wayfire",
        "weston",
        "wmaker",
        "xfwm4",
        "xmonad",

        // Desktop shells, which start all other programs
        "budgie-panel",
        "gnome-panel",
        "lxpanel",
        "lxqt-panel",
        "mate-panel",
        "phosh",
        "plasmashell",
        "xfce4-panel",

        // Session managers
        "budgie-session-binary",
        "cinnamon-session",
        "cinnamon-session-binary",
        "cosmic-session",
        "gnome-session",
        "gnome-session-binary",
        "gnome-session-ctl",
        "gnome-session-service",
        "icewm-session",
        "ksmserver",
        "lxqt-session",
        "lxsession",
        "mate-session",
        "plasma_session",
        "startplasma-wayland",
        "startplasma-x11",
        "xfce4-session",

        // Login managers and logins
        "agetty",
        "elogind",
        "elogind-daemon",
        "gdm",
        "gdm-session-worker",
        "gdm-wayland-session",
        "gdm-x-session",
        "gdm3",
        "getty",
        "greetd",
        "lightdm",
        "login",
        "lxdm",
        "lxdm-binary",
        "lxdm-session",
        "ly",
        "nodm",
        "sddm",
        "sddm-helper",
        "sddm-helper-start-wayland",
        "sddm-helper-start-x11user",
        "seatd",
        "slim",
        "wdm",
        "xdm",
        "xinit",

        // Message bus
        "dbus-broker",
        "dbus-broker-launch",
        "dbus-daemon",
        "dbus-launch",
        "dbus-run-session",

        // Sound
        "pipewire",
        "pipewire-media-session",
        "pipewire-pulse",
        "pulseaudio",
        "wireplumber",

        // Network
        "NetworkManager",
        "connmand",
        "dhclient",
        "dhcpcd",
        "iwd",
        "tailscaled",
        "wpa_supplicant",

        // Authorisation
        "lxpolkit",
        "lxqt-policykit-agent",
        "mate-polkit",
        "polkit-gnome-authentication-agent-1",
        "polkit-kde-authentication-agent-1",
        "polkit-mate-authentication-agent-1",
        "polkitd",
        "xfce-polkit",

        // Remote login
        "dropbear",
        "sshd",
        "sshd-auth",
        "sshd-session",
        "xrdp",
        "xrdp-sesman",
    });
    return names;
}

}  // namespace

bool isBuiltInProtectedName(std::string_view displayName) {
    return builtInNames().contains(displayName);
}

bool isProtectedOnLinux(const ProcessSample& row) {
    constexpr std::int64_t firstProcess = 1;
    const std::string_view command = row.command;
    return row.pid == firstProcess || (command.starts_with('[') && command.ends_with(']')) ||
           linuxNames().contains(row.displayName());
}

bool isProtected(const ProcessSample& row, const ProtectionPolicy& policy) {
    return row.pid == policy.ownPID || isBuiltInProtectedName(row.displayName()) ||
           row.command.starts_with("/System/") || row.command.starts_with("/usr/libexec/") ||
           (policy.protectsLinuxSystem && isProtectedOnLinux(row));
}

}  // namespace tallowcrest

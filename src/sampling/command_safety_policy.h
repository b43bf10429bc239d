#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <set>
#include <span>
#include <string>
#include <string_view>

/// The tools that may be launched on this machine. Any thread.
namespace tallowcrest::CommandSafetyPolicy {

/// Absolute paths, compared exactly: no normalisation, no link resolution, no search path.
class AllowedExecutables {
public:
    AllowedExecutables(std::initializer_list<std::string_view> paths);
    explicit AllowedExecutables(std::span<const std::string_view> paths);

    bool contains(std::string_view path) const;
    std::size_t size() const { return paths_.size(); }

private:
    std::set<std::string, std::less<>> paths_;
};

/// The twelve tools of macOS.
const AllowedExecutables& macOSExecutables();

/// The process viewers of the Linux desktops, in the order in which they are tried.
inline constexpr std::array<std::string_view, 6> linuxSystemMonitors{
    "/usr/bin/gnome-system-monitor", "/usr/bin/plasma-systemmonitor", "/usr/bin/ksysguard",
    "/usr/bin/mate-system-monitor",  "/usr/bin/xfce4-taskmanager",    "/usr/bin/lxtask"};

/// The applications for the client of the tailnet, which has none of its own on Linux, in the order
/// in which they are tried: as packages of the distribution, then as Flatpaks of the whole machine.
inline constexpr std::array<std::string_view, 4> linuxTailscaleApps{
    "/usr/bin/trayscale", "/usr/bin/ktailctl", "/var/lib/flatpak/exports/bin/dev.deedles.Trayscale",
    "/var/lib/flatpak/exports/bin/org.fkoehler.KTailctl"};

/// The tools that are launched on Linux: the secure shell, the client of the tailnet, the one that
/// measures folders, the one that copies an installation, the tools that purge the file caches with
/// the owner's authorisation, `linuxSystemMonitors` and `linuxTailscaleApps`. Kernel files and
/// system calls replace the others.
const AllowedExecutables& linuxExecutables();

inline bool isAllowedExecutable(const AllowedExecutables& allowed, std::string_view path) {
    return allowed.contains(path);
}

}  // namespace tallowcrest::CommandSafetyPolicy

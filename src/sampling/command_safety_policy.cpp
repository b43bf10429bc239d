#include "sampling/command_safety_policy.h"

#include <vector>

namespace tallowcrest::CommandSafetyPolicy {

AllowedExecutables::AllowedExecutables(std::initializer_list<std::string_view> paths)
    : AllowedExecutables(std::span<const std::string_view>(paths.begin(), paths.size())) {}

AllowedExecutables::AllowedExecutables(std::span<const std::string_view> paths) {
    for (const std::string_view path : paths) {
        paths_.emplace(path);
    }
}

bool AllowedExecutables::contains(std::string_view path) const {
    return paths_.contains(path);
}

const AllowedExecutables& macOSExecutables() {
    static const AllowedExecutables executables{
        "/bin/kill",
        "/bin/launchctl",
        "/bin/ps",
        "/usr/bin/du",
        "/usr/bin/memory_pressure",
        "/usr/bin/osascript",
        "/usr/bin/rsync",
        "/usr/bin/ssh",
        "/usr/bin/vm_stat",
        "/usr/local/bin/tailscale",
        "/usr/sbin/purge",
        "/usr/sbin/sysctl",
    };
    return executables;
}

const AllowedExecutables& linuxExecutables() {
    static const AllowedExecutables executables = [] {
        std::vector<std::string_view> paths(linuxSystemMonitors.begin(), linuxSystemMonitors.end());
        paths.insert(paths.end(), linuxTailscaleApps.begin(), linuxTailscaleApps.end());
        paths.insert(paths.end(),
                     {"/usr/bin/du", "/usr/bin/pkexec", "/usr/bin/rsync", "/usr/bin/ssh",
                      "/usr/bin/sync", "/usr/bin/tailscale", "/usr/sbin/sysctl"});
        return AllowedExecutables(std::span<const std::string_view>(paths));
    }();
    return executables;
}

}  // namespace tallowcrest::CommandSafetyPolicy

#include "actions/cache_purge.h"

#include <utility>

namespace tallowcrest {

std::vector<ToolRequest> macOSPurgeTools() {
    return {{.path = "/usr/sbin/purge"}};
}

std::vector<ToolRequest> linuxPurgeTools(bool isRoot) {
    const std::string sysctl = "/usr/sbin/sysctl";
    // 1 drops the page cache only. The kernel's directory and inode caches are not file caches.
    const std::string setting = "vm.drop_caches=1";
    return {{.path = "/usr/bin/sync"},
            isRoot ? ToolRequest{.path = sysctl, .arguments = {"-w", setting}}
                   // Without the option it could wait for a password on a terminal nobody watches.
                   : ToolRequest{.path = "/usr/bin/pkexec",
                                 .arguments = {"--disable-internal-agent", sysctl, "-w", setting}}};
}

ToolCachePurge::ToolCachePurge(const CommandSafetyPolicy::AllowedExecutables& allowed,
                               ToolLauncher& launcher, std::vector<ToolRequest> tools)
    : allowed_(allowed), launcher_(launcher), tools_(std::move(tools)) {}

PurgeResult ToolCachePurge::purge() {
    for (const ToolRequest& tool : tools_) {
        if (!isAllowedExecutable(allowed_, tool.path)) {
            return {PurgeResult::Kind::blocked, {}};
        }
        const ToolResult result = launcher_.launch(tool);
        if (!result.launched) {
            return {PurgeResult::Kind::failed, result.launchError};
        }
        if (result.terminationStatus != 0) {
            return {PurgeResult::Kind::refused, {}};
        }
    }
    return {PurgeResult::Kind::purged, {}};
}

}  // namespace tallowcrest

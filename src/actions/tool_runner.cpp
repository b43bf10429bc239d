#include "actions/tool_runner.h"

#include <utility>

#include "core/activity_log.h"

namespace tallowcrest {

ToolRunner::ToolRunner(const CommandSafetyPolicy::AllowedExecutables& allowed,
                       ToolLauncher& launcher, Jobs& jobs, ActivityLog& activityLog)
    : allowed_(allowed), launcher_(launcher), activityLog_(activityLog), jobs_(jobs) {}

std::string ToolRunner::runTool(const std::string& path, const std::vector<std::string>& arguments,
                                std::chrono::milliseconds timeout, std::stop_token stop) {
    return runIfAllowed({path, arguments, timeout, false, std::move(stop)});
}

std::string ToolRunner::runSSH(const std::vector<std::string>& arguments,
                               std::chrono::milliseconds timeout, std::stop_token stop) {
    return runIfAllowed({"/usr/bin/ssh", arguments, timeout, true, std::move(stop)});
}

std::string ToolRunner::runIfAllowed(const ToolRequest& request) {
    if (!CommandSafetyPolicy::isAllowedExecutable(allowed_, request.path)) {
        jobs_.postToMain([&log = activityLog_] {
            log.recordMessage("Blocked executable outside Tallowcrest's command allowlist.");
        });
        return {};
    }
    return launchForText(launcher_, request);
}

}  // namespace tallowcrest

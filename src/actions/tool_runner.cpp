#include "actions/tool_runner.h"

#include <utility>

#include "core/activity_log.h"

namespace tallowcrest {

ToolRunner::ToolRunner(const CommandSafetyPolicy::AllowedExecutables& allowed,
                       ToolLauncher& launcher, Jobs& jobs, ActivityLog& activityLog)
    : allowed_(allowed), launcher_(launcher), activityLog_(activityLog), jobs_(jobs) {}

std::string ToolRunner::runTool(const std::string& path, const std::vector<std::string>& arguments,
                                std::chrono::milliseconds timeout, std::stop_token stop) {
    return isAllowed(path)
               ? launchForText(launcher_, {path, arguments, timeout, false, std::move(stop)})
               : std::string();
}

std::string ToolRunner::runToolForBytes(const std::string& path,
                                        const std::vector<std::string>& arguments,
                                        std::chrono::milliseconds timeout, std::stop_token stop) {
    return isAllowed(path)
               ? launcher_.launch({path, arguments, timeout, false, std::move(stop)}).output
               : std::string();
}

std::string ToolRunner::runSSH(const std::vector<std::string>& arguments,
                               std::chrono::milliseconds timeout, std::stop_token stop) {
    const ToolRequest request{.path = "/usr/bin/ssh",
                              .arguments = arguments,
                              .timeout = timeout,
                              .mergeStandardError = true,
                              .stop = std::move(stop),
                              .isKilledAfterDeadline = true};
    return isAllowed(request.path) ? launchForText(launcher_, request) : std::string();
}

bool ToolRunner::isAllowed(const std::string& path) {
    if (CommandSafetyPolicy::isAllowedExecutable(allowed_, path)) {
        return true;
    }
    jobs_.postToMain([&log = activityLog_] {
        log.recordMessage("Blocked executable outside Tallowcrest's command allowlist.");
    });
    return false;
}

}  // namespace tallowcrest

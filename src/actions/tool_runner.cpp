#include "actions/tool_runner.h"

namespace tallowcrest {

ToolRunner::ToolRunner(const CommandSafetyPolicy::AllowedExecutables& allowed,
                       ToolLauncher& launcher, MainQueue& mainQueue, ActivityLog& activityLog)
    : allowed_(allowed),
      launcher_(launcher),
      mainQueue_(mainQueue),
      recorder_(std::make_shared<Recorder>(Recorder{activityLog})) {}

std::string ToolRunner::runTool(const std::string& path, const std::vector<std::string>& arguments,
                                std::chrono::milliseconds timeout) {
    return runIfAllowed({path, arguments, timeout, false});
}

std::string ToolRunner::runSSH(const std::vector<std::string>& arguments,
                               std::chrono::milliseconds timeout) {
    return runIfAllowed({"/usr/bin/ssh", arguments, timeout, true});
}

std::string ToolRunner::runIfAllowed(const ToolRequest& request) {
    if (!CommandSafetyPolicy::isAllowedExecutable(allowed_, request.path)) {
        postBlockedMessage();
        return {};
    }
    return launchForText(launcher_, request);
}

void ToolRunner::postBlockedMessage() {
    mainQueue_.post([weakRecorder = std::weak_ptr(recorder_)] {
        if (const auto recorder = weakRecorder.lock()) {
            recorder->activityLog.recordMessage(
                "Blocked executable outside Tallowcrest's command allowlist.");
        }
    });
}

}  // namespace tallowcrest

#include "actions/kill_tool.h"

#include <string>

namespace tallowcrest {
namespace {

using Kind = TerminationResult::Kind;

class RememberedProcess final : public HeldProcess {
public:
    RememberedProcess(const CommandSafetyPolicy::AllowedExecutables& allowed,
                      ToolLauncher& launcher, KillTool::StartTimeOf startTimeOf, std::int64_t pid,
                      std::uint64_t startTime)
        : allowed_(allowed),
          launcher_(launcher),
          startTimeOf_(std::move(startTimeOf)),
          pid_(pid),
          startTime_(startTime != 0 ? startTime : startTimeOf_(pid)) {}

    TerminationResult terminate() override {
        const std::string tool = "/bin/kill";
        if (!isAllowedExecutable(allowed_, tool)) {
            return {Kind::blocked, {}};
        }
        const std::uint64_t startTimeNow = startTimeOf_(pid_);
        if (startTimeNow == 0) {
            return {Kind::refused, {}};
        }
        if (startTimeNow != startTime_) {
            return {Kind::blocked, {}};
        }
        const ToolResult result =
            launcher_.launch({.path = tool, .arguments = {"-TERM", std::to_string(pid_)}});
        if (!result.launched) {
            return {Kind::failed, result.launchError};
        }
        return {result.terminationStatus == 0 ? Kind::asked : Kind::refused, {}};
    }

private:
    const CommandSafetyPolicy::AllowedExecutables& allowed_;
    ToolLauncher& launcher_;
    KillTool::StartTimeOf startTimeOf_;
    std::int64_t pid_;
    std::uint64_t startTime_;  ///< 0 when no process had the pid
};

}  // namespace

std::unique_ptr<HeldProcess> KillTool::hold(std::int64_t pid, std::uint64_t startTime) {
    return std::make_unique<RememberedProcess>(allowed_, launcher_, startTimeOf_, pid, startTime);
}

}  // namespace tallowcrest

#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "core/jobs/jobs.h"
#include "sampling/command_safety_policy.h"
#include "sampling/tool_launcher.h"

namespace tallowcrest {

/// Runs the tools that are launched for their output, except those of the sampling.
///
/// Built and destroyed on the main thread, and destroyed only after the last call has returned. A
/// refusal still queued for the main thread by then is dropped.
class ToolRunner {
public:
    ToolRunner(const CommandSafetyPolicy::AllowedExecutables& allowed, ToolLauncher& launcher,
               Jobs& jobs, ActivityLog& activityLog);
    ToolRunner(const ToolRunner&) = delete;
    ToolRunner& operator=(const ToolRunner&) = delete;

    /// The tool's standard output; what it had written when its timeout ended it. Empty when the
    /// launch fails, the output is not valid UTF-8 or the path is refused. A refusal returns at
    /// once and is recorded later, on the main thread. The exit status is never looked at.
    /// Blocks; any thread.
    std::string runTool(const std::string& path, const std::vector<std::string>& arguments,
                        std::chrono::milliseconds timeout);

    /// The same for the secure shell, with standard error in the text too, in the order of writing,
    /// so that the far side's failures reach the caller.
    std::string runSSH(const std::vector<std::string>& arguments,
                       std::chrono::milliseconds timeout);

private:
    std::string runIfAllowed(const ToolRequest& request);

    const CommandSafetyPolicy::AllowedExecutables& allowed_;
    ToolLauncher& launcher_;
    ActivityLog& activityLog_;
    JobScope jobs_;
};

}  // namespace tallowcrest

#pragma once

#include <chrono>
#include <stop_token>
#include <string>
#include <vector>

#include "core/jobs/jobs.h"
#include "sampling/command_safety_policy.h"
#include "sampling/tool_launcher.h"

namespace tallowcrest {

class ActivityLog;

/// Runs the tools that are launched for their output, except the metric tools of `sampling`.
///
/// Built and destroyed on the main thread, and destroyed only after the last call has returned. A
/// refusal still queued for the main thread by then is dropped.
class ToolRunner {
public:
    ToolRunner(const CommandSafetyPolicy::AllowedExecutables& allowed, ToolLauncher& launcher,
               Jobs& jobs, ActivityLog& activityLog);
    ToolRunner(const ToolRunner&) = delete;
    ToolRunner& operator=(const ToolRunner&) = delete;

    /// The tool's standard output, incomplete if the deadline ended the tool. Empty when the path
    /// is not allowed, the launch fails, or the output is not valid UTF-8. A path that is not
    /// allowed returns at once, and the refusal is recorded later, on the main thread. The exit
    /// status is ignored. When `stop` is requested, the tool is asked to terminate and the call
    /// ends early. Blocks; any thread.
    std::string runTool(const std::string& path, const std::vector<std::string>& arguments,
                        std::chrono::milliseconds timeout, std::stop_token stop = {});

    /// The same for a tool whose output has names from the disk, whatever their bytes are.
    std::string runToolForBytes(const std::string& path, const std::vector<std::string>& arguments,
                                std::chrono::milliseconds timeout, std::stop_token stop);

    /// The same for the secure shell, with standard error merged into the text in the order of
    /// writing, so that the caller sees the errors of the remote side.
    /// When `stop` is requested, it ends early.
    std::string runSSH(const std::vector<std::string>& arguments, std::chrono::milliseconds timeout,
                       std::stop_token stop = {});

private:
    /// Records the refusal where it is not.
    bool isAllowed(const std::string& path);

    const CommandSafetyPolicy::AllowedExecutables& allowed_;
    ToolLauncher& launcher_;
    ActivityLog& activityLog_;
    JobScope jobs_;
};

}  // namespace tallowcrest

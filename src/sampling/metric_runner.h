#pragma once

#include <string>
#include <vector>

#include "sampling/command_safety_policy.h"
#include "sampling/tool_launcher.h"

namespace tallowcrest {

/// Runs the metric tools for at most 2.0 seconds each, without messages. Any thread but the main
/// one.
class MetricRunner {
public:
    /// The references must outlive the object.
    MetricRunner(const CommandSafetyPolicy::AllowedExecutables& allowed, ToolLauncher& launcher)
        : allowed_(allowed), launcher_(launcher) {}

    /// The tool's standard output, incomplete if the deadline ended the tool. Empty when the path
    /// is not allowed, the launch fails, or the output is not valid UTF-8.
    std::string runMetricTool(const std::string& path, const std::vector<std::string>& arguments);

private:
    const CommandSafetyPolicy::AllowedExecutables& allowed_;
    ToolLauncher& launcher_;
};

}  // namespace tallowcrest

#pragma once

#include <string>
#include <vector>

#include "sampling/command_safety_policy.h"
#include "sampling/tool_launcher.h"

namespace tallowcrest {

/// Runs the metric tools: silent, bounded to 2.0 seconds. Any thread but the main one.
class MetricRunner {
public:
    MetricRunner(const CommandSafetyPolicy::AllowedExecutables& allowed, ToolLauncher& launcher)
        : allowed_(allowed), launcher_(launcher) {}

    /// The tool's standard output; what it wrote before the deadline when it overran it. Empty when
    /// the path is refused, the launch fails, or the output is not valid UTF-8.
    std::string runMetricTool(const std::string& path, const std::vector<std::string>& arguments);

private:
    const CommandSafetyPolicy::AllowedExecutables& allowed_;
    ToolLauncher& launcher_;
};

}  // namespace tallowcrest

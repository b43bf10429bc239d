#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "actions/graceful_quit.h"
#include "sampling/command_safety_policy.h"
#include "sampling/tool_launcher.h"

namespace tallowcrest {

/// The script that asks the application called `name` to quit if it is running. It contains the
/// name in quotes, unchanged. Absent when the name is empty, is invalid UTF-8, or contains a quote,
/// a backslash, a control character, or a line or paragraph separator. Accepts untrusted input.
/// Pure; any thread.
std::optional<std::string> gracefulQuitScript(std::string_view name);

/// Asks the application by its name, with the script tool of macOS. Ignores the members, because an
/// application quits with all its processes. The result is also false when the tool is not allowed
/// or there is no script for the name; then nothing is launched. Waits for the application's answer
/// without a deadline.
class AppleScriptQuit final : public GracefulQuit {
public:
    /// The references must outlive the object.
    AppleScriptQuit(const CommandSafetyPolicy::AllowedExecutables& allowed, ToolLauncher& launcher);

private:
    bool ask(const std::string& name, const std::vector<ProcessSample>& members) override;

    const CommandSafetyPolicy::AllowedExecutables& allowed_;
    ToolLauncher& launcher_;
};

}  // namespace tallowcrest

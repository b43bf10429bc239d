#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "actions/graceful_quit.h"
#include "sampling/command_safety_policy.h"
#include "sampling/tool_launcher.h"

namespace tallowcrest {

/// The script that asks the application called `name` to quit if it runs. The name stands in it as
/// it is, between two quotes. Absent for one that would not stay between them, or that no
/// application can bear: with a quote, a backslash, a control character or a line separator in it,
/// invalid as UTF-8, or empty. Pure; any thread; of hostile input too.
std::optional<std::string> gracefulQuitScript(std::string_view name);

/// Asks by name, with the script tool of macOS. The application answers for all its processes.
/// False as well when the tool is not allowed or no script can be made of the name; nothing is
/// launched then. Waits for the application's answer however long it takes.
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

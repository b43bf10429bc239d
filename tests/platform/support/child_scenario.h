#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>

#include "sampling/tool_launcher.h"

/// What tests with real children need.
namespace tallowcrest::child_scenario {

/// A request that lets the shell play a tool of any behaviour.
ToolRequest shellTool(const std::string& script,
                      std::optional<std::chrono::milliseconds> timeout = std::nullopt);

/// Whether the process runs; a zombie does not.
bool isRunning(pid_t pid);

/// Whether this process has a child, dead or alive, that nobody has waited for.
bool hasChild();

/// How many descriptors this process has open.
int openDescriptorCount();

}  // namespace tallowcrest::child_scenario

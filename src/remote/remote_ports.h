#pragma once

#include <string>

#include "remote/tailnet_reading.h"
#include "sampling/command_safety_policy.h"

namespace tallowcrest {

class ToolLauncher;

/// The ports of `Remote`. The references must outlive the work that it has under way.
struct RemotePorts {
    ToolLauncher& launcher;
    const CommandSafetyPolicy::AllowedExecutables& allowed;
    TailscaleDaemon daemon = {};    ///< absent where it has no local socket
    std::string tailscaleCLI = {};  ///< empty where the tailnet is not read
};

}  // namespace tallowcrest

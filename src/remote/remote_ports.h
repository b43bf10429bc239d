#pragma once

#include "sampling/command_safety_policy.h"

namespace tallowcrest {

class ToolLauncher;

/// The ports of `Remote`. The references must outlive the work that it has under way.
struct RemotePorts {
    ToolLauncher& launcher;
    const CommandSafetyPolicy::AllowedExecutables& allowed;
};

}  // namespace tallowcrest

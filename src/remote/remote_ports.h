#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "actions/report_folder.h"
#include "remote/tailnet_reading.h"
#include "sampling/command_safety_policy.h"

namespace tallowcrest {

class ToolLauncher;

/// What the actions on other machines need of this one.
struct RemoteActionPorts {
    /// The owner's SSH public key as it is now; absent when there is none. Never absent itself.
    /// Main thread.
    std::function<std::optional<std::string>()> localPublicKey = [] { return std::nullopt; };
    /// Shared, because background work may outlive the component. Never null.
    std::shared_ptr<ReportFolder> folder = {};
    /// `Places::portTest`.
    std::string portTest = {};
};

/// The ports of `Remote`. The references must outlive the work that it has under way.
struct RemotePorts {
    ToolLauncher& launcher;
    const CommandSafetyPolicy::AllowedExecutables& allowed;
    TailscaleDaemon daemon = {};    ///< absent where it has no local socket
    std::string tailscaleCLI = {};  ///< empty where the tailnet is not read
    RemoteActionPorts actions = {};
};

}  // namespace tallowcrest

#pragma once

#include "actions/tool_runner.h"
#include "remote/remote_actions.h"
#include "remote/remote_ports.h"
#include "remote/remote_profiles.h"
#include "remote/remote_scan.h"
#include "remote/tailnet.h"

namespace tallowcrest {

class Pasteboard;
struct Services;

/// The components behind the other machines of the tailnet. Main thread.
struct Remote {
    /// The references must outlive the object.
    Remote(const Services& services, Pasteboard& pasteboard, const RemotePorts& ports);

    ToolRunner tools;
    Tailnet tailnet;
    RemoteScan scan;
    RemoteProfiles profiles;
    RemoteActions actions;
};

}  // namespace tallowcrest

#pragma once

#include <functional>

#include "actions/action_ports.h"
#include "actions/automation.h"
#include "actions/desktop_actions.h"
#include "actions/local_actions.h"
#include "actions/review_target.h"
#include "core/services.h"

namespace tallowcrest {

/// The components behind what the owner can do on this machine. Main thread.
struct Actions {
    /// `refresh` takes a new sample. The references must outlive the object.
    Actions(const Services& services, LatestSample& sample, ProtectionPolicy protection,
            std::function<void()> refresh, ActionPorts ports);

    ReviewTarget review;
    LocalActions local;
    Automation automation;
    ExternalApplications applications;
    Pasteboard pasteboard;
};

}  // namespace tallowcrest

#pragma once

#include <functional>
#include <memory>
#include <string>

#include "core/routes.h"
#include "integration/install_plan.h"
#include "integration/update_ports.h"

namespace tallowcrest {

class InstallationFiles;
class NotificationCenter;

/// What the installation needs. Null and empty where nothing can be installed.
struct InstallPorts {
    /// Shared, because background work may outlive the components.
    std::shared_ptr<InstallationFiles> files = {};
    InstallPlan install = {};
    LoginPlan login = {};
    /// The application's own icon as SVG, for `InstallPlan::icon`. Main thread.
    std::function<std::string()> icon = {};
};

/// The ports of `Integration`, all absent without a desktop.
struct IntegrationPorts {
    NotificationCenter* notifications = nullptr;  ///< outlives the component
    /// Selects a page and brings the window to the front on it. Main thread.
    std::function<void(AppRoute)> openRoute = {};
    InstallPorts install = {};
    UpdatePorts updates = {};
};

}  // namespace tallowcrest

#pragma once

#include "integration/install.h"
#include "integration/integration_ports.h"
#include "integration/login_item.h"
#include "integration/notification_actions.h"
#include "integration/pro_updater.h"
#include "integration/warning_notifications.h"

namespace tallowcrest {

/// The program's part in the desktop around it. Main thread.
struct Integration {
    /// The references must outlive the object.
    Integration(const Services& services, RemoteScan& remoteScan, ToolRunner& tools,
                Provider& provider, const IntegrationPorts& ports)
        : warnings(services, ports.notifications),
          actions(remoteScan, provider, ports),
          install(services, tools, ports.install),
          login(services, tools, ports.install),
          updates(services, ports.updates) {}

    WarningNotifications warnings;
    NotificationActions actions;
    Install install;
    LoginItem login;
    ProUpdater updates;
};

}  // namespace tallowcrest

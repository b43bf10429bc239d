#pragma once

#include "integration/integration_ports.h"
#include "integration/notification_actions.h"
#include "integration/warning_notifications.h"

namespace tallowcrest {

/// The program's part in the desktop around it. Main thread.
struct Integration {
    /// The references must outlive the object.
    Integration(const Services& services, RemoteScan& remoteScan, Provider& provider,
                const IntegrationPorts& ports)
        : warnings(services, ports.notifications), actions(remoteScan, provider, ports) {}

    WarningNotifications warnings;
    NotificationActions actions;
};

}  // namespace tallowcrest

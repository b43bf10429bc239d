#pragma once

#include <utility>

#include "integration/integration_ports.h"
#include "integration/warning_notifications.h"

namespace tallowcrest {

/// The program's part in the desktop around it. Main thread.
struct Integration {
    /// The references must outlive the object.
    Integration(const Services& services, RemoteScan& remoteScan, IntegrationPorts ports)
        : warnings(services, remoteScan, std::move(ports)) {}

    WarningNotifications warnings;
};

}  // namespace tallowcrest

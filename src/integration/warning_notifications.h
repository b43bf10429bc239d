#pragma once

#include <memory>
#include <optional>
#include <string>

#include "integration/integration_ports.h"

namespace tallowcrest {

class RemoteScan;
class SettingsOwner;
class Subscription;
struct Services;

/// Shows a load warning as a notification and handles its buttons. Main thread.
class WarningNotifications {
public:
    /// The references must outlive the object.
    WarningNotifications(const Services& services, RemoteScan& remoteScan, IntegrationPorts ports);
    ~WarningNotifications();
    WarningNotifications(const WarningNotifications&) = delete;
    WarningNotifications& operator=(const WarningNotifications&) = delete;

    /// Registers the buttons, or none if the settings say so, and asks for permission to notify.
    /// Called again by itself when the setting changes.
    void registerNotificationCategories();

    /// A failed delivery is not reported.
    void postLoadWarning(const std::string& topProcessName);

    /// Opens the page of the button; that of the remote scan also starts one. An unknown
    /// identifier counts as a plain click.
    void handleNotificationAction(const std::string& identifier);

private:
    SettingsOwner& settings_;
    RemoteScan& remoteScan_;
    IntegrationPorts ports_;
    std::optional<bool> registeredWithActions_;  ///< absent before the first registration
    std::unique_ptr<Subscription> settingsChanged_;
};

}  // namespace tallowcrest

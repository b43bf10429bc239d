#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/routes.h"

namespace tallowcrest {

class NotificationCenter;
class SettingsOwner;
class Subscription;

/// Shows a load warning as a notification and handles its buttons. Main thread.
class WarningNotifications {
public:
    /// Selects the route and brings the window to the front on it.
    using OpenRoute = std::function<void(AppRoute)>;

    /// Without a centre there are no notifications. `openRoute` may be absent where there is no
    /// window. The references must outlive the object.
    WarningNotifications(NotificationCenter* center, SettingsOwner& settings, OpenRoute openRoute);
    ~WarningNotifications();
    WarningNotifications(const WarningNotifications&) = delete;
    WarningNotifications& operator=(const WarningNotifications&) = delete;

    /// Registers the buttons, or none if the settings say so, and asks for permission to notify.
    /// Called again by itself when the setting changes.
    void registerNotificationCategories();

    /// A failed delivery is not reported.
    void postLoadWarning(const std::string& topProcessName);

    /// An unknown identifier counts as a plain click.
    void handleNotificationAction(const std::string& identifier);

private:
    NotificationCenter* center_;
    SettingsOwner& settings_;
    OpenRoute openRoute_;
    std::optional<bool> registeredWithActions_;  ///< absent before the first registration
    std::unique_ptr<Subscription> settingsChanged_;
};

}  // namespace tallowcrest

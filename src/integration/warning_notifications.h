#pragma once

#include <memory>
#include <optional>
#include <string>

namespace tallowcrest {

class NotificationCenter;
class SettingsOwner;
class Subscription;
struct Services;

/// Shows a load warning as a notification. Main thread.
class WarningNotifications {
public:
    /// The references must outlive the object. Without a `center` nothing is shown.
    WarningNotifications(const Services& services, NotificationCenter* center);
    ~WarningNotifications();
    WarningNotifications(const WarningNotifications&) = delete;
    WarningNotifications& operator=(const WarningNotifications&) = delete;

    /// Registers the buttons, or none if the settings say so, and asks for permission to notify.
    /// Called again by itself when the setting changes.
    void registerNotificationCategories();

    /// A failed delivery is not reported.
    void postLoadWarning(const std::string& topProcessName);

private:
    SettingsOwner& settings_;
    NotificationCenter* center_;
    std::optional<bool> registeredWithActions_;  ///< absent before the first registration
    std::unique_ptr<Subscription> settingsChanged_;
};

}  // namespace tallowcrest

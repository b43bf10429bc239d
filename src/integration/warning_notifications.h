#pragma once

#include <functional>
#include <string>

#include "core/routes.h"
#include "core/settings.h"
#include "integration/notification_center.h"

namespace tallowcrest {

/// Tells a load warning to the owner as a notification, and does what its buttons say.
/// Main thread.
class WarningNotifications {
public:
    /// Where a button leads.
    struct Hooks {
        /// Selects the route and brings the window to the front on it.
        std::function<void(AppRoute)> openRoute;
        std::function<void()> requestAIAnalysis;  ///< absent: the route alone
        std::function<void()> scanRemoteMacs;     ///< absent: the route alone
    };

    /// Without a centre there are no notifications. The references must outlive the object.
    WarningNotifications(NotificationCenter* center, const Settings& settings, Hooks hooks);
    ~WarningNotifications();
    WarningNotifications(const WarningNotifications&) = delete;
    WarningNotifications& operator=(const WarningNotifications&) = delete;

    /// Registers the buttons, or none while the owner wants none, and asks for leave to notify.
    void registerNotificationCategories();

    /// A delivery that fails is not noticed.
    void postLoadWarning(const std::string& topProcessName);

    /// Whatever is no button of ours counts as a plain click.
    void handleNotificationAction(const std::string& identifier);

private:
    NotificationCenter* center_;
    const Settings& settings_;
    Hooks hooks_;
};

}  // namespace tallowcrest

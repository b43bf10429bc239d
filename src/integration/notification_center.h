#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tallowcrest {

/// A button of a notification. Pressing it brings the program to the front.
struct NotificationAction {
    std::string identifier;
    std::string title;

    bool operator==(const NotificationAction&) const = default;
};

/// The buttons, in order, of the notifications with this category.
struct NotificationCategory {
    std::string identifier;
    std::vector<NotificationAction> actions;

    bool operator==(const NotificationCategory&) const = default;
};

/// The content of one notification, as plain text without markup.
struct NotificationContent {
    std::string title;
    std::string body;
    /// A registered category; empty: no buttons.
    std::string categoryIdentifier;
    bool playsSound = true;

    bool operator==(const NotificationContent&) const = default;
};

/// The desktop's notifications. Failures are not reported: where notifications are unavailable,
/// nothing is shown. Main thread, responses included.
class NotificationCenter {
public:
    /// The identifier of a click on the notification itself; no button may use it.
    static constexpr const char* plainClick = "default";

    virtual ~NotificationCenter() = default;

    /// Replaces the categories set before.
    virtual void setCategories(std::vector<NotificationCategory> categories) = 0;

    /// Asks the owner for permission to show banners and play sounds, where the system requires it.
    virtual void requestAuthorization() = 0;

    /// Shows a notification, even while the program is in front. Returns before it is on screen.
    virtual void post(NotificationContent content) = 0;

    /// `respond` is called with the identifier of the pressed button, or `plainClick`. Replaces the
    /// handler set before; an empty one removes it.
    virtual void setResponseHandler(std::function<void(const std::string& identifier)> respond) = 0;
};

}  // namespace tallowcrest

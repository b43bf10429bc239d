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

/// The buttons, in their order, of the notifications that name this category.
struct NotificationCategory {
    std::string identifier;
    std::vector<NotificationAction> actions;

    bool operator==(const NotificationCategory&) const = default;
};

/// What one notification says. Plain texts: nothing in them is markup.
struct NotificationContent {
    std::string title;
    std::string body;
    /// A registered category; empty: no buttons.
    std::string categoryIdentifier;
    bool playsSound = true;

    bool operator==(const NotificationContent&) const = default;
};

/// The desktop's notifications. Nothing that goes wrong is told: where no notification can be
/// shown, none is. Main thread, and so are the responses.
class NotificationCenter {
public:
    /// What stands for a plain click on the notification itself; no button may bear it.
    static constexpr const char* plainClick = "default";

    virtual ~NotificationCenter() = default;

    /// Replaces the categories known so far.
    virtual void setCategories(std::vector<NotificationCategory> categories) = 0;

    /// Asks the owner for leave to show banners and play sounds, where the system wants that.
    virtual void requestAuthorization() = 0;

    /// Shows one at once, also while the program is in front. Returns before it is on the screen.
    virtual void post(NotificationContent content) = 0;

    /// `respond` is called with the identifier of the button that was pressed, or `plainClick`.
    /// Replaces the one set before; an empty one ends the responses.
    virtual void setResponseHandler(std::function<void(const std::string& identifier)> respond) = 0;
};

}  // namespace tallowcrest

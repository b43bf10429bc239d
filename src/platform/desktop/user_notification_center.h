#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "integration/notification_center.h"

namespace tallowcrest {

/// The notifications of macOS. They require an application bundle, so a program outside one shows
/// none. Only one object may exist at a time, because the system's notification center has one
/// delegate. Main thread.
class UserNotificationCenter final : public NotificationCenter {
public:
    UserNotificationCenter();
    UserNotificationCenter(const UserNotificationCenter&) = delete;
    UserNotificationCenter& operator=(const UserNotificationCenter&) = delete;
    ~UserNotificationCenter() override;

    void setCategories(std::vector<NotificationCategory> categories) override;
    /// Asks on each call; the system shows its dialog until the user has decided.
    void requestAuthorization() override;
    void post(NotificationContent content) override;
    void setResponseHandler(std::function<void(const std::string& identifier)> respond) override;

private:
    struct Objects;

    std::unique_ptr<Objects> objects_;
};

}  // namespace tallowcrest

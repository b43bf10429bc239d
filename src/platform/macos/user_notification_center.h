#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "integration/notification_center.h"

namespace tallowcrest {

/// The system's own notifications. They belong to an application bundle, so a program that runs
/// outside one shows none. One object at a time: the centre has one delegate.
class UserNotificationCenter final : public NotificationCenter {
public:
    UserNotificationCenter();
    UserNotificationCenter(const UserNotificationCenter&) = delete;
    UserNotificationCenter& operator=(const UserNotificationCenter&) = delete;
    ~UserNotificationCenter() override;

    void setCategories(std::vector<NotificationCategory> categories) override;
    /// Asks on each call; the system shows its dialog until the owner has decided.
    void requestAuthorization() override;
    void post(NotificationContent content) override;
    void setResponseHandler(std::function<void(const std::string& identifier)> respond) override;

private:
    struct Objects;

    std::unique_ptr<Objects> objects_;
};

}  // namespace tallowcrest

#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "integration/notification_center.h"

namespace tallowcrest {

/// Shows nothing; records the calls and lets a test press the buttons.
class FakeNotificationCenter final : public NotificationCenter {
public:
    void setCategories(std::vector<NotificationCategory> wanted) override {
        calls.emplace_back("setCategories");
        categories = std::move(wanted);
    }
    void requestAuthorization() override { calls.emplace_back("requestAuthorization"); }
    void post(NotificationContent content) override { posted.push_back(std::move(content)); }
    void setResponseHandler(std::function<void(const std::string&)> handler) override {
        respond = std::move(handler);
    }

    std::vector<std::string> calls;
    std::vector<NotificationCategory> categories;
    std::vector<NotificationContent> posted;
    std::function<void(const std::string&)> respond;
};

}  // namespace tallowcrest

#include "integration/warning_notifications.h"

#include <string>

#include <fmt/format.h>

#include "core/observable.h"
#include "core/services.h"
#include "core/settings/settings_owner.h"
#include "integration/notification_actions.h"
#include "integration/notification_center.h"

namespace tallowcrest {
namespace {

constexpr const char* warningCategory = "TALLOWCREST_WARNING";

}  // namespace

WarningNotifications::WarningNotifications(const Services& services, NotificationCenter* center)
    : settings_(services.settings),
      center_(center),
      settingsChanged_(std::make_unique<Subscription>(settings_.observable().subscribe([this] {
          if (registeredWithActions_ &&
              *registeredWithActions_ != settings_.values().notificationsIncludeActions) {
              registerNotificationCategories();
          }
      }))) {}

WarningNotifications::~WarningNotifications() = default;

void WarningNotifications::registerNotificationCategories() {
    if (center_ == nullptr) {
        return;
    }
    registeredWithActions_ = settings_.values().notificationsIncludeActions;
    if (*registeredWithActions_) {
        center_->setCategories({{warningCategory,
                                 {{std::string(openOptimizeAction), "Review Cleanup"},
                                  {std::string(openAIAction), "AI Analyze"},
                                  {std::string(scanRemotesAction), "Scan Remotes"}}}});
    } else {
        center_->setCategories({});
    }
    center_->requestAuthorization();
}

void WarningNotifications::postLoadWarning(const std::string& topProcessName) {
    if (center_ == nullptr) {
        return;
    }
    center_->post({"Tallowcrest warning",
                   fmt::format("System load is high. Top process: {}. Open Tallowcrest to review "
                               "optimization options.",
                               topProcessName),
                   settings_.values().notificationsIncludeActions ? warningCategory : "", true});
}

}  // namespace tallowcrest

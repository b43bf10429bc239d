#include "integration/warning_notifications.h"

#include <utility>

#include <fmt/format.h>

#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "integration/notification_center.h"

namespace tallowcrest {
namespace {

constexpr const char* warningCategory = "TALLOWCREST_WARNING";
constexpr const char* openOptimize = "OPEN_OPTIMIZE";
constexpr const char* openAI = "OPEN_AI";
constexpr const char* scanRemotes = "SCAN_REMOTES";

}  // namespace

WarningNotifications::WarningNotifications(NotificationCenter* center, SettingsOwner& settings,
                                           OpenRoute openRoute)
    : center_(center),
      settings_(settings),
      openRoute_(std::move(openRoute)),
      settingsChanged_(std::make_unique<Subscription>(settings.observable().subscribe([this] {
          if (registeredWithActions_ &&
              *registeredWithActions_ != settings_.values().notificationsIncludeActions) {
              registerNotificationCategories();
          }
      }))) {
    if (center_ != nullptr) {
        center_->setResponseHandler(
            [this](const std::string& identifier) { handleNotificationAction(identifier); });
    }
}

WarningNotifications::~WarningNotifications() {
    if (center_ != nullptr) {
        center_->setResponseHandler({});
    }
}

void WarningNotifications::registerNotificationCategories() {
    if (center_ == nullptr) {
        return;
    }
    registeredWithActions_ = settings_.values().notificationsIncludeActions;
    if (*registeredWithActions_) {
        center_->setCategories({{warningCategory,
                                 {{openOptimize, "Review Cleanup"},
                                  {openAI, "AI Analyze"},
                                  {scanRemotes, "Scan Remotes"}}}});
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

void WarningNotifications::handleNotificationAction(const std::string& identifier) {
    if (!openRoute_) {
        return;
    }
    openRoute_(identifier == openOptimize  ? AppRoute::optimizationSuggestions
               : identifier == openAI      ? AppRoute::aiAdvisor
               : identifier == scanRemotes ? AppRoute::remoteMacs
                                           : AppRoute::overview);
}

}  // namespace tallowcrest

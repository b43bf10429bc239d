#include "integration/warning_notifications.h"

#include <utility>

#include <fmt/format.h>

#include "core/observable.h"
#include "core/services.h"
#include "core/settings/settings_owner.h"
#include "integration/notification_center.h"
#include "remote/remote_scan.h"

namespace tallowcrest {
namespace {

constexpr const char* warningCategory = "TALLOWCREST_WARNING";
constexpr const char* openOptimize = "OPEN_OPTIMIZE";
constexpr const char* openAI = "OPEN_AI";
constexpr const char* scanRemotes = "SCAN_REMOTES";

}  // namespace

WarningNotifications::WarningNotifications(const Services& services, RemoteScan& remoteScan,
                                           IntegrationPorts ports)
    : settings_(services.settings),
      remoteScan_(remoteScan),
      ports_(std::move(ports)),
      settingsChanged_(std::make_unique<Subscription>(settings_.observable().subscribe([this] {
          if (registeredWithActions_ &&
              *registeredWithActions_ != settings_.values().notificationsIncludeActions) {
              registerNotificationCategories();
          }
      }))) {
    if (ports_.notifications != nullptr) {
        ports_.notifications->setResponseHandler(
            [this](const std::string& identifier) { handleNotificationAction(identifier); });
    }
}

WarningNotifications::~WarningNotifications() {
    if (ports_.notifications != nullptr) {
        ports_.notifications->setResponseHandler({});
    }
}

void WarningNotifications::registerNotificationCategories() {
    if (ports_.notifications == nullptr) {
        return;
    }
    registeredWithActions_ = settings_.values().notificationsIncludeActions;
    if (*registeredWithActions_) {
        ports_.notifications->setCategories({{warningCategory,
                                              {{openOptimize, "Review Cleanup"},
                                               {openAI, "AI Analyze"},
                                               {scanRemotes, "Scan Remotes"}}}});
    } else {
        ports_.notifications->setCategories({});
    }
    ports_.notifications->requestAuthorization();
}

void WarningNotifications::postLoadWarning(const std::string& topProcessName) {
    if (ports_.notifications == nullptr) {
        return;
    }
    ports_.notifications->post(
        {"Tallowcrest warning",
         fmt::format("System load is high. Top process: {}. Open Tallowcrest to review "
                     "optimization options.",
                     topProcessName),
         settings_.values().notificationsIncludeActions ? warningCategory : "", true});
}

void WarningNotifications::handleNotificationAction(const std::string& identifier) {
    if (!ports_.openRoute) {
        return;
    }
    ports_.openRoute(identifier == openOptimize  ? AppRoute::optimizationSuggestions
                     : identifier == openAI      ? AppRoute::aiAdvisor
                     : identifier == scanRemotes ? AppRoute::remoteMacs
                                                 : AppRoute::overview);
    if (identifier == scanRemotes) {
        remoteScan_.scanRemoteMacs();
    }
}

}  // namespace tallowcrest

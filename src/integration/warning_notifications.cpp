#include "integration/warning_notifications.h"

#include <utility>

#include <fmt/format.h>

namespace tallowcrest {
namespace {

constexpr const char* warningCategory = "TALLOWCREST_WARNING";
constexpr const char* openOptimize = "OPEN_OPTIMIZE";
constexpr const char* openAI = "OPEN_AI";
constexpr const char* scanRemotes = "SCAN_REMOTES";

}  // namespace

WarningNotifications::WarningNotifications(NotificationCenter* center, const Settings& settings,
                                           Hooks hooks)
    : center_(center), settings_(settings), hooks_(std::move(hooks)) {
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
    if (settings_.notificationsIncludeActions) {
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
                   settings_.notificationsIncludeActions ? warningCategory : "", true});
}

void WarningNotifications::handleNotificationAction(const std::string& identifier) {
    const auto go = [this](AppRoute route, const std::function<void()>& then = {}) {
        if (hooks_.openRoute) {
            hooks_.openRoute(route);
        }
        if (then) {
            then();
        }
    };
    if (identifier == openOptimize) {
        go(AppRoute::optimizationSuggestions);
    } else if (identifier == openAI) {
        go(AppRoute::aiAdvisor, hooks_.requestAIAnalysis);
    } else if (identifier == scanRemotes) {
        go(AppRoute::remoteMacs, hooks_.scanRemoteMacs);
    } else {
        go(AppRoute::overview);
    }
}

}  // namespace tallowcrest

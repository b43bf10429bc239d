#include "integration/notification_actions.h"

#include <utility>

#include "advisor/provider.h"
#include "integration/notification_center.h"
#include "remote/remote_scan.h"

namespace tallowcrest {

AppRoute routeOfNotificationAction(std::string_view identifier) {
    return identifier == openOptimizeAction  ? AppRoute::optimizationSuggestions
           : identifier == openAIAction      ? AppRoute::aiAdvisor
           : identifier == scanRemotesAction ? AppRoute::remoteMacs
                                             : AppRoute::overview;
}

NotificationActions::NotificationActions(RemoteScan& remoteScan, Provider& provider,
                                         IntegrationPorts ports)
    : remoteScan_(remoteScan), provider_(provider), ports_(std::move(ports)) {
    if (ports_.notifications != nullptr) {
        ports_.notifications->setResponseHandler(
            [this](const std::string& identifier) { handleNotificationAction(identifier); });
    }
}

NotificationActions::~NotificationActions() {
    if (ports_.notifications != nullptr) {
        ports_.notifications->setResponseHandler({});
    }
}

void NotificationActions::handleNotificationAction(const std::string& identifier) {
    if (!ports_.openRoute) {
        return;
    }
    ports_.openRoute(routeOfNotificationAction(identifier));
    if (identifier == openAIAction) {
        provider_.requestAIAnalysis();
    } else if (identifier == scanRemotesAction) {
        remoteScan_.scanRemoteMacs();
    }
}

}  // namespace tallowcrest

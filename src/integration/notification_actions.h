#pragma once

#include <string>
#include <string_view>

#include "core/routes.h"
#include "integration/integration_ports.h"

namespace tallowcrest {

class Provider;
class RemoteScan;

// The identifiers of a warning's buttons.
inline constexpr std::string_view openOptimizeAction = "OPEN_OPTIMIZE";
inline constexpr std::string_view openAIAction = "OPEN_AI";
inline constexpr std::string_view scanRemotesAction = "SCAN_REMOTES";

/// The page that a button opens. An unknown identifier counts as a plain click.
AppRoute routeOfNotificationAction(std::string_view identifier);

/// Does what the buttons of notifications stand for. Main thread.
class NotificationActions {
public:
    /// The references must outlive the object.
    NotificationActions(RemoteScan& remoteScan, Provider& provider, IntegrationPorts ports);
    ~NotificationActions();
    NotificationActions(const NotificationActions&) = delete;
    NotificationActions& operator=(const NotificationActions&) = delete;

    /// Opens the page of the button and starts what belongs to it: an analysis, or a scan.
    void handleNotificationAction(const std::string& identifier);

private:
    RemoteScan& remoteScan_;
    Provider& provider_;
    IntegrationPorts ports_;
};

}  // namespace tallowcrest

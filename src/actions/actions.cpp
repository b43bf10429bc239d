#include "actions/actions.h"

#include <utility>

namespace tallowcrest {

Actions::Actions(const Services& services, LatestSample& sample, ProtectionPolicy protection,
                 std::function<void()> refresh, ActionPorts ports)
    : review(services, sample, protection),
      local({services, sample, review, protection, std::move(refresh), std::move(ports.local)}),
      automation(services),
      applications(services.log, std::move(ports.desktop.openActivityMonitor),
                   std::move(ports.desktop.openTailscaleApp)),
      pasteboard(services.log, std::move(ports.desktop.storeOnPasteboard)) {}

}  // namespace tallowcrest

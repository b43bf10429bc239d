#include "actions/actions.h"

#include <utility>

namespace tallowcrest {

Actions::Actions(const Services& services, LatestSample& sample, ProtectionPolicy protection,
                 std::function<void()> refresh, ActionPorts ports)
    : confirmations(services.log, services.mainQueue),
      review(services, sample, protection),
      local({services, sample, review, confirmations, protection, std::move(refresh),
             std::move(ports.local)}),
      automation(services),
      applications(services.log, std::move(ports.openActivityMonitor)),
      pasteboard(services.log, std::move(ports.storeOnPasteboard)) {}

}  // namespace tallowcrest

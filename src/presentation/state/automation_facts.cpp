#include "presentation/state/automation_facts.h"

#include "actions/actions.h"
#include "actions/automation.h"
#include "core/activity_log.h"
#include "monitor/system_monitor.h"
#include "sampling/latest_sample.h"

namespace tallowcrest {

AutomationFacts automationFacts(SystemMonitor& monitor) {
    return {.settings = monitor.settings(),
            .dates = monitor.autoRules().dates(),
            .activityLog = monitor.log().activityLog(),
            .snapshot = monitor.sample().snapshot()};
}

DiskAutopilotFacts diskAutopilotFacts(SystemMonitor& monitor) {
    return {.snapshot = monitor.sample().snapshot(),
            .settings = monitor.settings(),
            .status = monitor.actions().automation.diskAutopilotStatus(),
            .caches = monitor.host().places.caches};
}

}  // namespace tallowcrest

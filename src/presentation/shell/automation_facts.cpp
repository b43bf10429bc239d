#include "presentation/shell/automation_facts.h"

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

}  // namespace tallowcrest

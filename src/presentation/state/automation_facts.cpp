#include "presentation/state/automation_facts.h"

#include "actions/actions.h"
#include "actions/automation.h"
#include "advisor/advisor.h"
#include "core/activity_log.h"
#include "disk/disk.h"
#include "monitor/system_monitor.h"
#include "sampling/latest_sample.h"

namespace tallowcrest {

AutomationFacts automationFacts(SystemMonitor& monitor) {
    return {.settings = monitor.settings(),
            .dates = monitor.autoRules().dates(),
            .activityLog = monitor.log().activityLog(),
            .snapshot = monitor.sample().snapshot()};
}

namespace {

DiskTrust diskTrust(const Trust& trust) {
    const AITrustRecord record = trust.record(DiskAutopilot::actionType);
    return {record.runCount, trustPercent(record)};
}

}  // namespace

DiskAutopilotFacts diskAutopilotFacts(SystemMonitor& monitor) {
    return {.snapshot = monitor.sample().snapshot(),
            .settings = monitor.settings(),
            .status = monitor.actions().automation.diskAutopilotStatus(),
            .caches = monitor.disk().autopilot.cachesFolder(),
            .trust = diskTrust(monitor.advisor().trust),
            .receipt = latestReceipt(monitor.log().activityLog()),
            .autopilot = monitor.disk().autopilot.state(),
            .storage = monitor.disk().storage.state()};
}

}  // namespace tallowcrest

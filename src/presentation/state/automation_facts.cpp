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
    const auto& records = trust.aiTrustRecords();
    const auto found = records.find(std::string(DiskAutopilot::actionType));
    const AITrustRecord record = found == records.end() ? AITrustRecord{} : found->second;
    return {record.runCount, trustPercent(record)};
}

}  // namespace

DiskAutopilotFacts diskAutopilotFacts(SystemMonitor& monitor) {
    return {.snapshot = monitor.sample().snapshot(),
            .settings = monitor.settings(),
            .status = monitor.actions().automation.diskAutopilotStatus(),
            .caches = monitor.host().places.caches,
            .trust = diskTrust(monitor.advisor().trust),
            .autopilot = monitor.disk().autopilot.state(),
            .storage = monitor.disk().storage.state()};
}

}  // namespace tallowcrest

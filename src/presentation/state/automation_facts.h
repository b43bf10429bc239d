#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/local_records.h"
#include "core/settings/settings.h"
#include "presentation/words/automation_lines.h"
#include "presentation/words/disk_lines.h"

namespace tallowcrest {

class SystemMonitor;
struct DiskAutopilotState;
struct StorageScanState;

/// The values that automation lines describe. Changes with the monitor's settings, rules, log and
/// sample. Main thread.
AutomationFacts automationFacts(SystemMonitor& monitor);

/// The state that the Disk Autopilot block shows. The references must outlive the value.
struct DiskAutopilotFacts {
    const std::optional<SystemSnapshot>& snapshot;  ///< absent before the first sample
    const Settings& settings;
    std::string_view status;  ///< of Disk Autopilot
    std::string_view caches;  ///< `DiskAutopilot::cachesFolder`
    DiskTrust trust;
    const ActivityEvent* receipt;  ///< the latest of a clean-up; null without one
    const DiskAutopilotState& autopilot;
    const StorageScanState& storage;
};

/// Changes with the monitor's settings, sample, automation, trust, log and disk. Main thread.
DiskAutopilotFacts diskAutopilotFacts(SystemMonitor& monitor);

}  // namespace tallowcrest

#pragma once

#include "presentation/words/automation_lines.h"

namespace tallowcrest {

class SystemMonitor;

/// What the lines of the automations are told from. Changes with the monitor's settings, rules, log
/// and sample. Main thread.
AutomationFacts automationFacts(SystemMonitor& monitor);

}  // namespace tallowcrest

#pragma once

#include <array>
#include <span>

#include <QString>

#include "actions/automation.h"
#include "core/date.h"
#include "core/local_records.h"
#include "core/settings.h"
#include "monitor/automation_dates.h"

namespace tallowcrest {

/// Whether an automation may act.
enum class ArmedState { on, off, stopped };

/// One switch as its row shows it.
struct AutomationLine {
    QString title;
    QString explanation;  ///< empty where the title says it all
    bool isOn = false;
    ArmedState state = ArmedState::off;
    /// When it last acted; empty for a switch that does nothing at a time of its own.
    QString lastActed;
    bool hasActed = false;

    bool operator==(const AutomationLine&) const = default;
};

/// What the lines are read from. The references must outlive the value.
struct AutomationFacts {
    bool isStopEngaged = false;
    const AutomationDates& dates;
    std::span<const ActivityEvent> activityLog;  ///< newest first
    Date now;
};

/// The rules that run by themselves after a sample, in the order in which they are shown.
inline constexpr std::array autoRuleSwitches{
    AutomationSwitch::autoSelectTopOffender,
    AutomationSwitch::autoPurgeSustainedMemory,
    AutomationSwitch::autoScanRemoteMacs,
};

/// "On", "Off" or "Stopped".
QString armedWord(ArmedState state);

/// What the identifiers of its controls end in: "auto-select".
QString automationIdentifier(AutomationSwitch which);

/// "No automations on", "1 automation on" or "5 automations on": how much of what acts without
/// anybody pressing a button is switched on. Any thread.
QString automationsOn(const Settings& settings);

/// Times are those of this run, or of the activity log where the rule writes there; in the locale's
/// short form, with the date on another day than `now`. Any thread.
AutomationLine automationLine(AutomationSwitch which, bool isOn, const AutomationFacts& facts);

/// All that acts without anybody pressing a button, a line each: "Auto-scan Tailscale Macs: Off. No
/// recent action". Any thread.
QString automationsSummary(const Settings& settings, const AutomationFacts& facts);

}  // namespace tallowcrest

#pragma once

#include <array>
#include <optional>
#include <span>

#include <QString>

#include "actions/automation.h"
#include "core/activity_event.h"
#include "core/local_records.h"
#include "core/settings/settings.h"
#include "monitor/auto_rules.h"

namespace tallowcrest {

/// Whether an automation may act.
enum class SwitchState { on, off, stopped };

/// The texts of the row of one switch.
struct AutomationLine {
    QString title;
    QString explanation;  ///< empty where the title says it all
    bool isOn = false;
    SwitchState state = SwitchState::off;
    /// When it last acted; empty for a switch that does not act by itself.
    QString lastActed;
    bool hasActed = false;

    bool operator==(const AutomationLine&) const = default;
};

/// The state that the lines describe. The references must outlive the value.
struct AutomationFacts {
    const Settings& settings;
    const AutomationDates& dates;
    std::span<const ActivityEvent> activityLog;  ///< newest first
    const std::optional<SystemSnapshot>& snapshot;
};

/// The rules that run automatically after a sample, in the order in which they are shown.
inline constexpr std::array autoRuleSwitches{
    AutomationSwitch::autoSelectTopOffender,
    AutomationSwitch::autoPurgeSustainedMemory,
    AutomationSwitch::autoScanRemoteMacs,
};

/// "On", "Off" or "Stopped".
QString stateWord(SwitchState state);

/// The last part of the identifiers of its controls: "auto-select".
QString automationIdentifier(AutomationSwitch which);

/// "No automations on", "1 automation on" or "5 automations on": the number of enabled switches
/// that act automatically. Any thread.
QString automationsOn(const Settings& settings);

/// The time of the last action is that of this run, else that in the activity log if the rule
/// writes there; with the date on another day than the snapshot's. Main thread.
AutomationLine automationLine(AutomationSwitch which, const AutomationFacts& facts);

/// All switches that act automatically, a line each: "Auto-scan Tailscale Macs: Off. No recent
/// action". Main thread.
QString automationsSummary(const AutomationFacts& facts);

}  // namespace tallowcrest

#pragma once

#include <array>
#include <string>

#include "core/activity_log.h"
#include "core/advisor_records.h"
#include "core/observable.h"
#include "core/outcome.h"
#include "core/services.h"
#include "core/settings/settings_owner.h"

namespace tallowcrest {

/// What the owner can switch on and off: everything that may act without anybody pressing a button,
/// and two conveniences beside it.
enum class AutomationSwitch {
    autoSelectTopOffender,
    autoPurgeSustainedMemory,
    autoScanRemoteMacs,
    diskAutopilotEnabled,
    aiSafeActionsEnabled,
    notificationsIncludeActions,
};

inline constexpr std::array allAutomationSwitches{
    AutomationSwitch::autoSelectTopOffender, AutomationSwitch::autoPurgeSustainedMemory,
    AutomationSwitch::autoScanRemoteMacs,    AutomationSwitch::diskAutopilotEnabled,
    AutomationSwitch::aiSafeActionsEnabled,  AutomationSwitch::notificationsIncludeActions,
};

/// Whether the owner has switched it on. Pure.
bool isOn(const Settings& settings, AutomationSwitch which);

/// Whether the emergency stop turns it off and keeps it off. Pure.
bool isGovernedByStop(AutomationSwitch which);

/// The status line of Disk Autopilot at a start. Pure.
std::string diskAutopilotStatusAtStart(const Settings& settings);

/// The automation switches, and the one emergency stop that throws those of them which act. Each
/// change is stored at once. Main thread.
class Automation {
public:
    explicit Automation(const Services& services);
    Automation(const Automation&) = delete;
    Automation& operator=(const Automation&) = delete;

    bool isOn(AutomationSwitch which) const { return tallowcrest::isOn(settings_.values(), which); }

    /// Turns a switch on or off and says so. While the emergency stop is engaged, turning on what
    /// the stop governs is refused in words, and nothing changes.
    Outcome set(AutomationSwitch which, bool on);

    /// How much the advisor may do by itself. With the stop engaged, anything but apprentice is
    /// refused in words.
    Outcome setAutonomyMode(AIAutonomyMode mode);

    /// Turns off everything that acts by itself. It holds across restarts, until it is cleared.
    /// Repeated, it repeats all its steps. What a person has been asked already can still be
    /// confirmed, and work that is under way runs to its end.
    void engageEmergencyStop();

    /// Clears the stop. Each automation is turned on again by hand: what a stop that was stored in
    /// part left on is switched off first.
    void resumeFromEmergencyStop();

    bool isStopEngaged() const { return settings_.values().automationEmergencyStopEngaged; }

    const std::string& diskAutopilotStatus() const { return diskAutopilotStatus_; }
    void setDiskAutopilotStatus(std::string status);

    /// Tells of `diskAutopilotStatus`, and of a refusal, so that the control that asked shows the
    /// old value again. The switches are settings.
    Observable& observable() { return observable_; }

private:
    /// Switches off, in memory and in the store, everything that the stop governs.
    void switchOffGoverned();

    ActivityLog& log_;
    SettingsOwner& settings_;
    Observable observable_;
    std::string diskAutopilotStatus_;
};

}  // namespace tallowcrest

#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "core/advisor_records.h"
#include "core/outcome.h"

namespace tallowcrest {

class ActivityLog;
class Observable;
class SettingsOwner;
struct Services;
struct Settings;

/// The owner's switches. The first four are for what acts without a button being pressed, the
/// others for the advisor's safe actions, for the buttons of notifications and for which machines a
/// scan samples.
enum class AutomationSwitch {
    autoSelectTopOffender,
    autoPurgeSustainedMemory,
    autoScanRemoteMacs,
    diskAutopilotEnabled,
    aiSafeActionsEnabled,
    notificationsIncludeActions,
    includeLinuxMachines,
};

inline constexpr std::array allAutomationSwitches{
    AutomationSwitch::autoSelectTopOffender, AutomationSwitch::autoPurgeSustainedMemory,
    AutomationSwitch::autoScanRemoteMacs,    AutomationSwitch::diskAutopilotEnabled,
    AutomationSwitch::aiSafeActionsEnabled,  AutomationSwitch::notificationsIncludeActions,
    AutomationSwitch::includeLinuxMachines,
};

/// Whether the owner has switched it on. Pure.
bool isOn(const Settings& settings, AutomationSwitch which);

/// Whether the emergency stop turns it off and keeps it off. Pure.
bool isHeldBackByStop(AutomationSwitch which);

/// The automation switches, and the emergency stop that turns off those that act by themselves.
/// Each change is stored at once. Main thread.
class Automation {
public:
    explicit Automation(const Services& services);
    ~Automation();
    Automation(const Automation&) = delete;
    Automation& operator=(const Automation&) = delete;

    bool isOn(AutomationSwitch which) const;

    /// Turns a switch on or off and records a message. While the emergency stop is engaged, turning
    /// on what it governs is refused with a message, and nothing changes.
    Outcome set(AutomationSwitch which, bool on);

    /// Sets how much the advisor may do by itself. While the stop is engaged, every mode except
    /// apprentice is refused with a message.
    Outcome setAutonomyMode(AIAutonomyMode mode);

    /// Turns off everything that acts by itself. The stop remains engaged across restarts until it
    /// is cleared. Engaging it again repeats all steps. A pending request can still be confirmed,
    /// and work that is under way is completed.
    Outcome engageEmergencyStop();

    /// Clears the stop. The automations that it governs remain off until the owner turns them on
    /// again, even if the stop was stored only in part. If no stop is engaged, no switch changes.
    Outcome resumeFromEmergencyStop();

    bool isStopEngaged() const;
    /// How often the stop was engaged in this run. What was prepared before the number changed has
    /// lost its permission.
    std::uint64_t emergencyStops() const { return emergencyStops_; }

    /// The status line of Disk Autopilot.
    const std::string& diskAutopilotStatus() const { return diskAutopilotStatus_; }
    void setDiskAutopilotStatus(std::string status);

    /// Notifies of a changed `diskAutopilotStatus`. The switches, the mode and the stop are
    /// settings.
    Observable& observable() { return *observable_; }

private:
    /// Switches off, in memory and in the store, everything that the stop holds back.
    void switchOffHeldBack();

    ActivityLog& log_;
    SettingsOwner& settings_;
    std::unique_ptr<Observable> observable_;
    std::string diskAutopilotStatus_;
    std::uint64_t emergencyStops_ = 0;
};

}  // namespace tallowcrest

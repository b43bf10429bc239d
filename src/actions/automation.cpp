#include "actions/automation.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "core/settings_keys.h"

namespace tallowcrest {
namespace {

constexpr const char* stopEvent = "Automation Emergency Stop";
constexpr const char* stoppedStatus = "Emergency stop is engaged. All automatic actions are off.";
constexpr const char* watchingStatus = "Watching disk space with staged trust controls.";
constexpr const char* offStatus = "Disk Autopilot is off.";

struct SwitchWords {
    AutomationSwitch which;
    bool Settings::*field;
    std::string_view key;
    std::string_view refusal;  ///< empty: the emergency stop does not govern it
    std::string_view turnedOn;
    std::string_view turnedOff;
};

// How far Disk Autopilot may go depends on the advisor's mode, so its message has that to add.
constexpr std::string_view diskAutopilotTurnedOn = "Disk Autopilot enabled in {} mode.";

constexpr std::array<SwitchWords, allAutomationSwitches.size()> switchTable{{
    {AutomationSwitch::autoSelectTopOffender, &Settings::autoSelectTopOffender,
     settings_keys::autoSelectKey, "Auto-select remains off while Emergency Stop is engaged.",
     "Auto-select top offender enabled.", "Auto-select top offender disabled."},
    {AutomationSwitch::autoPurgeSustainedMemory, &Settings::autoPurgeSustainedMemory,
     settings_keys::autoPurgeKey, "Auto-purge remains off while Emergency Stop is engaged.",
     "Auto-purge for sustained high memory enabled.",
     "Auto-purge for sustained high memory disabled."},
    {AutomationSwitch::autoScanRemoteMacs, &Settings::autoScanRemoteMacs,
     settings_keys::autoRemoteScanKey,
     "Remote auto-scan remains off while Emergency Stop is engaged.", "Auto remote scan enabled.",
     "Auto remote scan disabled."},
    {AutomationSwitch::diskAutopilotEnabled, &Settings::diskAutopilotEnabled,
     settings_keys::diskAutopilotKey, "Disk Autopilot remains off while Emergency Stop is engaged.",
     diskAutopilotTurnedOn, "Disk Autopilot disabled."},
    {AutomationSwitch::aiSafeActionsEnabled,
     &Settings::aiSafeActionsEnabled,
     settings_keys::aiSafeActionsKey,
     {},
     "AI safe actions enabled.",
     "AI safe actions disabled."},
    {AutomationSwitch::notificationsIncludeActions,
     &Settings::notificationsIncludeActions,
     settings_keys::notificationActionsKey,
     {},
     "Notification action buttons enabled.",
     "Notification action buttons disabled."},
}};

const SwitchWords& wordsOf(AutomationSwitch which) {
    return *std::find_if(switchTable.begin(), switchTable.end(),
                         [which](const SwitchWords& row) { return row.which == which; });
}

}  // namespace

bool isOn(const Settings& settings, AutomationSwitch which) {
    return settings.*wordsOf(which).field;
}

bool isGovernedByStop(AutomationSwitch which) {
    return !wordsOf(which).refusal.empty();
}

std::string diskAutopilotStatusAtStart(const Settings& settings) {
    return settings.automationEmergencyStopEngaged ? stoppedStatus
           : settings.diskAutopilotEnabled         ? watchingStatus
                                                   : offStatus;
}

Automation::Automation(Observable& observable, ActivityLog& log, Settings& settings,
                       SettingsStore& store, Hooks hooks)
    : observable_(observable),
      log_(log),
      settings_(settings),
      store_(store),
      hooks_(std::move(hooks)),
      diskAutopilotStatus_(diskAutopilotStatusAtStart(settings)) {}

void Automation::set(AutomationSwitch which, bool on) {
    const SwitchWords& words = wordsOf(which);
    if (on && isStopEngaged() && !words.refusal.empty()) {
        log_.recordMessage(std::string(words.refusal));
        return;
    }
    settings_.*words.field = on;
    store_.write(words.key, on);
    if (which == AutomationSwitch::diskAutopilotEnabled) {
        setDiskAutopilotStatus(on ? watchingStatus : offStatus);
    }
    if (which == AutomationSwitch::notificationsIncludeActions &&
        hooks_.registerNotificationCategories) {
        hooks_.registerNotificationCategories();
    }
    log_.recordMessage(!on ? std::string(words.turnedOff)
                       : which == AutomationSwitch::diskAutopilotEnabled
                           ? fmt::format(diskAutopilotTurnedOn, title(settings_.aiAutonomyMode))
                           : std::string(words.turnedOn));
}

void Automation::setAutonomyMode(AIAutonomyMode mode) {
    if (isStopEngaged() && mode != AIAutonomyMode::apprentice) {
        log_.recordMessage("AI remains in Apprentice mode while Emergency Stop is engaged.");
        return;
    }
    settings_.aiAutonomyMode = mode;
    store_.write(settings_keys::aiAutonomyModeKey, std::string(rawValue(mode)));
    log_.recordMessage(fmt::format("AI Advisor mode set to {}.", title(mode)));
}

void Automation::engageEmergencyStop() {
    settings_.automationEmergencyStopEngaged = true;
    for (const SwitchWords& words : switchTable) {
        if (!words.refusal.empty()) {
            settings_.*words.field = false;
        }
    }
    settings_.aiAutonomyMode = AIAutonomyMode::apprentice;
    if (hooks_.clearDiskCleanupPlan) {
        hooks_.clearDiskCleanupPlan();
    }
    store_.write(settings_keys::automationEmergencyStopKey, true);
    for (const SwitchWords& words : switchTable) {
        if (!words.refusal.empty()) {
            store_.write(words.key, false);
        }
    }
    store_.write(settings_keys::aiAutonomyModeKey,
                 std::string(rawValue(AIAutonomyMode::apprentice)));
    setDiskAutopilotStatus(stoppedStatus);
    log_.recordEvent(stopEvent,
                     "Disabled offender auto-selection, Disk Autopilot, sustained-memory purge, "
                     "remote auto-scan, and AI autonomous execution. Cleared the pending disk plan "
                     "and returned AI to Apprentice mode. Re-enable each automation manually after "
                     "resuming.");
    log_.setLastAction("Emergency stop engaged. Automatic actions are disabled.");
}

void Automation::finishStopping() {
    for (const SwitchWords& words : switchTable) {
        if (words.refusal.empty()) {
            continue;
        }
        if (settings_.*words.field || store_.read(words.key) == SettingsValue(true)) {
            settings_.*words.field = false;
            store_.write(words.key, false);
        }
    }
    settings_.aiAutonomyMode = AIAutonomyMode::apprentice;
    const std::string apprentice(rawValue(AIAutonomyMode::apprentice));
    if (store_.read(settings_keys::aiAutonomyModeKey).value_or(apprentice) !=
        SettingsValue(apprentice)) {
        store_.write(settings_keys::aiAutonomyModeKey, apprentice);
    }
}

void Automation::resumeFromEmergencyStop() {
    if (settings_.automationEmergencyStopEngaged) {
        finishStopping();
    }
    settings_.automationEmergencyStopEngaged = false;
    store_.write(settings_keys::automationEmergencyStopKey, false);
    setDiskAutopilotStatus(
        "Emergency stop cleared. Automatic actions remain off until you re-enable them.");
    log_.recordEvent(stopEvent,
                     "Cleared the emergency stop in Apprentice mode. No automatic feature was "
                     "re-enabled.");
    log_.setLastAction("Emergency stop cleared; automations remain off.");
}

void Automation::setDiskAutopilotStatus(std::string status) {
    diskAutopilotStatus_ = std::move(status);
    observable_.changed();
}

}  // namespace tallowcrest

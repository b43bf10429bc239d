#include "actions/automation.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "core/activity_kinds.h"
#include "core/activity_log.h"
#include "core/jobs/jobs.h"
#include "core/observable.h"
#include "core/services.h"
#include "core/settings/settings_owner.h"

namespace tallowcrest {
namespace {

constexpr const char* stoppedStatus = "Emergency stop is engaged. All automatic actions are off.";
constexpr const char* watchingStatus = "Watching disk space with staged trust controls.";
constexpr const char* offStatus = "Disk Autopilot is off.";

struct SwitchWords {
    AutomationSwitch which;
    bool Settings::*field;
    std::string_view refusal;  ///< empty for a switch that the emergency stop leaves alone
    std::string_view turnedOn;
    std::string_view turnedOff;
};

// The advisor's mode limits what Disk Autopilot may do, so the message names the mode.
constexpr std::string_view diskAutopilotTurnedOn = "Disk Autopilot enabled in {} mode.";

constexpr std::array<SwitchWords, allAutomationSwitches.size()> switchTable{{
    {AutomationSwitch::autoSelectTopOffender, &Settings::autoSelectTopOffender,
     "Auto-select remains off while Emergency Stop is engaged.",
     "Auto-select top offender enabled.", "Auto-select top offender disabled."},
    {AutomationSwitch::autoPurgeSustainedMemory, &Settings::autoPurgeSustainedMemory,
     "Auto-purge remains off while Emergency Stop is engaged.",
     "Auto-purge for sustained high memory enabled.",
     "Auto-purge for sustained high memory disabled."},
    {AutomationSwitch::autoScanRemoteMacs, &Settings::autoScanRemoteMacs,
     "Remote auto-scan remains off while Emergency Stop is engaged.", "Auto remote scan enabled.",
     "Auto remote scan disabled."},
    {AutomationSwitch::diskAutopilotEnabled, &Settings::diskAutopilotEnabled,
     "Disk Autopilot remains off while Emergency Stop is engaged.", diskAutopilotTurnedOn,
     "Disk Autopilot disabled."},
    {AutomationSwitch::aiSafeActionsEnabled,
     &Settings::aiSafeActionsEnabled,
     {},
     "AI safe actions enabled.",
     "AI safe actions disabled."},
    {AutomationSwitch::notificationsIncludeActions,
     &Settings::notificationsIncludeActions,
     {},
     "Notification action buttons enabled.",
     "Notification action buttons disabled."},
    // The stop prevents automatic scans, and one that the owner begins may include them.
    {AutomationSwitch::includeLinuxMachines,
     &Settings::includeLinuxMachines,
     {},
     "Remote scans include Linux machines.",
     "Remote scans leave out Linux machines."},
}};

const SwitchWords& wordsOf(AutomationSwitch which) {
    return *std::find_if(switchTable.begin(), switchTable.end(),
                         [which](const SwitchWords& row) { return row.which == which; });
}

constexpr bool isHeldBack(bool Settings::*field) {
    return settings_keys::declared(field).underStop.isHeldBack;
}

static_assert(std::ranges::all_of(switchTable, [](const SwitchWords& row) {
    return isHeldBack(row.field) != row.refusal.empty();
}));

std::string statusAtStart(const Settings& settings) {
    return settings.automationEmergencyStopEngaged ? stoppedStatus
           : settings.diskAutopilotEnabled         ? watchingStatus
                                                   : offStatus;
}

}  // namespace

bool isOn(const Settings& settings, AutomationSwitch which) {
    return settings.*wordsOf(which).field;
}

bool isHeldBackByStop(AutomationSwitch which) {
    return isHeldBack(wordsOf(which).field);
}

Automation::Automation(const Services& services)
    : log_(services.log),
      settings_(services.settings),
      observable_(std::make_unique<Observable>(services.jobs.mainQueue())),
      diskAutopilotStatus_(statusAtStart(services.settings.values())) {}

Automation::~Automation() = default;

bool Automation::isOn(AutomationSwitch which) const {
    return tallowcrest::isOn(settings_.values(), which);
}

bool Automation::isStopEngaged() const {
    return settings_.values().automationEmergencyStopEngaged;
}

Outcome Automation::set(AutomationSwitch which, bool on) {
    const SwitchWords& words = wordsOf(which);
    if (on && isStopEngaged() && isHeldBack(words.field)) {
        return log_.record(Outcome::refused(std::string(words.refusal)));
    }
    settings_.set(words.field, on);
    if (which == AutomationSwitch::diskAutopilotEnabled) {
        setDiskAutopilotStatus(on ? watchingStatus : offStatus);
    }
    std::string message =
        !on ? std::string(words.turnedOff)
        : which == AutomationSwitch::diskAutopilotEnabled
            ? fmt::format(diskAutopilotTurnedOn, title(settings_.values().aiAutonomyMode))
            : std::string(words.turnedOn);
    return log_.record(Outcome::done(std::move(message)));
}

Outcome Automation::setAutonomyMode(AIAutonomyMode mode) {
    if (isStopEngaged() && mode != AIAutonomyMode::apprentice) {
        return log_.record(
            Outcome::refused("AI remains in Apprentice mode while Emergency Stop is engaged."));
    }
    settings_.set(&Settings::aiAutonomyMode, mode);
    return log_.record(Outcome::done(fmt::format("AI Advisor mode set to {}.", title(mode))));
}

Outcome Automation::engageEmergencyStop() {
    // Stored first: after a kill between two writes, the stop must be engaged.
    settings_.set(&Settings::automationEmergencyStopEngaged, true);
    switchOffHeldBack();
    ++emergencyStops_;
    setDiskAutopilotStatus(stoppedStatus);
    log_.recordEvent(ActivityKind::emergencyStop,
                     "Disabled offender auto-selection, Disk Autopilot, sustained-memory purge, "
                     "remote auto-scan, and AI autonomous execution. Cleared the pending disk plan "
                     "and returned AI to Apprentice mode. Re-enable each automation manually after "
                     "resuming.");
    return log_.show(Outcome::done("Emergency stop engaged. Automatic actions are disabled."));
}

void Automation::switchOffHeldBack() {
    for (const auto& flag : settings_keys::flags) {
        if (flag.underStop.isHeldBack) {
            settings_.set(flag.field, false);
        }
    }
    settings_.set(&Settings::aiAutonomyMode, AIAutonomyMode::apprentice);
}

Outcome Automation::resumeFromEmergencyStop() {
    if (isStopEngaged()) {
        // If a kill or a full disk kept some changes of the stop from being stored, those
        // automations are still on in the store.
        switchOffHeldBack();
    }
    settings_.set(&Settings::automationEmergencyStopEngaged, false);
    setDiskAutopilotStatus(
        "Emergency stop cleared. Automatic actions remain off until you re-enable them.");
    log_.recordEvent(ActivityKind::emergencyStop,
                     "Cleared the emergency stop in Apprentice mode. No automatic feature was "
                     "re-enabled.");
    return log_.show(Outcome::done("Emergency stop cleared; automations remain off."));
}

void Automation::setDiskAutopilotStatus(std::string status) {
    diskAutopilotStatus_ = std::move(status);
    observable_->changed();
}

}  // namespace tallowcrest

#include "monitor/auto_rules.h"

#include <algorithm>
#include <utility>

#include "actions/app_group.h"
#include "core/activity_log.h"
#include "core/clock.h"
#include "core/locale.h"
#include "core/settings/settings_owner.h"
#include "monitor/load_rules.h"

namespace tallowcrest {
namespace {

std::optional<Date> lastLogged(std::span<const ActivityEvent> log, ActivityKind kind) {
    const auto found = std::find_if(
        log.begin(), log.end(), [kind](const ActivityEvent& event) { return event.kind == kind; });
    return found != log.end() ? std::optional(found->date) : std::nullopt;
}

}  // namespace

std::optional<Date> lastActed(AutomationSwitch which, const AutomationDates& dates,
                              std::span<const ActivityEvent> log) {
    switch (which) {
        case AutomationSwitch::autoSelectTopOffender:
            return dates.lastAutoSelectDate ? dates.lastAutoSelectDate
                                            : lastLogged(log, ActivityKind::autoSelect);
        case AutomationSwitch::autoPurgeSustainedMemory:
            return dates.lastAutoPurgeDate ? dates.lastAutoPurgeDate
                                           : lastLogged(log, ActivityKind::autoPurge);
        case AutomationSwitch::autoScanRemoteMacs:
            return dates.lastAutoRemoteScanDate;
        case AutomationSwitch::diskAutopilotEnabled:
            return dates.lastDiskAutopilotCheckDate;
        case AutomationSwitch::aiSafeActionsEnabled:
        case AutomationSwitch::notificationsIncludeActions:
            break;
    }
    return std::nullopt;
}

AutoRules::AutoRules(Dependencies dependencies) : with_(std::move(dependencies)) {}

const Settings& AutoRules::settings() const {
    return with_.services.settings.values();
}

void AutoRules::runAutoRules(const SystemSnapshot& snapshot) {
    // Looked at before each rule: what one sets off may have engaged the stop.
    const auto mayRun = [this] { return !settings().automationEmergencyStopEngaged; };
    if (mayRun()) {
        selectTopOffender(snapshot);
    }
    if (mayRun()) {
        askForPurge();
    }
    if (mayRun()) {
        scanRemotes();
    }
}

void AutoRules::selectTopOffender(const SystemSnapshot& snapshot) {
    if (!settings().autoSelectTopOffender ||
        !load_rules::isOverThreshold(snapshot, settings().warningThreshold)) {
        return;
    }
    const AppImpact* group = firstSafeGroup(snapshot.appImpacts, with_.sample.latestProcesses(),
                                            settings().protectedAppNames, with_.protection);
    if (group == nullptr || with_.review.selectedAppImpactName() == group->name) {
        return;
    }
    dates_.lastAutoSelectDate = with_.services.clock.now();
    with_.review.setTarget(*group->topPID, group->name, ReviewTarget::ChosenBy::rule);
    with_.services.log.recordEvent(
        ActivityKind::autoSelect,
        load_rules::autoSelectDetail(group->name, settings().warningThreshold));
}

void AutoRules::askForPurge() {
    const Date now = with_.services.clock.now();
    if (!settings().autoPurgeSustainedMemory ||
        !(settings().warningThreshold <= sustainedMemoryAverage()) ||
        !load_rules::mayAct(dates_.lastAutoPurgeDate, now, load_rules::autoPurgeDistance)) {
        return;
    }
    dates_.lastAutoPurgeDate = now;
    with_.localActions.requestPurge();
    with_.services.log.recordEvent(ActivityKind::autoPurge, std::string(autoPurgeDetail));
}

void AutoRules::scanRemotes() {
    const Date now = with_.services.clock.now();
    if (with_.remote == nullptr || !settings().autoScanRemoteMacs ||
        with_.remote->remoteScanInProgress() ||
        !load_rules::mayAct(dates_.lastAutoRemoteScanDate, now,
                            load_rules::autoRemoteScanDistance)) {
        return;
    }
    const auto devices = with_.remote->tailDevices();
    const bool hasMac = std::any_of(devices.begin(), devices.end(), [this](const TailDevice& each) {
        return each.online && with_.services.locale.containsIgnoringCase(each.os, "mac");
    });
    if (!hasMac) {
        return;
    }
    dates_.lastAutoRemoteScanDate = now;
    with_.remote->scanRemoteMacs();
}

void AutoRules::raiseLoadWarning(const SystemSnapshot& snapshot) {
    if (!load_rules::isOverThreshold(snapshot, settings().warningThreshold)) {
        return;
    }
    const Date now = with_.services.clock.now();
    if (!load_rules::mayWarn(dates_.lastWarningDate, now)) {
        return;
    }
    dates_.lastWarningDate = now;
    with_.services.log.recordEvent(ActivityKind::warning, load_rules::warningDetail(snapshot));
    with_.notifications.postLoadWarning(load_rules::topProcessName(snapshot));
}

double AutoRules::sustainedMemoryAverage() const {
    // What lasted at the end of an earlier run, perhaps days ago, does not last now.
    return load_rules::sustainedMemoryAverage(with_.sample.historyOfThisRun());
}

}  // namespace tallowcrest

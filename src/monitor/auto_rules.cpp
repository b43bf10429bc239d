#include "monitor/auto_rules.h"

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

#include "actions/app_group.h"
#include "monitor/load_rules.h"

namespace tallowcrest {
namespace {

constexpr const char* ruleEvent = "Auto Rule";
constexpr const char* purgeDetail = "Purged caches after sustained high memory pressure.";

template <class IsDetail>
std::optional<Date> lastLogged(std::span<const ActivityEvent> log, const IsDetail& isDetail) {
    const auto found = std::find_if(log.begin(), log.end(), [&](const ActivityEvent& event) {
        return event.title == ruleEvent && isDetail(event.detail);
    });
    return found != log.end() ? std::optional(found->date) : std::nullopt;
}

}  // namespace

std::optional<Date> lastActed(AutomationSwitch which, const AutomationDates& dates,
                              std::span<const ActivityEvent> log) {
    switch (which) {
        case AutomationSwitch::autoSelectTopOffender:
            return dates.lastAutoSelectDate ? dates.lastAutoSelectDate
                                            : lastLogged(log, load_rules::isAutoSelectDetail);
        case AutomationSwitch::autoPurgeSustainedMemory:
            return dates.lastAutoPurgeDate ? dates.lastAutoPurgeDate
                                           : lastLogged(log, [](const std::string& each) {
                                                 return each == purgeDetail;
                                             });
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

AutoRules::AutoRules(Surroundings surroundings, Hooks hooks)
    : with_(std::move(surroundings)), hooks_(std::move(hooks)) {}

void AutoRules::runAutoRules(const SystemSnapshot& snapshot) {
    const std::array<std::function<void()>, 4> rules{
        [&] { selectTopOffender(snapshot); },
        [&] { askForPurge(); },
        [&] { scanRemotes(); },
        [&] {
            if (hooks_.checkDiskAutopilot) {
                hooks_.checkDiskAutopilot(snapshot);
            }
        },
    };
    for (const auto& rule : rules) {
        // Looked at before each: what a rule sets off may have engaged it.
        if (with_.settings.automationEmergencyStopEngaged) {
            return;
        }
        rule();
    }
}

void AutoRules::selectTopOffender(const SystemSnapshot& snapshot) {
    const Settings& settings = with_.settings;
    if (!settings.autoSelectTopOffender ||
        !load_rules::isOverThreshold(snapshot, settings.warningThreshold)) {
        return;
    }
    const AppImpact* group = firstSafeGroup(snapshot.appImpacts, with_.sample.latestProcesses(),
                                            settings.protectedAppNames, with_.protection);
    if (group == nullptr || with_.review.selectedAppImpactName() == group->name) {
        return;
    }
    dates_.lastAutoSelectDate = with_.clock.now();
    with_.review.setTarget(*group->topPID, group->name, ReviewTarget::ChosenBy::rule);
    with_.log.recordEvent(ruleEvent,
                          load_rules::autoSelectDetail(group->name, settings.warningThreshold));
}

void AutoRules::askForPurge() {
    const Settings& settings = with_.settings;
    const Date now = with_.clock.now();
    if (!settings.autoPurgeSustainedMemory ||
        !(settings.warningThreshold <= sustainedMemoryAverage()) ||
        !load_rules::mayAct(dates_.lastAutoPurgeDate, now, load_rules::autoPurgeDistance)) {
        return;
    }
    dates_.lastAutoPurgeDate = now;
    with_.localActions.requestPurge();
    with_.log.recordEvent(ruleEvent, purgeDetail);
}

void AutoRules::scanRemotes() {
    const Date now = with_.clock.now();
    if (!with_.settings.autoScanRemoteMacs ||
        (hooks_.remoteScanInProgress && hooks_.remoteScanInProgress()) ||
        !load_rules::mayAct(dates_.lastAutoRemoteScanDate, now,
                            load_rules::autoRemoteScanDistance) ||
        !hooks_.tailDevices) {
        return;
    }
    const auto devices = hooks_.tailDevices();
    const bool hasMac = std::any_of(devices.begin(), devices.end(), [this](const TailDevice& each) {
        return each.online && with_.locale.containsIgnoringCase(each.os, "mac");
    });
    if (!hasMac) {
        return;
    }
    dates_.lastAutoRemoteScanDate = now;
    if (hooks_.scanRemoteMacs) {
        hooks_.scanRemoteMacs();
    }
}

void AutoRules::raiseLoadWarning(const SystemSnapshot& snapshot) {
    if (!load_rules::isOverThreshold(snapshot, with_.settings.warningThreshold)) {
        return;
    }
    const Date now = with_.clock.now();
    if (!load_rules::mayWarn(dates_.lastWarningDate, now)) {
        return;
    }
    dates_.lastWarningDate = now;
    with_.log.recordEvent("Warning", load_rules::warningDetail(snapshot));
    if (hooks_.postLoadWarning) {
        hooks_.postLoadWarning(load_rules::topProcessName(snapshot));
    }
}

double AutoRules::sustainedMemoryAverage() const {
    // What lasted at the end of an earlier run, perhaps days ago, does not last now.
    return load_rules::sustainedMemoryAverage(with_.sample.historyOfThisRun());
}

}  // namespace tallowcrest

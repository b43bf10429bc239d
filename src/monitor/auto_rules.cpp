#include "monitor/auto_rules.h"

#include <utility>

#include "actions/app_group.h"
#include "actions/automation.h"
#include "actions/local_actions.h"
#include "actions/review_target.h"
#include "core/activity_kinds.h"
#include "core/activity_log.h"
#include "core/clock.h"
#include "core/jobs/jobs.h"
#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "disk/disk_autopilot.h"
#include "integration/warning_notifications.h"
#include "monitor/load_rules.h"
#include "remote/remote_scan.h"
#include "sampling/latest_sample.h"

namespace tallowcrest {

AutoRules::AutoRules(Dependencies dependencies)
    : dependencies_(std::move(dependencies)),
      observable_(std::make_unique<Observable>(dependencies_.services.jobs.mainQueue())) {}

AutoRules::~AutoRules() = default;

const Settings& AutoRules::settings() const {
    return dependencies_.services.settings.values();
}

void AutoRules::runAutoRules(const SystemSnapshot& snapshot) {
    // Checked before each rule, because the effects of the previous one may engage the stop.
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
    if (mayRun()) {
        checkDisk(snapshot);
    }
}

void AutoRules::selectTopOffender(const SystemSnapshot& snapshot) {
    if (!settings().autoSelectTopOffender ||
        !load_rules::isOverThreshold(snapshot, settings().warningThreshold)) {
        return;
    }
    const AppImpact* group =
        firstSafeGroup(snapshot.appImpacts, dependencies_.sample.latestProcesses(),
                       settings().protectedAppNames, dependencies_.protection);
    if (group == nullptr || dependencies_.review.selectedAppImpactName() == group->name) {
        return;
    }
    setDate(&AutomationDates::lastAutoSelectDate, dependencies_.services.clock.now());
    dependencies_.review.setTarget(*group->topPID, group->name, ReviewTarget::ChosenBy::rule);
    dependencies_.services.log.recordEvent(
        ActivityKind::autoSelect,
        load_rules::autoSelectDetail(group->name, settings().warningThreshold));
}

void AutoRules::askForPurge() {
    const Date now = dependencies_.services.clock.now();
    if (!settings().autoPurgeSustainedMemory ||
        !(settings().warningThreshold <= sustainedMemoryAverage()) ||
        !load_rules::mayAct(dates_.lastAutoPurgeDate, now, load_rules::autoPurgeDistance)) {
        return;
    }
    setDate(&AutomationDates::lastAutoPurgeDate, now);
    dependencies_.localActions.requestPurge();
    dependencies_.services.log.recordEvent(ActivityKind::autoPurge, std::string(autoPurgeDetail));
}

void AutoRules::scanRemotes() {
    const Date now = dependencies_.services.clock.now();
    RemoteScan& scan = dependencies_.remoteScan;
    if (!settings().autoScanRemoteMacs || scan.state().remoteScanInProgress ||
        !load_rules::mayAct(dates_.lastAutoRemoteScanDate, now,
                            load_rules::autoRemoteScanDistance) ||
        !scan.hasMachinesToScan()) {
        return;
    }
    setDate(&AutomationDates::lastAutoRemoteScanDate, now);
    scan.scanRemoteMacs();
}

void AutoRules::checkDisk(const SystemSnapshot& snapshot) {
    const Date now = dependencies_.services.clock.now();
    const bool mayScan =
        load_rules::mayAct(dates_.lastDiskAutopilotCheckDate, now, load_rules::diskCheckDistance);
    if (dependencies_.diskAutopilot.checkDiskAutopilot(snapshot, mayScan)) {
        setLastDiskAutopilotCheckDate(now);
    }
}

void AutoRules::raiseLoadWarning(const SystemSnapshot& snapshot) {
    if (!load_rules::isOverThreshold(snapshot, settings().warningThreshold)) {
        return;
    }
    const Date now = dependencies_.services.clock.now();
    if (!load_rules::mayWarn(dates_.lastWarningDate, now)) {
        return;
    }
    setDate(&AutomationDates::lastWarningDate, now);
    dependencies_.services.log.recordEvent(ActivityKind::warning,
                                           load_rules::warningDetail(snapshot));
    dependencies_.notifications.postLoadWarning(load_rules::topProcessName(snapshot));
}

void AutoRules::setLastDiskAutopilotCheckDate(Date date) {
    setDate(&AutomationDates::lastDiskAutopilotCheckDate, date);
}

void AutoRules::setDate(std::optional<Date> AutomationDates::*which, Date date) {
    dates_.*which = date;
    observable_->changed();
}

double AutoRules::sustainedMemoryAverage() const {
    // The points of an earlier run, perhaps days ago, say nothing about the present load.
    return load_rules::sustainedMemoryAverage(dependencies_.sample.historyOfThisRun());
}

}  // namespace tallowcrest

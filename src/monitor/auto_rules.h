#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>

#include "actions/automation.h"
#include "actions/local_actions.h"
#include "actions/review_target.h"
#include "core/activity_log.h"
#include "core/clock.h"
#include "core/locale.h"
#include "core/remote_records.h"
#include "core/settings.h"
#include "monitor/automation_dates.h"
#include "sampling/latest_sample.h"
#include "sampling/protection.h"

namespace tallowcrest {

/// When an automation last acted: in this run or, for a rule that writes there, as far back as the
/// activity log goes. `log` is newest first. Absent when it never did, and for a switch that does
/// nothing at a time of its own. Pure; any thread.
std::optional<Date> lastActed(AutomationSwitch which, const AutomationDates& dates,
                              std::span<const ActivityEvent> log);

/// What follows from the load of a sample: the rules whose switches are on, each at its own pace,
/// and the warning. Main thread.
class AutoRules {
public:
    /// What the rules look at and act through; the references must outlive them.
    struct Surroundings {
        ActivityLog& log;
        const LatestSample& sample;
        ReviewTarget& review;
        LocalActions& localActions;
        const Settings& settings;
        ProtectionPolicy protection;
        const Clock& clock;
        const Locale& locale;
    };

    /// What other components have to say or do; each may be absent, and there is then nothing of
    /// it: no other machines, no notification.
    struct Hooks {
        std::function<std::span<const TailDevice>()> tailDevices;
        std::function<bool()> remoteScanInProgress;
        std::function<void()> scanRemoteMacs;
        std::function<void(const SystemSnapshot&)> checkDiskAutopilot;
        std::function<void(const std::string& topProcessName)> postLoadWarning;
    };

    AutoRules(Surroundings surroundings, Hooks hooks);

    /// Runs every rule whose switch is on and whose time has come. With the emergency stop engaged
    /// nothing of it runs.
    void runAutoRules(const SystemSnapshot& snapshot);

    /// Warns of a high load, at most once in three minutes. The emergency stop does not matter: it
    /// stops actions and no information.
    void raiseLoadWarning(const SystemSnapshot& snapshot);

    /// The mean memory pressure of about the last two minutes; 0 while there is too little of it.
    double sustainedMemoryAverage() const;

    const AutomationDates& dates() const { return dates_; }
    void setLastDiskAutopilotCheckDate(Date date) { dates_.lastDiskAutopilotCheckDate = date; }

private:
    void selectTopOffender(const SystemSnapshot& snapshot);
    void askForPurge();
    void scanRemotes();

    Surroundings with_;
    Hooks hooks_;
    AutomationDates dates_;
};

}  // namespace tallowcrest

#pragma once

#include <optional>
#include <span>
#include <string>

#include "actions/automation.h"
#include "actions/local_actions.h"
#include "actions/review_target.h"
#include "core/date.h"
#include "core/remote_records.h"
#include "core/services.h"
#include "integration/warning_notifications.h"
#include "sampling/latest_sample.h"
#include "sampling/protection.h"

namespace tallowcrest {

/// When each automation last acted. Absent until it did in this run: none of this is stored, so
/// every limit starts afresh after a restart.
struct AutomationDates {
    std::optional<Date> lastAutoSelectDate;
    std::optional<Date> lastWarningDate;
    std::optional<Date> lastAutoPurgeDate;
    std::optional<Date> lastAutoRemoteScanDate;
    std::optional<Date> lastDiskAutopilotCheckDate;

    bool operator==(const AutomationDates&) const = default;
};

/// When an automation last acted: in this run or, for a rule that writes there, as far back as the
/// activity log goes. `log` is newest first. Absent when it never did, and for a switch that does
/// nothing at a time of its own. Pure; any thread.
std::optional<Date> lastActed(AutomationSwitch which, const AutomationDates& dates,
                              std::span<const ActivityEvent> log);

/// The scans of other machines, as far as a rule starts them. Main thread.
class AutoScan {
public:
    virtual ~AutoScan() = default;

    /// Valid until the main thread does something else.
    virtual std::span<const TailDevice> tailDevices() const = 0;
    virtual bool remoteScanInProgress() const = 0;
    virtual void scanRemoteMacs() = 0;
};

/// What follows from the load of a sample: the rules whose switches are on, each at its own pace,
/// and the warning. Main thread.
class AutoRules {
public:
    /// What the rules look at and act through; the references must outlive them.
    struct Dependencies {
        Services services;
        const LatestSample& sample;
        ReviewTarget& review;
        LocalActions& localActions;
        WarningNotifications& notifications;
        ProtectionPolicy protection;
        AutoScan* remote = nullptr;  ///< null where other machines are not watched
    };

    explicit AutoRules(Dependencies dependencies);

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

    const Settings& settings() const;

    Dependencies with_;
    AutomationDates dates_;
};

}  // namespace tallowcrest

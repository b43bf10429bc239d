#pragma once

#include <memory>
#include <optional>

#include "core/date.h"
#include "core/services.h"
#include "monitor/load_rules.h"
#include "sampling/protection.h"

namespace tallowcrest {

class DiskAutopilot;
class LatestSample;
class LocalActions;
class Observable;
class RemoteScan;
class ReviewTarget;
class WarningNotifications;
struct Settings;
struct SystemSnapshot;

/// The automatic rules and the load warning, which are checked with each sample. Main thread.
class AutoRules {
public:
    /// The references must outlive the object.
    struct Dependencies {
        Services services;
        const LatestSample& sample;
        ReviewTarget& review;
        LocalActions& localActions;
        WarningNotifications& notifications;
        ProtectionPolicy protection;
        RemoteScan& remoteScan;
        DiskAutopilot& diskAutopilot;
    };

    explicit AutoRules(Dependencies dependencies);
    ~AutoRules();

    /// Runs each rule whose switch is on, whose condition holds and whose pause is over. While the
    /// emergency stop is engaged, runs none.
    void runAutoRules(const SystemSnapshot& snapshot);

    /// Records and notifies of a high load, at most once in three minutes. The emergency stop has
    /// no effect on it: the stop is for actions, not for information.
    void raiseLoadWarning(const SystemSnapshot& snapshot);

    /// The mean memory pressure, in percent, of about the last two minutes of this run; 0 until the
    /// run has 15 samples.
    double sustainedMemoryAverage() const;

    const AutomationDates& dates() const { return dates_; }
    void setLastDiskAutopilotCheckDate(Date date);

    /// Notifies of changed dates.
    Observable& observable() { return *observable_; }

private:
    void selectTopOffender(const SystemSnapshot& snapshot);
    void askForPurge();
    void scanRemotes();
    void checkDisk(const SystemSnapshot& snapshot);

    void setDate(std::optional<Date> AutomationDates::*which, Date date);

    const Settings& settings() const;

    Dependencies dependencies_;
    std::unique_ptr<Observable> observable_;
    AutomationDates dates_;
};

}  // namespace tallowcrest

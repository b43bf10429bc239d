#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "core/local_records.h"
#include "core/observable.h"
#include "core/outcome.h"
#include "core/services.h"
#include "sampling/latest_sample.h"
#include "sampling/protection.h"

namespace tallowcrest {

/// What the target card shows. All empty when nothing is selected.
struct SelectedTargetSummary {
    std::string title;
    std::string detail;
    bool isProtected = false;

    bool operator==(const SelectedTargetSummary&) const = default;
};

/// The process and application group under review. Selecting changes nothing on the machine.
/// A selection survives samples in which its process is gone. Main thread.
class ReviewTarget {
public:
    /// The references must outlive the object.
    ReviewTarget(const Services& services, const LatestSample& sample, ProtectionPolicy policy);
    ReviewTarget(const ReviewTarget&) = delete;
    ReviewTarget& operator=(const ReviewTarget&) = delete;

    /// Who moved the review to where it is.
    enum class ChosenBy { owner, rule };

    std::optional<std::int64_t> selectedPID() const { return selectedPID_; }
    const std::optional<std::string>& selectedAppImpactName() const {
        return selectedAppImpactName_;
    }
    /// Of no meaning without a selection.
    ChosenBy chosenBy() const { return chosenBy_; }
    /// The line that tells where the owner stands in the guided workflow.
    const std::string& optimizeStep() const { return optimizeStep_; }
    void setOptimizeStep(std::string step);

    /// The row of the latest process table that is the selected process. Null when nothing is
    /// selected, or when the process is not in the table, be it that another one bears its number.
    const ProcessSample* selectedRow() const;
    /// When the selected process began, as its row told; 0 when none did.
    std::uint64_t selectedStartTime() const { return selectedStartTime_; }
    /// The command of the selected process, as its row told; empty when none did.
    const std::string& selectedCommand() const { return selectedCommand_; }

    /// Selects a row of the process list, whatever it is: reviewing is always allowed.
    void selectProcess(const ProcessSample& process);
    /// Selects the first row of the list as the owner sees it.
    Outcome selectFirstProcess(const std::vector<ProcessSample>& visibleRows);
    /// Selects the heaviest process, unless it is protected.
    Outcome selectTopProcess();
    /// Selects the heaviest process of the heaviest group, unless it is protected.
    Outcome selectTopApp();
    /// Moves the review to a group and one process of it; the step stays.
    void setTarget(std::int64_t pid, std::string groupName, ChosenBy chooser = ChosenBy::owner);
    void clearOperationTarget();

    SelectedTargetSummary selectedTargetSummary() const;

    /// The built-in protection or the owner's Never Quit list.
    bool isProtectedTarget(const ProcessSample& process) const;

    Observable& observable() { return observable_; }

private:
    const ProcessSample* findSelected(const std::vector<ProcessSample>& rows) const;

    ActivityLog& log_;
    SettingsOwner& settings_;
    const LatestSample& sample_;
    ProtectionPolicy policy_;
    Observable observable_;
    std::optional<std::int64_t> selectedPID_;
    std::uint64_t selectedStartTime_ = 0;
    std::string selectedCommand_;
    std::optional<std::string> selectedAppImpactName_;
    ChosenBy chosenBy_ = ChosenBy::owner;
    std::string optimizeStep_;
};

}  // namespace tallowcrest

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/local_records.h"
#include "core/outcome.h"
#include "sampling/protection.h"

namespace tallowcrest {

class ActivityLog;
class LatestSample;
class Observable;
class SettingsOwner;
struct Services;

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
    ~ReviewTarget();
    ReviewTarget(const ReviewTarget&) = delete;
    ReviewTarget& operator=(const ReviewTarget&) = delete;

    /// Who selected the target.
    enum class ChosenBy { owner, rule };

    /// The selected process and its group; absent when nothing is selected.
    std::optional<std::int64_t> selectedPID() const { return selectedPID_; }
    const std::optional<std::string>& selectedAppImpactName() const {
        return selectedAppImpactName_;
    }
    /// Meaningless when nothing is selected.
    ChosenBy chosenBy() const { return chosenBy_; }
    /// The text of the owner's current step in the guided workflow.
    const std::string& optimizeStep() const { return optimizeStep_; }
    void setOptimizeStep(std::string step);

    /// The selected process's row in the latest process table, valid until the next sample. Null
    /// when nothing is selected or the process is not in the table, even if another one has its
    /// pid.
    const ProcessSample* selectedRow() const;
    /// The row that the selected process had when it was selected; absent when it had none.
    const std::optional<ProcessSample>& reviewedRow() const { return reviewedRow_; }

    /// Selects a row of the process list, even a protected one: reviewing is always allowed.
    /// Records no message.
    void selectProcess(const ProcessSample& process);
    /// Selects the first row of the list as the owner sees it; refused when it is empty. The
    /// message becomes the last action but no event.
    Outcome selectFirstProcess(const std::vector<ProcessSample>& visibleRows);
    /// Selects the process of the latest table that has `pid`, with the same messages; refused when
    /// there is none.
    Outcome selectProcessWithPID(std::int64_t pid);
    /// Selects the heaviest process; refused before the first sample and when it is protected.
    Outcome selectTopProcess();
    /// Selects the heaviest process of the heaviest group; refused before the first sample and when
    /// it is protected.
    Outcome selectTopApp();
    /// Selects a group and one process of it. Keeps the step and records no message.
    void setTarget(std::int64_t pid, std::string groupName, ChosenBy chooser = ChosenBy::owner);
    /// Clears the selection, returns to the first step and records a message.
    Outcome clearOperationTarget();

    SelectedTargetSummary selectedTargetSummary() const;

    /// Whether the built-in protection or the owner's Never Quit list protects the process.
    bool isProtectedTarget(const ProcessSample& process) const;

    /// Notifies of a changed selection, step and `chosenBy`.
    Observable& observable() { return *observable_; }

private:
    /// `row` is null when the process is not in the table.
    void select(std::int64_t pid, const ProcessSample* row, std::string groupName,
                ChosenBy chooser);
    /// Null where there is none to select.
    Outcome selectListed(const ProcessSample* row);
    const ProcessSample* findSelected(const std::vector<ProcessSample>& rows) const;

    ActivityLog& log_;
    SettingsOwner& settings_;
    const LatestSample& sample_;
    ProtectionPolicy policy_;
    std::unique_ptr<Observable> observable_;
    std::optional<std::int64_t> selectedPID_;
    std::optional<ProcessSample> reviewedRow_;
    std::optional<std::string> selectedAppImpactName_;
    ChosenBy chosenBy_ = ChosenBy::owner;
    std::string optimizeStep_;
};

}  // namespace tallowcrest

#include "actions/review_target.h"

#include <utility>

#include <fmt/format.h>

#include "actions/app_group.h"
#include "core/activity_log.h"
#include "core/jobs/jobs.h"
#include "core/observable.h"
#include "core/services.h"
#include "core/settings/settings_owner.h"
#include "sampling/app_impact.h"
#include "sampling/latest_sample.h"

namespace tallowcrest {
namespace {

constexpr const char* firstStep = "1. Select an offender to review. No optimization has run yet.";

}  // namespace

ReviewTarget::ReviewTarget(const Services& services, const LatestSample& sample,
                           ProtectionPolicy policy)
    : log_(services.log),
      settings_(services.settings),
      sample_(sample),
      policy_(policy),
      observable_(std::make_unique<Observable>(services.jobs.mainQueue())),
      optimizeStep_(firstStep) {}

ReviewTarget::~ReviewTarget() = default;

void ReviewTarget::setOptimizeStep(std::string step) {
    optimizeStep_ = std::move(step);
    observable_->changed();
}

void ReviewTarget::select(std::int64_t pid, const ProcessSample* row, std::string groupName,
                          ChosenBy chooser) {
    selectedPID_ = pid;
    reviewedRow_ = row == nullptr ? std::nullopt : std::optional(*row);
    selectedAppImpactName_ = std::move(groupName);
    chosenBy_ = chooser;
    observable_->changed();
}

void ReviewTarget::setTarget(std::int64_t pid, std::string groupName, ChosenBy chooser) {
    select(pid, findProcess(sample_.latestProcesses(), pid), std::move(groupName), chooser);
}

void ReviewTarget::selectProcess(const ProcessSample& process) {
    // Not the row of the latest sample: the one that was chosen may be older.
    select(process.pid, &process, appGroupName(process), ChosenBy::owner);
    setOptimizeStep(fmt::format("2. {} is selected for review from CPU + Memory Processes.",
                                process.displayName()));
}

Outcome ReviewTarget::selectFirstProcess(const std::vector<ProcessSample>& visibleRows) {
    return selectListed(visibleRows.empty() ? nullptr : &visibleRows.front());
}

Outcome ReviewTarget::selectProcessWithPID(std::int64_t pid) {
    return selectListed(findProcess(sample_.latestProcesses(), pid));
}

Outcome ReviewTarget::selectListed(const ProcessSample* row) {
    if (row == nullptr) {
        return log_.show(Outcome::refused("No process is available to select."));
    }
    selectProcess(*row);
    return log_.show(Outcome::done(fmt::format(
        "Selected {} from CPU + Memory Processes. No action has run yet.", row->displayName())));
}

Outcome ReviewTarget::selectTopProcess() {
    const auto& snapshot = sample_.snapshot();
    if (!snapshot || snapshot->topProcesses.empty()) {
        return log_.record(Outcome::refused("No process sample is available yet."));
    }
    const ProcessSample& top = snapshot->topProcesses.front();
    if (isProtectedTarget(top)) {
        return log_.record(Outcome::refused(
            fmt::format("Top process is protected: {}. Select another process to optimize.",
                        top.displayName())));
    }
    setTarget(top.pid, appGroupName(top));
    setOptimizeStep(fmt::format(
        "2. {} is selected for review. Choose a confirmed action when ready.", top.displayName()));
    return log_.record(Outcome::done(
        fmt::format("Selected {}, currently the heaviest process.", top.displayName())));
}

Outcome ReviewTarget::selectTopApp() {
    const auto& snapshot = sample_.snapshot();
    if (!snapshot || snapshot->appImpacts.empty() || !snapshot->appImpacts.front().topPID) {
        return log_.record(Outcome::refused("No app impact sample is available yet."));
    }
    const AppImpact& group = snapshot->appImpacts.front();
    // A top process that is no longer in the table is accepted, because reviewing does no harm.
    const ProcessSample* row = findProcess(sample_.latestProcesses(), *group.topPID);
    if (row != nullptr && isProtectedTarget(*row)) {
        return log_.record(Outcome::refused(
            "Top app includes protected system processes. Select a safer app group."));
    }
    setTarget(*group.topPID, group.name);
    setOptimizeStep(fmt::format(
        "2. {} is selected for review. Nothing has been quit or purged yet.", group.name));
    return log_.record(
        Outcome::done(fmt::format("Selected the heaviest process inside {}.", group.name)));
}

Outcome ReviewTarget::clearOperationTarget() {
    selectedPID_.reset();
    reviewedRow_.reset();
    selectedAppImpactName_.reset();
    setOptimizeStep(firstStep);
    return log_.record(Outcome::done("Cleared selected operation target."));
}

const ProcessSample* ReviewTarget::findSelected(const std::vector<ProcessSample>& rows) const {
    const ProcessSample* row = selectedPID_ ? findProcess(rows, *selectedPID_) : nullptr;
    const std::uint64_t startTime = reviewedRow_ ? reviewedRow_->startTime : 0;
    const bool isAnotherProcess =
        row != nullptr && startTime != 0 && row->startTime != 0 && row->startTime != startTime;
    return isAnotherProcess ? nullptr : row;
}

const ProcessSample* ReviewTarget::selectedRow() const {
    return findSelected(sample_.latestProcesses());
}

SelectedTargetSummary ReviewTarget::selectedTargetSummary() const {
    if (!selectedPID_) {
        return {};
    }
    const ProcessSample* row = selectedRow();
    if (row == nullptr && sample_.snapshot()) {
        row = findSelected(sample_.snapshot()->topProcesses);
    }
    if (row == nullptr) {
        return {fmt::format("PID {}", *selectedPID_),
                "Selected for review. Process details are not in the latest sample.", false};
    }
    return {std::string(row->displayName()),
            fmt::format("{} · PID {} · {:.1f}% CPU · {:.0f} MB", appGroupName(*row), row->pid,
                        row->cpu, row->rssMB),
            isProtectedTarget(*row)};
}

bool ReviewTarget::isProtectedTarget(const ProcessSample& process) const {
    return !isSafeTarget(process, settings_.values().protectedAppNames, policy_);
}

}  // namespace tallowcrest

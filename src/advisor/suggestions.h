#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "core/advisor_records.h"
#include "core/outcome.h"
#include "core/services.h"

namespace tallowcrest {

class LatestSample;
class LocalActions;
class Observable;
class RemoteScan;
class Reports;
class ReviewTarget;
class Trust;
enum class TrustEvent;

/// The suggestions of the latest analysis: their approval, and the one place where they run. What
/// runs is an operation that the owner could also have begun by a button. Main thread.
class Suggestions {
public:
    /// The references must outlive the object.
    struct Dependencies {
        Services services;
        LatestSample& sample;
        ReviewTarget& review;
        LocalActions& local;
        RemoteScan& scan;
        Reports& reports;
        Trust& trust;
    };

    explicit Suggestions(const Dependencies& dependencies);
    ~Suggestions();
    Suggestions(const Suggestions&) = delete;
    Suggestions& operator=(const Suggestions&) = delete;

    const std::vector<AIActionSuggestion>& aiActions() const { return aiActions_; }
    const std::set<UUID>& approvedAIActionIDs() const { return approvedAIActionIDs_; }

    void setAIActions(std::vector<AIActionSuggestion> actions);
    void clearApprovals();

    /// Approves one suggestion. Each call counts in the trust records, also the second one for the
    /// same suggestion.
    Outcome approveSuggestion(const AIActionSuggestion& suggestion);
    Outcome approveAllSuggestions();

    /// Runs an approved suggestion, and returns what became of it. Refused with a message when it
    /// is not approved, when its type cannot run, and for a purge while the memory pressure is
    /// below the warning threshold. A purge still asks for a confirmation.
    Outcome runSuggestion(const AIActionSuggestion& suggestion);
    /// Runs all approved suggestions that can run, in order. They remain approved.
    Outcome runApprovedSuggestions();

    /// From now on nothing is approved or run but by the owner, whatever the settings say.
    void onlyPropose() { onlyProposes_ = true; }

    /// Approves what experience has earned, and lets the autopilot run at most two of those.
    void applyAdvisorAutonomy();

    /// Approves and runs the first suggestion that the switch for safe actions includes, whatever
    /// the mode and the experience are. Records an event when there is none.
    void runFirstSafeSuggestion();

    /// Notifies of changed suggestions and approvals.
    Observable& observable() { return *observable_; }

private:
    /// Counts what happened to a suggestion. One of the type `diskCleanupAction` counts nothing: a
    /// reply must not earn the trust that lets the disk's clean-up run by itself.
    void recordTrustEvent(const AIActionSuggestion& suggestion, TrustEvent event);

    Dependencies dependencies_;
    std::unique_ptr<Observable> observable_;
    std::vector<AIActionSuggestion> aiActions_;
    std::set<UUID> approvedAIActionIDs_;
    bool onlyProposes_ = false;
};

}  // namespace tallowcrest

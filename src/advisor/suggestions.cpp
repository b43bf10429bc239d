#include "advisor/suggestions.h"

#include <cstddef>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "actions/local_actions.h"
#include "actions/review_target.h"
#include "advisor/action_catalogue.h"
#include "advisor/autonomy.h"
#include "advisor/run_refusal.h"
#include "advisor/trust.h"
#include "core/activity_kinds.h"
#include "core/activity_log.h"
#include "core/jobs/jobs.h"
#include "core/number_text.h"
#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "remote/remote_scan.h"
#include "reports/reports.h"
#include "sampling/latest_sample.h"

namespace tallowcrest {
Suggestions::Suggestions(const Dependencies& dependencies)
    : dependencies_(dependencies),
      observable_(std::make_unique<Observable>(dependencies_.services.jobs.mainQueue())) {}

Suggestions::~Suggestions() = default;

void Suggestions::setAIActions(std::vector<AIActionSuggestion> actions) {
    aiActions_ = std::move(actions);
    observable_->changed();
}

void Suggestions::clearApprovals() {
    approvedAIActionIDs_.clear();
    observable_->changed();
}

Outcome Suggestions::approveSuggestion(const AIActionSuggestion& suggestion) {
    approvedAIActionIDs_.insert(suggestion.id);
    observable_->changed();
    recordTrustEvent(suggestion, TrustEvent::approved);
    return dependencies_.services.log.record(
        Outcome::done(fmt::format("Approved AI action: {}.", suggestion.title)));
}

Outcome Suggestions::approveAllSuggestions() {
    approvedAIActionIDs_.clear();
    for (const AIActionSuggestion& suggestion : aiActions_) {
        approvedAIActionIDs_.insert(suggestion.id);
        recordTrustEvent(suggestion, TrustEvent::approved);
    }
    observable_->changed();
    return dependencies_.services.log.record(Outcome::done(fmt::format(
        "Approved {} AI suggested action{}.", aiActions_.size(), pluralEnding(aiActions_.size()))));
}

Outcome Suggestions::runSuggestion(const AIActionSuggestion& suggestion) {
    const auto& snapshot = dependencies_.sample.snapshot();
    const auto refusal = runRefusal(suggestion, approvedAIActionIDs_.contains(suggestion.id),
                                    snapshot ? snapshot->memory.pressure : 0.0,
                                    dependencies_.services.settings.values().warningThreshold);
    if (refusal) {
        if (refusal->isBlocked) {
            recordTrustEvent(suggestion, TrustEvent::blocked);
        }
        return dependencies_.services.log.record(Outcome::refused(refusal->message));
    }
    recordTrustEvent(suggestion, TrustEvent::run);
    switch (*advisorAction(suggestion.type)) {
        case AdvisorAction::selectTop:
            return dependencies_.review.selectTopApp();
        case AdvisorAction::localPurge:
            return dependencies_.local.requestPurge();
        case AdvisorAction::scanRemote:
            return dependencies_.scan.scanRemoteMacs();
        case AdvisorAction::copyReport:
            return dependencies_.reports.copyDiagnosticsReport();
        case AdvisorAction::exportDiagnostics:
            return dependencies_.reports.exportDiagnosticsReport();
    }
    return Outcome::ignored();
}

void Suggestions::recordTrustEvent(const AIActionSuggestion& suggestion, TrustEvent event) {
    if (suggestion.type != diskCleanupAction) {
        dependencies_.trust.recordTrustEvent(suggestion.type, event);
    }
}

Outcome Suggestions::runApprovedSuggestions() {
    std::vector<AIActionSuggestion> ready;
    for (const AIActionSuggestion& suggestion : aiActions_) {
        if (approvedAIActionIDs_.contains(suggestion.id) && advisorAction(suggestion.type)) {
            ready.push_back(suggestion);
        }
    }
    if (ready.empty()) {
        return dependencies_.services.log.record(
            Outcome::refused("No approved AI actions are ready to run."));
    }
    for (const AIActionSuggestion& suggestion : ready) {
        runSuggestion(suggestion);
    }
    return Outcome::done();
}

void Suggestions::applyAdvisorAutonomy() {
    if (onlyProposes_) {
        return;
    }
    const AIAutonomyMode mode = dependencies_.services.settings.values().aiAutonomyMode;
    const std::vector<AIActionSuggestion> approved =
        autoApproved(mode, aiActions_, dependencies_.trust.aiTrustRecords());
    if (approved.empty()) {
        return;
    }
    for (const AIActionSuggestion& suggestion : approved) {
        approvedAIActionIDs_.insert(suggestion.id);
    }
    observable_->changed();
    dependencies_.services.log.recordEvent(
        ActivityKind::aiTrust, fmt::format("Auto-approved {} trusted low-risk action{}.",
                                           approved.size(), pluralEnding(approved.size())));
    for (const AIActionSuggestion& suggestion : autoRun(mode, approved)) {
        runSuggestion(suggestion);
    }
}

void Suggestions::runFirstSafeSuggestion() {
    if (onlyProposes_) {
        return;
    }
    const auto suggestion = firstSafeSuggestion(aiActions_);
    if (!suggestion) {
        dependencies_.services.log.recordEvent(
            ActivityKind::ai,
            "AI safe actions enabled, but no executable safe action was suggested.");
        return;
    }
    approvedAIActionIDs_.insert(suggestion->id);
    observable_->changed();
    runSuggestion(*suggestion);
}

}  // namespace tallowcrest

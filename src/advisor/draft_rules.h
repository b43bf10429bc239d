#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "core/advisor_records.h"
#include "core/local_records.h"

/// Which rule drafts follow from an analysis. Pure; any thread.
namespace tallowcrest::draft_rules {

inline constexpr std::size_t maximumDrafts = 12;

/// The references must stay valid during the call.
struct Facts {
    const SystemSnapshot* snapshot;  ///< null before the first sample
    double warningThreshold;         ///< percent
    bool hasRemoteHealth;            ///< whether a scan of other machines had results
    std::span<const AIActionSuggestion> suggestions;
};

/// New drafts, all disabled, with new ids. Control characters in the names of applications become
/// blanks.
std::vector<AIRuleDraft> candidates(const Facts& facts);

/// Appends the candidates whose title no present draft has, and drops the oldest drafts beyond
/// `maximumDrafts`. Candidates with the same title are all appended.
void append(std::vector<AIRuleDraft>& drafts, std::vector<AIRuleDraft> candidates);

}  // namespace tallowcrest::draft_rules

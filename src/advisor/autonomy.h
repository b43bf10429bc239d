#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/advisor_records.h"

/// What may happen to the suggestions of an analysis without the owner. Pure; any thread.
namespace tallowcrest {

/// By action type.
using TrustRecords = std::map<std::string, AITrustRecord>;

/// The suggestions that experience approves, in their order. Empty for an apprentice. Only the one
/// word "medium" is a refusal by risk.
std::vector<AIActionSuggestion> autoApproved(AIAutonomyMode mode,
                                             std::span<const AIActionSuggestion> suggestions,
                                             const TrustRecords& records);

/// Those of the approved suggestions that run by themselves, in their order: at most two, and none
/// except for an autopilot.
std::vector<AIActionSuggestion> autoRun(AIAutonomyMode mode,
                                        std::span<const AIActionSuggestion> approved);

/// The one suggestion that the switch for safe actions runs; absent when there is none.
std::optional<AIActionSuggestion> firstSafeSuggestion(
    std::span<const AIActionSuggestion> suggestions);

}  // namespace tallowcrest

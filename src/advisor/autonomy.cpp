#include "advisor/autonomy.h"

#include <cstddef>
#include <cstdint>

#include "advisor/action_catalogue.h"
#include "advisor/trust_score.h"

namespace tallowcrest {
namespace {

constexpr std::int64_t leastRuns = 2;
constexpr std::size_t mostRunsByThemselves = 2;

bool isTrusted(const AIActionSuggestion& suggestion, const TrustRecords& records) {
    const auto record = records.find(suggestion.type);
    return advisorAction(suggestion.type) && suggestion.risk != "medium" &&
           record != records.end() && record->second.runCount >= leastRuns &&
           trustScore(record->second) >= trustedFrom;
}

}  // namespace

std::vector<AIActionSuggestion> autoApproved(AIAutonomyMode mode,
                                             std::span<const AIActionSuggestion> suggestions,
                                             const TrustRecords& records) {
    std::vector<AIActionSuggestion> approved;
    if (mode == AIAutonomyMode::apprentice) {
        return approved;
    }
    for (const AIActionSuggestion& suggestion : suggestions) {
        if (isTrusted(suggestion, records)) {
            approved.push_back(suggestion);
        }
    }
    return approved;
}

std::vector<AIActionSuggestion> autoRun(AIAutonomyMode mode,
                                        std::span<const AIActionSuggestion> approved) {
    std::vector<AIActionSuggestion> run;
    if (mode != AIAutonomyMode::autopilot) {
        return run;
    }
    for (const AIActionSuggestion& suggestion : approved) {
        const auto action = advisorAction(suggestion.type);
        if (action && mayRunByItself(*action) && run.size() < mostRunsByThemselves) {
            run.push_back(suggestion);
        }
    }
    return run;
}

std::optional<AIActionSuggestion> firstSafeSuggestion(
    std::span<const AIActionSuggestion> suggestions) {
    for (const AIActionSuggestion& suggestion : suggestions) {
        const auto action = advisorAction(suggestion.type);
        if (action && isSafeAction(*action)) {
            return suggestion;
        }
    }
    return std::nullopt;
}

}  // namespace tallowcrest

#include "advisor/run_refusal.h"

#include <fmt/format.h>

#include "advisor/action_catalogue.h"
#include "core/number_text.h"

namespace tallowcrest {

std::optional<RunRefusal> runRefusal(const AIActionSuggestion& suggestion, bool isApproved,
                                     double memoryPressure, double warningThreshold) {
    if (!isApproved) {
        return RunRefusal{fmt::format("Approve '{}' before running it.", suggestion.title), false};
    }
    const auto action = advisorAction(suggestion.type);
    if (!action) {
        return RunRefusal{fmt::format("AI action '{}' is informational only.", suggestion.type),
                          true};
    }
    if (*action == AdvisorAction::localPurge && !(warningThreshold <= memoryPressure)) {
        return RunRefusal{
            fmt::format("AI purge suggestion blocked because memory pressure is below {}%.",
                        cutToInteger(warningThreshold)),
            true};
    }
    return std::nullopt;
}

}  // namespace tallowcrest

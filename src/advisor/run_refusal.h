#pragma once

#include <optional>
#include <string>

#include "core/advisor_records.h"

namespace tallowcrest {

/// Why a suggestion does not run.
struct RunRefusal {
    std::string message;
    bool isBlocked = false;  ///< whether it counts against the trust in its type

    bool operator==(const RunRefusal&) const = default;
};

/// Absent when the suggestion may run. `memoryPressure`, 0 before the first sample, and
/// `warningThreshold` are percentages. Pure; any thread.
std::optional<RunRefusal> runRefusal(const AIActionSuggestion& suggestion, bool isApproved,
                                     double memoryPressure, double warningThreshold);

}  // namespace tallowcrest

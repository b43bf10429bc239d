#pragma once

#include <vector>

#include "core/local_records.h"
#include "core/locale.h"

namespace tallowcrest {

// The monitor's plain-language reading of the machine. Each sample derives every card anew: what
// one sample alone says, then what the recent timeline adds.

/// What one sample says: one card at least and five at most, the most pressing kinds first.
/// `processes` are all rows of the table in its order; figures in percent and GB. Of rows with
/// equal figures the first stands for all; a figure that is no number counts as 0. Any thread,
/// several at once.
std::vector<Recommendation> buildRecommendations(const std::vector<ProcessSample>& processes,
                                                 double freeGB, double pressure, double cpuPercent,
                                                 const Locale& locale);

/// Puts on top what `history` (oldest first, the newest sample included) says of the last minute,
/// drops later cards of the same title, and keeps five. A timeline too short to speak of a minute
/// leaves the list as it is. `appImpacts` are the groups of the newest sample, in impact order.
/// Any thread.
std::vector<Recommendation> addSustainedRecommendations(std::vector<Recommendation> recommendations,
                                                        const std::vector<HistoryPoint>& history,
                                                        const std::vector<AppImpact>& appImpacts);

}  // namespace tallowcrest

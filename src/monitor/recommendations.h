#pragma once

#include <string>
#include <vector>

#include "core/local_records.h"
#include "core/locale.h"

namespace tallowcrest {

// The recommendations, which describe the machine's state in plain language. All of them are built
// again for each sample: first from the sample alone, then with the recent timeline.

/// The recommendations from one sample: at least one and at most five, the most urgent kinds first.
/// `processes` are all rows of the table in its order; `pressure` and `cpuPercent` are in percent.
/// Among rows with equal figures the first is named; a row's figure that is NaN counts as 0. Any
/// thread, several at once.
std::vector<Recommendation> buildRecommendations(const std::vector<ProcessSample>& processes,
                                                 double freeGB, double pressure, double cpuPercent,
                                                 const Locale& locale);

/// Adds recommendations for a load that stayed high in the last minute of `history` (oldest first,
/// the newest sample included) at the top, drops later ones with the same title, and keeps five.
/// With fewer than ten points the list is unchanged. `appImpacts` are the groups of the newest
/// sample, in impact order. Any thread.
std::vector<Recommendation> addSustainedRecommendations(std::vector<Recommendation> recommendations,
                                                        const std::vector<HistoryPoint>& history,
                                                        const std::vector<AppImpact>& appImpacts);

/// The title with "A process" in place of the name of one. Pure; any thread.
std::string titleWithoutName(const Recommendation& recommendation);

}  // namespace tallowcrest

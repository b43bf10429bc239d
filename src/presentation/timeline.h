#pragma once

#include <optional>
#include <vector>

#include "core/local_records.h"

namespace tallowcrest {

/// What the timeline shows of a session, as plain values.
struct TimelineSummary {
    std::vector<double> cpu;     ///< percent, oldest first
    std::vector<double> memory;  ///< percent, oldest first
    double cpuNow = 0.0;
    double memoryNow = 0.0;
    double cpuPeak = 0.0;
    double memoryPeak = 0.0;
    double cpuAverage = 0.0;
};

/// All zero and empty for an empty history. Any thread.
TimelineSummary timelineSummary(const std::vector<HistoryPoint>& history);

/// What `sessionSeconds` gives for a full history without breaks.
inline constexpr int longestSessionSeconds = 720;

/// How many seconds the history reaches back, rounded: what passed from point to point, and the
/// interval before the first. A break between two runs, or in sleep, is part of that. Where the
/// clock was set back nothing passed. Any thread.
int sessionSeconds(const std::vector<HistoryPoint>& history);

/// Where the events of the last 600 seconds before `now` lie within the period from the first to
/// the last point, from 0 to 1. Events outside that period are left out; so are all of them while
/// fewer than two points make a period. Any thread.
std::vector<double> eventFractions(const std::vector<ActivityEvent>& events,
                                   const std::vector<HistoryPoint>& history, Date now);

}  // namespace tallowcrest

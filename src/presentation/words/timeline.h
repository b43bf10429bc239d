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

/// `sessionSeconds` never gives more; a full history without breaks, a point every four seconds, is
/// 720.
inline constexpr int longestSessionSeconds = 2160;

/// For how many seconds of the history Tallowcrest ran, rounded: what passed from point to point,
/// and the interval before the first. A step that is longer than three ticks, as from one run to
/// the next or in sleep, counts as one tick. Where the clock was set back nothing passed. Any
/// thread.
int sessionSeconds(const std::vector<HistoryPoint>& history);

/// Where the events of the last 600 seconds before `now` lie on the axis of the points, which stand
/// equally far apart whatever time lies between them: from 0 for the first to 1 for the last. An
/// event lies between its neighbours in time. Events before the first point or after the last are
/// left out; so are all of them while there are fewer than two points. Any thread.
std::vector<double> eventFractions(const std::vector<ActivityEvent>& events,
                                   const std::vector<HistoryPoint>& history, Date now);

}  // namespace tallowcrest

#pragma once

#include <cstddef>
#include <vector>

#include "core/activity_event.h"
#include "core/local_records.h"

namespace tallowcrest {

/// The values that the timeline of a session shows.
struct TimelineSummary {
    std::vector<double> cpu;     ///< percent, oldest first
    std::vector<double> memory;  ///< percent, oldest first
    double cpuNow = 0.0;
    double memoryNow = 0.0;
    double cpuPeak = 0.0;
    double memoryPeak = 0.0;
    double cpuAverage = 0.0;
};

/// What the timeline is read from. What it refers to must outlive the value.
struct TimelineFacts {
    const std::vector<HistoryPoint>& history;       ///< oldest first
    const std::vector<ActivityEvent>& activityLog;  ///< newest first
    double warningThreshold = 0.0;                  ///< percent
};

/// All zero and empty for an empty history. Any thread.
TimelineSummary timelineSummary(const std::vector<HistoryPoint>& history);

/// The largest result of `sessionSeconds`. A full history without gaps, with a point every four
/// seconds, has 720.
inline constexpr int longestSessionSeconds = 2160;

/// How many seconds Tallowcrest ran during the history, rounded: the time from point to point plus
/// the interval before the first. A step of more than three ticks, between two runs or over a
/// sleep, counts as one tick; a step back of the clock counts as nothing. Any thread.
int sessionSeconds(const std::vector<HistoryPoint>& history);

/// The points that are more than three ticks later than their predecessor, as after the start of
/// another run or after sleep: nothing was measured in between. Indexes, ascending. Any thread.
std::vector<std::size_t> timelineGaps(const std::vector<HistoryPoint>& history);

/// An event on the axis of the points.
struct TimelineEvent {
    const ActivityEvent* event = nullptr;  ///< never null
    double fraction = 0.0;                 ///< from 0 for the first point to 1 for the last
};

/// The events of the last 600 seconds before `now`. The points are equidistant whatever the time
/// between them; an event is placed between its neighbours in time. Events before the first point
/// or after the last are omitted, and all of them if there are fewer than two points. The result
/// refers to `events`. Any thread.
std::vector<TimelineEvent> timelineEvents(const std::vector<ActivityEvent>& events,
                                          const std::vector<HistoryPoint>& history, Date now);

}  // namespace tallowcrest

#include "presentation/words/timeline.h"

#include <algorithm>
#include <cmath>

#include "sampling/latest_sample.h"

namespace tallowcrest {
namespace {

constexpr double secondsPerTick = 4.0;
// A longer step is a gap without samples: another run, or sleep.
constexpr double longestStep = 3 * secondsPerTick;
static_assert(longestSessionSeconds == longestStep * LatestSample::maximumHistory);

/// The position of `date` among the points, counted in points from the first; absent if no two
/// neighbours enclose it. After a step back of the clock several may; then the latest.
std::optional<double> placeAmong(const std::vector<HistoryPoint>& history, Date date) {
    for (std::size_t i = history.size() - 1; i > 0; --i) {
        const double before = secondsBetween(history[i - 1].date, date);
        const double after = secondsBetween(date, history[i].date);
        if (before >= 0.0 && after >= 0.0) {
            const double step = before + after;
            return static_cast<double>(i) - (step > 0.0 ? after / step : 0.0);
        }
    }
    return std::nullopt;
}

}  // namespace

TimelineSummary timelineSummary(const std::vector<HistoryPoint>& history) {
    TimelineSummary summary;
    if (history.empty()) {
        return summary;
    }
    summary.cpu.reserve(history.size());
    summary.memory.reserve(history.size());
    double cpuSum = 0.0;
    for (const HistoryPoint& point : history) {
        summary.cpu.push_back(point.cpu);
        summary.memory.push_back(point.memory);
        summary.cpuPeak = std::max(summary.cpuPeak, point.cpu);
        summary.memoryPeak = std::max(summary.memoryPeak, point.memory);
        cpuSum += point.cpu;
    }
    summary.cpuNow = history.back().cpu;
    summary.memoryNow = history.back().memory;
    summary.cpuAverage = cpuSum / static_cast<double>(history.size());
    return summary;
}

int sessionSeconds(const std::vector<HistoryPoint>& history) {
    if (history.empty()) {
        return 0;
    }
    double passed = secondsPerTick;
    for (std::size_t i = 1; i < history.size(); ++i) {
        const double step = secondsBetween(history[i - 1].date, history[i].date);
        // False for a step that is not a number.
        if (step > 0.0) {
            passed += step > longestStep ? secondsPerTick : step;
        }
    }
    return static_cast<int>(std::lround(passed));
}

std::vector<std::size_t> timelineGaps(const std::vector<HistoryPoint>& history) {
    std::vector<std::size_t> gaps;
    for (std::size_t i = 1; i < history.size(); ++i) {
        if (secondsBetween(history[i - 1].date, history[i].date) > longestStep) {
            gaps.push_back(i);
        }
    }
    return gaps;
}

std::vector<TimelineEvent> timelineEvents(const std::vector<ActivityEvent>& events,
                                          const std::vector<HistoryPoint>& history, Date now) {
    constexpr double shownSeconds = 600.0;
    std::vector<TimelineEvent> placed;
    if (history.size() < 2) {
        return placed;
    }
    const auto steps = static_cast<double>(history.size() - 1);
    for (const ActivityEvent& event : events) {
        const bool isInPeriod = secondsBetween(event.date, now) <= shownSeconds &&
                                secondsBetween(event.date, history.back().date) >= 0.0;
        if (isInPeriod) {
            if (const auto place = placeAmong(history, event.date)) {
                placed.push_back({&event, *place / steps});
            }
        }
    }
    return placed;
}

}  // namespace tallowcrest

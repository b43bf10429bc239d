#include "presentation/timeline.h"

#include <algorithm>
#include <cmath>

namespace tallowcrest {

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
    constexpr double secondsPerPoint = 4.0;
    constexpr double most = 1e9;
    if (history.empty()) {
        return 0;
    }
    double passed = secondsPerPoint;
    for (std::size_t i = 1; i < history.size(); ++i) {
        const double step = secondsBetween(history[i - 1].date, history[i].date);
        // A step that is not a number is not above 0 either.
        if (step > 0.0) {
            passed = std::min(passed + step, most);
        }
    }
    return static_cast<int>(std::lround(passed));
}

std::vector<double> eventFractions(const std::vector<ActivityEvent>& events,
                                   const std::vector<HistoryPoint>& history, Date now) {
    constexpr double shownSeconds = 600.0;
    std::vector<double> fractions;
    if (history.size() < 2) {
        return fractions;
    }
    const Date first = history.front().date;
    const double period = secondsBetween(first, history.back().date);
    if (!(period > 0.0)) {
        return fractions;
    }
    for (const ActivityEvent& event : events) {
        const double fraction = secondsBetween(first, event.date) / period;
        if (secondsBetween(event.date, now) <= shownSeconds && fraction >= 0.0 && fraction <= 1.0) {
            fractions.push_back(fraction);
        }
    }
    return fractions;
}

}  // namespace tallowcrest

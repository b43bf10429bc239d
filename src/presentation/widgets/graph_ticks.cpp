#include "presentation/widgets/graph_ticks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>

namespace tallowcrest {
namespace {

constexpr double minute = 60;
constexpr double hour = 60 * minute;
constexpr std::array periods{10.0,        30.0,        minute, 2 * minute, 5 * minute,
                             10 * minute, 30 * minute, hour,   6 * hour,   24 * hour};

std::vector<std::size_t> firstOfEach(double period, const std::vector<double>& seconds) {
    std::vector<std::size_t> points;
    double before = seconds.empty() ? 0 : std::floor(seconds.front() / period);
    for (std::size_t i = 1; i < seconds.size(); ++i) {
        const double now = std::floor(seconds[i] / period);
        if (now != before && std::isfinite(now)) {
            points.push_back(i);
        }
        before = now;
    }
    return points;
}

/// How many of the points are the first of their period on average, wherever the periods begin. The
/// number itself would change with each new point and the length of the periods with it.
double usualCount(double period, const std::vector<double>& seconds) {
    double count = 0;
    for (std::size_t i = 1; i < seconds.size(); ++i) {
        // 1 for a step that is not a number.
        count += std::min(1.0, std::abs(seconds[i] - seconds[i - 1]) / period);
    }
    return count;
}

}  // namespace

GraphTicks graphTicks(const std::vector<double>& seconds, std::size_t most) {
    for (const double period : periods) {
        if (usualCount(period, seconds) <= static_cast<double>(most) + 0.5) {
            return {firstOfEach(period, seconds), period < minute};
        }
    }
    // The points are days apart.
    std::vector<std::size_t> points = firstOfEach(periods.back(), seconds);
    points.erase(points.begin(),
                 points.end() - std::min(std::ssize(points), static_cast<std::ptrdiff_t>(most)));
    return {std::move(points), false};
}

}  // namespace tallowcrest

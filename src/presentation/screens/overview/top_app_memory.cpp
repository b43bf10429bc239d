#include "presentation/screens/overview/top_app_memory.h"

#include <algorithm>

namespace tallowcrest {

std::vector<AppMemoryBar> topAppMemory(const std::vector<AppImpact>& groups, std::size_t limit) {
    std::vector<AppMemoryBar> bars;
    bars.reserve(groups.size());
    for (const AppImpact& group : groups) {
        bars.push_back({group.name, group.totalMemoryMB, 0.0});
    }
    std::stable_sort(bars.begin(), bars.end(),
                     [](const auto& a, const auto& b) { return a.megabytes > b.megabytes; });
    bars.resize(std::min(bars.size(), limit));
    const double largest = bars.empty() ? 0.0 : bars.front().megabytes;
    for (AppMemoryBar& bar : bars) {
        bar.fraction = largest > 0.0 ? bar.megabytes / largest : 0.0;
    }
    return bars;
}

}  // namespace tallowcrest

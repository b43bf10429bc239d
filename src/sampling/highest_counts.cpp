#include "sampling/highest_counts.h"

#include <algorithm>
#include <vector>

namespace tallowcrest {

SettingsTable highestCounts(const SettingsTable& counts, std::size_t kept) {
    std::vector<SettingsTable::const_iterator> order;
    order.reserve(counts.size());
    for (auto entry = counts.begin(); entry != counts.end(); ++entry) {
        order.push_back(entry);
    }
    std::stable_sort(order.begin(), order.end(), [](const auto& left, const auto& right) {
        return left->second > right->second;
    });
    order.resize(std::min(order.size(), kept));
    SettingsTable result;
    for (const auto& entry : order) {
        result.insert(*entry);
    }
    return result;
}

}  // namespace tallowcrest

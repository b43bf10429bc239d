#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace tallowcrest {

// The impact orders compare by one figure unless two items are close together, and then by another.
// Such a relation can have cycles, and NaN breaks any ordering; the standard sorts have undefined
// behaviour for both. The merge sort below requires nothing of the relation: the result is always a
// permutation of the items, takes O(n log n) comparisons, and is the same on every platform. Pure;
// any thread.

/// Sorts `items` by `before(a, b)`, "a must come before b". Where the relation is transitive, items
/// of which neither must come before the other keep their order.
template <class T, class Before>
void stableOrder(std::vector<T>& items, Before before) {
    std::vector<T> merged(items.size());
    for (std::size_t width = 1; width < items.size(); width *= 2) {
        for (std::size_t start = 0; start < items.size(); start += 2 * width) {
            std::size_t left = start;
            const std::size_t leftEnd = std::min(start + width, items.size());
            std::size_t right = leftEnd;
            const std::size_t rightEnd = std::min(leftEnd + width, items.size());
            std::size_t out = start;
            while (left < leftEnd && right < rightEnd) {
                merged[out++] = before(items[right], items[left]) ? items[right++] : items[left++];
            }
            while (left < leftEnd) {
                merged[out++] = items[left++];
            }
            while (right < rightEnd) {
                merged[out++] = items[right++];
            }
        }
        items.swap(merged);
    }
}

/// The item that `stableOrder` would put first, in O(n) comparisons: it compares the first items of
/// the merged runs in the same pairs. `items` must not be empty.
template <class T, class Before>
T stableFirst(std::vector<T> items, Before before) {
    while (items.size() > 1) {
        std::size_t winners = 0;
        for (std::size_t left = 0; left < items.size(); left += 2) {
            const std::size_t right = left + 1;
            const bool rightWins = right < items.size() && before(items[right], items[left]);
            items[winners++] = items[rightWins ? right : left];
        }
        items.resize(winners);
    }
    return items.front();
}

}  // namespace tallowcrest

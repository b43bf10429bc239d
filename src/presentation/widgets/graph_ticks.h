#pragma once

#include <cstddef>
#include <vector>

namespace tallowcrest {

/// The points of a graph that have their time below them.
struct GraphTicks {
    std::vector<std::size_t> points;
    /// Whether the times need seconds to tell the points apart.
    bool inSeconds = false;

    bool operator==(const GraphTicks&) const = default;
};

/// About `most` of the points taken at `seconds`, oldest first: each is the first one of its ten
/// seconds, its minute, its five minutes, and so on. So a tick keeps its point while newer points
/// arrive. `seconds` count from the start of a minute; one that is not finite has no tick, and
/// neither has the first point, whose predecessor is unknown.
GraphTicks graphTicks(const std::vector<double>& seconds, std::size_t most);

}  // namespace tallowcrest

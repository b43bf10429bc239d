#pragma once

#include <array>
#include <cstddef>

#include "core/jobs/queues.h"

namespace tallowcrest {

inline constexpr auto allLanes = [] {
    std::array<Lane, laneCount> lanes{};
    for (std::size_t i = 0; i < lanes.size(); ++i) {
        lanes[i] = static_cast<Lane>(i);
    }
    return lanes;
}();

}  // namespace tallowcrest

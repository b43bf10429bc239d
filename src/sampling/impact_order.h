#pragma once

#include <cmath>

namespace tallowcrest {

// The relations of the impact orders, for `stableOrder` and `stableFirst`: higher CPU first, and
// where it is close, higher memory first. Pure; any thread.

/// For processes, with `cpu` and `rssMB`.
struct ProcessBefore {
    template <class Process>
    bool operator()(const Process& a, const Process& b) const {
        constexpr double cpuBand = 1.0;
        return std::abs(a.cpu - b.cpu) > cpuBand ? a.cpu > b.cpu : a.rssMB > b.rssMB;
    }
};

/// For application groups, with `totalCPU` and `totalMemoryMB`.
struct GroupBefore {
    template <class Group>
    bool operator()(const Group& a, const Group& b) const {
        constexpr double cpuBand = 2.0;
        return std::abs(a.totalCPU - b.totalCPU) > cpuBand ? a.totalCPU > b.totalCPU
                                                           : a.totalMemoryMB > b.totalMemoryMB;
    }
};

}  // namespace tallowcrest

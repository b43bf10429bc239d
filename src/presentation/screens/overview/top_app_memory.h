#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "core/local_records.h"

namespace tallowcrest {

/// One bar of "Top App Memory".
struct AppMemoryBar {
    std::string name;
    double megabytes = 0.0;
    double fraction = 0.0;  ///< of the largest group, 0 to 1

    bool operator==(const AppMemoryBar&) const = default;
};

/// The largest groups by resident memory, largest first, at most `limit`. Any thread.
std::vector<AppMemoryBar> topAppMemory(const std::vector<AppImpact>& groups, std::size_t limit);

}  // namespace tallowcrest

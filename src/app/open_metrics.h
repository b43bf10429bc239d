#pragma once

#include <string>
#include <vector>

#include "core/local_records.h"

namespace tallowcrest {

/// One sample as OpenMetrics text that parsers of the Prometheus text format also read: gauges
/// alone, base units, one family after the other, "# EOF" at the end. Memory and disk that could
/// not be read are left out. Label values are printable, at most 80 characters long, and hold no
/// figures that change from sample to sample.
std::string openMetrics(const SystemSnapshot& snapshot,
                        const std::vector<Recommendation>& recommendations,
                        double warningThreshold);

}  // namespace tallowcrest

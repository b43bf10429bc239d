#pragma once

#include <cstdint>
#include <vector>

#include "core/local_records.h"
#include "tests/support/each_of.h"

namespace tallowcrest {

inline std::vector<std::int64_t> pids(const std::vector<ProcessSample>& rows) {
    return eachOf(rows, &ProcessSample::pid);
}

}  // namespace tallowcrest

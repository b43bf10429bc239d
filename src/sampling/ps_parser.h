#pragma once

#include <string_view>
#include <vector>

#include "core/local_records.h"

namespace tallowcrest {

/// The rows of `ps -axo pid=,pcpu=,pmem=,rss=,comm=`, in order. A row with fewer than five columns
/// or with a figure that is not a number is skipped. Any thread.
std::vector<ProcessSample> parseProcessRows(std::string_view text);

}  // namespace tallowcrest

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "core/local_records.h"

namespace tallowcrest {

/// Counts by the text before the colon.
using PageCounts = std::map<std::string, std::int64_t, std::less<>>;

/// The page size in bytes from the header line of `vm_stat`; 4096 when it is missing.
std::int64_t parsePageSize(std::string_view vmStatText);

/// The lines of `vm_stat` that contain a number. No count is negative. Any thread.
PageCounts parsePageCounts(std::string_view vmStatText);

/// The memory figures from the output of `sysctl -n hw.memsize`, the physical memory in bytes, and
/// of `vm_stat`. A missing figure counts as 0. Any thread.
MemorySnapshot memorySnapshot(std::string_view memsizeText, std::string_view vmStatText);

}  // namespace tallowcrest

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "core/local_records.h"

namespace tallowcrest {

/// Counts by the words before the colon, as they stand.
using PageCounts = std::map<std::string, std::int64_t, std::less<>>;

/// Bytes in a page as the header line of `vm_stat` tells; 4096 when it does not tell.
std::int64_t parsePageSize(std::string_view vmStatText);

/// The lines of `vm_stat` that hold a number. No count is negative. Any thread.
PageCounts parsePageCounts(std::string_view vmStatText);

/// The memory figures from the physical memory in bytes, as `sysctl -n hw.memsize` writes it, and
/// the page counts. What a text does not tell counts as 0. Any thread.
MemorySnapshot memorySnapshot(std::string_view memsizeText, std::string_view vmStatText);

}  // namespace tallowcrest

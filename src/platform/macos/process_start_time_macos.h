#pragma once

#include <cstdint>
#include <unordered_map>

namespace tallowcrest {

/// The start time of the process in microseconds since 1970; 0 when there is no such process. Any
/// thread.
std::uint64_t processStartTime(std::int64_t pid);

/// The start times of all processes by pid. Empty when they cannot be read. Any thread.
std::unordered_map<std::int64_t, std::uint64_t> processStartTimes();

}  // namespace tallowcrest

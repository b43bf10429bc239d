#pragma once

#include <cstdint>
#include <unordered_map>

namespace tallowcrest {

/// When the process with that number began, in microseconds since 1970; 0 when there is no such
/// process. Any thread.
std::uint64_t processStartTime(std::int64_t pid);

/// The same for every process, by its number. Empty when the system does not tell. Any thread.
std::unordered_map<std::int64_t, std::uint64_t> processStartTimes();

}  // namespace tallowcrest

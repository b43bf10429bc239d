#pragma once

#include <cstdint>

namespace tallowcrest {

/// When the process with that number began, in microseconds since 1970; 0 when there is no such
/// process. Any thread.
std::uint64_t processStartTime(std::int64_t pid);

}  // namespace tallowcrest

#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tallowcrest {

/// The device that a path is on, links followed; absent when it cannot be read. Blocks as long as
/// the file system hangs. Any thread.
std::optional<std::uint64_t> deviceOf(const std::string& path);

}  // namespace tallowcrest

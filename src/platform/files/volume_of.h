#pragma once

#include <optional>
#include <string>

#include "disk/volume.h"

namespace tallowcrest {

/// What a path is stored on, links followed; absent when it cannot be read. Blocks as long as the
/// file system hangs. Any thread.
std::optional<Volume> volumeOf(const std::string& path);

}  // namespace tallowcrest

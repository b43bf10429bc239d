#pragma once

#include <filesystem>
#include <string>

namespace tallowcrest {

/// The first 64 KiB of a file. Empty when it cannot be read and when it is no regular file, as
/// opening or reading anything else might block. Any thread.
std::string readRegularFile(const std::filesystem::path& path);

}  // namespace tallowcrest

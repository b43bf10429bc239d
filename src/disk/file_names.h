#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// What a name on disk stands for at this moment. Each call can block as long as a file system
/// hangs, so not for the main thread. Several at once.
namespace tallowcrest {

/// Whether there is a folder, or a link to one, that can be seen.
bool folderExists(const std::string& path);

/// Whether the name is taken, be it by a broken link.
bool nameExists(const std::string& path);

/// The path without links, "." and "..". What does not exist is taken as it is written. Empty when
/// it cannot be resolved, for example in a loop of links.
std::string resolvedPath(const std::string& path);

/// The beginning of a name, at most `longest` bytes, and no character cut in two where it is UTF-8.
/// Pure.
std::string_view cutName(std::string_view name, std::size_t longest);

}  // namespace tallowcrest

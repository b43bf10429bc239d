#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// A file that another program reads at any time and that is replaced as a whole. Several processes
/// may replace one file; the latest one wins. Any thread, one at a time for one file.
namespace tallowcrest {

/// Why `replaceFile` cannot work for this path, in the system's words; empty when it can be tried:
/// files can be made in the folder, and what bears the name is a regular file or nothing. A link is
/// refused, because renaming would replace the link.
std::string whyNotReplaceable(const std::filesystem::path& path);

/// Writes a file beside `path`, readable by everybody, and gives it that name. A reader sees the
/// old content or the new one. Not flushed to disk: the next write is near. Empty when it is
/// written, else why not, in the system's words; the old file then stays.
std::string replaceFile(const std::filesystem::path& path, std::string_view text);

}  // namespace tallowcrest

#pragma once

#include <fcntl.h>
#include <linux/fs.h>
#include <stdio.h>

#include <filesystem>

namespace tallowcrest {

/// Lets two existing files or folders change places in one step; false when they stay.
inline bool swapNames(const std::filesystem::path& one, const std::filesystem::path& other) {
    return ::renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
}

/// Renames a file or folder unless the new name is taken; false when it stays.
inline bool renameToFreeName(const std::filesystem::path& from, const std::filesystem::path& to) {
    return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0;
}

}  // namespace tallowcrest

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

}  // namespace tallowcrest

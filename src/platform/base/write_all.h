#pragma once

#include <string_view>

namespace tallowcrest {

/// Writes the whole text to an open file. Returns 0 or the error number. Any thread.
int writeAll(int file, std::string_view text);

/// Has what was written to an open file reach the disk, where its file system can; some report only
/// then that the disk is full. Returns 0 or the error number. Any thread.
int syncFile(int file);

}  // namespace tallowcrest

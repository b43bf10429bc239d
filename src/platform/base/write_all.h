#pragma once

#include <string_view>

namespace tallowcrest {

/// Writes the whole text to an open file. Returns 0 or the error number. Any thread.
int writeAll(int file, std::string_view text);

}  // namespace tallowcrest

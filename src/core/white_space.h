#pragma once

#include <string_view>

namespace tallowcrest {

/// `text` without the white space and newlines at its two ends: those of ASCII and of Unicode (no-
/// break, fixed-width and ideographic blanks, next line, line and paragraph separators). Zero-width
/// characters are no white space. Views into `text`, which need not be valid UTF-8. Any thread.
std::string_view trimmingWhiteSpace(std::string_view text);

}  // namespace tallowcrest

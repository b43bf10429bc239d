#pragma once

#include <string>
#include <string_view>

namespace tallowcrest {

/// `text` with each character that could end a line, steer a terminal or turn the direction of what
/// stands behind it replaced by `replacement`: the control characters of both ranges (tab and line
/// feed among them), the line and paragraph separators, and the marks of writing direction. What is
/// no UTF-8 becomes U+FFFD. Any other text comes back unchanged. Any thread.
///
/// For every place where a name that some program chose stands beside words of our own: a process
/// may be called anything, a whole forged line included.
std::string replacingControlCharacters(std::string_view text, std::string_view replacement);

}  // namespace tallowcrest

#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

namespace tallowcrest {

/// A text that is fit for a terminal, and how many characters it has.
struct PrintableText {
    std::string text;
    std::size_t characters = 0;
};

/// At most `limit` characters of `text`. Each control character becomes "?" and each part that is
/// no UTF-8 the replacement character, so that no name can steer the terminal.
PrintableText printableText(std::string_view text,
                            std::size_t limit = std::numeric_limits<std::size_t>::max());

/// Writes through. When that fails, says so on standard error and answers false. Main thread.
[[nodiscard]] bool writeToStandardOutput(std::string_view text);

/// One line under the program's name. Where nobody can read it, it is lost without a word.
void complain(std::string_view message);

}  // namespace tallowcrest

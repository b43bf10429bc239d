#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

namespace tallowcrest {

/// A text that is safe to print on a terminal, and its number of characters.
struct PrintableText {
    std::string text;
    std::size_t characters = 0;
};

/// At most `limit` characters of `text`. Each control character becomes "?" and invalid UTF-8 the
/// replacement character, so that no name can control the terminal.
PrintableText printableText(std::string_view text,
                            std::size_t limit = std::numeric_limits<std::size_t>::max());

/// Writes and flushes. On failure prints the reason on standard error and returns false. Main
/// thread.
[[nodiscard]] bool writeToStandardOutput(std::string_view text);

/// Prints one line on standard error, prefixed with the program's name. Failures are ignored.
void complain(std::string_view message);

}  // namespace tallowcrest

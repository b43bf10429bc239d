#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

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

/// A column of exactly `width` such characters: what is shorter has blanks behind it.
std::string printableColumn(std::string_view text, std::size_t width);

/// Writes and flushes. On failure prints the reason on standard error and returns false. Main
/// thread.
[[nodiscard]] bool writeToStandardOutput(std::string_view text);

/// What is said when Qt ends the program. While the program starts, the window cannot be opened,
/// and a hint says what works without one. Pure; any thread.
std::vector<std::string> fatalErrorLines(std::string_view reason, bool isStarting);

/// Prints one line on standard error, prefixed with the program's name. Failures are ignored.
void complain(std::string_view message);

}  // namespace tallowcrest

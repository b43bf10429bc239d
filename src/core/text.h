#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Text in UTF-8. Any thread.
namespace tallowcrest {

/// Strict: overlong forms, surrogates, values above U+10FFFF and a sequence that the end cuts short
/// are invalid. The empty text and U+0000 are valid.
bool isValidUTF8(std::string_view bytes);

/// `bytes` with one U+FFFD in place of each maximal truncated sequence and of each other invalid
/// byte. Valid text is returned unchanged; the result is always valid.
std::string replacingInvalidUTF8(std::string_view bytes);

/// `text` with `replacement` in place of each character that could end a line, control a terminal
/// or change the direction of the text after it: the C0 and C1 control characters (tab and line
/// feed included), the line and paragraph separators and the bidirectional controls. Invalid UTF-8
/// becomes U+FFFD. Other text is returned unchanged.
///
/// Call it wherever a name that another program chose is shown or written: a process can have any
/// name, even one that looks like a whole line of our own.
std::string replacingControlCharacters(std::string_view text, std::string_view replacement);

/// `text` with the letters A to Z in lower case, and other bytes unchanged.
std::string loweredASCII(std::string_view text);

/// `text` without the ASCII and Unicode white space at its two ends, line ends and no-break spaces
/// included. Zero-width characters are not white space. A view into `text`, which need not be valid
/// UTF-8.
std::string_view trimmingWhiteSpace(std::string_view text);

/// The first `count` characters (code points) of `text`, or all of it when it has fewer. A view
/// into `text`, which is valid UTF-8.
std::string_view firstCharacters(std::string_view text, std::size_t count);

/// Removes the first character (code point) from the front of `text`, which is valid UTF-8 and not
/// empty, and returns it.
char32_t takeCharacter(std::string_view& text);

/// Removes the next line that is not empty from the front of `text` and returns it without its line
/// feed. Absent when there is none left.
std::optional<std::string_view> takeLine(std::string_view& text);

}  // namespace tallowcrest

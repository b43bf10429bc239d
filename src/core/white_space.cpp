#include "core/white_space.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tallowcrest {

namespace {

/// Complete UTF-8 sequences, none of which is the tail of another, so one can be matched from
/// either end.
constexpr std::array<std::string_view, 25> whiteSpaceCharacters{
    "\t",           "\n",           "\v",           "\f",           "\r",           " ",
    "\xC2\x85",     "\xC2\xA0",     "\xE1\x9A\x80", "\xE2\x80\x80", "\xE2\x80\x81", "\xE2\x80\x82",
    "\xE2\x80\x83", "\xE2\x80\x84", "\xE2\x80\x85", "\xE2\x80\x86", "\xE2\x80\x87", "\xE2\x80\x88",
    "\xE2\x80\x89", "\xE2\x80\x8A", "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\xAF", "\xE2\x81\x9F",
    "\xE3\x80\x80"};

std::size_t leadingWhiteSpaceLength(std::string_view text) {
    const auto* const found =
        std::find_if(whiteSpaceCharacters.begin(), whiteSpaceCharacters.end(),
                     [text](std::string_view character) { return text.starts_with(character); });
    return found == whiteSpaceCharacters.end() ? 0 : found->size();
}

std::size_t trailingWhiteSpaceLength(std::string_view text) {
    const auto* const found =
        std::find_if(whiteSpaceCharacters.begin(), whiteSpaceCharacters.end(),
                     [text](std::string_view character) { return text.ends_with(character); });
    return found == whiteSpaceCharacters.end() ? 0 : found->size();
}

}  // namespace

std::string_view trimmingWhiteSpace(std::string_view text) {
    while (const std::size_t length = leadingWhiteSpaceLength(text)) {
        text.remove_prefix(length);
    }
    while (const std::size_t length = trailingWhiteSpaceLength(text)) {
        text.remove_suffix(length);
    }
    return text;
}

}  // namespace tallowcrest

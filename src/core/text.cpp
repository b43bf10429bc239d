#include "core/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tallowcrest {
namespace {

// Validity ---------------------------------------------------------------------------------------

constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

/// The bytes at one position of a text.
struct Sequence {
    std::size_t length = 0;  ///< in bytes, at least 1
    bool valid = false;
};

std::size_t asciiPrefixLength(std::string_view bytes) {
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::size_t position = 0;
    while (bytes.size() - position >= sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + position, sizeof(word));
        if ((word & highBits) != 0) {
            break;
        }
        position += sizeof(word);
    }
    while (position < bytes.size() && static_cast<unsigned char>(bytes[position]) < 0x80) {
        ++position;
    }
    return position;
}

/// `bytes` begins with a byte that is not ASCII.
Sequence sequenceAt(std::string_view bytes) {
    const auto byteAt = [bytes](std::size_t index) {
        return static_cast<unsigned char>(bytes[index]);
    };
    const unsigned char lead = byteAt(0);
    // The range of the second byte depends on the first, which rules out overlong forms, surrogates
    // and values above U+10FFFF. All later bytes have the same range.
    std::size_t length = 0;
    unsigned char secondLow = 0x80;
    unsigned char secondHigh = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        secondLow = lead == 0xE0 ? 0xA0 : 0x80;
        secondHigh = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        secondLow = lead == 0xF0 ? 0x90 : 0x80;
        secondHigh = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return {1, false};
    }
    for (std::size_t index = 1; index < length; ++index) {
        const unsigned char low = index == 1 ? secondLow : 0x80;
        const unsigned char high = index == 1 ? secondHigh : 0xBF;
        if (index == bytes.size() || byteAt(index) < low || byteAt(index) > high) {
            return {index, false};
        }
    }
    return {length, true};
}

std::size_t validPrefixLength(std::string_view bytes) {
    std::size_t position = 0;
    while (true) {
        position += asciiPrefixLength(bytes.substr(position));
        if (position == bytes.size()) {
            return position;
        }
        const Sequence sequence = sequenceAt(bytes.substr(position));
        if (!sequence.valid) {
            return position;
        }
        position += sequence.length;
    }
}

// Control characters -----------------------------------------------------------------------------

/// The length of a valid sequence, from its first byte.
std::size_t sequenceLength(unsigned char lead) {
    return lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

/// The code point of a valid sequence.
char32_t codePoint(std::string_view sequence) {
    const auto lead = static_cast<unsigned char>(sequence[0]);
    if (sequence.size() == 1) {
        return lead;
    }
    char32_t value = lead & (0xFFU >> (sequence.size() + 1));
    for (const char c : sequence.substr(1)) {
        value = (value << 6U) | (static_cast<unsigned char>(c) & 0x3FU);
    }
    return value;
}

bool isControl(char32_t c) {
    const bool isControlCharacter = c < 0x20 || (c >= 0x7F && c < 0xA0);
    const bool separatesLines = c == 0x2028 || c == 0x2029;
    const bool controlsDirection = c == 0x061C || c == 0x200E || c == 0x200F ||
                                   (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
    return isControlCharacter || separatesLines || controlsDirection;
}

// White space ------------------------------------------------------------------------------------

/// Complete UTF-8 sequences. None is the end of another, so they can be matched from either end.
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

bool isValidUTF8(std::string_view bytes) {
    return validPrefixLength(bytes) == bytes.size();
}

std::string replacingInvalidUTF8(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    while (true) {
        const std::size_t valid = validPrefixLength(bytes);
        text.append(bytes.substr(0, valid));
        bytes.remove_prefix(valid);
        if (bytes.empty()) {
            return text;
        }
        text.append(replacementCharacter);
        bytes.remove_prefix(sequenceAt(bytes).length);
    }
}

std::string replacingControlCharacters(std::string_view text, std::string_view replacement) {
    const std::string valid = replacingInvalidUTF8(text);
    std::string_view rest = valid;
    std::string result;
    result.reserve(valid.size());
    while (!rest.empty()) {
        const std::string_view before = rest;
        const bool isReplaced = isControl(takeCharacter(rest));
        result.append(isReplaced ? replacement : before.substr(0, before.size() - rest.size()));
    }
    return result;
}

std::string loweredASCII(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return result;
}

std::string_view trimmingWhiteSpace(std::string_view text) {
    while (const std::size_t length = leadingWhiteSpaceLength(text)) {
        text.remove_prefix(length);
    }
    while (const std::size_t length = trailingWhiteSpaceLength(text)) {
        text.remove_suffix(length);
    }
    return text;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
    std::size_t length = 0;
    for (; length < text.size() && count > 0; --count) {
        length += sequenceLength(static_cast<unsigned char>(text[length]));
    }
    return text.substr(0, length);
}

char32_t takeCharacter(std::string_view& text) {
    const std::size_t length = sequenceLength(static_cast<unsigned char>(text[0]));
    const char32_t character = codePoint(text.substr(0, length));
    text.remove_prefix(length);
    return character;
}

std::optional<std::string_view> takeLine(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of('\n'), text.size()));
    if (text.empty()) {
        return std::nullopt;
    }
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(line.size());
    return line;
}

}  // namespace tallowcrest

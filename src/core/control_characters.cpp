#include "core/control_characters.h"

#include <cstddef>

#include "core/utf8.h"

namespace tallowcrest {
namespace {

/// The length of the valid UTF-8 sequence that `lead` begins.
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
    const bool turnsDirection = c == 0x061C || c == 0x200E || c == 0x200F ||
                                (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
    return isControlCharacter || separatesLines || turnsDirection;
}

}  // namespace

std::string replacingControlCharacters(std::string_view text, std::string_view replacement) {
    const std::string valid = replacingInvalidUTF8(text);
    std::string_view rest = valid;
    std::string result;
    result.reserve(valid.size());
    while (!rest.empty()) {
        const std::size_t length = sequenceLength(static_cast<unsigned char>(rest[0]));
        const std::string_view sequence = rest.substr(0, length);
        result.append(isControl(codePoint(sequence)) ? replacement : sequence);
        rest.remove_prefix(length);
    }
    return result;
}

}  // namespace tallowcrest

#include "core/utf8.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tallowcrest {

namespace {

constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

/// What stands at one place of the text.
struct Sequence {
    std::size_t length = 0;  ///< bytes that belong together, at least 1
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
    // Only the second byte's range depends on the first; it is what rules out overlong forms,
    // surrogates and values beyond the last code point.
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

}  // namespace tallowcrest

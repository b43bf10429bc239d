#include "advisor/openai_key.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "advisor/advisor_ports.h"
#include "core/text.h"

namespace tallowcrest {
namespace {

constexpr std::size_t shortestSecret = 8;

constexpr bool isControl(char c) {
    return (c >= 0 && c < ' ') || c == '\x7F';
}

/// Whether `key`, which is valid UTF-8, has one of U+0080 to U+009F.
bool hasLaterControl(std::string_view key) {
    for (std::size_t at = key.find('\xC2'); at != std::string_view::npos;
         at = key.find('\xC2', at + 1)) {
        if (static_cast<unsigned char>(key[at + 1]) < 0xA0) {
            return true;
        }
    }
    return false;
}

std::size_t countOfBackslashes(std::string_view text) {
    return std::min(text.find_first_not_of('\\'), text.size());
}

/// How many bytes at the beginning of `text` are at least one backslash, "u" and the four digits of
/// `unit`; 0 when it begins otherwise.
std::size_t lengthOfCode(std::string_view text, char32_t unit) {
    constexpr std::size_t digits = 4;
    constexpr int base = 16;
    const std::size_t backslashes = countOfBackslashes(text);
    const std::string_view code = text.substr(backslashes, 1 + digits);
    if (backslashes == 0 || code.size() != 1 + digits || code.front() != 'u') {
        return 0;
    }
    std::uint16_t value = 0;
    const char* const end = code.data() + code.size();
    const bool isNumber = std::from_chars(code.data() + 1, end, value, base).ptr == end;
    return isNumber && value == unit ? backslashes + code.size() : 0;
}

/// The same for a character, which has two codes above U+FFFF.
std::size_t lengthOfCodes(std::string_view text, char32_t character) {
    if (character <= 0xFFFFU) {
        return lengthOfCode(text, character);
    }
    const std::size_t first = lengthOfCode(text, 0xD7C0U + (character >> 10U));
    const std::size_t second = lengthOfCode(text.substr(first), 0xDC00U + (character & 0x3FFU));
    return first == 0 || second == 0 ? 0 : first + second;
}

/// How many bytes at the beginning of `text` are the first character of `key`, perhaps as JSON
/// escapes it, and that perhaps more than once; 0 when it begins otherwise.
std::size_t lengthOfFirstCharacter(std::string_view text, std::string_view key) {
    const std::size_t length = firstCharacters(key, 1).size();
    // A key can contain what looks like a code.
    constexpr std::size_t codeLength = 6;
    if (text.starts_with(key.substr(0, codeLength))) {
        return length;
    }
    const std::string_view character = key.substr(0, length);
    if (const std::size_t codes = lengthOfCodes(text, takeCharacter(key)); codes > 0) {
        return codes;
    }
    // Further backslashes are skipped with the character after them.
    const std::size_t skipped = character == "\\" ? 0 : countOfBackslashes(text);
    return text.substr(skipped).starts_with(character) ? skipped + length : 0;
}

/// How many bytes at the beginning of `text` are the key; 0 when it begins otherwise.
std::size_t lengthOfKey(std::string_view text, std::string_view key) {
    std::size_t length = 0;
    while (!key.empty()) {
        const std::size_t next = lengthOfFirstCharacter(text.substr(length), key);
        if (next == 0) {
            return 0;
        }
        length += next;
        takeCharacter(key);
    }
    return length;
}

}  // namespace

bool canStandInHeader(std::string_view key) {
    return !key.empty() && key.size() <= maximumKeyLength && isValidUTF8(key) &&
           std::ranges::none_of(key, isControl) && !hasLaterControl(key);
}

std::optional<SecretText> validatedOpenAIKey(std::string_view text) {
    const std::string_view key = trimmingWhiteSpace(text);
    if (!key.starts_with("sk-") || !canStandInHeader(key)) {
        return std::nullopt;
    }
    return SecretText(key);
}

std::optional<SecretText> readOpenAIKey(SecretStore& secrets) {
    std::optional<SecretText> key = secrets.read();
    if (key && !canStandInHeader(key->view())) {
        key.reset();
    }
    return key;
}

std::string strikingOutKey(std::string_view text, std::string_view key) {
    if (key.size() < shortestSecret) {
        return std::string(text);
    }
    const std::string beginnings{key.front(), '\\'};
    const std::size_t ownBackslashes = countOfBackslashes(key);
    std::string struckOut;
    std::size_t copied = 0;
    for (std::size_t at = text.find_first_of(beginnings); at != std::string_view::npos;
         at = text.find_first_of(beginnings, at)) {
        const std::size_t length = lengthOfKey(text.substr(at), key);
        if (length == 0) {
            // A long row of backslashes is not searched from each of them.
            const std::size_t backslashes = countOfBackslashes(text.substr(at));
            at += backslashes > ownBackslashes ? backslashes - ownBackslashes : 1;
        } else {
            struckOut.append(text.substr(copied, at - copied)).append("\u2022\u2022\u2022");
            at += length;
            copied = at;
        }
    }
    return struckOut.append(text.substr(copied));
}

}  // namespace tallowcrest

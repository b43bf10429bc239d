#include "core/json_reader.h"

#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "core/text.h"

namespace tallowcrest {
namespace {

constexpr bool isSpace(char c) {
    return c <= ' ' && (c == ' ' || c == '\n' || c == '\t' || c == '\r');
}

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Whether it stands for itself within a string.
constexpr bool isPlain(char c) {
    return c != '"' && c != '\\' && static_cast<unsigned char>(c) >= ' ';
}

/// How many characters at the front of `text` are plain, or fewer when the text ends soon or the
/// machine stores the highest byte first. Eight at a time: most of a text is in its strings.
std::size_t plainLength(std::string_view text) {
    constexpr std::uint64_t ones = 0x0101010101010101U;
    constexpr std::uint64_t highBits = ones * 0x80U;
    // The high bit of the lowest byte below `limit`, and perhaps those of others above it.
    const auto bytesBelow = [](std::uint64_t word, std::uint64_t limit) {
        return (word - ones * limit) & ~word & highBits;
    };
    std::size_t length = 0;
    while (text.size() - length >= sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + length, sizeof word);
        const std::uint64_t others = bytesBelow(word, ' ') | bytesBelow(word ^ ones * '"', 1) |
                                     bytesBelow(word ^ ones * '\\', 1);
        if (others != 0) {
            constexpr bool isLowestFirst = std::endian::native == std::endian::little;
            constexpr int bitsPerByte = 8;
            return length + (isLowestFirst
                                 ? static_cast<std::size_t>(std::countr_zero(others) / bitsPerByte)
                                 : 0);
        }
        length += sizeof word;
    }
    return length;
}

void appendUTF8(std::string& text, char32_t character) {
    const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
    const auto continuation = [&](int shift) { append(0x80U | (character >> shift & 0x3FU)); };
    if (character < 0x80U) {
        append(character);
    } else if (character < 0x800U) {
        append(0xC0U | character >> 6);
        continuation(0);
    } else if (character < 0x10000U) {
        append(0xE0U | character >> 12);
        continuation(6);
        continuation(0);
    } else {
        append(0xF0U | character >> 18);
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

}  // namespace

JsonReader::JsonReader(std::string_view text) : rest_(text) {
    if (!isValidUTF8(text)) {
        fail();
    }
}

bool JsonReader::fail() {
    failed_ = true;
    isBeforeFirstItem_ = false;
    rest_ = {};
    return false;
}

/// The first character that is not white space; NUL at the end.
inline char JsonReader::peek() {
    if (rest_.empty() || isSpace(rest_.front())) {
        takeSpaces();
    }
    return rest_.empty() ? '\0' : rest_.front();
}

void JsonReader::takeSpaces() {
    std::size_t count = 0;
    while (count < rest_.size() && isSpace(rest_[count])) {
        ++count;
    }
    rest_.remove_prefix(count);
}

inline bool JsonReader::take(char expected) {
    if (rest_.empty() || rest_.front() != expected) {
        return false;
    }
    rest_.remove_prefix(1);
    return true;
}

bool JsonReader::takeWord(std::string_view expected) {
    if (!rest_.starts_with(expected)) {
        return false;
    }
    rest_.remove_prefix(expected.size());
    return true;
}

bool JsonReader::enter(char bracket) {
    if (peek() != bracket) {
        return false;
    }
    rest_.remove_prefix(1);
    isBeforeFirstItem_ = true;
    return true;
}

bool JsonReader::nextItem(char closingBracket) {
    const bool isFirst = std::exchange(isBeforeFirstItem_, false);
    peek();
    if (take(closingBracket)) {
        return false;
    }
    return isFirst || take(',') || fail();
}

bool JsonReader::enterObject() {
    return enter('{');
}

std::optional<std::string_view> JsonReader::nextMember() {
    if (!nextItem('}')) {
        return std::nullopt;
    }
    peek();
    const std::string_view start = rest_;
    if (!take('"')) {
        fail();
        return std::nullopt;
    }
    std::string_view key = takePlainCharacters();
    if (!take('"')) {
        rest_ = start;
        unescapedKey_.clear();
        takeString(&unescapedKey_);
        key = unescapedKey_;
    }
    if (peek() != ':') {
        fail();
        return std::nullopt;
    }
    rest_.remove_prefix(1);
    return key;
}

bool JsonReader::enterArray() {
    return enter('[');
}

bool JsonReader::nextElement() {
    return nextItem(']');
}

std::optional<std::string> JsonReader::text() {
    if (peek() != '"') {
        skip();
        return std::nullopt;
    }
    std::string value;
    return takeString(&value) ? std::optional(std::move(value)) : std::nullopt;
}

std::optional<bool> JsonReader::boolean() {
    peek();
    if (takeWord("true")) {
        return true;
    }
    if (takeWord("false")) {
        return false;
    }
    skip();
    return std::nullopt;
}

void JsonReader::skip() {
    // Not recursive: a hostile text can be nested deeper than the stack.
    std::vector<bool> isObject;  // of each value that was entered, the innermost last
    do {
        const char first = peek();
        if (first == '{' || first == '[') {
            enter(first);
            isObject.push_back(first == '{');
        } else {
            takeScalar();
        }
        while (!isObject.empty() && !(isObject.back() ? nextMember().has_value() : nextElement())) {
            isObject.pop_back();
        }
    } while (!isObject.empty());
}

bool JsonReader::isComplete() {
    peek();
    return !failed_ && rest_.empty();
}

std::string_view JsonReader::takePlainCharacters() {
    std::size_t length = plainLength(rest_);
    while (length < rest_.size() && isPlain(rest_[length])) {
        ++length;
    }
    const std::string_view taken = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return taken;
}

/// A null `value` only checks the string.
bool JsonReader::takeString(std::string* value) {
    if (!take('"')) {
        return fail();
    }
    while (true) {
        const std::string_view plain = takePlainCharacters();
        if (value != nullptr) {
            value->append(plain);
        }
        if (take('"')) {
            return true;
        }
        if (!take('\\') || !takeEscape(value)) {
            return fail();
        }
    }
}

bool JsonReader::takeEscape(std::string* value) {
    constexpr std::string_view letters = "\"\\/bfnrt";
    constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
    const char letter = rest_.empty() ? '\0' : rest_.front();
    rest_.remove_prefix(rest_.empty() ? 0 : 1);
    if (const std::size_t index = letters.find(letter); index != std::string_view::npos) {
        if (value != nullptr) {
            *value += meanings[index];
        }
        return true;
    }
    std::optional<char32_t> character;
    if (letter == 'u') {
        character = takeHexDigits();
    }
    if (!character || (*character >= 0xDC00U && *character < 0xE000U)) {
        return false;
    }
    if (*character >= 0xD800U && *character < 0xDC00U) {
        const std::optional<char32_t> low = takeWord("\\u") ? takeHexDigits() : std::nullopt;
        if (!low || *low < 0xDC00U || *low >= 0xE000U) {
            return false;
        }
        character = 0x10000U + ((*character - 0xD800U) << 10U) + (*low - 0xDC00U);
    }
    if (value != nullptr) {
        appendUTF8(*value, *character);
    }
    return true;
}

std::optional<char32_t> JsonReader::takeHexDigits() {
    const std::string_view digits = rest_.substr(0, 4);
    std::uint32_t value = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (error != std::errc() || end != rest_.data() + 4) {
        return std::nullopt;
    }
    rest_.remove_prefix(4);
    return char32_t{value};
}

bool JsonReader::takeDigits() {
    std::size_t count = 0;
    while (count < rest_.size() && isDigit(rest_[count])) {
        ++count;
    }
    rest_.remove_prefix(count);
    return count > 0;
}

bool JsonReader::takeNumber() {
    take('-');
    if (!take('0') && !takeDigits()) {
        return false;
    }
    if (take('.') && !takeDigits()) {
        return false;
    }
    if (take('e') || take('E')) {
        if (!take('+')) {
            take('-');
        }
        return takeDigits();
    }
    return true;
}

void JsonReader::takeScalar() {
    const bool isScalar =
        peek() == '"' ? takeString(nullptr)
                      : takeWord("true") || takeWord("false") || takeWord("null") || takeNumber();
    if (!isScalar) {
        fail();
    }
}

}  // namespace tallowcrest

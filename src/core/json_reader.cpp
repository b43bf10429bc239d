#include "core/json_reader.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "core/number_text.h"
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

constexpr std::uint64_t ones = 0x0101010101010101U;
constexpr std::uint64_t highBits = ones * 0x80U;

/// How many characters from `text` on are plain, or fewer when `end` is near or the machine stores
/// the highest byte first. Eight at a time: most of a text is in its strings. Adds the bits of what
/// it looked at to `seen`.
std::size_t plainLength(const char* text, const char* end, std::uint64_t& seen) {
    // The high bit of the lowest byte below `limit`, and perhaps those of others above it.
    const auto bytesBelow = [](std::uint64_t word, std::uint64_t limit) {
        return (word - ones * limit) & ~word & highBits;
    };
    std::size_t length = 0;
    while (static_cast<std::size_t>(end - text) - length >= sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, text + length, sizeof word);
        seen |= word;
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

JsonReader::JsonReader(std::string_view text) : at_(text.data()), end_(at_ + text.size()) {}

bool JsonReader::fail() {
    failed_ = true;
    isBeforeFirstItem_ = false;
    at_ = end_;
    return false;
}

/// The first character that is not white space; NUL at the end.
inline char JsonReader::peek() {
    while (at_ != end_ && isSpace(*at_)) {
        ++at_;
    }
    return at_ == end_ ? '\0' : *at_;
}

inline bool JsonReader::take(char expected) {
    if (at_ == end_ || *at_ != expected) {
        return false;
    }
    ++at_;
    return true;
}

inline bool JsonReader::takeWord(std::string_view expected) {
    if (!std::string_view(at_, end_).starts_with(expected)) {
        return false;
    }
    at_ += expected.size();
    return true;
}

inline bool JsonReader::enter(char bracket) {
    if (peek() != bracket) {
        return false;
    }
    ++at_;
    isBeforeFirstItem_ = true;
    return true;
}

inline bool JsonReader::nextItem(char closingBracket) {
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
    const char* const start = at_;
    if (!take('"')) {
        fail();
        return std::nullopt;
    }
    std::string_view key = takePlainCharacters();
    if (!take('"')) {
        at_ = start;
        unescapedKey_.clear();
        takeString(&unescapedKey_);
        key = unescapedKey_;
    }
    if (peek() != ':') {
        fail();
        return std::nullopt;
    }
    ++at_;
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

std::optional<std::int64_t> JsonReader::integer() {
    const char first = peek();
    const char* const start = at_;
    skip();
    if (failed_ || (first != '-' && !isDigit(first))) {
        return std::nullopt;
    }
    const std::string_view number(start, at_);
    if (const auto whole = parseDecimalInteger(number)) {
        return whole;
    }
    constexpr double largestExact = 9007199254740992.0;
    const auto value = parseDecimalFloat(number);
    const bool isExact = value && std::trunc(*value) == *value && std::abs(*value) <= largestExact;
    return isExact ? std::optional(static_cast<std::int64_t>(*value)) : std::nullopt;
}

bool JsonReader::null() {
    peek();
    return takeWord("null");
}

void JsonReader::skip() {
    const char first = peek();
    if (first == '{' || first == '[') {
        skipNested();
    } else {
        takeScalar(first);
    }
}

void JsonReader::skipNested() {
    // Not recursive: a hostile text can be nested deeper than the stack. A text, because a short
    // one needs no memory of its own.
    std::string entered;  // the brackets of the values that were entered, the innermost last
    do {
        const char first = peek();
        if (first == '{' || first == '[') {
            enter(first);
            entered += first;
        } else {
            takeScalar(first);
        }
        while (!entered.empty() &&
               !(entered.back() == '{' ? nextMember().has_value() : nextElement())) {
            entered.pop_back();
        }
    } while (!entered.empty());
}

bool JsonReader::isComplete() {
    peek();
    return !failed_ && at_ == end_;
}

/// Fails for text that is not valid: no sequence of UTF-8 contains a character that is not plain,
/// so each stretch can be judged by itself.
inline std::string_view JsonReader::takePlainCharacters() {
    const char* const start = at_;
    std::uint64_t seen = 0;
    at_ += plainLength(start, end_, seen);
    while (at_ != end_ && isPlain(*at_)) {
        seen |= static_cast<unsigned char>(*at_++);
    }
    const std::string_view taken(start, at_);
    if ((seen & highBits) != 0 && !isValidUTF8(taken)) {
        fail();
    }
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
    const char letter = at_ == end_ ? '\0' : *at_++;
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
    constexpr std::ptrdiff_t count = 4;
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(at_, at_ + std::min(count, end_ - at_), value, 16);
    if (error != std::errc() || end != at_ + count) {
        return std::nullopt;
    }
    at_ = end;
    return char32_t{value};
}

bool JsonReader::takeDigits() {
    const char* const start = at_;
    while (at_ != end_ && isDigit(*at_)) {
        ++at_;
    }
    return at_ != start;
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

/// `first` is the first character of the value.
void JsonReader::takeScalar(char first) {
    const bool isScalar =
        first == '"' ? takeString(nullptr)
                     : takeWord("true") || takeWord("false") || takeWord("null") || takeNumber();
    if (!isScalar) {
        fail();
    }
}

}  // namespace tallowcrest

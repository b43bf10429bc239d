#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tallowcrest {

/// Reads a JSON text from front to back, for large texts of which little is needed: a document of
/// the library takes many times as long to build. Accepts strict JSON in valid UTF-8 only, nested
/// to any depth. Any thread.
///
/// When the text turns out not to be JSON, everything that follows is absent or false, and
/// `isComplete` is false: what was read before must then be discarded.
class JsonReader {
public:
    /// `text` must outlive the object.
    explicit JsonReader(std::string_view text);

    /// Whether the next value is an object. Its members are then to be read with `nextMember` until
    /// that is absent. Otherwise nothing has been read.
    bool enterObject();

    /// The key of the next member, valid until the next call. Its value must be read or skipped
    /// before that. Absent behind the last member.
    std::optional<std::string_view> nextMember();

    /// The same for arrays.
    bool enterArray();
    bool nextElement();

    /// Reads the next value. Absent when it is of another type.
    std::optional<std::string> text();
    std::optional<bool> boolean();
    /// Also of a number with a fraction or an exponent ("3.0", "1e2") that is a whole one, as far
    /// as those are exact. Absent for a number that does not fit.
    std::optional<std::int64_t> integer();

    /// Whether the next value is null, which is then read. Otherwise nothing has been read.
    bool null();

    /// Reads the next value, of any type.
    void skip();

    /// Whether the whole text has been read, and was one JSON value.
    bool isComplete();

private:
    bool fail();
    char peek();
    void skipNested();
    bool take(char expected);
    bool takeWord(std::string_view expected);
    bool enter(char bracket);
    bool nextItem(char closingBracket);
    std::string_view takePlainCharacters();
    bool takeString(std::string* value);
    bool takeEscape(std::string* value);
    std::optional<char32_t> takeHexDigits();
    bool takeDigits();
    bool takeNumber();
    void takeScalar(char first);

    const char* at_;
    const char* end_;
    bool failed_ = false;
    /// Whether an object or array was entered, and its first item not asked for yet.
    bool isBeforeFirstItem_ = false;
    std::string unescapedKey_;
};

}  // namespace tallowcrest

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tallowcrest {

/// One bit for each of the letters a to z that occurs in a text.
constexpr std::uint32_t lowerCaseLetters(std::string_view text) {
    std::uint32_t letters = 0;
    for (const char c : text) {
        if (c >= 'a' && c <= 'z') {
            letters |= std::uint32_t{1} << (c - 'a');
        }
    }
    return letters;
}

/// A lower-case ASCII text to search for in names. Refers to the text it was made from.
struct NameNeedle {
    constexpr explicit NameNeedle(std::string_view needle)
        : text(needle), letters(lowerCaseLetters(needle)) {}

    std::string_view text;
    std::uint32_t letters;
};

/// A name in lower case, for searches of ASCII texts. Can be assigned one name after another; it
/// keeps its storage, to avoid an allocation for each name of a table. One thread at a time.
class LoweredName {
public:
    void assign(std::string_view name);

    bool contains(const NameNeedle& needle) const {
        // Most names lack a letter of most needles, which avoids the search.
        return (needle.letters & ~letters_) == 0 && text_.find(needle.text) != std::string::npos;
    }
    bool equals(const NameNeedle& needle) const { return text_ == needle.text; }

private:
    std::string text_;
    std::uint32_t letters_ = 0;
};

}  // namespace tallowcrest

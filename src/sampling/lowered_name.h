#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tallowcrest {

/// One bit for each of the letters a to z that a text holds.
constexpr std::uint32_t lowerCaseLetters(std::string_view text) {
    std::uint32_t letters = 0;
    for (const char c : text) {
        if (c >= 'a' && c <= 'z') {
            letters |= std::uint32_t{1} << (c - 'a');
        }
    }
    return letters;
}

/// A lower-case ASCII text to look for in names. Views into what it was made from.
struct NameNeedle {
    constexpr explicit NameNeedle(std::string_view needle)
        : text(needle), letters(lowerCaseLetters(needle)) {}

    std::string_view text;
    std::uint32_t letters;
};

/// The lower case of one name after another, as far as searches for ASCII texts can tell. Keeps its
/// storage, so that a table of names needs no allocation each. One thread at a time.
class LoweredName {
public:
    void assign(std::string_view name);

    bool contains(const NameNeedle& needle) const {
        // Most names lack some letter of most needles, which spares the search.
        return (needle.letters & ~letters_) == 0 && text_.find(needle.text) != std::string::npos;
    }
    bool equals(const NameNeedle& needle) const { return text_ == needle.text; }

private:
    std::string text_;
    std::uint32_t letters_ = 0;
};

}  // namespace tallowcrest

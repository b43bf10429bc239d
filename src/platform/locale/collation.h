#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/locale/c_locale.h"

namespace tallowcrest {

/// The order of texts in one language, and their search, upper and lower case being equivalent.
/// Cases are folded character by character: "ß" is not "ss", and "ä" not "a" with a diaeresis
/// behind it. Any thread, several at once.
class Collation {
public:
    /// Texts are ordered by their code points where the system has no locale of that name.
    explicit Collation(const std::string& localeName);

    /// As `Locale::compareIgnoringCase`.
    std::weak_ordering compare(std::string_view left, std::string_view right) const;

    /// As `Locale::containsIgnoringCase`.
    bool contains(std::string_view text, std::string_view part) const;

private:
    static constexpr std::size_t asciiEnd = 0x80;
    static constexpr std::uint8_t ignored = 1;
    static constexpr std::uint8_t firstRank = 2;

    wchar_t fold(wchar_t character) const;
    template <class Buffer>
    void fold(std::string_view bytes, Buffer& folded) const;
    void rankPlainCharacters();
    std::optional<std::weak_ordering> orderByRank(std::string_view left,
                                                  std::string_view right) const;

    CLocale locale_;
    bool hasOrder_;  ///< other than that of the code points
    std::array<wchar_t, asciiEnd> foldedASCII_{};
    /// The place of each byte in the order of those texts for which the first difference decides,
    /// or `ignored` where the locale looks at it only when all else is equal; 0 for other bytes.
    /// The C library takes five times as long.
    std::array<std::uint8_t, 256> ranks_{};
};

}  // namespace tallowcrest

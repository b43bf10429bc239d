#include "core/utf8.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using namespace std::string_view_literals;

TEST(UTF8, ValidTextIsValidAndStaysAsItIs) {
    const std::vector<std::string_view> texts{
        ""sv,
        "a"sv,
        "plain text that is longer than one machine word"sv,
        "\0"sv,
        "before\0after"sv,
        "\x7F"sv,
        "\xC2\x80"sv,          // U+0080
        "\xDF\xBF"sv,          // U+07FF
        "\xE0\xA0\x80"sv,      // U+0800
        "\xED\x9F\xBF"sv,      // U+D7FF, the last before the surrogates
        "\xEE\x80\x80"sv,      // U+E000, the first behind them
        "\xEF\xBF\xBD"sv,      // U+FFFD itself
        "\xEF\xBF\xBF"sv,      // U+FFFF
        "\xF0\x90\x80\x80"sv,  // U+10000
        "\xF4\x8F\xBF\xBF"sv,  // U+10FFFF
        "sieben\xC3\xA4 letters, one \xE2\x82\xAC, one \xF0\x9F\x98\x80, and the end"sv,
    };
    for (const std::string_view text : texts) {
        EXPECT_TRUE(isValidUTF8(text)) << testing::PrintToString(std::string(text));
        EXPECT_EQ(replacingInvalidUTF8(text), text);
    }
}

struct Repair {
    std::string_view bytes;
    std::string_view text;
};

TEST(UTF8, InvalidBytesAreRefusedAndReplaced) {
    const std::vector<Repair> repairs{
        {"\x80"sv, "\uFFFD"sv},
        {"\xBF"sv, "\uFFFD"sv},
        {"\xFE"sv, "\uFFFD"sv},
        {"\xFF\xFF"sv, "\uFFFD\uFFFD"sv},
        {"a\x80z"sv, "a\uFFFDz"sv},
        // Cut short by the end: one replacement for what could have become a character.
        {"\xC3"sv, "\uFFFD"sv},
        {"\xE2\x82"sv, "\uFFFD"sv},
        {"\xF0\x9F\x98"sv, "\uFFFD"sv},
        // Cut short by another character, which survives.
        {"\xC3z"sv, "\uFFFDz"sv},
        {"\xE2\x82z"sv, "\uFFFDz"sv},
        {"\xF0\x9F\x98\xE2\x82\xAC"sv, "\uFFFD\u20AC"sv},
        {"\xE2\xE2\x82\xAC"sv, "\uFFFD\u20AC"sv},
        // Overlong forms: no byte of them can begin a character together with its neighbour.
        {"\xC0\x80"sv, "\uFFFD\uFFFD"sv},
        {"\xC1\xBF"sv, "\uFFFD\uFFFD"sv},
        {"\xE0\x80\x80"sv, "\uFFFD\uFFFD\uFFFD"sv},
        {"\xE0\x9F\xBF"sv, "\uFFFD\uFFFD\uFFFD"sv},
        {"\xF0\x80\x80\x80"sv, "\uFFFD\uFFFD\uFFFD\uFFFD"sv},
        {"\xF0\x8F\xBF\xBF"sv, "\uFFFD\uFFFD\uFFFD\uFFFD"sv},
        // Surrogates.
        {"\xED\xA0\x80"sv, "\uFFFD\uFFFD\uFFFD"sv},
        {"\xED\xBF\xBF"sv, "\uFFFD\uFFFD\uFFFD"sv},
        // Above U+10FFFF.
        {"\xF4\x90\x80\x80"sv, "\uFFFD\uFFFD\uFFFD\uFFFD"sv},
        {"\xF5\x80\x80\x80"sv, "\uFFFD\uFFFD\uFFFD\uFFFD"sv},
        {"\xF8\x88\x80\x80\x80"sv, "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"sv},
    };
    for (const Repair& repair : repairs) {
        EXPECT_FALSE(isValidUTF8(repair.bytes)) << testing::PrintToString(repair.bytes);
        EXPECT_EQ(replacingInvalidUTF8(repair.bytes), repair.text)
            << testing::PrintToString(repair.bytes);
    }
}

TEST(UTF8, AnInvalidByteIsFoundAtEveryPlaceOfALongText) {
    const std::string clean(40, 'x');
    for (std::size_t place = 0; place < clean.size(); ++place) {
        std::string text = clean;
        text[place] = '\xFF';
        EXPECT_FALSE(isValidUTF8(text)) << place;
        std::string repaired = clean;
        repaired.replace(place, 1, "\uFFFD");
        EXPECT_EQ(replacingInvalidUTF8(text), repaired) << place;
    }
}

TEST(UTF8, ACharacterIsAcceptedAtEveryPlaceOfALongText) {
    for (std::size_t place = 0; place < 40; ++place) {
        std::string text(40, 'x');
        text.insert(place, "\xF0\x9F\x98\x80");
        EXPECT_TRUE(isValidUTF8(text)) << place;
    }
}

}  // namespace
}  // namespace tallowcrest

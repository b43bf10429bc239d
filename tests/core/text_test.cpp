#include "core/text.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using namespace std::string_view_literals;

TEST(UTF8, AcceptsValidTextAndLeavesItUnchanged) {
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
        "\xEE\x80\x80"sv,      // U+E000, the first after them
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

TEST(UTF8, RejectsAndReplacesInvalidBytes) {
    const std::vector<Repair> repairs{
        {"\x80"sv, "\uFFFD"sv},
        {"\xBF"sv, "\uFFFD"sv},
        {"\xFE"sv, "\uFFFD"sv},
        {"\xFF\xFF"sv, "\uFFFD\uFFFD"sv},
        {"a\x80z"sv, "a\uFFFDz"sv},
        // Truncated by the end: one replacement for each incomplete sequence.
        {"\xC3"sv, "\uFFFD"sv},
        {"\xE2\x82"sv, "\uFFFD"sv},
        {"\xF0\x9F\x98"sv, "\uFFFD"sv},
        // Truncated by another character, which is kept.
        {"\xC3z"sv, "\uFFFDz"sv},
        {"\xE2\x82z"sv, "\uFFFDz"sv},
        {"\xF0\x9F\x98\xE2\x82\xAC"sv, "\uFFFD\u20AC"sv},
        {"\xE2\xE2\x82\xAC"sv, "\uFFFD\u20AC"sv},
        // Overlong forms: none of their bytes starts a valid sequence.
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

TEST(UTF8, FindsAnInvalidByteAtEveryPositionOfALongText) {
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

TEST(UTF8, AcceptsACharacterAtEveryPositionOfALongText) {
    for (std::size_t place = 0; place < 40; ++place) {
        std::string text(40, 'x');
        text.insert(place, "\xF0\x9F\x98\x80");
        EXPECT_TRUE(isValidUTF8(text)) << place;
    }
}

TEST(ReplacingControlCharacters, ReplacesCharactersThatControlATerminalOrEndALine) {
    struct Case {
        std::string text;
        std::string replaced;
    };
    for (const Case& c :
         {Case{"", ""}, Case{"a\nb", "a?b"}, Case{"a\r\nb", "a??b"}, Case{"a\tb", "a?b"},
          Case{"\v\f", "??"}, Case{std::string("a\0b", 3), "a?b"}, Case{"\x1B[31m", "?[31m"},
          Case{"\x1F \x7F~", "? ?~"}, Case{"a\u0080b\u0085c\u009Fd", "a?b?c?d"},
          Case{"\u2028\u2029", "??"}, Case{"\u061C\u200E\u200F", "???"},
          Case{"\u202A\u202B\u202C\u202D\u202E", "?????"}, Case{"\u2066\u2067\u2068\u2069", "????"},
          Case{"a\xFF\nb", "a\uFFFD?b"}, Case{"a\xC3", "a\uFFFD"}}) {
        EXPECT_EQ(replacingControlCharacters(c.text, "?"), c.replaced) << c.text;
    }
}

TEST(ReplacingControlCharacters, LeavesOtherTextAlone) {
    for (const std::string text :
         {"Google Chrome Helper (Renderer)", "größe", "日本", "\U0001F600", "\u00A0", "\u00AD",
          "\u061B\u061D", "\u200D\u2010", "\u2027\u202F", "\u2065\u206A", "~!@#$%^&*()_+", "\uFFFD",
          "\u203E\u0660\u1680"}) {
        EXPECT_EQ(replacingControlCharacters(text, "?"), text);
    }
}

TEST(ReplacingControlCharacters, AcceptsAnyReplacement) {
    EXPECT_EQ(replacingControlCharacters("a\nb", ""), "ab");
    EXPECT_EQ(replacingControlCharacters("a\nb", "\uFFFD"), "a\uFFFDb");
}

TEST(TrimmingWhiteSpace, RemovesEachKindFromBothEndsOnly) {
    const std::vector<std::string_view> kinds{
        "\t",     "\n",     "\v",     "\f",     "\r",     " ",      "\u0085", "\u00A0", "\u1680",
        "\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005", "\u2006", "\u2007", "\u2008",
        "\u2009", "\u200A", "\u2028", "\u2029", "\u202F", "\u205F", "\u3000"};
    for (const std::string_view kind : kinds) {
        const std::string inner = fmt::format("a{}z", kind);
        EXPECT_EQ(trimmingWhiteSpace(fmt::format("{0}{0}{1}{0}", kind, inner)), inner)
            << testing::PrintToString(kind);
        EXPECT_EQ(trimmingWhiteSpace(fmt::format("{0} {0}", kind)), "")
            << testing::PrintToString(kind);
    }
}

TEST(TrimmingWhiteSpace, LeavesEverythingElse) {
    const std::vector<std::string_view> texts{
        ""sv,       "a"sv,
        "\0"sv,                // printed as a blank, but not white space
        "\u200B"sv,            // zero width
        "\uFEFF"sv,            // zero width
        "\u00E0"sv,            // ends in the byte of a no-break space
        "\x85"sv,   "\xA0"sv,  // an incomplete sequence
        "\xC2"sv,   "\u0905"sv,
    };
    for (const std::string_view text : texts) {
        EXPECT_EQ(trimmingWhiteSpace(text), text) << testing::PrintToString(std::string(text));
    }
}

TEST(TrimmingWhiteSpace, RemovesMixedRuns) {
    EXPECT_EQ(trimmingWhiteSpace("\r\n \u3000\tword\u00A0\u2028\r\n"), "word");
}

TEST(TakeCharacter, ReadsOneOfEachLength) {
    std::string_view text("z\u00E4\u20AC\U0001F600\0", 11);
    std::vector<char32_t> taken;
    while (!text.empty()) {
        taken.push_back(takeCharacter(text));
    }
    EXPECT_EQ(taken, (std::vector<char32_t>{U'z', U'\u00E4', U'\u20AC', U'\U0001F600', U'\0'}));
}

TEST(FirstCharacters, CountsCharactersAndSplitsNone) {
    EXPECT_EQ(firstCharacters("abc", 2), "ab");
    EXPECT_EQ(firstCharacters("abc", 3), "abc");
    EXPECT_EQ(firstCharacters("abc", 4), "abc");
    EXPECT_EQ(firstCharacters("abc", 0), "");
    EXPECT_EQ(firstCharacters("", 5), "");
    EXPECT_EQ(firstCharacters("\u00E4\u20AC\U0001F600z", 1), "\u00E4");
    EXPECT_EQ(firstCharacters("\u00E4\u20AC\U0001F600z", 3), "\u00E4\u20AC\U0001F600");
}

TEST(TakeLine, SkipsEmptyLines) {
    std::string_view text = "\n\none\n\n two\r\nlast";
    EXPECT_EQ(takeLine(text), "one");
    EXPECT_EQ(takeLine(text), " two\r");
    EXPECT_EQ(takeLine(text), "last");
    EXPECT_EQ(takeLine(text), std::nullopt);
    EXPECT_EQ(takeLine(text), std::nullopt);
}

}  // namespace
}  // namespace tallowcrest

#include "core/white_space.h"

#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using namespace std::string_view_literals;

TEST(TrimmingWhiteSpace, TakesEachKindFromBothEndsOnly) {
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
        "\0"sv,                // no blank, though it prints as one
        "\u200B"sv,            // zero width
        "\uFEFF"sv,            // zero width as well
        "\u00E0"sv,            // ends in the byte of a no-break space
        "\x85"sv,   "\xA0"sv,  // half a character
        "\xC2"sv,   "\u0905"sv,
    };
    for (const std::string_view text : texts) {
        EXPECT_EQ(trimmingWhiteSpace(text), text) << testing::PrintToString(std::string(text));
    }
}

TEST(TrimmingWhiteSpace, CrossesMixedRuns) {
    EXPECT_EQ(trimmingWhiteSpace("\r\n \u3000\tword\u00A0\u2028\r\n"), "word");
}

}  // namespace
}  // namespace tallowcrest

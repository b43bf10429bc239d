#include "core/control_characters.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

TEST(ReplacingControlCharacters, ReplacesWhatCouldSteerOrEndALine) {
    struct Case {
        std::string text;
        std::string replaced;
    };
    for (const Case& c : std::vector<Case>{
             {"", ""},
             {"a\nb", "a?b"},
             {"a\r\nb", "a??b"},
             {"a\tb", "a?b"},
             {"\v\f", "??"},
             {std::string("a\0b", 3), "a?b"},
             {"\x1B[31m", "?[31m"},
             {"\x1F \x7F~", "? ?~"},
             {"a\u0080b\u0085c\u009Fd", "a?b?c?d"},
             {"\u2028\u2029", "??"},
             {"\u061C\u200E\u200F", "???"},
             {"\u202A\u202B\u202C\u202D\u202E", "?????"},
             {"\u2066\u2067\u2068\u2069", "????"},
             {"a\xFF\nb", "a\uFFFD?b"},
             {"a\xC3", "a\uFFFD"},
         }) {
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

TEST(ReplacingControlCharacters, AnyReplacementWillDo) {
    EXPECT_EQ(replacingControlCharacters("a\nb", ""), "ab");
    EXPECT_EQ(replacingControlCharacters("a\nb", "\uFFFD"), "a\uFFFDb");
}

}  // namespace
}  // namespace tallowcrest

#include "presentation/words/plain_lines.h"

#include <string>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

QString whole(std::string_view text) {
    return plainLines(text, 10'000, 1000);
}

TEST(PlainLines, KeepsLinesAndMakesEachSafe) {
    EXPECT_EQ(whole(""), QString());
    EXPECT_EQ(whole("one"), u"one"_s);
    EXPECT_EQ(whole("one\ntwo\r\n\nfour"), u"one\ntwo\n\nfour"_s);
    EXPECT_EQ(whole("<b>bold</b> &amp;"), u"<b>bold</b> &amp;"_s);
    EXPECT_EQ(whole("\x1b[31mred\x7fx\u202eabc\u200b"), u"\uFFFD[31mred\uFFFDx\uFFFDabc\uFFFD"_s);
    EXPECT_EQ(whole("bad \xff utf"), u"bad \uFFFD utf"_s);
    EXPECT_EQ(whole("one\ttwo\t\n\tthree\n"), u"one\ttwo\t\n\tthree\n"_s);
}

TEST(PlainLines, IsCutWithAnEllipsis) {
    EXPECT_EQ(plainLines("abcdef", 6, 9), u"abcdef"_s);
    EXPECT_EQ(plainLines("abcdef", 5, 9), u"abcde…"_s);
    EXPECT_EQ(plainLines("ab\u00e4f", 3, 9), u"ab…"_s) << "no half character";
    EXPECT_EQ(plainLines("a\nb\nc", 99, 3), u"a\nb\nc"_s);
    EXPECT_EQ(plainLines("a\nb\nc\nd", 99, 3), u"a\nb\nc…"_s);
    EXPECT_EQ(plainLines(std::string(30'000, '\n'), 20'000, 1000).size(), 1000);
    EXPECT_EQ(plainLines("a\nb\n", 4, 9), u"a\nb\n"_s);
}

}  // namespace
}  // namespace tallowcrest

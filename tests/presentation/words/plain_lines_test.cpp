#include "presentation/words/plain_lines.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

TEST(PlainLines, KeepsLinesAndMakesEachSafe) {
    EXPECT_EQ(plainLines(""), QString());
    EXPECT_EQ(plainLines("one"), u"one"_s);
    EXPECT_EQ(plainLines("one\ntwo\r\n\nfour"), u"one\ntwo\n\nfour"_s);
    EXPECT_EQ(plainLines("<b>bold</b> &amp;"), u"<b>bold</b> &amp;"_s);
    EXPECT_EQ(plainLines("\x1b[31mred\x7fx\u202eabc\u200b"),
              u"\uFFFD[31mred\uFFFDx\uFFFDabc\uFFFD"_s);
    EXPECT_EQ(plainLines("bad \xff utf"), u"bad \uFFFD utf"_s);
    EXPECT_EQ(plainLines("one\ttwo\t\n\tthree\n"), u"one\ttwo\t\n\tthree\n"_s);
}

}  // namespace
}  // namespace tallowcrest

#include "presentation/words/advisor_words.h"

#include <gmock/gmock.h>

#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

TEST(AdvisorWords, TheTitleOfAnAnalysisTellsWhoMakesIt) {
    EXPECT_EQ(advisor_words::analysis(true), u"AI Analyze"_s);
    EXPECT_EQ(advisor_words::analysis(false), u"Local Analyze"_s);
}

TEST(LinesOfText, RemainAndHideNothing) {
    const std::pair<const char*, QString> cases[] = {
        {"", u""_s},
        {"one", u"one"_s},
        {"one\ntwo\n\nthree\n", u"one\ntwo\n\nthree\n"_s},
        {"one\r\ntwo", u"one\ntwo"_s},
        {"\tcode\there", u"    code    here"_s},
        {"<b>bold</b> &amp; \"quoted\"", u"<b>bold</b> &amp; \"quoted\""_s},
        {"\x1b[31mred", u"\uFFFD[31mred"_s},
        {"a\rb\bc", u"a\uFFFDb\uFFFDc"_s},
        {"left\u202Eright", u"left\uFFFDright"_s},
        {"zero\u200Bwidth", u"zero\uFFFDwidth"_s},
        {"line\u2028paragraph\u2029", u"line\uFFFDparagraph\uFFFD"_s},
        {"bad \xFF\xFE", u"bad \uFFFD\uFFFD"_s},
        {"Größe 漢字", u"Größe 漢字"_s}};
    for (const auto& [given, shown] : cases) {
        EXPECT_EQ(dashboard_text::lines(given), shown) << given;
    }
    EXPECT_EQ(dashboard_text::lines("one\ttwo\t\r\n\tx\u202e\n", u"\t"),
              u"one\ttwo\t\n\tx\uFFFD\n"_s);
}

TEST(LongText, IsCutWhereDrawingItWouldTakeLong) {
    const std::string whole(20'000, 'w');
    EXPECT_EQ(advisor_words::longText(whole).size(), 20'000);
    const QString cut = advisor_words::longText(whole + "xyz");
    EXPECT_TRUE(cut.endsWith(u"w…\n\n103 more characters were left out."_s))
        << cut.right(60).toStdString();
    EXPECT_FALSE(cut.contains(u'x'));
    // Not within a character.
    std::string wide;
    for (int i = 0; i < 20'001; ++i) {
        wide += "ü";
    }
    EXPECT_FALSE(advisor_words::longText(wide).contains(QChar::ReplacementCharacter));
}

}  // namespace
}  // namespace tallowcrest

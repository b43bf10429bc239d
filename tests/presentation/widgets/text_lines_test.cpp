#include "presentation/widgets/text_lines.h"

#include <QFontMetrics>
#include <gmock/gmock.h>

#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class FittedLinesTest : public testing::Test {
protected:
    /// The lines of `text` in the width of `pattern`.
    QStringList inRoomOf(const QString& pattern, const QString& text, int lines) {
        return fittedLines(text, font, QFontMetrics(font).horizontalAdvance(pattern) + 1, lines);
    }

    const QFont font = CrestFonts::current().caption;
    const QString figures = u"22.4 GB free · Wired 0.1 GB · Compressed 0.0 GB"_s;
};

TEST_F(FittedLinesTest, AListBreaksBetweenItsItems) {
    EXPECT_EQ(inRoomOf(figures, figures, 4), QStringList{figures});
    EXPECT_EQ(inRoomOf(u"22.4 GB free · Wired 0.1 GB · Compr"_s, figures, 4),
              QStringList({u"22.4 GB free · Wired 0.1 GB"_s, u"Compressed 0.0 GB"_s}));
    EXPECT_EQ(inRoomOf(u"Compressed 0.0 GB"_s, figures, 4),
              QStringList({u"22.4 GB free"_s, u"Wired 0.1 GB"_s, u"Compressed 0.0 GB"_s}));
}

TEST_F(FittedLinesTest, AnItemLongerThanALineIsBroken) {
    EXPECT_EQ(inRoomOf(u"Compressed"_s, u"A · Compressed memory · B"_s, 4),
              QStringList({u"A"_s, u"Compressed"_s, u"memory"_s, u"B"_s}));
}

TEST_F(FittedLinesTest, WithTooFewLinesAListIsBrokenAnywhere) {
    const QStringList lines = inRoomOf(u"22.4 GB free · Wired"_s, figures, 2);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0], u"22.4 GB free · Wired"_s);
    EXPECT_TRUE(lines[1].startsWith(u"0.1 GB"_s)) << lines[1].toStdString();
}

TEST_F(FittedLinesTest, ANumberStaysWithTheNextWord) {
    const QString text = u"1.1 GB used of 23.5 GB"_s;
    EXPECT_EQ(inRoomOf(u"1.1 GB used of 23.5"_s, text, 4),
              QStringList({u"1.1 GB used of"_s, u"23.5 GB"_s}));
    EXPECT_EQ(inRoomOf(text, text, 4), QStringList{text});
}

TEST_F(FittedLinesTest, EveryLineFitsAndNoTextIsLost) {
    for (int width = 30; width < 300; width += 7) {
        const QStringList lines = fittedLines(figures, font, width, 40);
        qsizetype from = 0;
        QString between;
        for (const QString& line : lines) {
            const qsizetype start = figures.indexOf(line, from);
            ASSERT_GE(start, from) << width << ": " << line.toStdString();
            between += figures.mid(from, start - from);
            from = start + line.size();
            EXPECT_LE(QFontMetrics(font).horizontalAdvance(line), width) << line.toStdString();
        }
        EXPECT_EQ(from, figures.size()) << width;
        EXPECT_TRUE(between.remove(u' ').remove(QChar(u'·')).isEmpty()) << width;
    }
}

TEST_F(FittedLinesTest, NamesThatLookLikeAListAreElidedLikeOthers) {
    const QString name = u"a · "_s.repeated(5000);
    const QStringList lines = fittedLines(name, font, 200, 3);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines.last().endsWith(u'…'));
    EXPECT_EQ(fittedLines(u" · "_s, font, 200, 3).size(), 1);
    EXPECT_THAT(fittedLines(QString(), font, 200, 3), testing::IsEmpty());
    EXPECT_EQ(fittedLines(u"a · b\nc"_s, font, 200, 3), QStringList({u"a · b"_s, u"c"_s}));
}

}  // namespace
}  // namespace tallowcrest

#include "presentation/widgets/text_lines.h"

#include <QFontMetrics>
#include <gmock/gmock.h>

#include "presentation/widgets/theme.h"

namespace tallowcrest {
namespace {

class FittedLinesTest : public testing::Test {
protected:
    /// What the text would be in the room that `pattern` takes.
    QStringList inRoomOf(const QString& pattern, const QString& text, int lines) {
        return fittedLines(text, font, QFontMetrics(font).horizontalAdvance(pattern) + 1, lines);
    }

    const QFont font = CrestFonts::current().caption;
    const QString figures = QStringLiteral("22.4 GB free · Wired 0.1 GB · Compressed 0.0 GB");
};

TEST_F(FittedLinesTest, AListBreaksBetweenItsItems) {
    EXPECT_EQ(inRoomOf(figures, figures, 4), QStringList{figures});
    EXPECT_EQ(inRoomOf(QStringLiteral("22.4 GB free · Wired 0.1 GB · Compr"), figures, 4),
              QStringList({QStringLiteral("22.4 GB free · Wired 0.1 GB"),
                           QStringLiteral("Compressed 0.0 GB")}));
    EXPECT_EQ(inRoomOf(QStringLiteral("Compressed 0.0 GB"), figures, 4),
              QStringList({QStringLiteral("22.4 GB free"), QStringLiteral("Wired 0.1 GB"),
                           QStringLiteral("Compressed 0.0 GB")}));
}

TEST_F(FittedLinesTest, AnItemTooLongForALineBreaksWithinItself) {
    EXPECT_EQ(
        inRoomOf(QStringLiteral("Compressed"), QStringLiteral("A · Compressed memory · B"), 4),
        QStringList({QStringLiteral("A"), QStringLiteral("Compressed"), QStringLiteral("memory"),
                     QStringLiteral("B")}));
}

TEST_F(FittedLinesTest, WhereLinesAreShortAListFillsThemAll) {
    const QStringList lines = inRoomOf(QStringLiteral("22.4 GB free · Wired"), figures, 2);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0], QStringLiteral("22.4 GB free · Wired"));
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("0.1 GB"))) << lines[1].toStdString();
}

TEST_F(FittedLinesTest, ANumberStaysWithTheWordBehindIt) {
    const QString text = QStringLiteral("1.1 GB used of 23.5 GB");
    EXPECT_EQ(inRoomOf(QStringLiteral("1.1 GB used of 23.5"), text, 4),
              QStringList({QStringLiteral("1.1 GB used of"), QStringLiteral("23.5 GB")}));
    EXPECT_EQ(inRoomOf(text, text, 4), QStringList{text});
}

TEST_F(FittedLinesTest, EveryLineIsAPieceOfTheTextAndNothingIsLost) {
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

TEST_F(FittedLinesTest, NamesThatLookLikeAListAreCutLikeAnyOther) {
    const QString name = QStringLiteral("a · ").repeated(5000);
    const QStringList lines = fittedLines(name, font, 200, 3);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines.last().endsWith(u'…'));
    EXPECT_EQ(fittedLines(QStringLiteral(" · "), font, 200, 3).size(), 1);
    EXPECT_THAT(fittedLines(QString(), font, 200, 3), testing::IsEmpty());
    EXPECT_EQ(fittedLines(QStringLiteral("a · b\nc"), font, 200, 3),
              QStringList({QStringLiteral("a · b"), QStringLiteral("c")}));
}

}  // namespace
}  // namespace tallowcrest

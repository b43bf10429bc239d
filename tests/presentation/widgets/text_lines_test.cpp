#include "presentation/widgets/text_lines.h"

#include <QApplication>
#include <QFontMetrics>
#include <QImage>
#include <QLabel>
#include <QTextDocument>
#include <QToolTip>
#include <gmock/gmock.h>

#include "presentation/widgets/crest_style.h"
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

// Tool tips --------------------------------------------------------------------------------------

QString readBy(const QString& tip) {
    QTextDocument document;
    document.setHtml(tip);
    return document.toPlainText();
}

TEST(ToolTipText, ShowsTheTextUnchanged) {
    for (const QString& plain :
         {u"/tmp/<img src=x>&amp;"_s, u"%1  two blanks %2"_s, u"two\nlines"_s}) {
        EXPECT_EQ(readBy(toolTipText(plain)), plain);
    }
    EXPECT_TRUE(toolTipText(QString()).isEmpty());
}

TEST(ToolTipText, WrapsALongTextAndCutsAVeryLongOne) {
    const QStringList lines = readBy(toolTipText(u"/a-folder"_s.repeated(30))).split(u'\n');
    EXPECT_GT(lines.size(), 2);
    EXPECT_EQ(lines.join(QString()), u"/a-folder"_s.repeated(30));
    const QString cut = readBy(toolTipText(QString(100'000, u'W')));
    EXPECT_TRUE(cut.endsWith(u'…'));
    EXPECT_LE(cut.count(u'\n'), 11);
}

/// Tool tips in the style of the real program.
class ToolTipTest : public testing::Test {
protected:
    static void SetUpTestSuite() { QApplication::setStyle(new CrestStyle); }

    ~ToolTipTest() override {
        delete tip();
        QApplication::setPalette(paletteBefore_);
        QApplication::processEvents();
    }

    static QLabel* tip() {
        for (QWidget* each : QApplication::topLevelWidgets()) {
            if (each->inherits("QTipLabel")) {
                return qobject_cast<QLabel*>(each);
            }
        }
        return nullptr;
    }

    QLabel* shown(const QString& text) {
        delete tip();
        QToolTip::showText({40, 40}, text);
        return tip();
    }

private:
    QPalette paletteBefore_ = QApplication::palette();
};

TEST_F(ToolTipTest, FollowsTheTheme) {
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        QApplication::setPalette(paletteFor(appearance));
        const CrestTheme& theme = CrestTheme::current();
        QLabel* tip = shown(toolTipText(appearance == Appearance::light ? u"Day"_s : u"Night"_s));
        ASSERT_NE(tip, nullptr);
        const QImage image = tip->grab().toImage().convertToFormat(QImage::Format_RGB32);
        EXPECT_EQ(image.pixelColor(0, 0), theme.hairline);
        EXPECT_EQ(image.pixelColor(image.width() - 1, image.height() - 1), theme.hairline);
        EXPECT_EQ(image.pixelColor(2, 2), theme.cardBackground);
        double strongest = 1;
        for (int y = 2; y < image.height() - 2; ++y) {
            for (int x = 2; x < image.width() - 2; ++x) {
                strongest = std::max(strongest,
                                     contrastRatio(image.pixelColor(x, y), theme.cardBackground));
            }
        }
        EXPECT_GE(strongest, 4.5) << "its text";
        EXPECT_EQ(tip->font().pixelSize(), CrestFonts::current().body.pixelSize());
    }
}

TEST_F(ToolTipTest, IsAsWideAsItsLinesAndNoWider) {
    const QString path = u"/usr/lib/some-folder/program-of-a-middling-length"_s;
    QLabel* tip = shown(toolTipText(path));
    ASSERT_NE(tip, nullptr);
    const QFontMetrics metrics(tip->font());
    EXPECT_GT(tip->width(), metrics.horizontalAdvance(path)) << "one line is not made two";
    EXPECT_LT(tip->height(), 2 * metrics.lineSpacing() + 2 * spacing::unit);
    tip = shown(toolTipText(path.repeated(9)));
    ASSERT_NE(tip, nullptr);
    EXPECT_LE(tip->width(), 400);
    EXPECT_GT(tip->width(), 300);
}

}  // namespace
}  // namespace tallowcrest

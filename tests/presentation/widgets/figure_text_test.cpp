#include "presentation/widgets/figure_text.h"

#include <utility>

#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <gmock/gmock.h>

#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

TEST(UnitStart, SplitsAFigureFromItsUnit) {
    const std::pair<QString, QString> cases[] = {
        {u"34%"_s, u"34"_s},
        {u"12.3 GB"_s, u"12.3"_s},
        {u"1,023 MB"_s, u"1,023"_s},
        {u"1.023,5 KB"_s, u"1.023,5"_s},
        {u"1\u202f023,5\u00a0MB"_s, u"1\u202f023,5"_s},
        {u"-4%"_s, u"-4"_s},
        {u"\u0663\u0664%"_s, u"\u0663\u0664"_s},
    };
    for (const auto& [text, figure] : cases) {
        EXPECT_EQ(text.left(unitStart(text)), figure) << text.toStdString();
    }
}

TEST(UnitStart, IsAtTheEndOfATextThatIsNotAFigure) {
    for (const QString& text :
         {QString(), u"%"_s, u" GB"_s, u"–"_s, u"12"_s, u"8 apps"_s, u"None yet"_s, u"Disk 3 GB"_s,
          u"3 GB free"_s, u"1 GB 2 GB"_s, u".%"_s}) {
        EXPECT_EQ(unitStart(text), text.size()) << text.toStdString();
    }
}

class DrawFigureTest : public testing::Test {
protected:
    QImage drawn(Qt::Alignment alignment, const QString& text) {
        QImage image(room.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setFont(font);
        drawFigure(painter, room, alignment, text, Qt::red, Qt::blue);
        return image;
    }

    /// The first and the last column in which red, or else blue, predominates.
    std::pair<int, int> columnsOf(const QImage& image, bool red) {
        int first = image.width();
        int last = -1;
        for (int x = 0; x < image.width(); ++x) {
            for (int y = 0; y < image.height(); ++y) {
                const QColor color = image.pixelColor(x, y);
                const int lead = color.red() - color.blue();
                if ((red ? lead : -lead) > 40) {
                    first = std::min(first, x);
                    last = std::max(last, x);
                }
            }
        }
        return {first, last};
    }

    const QRect room{0, 0, 160, 32};
    const QFont font = CrestFonts::current().title;
};

TEST_F(DrawFigureTest, PaintsTheUnitAfterTheFigureInItsOwnColor) {
    const QImage image = drawn(Qt::AlignLeft, u"12.3 GB"_s);
    const auto figure = columnsOf(image, true);
    const auto unit = columnsOf(image, false);
    EXPECT_LT(figure.first, 6);
    EXPECT_GT(figure.second, figure.first + 10);
    EXPECT_GT(unit.first, figure.second);
    EXPECT_GT(unit.second, unit.first + 10);
}

TEST_F(DrawFigureTest, HasNoSecondColorWithoutAUnit) {
    const QImage image = drawn(Qt::AlignLeft, u"8 apps"_s);
    EXPECT_GT(columnsOf(image, true).second, 0);
    EXPECT_EQ(columnsOf(image, false).second, -1);
}

TEST_F(DrawFigureTest, FollowsTheAlignment) {
    const QString text = u"88%"_s;
    const int width = QFontMetrics(font).horizontalAdvance(text);
    EXPECT_LE(columnsOf(drawn(Qt::AlignLeft, text), false).second, width);
    EXPECT_GE(columnsOf(drawn(Qt::AlignRight, text), true).first, room.width() - width - 1);
    EXPECT_GE(columnsOf(drawn(Qt::AlignRight, text), false).second, room.width() - 6);
    const QImage centred = drawn(Qt::AlignHCenter, text);
    const int leftGap = columnsOf(centred, true).first;
    const int rightGap = room.width() - 1 - columnsOf(centred, false).second;
    EXPECT_NEAR(leftGap, rightGap, 4);
}

}  // namespace
}  // namespace tallowcrest

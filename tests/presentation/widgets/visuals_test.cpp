#include <QApplication>
#include <QImage>
#include <QVBoxLayout>
#include <gmock/gmock.h>

#include "presentation/widgets/bar_list.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/summary_card.h"
#include "tests/presentation/widgets/paint_count.h"
#include "tests/support/numbers.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

QString spokenValue(QObject* object) {
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(object);
    return spoken == nullptr ? QString() : spoken->text(QAccessible::Value);
}

TEST(ElidedLabel, SizeHintsAreLimited) {
    ElidedLabel label;
    label.setText(QString(10000, u'W'));
    EXPECT_LE(label.sizeHint().width(), 480);
    EXPECT_LE(label.minimumSizeHint().width(), 40);
    label.resize(120, 20);
    ASSERT_EQ(label.shownLines().size(), 1);
    EXPECT_TRUE(label.shownLines().first().endsWith(u'…'));
    EXPECT_LT(label.shownLines().first().size(), 30);
    EXPECT_EQ(label.accessibleName().size(), 10000);
}

TEST(ElidedLabel, WrapsUpToItsLinesAndElidesTheLast) {
    ElidedLabel label;
    label.setLines(1, 3);
    label.setText(u"word "_s.repeated(2000));
    label.resize(150, 80);
    const QStringList lines = label.shownLines();
    ASSERT_EQ(lines.size(), 3);
    EXPECT_FALSE(lines[0].contains(u'…'));
    EXPECT_TRUE(lines[2].endsWith(u'…'));
    label.setText(u"short"_s);
    EXPECT_EQ(label.shownLines(), QStringList{u"short"_s});
}

TEST(ElidedLabel, KeepsTheReservedWidth) {
    ElidedLabel label;
    label.setReservedText(u"100%"_s);
    label.setText(u"7%"_s);
    const QSize before = label.sizeHint();
    label.setText(u"99%"_s);
    EXPECT_EQ(label.sizeHint(), before);
    EXPECT_EQ(label.minimumSizeHint().width(), before.width());
}

TEST(ElidedLabel, DoesNotRepaintForTheSameText) {
    ElidedLabel label(u"CPU"_s, {&CrestFonts::body, &CrestTheme::text});
    showUnseen(label);
    PaintCount paints(label);
    label.setText(u"CPU"_s);
    label.setColor(&CrestTheme::text);
    EXPECT_EQ(paints.take(), 0);
    label.setText(u"GPU"_s);
    EXPECT_EQ(paints.take(), 1);
}

TEST(ElidedLabel, NewFiguresLookAsInAFreshLabel) {
    const auto pattern = u"%1 GB free · Wired %2 GB · Compressed %3 GB, %4"_s;
    for (const int width : {60, 110, 150, 232, 600}) {
        for (const int lines : {1, 2, 4}) {
            ElidedLabel kept;
            kept.setLines(1, lines);
            kept.resize(width, 80);
            for (int figure = 10; figure < 100; figure += 17) {
                const QString text = pattern.arg(figure).arg(109 - figure).arg(figure).arg(11);
                kept.setText(text);
                ElidedLabel fresh;
                fresh.setLines(1, lines);
                fresh.setText(text);
                for (const int shown : {width + 40, width}) {
                    kept.resize(shown, 80);
                    fresh.resize(shown, 80);
                    EXPECT_EQ(kept.shownLines(), fresh.shownLines())
                        << shown << " " << lines << " " << figure;
                }
                EXPECT_EQ(kept.sizeHint(), fresh.sizeHint());
            }
        }
    }
}

TEST(ElidedLabel, PaintsItsGround) {
    ElidedLabel label(LabelStyle{.ground = QColor(Qt::cyan)});
    label.resize(40, 20);
    QImage image(label.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    label.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    EXPECT_EQ(image.pixelColor(20, 10), QColor(Qt::cyan));
    EXPECT_TRUE(label.testAttribute(Qt::WA_OpaquePaintEvent));
}

TEST(Card, NamesItselfAfterItsHeading) {
    Card card;
    card.setHeader(u"clock"_s, u"Recent Activity"_s);
    EXPECT_EQ(card.accessibleName(), "Recent Activity");
    const int before = card.sizeHint().height();
    card.setCaption(u"The latest entries"_s);
    EXPECT_GT(card.sizeHint().height(), before);
}

TEST(Card, BackgroundFollowsTheTheme) {
    const QPalette before = QApplication::palette();
    Card card;
    card.resize(80, 80);
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        QApplication::setPalette(paletteFor(appearance));
        QApplication::processEvents();
        const QImage image = card.grab().toImage();
        EXPECT_EQ(image.pixelColor(40, 40), CrestTheme::current().cardBackground);
        EXPECT_EQ(image.pixelColor(40, 0), CrestTheme::current().hairline);
        // The corner is rounded, so the page shows through.
        EXPECT_EQ(image.pixelColor(0, 0), CrestTheme::current().pageBackground);
    }
    QApplication::setPalette(before);
}

TEST(SummaryCard, HasItsTextsAsAccessibleValue) {
    SummaryCard card(u"Never Quit"_s);
    card.setValue(u"8 apps"_s);
    EXPECT_EQ(card.accessibleDescription(), "8 apps");
    card.setDetail(u"No custom app groups are protected yet."_s);
    EXPECT_EQ(card.accessibleName(), "Never Quit");
    EXPECT_EQ(spokenValue(&card), "8 apps, No custom app groups are protected yet.");
}

TEST(SummaryCard, IsNotWidenedByALongName) {
    MetricCard card(u"Recurring Top App"_s);
    const int before = card.minimumSizeHint().width();
    card.setValue(QString(10000, u'W'));
    card.setDetail(QString(10000, u'W'));
    EXPECT_LE(card.minimumSizeHint().width(), std::max(before, 80));
}

TEST(BarList, KeepsItsHeightAsRowsComeAndGo) {
    BarList list(u"Resident memory by app group"_s, 4, u"000.0 GB"_s);
    list.setEmptyText(u"Sampling apps…"_s);
    const QSize before = list.sizeHint();
    EXPECT_EQ(spokenValue(&list), "Sampling apps…");
    list.setRows({{u"firefox"_s, u"4.2 GB"_s, 1}, {u"code"_s, u"1.0 GB"_s, 0.25}});
    EXPECT_EQ(list.sizeHint(), before);
    EXPECT_EQ(list.accessibleName(), "Resident memory by app group");
    EXPECT_EQ(spokenValue(&list), "firefox 4.2 GB, code 1.0 GB");
    list.setRows(std::vector<BarRow>(9));
    EXPECT_EQ(list.rows().size(), 4U);
}

TEST(BarList, FillsEachBarToItsShare) {
    BarList list(u"Bars"_s, 4, u"0"_s);
    list.setTint(QColor(Qt::magenta));
    list.resize(600, 96);
    list.setRows(
        {{u"a"_s, u"1"_s, 1}, {u"b"_s, u"1"_s, 0.5}, {u"c"_s, u"1"_s, nan}, {u"d"_s, u"1"_s, 7}});
    const QImage image = list.grab().toImage();
    const auto filled = [&image](int row) {
        int count = 0;
        for (int x = 0; x < image.width(); ++x) {
            count += image.pixelColor(x, row * 24 + 12) == QColor(Qt::magenta) ? 1 : 0;
        }
        return count;
    };
    EXPECT_GT(filled(0), 300);
    EXPECT_NEAR(filled(1), filled(0) / 2, 3);
    EXPECT_EQ(filled(2), 0);
    EXPECT_EQ(filled(3), filled(0));
}

TEST(BarList, DoesNotRepaintForEqualRows) {
    BarList list(u"Bars"_s, 2, u"0"_s);
    const std::vector<BarRow> rows{{u"a"_s, u"1"_s, 0.5}};
    list.setRows(rows);
    showUnseen(list);
    PaintCount paints(list);
    list.setRows(rows);
    EXPECT_EQ(paints.take(), 0);
    list.setRows({{u"a"_s, u"2"_s, 0.5}});
    EXPECT_EQ(paints.take(), 1);
    list.setRows({{u"a"_s, u"2"_s, 0.50001}});
    EXPECT_EQ(paints.take(), 0) << "less than a pixel";
    list.setRows({{u"a"_s, u"2"_s, 0.9}});
    EXPECT_EQ(paints.take(), 1);
    list.setRows({{u"b"_s, u"2"_s, 0.9}});
    EXPECT_EQ(paints.take(), 1);
}

TEST(BarList, LooksTheSameAfterChangesAsWhenNew) {
    const auto sized = [](BarList& list) { list.resize(600, 96); };
    BarList changed(u"Bars"_s, 4, u"000"_s);
    sized(changed);
    const std::vector<std::vector<BarRow>> steps{
        {{u"a"_s, u"1"_s, 1}, {u"b"_s, u"2"_s, 0.5}},
        {{u"a"_s, u"1"_s, 1}, {u"b"_s, u"3"_s, 0.7}},
        {{u"c"_s, u"1"_s, 1}},
        {{u"c"_s, u"1"_s, 1}, {u"d"_s, u"9"_s, 0.1}},
    };
    for (const std::vector<BarRow>& rows : steps) {
        changed.setRows(rows);
        BarList fresh(u"Bars"_s, 4, u"000"_s);
        sized(fresh);
        fresh.setRows(rows);
        EXPECT_EQ(changed.grab().toImage(), fresh.grab().toImage());
    }
}

}  // namespace
}  // namespace tallowcrest

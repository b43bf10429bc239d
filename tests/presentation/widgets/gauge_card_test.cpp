#include "presentation/widgets/gauge_card.h"

#include <QApplication>
#include <QHBoxLayout>
#include <gmock/gmock.h>

#include "presentation/widgets/elided_label.h"
#include "tests/presentation/widgets/paint_count.h"
#include "tests/support/numbers.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

TEST(GaugeState, WordAndColorChangeAtTheTwoLimits) {
    struct Case {
        double value;
        const char* word;
        ThemeColor color;
    };
    for (const Case& each :
         {Case{-1, "Normal", &CrestTheme::good}, Case{0, "Normal", &CrestTheme::good},
          Case{69.9, "Normal", &CrestTheme::good}, Case{70, "Elevated", &CrestTheme::caution},
          Case{84.9, "Elevated", &CrestTheme::caution}, Case{85, "High", &CrestTheme::bad},
          Case{300, "High", &CrestTheme::bad}, Case{nan, "Normal", &CrestTheme::good}}) {
        EXPECT_EQ(gaugeStateWord(each.value), each.word) << each.value;
        EXPECT_EQ(gaugeStateColor(each.value), each.color) << each.value;
    }
}

TEST(GaugeRing, ShowsTheUnitInSecondaryColor) {
    GaugeRing ring;
    ring.setTint(QColor(Qt::white));
    ring.setValue(88, u"88%"_s);
    const QImage image = ring.grab().toImage().convertToFormat(QImage::Format_RGB32);
    const CrestTheme& theme = CrestTheme::current();
    int lastOfFigure = -1;
    int lastOfUnit = -1;
    for (int x = 24; x < 72; ++x) {
        for (int y = 36; y < 60; ++y) {
            const QColor color = image.pixelColor(x, y);
            lastOfFigure = color == theme.text ? x : lastOfFigure;
            lastOfUnit = color == theme.secondaryText ? x : lastOfUnit;
        }
    }
    EXPECT_GT(lastOfFigure, 24);
    EXPECT_GT(lastOfUnit, lastOfFigure);
}

TEST(GaugeCard, ClampsItsValue) {
    GaugeCard card(u"CPU Load"_s);
    const std::pair<double, double> cases[] = {
        {-5, 0}, {0, 0}, {42.5, 42.5}, {100, 100}, {140, 100}};
    for (const auto& [given, kept] : cases) {
        card.setValue(given, u"1%"_s, QString());
        EXPECT_EQ(card.value(), kept) << given;
    }
    card.setValue(nan, u"0%"_s, QString());
    EXPECT_EQ(card.value(), 0);
}

TEST(GaugeCard, HasItsContentAsAccessibleValue) {
    GaugeCard card(u"Memory Pressure"_s);
    card.setValue(70.6, u"71%"_s, u"11.3 GB used of 16.0 GB"_s);
    EXPECT_EQ(card.accessibleName(), "Memory Pressure");
    EXPECT_EQ(card.accessibleDescription(), "71%, Elevated, 11.3 GB used of 16.0 GB");
    QStringList labels;
    for (const auto* label : card.findChildren<ElidedLabel*>()) {
        labels.append(label->accessibleName());
    }
    EXPECT_THAT(labels, testing::Contains(u"Memory Pressure: 71%, Elevated"_s));

    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&card);
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->role(), QAccessible::ProgressBar);
    EXPECT_EQ(spoken->text(QAccessible::Value), "71%, Elevated, 11.3 GB used of 16.0 GB");
    ASSERT_NE(spoken->valueInterface(), nullptr);
    EXPECT_NEAR(spoken->valueInterface()->currentValue().toDouble(), 70.6, 1e-9);
}

TEST(GaugeCard, KeepsItsHeightForAnyFigures) {
    GaugeCard card(u"CPU Load"_s);
    card.setValue(1, u"1%"_s, u"1.0% normalized across cores"_s);
    const QSize before = card.sizeHint();
    card.setValue(100, u"100%"_s, u"100.0% normalized across cores"_s);
    EXPECT_EQ(card.sizeHint().height(), before.height());
}

TEST(GaugeCard, StateWordsOfAdjacentCardsAreAligned) {
    QWidget row;
    auto* layout = new QHBoxLayout(&row);
    auto* shortTitle = new GaugeCard(u"CPU"_s);
    auto* longTitle = new GaugeCard(u"A title that wraps beside its ring"_s);
    shortTitle->setValue(1, u"1%"_s, u"100.0% normalized across all of the cores of this Mac"_s);
    longTitle->setValue(1, u"1%"_s, u"None"_s);
    for (GaugeCard* card : {shortTitle, longTitle}) {
        layout->addWidget(card, 1);
    }
    const auto wordOf = [&row](const GaugeCard& card) {
        for (const ElidedLabel* label : card.findChildren<ElidedLabel*>()) {
            if (label->text() == u"Normal"_s) {
                return label->mapTo(&row, QPoint()).y();
            }
        }
        return -1;
    };
    row.show();
    for (const int width : {520, 640, 1100}) {
        row.resize(width, row.heightForWidth(width));
        QApplication::processEvents();
        EXPECT_GT(wordOf(*shortTitle), 0);
        EXPECT_EQ(wordOf(*shortTitle), wordOf(*longTitle)) << width;
    }
}

TEST(GaugeRing, RepaintsOnlyForVisibleChanges) {
    GaugeRing ring;
    ring.setValue(42, u"42%"_s);
    showUnseen(ring);
    PaintCount paints(ring);
    ring.setValue(42.01, u"42%"_s);
    EXPECT_EQ(paints.take(), 0);
    ring.setValue(43, u"43%"_s);
    EXPECT_EQ(paints.take(), 1);
    ring.setTint(&CrestTheme::accent);
    EXPECT_EQ(paints.take(), 0);
    ring.setTint(&CrestTheme::bad);
    EXPECT_EQ(paints.take(), 1);
}

TEST(GaugeRing, IsFilledToItsValueInItsTint) {
    GaugeRing ring;
    ring.setTint(QColor(Qt::magenta));
    const auto tinted = [&ring](double value) {
        ring.setValue(value, QString::number(value) + u'%');
        const QImage image = ring.grab().toImage();
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                count += image.pixelColor(x, y) == QColor(Qt::magenta) ? 1 : 0;
            }
        }
        return count;
    };
    const int full = tinted(100);
    const int half = tinted(50);
    EXPECT_EQ(tinted(0), 0);
    EXPECT_GT(full, 400);
    EXPECT_NEAR(half, full / 2, full / 10);
    EXPECT_EQ(tinted(140), full);
}

}  // namespace
}  // namespace tallowcrest

#include "presentation/widgets/stable_line_graph.h"

#include <cmath>
#include <set>

#include <QImage>
#include <gmock/gmock.h>

#include "tests/presentation/widgets/graph_formats.h"
#include "tests/presentation/widgets/paint_count.h"
#include "tests/support/numbers.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

const QColor lineColor(Qt::magenta);

/// A graph painted on white, and functions that examine the pixels.
class StableLineGraphTest : public testing::Test {
protected:
    StableLineGraphTest() { graph_.resize(420, 241); }

    void showLine(std::vector<double> values, bool fillsArea = false) {
        graph_.setSeries({{u"CPU"_s, lineColor, std::move(values), fillsArea}});
    }

    QImage painted() {
        QImage image(graph_.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        graph_.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
        return image;
    }

    /// Without the legend and the scale.
    QImage paintedCanvas() {
        return painted().copy(graph_.canvasRect().adjusted(-1, -4, 4, 4).toAlignedRect());
    }

    QPoint at(double xFraction, double percent) const {
        const QRectF canvas = graph_.canvasRect();
        return {qRound(canvas.left() + canvas.width() * xFraction),
                qRound(canvas.top() + canvas.height() * (1 - percent / 100))};
    }

    /// Whether the colour of the line occurs within two pixels of `place`.
    bool lineNear(const QImage& image, QPoint place) const {
        for (int dy = -2; dy <= 2; ++dy) {
            for (int dx = -2; dx <= 2; ++dx) {
                const QPoint point = place + QPoint(dx, dy);
                if (image.rect().contains(point)) {
                    const QColor color = image.pixelColor(point);
                    if (color.red() > 200 && color.blue() > 200 && color.green() < 90) {
                        return true;
                    }
                }
            }
        }
        return false;
    }

    StableLineGraph graph_{plainGraphFormats()};
};

TEST_F(StableLineGraphTest, DrawsTheLineThroughItsValues) {
    showLine({20, 20, 80});
    const QImage image = painted();
    EXPECT_TRUE(lineNear(image, at(0.02, 20)));
    EXPECT_TRUE(lineNear(image, at(0.25, 20)));
    EXPECT_TRUE(lineNear(image, at(0.75, 50)));
    EXPECT_TRUE(lineNear(image, at(0.99, 79)));
    EXPECT_FALSE(lineNear(image, at(0.25, 60)));
}

TEST_F(StableLineGraphTest, DrawsValuesAbove100AtTheTopAndInvalidOnesAtTheBottom) {
    showLine({140, 140, nan, nan, -20});
    const QImage image = painted();
    EXPECT_TRUE(lineNear(image, at(0.1, 100)));
    EXPECT_TRUE(lineNear(image, at(0.6, 0)));
    EXPECT_TRUE(lineNear(image, at(0.9, 0)));
}

TEST_F(StableLineGraphTest, DrawsOneValueAtTheLeftEdgeAndTwoAsALineWithoutMarks) {
    const QImage blank = paintedCanvas();
    showLine({}, true);
    EXPECT_EQ(paintedCanvas(), blank);
    showLine({50}, true);
    EXPECT_TRUE(lineNear(painted(), at(0, 50)));
    EXPECT_FALSE(lineNear(painted(), at(0.5, 50)));
    showLine({50, 50});
    EXPECT_TRUE(lineNear(painted(), at(0, 50)));
    EXPECT_TRUE(lineNear(painted(), at(0.5, 50)));
    EXPECT_FALSE(lineNear(painted(), at(0, 50) + QPoint(3, 5)));
}

TEST_F(StableLineGraphTest, DrawsOneValueAsAVisibleDot) {
    for (const double value : {0.0, 50.0, 100.0}) {
        showLine({value});
        const QImage image = paintedCanvas();
        int inked = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                inked += image.pixelColor(x, y) == lineColor ? 1 : 0;
            }
        }
        EXPECT_GT(inked, 10) << value;
        EXPECT_LT(inked, 40) << value;
    }
}

TEST_F(StableLineGraphTest, LeavesAGapWhereValuesAreMissing) {
    graph_.setSeries({{u"Air"_s, lineColor, {0, 50, 50, 0, 0, 50, 50, 0}, false, {0, 3, 4, 7}}});
    const QImage image = painted();
    for (const double within : {1.05 / 7, 1.5 / 7, 1.95 / 7, 5.05 / 7, 5.5 / 7, 5.95 / 7}) {
        EXPECT_TRUE(lineNear(image, at(within, 50))) << within;
    }
    for (const double outside : {0.0, 0.5 / 7, 2.2 / 7, 3.0 / 7, 3.5 / 7, 4.8 / 7, 6.2 / 7, 1.0}) {
        EXPECT_FALSE(lineNear(image, at(outside, 50))) << outside;
        EXPECT_FALSE(lineNear(image, at(outside, 0))) << outside;
    }
}

TEST_F(StableLineGraphTest, DrawsADotForAValueBetweenMissingOnes) {
    graph_.setSeries({{u"Air"_s, lineColor, {50, 0, 50, 0, 50}, false, {1, 3}}});
    const QImage image = painted();
    for (const double dot : {0.0, 0.5, 1.0}) {
        EXPECT_TRUE(lineNear(image, at(dot, 50))) << dot;
    }
    EXPECT_TRUE(lineNear(image, at(0.5, 50) + QPoint(0, 4))) << "thicker than a line";
    for (const double outside : {0.05, 0.25, 0.45, 0.55, 0.75, 0.95}) {
        EXPECT_FALSE(lineNear(image, at(outside, 50))) << outside;
    }
    graph_.setSeries({{u"Air"_s, lineColor, {0, 0, 50}, false, {0, 1}}});
    EXPECT_TRUE(lineNear(painted(), at(0.99, 50))) << "within the canvas";
    EXPECT_FALSE(lineNear(painted(), at(0.5, 50)));
}

TEST_F(StableLineGraphTest, DrawsFiveGridLines) {
    const QImage image = painted();
    for (const double percent : {0.0, 25.0, 50.0, 75.0, 100.0}) {
        const QPoint place = at(0.5, percent);
        int inked = 0;
        for (int dy = -1; dy <= 1; ++dy) {
            inked += image.pixelColor(place + QPoint(0, dy)) != QColor(Qt::white) ? 1 : 0;
        }
        EXPECT_EQ(inked, 1) << percent;
    }
    EXPECT_EQ(image.pixelColor(at(0.5, 60)), QColor(Qt::white));
}

TEST_F(StableLineGraphTest, DrawsADashedThresholdOnlyWhenThereIsOne) {
    const auto inkedInRow = [this](const QImage& image) {
        const QRectF canvas = graph_.canvasRect();
        int most = 0;
        for (int dy = -1; dy <= 1; ++dy) {
            int inked = 0;
            for (int x = qRound(canvas.left()); x < qRound(canvas.right()); ++x) {
                inked += image.pixelColor(x, at(0, 90).y() + dy) != QColor(Qt::white) ? 1 : 0;
            }
            most = std::max(most, inked);
        }
        return most / canvas.width();
    };
    EXPECT_EQ(inkedInRow(painted()), 0);
    graph_.setWarningThreshold(90);
    EXPECT_GT(inkedInRow(painted()), 0.3);
    EXPECT_LT(inkedInRow(painted()), 0.8);
    graph_.setWarningThreshold(std::nullopt);
    EXPECT_EQ(inkedInRow(painted()), 0);
}

TEST_F(StableLineGraphTest, DrawsADashedLineForEachFiniteEvent) {
    const auto inkedInColumn = [this](const QImage& image, double fraction) {
        const QRectF canvas = graph_.canvasRect();
        int most = 0;
        for (int dx = -1; dx <= 1; ++dx) {
            int inked = 0;
            for (int y = qRound(canvas.top()); y < qRound(canvas.bottom()); ++y) {
                inked += image.pixelColor(at(fraction, 0).x() + dx, y) != QColor(Qt::white) ? 1 : 0;
            }
            most = std::max(most, inked);
        }
        return most / canvas.height();
    };
    const double gridOnly = inkedInColumn(painted(), 0.3);
    EXPECT_LT(gridOnly, 0.1);
    graph_.setEventFractions({0.3, nan, infinity});
    const QImage image = painted();
    EXPECT_GT(inkedInColumn(image, 0.3), 0.3);
    EXPECT_LT(inkedInColumn(image, 0.3), 0.8);
    EXPECT_LT(inkedInColumn(image, 0.6), 0.1);
}

TEST_F(StableLineGraphTest, FillsTheAreaFaintlyIfRequested) {
    showLine({80, 80}, true);
    const QColor filled = painted().pixelColor(at(0.5, 40));
    // A tenth of magenta on white.
    EXPECT_NEAR(filled.green(), 229, 3);
    EXPECT_EQ(filled.red(), 255);
    EXPECT_EQ(painted().pixelColor(at(0.5, 90)), QColor(Qt::white));
    showLine({80, 80}, false);
    EXPECT_EQ(painted().pixelColor(at(0.5, 40)), QColor(Qt::white));
}

TEST_F(StableLineGraphTest, PaintsAnAreaOverTheRulesBelowIt) {
    // The grid at half the height, dashes at 60 percent and at three tenths of the width.
    const CrestTheme& theme = CrestTheme::current();
    const QColor& card = theme.cardBackground;
    const QColor grid = mixedColor(card, theme.secondaryText, 0.14);
    const QColor threshold = mixedColor(card, theme.caution, 0.55);
    const QColor event = mixedColor(card, theme.secondaryText, 0.35);
    const auto below = [](const QColor& color) { return mixedColor(color, lineColor, 0.1); };
    graph_.resize(460, 242);
    graph_.setWarningThreshold(60);
    graph_.setEventFractions({0.3});
    const auto colorsNear = [](const QImage& image, QPoint place) {
        std::set<QRgb> colors;
        for (int dy = -8; dy <= 8; ++dy) {
            for (int dx = -8; dx <= 8; ++dx) {
                colors.insert(image.pixel(place + QPoint(dx, dy)));
            }
        }
        return colors;
    };
    const auto expect = [&](double value, bool isBelow) {
        SCOPED_TRACE(value);
        showLine({value, value}, true);
        const QImage image = painted();
        const auto seen = [&](const QColor& color) {
            return (isBelow ? below(color) : color).rgb();
        };
        EXPECT_THAT(colorsNear(image, at(0.6, 50)),
                    testing::UnorderedElementsAre(seen(card), seen(grid)));
        EXPECT_THAT(colorsNear(image, at(0.6, 60)),
                    testing::UnorderedElementsAre(seen(card), seen(threshold)));
        EXPECT_THAT(colorsNear(image, at(0.3, 38)),
                    testing::UnorderedElementsAre(seen(card), seen(event)));
        EXPECT_THAT(colorsNear(image, at(0.3, 50)),
                    testing::IsSupersetOf({seen(card), seen(grid), seen(event)}));
    };
    expect(90, true);
    expect(10, false);
}

TEST_F(StableLineGraphTest, PaintsDashesOverTheGrid) {
    graph_.setWarningThreshold(50);
    const CrestTheme& theme = CrestTheme::current();
    const QColor grid = mixedColor(theme.cardBackground, theme.secondaryText, 0.14);
    const QImage image = painted();
    std::set<QRgb> colors;
    for (int x = at(0.4, 50).x(); x < at(0.6, 50).x(); ++x) {
        colors.insert(image.pixel(x, at(0, 50).y()));
    }
    EXPECT_THAT(colors, testing::UnorderedElementsAre(grid.rgb(),
                                                      mixedColor(grid, theme.caution, 0.55).rgb()));
}

TEST_F(StableLineGraphTest, PaintsLaterSeriesOverEarlierOnes) {
    const QColor later(Qt::blue);
    graph_.setSeries({{u"CPU"_s, lineColor, {40, 40}, true}, {u"Memory"_s, later, {80, 80}, true}});
    const QImage image = painted();
    std::set<QRgb> colors;
    for (int dy = -3; dy <= 3; ++dy) {
        colors.insert(image.pixel(at(0.6, 40) + QPoint(0, dy)));
    }
    EXPECT_THAT(colors, testing::Contains(mixedColor(lineColor, later, 0.1).rgb()));
    EXPECT_THAT(colors, testing::Not(testing::Contains(lineColor.rgb())));
    const QColor& card = CrestTheme::current().cardBackground;
    EXPECT_EQ(image.pixelColor(at(0.6, 30)),
              mixedColor(mixedColor(card, lineColor, 0.1), later, 0.1));
    EXPECT_EQ(image.pixelColor(at(0.6, 60)), mixedColor(card, later, 0.1));
}

TEST_F(StableLineGraphTest, DashesAllSeriesButTheFirst) {
    const QColor later(Qt::blue);
    graph_.setSeries(
        {{u"CPU"_s, lineColor, {50, 50}, false}, {u"Memory"_s, later, {50, 50}, false}});
    const QImage image = painted();
    int earlierInked = 0;
    int laterInked = 0;
    const int begin = at(0, 50).x() + 2;
    const int end = at(1, 50).x() - 2;
    for (int x = begin; x < end; ++x) {
        const QColor color = image.pixelColor(x, at(0, 50).y());
        earlierInked += color == lineColor ? 1 : 0;
        laterInked += color == later ? 1 : 0;
    }
    EXPECT_EQ(earlierInked + laterInked, end - begin) << "the later one lies on top";
    EXPECT_NEAR(static_cast<double>(laterInked) / (end - begin), 7.0 / 11, 0.05);
}

TEST_F(StableLineGraphTest, MarksAGapHalfwayBetweenItsPoints) {
    const auto ruleAt = [this](const QImage& image, double fraction) {
        const QColor rule = mixedColor(CrestTheme::current().cardBackground,
                                       CrestTheme::current().secondaryText, 0.5);
        int inked = 0;
        for (int dx = -1; dx <= 1; ++dx) {
            for (int percent = 55; percent <= 70; ++percent) {
                inked += image.pixelColor(at(fraction, percent) + QPoint(dx, 0)) == rule ? 1 : 0;
            }
        }
        return inked;
    };
    graph_.setSeries({{u"CPU"_s, lineColor, {20, 20, 20, 20, 20}, false}}, {{0, 4, 8, 60, 64}, {}});
    EXPECT_EQ(ruleAt(painted(), 0.625), 0);
    graph_.setSeries({{u"CPU"_s, lineColor, {20, 20, 20, 20, 20}, false}},
                     {{0, 4, 8, 60, 64}, {3}});
    EXPECT_EQ(ruleAt(painted(), 0.625), 16) << "a continuous line, one pixel wide";
    EXPECT_EQ(ruleAt(painted(), 0.375), 0);
}

TEST_F(StableLineGraphTest, ShowsTimesBelowTheCanvas) {
    const auto belowCanvas = [this] {
        const QRect canvas = graph_.canvasRect().toAlignedRect();
        return painted().copy(0, canvas.bottom() + 3, canvas.right(), graph_.height());
    };
    showLine({20, 20, 20});
    const QImage without = belowCanvas();
    const std::vector<StableGraphSeries> series{{u"CPU"_s, lineColor, {20, 20, 20}, false}};
    graph_.setSeries(series, {{6, 10, 14}, {}});
    const QImage before = belowCanvas();
    EXPECT_NE(before, without);
    graph_.setSeries(series, {{66, 70, 74}, {}});
    EXPECT_NE(belowCanvas(), before) << "a minute later";
}

TEST_F(StableLineGraphTest, LooksTheSameAfterANewSampleAsWhenNew) {
    std::vector<double> values;
    for (int i = 0; i < 180; ++i) {
        values.push_back(50 + 40 * std::sin(i / 3.0));
    }
    graph_.resize(900, 240);
    showLine({1, 2}, true);
    const QImage before = graph_.grab().toImage();
    showLine(values, true);
    StableLineGraph fresh(plainGraphFormats());
    fresh.resize(900, 240);
    fresh.setSeries({{u"CPU"_s, lineColor, values, true}});
    const QImage after = graph_.grab().toImage();
    EXPECT_EQ(after, fresh.grab().toImage());
    EXPECT_NE(after, before);
}

TEST_F(StableLineGraphTest, DoesNotRepaintForEqualData) {
    showLine({10, nan, 30}, true);
    graph_.setWarningThreshold(80);
    graph_.setEventFractions({0.5});
    showUnseen(graph_);
    PaintCount paints(graph_);
    showLine({10, nan, 30}, true);
    graph_.setWarningThreshold(80);
    graph_.setEventFractions({0.5});
    EXPECT_EQ(paints.take(), 0);
    showLine({10, nan, 31}, true);
    EXPECT_EQ(paints.take(), 1);
    graph_.setWarningThreshold(85);
    EXPECT_EQ(paints.take(), 1);
    graph_.setEventFractions({0.6});
    EXPECT_EQ(paints.take(), 1);
}

TEST_F(StableLineGraphTest, HasItsLastValuesAsAccessibleValue) {
    graph_.setSeries({{u"CPU"_s, lineColor, {10, 41.6}, true},
                      {u"Idle"_s, lineColor, {}, false},
                      {u"Memory"_s, lineColor, {140}, false}});
    EXPECT_EQ(graph_.accessibleName(), "Performance graph");
    EXPECT_EQ(graph_.accessibleDescription(), "CPU 42 percent, Memory 100 percent");
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&graph_);
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->text(QAccessible::Value), "CPU 42 percent, Memory 100 percent");
}

TEST_F(StableLineGraphTest, ToleratesASizeTooSmallToDrawIn) {
    showLine({10, 90}, true);
    graph_.resize(3, 3);
    EXPECT_EQ(painted().size(), QSize(3, 3));
    EXPECT_GT(graph_.canvasRect().width(), 0);
}

}  // namespace
}  // namespace tallowcrest

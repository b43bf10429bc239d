#include <cmath>
#include <limits>

#include <QApplication>
#include <QImage>
#include <QVBoxLayout>
#include <gmock/gmock.h>

#include "presentation/bar_list.h"
#include "presentation/card.h"
#include "presentation/elided_label.h"
#include "presentation/stable_line_graph.h"
#include "presentation/summary_card.h"
#include "tests/presentation/paint_count.h"

namespace tallowcrest {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
const QColor lineColor(Qt::magenta);

QString spokenValue(QObject* object) {
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(object);
    return spoken == nullptr ? QString() : spoken->text(QAccessible::Value);
}

/// A graph on a white ground, and questions about what it painted.
class StableLineGraphTest : public testing::Test {
protected:
    StableLineGraphTest() {
        graph_.resize(420, 240);
        graph_.setLegendVisible(false);
    }

    void showLine(std::vector<double> values, bool fillsArea = false) {
        graph_.setSeries({{QStringLiteral("CPU"), lineColor, std::move(values), fillsArea}});
    }

    QImage painted() {
        QImage image(graph_.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        graph_.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
        return image;
    }

    QPoint at(double xFraction, double percent) const {
        const QRectF canvas = graph_.canvasRect();
        return {qRound(canvas.left() + canvas.width() * xFraction),
                qRound(canvas.top() + canvas.height() * (1 - percent / 100))};
    }

    /// True when the line's own colour is within two pixels of a place.
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

    StableLineGraph graph_;
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

TEST_F(StableLineGraphTest, DrawsTooHighAtTheTopAndNoPercentageAtTheBottom) {
    showLine({140, 140, nan, nan, -20});
    const QImage image = painted();
    EXPECT_TRUE(lineNear(image, at(0.1, 100)));
    EXPECT_TRUE(lineNear(image, at(0.6, 0)));
    EXPECT_TRUE(lineNear(image, at(0.9, 0)));
}

TEST_F(StableLineGraphTest, DrawsOneValueAtTheLeftEdge) {
    showLine({50}, true);
    const QImage image = painted();
    EXPECT_TRUE(lineNear(image, at(0, 50)));
    EXPECT_FALSE(lineNear(image, at(0.5, 50)));
}

TEST_F(StableLineGraphTest, SkipsSeriesWithoutValues) {
    const QImage blank = painted();
    showLine({}, true);
    EXPECT_EQ(painted(), blank);
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
    graph_.setEventFractions({0.3, nan, std::numeric_limits<double>::infinity()});
    const QImage image = painted();
    EXPECT_GT(inkedInColumn(image, 0.3), 0.3);
    EXPECT_LT(inkedInColumn(image, 0.3), 0.8);
    EXPECT_LT(inkedInColumn(image, 0.6), 0.1);
}

TEST_F(StableLineGraphTest, FillsTheAreaFaintlyWhenAsked) {
    showLine({80, 80}, true);
    const QColor filled = painted().pixelColor(at(0.5, 40));
    // A tenth of magenta on white.
    EXPECT_NEAR(filled.green(), 229, 3);
    EXPECT_EQ(filled.red(), 255);
    EXPECT_EQ(painted().pixelColor(at(0.5, 90)), QColor(Qt::white));
    showLine({80, 80}, false);
    EXPECT_EQ(painted().pixelColor(at(0.5, 40)), QColor(Qt::white));
}

TEST_F(StableLineGraphTest, LooksAfterANewSampleAsIfItWereNew) {
    std::vector<double> values;
    for (int i = 0; i < 180; ++i) {
        values.push_back(50 + 40 * std::sin(i / 3.0));
    }
    graph_.setLegendVisible(true);
    graph_.resize(900, 240);
    showLine({1, 2}, true);
    const QImage before = graph_.grab().toImage();
    showLine(values, true);
    StableLineGraph fresh;
    fresh.resize(900, 240);
    fresh.setSeries({{QStringLiteral("CPU"), lineColor, values, true}});
    const QImage after = graph_.grab().toImage();
    EXPECT_EQ(after, fresh.grab().toImage());
    EXPECT_NE(after, before);
}

TEST_F(StableLineGraphTest, LaysLaterSeriesOnTop) {
    graph_.setSeries({{QStringLiteral("CPU"), lineColor, {50, 50}, false},
                      {QStringLiteral("Memory"), QColor(Qt::blue), {50, 50}, false}});
    EXPECT_FALSE(lineNear(painted(), at(0.5, 50)));
}

TEST_F(StableLineGraphTest, DoesNotRepaintForEqualData) {
    showLine({10, nan, 30}, true);
    graph_.setWarningThreshold(80);
    graph_.setEventFractions({0.5});
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

TEST_F(StableLineGraphTest, SaysItsLastValuesToAssistiveTechnology) {
    graph_.setSeries({{QStringLiteral("CPU"), lineColor, {10, 41.6}, true},
                      {QStringLiteral("Idle"), lineColor, {}, false},
                      {QStringLiteral("Memory"), lineColor, {140}, false}});
    EXPECT_EQ(graph_.accessibleName(), "Performance graph");
    EXPECT_EQ(graph_.accessibleDescription(), "CPU 42 percent, Memory 100 percent");
    EXPECT_EQ(spokenValue(&graph_), "CPU 42 percent, Memory 100 percent");
}

TEST_F(StableLineGraphTest, SurvivesARoomTooSmallToDrawIn) {
    showLine({10, 90}, true);
    graph_.setLegendVisible(true);
    graph_.resize(3, 3);
    EXPECT_EQ(painted().size(), QSize(3, 3));
    EXPECT_GT(graph_.canvasRect().width(), 0);
}

TEST(ElidedLabel, NeverAsksForMoreRoomThanItCanUse) {
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
    label.setText(QStringLiteral("word ").repeated(2000));
    label.resize(150, 80);
    const QStringList lines = label.shownLines();
    ASSERT_EQ(lines.size(), 3);
    EXPECT_FALSE(lines[0].contains(u'…'));
    EXPECT_TRUE(lines[2].endsWith(u'…'));
    label.setText(QStringLiteral("short"));
    EXPECT_EQ(label.shownLines(), QStringList{QStringLiteral("short")});
}

TEST(ElidedLabel, KeepsReservedRoomForFigures) {
    ElidedLabel label;
    label.setReservedText(QStringLiteral("100%"));
    label.setText(QStringLiteral("7%"));
    const QSize before = label.sizeHint();
    label.setText(QStringLiteral("99%"));
    EXPECT_EQ(label.sizeHint(), before);
    EXPECT_EQ(label.minimumSizeHint().width(), before.width());
}

TEST(ElidedLabel, DoesNotRepaintForTheSameText) {
    ElidedLabel label(QStringLiteral("CPU"), &CrestFonts::body, &CrestTheme::text);
    PaintCount paints(label);
    label.setText(QStringLiteral("CPU"));
    label.setColor(&CrestTheme::text);
    EXPECT_EQ(paints.take(), 0);
    label.setText(QStringLiteral("GPU"));
    EXPECT_EQ(paints.take(), 1);
}

TEST(ElidedLabel, LaysNewFiguresOutAsALabelThatNeverHadOthers) {
    const auto pattern = QStringLiteral("%1 GB free · Wired %2 GB · Compressed %3 GB, %4");
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
                fresh.resize(width, 80);
                fresh.setText(text);
                EXPECT_EQ(kept.shownLines(), fresh.shownLines())
                    << width << " " << lines << " " << figure;
                EXPECT_EQ(kept.sizeHint(), fresh.sizeHint());
            }
        }
    }
}

TEST(ElidedLabel, PaintsTheGroundThatItIsGiven) {
    ElidedLabel label;
    label.resize(40, 20);
    label.setGround(QColor(Qt::cyan));
    QImage image(label.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    label.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    EXPECT_EQ(image.pixelColor(20, 10), QColor(Qt::cyan));
    EXPECT_TRUE(label.testAttribute(Qt::WA_OpaquePaintEvent));
}

TEST(Card, NamesItselfAfterItsHeading) {
    Card card;
    card.setHeader(QStringLiteral("clock"), QStringLiteral("Recent Activity"));
    EXPECT_EQ(card.accessibleName(), "Recent Activity");
    const int before = card.sizeHint().height();
    card.setCaption(QStringLiteral("The latest entries"));
    EXPECT_GT(card.sizeHint().height(), before);
}

TEST(Card, PaintsItsGroundInTheThemesColourAndSwitchesLive) {
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

TEST(SummaryCard, SaysItsThreeTexts) {
    SummaryCard card(QStringLiteral("Never Quit"));
    card.setValue(QStringLiteral("8 apps"));
    EXPECT_EQ(card.accessibleDescription(), "8 apps");
    card.setDetail(QStringLiteral("No custom app groups are protected yet."));
    EXPECT_EQ(card.accessibleName(), "Never Quit");
    EXPECT_EQ(spokenValue(&card), "8 apps, No custom app groups are protected yet.");
}

TEST(SummaryCard, IsNotWidenedByALongName) {
    MetricCard card(QStringLiteral("Recurring Top App"));
    const int before = card.minimumSizeHint().width();
    card.setValue(QString(10000, u'W'));
    card.setDetail(QString(10000, u'W'));
    EXPECT_LE(card.minimumSizeHint().width(), std::max(before, 80));
}

TEST(BarList, KeepsItsHeightAsRowsComeAndGo) {
    BarList list(QStringLiteral("Resident memory by app group"), 4, QStringLiteral("000.0 GB"));
    list.setEmptyText(QStringLiteral("Sampling apps…"));
    const QSize before = list.sizeHint();
    EXPECT_EQ(spokenValue(&list), "Sampling apps…");
    list.setRows({{QStringLiteral("firefox"), QStringLiteral("4.2 GB"), 1},
                  {QStringLiteral("code"), QStringLiteral("1.0 GB"), 0.25}});
    EXPECT_EQ(list.sizeHint(), before);
    EXPECT_EQ(list.accessibleName(), "Resident memory by app group");
    EXPECT_EQ(spokenValue(&list), "firefox 4.2 GB, code 1.0 GB");
    list.setRows(std::vector<BarRow>(9));
    EXPECT_EQ(list.rows().size(), 4U);
}

TEST(BarList, FillsEachBarToItsShare) {
    BarList list(QStringLiteral("Bars"), 4, QStringLiteral("0"));
    list.setTint(QColor(Qt::magenta));
    list.resize(600, 96);
    list.setRows({{QStringLiteral("a"), QStringLiteral("1"), 1},
                  {QStringLiteral("b"), QStringLiteral("1"), 0.5},
                  {QStringLiteral("c"), QStringLiteral("1"), nan},
                  {QStringLiteral("d"), QStringLiteral("1"), 7}});
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
    BarList list(QStringLiteral("Bars"), 2, QStringLiteral("0"));
    const std::vector<BarRow> rows{{QStringLiteral("a"), QStringLiteral("1"), 0.5}};
    list.setRows(rows);
    PaintCount paints(list);
    list.setRows(rows);
    EXPECT_EQ(paints.take(), 0);
    list.setRows({{QStringLiteral("a"), QStringLiteral("2"), 0.5}});
    EXPECT_EQ(paints.take(), 1);
    list.setRows({{QStringLiteral("a"), QStringLiteral("2"), 0.50001}});
    EXPECT_EQ(paints.take(), 0) << "less than a pixel";
    list.setRows({{QStringLiteral("a"), QStringLiteral("2"), 0.9}});
    EXPECT_EQ(paints.take(), 1);
    list.setRows({{QStringLiteral("b"), QStringLiteral("2"), 0.9}});
    EXPECT_EQ(paints.take(), 1);
}

TEST(BarList, LooksAfterChangesAsIfItWereNew) {
    const auto sized = [](BarList& list) { list.resize(600, 96); };
    BarList changed(QStringLiteral("Bars"), 4, QStringLiteral("000"));
    sized(changed);
    const std::vector<std::vector<BarRow>> steps{
        {{QStringLiteral("a"), QStringLiteral("1"), 1},
         {QStringLiteral("b"), QStringLiteral("2"), 0.5}},
        {{QStringLiteral("a"), QStringLiteral("1"), 1},
         {QStringLiteral("b"), QStringLiteral("3"), 0.7}},
        {{QStringLiteral("c"), QStringLiteral("1"), 1}},
        {{QStringLiteral("c"), QStringLiteral("1"), 1},
         {QStringLiteral("d"), QStringLiteral("9"), 0.1}},
    };
    for (const std::vector<BarRow>& rows : steps) {
        changed.setRows(rows);
        BarList fresh(QStringLiteral("Bars"), 4, QStringLiteral("000"));
        sized(fresh);
        fresh.setRows(rows);
        EXPECT_EQ(changed.grab().toImage(), fresh.grab().toImage());
    }
}

}  // namespace
}  // namespace tallowcrest

#include "presentation/widgets/graph_raster.h"

#include <gmock/gmock.h>

#include "presentation/widgets/theme.h"

namespace tallowcrest {
namespace {

constexpr QRgb white = 0xffffffff;
constexpr QRgb black = 0xff000000;

QImage whiteImage(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

/// The amount of black in a column, in pixels.
double inkIn(const QImage& image, int x) {
    double ink = 0;
    for (int y = 0; y < image.height(); ++y) {
        ink += (255 - qRed(image.pixel(x, y))) / 255.0;
    }
    return ink;
}

TEST(DrawGraphColumns, FillsWholePixelsOfALineOnThePixelGrid) {
    QImage image = whiteImage(3, 10);
    drawGraphColumns(image, graphColumns({{0, 5}, {3, 5}}, 2), {0, 0}, black);
    for (int y = 0; y < 10; ++y) {
        EXPECT_EQ(image.pixel(1, y), y == 4 || y == 5 ? black : white) << y;
    }
}

TEST(DrawGraphColumns, AntialiasesALineBetweenPixels) {
    QImage image = whiteImage(3, 10);
    drawGraphColumns(image, graphColumns({{0, 5.25}, {3, 5.25}}, 2), {0, 0}, black);
    EXPECT_NEAR(qRed(image.pixel(1, 4)), 64, 2);
    EXPECT_EQ(image.pixel(1, 5), black);
    EXPECT_NEAR(qRed(image.pixel(1, 6)), 191, 2);
}

TEST(DrawGraphColumns, KeepsTheThicknessOfASlopingLine) {
    for (const double rise : {0.2, 1.0, 3.0, 12.0}) {
        QImage image = whiteImage(20, 300);
        drawGraphColumns(image, graphColumns({{0, 20}, {20, 20 + 20 * rise}}, 2), {0, 0}, black);
        EXPECT_NEAR(inkIn(image, 10), 2 * std::sqrt(1 + rise * rise), 0.15) << rise;
    }
}

TEST(DrawGraphColumns, DrawsNothingAboveAPeak) {
    QImage image = whiteImage(4, 100);
    drawGraphColumns(image, graphColumns({{0, 90}, {2, 20}, {4, 90}}, 2), {0, 0}, black);
    for (int y = 0; y < 19; ++y) {
        for (int x = 0; x < 4; ++x) {
            EXPECT_EQ(image.pixel(x, y), white) << x << " " << y;
        }
    }
    EXPECT_LT(qRed(image.pixel(1, 21)), 128);
}

TEST(DrawGraphColumns, DrawsNothingBeyondTheThicknessOfABend) {
    QImage image = whiteImage(12, 100);
    drawGraphColumns(image, graphColumns({{0, 20}, {3.5, 80}, {12, 96}}, 2), {0, 0}, black);
    for (int x = 0; x < 5; ++x) {
        // One column after the bend, the slope reaches 83.
        for (int y = 86; y < 100; ++y) {
            EXPECT_EQ(image.pixel(x, y), white) << x << " " << y;
        }
    }
}

TEST(DrawGraphColumns, ClipsToTheImage) {
    const auto columns = graphColumns({{0, -40}, {10, 60}, {20, 5}}, 2);
    QImage whole = whiteImage(20, 12);
    drawGraphColumns(whole, columns, {0, 0}, black);
    QImage part = whiteImage(7, 12);
    drawGraphColumns(part, columns, {-9, 0}, black);
    EXPECT_EQ(part, whole.copy(9, 0, 7, 12));
    QImage beside = whiteImage(7, 12);
    drawGraphColumns(beside, columns, {-30, 0}, black);
    drawGraphColumns(beside, columns, {8, 0}, black);
    drawGraphColumns(beside, columns, {0, 500}, black);
    drawGraphColumns(beside, columns, {0, -500}, black);
    EXPECT_EQ(beside, whiteImage(7, 12));
}

TEST(LayBelowGraphColumns, FillsFromTheLineDownToTheBottom) {
    QImage image = whiteImage(6, 10);
    layBelowGraphColumns(image, graphColumns({{0, 4}, {3, 4}}, 2), {1, 1}, 8, black, 1);
    for (int y = 0; y < 10; ++y) {
        EXPECT_EQ(image.pixel(2, y), y >= 5 && y < 8 ? black : white) << y;
        EXPECT_EQ(image.pixel(0, y), white);
        EXPECT_EQ(image.pixel(4, y), white);
    }
}

TEST(LayBelowGraphColumns, StaysWithinTheImage) {
    QImage image = whiteImage(2, 4);
    layBelowGraphColumns(image, graphColumns({{0, -9}, {9, -9}}, 2), {-3, 0}, 50, black, 1);
    QImage filled = whiteImage(2, 4);
    filled.fill(Qt::black);
    EXPECT_EQ(image, filled);
}

TEST(LayBelowGraphColumns, BlendsWithTheImage) {
    QImage image(40, 30, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            // Some rows of one colour, and some in which each pixel differs.
            image.setPixel(x, y, y % 3 == 0 ? qRgb(x * 6, 255 - x * 6, y * 8) : qRgb(y * 8, 9, 90));
        }
    }
    const QImage before = image;
    const QColor over(200, 100, 0);
    const auto columns = graphColumns({{0, 3}, {17, 20}, {37, 6}}, 2);
    layBelowGraphColumns(image, columns, {2, 1}, 28, over.rgb(), 0.1);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const bool isCovered =
                x >= 2 && x < 39 && y < 28 &&
                y >= static_cast<int>(columns[static_cast<std::size_t>(x - 2)].middle) + 1;
            const QColor was = before.pixelColor(x, y);
            EXPECT_EQ(image.pixelColor(x, y), isCovered ? mixedColor(was, over, 0.1) : was)
                << x << " " << y;
        }
    }
}

TEST(SharpRule, IsOnWholePixelsAtAnyScale) {
    EXPECT_EQ(sharpRule({1, 50}, {101, 50}, 1), QRect(1, 50, 100, 1));
    EXPECT_EQ(sharpRule({1, 50.4}, {101, 50.4}, 1), QRect(1, 50, 100, 1));
    EXPECT_EQ(sharpRule({1.25, 62.5}, {126.25, 62.5}, 1.25), QRect(1, 62, 125, 1));
    EXPECT_EQ(sharpRule({2, 100}, {202, 100}, 2), QRect(2, 99, 200, 2));
    EXPECT_EQ(sharpRule({2, 100}, {202, 100}, 3), QRect(2, 99, 200, 3));
    EXPECT_EQ(sharpRule({30, 1}, {30, 61}, 1), QRect(30, 1, 1, 60));
    EXPECT_EQ(sharpRule({30, 1}, {30, 61}, 2), QRect(29, 1, 2, 60));
    EXPECT_EQ(sharpRule({30, 1}, {30, 61}, 0.4), QRect(30, 1, 1, 60));
}

TEST(LayGraphRule, BlendsExactlyItsRectangle) {
    QImage image = whiteImage(12, 8);
    layGraphRule(image, {QRect(1, 2, 6, 2), 0, black, 0.5}, {2, 1});
    const QRgb grey = mixedColor(Qt::white, Qt::black, 0.5).rgb();
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 12; ++x) {
            EXPECT_EQ(image.pixel(x, y), QRect(3, 3, 6, 2).contains(x, y) ? grey : white)
                << x << " " << y;
        }
    }
}

TEST(LayGraphRule, LeavesGapsAsLongAsItsDashes) {
    QImage level = whiteImage(12, 3);
    layGraphRule(level, {QRect(1, 1, 10, 1), 2, black, 1}, {0, 0});
    QImage upright = whiteImage(3, 12);
    layGraphRule(upright, {QRect(1, 1, 1, 10), 2, black, 1}, {0, 0});
    for (int i = 0; i < 12; ++i) {
        const bool isDash = i == 1 || i == 2 || i == 5 || i == 6 || i == 9 || i == 10;
        EXPECT_EQ(level.pixel(i, 1), isDash ? black : white) << i;
        EXPECT_EQ(upright.pixel(1, i), isDash ? black : white) << i;
        EXPECT_EQ(level.pixel(i, 0), white);
        EXPECT_EQ(upright.pixel(2, i), white);
    }
}

TEST(LayGraphRule, ContinuesItsDashesAcrossPartsOfAnImage) {
    const GraphRule rule{QRect(-30, 2, 90, 1), 4, black, 1};
    QImage whole = whiteImage(20, 5);
    layGraphRule(whole, rule, {0, 0});
    QImage part = whiteImage(7, 5);
    layGraphRule(part, rule, {-9, 0});
    EXPECT_EQ(part, whole.copy(9, 0, 7, 5));
    QImage beside = whiteImage(7, 5);
    layGraphRule(beside, rule, {-60, 0});
    layGraphRule(beside, rule, {0, 3});
    EXPECT_EQ(beside, whiteImage(7, 5));
}

}  // namespace
}  // namespace tallowcrest

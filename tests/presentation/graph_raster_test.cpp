#include "presentation/graph_raster.h"

#include <gmock/gmock.h>

namespace tallowcrest {
namespace {

constexpr QRgb white = 0xffffffff;
constexpr QRgb black = 0xff000000;

QImage whiteImage(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

/// How much black stands in a column, in pixels.
double inkIn(const QImage& image, int x) {
    double ink = 0;
    for (int y = 0; y < image.height(); ++y) {
        ink += (255 - qRed(image.pixel(x, y))) / 255.0;
    }
    return ink;
}

TEST(DrawGraphColumns, CoversWholePixelsOfALineBetweenThem) {
    QImage image = whiteImage(3, 10);
    drawGraphColumns(image, graphColumns({{0, 5}, {3, 5}}, 2), {0, 0}, black);
    for (int y = 0; y < 10; ++y) {
        EXPECT_EQ(image.pixel(1, y), y == 4 || y == 5 ? black : white) << y;
    }
}

TEST(DrawGraphColumns, SharesOutALineAcrossPixels) {
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

TEST(DrawGraphColumns, DrawsAPeakNoHigherThanItIs) {
    QImage image = whiteImage(4, 100);
    drawGraphColumns(image, graphColumns({{0, 90}, {2, 20}, {4, 90}}, 2), {0, 0}, black);
    for (int y = 0; y < 19; ++y) {
        for (int x = 0; x < 4; ++x) {
            EXPECT_EQ(image.pixel(x, y), white) << x << " " << y;
        }
    }
    EXPECT_LT(qRed(image.pixel(1, 21)), 128);
}

TEST(DrawGraphColumns, LetsABendStandOutNoFartherThanItsThickness) {
    QImage image = whiteImage(12, 100);
    drawGraphColumns(image, graphColumns({{0, 20}, {3.5, 80}, {12, 96}}, 2), {0, 0}, black);
    for (int x = 0; x < 5; ++x) {
        // The slope behind the bend reaches 83 one column farther on.
        for (int y = 86; y < 100; ++y) {
            EXPECT_EQ(image.pixel(x, y), white) << x << " " << y;
        }
    }
}

TEST(DrawGraphColumns, LeavesOutWhatLiesOutsideTheImage) {
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

TEST(FillBelowGraphColumns, FillsFromTheLineToTheRowAbove) {
    QImage image = whiteImage(6, 10);
    fillBelowGraphColumns(image, graphColumns({{0, 4}, {3, 4}}, 2), {1, 1}, 8, black);
    for (int y = 0; y < 10; ++y) {
        EXPECT_EQ(image.pixel(2, y), y >= 5 && y < 8 ? black : white) << y;
        EXPECT_EQ(image.pixel(0, y), white);
        EXPECT_EQ(image.pixel(4, y), white);
    }
}

TEST(FillBelowGraphColumns, StaysWithinTheImage) {
    QImage image = whiteImage(2, 4);
    fillBelowGraphColumns(image, graphColumns({{0, -9}, {9, -9}}, 2), {-3, 0}, 50, black);
    QImage filled = whiteImage(2, 4);
    filled.fill(Qt::black);
    EXPECT_EQ(image, filled);
}

}  // namespace
}  // namespace tallowcrest

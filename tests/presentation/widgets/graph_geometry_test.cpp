#include "presentation/widgets/graph_geometry.h"

#include <cmath>
#include <string>
#include <utility>

#include <gmock/gmock.h>

#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(SafeGraphValue, ClampsToPercentages) {
    for (const auto& [given, safe] : {std::pair{42.5, 42.5},
                                      {0.0, 0.0},
                                      {100.0, 100.0},
                                      {140.0, 100.0},
                                      {-3.0, 0.0},
                                      {nan, 0.0},
                                      {infinity, 0.0},
                                      {-infinity, 0.0}}) {
        EXPECT_EQ(safeGraphValue(given), safe) << given;
    }
}

TEST(GraphLine, SpreadsClampedValuesOverTheWholeWidth) {
    EXPECT_THAT(graphLine({0, 50, 100}, 200, 80),
                ElementsAre(GraphPoint{0, 80}, GraphPoint{100, 40}, GraphPoint{200, 0}));
    EXPECT_THAT(
        graphLine({140, -5, nan, infinity}, 30, 80),
        ElementsAre(GraphPoint{0, 0}, GraphPoint{10, 80}, GraphPoint{20, 80}, GraphPoint{30, 80}));
    EXPECT_THAT(graphLine({25}, 200, 80), ElementsAre(GraphPoint{0, 60})) << "at the left edge";
    EXPECT_THAT(graphLine({}, 200, 80), IsEmpty());
}

TEST(GraphLine, OmitsMissingValuesAndKeepsThePlacesOfTheOthers) {
    EXPECT_THAT(graphLine({0, 50, 0, 100, 0}, 200, 80, {0, 2, 4}),
                ElementsAre(GraphPoint{50, 40}, GraphPoint{150, 0}));
    EXPECT_THAT(graphLine({0, 0}, 200, 80, {0, 1}), IsEmpty());
}

TEST(LoneGraphPoints, HaveNoMeasuredValueBesideThem) {
    EXPECT_THAT(loneGraphPoints(5, {}), IsEmpty());
    EXPECT_THAT(loneGraphPoints(1, {}), ElementsAre(0));
    EXPECT_THAT(loneGraphPoints(0, {}), IsEmpty());
    EXPECT_THAT(loneGraphPoints(7, {1, 4, 5}), ElementsAre(0, 6));
    EXPECT_THAT(loneGraphPoints(3, {0, 2}), ElementsAre(1));
    EXPECT_THAT(loneGraphPoints(2, {0, 1}), IsEmpty());
}

TEST(OpenGraphGaps, RemoveWhatLiesBetweenValuesThatAreNoNeighbours) {
    const auto drawn = [](std::size_t count, const std::vector<std::size_t>& missing) {
        constexpr double width = 12;
        const std::vector<double> values(count, 50.0);
        auto columns = graphColumns(graphLine(values, width, 80, missing), 2);
        openGraphGaps(columns, count, width, missing);
        dashGraphColumns(columns, 2, 3, 1);
        std::string picture;
        for (const GraphColumn& column : columns) {
            picture += column.half > 0 ? '#' : ' ';
        }
        return picture;
    };
    EXPECT_EQ(drawn(5, {}), "### ### ### ");
    EXPECT_EQ(drawn(7, {3}), "###     ### ") << "a part begins with a dash";
    EXPECT_EQ(drawn(7, {2, 3, 4}), "##        ##");
    EXPECT_EQ(drawn(7, {0, 3, 6}), "  ##    ##") << "nor before the first and after the last";
    EXPECT_EQ(drawn(3, {1}), std::string(12, ' '));
    EXPECT_EQ(drawn(25, {9}), "###  ### ###");
    EXPECT_EQ(drawn(25, {8}), "### ### ### ") << "only whole pixels";
    EXPECT_EQ(drawn(2, {0, 1}), "");
}

TEST(GraphColumns, AreEqualForALevelLine) {
    const GraphColumn column{.middle = 5, .half = 1, .softness = 1, .top = 4, .bottom = 6};
    EXPECT_THAT(graphColumns({{0, 5}, {3, 5}}, 2), ElementsAre(column, column, column));
}

TEST(GraphColumns, AreTallerAndSofterForASteepLine) {
    const auto columns = graphColumns({{0, 30}, {10, 0}}, 2);
    ASSERT_EQ(columns.size(), 10U);
    EXPECT_FLOAT_EQ(columns[4].middle, 16.5F);
    EXPECT_FLOAT_EQ(columns[4].half, std::sqrt(10.0F));
    EXPECT_FLOAT_EQ(columns[4].softness, 3);
}

TEST(GraphColumns, EndHalfAThicknessBeyondTheNearbyLine) {
    const auto columns = graphColumns({{0, 80}, {2, 10}, {4, 80}, {8, 84}}, 2);
    ASSERT_EQ(columns.size(), 8U);
    EXPECT_FLOAT_EQ(columns[1].top, 9) << "the peak";
    EXPECT_FLOAT_EQ(columns[2].top, 9);
    EXPECT_FLOAT_EQ(columns[3].bottom, 82) << "the bend, and one pixel of the slope behind it";
    EXPECT_FLOAT_EQ(columns[4].top, 44) << "one pixel of the slope before it";
    EXPECT_FLOAT_EQ(columns[6].top, 80);
}

TEST(GraphColumns, IncludeEveryPointAndAllowALineThatEndsWithinAColumn) {
    auto columns = graphColumns({{0, 50}, {0.25, 10}, {0.5, 90}, {1, 50}, {2, 50}}, 2);
    ASSERT_EQ(columns.size(), 2U);
    EXPECT_FLOAT_EQ(columns[0].middle, 50);
    EXPECT_FLOAT_EQ(columns[0].softness, 80);
    EXPECT_FLOAT_EQ(columns[1].softness, 1);
    columns = graphColumns({{0, 0}, {1.5, 15}}, 2);
    ASSERT_EQ(columns.size(), 2U);
    EXPECT_FLOAT_EQ(columns[1].middle, 12.5F);
}

TEST(GraphColumns, AreEmptyForFewerThanTwoPoints) {
    EXPECT_THAT(graphColumns({}, 2), IsEmpty());
    EXPECT_THAT(graphColumns({{0, 5}}, 2), IsEmpty());
    EXPECT_THAT(graphColumns({{0, 5}, {0, 9}}, 2), IsEmpty()) << "no width, no column";
}

TEST(DashGraphColumns, LeaveGapsAlongTheLine) {
    const auto drawn = [](const std::vector<GraphPoint>& line, double gap = 2) {
        std::vector<GraphColumn> columns = graphColumns(line, 2);
        dashGraphColumns(columns, 2, 3, gap);
        std::string picture;
        for (const GraphColumn& column : columns) {
            picture += column.half > 0 ? '#' : ' ';
        }
        return picture;
    };
    EXPECT_EQ(drawn({{0, 5}, {12, 5}}), "###  ###  ##");
    EXPECT_EQ(drawn({{0, 0}, {4, 3}, {8, 0}}), "### ### ") << "along the slope";
    EXPECT_EQ(drawn({{0, 5}, {3, 5}, {4, 90}, {5, 5}, {9, 5}}).substr(3, 2), "##")
        << "a peak within a gap";
    EXPECT_EQ(drawn({}), "");
    EXPECT_EQ(drawn({{4, 9}, {8, 5}, {10, 5}}, 0), "    ######") << "before the first point";
    EXPECT_EQ(drawn({{2, 5}, {9, 5}}), "  ###  ##");
}

TEST(NearestGraphPoint, IsTheOneWhoseXIsNearest) {
    EXPECT_EQ(nearestGraphPoint(26, 5, 200), 1U);
    EXPECT_EQ(nearestGraphPoint(24, 5, 200), 0U);
    EXPECT_EQ(nearestGraphPoint(-10, 5, 200), 0U);
    EXPECT_EQ(nearestGraphPoint(210, 5, 200), 4U);
    EXPECT_EQ(nearestGraphPoint(150, 1, 200), 0U);
    EXPECT_EQ(nearestGraphPoint(150, 0, 200), std::nullopt);
    EXPECT_EQ(graphX(1, 5, 200), 50);
    EXPECT_EQ(graphX(0, 1, 200), 0);
    EXPECT_EQ(graphGapX(1, 5, 200), 25);
}

TEST(GraphLabelPlaces, StayOnTheCanvasAndApart) {
    EXPECT_THAT(graphLabelPlaces({2, 50, 99}, {20, 20, 20}, 100, 4), ElementsAre(0, 40, 80));
    EXPECT_THAT(graphLabelPlaces({30, 53, 76}, {20, 20, 20}, 100, 4),
                ElementsAre(20, std::nullopt, 66))
        << "the later one has precedence";
    EXPECT_THAT(graphLabelPlaces({50}, {120}, 100, 4), ElementsAre(std::nullopt));
    EXPECT_THAT(graphLabelPlaces({}, {}, 100, 4), IsEmpty());
}

TEST(GraphRules, LieOnTheCanvas) {
    EXPECT_THAT(graphGrid(80), ElementsAre(0, 20, 40, 60, 80));
    EXPECT_THAT(graphEvents({0, 0.25, nan, 1, infinity, -0.1, 1.1}, 200), ElementsAre(0, 50, 200));
    EXPECT_EQ(graphThreshold(75, 80), 20);
    EXPECT_EQ(graphThreshold(0, 80), 80);
    EXPECT_EQ(graphThreshold(std::nullopt, 80), std::nullopt);
    EXPECT_EQ(graphThreshold(nan, 80), std::nullopt);
}

TEST(GraphSeriesText, NamesTheLastValueRounded) {
    EXPECT_EQ(graphSeriesText("CPU", {10, 41.5}), "CPU 42 percent");
    EXPECT_EQ(graphSeriesText("Memory", {60.4}), "Memory 60 percent");
    EXPECT_EQ(graphSeriesText("Memory", {50, nan}), "Memory 0 percent");
    EXPECT_EQ(graphSeriesText("Memory", {140}), "Memory 100 percent");
    EXPECT_EQ(graphSeriesText("Memory", {}), std::nullopt);
    EXPECT_EQ(graphSeriesText("Air", {40, 50, 0}, {0}), "Air 0 percent");
    EXPECT_EQ(graphSeriesText("Air", {40, 50, 0, 0}, {0, 2, 3}),
              "Air not measured last, before 50 percent");
    EXPECT_EQ(graphSeriesText("Air", {0, 0}, {0, 1}), std::nullopt);
}

}  // namespace
}  // namespace tallowcrest

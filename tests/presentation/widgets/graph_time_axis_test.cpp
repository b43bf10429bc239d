#include "presentation/widgets/graph_time_axis.h"

#include <set>

#include <gmock/gmock.h>

#include "presentation/widgets/graph_ticks.h"
#include "tests/presentation/widgets/graph_formats.h"
#include "tests/support/numbers.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::vector<double> every(double step, int count, double first = 0) {
    std::vector<double> seconds;
    for (int i = 0; i < count; ++i) {
        seconds.push_back(first + step * i);
    }
    return seconds;
}

TEST(GraphTicks, AreTheFirstPointsOfTheirPeriod) {
    EXPECT_EQ(graphTicks({7, 11, 15, 19, 23}, 6), (GraphTicks{{1, 4}, true}));
    EXPECT_EQ(graphTicks(every(4, 45), 6), (GraphTicks{{8, 15, 23, 30, 38}, true}))
        << "half minutes";
    EXPECT_EQ(graphTicks(every(4, 90), 6), (GraphTicks{{15, 30, 45, 60, 75}, false})) << "minutes";
    EXPECT_EQ(graphTicks(every(4, 180), 3), (GraphTicks{{75, 150}, false})) << "five minutes";
    EXPECT_EQ(graphTicks({60, 64, 9000, 9004}, 3), (GraphTicks{{2}, true})) << "a gap";
}

TEST(GraphTicks, KeepTheirPointsWhileNewerOnesArrive) {
    for (const std::size_t most : {1U, 2U, 3U, 4U, 5U, 6U}) {
        std::set<double> before;
        for (int i = 0; i < 100; ++i) {
            const std::vector<double> seconds = every(4, 180, 4 * i);
            std::set<double> now;
            for (const std::size_t point : graphTicks(seconds, most).points) {
                now.insert(seconds[point]);
            }
            for (const double each : before) {
                EXPECT_TRUE(now.contains(each) || each <= seconds.front()) << most << ' ' << each;
            }
            before = now;
        }
    }
}

TEST(GraphTicks, AreAboutAsManyAsAskedFor) {
    for (const double step : {1.0, 4.0, 45.0, 7'000.0, 1e6}) {
        for (const std::size_t most : {1U, 3U, 6U}) {
            EXPECT_LE(graphTicks(every(step, 180), most).points.size(), most + 1) << step;
        }
    }
    EXPECT_THAT(graphTicks(every(1e6, 5), 2).points, ElementsAre(3, 4)) << "the newest";
    EXPECT_THAT(graphTicks(every(1e6, 5), 0).points, IsEmpty());
}

TEST(GraphTicks, TolerateAnyTimes) {
    EXPECT_THAT(graphTicks({}, 6).points, IsEmpty());
    EXPECT_THAT(graphTicks({5}, 6).points, IsEmpty());
    EXPECT_THAT(graphTicks({0, nan, infinity, 4}, 6).points, ElementsAre(3));
    EXPECT_THAT(graphTicks({100, 0, 4}, 6).points, ElementsAre(1)) << "the clock was set back";
}

TEST(GraphTimeLabels, LieBelowTheirPointsAsFarAsThereIsRoom) {
    const auto labels = graphTimeLabels(every(4, 180), 800, plainGraphFormats().times);
    ASSERT_THAT(labels, SizeIs(5));
    EXPECT_EQ(labels[0].text, u"2m"_s);
    EXPECT_EQ(labels[4].text, u"10m"_s);
    for (const GraphTimeLabel& label : labels) {
        EXPECT_DOUBLE_EQ(label.x, 800 * label.seconds / 716);
        EXPECT_DOUBLE_EQ(label.left + label.width / 2, label.x);
    }
    EXPECT_THAT(graphTimeLabels(every(4, 180), 60, plainGraphFormats().times), SizeIs(1));
    EXPECT_THAT(graphTimeLabels({}, 800, plainGraphFormats().times), IsEmpty());
}

TEST(GraphTimeLabels, AreFormattedOnce) {
    int formatted = 0;
    const GraphTimeFormats counting{
        [&formatted](double, double) { return QString::number(++formatted); }, {}};
    const auto before = graphTimeLabels(every(4, 180, 8), 800, counting);
    EXPECT_EQ(formatted, 6);
    const auto after = graphTimeLabels(every(4, 180, 12), 800, counting, before);
    EXPECT_EQ(formatted, 6);
    ASSERT_EQ(after.size(), before.size());
    EXPECT_EQ(after[1].text, before[1].text);
    EXPECT_LT(after[1].left, before[1].left) << "one point further left";
}

}  // namespace
}  // namespace tallowcrest

#include "core/history_encoder.h"

#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

#include "core/record_json.h"
#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

HistoryPoint point(int number) {
    return {UUID::random(), Date{700000000.25 + 4.0 * number}, 12.5 + number, 64.25};
}

std::vector<HistoryPoint> points(int count) {
    std::vector<HistoryPoint> result;
    for (int i = 0; i < count; ++i) {
        result.push_back(point(i));
    }
    return result;
}

void expectSameAsWhole(HistoryEncoder& encoder, const std::vector<HistoryPoint>& history) {
    const auto whole = record_json::encode(history);
    ASSERT_TRUE(whole);
    EXPECT_EQ(encoder.encode(history), whole);
    EXPECT_EQ(record_json::decodeHistory(*whole), history);
}

TEST(HistoryEncoderTest, EncodesAGrowingAndThenSlidingList) {
    HistoryEncoder encoder;
    std::vector<HistoryPoint> history;
    expectSameAsWhole(encoder, history);
    for (int i = 0; i < 12; ++i) {
        history.push_back(point(i));
        if (history.size() > 5) {
            history.erase(history.begin());
        }
        expectSameAsWhole(encoder, history);
    }
}

TEST(HistoryEncoderTest, EncodesAListThatTheFirstSampleTrimmed) {
    HistoryEncoder encoder;
    std::vector<HistoryPoint> history = points(500);
    expectSameAsWhole(encoder, history);
    history.push_back(point(500));
    history.erase(history.begin(), history.end() - 180);
    expectSameAsWhole(encoder, history);
}

TEST(HistoryEncoderTest, EncodesTheSameListAgain) {
    HistoryEncoder encoder;
    const std::vector<HistoryPoint> history = points(3);
    expectSameAsWhole(encoder, history);
    expectSameAsWhole(encoder, history);
}

TEST(HistoryEncoderTest, EncodesAListThatDoesNotContinueThePreviousOne) {
    const std::vector<HistoryPoint> start = points(4);
    std::vector<HistoryPoint> lastGone = start;
    lastGone.pop_back();
    std::vector<HistoryPoint> middleChanged = start;
    middleChanged[2].cpu += 1.0;
    std::vector<HistoryPoint> firstChanged = start;
    firstChanged[0].memory += 1.0;
    for (const auto& next :
         {lastGone, middleChanged, firstChanged, points(4), std::vector<HistoryPoint>{}}) {
        HistoryEncoder encoder;
        expectSameAsWhole(encoder, start);
        expectSameAsWhole(encoder, next);
        expectSameAsWhole(encoder, start);
    }
}

TEST(HistoryEncoderTest, EncodesEqualPoints) {
    HistoryEncoder encoder;
    std::vector<HistoryPoint> history(3, point(0));
    expectSameAsWhole(encoder, history);
    history.push_back(history.front());
    expectSameAsWhole(encoder, history);
    history.push_back(point(1));
    history.erase(history.begin());
    expectSameAsWhole(encoder, history);
}

TEST(HistoryEncoderTest, RejectsAListWhileItHasAPointWithoutAJSONForm) {
    HistoryEncoder encoder;
    std::vector<HistoryPoint> history = points(3);
    expectSameAsWhole(encoder, history);
    history.push_back(point(3));
    history.back().cpu = nan;
    EXPECT_FALSE(encoder.encode(history));
    history.push_back(point(4));
    EXPECT_FALSE(encoder.encode(history));
    history.erase(history.begin(), history.begin() + 4);
    expectSameAsWhole(encoder, history);
}

}  // namespace
}  // namespace tallowcrest

#include "presentation/widgets/reserved_rows.h"

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

/// A `ReservedRows` with one call for each sample, the samples 4 seconds apart.
class SampledRows {
public:
    void sample(int needed) {
        rows_.setNeeded(needed, now_);
        now_ += 4.0;
    }
    int count() const { return rows_.count(); }

private:
    ReservedRows rows_;
    double now_ = 0;
};

TEST(ReservedRows, GrowsAtOnceAndShrinksAfterAMinute) {
    SampledRows rows;
    EXPECT_EQ(rows.count(), 0);
    rows.sample(4);
    EXPECT_EQ(rows.count(), 4);
    for (int sample = 1; sample < ReservedRows::samplesUntilShrink; ++sample) {
        rows.sample(1);
        EXPECT_EQ(rows.count(), 4) << sample;
    }
    rows.sample(1);
    EXPECT_EQ(rows.count(), 1);
}

TEST(ReservedRows, ShrinksToTheMostNeededInThatMinute) {
    SampledRows rows;
    rows.sample(4);
    rows.sample(2);
    for (int sample = 1; sample < ReservedRows::samplesUntilShrink; ++sample) {
        rows.sample(0);
    }
    EXPECT_EQ(rows.count(), 2);
}

TEST(ReservedRows, ARowThatReturnsRestartsTheMinute) {
    SampledRows rows;
    rows.sample(3);
    constexpr int period = ReservedRows::samplesUntilShrink;
    for (int sample = 0; sample < 3 * period; ++sample) {
        rows.sample(sample % period == period - 2 ? 3 : 0);
        EXPECT_EQ(rows.count(), 3) << sample;
    }
}

TEST(ReservedRows, CountsEachSampleOnce) {
    ReservedRows rows;
    rows.setNeeded(4, 0.0);
    for (int asked = 0; asked < 3 * ReservedRows::samplesUntilShrink; ++asked) {
        rows.setNeeded(1, 4.0);
    }
    EXPECT_EQ(rows.count(), 4);
}

}  // namespace
}  // namespace tallowcrest

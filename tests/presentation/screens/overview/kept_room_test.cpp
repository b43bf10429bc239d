#include "presentation/screens/overview/kept_room.h"

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

/// A room that is asked once for each of a row of samples, from the first instant on.
class SampledRoom {
public:
    void sample(int needed) {
        room_.setNeeded(needed, now_);
        now_.secondsSinceReference += 4.0;
    }
    int rows() const { return room_.rows(); }

private:
    KeptRoom room_;
    Date now_;
};

TEST(KeptRoom, IsMadeAtOnceAndGivenBackAfterAMinuteOfCalm) {
    SampledRoom room;
    EXPECT_EQ(room.rows(), 0);
    room.sample(4);
    EXPECT_EQ(room.rows(), 4);
    for (int sample = 1; sample < KeptRoom::patience; ++sample) {
        room.sample(1);
        EXPECT_EQ(room.rows(), 4) << sample;
    }
    room.sample(1);
    EXPECT_EQ(room.rows(), 1);
}

TEST(KeptRoom, KeepsWhatWasNeededInTheMeantime) {
    SampledRoom room;
    room.sample(4);
    room.sample(2);
    for (int sample = 1; sample < KeptRoom::patience; ++sample) {
        room.sample(0);
    }
    EXPECT_EQ(room.rows(), 2);
}

TEST(KeptRoom, ARowThatComesBackBeginsTheMinuteAnew) {
    SampledRoom room;
    room.sample(3);
    for (int sample = 0; sample < 3 * KeptRoom::patience; ++sample) {
        room.sample(sample % KeptRoom::patience == KeptRoom::patience - 2 ? 3 : 0);
        EXPECT_EQ(room.rows(), 3) << sample;
    }
}

TEST(KeptRoom, CountsEachSampleOnce) {
    KeptRoom room;
    room.setNeeded(4, {});
    for (int asked = 0; asked < 3 * KeptRoom::patience; ++asked) {
        room.setNeeded(1, {4.0});
    }
    EXPECT_EQ(room.rows(), 4);
}

}  // namespace
}  // namespace tallowcrest

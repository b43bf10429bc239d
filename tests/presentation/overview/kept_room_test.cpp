#include "presentation/overview/kept_room.h"

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

TEST(KeptRoom, IsMadeAtOnceAndGivenBackAfterAMinuteOfCalm) {
    KeptRoom room;
    EXPECT_EQ(room.rows(), 0);
    room.setNeeded(4);
    EXPECT_EQ(room.rows(), 4);
    for (int sample = 1; sample < KeptRoom::patience; ++sample) {
        room.setNeeded(1);
        EXPECT_EQ(room.rows(), 4) << sample;
    }
    room.setNeeded(1);
    EXPECT_EQ(room.rows(), 1);
}

TEST(KeptRoom, KeepsWhatWasNeededInTheMeantime) {
    KeptRoom room;
    room.setNeeded(4);
    room.setNeeded(2);
    for (int sample = 1; sample < KeptRoom::patience; ++sample) {
        room.setNeeded(0);
    }
    EXPECT_EQ(room.rows(), 2);
}

TEST(KeptRoom, ARowThatComesBackBeginsTheMinuteAnew) {
    KeptRoom room;
    room.setNeeded(3);
    for (int sample = 0; sample < 3 * KeptRoom::patience; ++sample) {
        room.setNeeded(sample % KeptRoom::patience == KeptRoom::patience - 2 ? 3 : 0);
        EXPECT_EQ(room.rows(), 3) << sample;
    }
}

}  // namespace
}  // namespace tallowcrest

#include "presentation/overview/disk_space.h"

#include <limits>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

TEST(DiskSpace, IsToldInWordsAndAsAShare) {
    const auto texts = diskSpaceTexts({200.0, 50.0});
    ASSERT_TRUE(texts.has_value());
    EXPECT_EQ(texts->free, QStringLiteral("50.0 GB free"));
    EXPECT_EQ(texts->used, QStringLiteral("75% used"));
    EXPECT_EQ(texts->fraction, 0.75);
}

TEST(DiskSpace, AFullVolumeIsNotAnUnknownOne) {
    const auto texts = diskSpaceTexts({200.0, 0.0});
    ASSERT_TRUE(texts.has_value());
    EXPECT_EQ(texts->free, QStringLiteral("0.0 GB free"));
    EXPECT_EQ(texts->used, QStringLiteral("100% used"));
}

TEST(DiskSpace, AVolumeOfUnknownSizeTellsNothing) {
    EXPECT_EQ(diskSpaceTexts({}), std::nullopt);
    EXPECT_EQ(diskSpaceTexts({std::numeric_limits<double>::quiet_NaN(), 5.0}), std::nullopt);
}

TEST(DiskSpace, TheShareStaysWithinItsBounds) {
    EXPECT_EQ(diskSpaceTexts({100.0, 150.0})->fraction, 0.0);
    EXPECT_EQ(diskSpaceTexts({100.0, -1.0})->fraction, 1.0);
}

}  // namespace
}  // namespace tallowcrest

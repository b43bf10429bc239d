#include "presentation/screens/overview/disk_space.h"

#include <limits>

#include <QLocale>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

TEST(DiskSpace, IsToldInWordsAndAsAShare) {
    const auto texts = diskSpaceTexts({200.0, 50.0});
    ASSERT_TRUE(texts.has_value());
    EXPECT_EQ(texts->free, u"50.0 GB free"_s);
    EXPECT_EQ(texts->used, u"75% used"_s);
    EXPECT_EQ(texts->fraction, 0.75);
}

TEST(DiskSpace, AFullVolumeIsNotAnUnknownOne) {
    const auto texts = diskSpaceTexts({200.0, 0.0});
    ASSERT_TRUE(texts.has_value());
    EXPECT_EQ(texts->free, u"0.0 GB free"_s);
    EXPECT_EQ(texts->used, u"100% used"_s);
}

TEST(DiskSpace, AVolumeOfUnknownSizeTellsNothing) {
    EXPECT_EQ(diskSpaceTexts({}), std::nullopt);
    EXPECT_EQ(diskSpaceTexts({std::numeric_limits<double>::quiet_NaN(), 5.0}), std::nullopt);
}

TEST(DiskSpace, TheShareStaysWithinItsBounds) {
    EXPECT_EQ(diskSpaceTexts({100.0, 150.0})->fraction, 0.0);
    EXPECT_EQ(diskSpaceTexts({100.0, -1.0})->fraction, 1.0);
}

TEST(DiskSpace, IsLowAtOrUnderTheOwnersMinimum) {
    Settings settings;
    settings.diskMinimumFreeGB = 20.0;
    EXPECT_FALSE(isSpaceLow({200.0, 20.1}, settings));
    EXPECT_TRUE(isSpaceLow({200.0, 20.0}, settings));
    EXPECT_TRUE(isSpaceLow({200.0, 0.0}, settings));
    EXPECT_FALSE(isSpaceLow({}, settings)) << "what could not be read is not low";
    const double noNumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(isSpaceLow({200.0, noNumber}, settings));
    settings.diskMinimumFreeGB = noNumber;
    EXPECT_FALSE(isSpaceLow({200.0, 0.0}, settings));
}

TEST(DiskSpace, TheRuleIsTheOwners) {
    QLocale::setDefault(QLocale::c());
    Settings settings;
    EXPECT_EQ(diskRule(settings, "~/.cache"),
              u"Only regular files older than 30 days inside ~/.cache are eligible. Each "
              "run is capped at 2.0 GB and moves files to Trash. Automatic runs also "
              "require low free space, Autopilot mode, and established disk-cleanup "
              "trust."_s);
    settings.diskCleanupAgeDays = 7.0;
    settings.diskMaxCleanupGB = 0.5;
    EXPECT_TRUE(diskRule(settings, "~/Library/Caches")
                    .startsWith(u"Only regular files older than 7 days inside "
                                "~/Library/Caches are eligible. Each run is capped at "
                                "0.5 GB "_s));
}

}  // namespace
}  // namespace tallowcrest

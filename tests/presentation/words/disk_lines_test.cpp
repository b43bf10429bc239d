#include "presentation/words/disk_lines.h"

#include <gmock/gmock.h>

#include "tests/support/numbers.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

TEST(DiskSpace, HasTextsAndAClampedFraction) {
    struct Case {
        DiskSnapshot disk;
        const char* free;
        const char* used;
        double fraction;
    };
    for (const Case& each : {Case{{200.0, 50.0}, "50.0 GB free", "75% used", 0.75},
                             Case{{200.0, 0.0}, "0.0 GB free", "100% used", 1.0}}) {
        const auto texts = diskSpaceTexts(each.disk);
        ASSERT_TRUE(texts.has_value());
        EXPECT_EQ(texts->free.toStdString(), each.free);
        EXPECT_EQ(texts->used.toStdString(), each.used);
        EXPECT_EQ(texts->fraction, each.fraction);
    }
    EXPECT_EQ(diskSpaceTexts({100.0, 150.0})->fraction, 0.0);
    EXPECT_EQ(diskSpaceTexts({100.0, -1.0})->fraction, 1.0);
    EXPECT_EQ(diskSpaceTexts({}), std::nullopt) << "of unknown size";
    EXPECT_EQ(diskSpaceTexts({nan, 5.0}), std::nullopt);
}

TEST(DiskSpace, IsLowAtOrBelowTheMinimum) {
    Settings settings;
    settings.diskMinimumFreeGB = 20.0;
    EXPECT_FALSE(isSpaceLow({200.0, 20.1}, settings));
    EXPECT_TRUE(isSpaceLow({200.0, 20.0}, settings));
    EXPECT_TRUE(isSpaceLow({200.0, 0.0}, settings));
    EXPECT_FALSE(isSpaceLow({}, settings)) << "an unknown size is not low";
    EXPECT_FALSE(isSpaceLow({200.0, nan}, settings));
    settings.diskMinimumFreeGB = nan;
    EXPECT_FALSE(isSpaceLow({200.0, 0.0}, settings));
}

TEST(DiskSpace, TheRuleNamesTheSettings) {
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

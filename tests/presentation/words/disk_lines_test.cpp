#include "presentation/words/disk_lines.h"

#include <gmock/gmock.h>

#include "core/activity_kinds.h"
#include "disk/disk_autopilot.h"
#include "disk/file_walks.h"
#include "disk/storage_scan.h"
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

TEST(DiskTrustLine, IsUnlockedByRunsAndTrust) {
    EXPECT_EQ(diskTrustLine({}), u"Learning 0 of 3 runs · 0% of 75% trust"_s);
    EXPECT_EQ(diskTrustLine({7, 60}), u"Learning 3 of 3 runs · 60% of 75% trust"_s);
    EXPECT_EQ(diskTrustLine({2, 100}), u"Learning 2 of 3 runs · 100% of 75% trust"_s);
    EXPECT_EQ(diskTrustLine({3, 75}), u"Autonomy unlocked"_s);
}

TEST(DiskProgressLines, SayHowFarTheWorkIs) {
    EXPECT_EQ(searchLine(u"Analyzing"_s, {5, 2, ""}), u"Analyzing · 5 files in 2 folders"_s);
    EXPECT_EQ(searchLine(u"Analyzing"_s, {1, 1, "/a\tb"}),
              u"Analyzing · 1 file in 1 folder · /a\uFFFDb"_s);
    EXPECT_EQ(cleanupLine({1, 2, 1, 1048576}), u"Moving to Trash · 1 of 2 files · 1 MB"_s);
    EXPECT_EQ(cleanupLine({1, 1, 1, 1048576}), u"Moving to Trash · 1 of 1 file · 1 MB"_s);
    EXPECT_EQ(storageScanLine({0, 19}), u"Measuring · 0 of 19 areas"_s);
    EXPECT_EQ(storageScanLine({3, 19, "Documents", 12}),
              u"Measuring · 3 of 19 areas · Documents, 12 s"_s);
}

TEST(UndoLine, SaysWhetherAndHowMuch) {
    DiskAutopilotState state;
    EXPECT_FALSE(undoLine(state).isPossible);
    EXPECT_TRUE(undoLine(state).words.startsWith(u"Nothing is left to undo"_s));
    state.undoableFiles = 31;
    EXPECT_EQ(undoLine(state),
              (UndoLine{u"31 files of the latest cleanup can be put back while they are in "
                        "Trash. Their space is free once the Trash is emptied."_s,
                        true}));
    state.undoableFiles = 1;
    EXPECT_EQ(undoLine(state),
              (UndoLine{u"1 file of the latest cleanup can be put back while it is in Trash. Its "
                        "space is free once the Trash is emptied."_s,
                        true}));
    state.cleanup.emplace();
    EXPECT_EQ(undoLine(state),
              (UndoLine{u"A cleanup is under way. It can be undone when it is over."_s, false}));
    state.cleanup.reset();
    state.undoableFiles = 0;
    state.undo.emplace();
    EXPECT_EQ(undoLine(state), (UndoLine{u"Files are being put back."_s, false}));
}

TEST(LatestReceipt, IsTheNewestOfACleanup) {
    const auto event = [](ActivityKind kind, const char* detail) {
        return ActivityEvent{{}, {}, std::string(title(kind)), detail};
    };
    EXPECT_EQ(latestReceipt({}), nullptr);
    EXPECT_EQ(latestReceipt({event(ActivityKind::backupReceipt, "a")}), nullptr);
    const std::vector<ActivityEvent> events{event(ActivityKind::diskAutopilot, "a"),
                                            event(ActivityKind::diskAutopilotReceipt, "b"),
                                            event(ActivityKind::diskCleanupReceipt, "c")};
    EXPECT_EQ(latestReceipt(events), &events[1]);
}

TEST(StorageLines, HaveTheirShareOfTheLargest) {
    EXPECT_TRUE(storageLines({}).empty());
    const auto lines =
        storageLines({{"Other / inaccessible odd data", "/", 4096, "What no\nfolder holds."},
                      {"Mail", "/home/owner/mail", 1024},
                      {"Empty", "/e", 0},
                      {"Wrong", "/w", -5}});
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[0].percent, 100);
    EXPECT_EQ(lines[1].percent, 25);
    EXPECT_EQ(lines[2].percent, 0);
    EXPECT_EQ(lines[3].percent, 0);
    EXPECT_EQ(lines[0].explanation, u"What no\uFFFDfolder holds."_s);
    EXPECT_EQ(lines[1].explanation, u"/home/owner/mail"_s);
}

TEST(StorageLines, TheNoteNamesTheRemainder) {
    EXPECT_EQ(remainderNote("Other / inaccessible APFS data", "APFS volumes"),
              u"“Other / inaccessible APFS data” includes unreadable folders, APFS volumes, "
              "snapshots, purgeable space, and categories not measured separately. Grant Full Disk "
              "Access to Tallowcrest for a more complete breakdown."_s);
    EXPECT_TRUE(remainderNote("Other / inaccessible odd\ndata", "a")
                    .startsWith(u"“Other / inaccessible odd\uFFFDdata” includes"_s));
}

TEST(PlanFiles, AreSafeBoundedAndOneOnALine) {
    EXPECT_EQ(planFiles({}), QString());
    DiskCleanupPlan plan;
    plan.urls = {{"/c/a\nb", {}, 1048576}, {"/c/" + std::string(4000, 'x') + "end", {}, 1048576}};
    plan.bytes = 2 * 1048576;
    const QString files = planFiles(plan);
    EXPECT_EQ(files.count(u'\n'), 1);
    EXPECT_TRUE(files.startsWith(u"1 MB · /c/a\uFFFDb\n1 MB · /c/xxx"_s));
    EXPECT_TRUE(files.endsWith(u"xend"_s));
    EXPECT_LT(files.size(), 300);
    EXPECT_EQ(planSummary(plan), u"2 Files · 2 MB"_s);
    plan.urls.resize(1);
    EXPECT_EQ(planSummary(plan), u"1 File · 2 MB"_s);
}

}  // namespace
}  // namespace tallowcrest

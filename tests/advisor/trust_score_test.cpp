#include "advisor/trust_score.h"

#include <cstdint>

#include <gtest/gtest.h>

#include "advisor/action_catalogue.h"

namespace tallowcrest {
namespace {

AITrustRecord recordWith(std::int64_t approved, std::int64_t run, std::int64_t blocked) {
    return {"select_top", approved, run, blocked, {}};
}

TEST(TrustScore, HasALabelAndALine) {
    struct Case {
        AITrustRecord record;
        const char* label;
        const char* line;
    };
    for (const Case& c : {
             Case{recordWith(0, 0, 0), "New", "20% trust · 0 approved · 0 run · 0 blocked"},
             Case{recordWith(3, 0, 0), "New", "44% trust · 3 approved · 0 run · 0 blocked"},
             Case{recordWith(0, 3, 1), "New", "42% trust · 0 approved · 3 run · 1 blocked"},
             Case{recordWith(2, 1, 0), "Learning", "50% trust · 2 approved · 1 run · 0 blocked"},
             Case{recordWith(4, 1, 1), "Learning", "46% trust · 4 approved · 1 run · 1 blocked"},
             Case{recordWith(3, 2, 0), "Learning", "72% trust · 3 approved · 2 run · 0 blocked"},
             Case{recordWith(2, 3, 0), "Trusted", "78% trust · 2 approved · 3 run · 0 blocked"},
             Case{recordWith(4, 2, 0), "Trusted", "80% trust · 4 approved · 2 run · 0 blocked"},
             Case{recordWith(12, 1, 0), "Trusted", "100% trust · 12 approved · 1 run · 0 blocked"},
             Case{recordWith(0, 0, 2), "New", "0% trust · 0 approved · 0 run · 2 blocked"},
         }) {
        EXPECT_EQ(trustLabel(c.record), c.label) << c.line;
        EXPECT_EQ(trustLine(c.record), c.line);
    }
}

TEST(TrustScore, TheLabelChangesAt45AndAt75) {
    EXPECT_EQ(trustScore(recordWith(0, 0, 1)), 0);
    EXPECT_EQ(trustLabel(recordWith(0, 0, 1)), "New");
    EXPECT_EQ(trustScore(recordWith(5, 1, 0)), 74);
    EXPECT_EQ(trustLabel(recordWith(5, 1, 0)), "Learning");
    EXPECT_EQ(trustScore(recordWith(0, 4, 0)), 76);
    EXPECT_EQ(trustLabel(recordWith(0, 4, 0)), "Trusted");
    EXPECT_EQ(trustScore(recordWith(3, 0, 0)), 44);
    EXPECT_EQ(trustLabel(recordWith(3, 0, 0)), "New");
    EXPECT_EQ(trustScore(recordWith(4, 1, 1)), 46);
    EXPECT_EQ(trustLabel(recordWith(4, 1, 1)), "Learning");
}

TEST(TrustScore, AnUnattendedCleanUpNeedsRunsAndTrust) {
    EXPECT_FALSE(diskCleanupTrustEstablished(0, 0));
    EXPECT_FALSE(diskCleanupTrustEstablished(2, 100));
    EXPECT_FALSE(diskCleanupTrustEstablished(3, 74));
    EXPECT_TRUE(diskCleanupTrustEstablished(3, 75));
    const AITrustRecord blockedOnce = recordWith(0, 3, 1);
    EXPECT_FALSE(diskCleanupTrustEstablished(blockedOnce.runCount, trustPercent(blockedOnce)));
}

TEST(ActionCatalogue, HasTheTextsOfEveryType) {
    struct Case {
        const char* type;
        const char* button;
        const char* title;
        const char* name;
    };
    const char* const review = "Review recommendation";
    for (const Case& c : {
             Case{"select_top", "Select Top", "Select the top app", "Select top app"},
             Case{"local_purge", "Purge", "Purge reclaimable file caches", "Purge caches"},
             Case{"scan_remote", "Scan Remotes", "Scan remote Macs", "Scan remote Macs"},
             Case{"copy_report", "Copy Report", "Copy diagnostics report", "Copy report"},
             Case{"export_diagnostics", "Export", "Export diagnostics", "Export diagnostics"},
             Case{"disk_cleanup", "Run", review, "Disk cache cleanup"},
             Case{"reboot_the_mac", "Run", review, "Reboot The Mac"},
             Case{"QUIT_all2go", "Run", review, "Quit All2go"},
             Case{"_x__y", "Run", review, " X  Y"},
             Case{"\u00E4_b", "Run", review, "\u00E4 B"},
             Case{"", "Run", review, ""},
             Case{"Select_Top", "Run", review, "Select Top"},
         }) {
        EXPECT_EQ(runButtonTitle(c.type), c.button) << c.type;
        EXPECT_EQ(defaultSuggestionTitle(c.type), c.title) << c.type;
        EXPECT_EQ(trustDisplayName(c.type), c.name) << c.type;
    }
}

TEST(ActionCatalogue, OnlyFiveTypesCanRun) {
    struct Case {
        const char* type;
        AdvisorAction action;
        bool runsByItself;
        bool isSafe;
    };
    for (const Case& c :
         {Case{"select_top", AdvisorAction::selectTop, true, true},
          Case{"local_purge", AdvisorAction::localPurge, false, true},
          Case{"scan_remote", AdvisorAction::scanRemote, true, true},
          Case{"copy_report", AdvisorAction::copyReport, true, false},
          Case{"export_diagnostics", AdvisorAction::exportDiagnostics, true, false}}) {
        EXPECT_EQ(advisorAction(c.type), c.action);
        EXPECT_EQ(mayRunByItself(c.action), c.runsByItself) << c.type;
        EXPECT_EQ(isSafeAction(c.action), c.isSafe) << c.type;
    }
    for (const char* type : {"", "none", "disk_cleanup", "Local_Purge", " local_purge", "quit_app",
                             "local_purge\n", "select_top;local_purge"}) {
        EXPECT_EQ(advisorAction(type), std::nullopt) << type;
    }
}

}  // namespace
}  // namespace tallowcrest

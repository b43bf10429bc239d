#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_kinds.h"
#include "tests/support/disk_machine.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// From the plan to the receipt.
class DiskCleanupTest : public ::testing::Test, protected DiskMachine {
protected:
    DiskAutopilot& autopilot() { return disk->autopilot; }

    /// Reviews, so that a question is pending.
    void review() {
        autopilot().reviewDiskCleanup();
        finishWork();
        log.clearActivityLog();
    }

    const std::string& lastDetail() const { return log.activityLog().front().detail; }
};

TEST_F(DiskCleanupTest, AConfirmedCleanUpMovesTheFilesAndLeavesAReceipt) {
    const std::string a = cacheFile("a", gigabyte);
    const std::string b = cacheFile("b", gigabyte / 2);
    review();
    EXPECT_EQ(confirmations.confirmPending(), Outcome::asked());
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{1, 0, 0}));
    EXPECT_FALSE(autopilot().state().diskCleanupPlan);
    EXPECT_EQ(autopilot().state().cleanup, (CleanupProgress{.all = 2}));
    EXPECT_EQ(workQueue.laneOf(0), Lane::diskCleanup);
    finishWork();
    EXPECT_THAT(diskPorts.trash->moved, ElementsAre(a, b));
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{1, 1, 0}));
    EXPECT_EQ(status(), "Last cleanup moved 2 files (1.50 GB) to Trash.");
    ASSERT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_EQ(log.activityLog()[0].kind, ActivityKind::diskCleanupReceipt);
    EXPECT_EQ(log.activityLog()[0].title, "Disk Cleanup Receipt");
    EXPECT_THAT(lastDetail(), HasSubstr("moved 2 old regular cache files (1.50 GB) to Trash."));
    EXPECT_EQ(log.lastAction(), "Moved reviewed old cache files to Trash.");
    EXPECT_EQ(refreshes, 1);
    EXPECT_FALSE(autopilot().state().cleanup);
}

TEST_F(DiskCleanupTest, ConfirmingTwiceRunsOnce) {
    cacheFile("a", 1);
    review();
    confirmations.confirmPending();
    EXPECT_EQ(confirmations.confirmPending(), Outcome::ignored());
    finishWork();
    EXPECT_THAT(diskPorts.trash->requests, SizeIs(1));
}

TEST_F(DiskCleanupTest, ARunThatMovedPartIsASuccess) {
    cacheFile("a", 1);
    const std::string gone = cacheFile("b", 1);
    review();
    diskPorts.files.remove(gone);
    confirmations.confirmPending();
    finishWork();
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{1, 1, 0}));
    EXPECT_THAT(lastDetail(), HasSubstr("Preview: 2 eligible files, capped at 2.0 GB. Result: "
                                        "moved 1 old regular cache files"));
}

TEST_F(DiskCleanupTest, ARunInWhichEveryFileVanishedIsBlocked) {
    cacheFile("a", 1);
    review();
    diskPorts.files.all.clear();
    confirmations.confirmPending();
    finishWork();
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{1, 0, 1}));
    EXPECT_EQ(status(), "Cleanup made no changes; files may have been in use.");
    EXPECT_THAT(events(),
                ElementsAre("Disk Cleanup Receipt: Trigger: user-confirmed review. Preview: 1 "
                            "eligible files, capped at 2.0 GB. Result: no files moved because "
                            "candidates changed or were unavailable. Recovery: none needed.",
                            "Action: Disk cleanup made no changes."));
    EXPECT_EQ(refreshes, 0);
}

TEST_F(DiskCleanupTest, AFullDiskIsToldWithWhatToDo) {
    cacheFile("a", 1);
    cacheFile("b", 1);
    review();
    confirmations.confirmPending();
    diskPorts.trash->moving = [this](const std::string& path) {
        diskPorts.trash->isDiskFull = path.ends_with("/b");
    };
    finishWork();
    EXPECT_EQ(status(), "Last cleanup moved 1 files (0.00 GB) to Trash.");
    EXPECT_THAT(lastDetail(),
                HasSubstr("moved 1 old regular cache files (0.00 GB) to Trash. Disk full: 1 file "
                          "stayed in place because Trash had no room to note where it belongs. "
                          "Make some room, for example by emptying Trash, and review again. "
                          "Scope:"));
    review();
    confirmations.confirmPending();
    finishWork();
    EXPECT_EQ(status(),
              "Cleanup made no changes; the disk is full. Make some room and review again.");
    EXPECT_THAT(log.activityLog().back().detail, HasSubstr("Disk full: 1 file stayed"));
}

TEST_F(DiskCleanupTest, APlanLivesForLessThanHalfAnHour) {
    cacheFile("a", 1);
    review();
    clock.advance(1799s);
    EXPECT_EQ(confirmations.confirmPending(), Outcome::asked());
    finishWork();
    EXPECT_THAT(diskPorts.trash->moved, SizeIs(1));

    cacheFile("b", 1);
    review();
    clock.advance(1800s);
    EXPECT_EQ(confirmations.confirmPending(),
              Outcome::refused("Disk cleanup was blocked because its review plan expired."));
    EXPECT_EQ(status(), "Cleanup plan expired; review again.");
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{2, 1, 1}));
    EXPECT_TRUE(autopilot().state().diskCleanupPlan);
    EXPECT_EQ(workQueue.pendingCount(), 0U);
    EXPECT_EQ(log.lastAction(), "Disk cleanup was blocked because its review plan expired.");
}

TEST_F(DiskCleanupTest, WithoutAPlanItIsExpired) {
    EXPECT_EQ(autopilot().performDiskCleanup(false).kind, Outcome::Kind::refused);
    EXPECT_EQ(status(), "Cleanup plan expired; review again.");
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{0, 0, 1}));
}

TEST_F(DiskCleanupTest, TheEmergencyStopTakesThePlanOfAnOpenQuestion) {
    cacheFile("a", 1);
    review();
    actions.automation.engageEmergencyStop();
    EXPECT_TRUE(confirmations.pendingConfirmation());
    // On the same turn, before any observer was told.
    EXPECT_EQ(confirmations.confirmPending().kind, Outcome::Kind::refused);
    EXPECT_EQ(status(), "Cleanup plan expired; review again.");
    EXPECT_FALSE(autopilot().state().diskCleanupPlan);
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{1, 0, 1}));
    EXPECT_THAT(diskPorts.trash->requests, IsEmpty());
}

TEST_F(DiskCleanupTest, EngagingTheStopAgainTakesALaterPlanToo) {
    cacheFile("a", 1);
    actions.automation.engageEmergencyStop();
    review();
    ASSERT_TRUE(autopilot().state().diskCleanupPlan);
    actions.automation.engageEmergencyStop();
    mainQueue.drain();
    EXPECT_FALSE(autopilot().state().diskCleanupPlan);
}

TEST_F(DiskCleanupTest, TheCapOfTheMomentHolds) {
    cacheFile("a", gigabyte);
    cacheFile("b", gigabyte);
    review();
    settings.set(&Settings::diskMaxCleanupGB, 1.0);
    confirmations.confirmPending();
    finishWork();
    EXPECT_THAT(diskPorts.trash->moved, SizeIs(1));
    EXPECT_THAT(lastDetail(), HasSubstr("Preview: 2 eligible files, capped at 1.0 GB."));
}

TEST_F(DiskCleanupTest, ASecondCleanUpWaitsForTheFirst) {
    cacheFile("a", 1);
    cacheFile("b", 1);
    review();
    confirmations.confirmPending();
    // The move is queued in front of the scan, which is run first.
    autopilot().reviewDiskCleanup();
    workQueue.run(1);
    mainQueue.drain();
    ASSERT_TRUE(confirmations.pendingConfirmation());
    EXPECT_EQ(confirmations.confirmPending().kind, Outcome::Kind::refused);
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{1, 0, 0}));
    finishWork();
    EXPECT_THAT(diskPorts.trash->requests, SizeIs(2));
}

TEST_F(DiskCleanupTest, ASecondOneIsRefusedWhoeverAsksForIt) {
    cacheFile("a", 1);
    cacheFile("b", 1);
    review();
    confirmations.confirmPending();
    autopilot().reviewDiskCleanup();
    workQueue.run(1);
    mainQueue.drain();
    for (const bool automatic : {false, true}) {
        EXPECT_EQ(autopilot().performDiskCleanup(automatic),
                  Outcome::refused("A disk cleanup is under way. Review again when it is over."));
    }
    EXPECT_TRUE(autopilot().state().diskCleanupPlan);
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{1, 0, 0}));
    finishWork();
    EXPECT_THAT(diskPorts.trash->requests, SizeIs(2));
    // Nor while the first one is put back.
    autopilot().undoLatestCleanup();
    EXPECT_EQ(autopilot().performDiskCleanup(false),
              Outcome::refused("Files are being put back. Review again when that is over."));
    finishWork();
    EXPECT_THAT(diskPorts.trash->requests, SizeIs(2));
}

TEST_F(DiskCleanupTest, AfterTheClockWasSetBackNothingIsOldEnough) {
    cacheFile("a", 1);
    clock.advance(-24h * 3650);
    autopilot().reviewDiskCleanup();
    finishWork();
    EXPECT_EQ(status(), "No eligible cache files were found.");
    EXPECT_THAT(diskPorts.trash->requests, IsEmpty());
}

TEST_F(DiskCleanupTest, APlanFromTheFutureIsDead) {
    cacheFile("a", 1);
    review();
    clock.advance(-1799s);
    EXPECT_EQ(autopilot().performDiskCleanup(false), Outcome::asked());
    finishWork();
    cacheFile("b", 1);
    review();
    clock.advance(-1800s);
    EXPECT_EQ(autopilot().performDiskCleanup(false).kind, Outcome::Kind::refused);
    EXPECT_EQ(status(), "Cleanup plan expired; review again.");
}

TEST_F(DiskCleanupTest, ATrustedAutopilotRunsByItself) {
    trustAutopilot();
    cacheFile("a", gigabyte);
    ASSERT_TRUE(autopilot().checkDiskAutopilot(diskOf(5.0), true));
    finishWork();
    EXPECT_THAT(diskPorts.trash->moved, SizeIs(1));
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{2, 4, 0}));
    ASSERT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_EQ(log.activityLog()[0].kind, ActivityKind::diskAutopilotReceipt);
    EXPECT_THAT(lastDetail(), HasSubstr("Trigger: free disk space fell below 20.0 GB. Trust: "
                                        "Autopilot · 78% trust · 3 prior successful runs."));
    EXPECT_EQ(log.lastAction(), "Disk Autopilot completed a trusted reversible cleanup.");
    EXPECT_EQ(refreshes, 1);
}

TEST_F(DiskCleanupTest, ThreeConfirmedRunsOpenTheGate) {
    settings.set(&Settings::diskAutopilotEnabled, true);
    settings.set(&Settings::aiAutonomyMode, AIAutonomyMode::autopilot);
    for (int i = 0; i < 3; ++i) {
        cacheFile("a", 1);
        autopilot().checkDiskAutopilot(diskOf(5.0), true);
        finishWork();
        EXPECT_THAT(diskPorts.trash->moved, SizeIs(i));
        review();
        confirmations.confirmPending();
        finishWork();
    }
    cacheFile("a", 1);
    autopilot().checkDiskAutopilot(diskOf(5.0), true);
    finishWork();
    EXPECT_THAT(diskPorts.trash->moved, SizeIs(4));
}

TEST_F(DiskCleanupTest, AGateThatClosedMeanwhileBlocks) {
    trustAutopilot();
    cacheFile("a", 1);
    autopilot().checkDiskAutopilot(diskOf(5.0), true);
    settings.set(&Settings::diskAutopilotEnabled, false);
    finishWork();
    EXPECT_THAT(diskPorts.trash->requests, IsEmpty());
    EXPECT_EQ(status(), "Automatic cleanup blocked because its safety state changed.");
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{2, 3, 1}));
    EXPECT_FALSE(autopilot().state().diskCleanupPlan);
    EXPECT_THAT(
        events(),
        ElementsAre("Disk Autopilot Receipt: Trigger: low disk space. Result: blocked before "
                    "execution because Autopilot authorization or trust state changed. Affected "
                    "files: none. Recovery: none needed; review settings before re-enabling "
                    "automation.",
                    "Action: Disk Autopilot made no changes because automation was no longer "
                    "authorized."));
}

TEST_F(DiskCleanupTest, WithoutEnoughTrustNothingRunsByItself) {
    struct Row {
        int approved;
        int run;
        int blocked;
        bool runs;
    };
    // 20 + 8 approved + 14 run - 20 blocked.
    for (const Row& row : {Row{2, 3, 0, true}, Row{1, 3, 0, false}, Row{0, 4, 0, true},
                           Row{5, 2, 0, false}, Row{0, 5, 1, false}, Row{0, 0, 0, false}}) {
        DiskMachine machine;
        machine.settings.set(&Settings::diskAutopilotEnabled, true);
        machine.settings.set(&Settings::aiAutonomyMode, AIAutonomyMode::autopilot);
        const auto count = [&](int times, TrustEvent event) {
            for (int i = 0; i < times; ++i) {
                machine.advisor->trust.recordTrustEvent("disk_cleanup", event);
            }
        };
        count(row.approved, TrustEvent::approved);
        count(row.run, TrustEvent::run);
        count(row.blocked, TrustEvent::blocked);
        machine.cacheFile("a", 1);
        machine.disk->autopilot.checkDiskAutopilot(machine.diskOf(1.0), true);
        machine.finishWork();
        EXPECT_EQ(machine.diskPorts.trash->moved.size(), row.runs ? 1U : 0U)
            << row.approved << ' ' << row.run << ' ' << row.blocked;
    }
}

}  // namespace
}  // namespace tallowcrest

#include "disk/disk_autopilot.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/observable.h"
#include "tests/support/disk_machine.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The review and the check because of low space, up to the plan.
class DiskAutopilotTest : public ::testing::Test, protected DiskMachine {
protected:
    DiskAutopilot& autopilot() { return disk->autopilot; }
    const DiskAutopilotState& state() { return autopilot().state(); }

    bool check(double freeGB, bool mayScan = true) {
        return autopilot().checkDiskAutopilot(diskOf(freeGB), mayScan);
    }
};

TEST_F(DiskAutopilotTest, AReviewAsksWithTheCountTheSizeAndTheCap) {
    cacheFile("a", gigabyte / 2);
    cacheFile("b", gigabyte / 4);
    settings.set(&Settings::diskMaxCleanupGB, 1.5);
    EXPECT_EQ(autopilot().reviewDiskCleanup(), Outcome::asked());
    EXPECT_EQ(status(), "Scanning old user cache files…");
    EXPECT_TRUE(state().scan);
    EXPECT_EQ(workQueue.laneOf(0), Lane::diskCleanup);
    finishWork();
    EXPECT_FALSE(state().scan);
    EXPECT_EQ(status(), "Ready: 2 files · 0.75 GB");
    ASSERT_TRUE(confirmations.pendingConfirmation());
    EXPECT_EQ(confirmations.pendingConfirmation()->message,
              "Tallowcrest found 2 regular files older than 30 days in ~/.cache (0.75 GB). Items "
              "are moved to Trash and the run is capped at 1.5 GB.");
    EXPECT_THAT(diskPorts.trash->requests, IsEmpty());
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{0, 0, 0}));
}

TEST_F(DiskAutopilotTest, AReviewWithoutCandidatesSaysSo) {
    cacheFile("young", 5, 3.0);
    autopilot().reviewDiskCleanup();
    finishWork();
    EXPECT_EQ(status(), "No eligible cache files were found.");
    EXPECT_EQ(log.lastAction(), "Disk review found no cache files older than 30 days.");
    EXPECT_THAT(events(),
                ElementsAre("Action: Disk review found no cache files older than 30 days."));
    EXPECT_FALSE(confirmations.pendingConfirmation());
    ASSERT_TRUE(state().diskCleanupPlan);
    EXPECT_THAT(state().diskCleanupPlan->urls, IsEmpty());
}

TEST_F(DiskAutopilotTest, AReviewAsksInEveryMode) {
    for (const AIAutonomyMode mode : allAIAutonomyModes) {
        DiskMachine machine;
        machine.trustAutopilot();
        machine.settings.set(&Settings::aiAutonomyMode, mode);
        machine.cacheFile("a", 1);
        machine.disk->autopilot.reviewDiskCleanup();
        machine.finishWork();
        EXPECT_TRUE(machine.confirmations.pendingConfirmation()) << title(mode);
        EXPECT_THAT(machine.diskPorts.trash->requests, IsEmpty());
        machine.confirmations.confirmPending();
        machine.finishWork();
        EXPECT_EQ(machine.diskPorts.trash->moved.size(), 1U);
    }
}

TEST_F(DiskAutopilotTest, ACapThatIsChangedDuringAScanHoldsForTheRun) {
    cacheFile("a", gigabyte);
    cacheFile("b", gigabyte / 2);
    autopilot().reviewDiskCleanup();
    settings.set(&Settings::diskMaxCleanupGB, 1.0);
    settings.set(&Settings::diskCleanupAgeDays, 90.0);
    finishWork();
    ASSERT_TRUE(confirmations.pendingConfirmation());
    EXPECT_EQ(confirmations.pendingConfirmation()->message,
              "Tallowcrest found 2 regular files older than 30 days in ~/.cache (1.50 GB). Items "
              "are moved to Trash and the run is capped at 1.0 GB.");
    confirmations.confirmPending();
    finishWork();
    EXPECT_THAT(diskPorts.trash->moved, ElementsAre("/home/owner/.cache/a"));
}

TEST_F(DiskAutopilotTest, AReviewWorksWhileTheStopIsEngaged) {
    cacheFile("a", 5);
    actions.automation.engageEmergencyStop();
    autopilot().reviewDiskCleanup();
    finishWork();
    EXPECT_TRUE(confirmations.pendingConfirmation());
    // What was prepared after the stop is not affected by it.
    EXPECT_TRUE(state().diskCleanupPlan);
}

TEST_F(DiskAutopilotTest, ASecondReviewDoesNothing) {
    cacheFile("a", 5);
    autopilot().reviewDiskCleanup();
    EXPECT_EQ(autopilot().reviewDiskCleanup(), Outcome::ignored());
    EXPECT_EQ(workQueue.pendingCount(), 1U);
}

TEST_F(DiskAutopilotTest, ACancelledQuestionCostsTrust) {
    cacheFile("a", 5);
    autopilot().reviewDiskCleanup();
    finishWork();
    confirmations.cancelPending();
    EXPECT_EQ(status(), "Cleanup canceled. No files were changed.");
    EXPECT_FALSE(state().diskCleanupPlan);
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{0, 0, 1}));
    EXPECT_EQ(log.lastAction(), "Canceled: Move old cache files to Trash?.");
}

TEST_F(DiskAutopilotTest, CancellingAnotherQuestionLeavesThePlanAlone) {
    cacheFile("a", 5);
    autopilot().reviewDiskCleanup();
    finishWork();
    confirmations.requestConfirmation({.id = UUID::random(),
                                       .title = "Other?",
                                       .message = {},
                                       .confirmTitle = {},
                                       .kind = "local_purge",
                                       .hostName = {},
                                       .pid = {}});
    confirmations.cancelPending();
    EXPECT_TRUE(state().diskCleanupPlan);
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{0, 0, 0}));
}

TEST_F(DiskAutopilotTest, ACheckDoesNothingWhileSwitchedOff) {
    EXPECT_FALSE(check(1.0));
    EXPECT_EQ(status(), "Disk Autopilot is off.");
    EXPECT_EQ(workQueue.pendingCount(), 0U);
}

TEST_F(DiskAutopilotTest, FreeSpaceAtTheThresholdIsHealthy) {
    settings.set(&Settings::diskAutopilotEnabled, true);
    EXPECT_FALSE(check(20.0));
    EXPECT_EQ(status(), "Healthy: 20.0 GB free.");
    EXPECT_EQ(workQueue.pendingCount(), 0U);
}

TEST_F(DiskAutopilotTest, AHealthyDiskNotifiesOnceForTheSameFigure) {
    settings.set(&Settings::diskAutopilotEnabled, true);
    int told = 0;
    const Subscription subscription = actions.automation.observable().subscribe([&] { ++told; });
    for (int i = 0; i < 5; ++i) {
        check(100.0);
        mainQueue.drain();
    }
    EXPECT_EQ(told, 1);
}

TEST_F(DiskAutopilotTest, ADiskOfUnknownSizeIsNotChecked) {
    settings.set(&Settings::diskAutopilotEnabled, true);
    EXPECT_FALSE(autopilot().checkDiskAutopilot(diskOf(0.0, 0.0), true));
    EXPECT_EQ(workQueue.pendingCount(), 0U);
}

TEST_F(DiskAutopilotTest, ACheckTooSoonLeavesTheStatus) {
    settings.set(&Settings::diskAutopilotEnabled, true);
    check(100.0);
    EXPECT_FALSE(check(5.0, false));
    EXPECT_EQ(status(), "Healthy: 100.0 GB free.");
}

TEST_F(DiskAutopilotTest, LowSpacePreparesAPlanForReview) {
    settings.set(&Settings::diskAutopilotEnabled, true);
    cacheFile("a", gigabyte);
    EXPECT_TRUE(check(19.9));
    EXPECT_EQ(status(), "Low space detected; checking old user caches…");
    finishWork();
    EXPECT_EQ(status(), "Review ready: 1 files · 1.00 GB");
    EXPECT_THAT(events(), ElementsAre("Disk Autopilot: Prepared a reversible cleanup for review. "
                                      "Automatic cleanup stays locked until Autopilot mode and 3 "
                                      "trusted successful runs."));
    EXPECT_FALSE(confirmations.pendingConfirmation());
    EXPECT_TRUE(state().diskCleanupPlan);
    EXPECT_THAT(diskPorts.trash->requests, IsEmpty());
}

TEST_F(DiskAutopilotTest, LowSpaceWithoutCandidatesLeavesAReceipt) {
    settings.set(&Settings::diskAutopilotEnabled, true);
    check(19.9);
    finishWork();
    EXPECT_EQ(status(), "Low space, but no eligible old cache files were found.");
    EXPECT_THAT(events(),
                ElementsAre("Disk Autopilot Receipt: Trigger: free disk space fell below 20.0 GB. "
                            "Preview: no eligible old regular files in ~/.cache. Result: no "
                            "changes. Recovery: none needed."));
    ASSERT_TRUE(state().diskCleanupPlan);
    EXPECT_THAT(state().diskCleanupPlan->urls, IsEmpty());
}

TEST_F(DiskAutopilotTest, AFolderThatTheCachesOverlapWithIsNamed) {
    cacheFile("a", 1);
    DiskPorts ports = diskPorts.ports();
    ports.places.kept = {"/home/owner/.cache/films"};
    beginDisk(ports);
    autopilot().reviewDiskCleanup();
    finishWork();
    EXPECT_EQ(status(), "Nothing to clean: the caches overlap with ~/.cache/films.");
    EXPECT_EQ(log.lastAction(),
              "Disk review looked at no file, because ~/.cache overlaps with ~/.cache/films.");
    EXPECT_FALSE(confirmations.pendingConfirmation());
    trustAutopilot();
    log.clearActivityLog();
    check(19.9);
    finishWork();
    EXPECT_EQ(status(), "Low space, but nothing to clean: the caches overlap with ~/.cache/films.");
    EXPECT_THAT(events(),
                ElementsAre("Disk Autopilot Receipt: Trigger: free disk space fell below 20.0 GB. "
                            "Preview: no file was looked at, because ~/.cache overlaps with "
                            "~/.cache/films. Result: no changes. Recovery: none needed; keep the "
                            "caches apart from that folder."));
    EXPECT_THAT(diskPorts.walk->roots, IsEmpty());
    EXPECT_THAT(diskPorts.trash->requests, IsEmpty());
}

TEST_F(DiskAutopilotTest, OnlyAutopilotModeRunsByItself) {
    for (const AIAutonomyMode mode : allAIAutonomyModes) {
        DiskMachine machine;
        machine.trustAutopilot();
        machine.settings.set(&Settings::aiAutonomyMode, mode);
        machine.cacheFile("a", 1);
        machine.disk->autopilot.checkDiskAutopilot(machine.diskOf(1.0), true);
        machine.finishWork();
        EXPECT_EQ(machine.diskPorts.trash->moved.size(),
                  mode == AIAutonomyMode::autopilot ? 1U : 0U);
    }
}

TEST_F(DiskAutopilotTest, AReviewTakesOverACheckThatIsUnderWay) {
    trustAutopilot();
    cacheFile("a", 1);
    check(1.0);
    EXPECT_EQ(autopilot().reviewDiskCleanup(), Outcome::asked());
    EXPECT_EQ(workQueue.pendingCount(), 1U);
    finishWork();
    EXPECT_TRUE(confirmations.pendingConfirmation());
    EXPECT_THAT(diskPorts.trash->requests, IsEmpty());
}

TEST_F(DiskAutopilotTest, NoCheckReplacesThePlanThatAQuestionIsAbout) {
    settings.set(&Settings::diskAutopilotEnabled, true);
    cacheFile("a", 1);
    autopilot().reviewDiskCleanup();
    EXPECT_FALSE(check(1.0));
    finishWork();
    EXPECT_FALSE(check(1.0));
    confirmations.cancelPending();
    EXPECT_TRUE(check(1.0));
    EXPECT_FALSE(check(1.0));
}

TEST_F(DiskAutopilotTest, TheProgressOfAScanIsShown) {
    cacheFile("deep/a", 1);
    cacheFile("deep/b", 1);
    int visits = 0;
    diskPorts.walk->visited = [&] {
        if (++visits == 1) {
            mainQueue.turn();
            ASSERT_TRUE(state().scan);
            EXPECT_EQ(state().scan->filesSeen, 1);
            EXPECT_EQ(state().scan->folder, "/home/owner/.cache/deep");
        }
    };
    autopilot().reviewDiskCleanup();
    finishWork();
    EXPECT_EQ(visits, 2);
    EXPECT_FALSE(state().scan);
}

TEST_F(DiskAutopilotTest, WithoutPortsNothingIsDone) {
    beginDisk({});
    settings.set(&Settings::diskAutopilotEnabled, true);
    EXPECT_FALSE(check(1.0));
    EXPECT_EQ(autopilot().reviewDiskCleanup(),
              Outcome::refused("Disk cleanup is not available here."));
    EXPECT_EQ(autopilot().stopScan(), Outcome::ignored());
    EXPECT_EQ(autopilot().stopCleanup(), Outcome::ignored());
    EXPECT_EQ(autopilot().stopUndo(), Outcome::ignored());
    EXPECT_EQ(workQueue.pendingCount(), 0U);
}

}  // namespace
}  // namespace tallowcrest

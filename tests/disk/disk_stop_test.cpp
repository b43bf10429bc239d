#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/disk_machine.h"

namespace tallowcrest {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

/// The ends of Disk Autopilot's work before its own end.
class DiskStopTest : public ::testing::Test, protected DiskMachine {
protected:
    DiskAutopilot& autopilot() { return disk->autopilot; }

    /// Three old files, and a question about them.
    void reviewThree() {
        for (const char* name : {"a", "b", "c"}) {
            cacheFile(name, gigabyte / 4);
        }
        autopilot().reviewDiskCleanup();
        finishWork();
    }

    /// Begins an automatic clean-up of three files, whose job waits.
    void beginAutomatic() {
        trustAutopilot();
        for (const char* name : {"a", "b", "c"}) {
            cacheFile(name, gigabyte / 4);
        }
        autopilot().checkDiskAutopilot(diskOf(5.0), true);
        workQueue.run();
        mainQueue.turn();
        ASSERT_TRUE(autopilot().state().cleanup);
    }

    const std::string& lastDetail() const { return log.activityLog().front().detail; }
};

TEST_F(DiskStopTest, AStoppedReviewLeavesNoPlan) {
    cacheFile("a", 1);
    autopilot().reviewDiskCleanup();
    EXPECT_EQ(autopilot().stopScan(), Outcome::asked());
    EXPECT_TRUE(autopilot().state().isScanStopping);
    EXPECT_EQ(autopilot().stopScan(), Outcome::ignored());
    EXPECT_EQ(autopilot().reviewDiskCleanup(), Outcome::ignored());
    finishWork();
    EXPECT_FALSE(autopilot().state().isScanStopping);
    EXPECT_FALSE(autopilot().state().scan);
    EXPECT_FALSE(autopilot().state().diskCleanupPlan);
    EXPECT_FALSE(confirmations.pendingConfirmation());
    EXPECT_EQ(status(), "Review stopped. No files were changed.");
    EXPECT_THAT(events(), ElementsAre("Action: Review stopped. No files were changed."));
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{0, 0, 0}));
    EXPECT_EQ(autopilot().stopScan(), Outcome::ignored());
}

TEST_F(DiskStopTest, AStoppedCheckLeavesAReceipt) {
    trustAutopilot();
    cacheFile("a", 1);
    autopilot().checkDiskAutopilot(diskOf(5.0), true);
    autopilot().stopScan();
    finishWork();
    EXPECT_EQ(status(), "Low-space check stopped. No files were changed.");
    EXPECT_THAT(lastDetail(), HasSubstr("Preview: stopped by the owner. Result: no changes."));
    EXPECT_THAT(diskPorts.trash->requests, IsEmpty());
}

TEST_F(DiskStopTest, AScanThatHangsIsForgotten) {
    cacheFile("a", 1);
    autopilot().reviewDiskCleanup();
    autopilot().stopScan();
    mainQueue.fireTimers();
    mainQueue.drain();
    EXPECT_FALSE(autopilot().state().scan);
    EXPECT_EQ(status(), "Review stopped. No files were changed.");
    EXPECT_THAT(mainQueue.timerIntervals(), IsEmpty());
    // The next one is not disturbed by what comes of the first.
    EXPECT_EQ(autopilot().reviewDiskCleanup(), Outcome::asked());
    finishWork();
    EXPECT_TRUE(confirmations.pendingConfirmation());
    EXPECT_THAT(events(), SizeIs(1));
}

TEST_F(DiskStopTest, ACleanUpWhoseMoveHangsIsGivenUp) {
    reviewThree();
    confirmations.confirmPending();
    diskPorts.trash->moving = [this](const std::string& path) {
        if (path.ends_with("/b")) {
            EXPECT_EQ(autopilot().stopCleanup(), Outcome::asked());
            EXPECT_THAT(mainQueue.timerIntervals(), ElementsAre(std::chrono::seconds(10)));
            mainQueue.fireTimers();
            EXPECT_FALSE(autopilot().state().cleanup);
            EXPECT_FALSE(autopilot().state().isCleanupStopping);
        }
    };
    finishWork();
    EXPECT_THAT(lastDetail(),
                HasSubstr("Result: moved 1 old regular cache files (0.25 GB) to Trash. Stopped: by "
                          "the owner, before the last 2 files. The disk did not answer in time. "
                          "The file at hand may have been moved. Scope:"));
    EXPECT_THAT(diskPorts.trash->requests, SizeIs(2)) << "the last file is not tried any more";
    EXPECT_THAT(mainQueue.timerIntervals(), IsEmpty());
    // What was counted can be put back.
    EXPECT_EQ(autopilot().undoLatestCleanup(), Outcome::asked());
    finishWork();
    EXPECT_EQ(status(), "Put back 1 of 1 file (0.25 GB) from Trash.");
}

TEST_F(DiskStopTest, ACleanUpThatHasEndedWhenItIsGivenUpIsToldAsItEnded) {
    reviewThree();
    confirmations.confirmPending();
    diskPorts.trash->moving = [this](const std::string& path) {
        if (path.ends_with("/c")) {
            autopilot().stopCleanup();
        }
    };
    workQueue.run();
    mainQueue.fireTimers();
    mainQueue.drain();
    EXPECT_FALSE(autopilot().state().cleanup);
    EXPECT_THAT(diskPorts.trash->moved, SizeIs(3));
    EXPECT_THAT(lastDetail(), AllOf(HasSubstr("Result: moved 3 old regular cache files"),
                                    Not(HasSubstr("Stopped")), Not(HasSubstr("did not answer"))));
    EXPECT_EQ(autopilot().state().undoableFiles, 3U);
}

TEST_F(DiskStopTest, ACleanUpThatHangsBeforeItsFirstMoveIsGivenUp) {
    reviewThree();
    confirmations.confirmPending();
    autopilot().stopCleanup();
    mainQueue.fireTimers();
    EXPECT_FALSE(autopilot().state().cleanup);
    EXPECT_EQ(status(), "Cleanup stopped. No files were changed.");
    EXPECT_THAT(log.activityLog().at(1).detail,
                HasSubstr("Stopped: by the owner, before the last 3 files. The disk "
                          "did not answer in time. Recovery: none needed."));
    EXPECT_EQ(autopilot().reviewDiskCleanup(), Outcome::asked());
    finishWork();
    EXPECT_THAT(diskPorts.trash->requests, IsEmpty());
    confirmations.confirmPending();
    finishWork();
    EXPECT_THAT(diskPorts.trash->moved, SizeIs(3));
}

TEST_F(DiskStopTest, AStoppedCleanUpEndsAfterTheFileAtHand) {
    reviewThree();
    confirmations.confirmPending();
    diskPorts.trash->moving = [this](const std::string&) { autopilot().stopCleanup(); };
    finishWork();
    EXPECT_THAT(diskPorts.trash->moved, SizeIs(1));
    EXPECT_EQ(status(), "Last cleanup moved 1 files (0.25 GB) to Trash.");
    EXPECT_THAT(lastDetail(), HasSubstr("Preview: 3 eligible files, capped at 2.0 GB. Result: "
                                        "moved 1 old regular cache files (0.25 GB) to Trash. "
                                        "Stopped: by the owner, before the last 2 files."));
    EXPECT_EQ(log.lastAction(), "Stopped the disk cleanup. What it had moved is in Trash.");
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{1, 1, 0}));
    EXPECT_EQ(refreshes, 1);
    EXPECT_FALSE(autopilot().state().isCleanupStopping);
    EXPECT_FALSE(autopilot().state().cleanup);
}

TEST_F(DiskStopTest, EachStopEndsItsOwnWork) {
    reviewThree();
    confirmations.confirmPending();
    autopilot().reviewDiskCleanup();
    EXPECT_EQ(autopilot().stopUndo(), Outcome::ignored());
    EXPECT_EQ(autopilot().stopScan(), Outcome::asked());
    EXPECT_TRUE(autopilot().state().isScanStopping);
    EXPECT_FALSE(autopilot().state().isCleanupStopping);
    finishWork();
    EXPECT_THAT(diskPorts.trash->moved, SizeIs(3)) << "the clean-up went on";
    EXPECT_FALSE(confirmations.pendingConfirmation()) << "of the search that was stopped";
    cacheFile("d", 1);
    EXPECT_EQ(autopilot().undoLatestCleanup(), Outcome::asked());
    autopilot().reviewDiskCleanup();
    EXPECT_EQ(autopilot().stopCleanup(), Outcome::ignored());
    EXPECT_EQ(autopilot().stopUndo(), Outcome::asked());
    finishWork();
    EXPECT_TRUE(confirmations.pendingConfirmation());
    EXPECT_EQ(autopilot().state().undoableFiles, 3U);
}

TEST_F(DiskStopTest, ACleanUpStoppedBeforeItsFirstFileIsBlocked) {
    reviewThree();
    confirmations.confirmPending();
    autopilot().stopCleanup();
    finishWork();
    EXPECT_THAT(diskPorts.trash->requests, IsEmpty());
    EXPECT_EQ(status(), "Cleanup stopped. No files were changed.");
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{1, 0, 1}));
}

TEST_F(DiskStopTest, TheProgressOfACleanUpIsShown) {
    reviewThree();
    confirmations.confirmPending();
    diskPorts.trash->moving = [this, count = 0U](const std::string&) mutable {
        mainQueue.turn();
        EXPECT_EQ(autopilot().state().cleanup->done, count++);
        EXPECT_EQ(autopilot().state().cleanup->all, 3U);
    };
    finishWork();
    EXPECT_THAT(diskPorts.trash->moved, SizeIs(3));
}

TEST_F(DiskStopTest, AnAutomaticCleanUpUnderWayRunsToItsEndDespiteTheEmergencyStop) {
    beginAutomatic();
    diskPorts.trash->moving = [this](const std::string& path) {
        if (path.ends_with("/b")) {
            actions.automation.engageEmergencyStop();
            mainQueue.turn();
        }
    };
    finishWork();
    EXPECT_THAT(diskPorts.trash->moved, SizeIs(3));
    EXPECT_EQ(status(), "Last cleanup moved 3 files (0.75 GB) to Trash.");
    EXPECT_THAT(lastDetail(), HasSubstr("Result: moved 3 old regular cache files"));
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{2, 4, 0}));
}

TEST_F(DiskStopTest, TheOwnerCanStopAnAutomaticCleanUpAfterTheEmergencyStop) {
    beginAutomatic();
    diskPorts.trash->moving = [this](const std::string& path) {
        if (path.ends_with("/b")) {
            actions.automation.engageEmergencyStop();
            autopilot().stopCleanup();
        }
    };
    finishWork();
    EXPECT_THAT(diskPorts.trash->moved, SizeIs(2));
    EXPECT_THAT(lastDetail(), HasSubstr("Stopped: by the owner, before the last file."));
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{2, 4, 0})) << "it has moved files";
}

TEST_F(DiskStopTest, AConfirmedCleanUpRunsToItsEndDespiteTheEmergencyStop) {
    reviewThree();
    confirmations.confirmPending();
    actions.automation.engageEmergencyStop();
    finishWork();
    EXPECT_THAT(diskPorts.trash->moved, SizeIs(3));
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{1, 1, 0}));
}

/// The end of the program in the middle of a clean-up.
class DiskEndTest : public DiskStopTest {
protected:
    /// Begins a confirmed clean-up of three files.
    void begin() {
        reviewThree();
        confirmations.confirmPending();
        log.clearActivityLog();
    }

    /// Runs the clean-up, and begins to end the program while the file `name` is moved.
    void runAndEndAt(const std::string& name) {
        std::optional<Stop> stop;
        JobScope probe(jobs);
        probe.run(
            Lane::actions, [&stop](const Stop& given) { stop = given; }, [] {});
        workQueue.run(1);
        std::jthread end;
        diskPorts.trash->moving = [&](const std::string& path) {
            if (path.ends_with('/' + name)) {
                end = std::jthread([this] { jobs.stopAll(); });
                // Until all jobs are asked to stop.
                while (stop->beginChange()) {
                    std::this_thread::yield();
                }
            }
        };
        workQueue.run();
    }

    /// The main queue does not turn any more.
    void record() {
        jobs.stopAll();
        autopilot().recordUnfinished();
    }
};

TEST_F(DiskEndTest, ACleanUpThatIsCutShortLeavesItsReceipt) {
    begin();
    runAndEndAt("b");
    record();
    ASSERT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_THAT(lastDetail(), HasSubstr("Result: moved 2 old regular cache files (0.50 GB) to "
                                        "Trash. Stopped: by the end of Tallowcrest, before the "
                                        "last file."));
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{1, 1, 0}));
    // No second one from what waits in the main queue.
    mainQueue.drain();
    EXPECT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_EQ(refreshes, 0);
}

TEST_F(DiskEndTest, ACleanUpThatIsCutShortBeforeItMovedAnythingLeavesItsReceipt) {
    begin();
    diskPorts.files.remove("/home/owner/.cache/a");
    runAndEndAt("a");
    record();
    EXPECT_THAT(lastDetail(), HasSubstr("Result: no files moved because the run was stopped. "
                                        "Stopped: by the end of Tallowcrest, before the last 2 "
                                        "files."));
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{1, 0, 1}));
}

TEST_F(DiskEndTest, ACleanUpThatHasNotBegunLeavesItsReceipt) {
    begin();
    record();
    finishWork();
    EXPECT_THAT(diskPorts.trash->requests, IsEmpty());
    ASSERT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_THAT(lastDetail(), HasSubstr("by the end of Tallowcrest, before the last 3 files."));
}

TEST_F(DiskEndTest, ACleanUpWhoseEndWasNotToldYetLeavesItsReceipt) {
    begin();
    workQueue.run();
    record();
    mainQueue.drain();
    ASSERT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_THAT(lastDetail(), HasSubstr("moved 3 old regular cache files (0.75 GB) to Trash. "
                                        "Scope:"));
}

TEST_F(DiskEndTest, WhatTheOwnerHadStoppedIsToldAsSuch) {
    begin();
    autopilot().stopCleanup();
    record();
    EXPECT_THAT(lastDetail(), HasSubstr("Stopped: by the owner, before the last 3 files."));
}

TEST_F(DiskEndTest, OfAMoveThatHangsItIsToldThatTheFileMayHaveBeenMoved) {
    begin();
    diskPorts.trash->moving = [this](const std::string& path) {
        if (path.ends_with("/b")) {
            EXPECT_FALSE(jobs.stopAll(std::chrono::milliseconds(0)));
            autopilot().recordUnfinished();
        }
    };
    finishWork();
    ASSERT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_THAT(lastDetail(),
                HasSubstr("Result: moved 1 old regular cache files (0.25 GB) to Trash. Stopped: by "
                          "the end of Tallowcrest, before the last 2 files. The disk did not "
                          "answer in time. The file at hand may have been moved. Scope:"));
    EXPECT_THAT(diskPorts.trash->moved, SizeIs(2));
}

TEST_F(DiskEndTest, WithoutACleanUpNothingIsWritten) {
    reviewThree();
    log.clearActivityLog();
    record();
    EXPECT_THAT(log.activityLog(), IsEmpty());
}

}  // namespace
}  // namespace tallowcrest

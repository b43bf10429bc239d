#include "disk/cleanup_undo.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_kinds.h"
#include "tests/support/disk_machine.h"

namespace tallowcrest {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class CleanupUndoTest : public ::testing::Test, protected DiskMachine {
protected:
    DiskAutopilot& autopilot() { return disk->autopilot; }

    void cleanUp() {
        autopilot().reviewDiskCleanup();
        finishWork();
        confirmations.confirmPending();
        finishWork();
        log.clearActivityLog();
        refreshes = 0;
    }

    void undo() {
        EXPECT_EQ(autopilot().undoLatestCleanup(), Outcome::asked());
        finishWork();
    }

    bool isInPlace(const std::string& path) { return diskPorts.files.find(path) != nullptr; }
    const std::string& detail() const { return log.activityLog().at(0).detail; }
};

TEST_F(CleanupUndoTest, PutsBackAllThatTheLatestCleanUpMoved) {
    const std::string a = cacheFile("a", gigabyte);
    const std::string b = cacheFile("b", gigabyte / 2);
    cleanUp();
    EXPECT_EQ(autopilot().state().undoableFiles, 2U);
    EXPECT_EQ(autopilot().undoLatestCleanup(), Outcome::asked());
    EXPECT_EQ(autopilot().state().undo, (CleanupProgress{.all = 2}));
    EXPECT_EQ(autopilot().state().undoableFiles, 0U);
    EXPECT_EQ(autopilot().undoLatestCleanup(), Outcome::ignored());
    finishWork();
    EXPECT_TRUE(isInPlace(a));
    EXPECT_TRUE(isInPlace(b));
    EXPECT_EQ(status(), "Put back all 2 files (1.50 GB) from Trash.");
    EXPECT_EQ(log.lastAction(), status());
    ASSERT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_EQ(log.activityLog()[0].kind, ActivityKind::diskCleanupReceipt);
    EXPECT_EQ(detail(),
              "Trigger: the owner asked to put back the latest cleanup. Result: put back 2 of 2 "
              "files (1.50 GB) from Trash. Recovery: none needed.");
    EXPECT_FALSE(autopilot().state().undo);
    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{1, 1, 0})) << "the owner had asked for it";
}

TEST_F(CleanupUndoTest, WithoutACleanUpThereIsNothingToPutBack) {
    EXPECT_EQ(autopilot().undoLatestCleanup(),
              Outcome::refused("There is no cleanup to put back."));
    cacheFile("a", 1);
    cleanUp();
    undo();
    EXPECT_EQ(autopilot().undoLatestCleanup(),
              Outcome::refused("There is no cleanup to put back."));
}

TEST_F(CleanupUndoTest, TellsWhatWasNotPutBackAndTriesItAgain) {
    const std::string a = cacheFile("a", 1);
    const std::string b = cacheFile("b", 1);
    const std::string c = cacheFile("c", 1);
    cleanUp();
    cacheFile("a", 5);
    std::erase_if(diskPorts.trash->inTrash, [&](const FoundFile& file) { return file.path == b; });
    undo();
    EXPECT_EQ(diskPorts.files.find(a)->bytes, 5) << "is not replaced";
    EXPECT_FALSE(isInPlace(b));
    EXPECT_TRUE(isInPlace(c));
    EXPECT_EQ(status(), "Put back 1 of 3 files (0.00 GB) from Trash.");
    EXPECT_THAT(detail(), HasSubstr("Not put back: File exists (1 file); It is no longer in the "
                                    "Trash (1 file). Recovery: what is still in Trash can be put "
                                    "back there."));
    EXPECT_EQ(autopilot().state().undoableFiles, 1U) << "what is gone is not tried again";
    diskPorts.files.remove(a);
    undo();
    EXPECT_TRUE(isInPlace(a));
    EXPECT_EQ(status(), "Put back 1 of 1 file (0.00 GB) from Trash.");
}

TEST_F(CleanupUndoTest, AnEmptiedTrashIsTold) {
    cacheFile("a", 1);
    cleanUp();
    diskPorts.trash->inTrash.clear();
    undo();
    EXPECT_EQ(status(), "No file could be put back from Trash.");
    EXPECT_EQ(detail(),
              "Trigger: the owner asked to put back the latest cleanup. Result: put back 0 of 1 "
              "file (0.00 GB) from Trash. Not put back: It is no longer in the Trash (1 file). "
              "Recovery: nothing more can be put back here.");
    EXPECT_EQ(autopilot().state().undoableFiles, 0U);
}

TEST_F(CleanupUndoTest, TheReceiptCountsByReasonAndNamesNoFile) {
    for (int i = 0; i < 7; ++i) {
        cacheFile("secret" + std::to_string(i), 1);
    }
    cleanUp();
    cacheFile("secret3", 1);
    std::erase_if(diskPorts.trash->inTrash,
                  [](const FoundFile& file) { return !file.path.ends_with('3'); });
    undo();
    EXPECT_THAT(detail(), HasSubstr("Not put back: File exists (1 file); It is no longer in the "
                                    "Trash (6 files). Recovery:"));
    EXPECT_THAT(detail(), ::testing::Not(HasSubstr("secret")));
}

TEST_F(CleanupUndoTest, AFullDiskIsToldWithWhatToDo) {
    const std::string a = cacheFile("a", 1);
    cleanUp();
    diskPorts.trash->isDiskFull = true;
    undo();
    EXPECT_EQ(status(), "No file could be put back from Trash.");
    EXPECT_EQ(
        detail(),
        "Trigger: the owner asked to put back the latest cleanup. Result: put back 0 of 1 "
        "file (0.00 GB) from Trash. Not put back: The disk is full (1 file). Disk full: make "
        "some room, then undo again. Recovery: what is still in Trash can be put back there.");
    diskPorts.trash->isDiskFull = false;
    undo();
    EXPECT_TRUE(isInPlace(a));
}

TEST_F(CleanupUndoTest, ACheckMeanwhileDoesNotRunAndSaysWhy) {
    trustAutopilot();
    cacheFile("a", 1);
    cleanUp();
    cacheFile("b", 1);
    autopilot().checkDiskAutopilot(diskOf(5.0), true);
    EXPECT_EQ(autopilot().undoLatestCleanup(), Outcome::asked());
    workQueue.run(0);
    mainQueue.drain();
    EXPECT_EQ(status(), "Review ready: 1 files · 0.00 GB");
    EXPECT_EQ(detail(),
              "Prepared a reversible cleanup for review. It did not run by itself because another "
              "cleanup is being moved or put back.");
    finishWork();
    EXPECT_EQ(status(), "Put back 1 of 1 file (0.00 GB) from Trash.");
}

TEST_F(CleanupUndoTest, AStopLeavesTheRestForLater) {
    const std::string a = cacheFile("a", 1);
    const std::string b = cacheFile("b", 1);
    cleanUp();
    diskPorts.trash->puttingBack = [this](const std::string&) {
        EXPECT_EQ(autopilot().stopUndo(), Outcome::asked());
        EXPECT_TRUE(autopilot().state().isUndoStopping);
        diskPorts.trash->puttingBack = {};
    };
    undo();
    EXPECT_TRUE(isInPlace(a));
    EXPECT_FALSE(isInPlace(b));
    EXPECT_FALSE(autopilot().state().isUndoStopping);
    EXPECT_THAT(detail(), HasSubstr("Stopped before the last file."));
    EXPECT_EQ(autopilot().state().undoableFiles, 1U);
    undo();
    EXPECT_TRUE(isInPlace(b));
}

TEST_F(CleanupUndoTest, AnUndoingThatHangsIsGivenUpAndCanBeTriedAgain) {
    const std::string a = cacheFile("a", 1);
    const std::string b = cacheFile("b", 1);
    cleanUp();
    diskPorts.trash->puttingBack = [this](const std::string&) {
        EXPECT_EQ(autopilot().stopUndo(), Outcome::asked());
        EXPECT_THAT(mainQueue.timerIntervals(), ::testing::ElementsAre(std::chrono::seconds(10)));
        mainQueue.fireTimers();
        EXPECT_FALSE(autopilot().state().undo);
        EXPECT_FALSE(autopilot().state().isUndoStopping);
        diskPorts.trash->puttingBack = {};
    };
    undo();
    EXPECT_EQ(status(), "Stopped putting files back. The disk did not answer.");
    EXPECT_THAT(detail(), HasSubstr("Stopped before the last 2 files. The disk did not answer in "
                                    "time. The file at hand may have been put back. Recovery:"));
    EXPECT_EQ(autopilot().state().undoableFiles, 2U);
    undo();
    EXPECT_TRUE(isInPlace(a));
    EXPECT_TRUE(isInPlace(b));
}

TEST_F(CleanupUndoTest, AnUndoingThatHasEndedWhenItIsGivenUpIsToldAsItEnded) {
    cacheFile("a", 1);
    cleanUp();
    cacheFile("a", 5);
    diskPorts.trash->puttingBack = [this](const std::string&) { autopilot().stopUndo(); };
    EXPECT_EQ(autopilot().undoLatestCleanup(), Outcome::asked());
    workQueue.run();
    mainQueue.fireTimers();
    mainQueue.drain();
    EXPECT_EQ(status(), "No file could be put back from Trash.");
    ASSERT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_EQ(detail(),
              "Trigger: the owner asked to put back the latest cleanup. Result: put back 0 of 1 "
              "file (0.00 GB) from Trash. Not put back: File exists (1 file). Recovery: what is "
              "still in Trash can be put back there.");
}

TEST_F(CleanupUndoTest, OnlyTheLatestCleanUpIsPutBack) {
    const std::string a = cacheFile("a", 1);
    cleanUp();
    const std::string b = cacheFile("b", 1);
    cleanUp();
    undo();
    EXPECT_FALSE(isInPlace(a));
    EXPECT_TRUE(isInPlace(b));
}

TEST_F(CleanupUndoTest, ACleanUpAndItsUndoingDoNotOverlap) {
    cacheFile("a", 1);
    cleanUp();
    cacheFile("b", 1);
    autopilot().reviewDiskCleanup();
    finishWork();
    EXPECT_EQ(autopilot().undoLatestCleanup(), Outcome::asked());
    EXPECT_EQ(confirmations.confirmPending().kind, Outcome::refused("").kind);
    finishWork();
    autopilot().reviewDiskCleanup();
    finishWork();
    confirmations.confirmPending();
    EXPECT_EQ(autopilot().undoLatestCleanup(),
              Outcome::refused("A disk cleanup is under way. Put it back when it is over."));
}

TEST_F(CleanupUndoTest, ToUndoWhatHappenedByItselfIsAnObjection) {
    trustAutopilot();
    cacheFile("a", 1);
    autopilot().checkDiskAutopilot(diskOf(1.0), true);
    finishWork();
    const auto before = trustCounts();
    cacheFile("a", 5);
    undo();
    EXPECT_EQ(trustCounts()[2], before[2] + 1);
    undo();
    EXPECT_EQ(trustCounts()[2], before[2] + 1) << "once for each clean-up";
}

TEST_F(CleanupUndoTest, WhatWasPutBackIsMovedAgainOnlyAfterAReview) {
    trustAutopilot();
    const std::string a = cacheFile("a", 1);
    autopilot().checkDiskAutopilot(diskOf(1.0), true);
    finishWork();
    undo();
    // One objection has not ended the trust.
    trustAutopilot();
    const std::string b = cacheFile("b", 1);
    autopilot().checkDiskAutopilot(diskOf(1.0), true);
    finishWork();
    EXPECT_TRUE(isInPlace(a));
    EXPECT_FALSE(isInPlace(b));
    cleanUp();
    EXPECT_FALSE(isInPlace(a));
    // Another file under its name is not the one that was put back.
    cacheFile("a", 1);
    autopilot().checkDiskAutopilot(diskOf(1.0), true);
    finishWork();
    EXPECT_FALSE(isInPlace(a));
}

TEST_F(CleanupUndoTest, AFullPlanThatWasPutBackLeavesRoomForOtherFiles) {
    trustAutopilot();
    for (int i = 0; i <= 500; ++i) {
        cacheFile(fmt::format("{:03}", i), 1);
    }
    cleanUp();
    EXPECT_EQ(autopilot().state().undoableFiles, 500U);
    undo();
    // What was put back comes first in the walk again.
    std::ranges::sort(diskPorts.files.all, {}, &FoundFile::path);
    autopilot().checkDiskAutopilot(diskOf(1.0), true);
    finishWork();
    EXPECT_THAT(diskPorts.files.all, SizeIs(500));
    EXPECT_FALSE(isInPlace("/home/owner/.cache/500"));
}

TEST_F(CleanupUndoTest, AReviewEndsWithItsOwnPlanAfterAnUndoing) {
    for (int i = 0; i < 510; ++i) {
        cacheFile(fmt::format("{:03}", i), 1);
    }
    cleanUp();
    undo();
    std::ranges::sort(diskPorts.files.all, {}, &FoundFile::path);
    int visited = 0;
    diskPorts.walk->visited = [&] { ++visited; };
    autopilot().reviewDiskCleanup();
    finishWork();
    EXPECT_EQ(visited, 499) << "the last one ends the walk";
    EXPECT_THAT(autopilot().state().diskCleanupPlan->urls, SizeIs(500));
}

TEST_F(CleanupUndoTest, WhatIsPutBackDuringACheckIsNotTakenByIt) {
    trustAutopilot();
    const std::string a = cacheFile("a", 1);
    cleanUp();
    const std::string b = cacheFile("b", 1);
    diskPorts.walk->visited = [this] {
        if (autopilot().state().undoableFiles > 0) {
            undo();
        }
    };
    autopilot().checkDiskAutopilot(diskOf(1.0), true);
    finishWork();
    EXPECT_TRUE(isInPlace(a));
    EXPECT_FALSE(isInPlace(b));
    EXPECT_THAT(detail(), HasSubstr("Preview: 1 eligible files"));
}

TEST_F(CleanupUndoTest, OnlyFilesThatWerePutBackArePreparedForReview) {
    for (const bool isTrusted : {true, false}) {
        SCOPED_TRACE(isTrusted);
        if (isTrusted) {
            trustAutopilot();
        } else {
            settings.set(&Settings::aiAutonomyMode, AIAutonomyMode::apprentice);
        }
        const std::string a = cacheFile("a", 1);
        cleanUp();
        undo();
        autopilot().checkDiskAutopilot(diskOf(1.0), true);
        finishWork();
        EXPECT_TRUE(isInPlace(a));
        EXPECT_EQ(status(), "Review ready: 1 files · 0.00 GB");
        EXPECT_EQ(detail(),
                  isTrusted ? "Prepared a reversible cleanup for review. It did not run by itself "
                              "because all of its files were moved before and the owner wanted "
                              "them back."
                            : "Prepared a reversible cleanup for review. Automatic cleanup stays "
                              "locked until Autopilot mode and 3 trusted successful runs.");
    }
}

TEST_F(CleanupUndoTest, AReviewThatTakesOverACheckShowsWhatWasPutBack) {
    trustAutopilot();
    cacheFile("a", 1);
    cleanUp();
    undo();
    autopilot().checkDiskAutopilot(diskOf(1.0), true);
    EXPECT_EQ(autopilot().reviewDiskCleanup(), Outcome::asked());
    finishWork();
    EXPECT_EQ(status(), "Ready: 1 files · 0.00 GB");
    EXPECT_TRUE(confirmations.pendingConfirmation());
}

TEST_F(CleanupUndoTest, TheEndOfTheProgramLeavesAReceipt) {
    cacheFile("a", 1);
    cacheFile("b", 1);
    cleanUp();
    autopilot().undoLatestCleanup();
    diskPorts.trash->puttingBack = [this](const std::string&) { autopilot().stopUndo(); };
    workQueue.run();
    // The result is on its way to a main queue that will not turn any more.
    autopilot().recordUnfinished();
    mainQueue.drain();
    ASSERT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_THAT(detail(), HasSubstr("put back 1 of 2 files"));
}

TEST_F(CleanupUndoTest, TheEndOfTheProgramTellsOfAFileThatTheDiskKeeps) {
    cacheFile("a", 1);
    cleanUp();
    autopilot().undoLatestCleanup();
    diskPorts.trash->puttingBack = [this](const std::string&) {
        EXPECT_FALSE(jobs.stopAll(std::chrono::milliseconds(0)));
        autopilot().recordUnfinished();
    };
    finishWork();
    EXPECT_EQ(status(), "Stopped putting files back. The disk did not answer.");
    ASSERT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_THAT(detail(), HasSubstr("put back 0 of 1 file (0.00 GB) from Trash. Stopped before the "
                                    "last file. The disk did not answer in time. The file at hand "
                                    "may have been put back. Recovery: what is still in Trash"));
}

}  // namespace
}  // namespace tallowcrest

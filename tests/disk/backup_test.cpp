#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_kinds.h"
#include "tests/support/disk_machine.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::SizeIs;

/// Copies of a personal file to a folder that the owner chooses.
class BackupTest : public ::testing::Test, protected DiskMachine {
protected:
    PersonalFiles& files() { return disk->files; }
    const PersonalFilesState& state() { return files().state(); }
    std::vector<std::pair<std::string, std::string>>& copied() { return diskPorts.copy->copied; }

    /// Asks for a folder and chooses `to`.
    void backUpTo(const std::string& to) {
        files().backUpSuggestion(film);
        const auto answer = diskPorts.answer;
        answer(to);
    }

    const StorageOptimizationSuggestion film{
        .title = "film.mov", .path = "/home/owner/Movies/film.mov", .identity = {1, 7}};
};

TEST_F(BackupTest, AFileIsCopiedToTheChosenFolder) {
    EXPECT_EQ(files().backUpSuggestion(film), Outcome::asked());
    EXPECT_THAT(diskPorts.chooserTexts, ElementsAre("Choose a Backup Folder", "Back Up Here"));
    EXPECT_FALSE(state().backup);
    const auto answer = diskPorts.answer;
    answer("/media/disk");
    EXPECT_FALSE(diskPorts.answer);
    EXPECT_EQ(state().storageAnalyzerStatus, "Backing up film.mov…");
    EXPECT_FALSE(state().storageAnalyzerBusy);
    ASSERT_TRUE(state().backup);
    EXPECT_EQ(state().backup->title, "film.mov");
    EXPECT_EQ(workQueue.laneOf(0), Lane::personalFiles);
    finishWork();
    EXPECT_THAT(copied(), ElementsAre(Pair("/home/owner/Movies/film.mov", "/media/disk/film.mov")));
    EXPECT_EQ(state().storageAnalyzerStatus, "Backup complete: film.mov");
    EXPECT_THAT(events(), ElementsAre("Backup Receipt: Copied film.mov to /media/disk/film.mov. "
                                      "The original remains in place."));
    EXPECT_EQ(log.activityLog()[0].kind, ActivityKind::backupReceipt);
    EXPECT_THAT(diskPorts.revealed, ElementsAre("/media/disk/film.mov"));
    EXPECT_FALSE(state().backup);
}

TEST_F(BackupTest, ACancelledQuestionEndsWithoutAWord) {
    for (const std::optional<std::string>& folder :
         {std::optional<std::string>(), std::optional<std::string>("")}) {
        files().backUpSuggestion(film);
        const auto answer = diskPorts.answer;
        answer(folder);
        EXPECT_FALSE(state().backup);
    }
    EXPECT_EQ(workQueue.pendingCount(), 0U);
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_EQ(state().storageAnalyzerStatus, personal_file_texts::atStart);
}

TEST_F(BackupTest, ATakenNameGetsTheTime) {
    const TemporaryFolder folder;
    folder.file("film.mov", "", 0600);
    backUpTo(folder.path().string());
    finishWork();
    ASSERT_THAT(copied(), SizeIs(1));
    EXPECT_EQ(copied()[0].second, folder.path("film-1778307200.mov"));
    EXPECT_EQ(state().storageAnalyzerStatus, "Backup complete: film-1778307200.mov");
}

TEST_F(BackupTest, AFailureIsToldInTheSystemsWords) {
    diskPorts.copy->error = "No space left on device";
    backUpTo("/");
    finishWork();
    EXPECT_EQ(copied().at(0).second, "/film.mov");
    EXPECT_EQ(state().storageAnalyzerStatus, "Backup failed: No space left on device");
    EXPECT_EQ(log.lastAction(), "Could not back up film.mov: No space left on device");
    EXPECT_THAT(events(),
                ElementsAre("Action: Could not back up film.mov: No space left on device"));
    EXPECT_THAT(diskPorts.revealed, IsEmpty());
    EXPECT_FALSE(state().backup);
}

TEST_F(BackupTest, TheProgressTellsBytesAndRate) {
    backUpTo("/media/disk");
    clock.advance(2s);
    diskPorts.copy->copying = [this] {
        mainQueue.turn();
        EXPECT_EQ(state().backup, (BackupProgress{"film.mov", 1000, 2000, 500.0, false}));
    };
    finishWork();
    ASSERT_THAT(copied(), SizeIs(1));
}

TEST_F(BackupTest, TheCheckOfTheCopyIsTold) {
    backUpTo("/media/disk");
    diskPorts.copy->isChecking = true;
    clock.advance(60s);
    diskPorts.copy->copying = [this] {
        mainQueue.turn();
        EXPECT_TRUE(state().backup->isChecking);
        EXPECT_EQ(state().backup->copied, 1000);
        EXPECT_EQ(state().backup->bytesPerSecond, 0.0) << "that of the copy does not count";
        EXPECT_EQ(state().storageAnalyzerStatus, "Checking the copy of film.mov…");
    };
    finishWork();
    EXPECT_EQ(state().storageAnalyzerStatus, "Backup complete: film.mov");
}

TEST_F(BackupTest, AClockThatWasSetBackGivesNoRate) {
    backUpTo("/media/disk");
    clock.advance(-2h);
    diskPorts.copy->copying = [this] {
        mainQueue.turn();
        EXPECT_EQ(state().backup->bytesPerSecond, 0.0);
    };
    finishWork();
    ASSERT_THAT(copied(), SizeIs(1));
}

TEST_F(BackupTest, AStoppedCopyLeavesAReceipt) {
    backUpTo("/media/disk");
    diskPorts.copy->isChecking = true;
    diskPorts.copy->copying = [this] {
        EXPECT_EQ(files().stopBackup(), Outcome::asked());
        EXPECT_EQ(files().stopBackup(), Outcome::ignored());
        EXPECT_TRUE(state().backup->isStopping);
        EXPECT_EQ(state().storageAnalyzerStatus, "Stopping the backup of film.mov…");
        mainQueue.turn();
        EXPECT_TRUE(state().backup->isChecking);
        EXPECT_EQ(state().storageAnalyzerStatus, "Stopping the backup of film.mov…");
    };
    finishWork();
    EXPECT_EQ(state().storageAnalyzerStatus, "Backup of film.mov stopped. No copy was left.");
    EXPECT_THAT(events(),
                ElementsAre("Backup Receipt: Stopped the copy of film.mov before its end. No part "
                            "of it was left. The original remains in place."));
    EXPECT_FALSE(state().backup);
    EXPECT_EQ(files().stopBackup(), Outcome::ignored());
}

TEST_F(BackupTest, ACopyThatHangsIsGivenUpAfterAWhile) {
    backUpTo("/media/disk");
    files().stopBackup();
    EXPECT_THAT(mainQueue.timerIntervals(), ElementsAre(10s));
    mainQueue.fireTimers();
    EXPECT_FALSE(state().backup);
    EXPECT_THAT(mainQueue.timerIntervals(), IsEmpty());
    EXPECT_EQ(state().storageAnalyzerStatus,
              "Backup of film.mov stopped. The disk did not answer.");
    EXPECT_THAT(events(),
                ElementsAre("Backup Receipt: Stopped the copy of film.mov and did not wait for its "
                            "end, because the disk did not answer. A hidden part of it, or "
                            "the whole copy, may be left there. The next backup into that folder "
                            "removes a hidden part. The original remains in place."));
    // The next one is not disturbed by what comes of the first.
    backUpTo("/media/other");
    finishWork();
    EXPECT_EQ(state().storageAnalyzerStatus, "Backup complete: film.mov");
    EXPECT_THAT(events(), SizeIs(2));
    files().recordUnfinished();
    EXPECT_THAT(events(), SizeIs(2));
}

TEST_F(BackupTest, ACopyThatHasEndedWhenItIsGivenUpIsToldAsItEnded) {
    backUpTo("/media/disk");
    workQueue.run();
    files().stopBackup();
    mainQueue.fireTimers();
    mainQueue.drain();
    EXPECT_FALSE(state().backup);
    EXPECT_EQ(state().storageAnalyzerStatus, "Backup complete: film.mov");
    EXPECT_THAT(events(), ElementsAre("Backup Receipt: Copied film.mov to /media/disk/film.mov. "
                                      "The original remains in place."));
    EXPECT_THAT(diskPorts.revealed, ElementsAre("/media/disk/film.mov"));
}

TEST_F(BackupTest, ACopyThatHasStoppedWhenItIsGivenUpIsToldAsStopped) {
    backUpTo("/media/disk");
    files().stopBackup();
    workQueue.run();
    mainQueue.fireTimers();
    mainQueue.drain();
    EXPECT_FALSE(state().backup);
    EXPECT_EQ(state().storageAnalyzerStatus, "Backup of film.mov stopped. No copy was left.");
    EXPECT_THAT(events(), SizeIs(1));
}

TEST_F(BackupTest, TheReviewedFileIsCopied) {
    backUpTo("/media/disk");
    finishWork();
    EXPECT_EQ(diskPorts.copy->identity, film.identity);
}

TEST_F(BackupTest, TheEndOfTheProgramStopsACopyAndDoesNotWaitForItsEnd) {
    backUpTo("/media/disk");
    bool hasEnded = false;
    diskPorts.copy->copying = [&] {
        jobs.stopAll();
        hasEnded = true;
    };
    finishWork();
    EXPECT_TRUE(hasEnded) << "in the middle of the copy";
    EXPECT_EQ(state().storageAnalyzerStatus, "Backup failed: Operation canceled");
}

TEST_F(BackupTest, ACopyThatGotItsNameAtTheEndOfTheProgramLeavesItsReceipt) {
    backUpTo("/media/disk");
    diskPorts.copy->copying = [this] {
        files().recordUnfinished();
        EXPECT_THAT(events(), IsEmpty()) << "it may yet fail";
    };
    workQueue.run();
    files().recordUnfinished();
    EXPECT_THAT(events(), ElementsAre("Backup Receipt: Copied film.mov to /media/disk/film.mov. "
                                      "The original remains in place."));
    mainQueue.drain();
    files().recordUnfinished();
    EXPECT_THAT(events(), SizeIs(1)) << "it is told once";
    EXPECT_THAT(diskPorts.revealed, IsEmpty());
}

TEST_F(BackupTest, WithoutAFileManagerTheCopyIsNotShown) {
    DiskPorts ports = diskPorts.ports();
    ports.desktop.reveal = {};
    beginDisk(ports);
    backUpTo("/media/disk");
    finishWork();
    EXPECT_EQ(state().storageAnalyzerStatus, "Backup complete: film.mov");
}

TEST_F(BackupTest, OneCopyAtATimeBesideAnAnalysis) {
    backUpTo("/media/disk");
    EXPECT_EQ(files().backUpSuggestion(film), Outcome::refused("Another backup is under way."));
    EXPECT_EQ(files().analyzePersonalFiles(), Outcome::asked());
    finishWork();
    EXPECT_THAT(copied(), SizeIs(1));
    EXPECT_THAT(diskPorts.largestFiles->requests, SizeIs(1));
}

TEST_F(BackupTest, TheEndOfTheComponentClosesTheQuestion) {
    files().backUpSuggestion(film);
    disk.reset();
    EXPECT_FALSE(diskPorts.answer);
}

}  // namespace
}  // namespace tallowcrest

#include "disk/personal_files.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_kinds.h"
#include "tests/support/disk_machine.h"
#include "tests/support/each_of.h"

namespace tallowcrest {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

constexpr std::int64_t floorBytes = 104857600;

/// The analysis, and moving what it found to the Trash.
class PersonalFilesTest : public ::testing::Test, protected DiskMachine {
protected:
    PersonalFiles& files() { return disk->files; }
    const PersonalFilesState& state() { return files().state(); }
    const std::vector<StorageOptimizationSuggestion>& list() {
        return state().storageOptimizationSuggestions;
    }

    void add(const std::string& name, std::int64_t bytes, double days = 1.0) {
        diskPorts.files.add("/home/owner/Downloads/" + name, bytes,
                            clock.now().unixSeconds() - days * 86400.0);
    }
    void analyze() {
        files().analyzePersonalFiles();
        finishWork();
    }
    std::vector<std::string> titles() {
        return eachOf(list(), &StorageOptimizationSuggestion::title);
    }
};

TEST_F(PersonalFilesTest, ItBeginsIdle) {
    EXPECT_EQ(state().storageAnalyzerStatus,
              "Run the analyzer to find large personal files worth backing up or reviewing.");
    EXPECT_EQ(state().storageAnalysisRootName, "Personal folders");
    EXPECT_FALSE(state().storageAnalyzerBusy);
    EXPECT_THAT(list(), IsEmpty());
    EXPECT_FALSE(state().pendingStorageSuggestion);
}

TEST_F(PersonalFilesTest, AStoredBookmarkIsRemovedBeforeAnOperationOnAFile) {
    constexpr std::string_view key = settings_keys::storageAnalysisBookmarkKey;
    const auto expectRemovedBy = [&](const std::function<void()>& operation) {
        store.values.write(key, SettingsData{"an access that was once granted"});
        operation();
        EXPECT_FALSE(store.read(key));
        store.written.clear();
        operation();
        EXPECT_THAT(store.written, Not(Contains(key))) << "there was nothing to remove";
    };
    const StorageOptimizationSuggestion film{.title = "film.mov", .path = "/film.mov"};
    expectRemovedBy([&] { files().revealSuggestion(film); });
    expectRemovedBy([&] { files().backUpSuggestion(film); });
    expectRemovedBy([&] {
        files().requestTrashSuggestion(film);
        files().trashPendingSuggestion();
    });
}

TEST_F(PersonalFilesTest, AnAnalysisListsTheLargestFilesFirst) {
    add("film.mov", floorBytes, 4000.0);
    add("small.mov", floorBytes - 1);
    add("old.ZIP", 3 * floorBytes, 14.0);
    add("new.zip", 2 * floorBytes, 13.0);
    EXPECT_EQ(files().analyzePersonalFiles(), Outcome::asked());
    EXPECT_TRUE(state().storageAnalyzerBusy);
    EXPECT_EQ(state().storageAnalyzerStatus, "Analyzing large personal files locally…");
    EXPECT_EQ(workQueue.laneOf(0), Lane::personalFiles);
    finishWork();
    EXPECT_FALSE(state().storageAnalyzerBusy);
    EXPECT_THAT(titles(), ElementsAre("old.ZIP", "new.zip", "film.mov"));
    EXPECT_EQ(list()[0].recommendation, "Review for removal");
    EXPECT_EQ(list()[1].recommendation, "Back up or archive");
    EXPECT_EQ(list()[2].recommendation, "Back up or archive");
    EXPECT_EQ(list()[0].detail, "~/Downloads");
    EXPECT_EQ(state().storageAnalyzerStatus,
              "Found 3 large personal files. Review each recommendation before acting.");
    EXPECT_THAT(events(),
                ElementsAre("Storage Analyzer: Analyzed personal files locally; no file contents "
                            "or paths were sent to AI and no files were changed."));
    EXPECT_EQ(diskPorts.largestFiles->requests.at(0).minimumBytes, floorBytes);
    EXPECT_EQ(diskPorts.largestFiles->requests.at(0).count, 30U);
    EXPECT_THAT(diskPorts.largestFiles->requests.at(0).roots,
                ElementsAre("/home/owner/Downloads", "/home/owner/Documents"));
}

TEST_F(PersonalFilesTest, ThirtyFilesAreKept) {
    for (int i = 0; i < 31; ++i) {
        add(fmt::format("{:02}", i), floorBytes + i);
    }
    analyze();
    ASSERT_THAT(list(), SizeIs(30));
    EXPECT_EQ(list().front().title, "30");
    EXPECT_EQ(list().back().title, "01");
}

TEST_F(PersonalFilesTest, WithoutLargeFilesItSaysSo) {
    analyze();
    EXPECT_EQ(state().storageAnalyzerStatus,
              "No accessible personal files larger than 100 MB were found.");
    EXPECT_THAT(events(), SizeIs(1));
}

TEST_F(PersonalFilesTest, ASecondAnalysisDoesNothing) {
    files().analyzePersonalFiles();
    EXPECT_EQ(files().analyzePersonalFiles(), Outcome::ignored());
    EXPECT_EQ(files().chooseStorageFolder(), Outcome::ignored());
    EXPECT_EQ(workQueue.pendingCount(), 1U);
    finishWork();
    EXPECT_EQ(files().chooseStorageFolder(), Outcome::asked());
    EXPECT_TRUE(diskPorts.chooserTexts.empty());
}

TEST_F(PersonalFilesTest, WithAKeyTheAdvisorIsAskedBesideIt) {
    DiskMachine machine("sk-test-0123456789");
    machine.takeSample();
    ASSERT_TRUE(machine.advisor->provider.state().openAIKeySaved);
    machine.diskPorts.files.add("/home/owner/Downloads/secret name.bin", floorBytes);
    machine.disk->files.analyzePersonalFiles();
    ASSERT_TRUE(machine.confirmations.pendingConfirmation());
    EXPECT_EQ(machine.confirmations.pendingConfirmation()->kind, Provider::confirmationKind);
    machine.finishWork();
    machine.fakes.http->willSay("All is well.");
    machine.confirmations.confirmPending();
    machine.finishWork();
    ASSERT_THAT(machine.fakes.http->sent, SizeIs(1));
    EXPECT_EQ(machine.fakes.http->sent[0].body.find("secret name"), std::string::npos);
}

TEST_F(PersonalFilesTest, TheAdvisorIsAskedWhenItHasFoundItsKey) {
    DiskMachine machine;
    machine.disk.reset();
    machine.fakes.secrets->secret = "sk-test-0123456789";
    machine.beginSearch();
    machine.beginDisk();
    machine.takeSample();
    EXPECT_EQ(machine.disk->files.analyzePersonalFiles(), Outcome::asked());
    EXPECT_FALSE(machine.advisor->provider.state().aiBusy) << "the owner may ask meanwhile";
    EXPECT_FALSE(machine.confirmations.pendingConfirmation());
    machine.finishWork();
    EXPECT_TRUE(machine.advisor->provider.state().openAIKeySaved);
    EXPECT_TRUE(machine.confirmations.pendingConfirmation());
}

TEST_F(PersonalFilesTest, WithoutAKeyTheAdvisorIsNotAsked) {
    takeSample();
    const std::string insight = advisor->provider.state().aiInsight;
    analyze();
    EXPECT_FALSE(confirmations.pendingConfirmation());
    EXPECT_EQ(advisor->provider.state().aiInsight, insight);
}

TEST_F(PersonalFilesTest, TheProgressTellsTheFolder) {
    diskPorts.largestFiles->searched = [this](const std::string& root) {
        mainQueue.turn();
        EXPECT_EQ(state().progress.folder, root);
    };
    analyze();
    EXPECT_EQ(state().progress.folder, "/home/owner/Documents");
}

TEST_F(PersonalFilesTest, AStoppedAnalysisShowsWhatItHasFound) {
    add("a", floorBytes);
    diskPorts.files.add("/home/owner/Documents/b", floorBytes);
    diskPorts.largestFiles->searched = [this](const std::string& root) {
        if (root.ends_with("Documents")) {
            EXPECT_EQ(files().stopAnalysis(), Outcome::asked());
            EXPECT_EQ(files().stopAnalysis(), Outcome::ignored());
            EXPECT_TRUE(state().isStopping);
        }
    };
    analyze();
    EXPECT_THAT(titles(), ElementsAre("a"));
    EXPECT_FALSE(state().storageAnalyzerBusy);
    EXPECT_FALSE(state().isStopping);
    EXPECT_EQ(state().storageAnalyzerStatus,
              "Analysis stopped. It had found 1 large personal file.");
    EXPECT_THAT(events(),
                ElementsAre("Storage Analyzer: Stopped the analysis of personal files before its "
                            "end; no file contents or paths were sent to AI and no files were "
                            "changed."));
    EXPECT_EQ(files().stopAnalysis(), Outcome::ignored());
}

TEST_F(PersonalFilesTest, AnAnalysisThatHasEndedWhenItIsStoppedIsToldAsItEnded) {
    add("a", floorBytes);
    for (const bool isGivenUp : {false, true}) {
        log.clearActivityLog();
        files().analyzePersonalFiles();
        workQueue.run();
        EXPECT_EQ(files().stopAnalysis(), Outcome::asked());
        if (isGivenUp) {
            mainQueue.fireTimers();
        }
        mainQueue.drain();
        EXPECT_FALSE(state().storageAnalyzerBusy);
        EXPECT_FALSE(state().isStopping);
        EXPECT_THAT(titles(), ElementsAre("a"));
        EXPECT_EQ(state().storageAnalyzerStatus,
                  "Found 1 large personal files. Review each recommendation before acting.");
        EXPECT_THAT(events(),
                    ElementsAre("Storage Analyzer: Analyzed personal files locally; no file "
                                "contents or paths were sent to AI and no files were changed."));
    }
}

TEST_F(PersonalFilesTest, AnAnalysisThatHangsIsForgotten) {
    add("a", floorBytes);
    analyze();
    files().analyzePersonalFiles();
    files().stopAnalysis();
    mainQueue.fireTimers();
    EXPECT_FALSE(state().storageAnalyzerBusy);
    EXPECT_FALSE(state().isStopping);
    EXPECT_THAT(titles(), ElementsAre("a"));
    finishWork();
    EXPECT_EQ(state().storageAnalyzerStatus,
              "Analysis stopped. It had found 0 large personal files.");
    EXPECT_EQ(files().analyzePersonalFiles(), Outcome::asked());
}

TEST_F(PersonalFilesTest, AFileIsShownInTheFileManager) {
    add("a", floorBytes);
    analyze();
    diskPorts.files.all.clear();
    EXPECT_EQ(files().revealSuggestion(list()[0]), Outcome::done("Revealed a in Finder."));
    EXPECT_THAT(diskPorts.revealed, ElementsAre("/home/owner/Downloads/a"));
    EXPECT_EQ(log.lastAction(), "Revealed a in Finder.");
}

TEST_F(PersonalFilesTest, AFileIsMovedToTheTrashAfterAConfirmation) {
    add("a.iso", 3 * gigabyte / 2);
    add("b.iso", gigabyte);
    analyze();
    log.clearActivityLog();
    EXPECT_EQ(files().requestTrashSuggestion(list()[0]), Outcome::asked());
    const ConfirmationRequest asked = confirmations.pendingConfirmation().value();
    EXPECT_EQ(asked.kind, "storage_suggestion_trash");
    EXPECT_EQ(asked.title, "Move a.iso to Trash?");
    EXPECT_EQ(asked.message,
              "This moves the selected 1.50 GB file to Trash. Back it up first if it may be "
              "important.");
    EXPECT_EQ(asked.confirmTitle, "Move to Trash");
    EXPECT_EQ(confirmations.confirmPending(), Outcome::asked());
    EXPECT_FALSE(state().pendingStorageSuggestion);
    finishWork();
    EXPECT_THAT(diskPorts.trash->moved, ElementsAre("/home/owner/Downloads/a.iso"));
    EXPECT_THAT(titles(), ElementsAre("b.iso"));
    EXPECT_EQ(state().storageAnalyzerStatus, "Moved a.iso to Trash.");
    EXPECT_THAT(events(), ElementsAre("Storage Cleanup Receipt: Moved a.iso (1.50 GB) to Trash "
                                      "after confirmation."));
    EXPECT_EQ(log.activityLog()[0].kind, ActivityKind::storageCleanupReceipt);
    EXPECT_EQ(refreshes, 1);
}

TEST_F(PersonalFilesTest, AFileThatIsGoneOrAnotherOneStaysInTheList) {
    add("a", floorBytes);
    add("b", floorBytes);
    analyze();
    log.clearActivityLog();
    diskPorts.files.remove("/home/owner/Downloads/a");
    add("b", floorBytes);
    for (const StorageOptimizationSuggestion& each : std::vector(list())) {
        files().requestTrashSuggestion(each);
        confirmations.confirmPending();
        finishWork();
    }
    EXPECT_THAT(titles(), ElementsAre("a", "b"));
    EXPECT_THAT(events(),
                ElementsAre("Action: Could not move a to Trash: No such file or directory",
                            "Action: Could not move b to Trash: another file"));
    EXPECT_EQ(log.lastAction(), "Could not move b to Trash: another file");
    EXPECT_EQ(refreshes, 0);
}

TEST_F(PersonalFilesTest, OnlyAConfirmationOfItsKindMovesTheFile) {
    add("a", floorBytes);
    analyze();
    files().requestTrashSuggestion(list()[0]);
    confirmations.cancelPending();
    finishWork();
    EXPECT_TRUE(state().pendingStorageSuggestion);
    EXPECT_THAT(diskPorts.trash->requests, IsEmpty());
    EXPECT_EQ(log.lastAction(), "Canceled: Move a to Trash?.");
    EXPECT_EQ(trustCounts(), (std::vector<std::int64_t>{0, 0, 0}));
    EXPECT_EQ(confirmations.confirmPending(), Outcome::ignored());
}

TEST_F(PersonalFilesTest, WithoutAPendingFileNothingIsMoved) {
    EXPECT_EQ(files().trashPendingSuggestion(), Outcome::ignored());
    EXPECT_EQ(workQueue.pendingCount(), 0U);
}

/// The end of the program while a file is on its way to the Trash.
class PersonalFileEndTest : public PersonalFilesTest {
protected:
    /// Confirms the move of "a"; the job waits.
    void begin() {
        add("a", floorBytes);
        analyze();
        log.clearActivityLog();
        files().requestTrashSuggestion(list()[0]);
        confirmations.confirmPending();
    }

    void end() {
        jobs.stopAll();
        files().recordUnfinished();
    }
};

TEST_F(PersonalFileEndTest, AMoveWhoseEndWasNotToldYetLeavesItsReceipt) {
    begin();
    workQueue.run();
    end();
    EXPECT_THAT(events(), ElementsAre("Storage Cleanup Receipt: Moved a (0.10 GB) to Trash after "
                                      "confirmation."));
    EXPECT_THAT(list(), IsEmpty());
    mainQueue.drain();
    files().recordUnfinished();
    EXPECT_THAT(events(), SizeIs(1)) << "it is told once";
    EXPECT_EQ(refreshes, 0);
}

TEST_F(PersonalFileEndTest, AMoveThatHasNotBegunIsToldAsSuch) {
    begin();
    end();
    finishWork();
    EXPECT_THAT(diskPorts.trash->moved, IsEmpty());
    EXPECT_THAT(events(), ElementsAre("Action: Could not move a to Trash: canceled"));
}

TEST_F(PersonalFileEndTest, OfAMoveThatHangsItIsToldThatTheFileMayHaveBeenMoved) {
    begin();
    diskPorts.trash->moving = [this](const std::string&) {
        EXPECT_FALSE(jobs.stopAll(std::chrono::milliseconds(0)));
        files().recordUnfinished();
    };
    finishWork();
    EXPECT_THAT(events(), ElementsAre("Storage Cleanup Receipt: Began to move a to Trash after "
                                      "confirmation. The disk did not answer in time. The file may "
                                      "have been moved: it is in its folder or in Trash."));
}

TEST_F(PersonalFileEndTest, AMoveThatWasToldLeavesNothingToTell) {
    begin();
    finishWork();
    log.clearActivityLog();
    end();
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(PersonalFilesTest, WithoutPortsNothingIsDone) {
    beginDisk({});
    const StorageOptimizationSuggestion suggestion{.title = "a", .path = "/a"};
    EXPECT_EQ(files().analyzePersonalFiles().kind, Outcome::Kind::refused);
    EXPECT_EQ(files().revealSuggestion(suggestion).kind, Outcome::Kind::refused);
    EXPECT_EQ(files().backUpSuggestion(suggestion).kind, Outcome::Kind::refused);
    EXPECT_EQ(files().requestTrashSuggestion(suggestion).kind, Outcome::Kind::refused);
    EXPECT_FALSE(state().storageAnalyzerBusy);
    EXPECT_EQ(workQueue.pendingCount(), 0U);
}

}  // namespace
}  // namespace tallowcrest

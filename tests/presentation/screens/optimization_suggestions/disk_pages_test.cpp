#include <QPushButton>

#include "advisor/advisor.h"
#include "disk/disk.h"
#include "presentation/widgets/danger_button.h"
#include "presentation/widgets/selectable_text.h"
#include "tests/presentation/window_fixture.h"
#include "tests/support/fake_disk_ports.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// The pages that show the disk's care, with a disk.
class DiskPagesTest : public WindowFixture {
protected:
    DiskPagesTest() {
        machine.metrics->disk = {200.0, 50.0};
        disk.areas = {{"Trash", "/home/owner/trash"}};
        machine.disk = disk.ports();
    }

    void showPage(AppRoute route) {
        window().state().navigation.setSelectedRoute(route);
        showWithSample();
    }
    /// Runs all background work, also what follows from it.
    void finishWork() {
        settle();
        while (machine.workQueue.pendingCount() > 0) {
            machine.finishSamples();
        }
        settle();
    }
    void confirm() {
        setSettlingTime(*visible("confirmation"), std::chrono::milliseconds(0));
        settle();
        click("confirmation.confirm");
        finishWork();
    }
    std::string question() {
        return visible<SelectableText>("confirmation.details.text")->shownText().toStdString();
    }

    FakeDiskPorts disk;
    static constexpr std::int64_t megabyte = 1048576;
};

TEST_F(DiskPagesTest, EveryPageHasTheCardAndReviewsACleanup) {
    for (const auto& [route, page] :
         {std::pair{AppRoute::overview, "overview"}, std::pair{AppRoute::optimize, "cleanup"},
          std::pair{AppRoute::optimizationSuggestions, "suggestions"}}) {
        showPage(route);
        const std::string prefix = page;
        EXPECT_EQ(textOf((prefix + ".disk-autopilot-trust").c_str()),
                  u"Learning 0 of 3 runs · 20% of 75% trust"_s)
            << page;
        click((prefix + ".review-disk-cleanup").c_str());
        finishWork();
        EXPECT_EQ(textOf((prefix + ".disk-autopilot-status").c_str()),
                  u"No eligible cache files were found."_s);
        click((prefix + ".find-offenders").c_str());
        finishWork();
        EXPECT_THAT(textOf((prefix + ".disk-autopilot-status").c_str()).toStdString(),
                    StartsWith("Storage scan"));
    }
}

TEST_F(DiskPagesTest, TheRuleNamesTheFolderOfTheCachesOfThisMachine) {
    machine.disk.places.caches = "/data/caches of me";
    showPage(AppRoute::overview);
    EXPECT_THAT(textOf("overview.disk-autopilot-rule").toStdString(),
                HasSubstr("inside /data/caches of me are eligible"));
}

TEST_F(DiskPagesTest, WithoutAFileManagerAndAChooserThereAreNoButtonsForThem) {
    disk.files.add("/home/owner/Downloads/old.iso", 300 * megabyte);
    disk.areas = {{"Temporary", "/tmp"}};
    machine.disk = disk.ports();
    machine.disk.desktop = {};
    machine.toolLauncher.onLaunch = [this](const ToolRequest&) {
        machine.toolLauncher.willWrite("7\t/tmp\n");
    };
    showPage(AppRoute::optimizationSuggestions);
    click("suggestions.find-offenders");
    click("suggestions.analyze-files");
    finishWork();
    EXPECT_NE(visible("suggestions.storage-area-1.name"), nullptr);
    EXPECT_EQ(visible("suggestions.storage-area-1.reveal"), nullptr);
    EXPECT_NE(visible("suggestions.file-1.trash"), nullptr);
    EXPECT_EQ(visible("suggestions.file-1.reveal"), nullptr);
    EXPECT_EQ(visible("suggestions.file-1.back-up"), nullptr);
}

TEST_F(DiskPagesTest, TheQuestionShowsEveryFileBeforeItIsMoved) {
    machine.clock.advance(std::chrono::hours(24 * 60));
    for (int i = 0; i < 30; ++i) {
        disk.files.add("/home/owner/.cache/app/file-" + std::to_string(i), megabyte);
    }
    disk.files.add("/home/owner/.cache/bad\n<b>\u202e", 20 * megabyte);
    showPage(AppRoute::optimize);
    click("cleanup.review-disk-cleanup");
    finishWork();
    ASSERT_NE(visible("confirmation"), nullptr);
    EXPECT_EQ(visible<QPushButton>("confirmation.details")->text(), u"Hide 31 Files · 50 MB"_s);
    EXPECT_THAT(question(), StartsWith("1 MB · /home/owner/.cache/app/file-0\n"));
    EXPECT_THAT(question(), HasSubstr("20 MB · /home/owner/.cache/bad\uFFFD<b>\uFFFD"));
    EXPECT_EQ(std::ranges::count(question(), '\n'), 30);
    EXPECT_EQ(disk.trash->moved.size(), 0U);
    confirm();
    EXPECT_EQ(disk.trash->moved.size(), 31U);
    EXPECT_THAT(textOf("cleanup.disk-autopilot-status").toStdString(),
                StartsWith("Last cleanup moved 31 files"));
    EXPECT_THAT(textOf("cleanup.disk-autopilot-trust").toStdString(),
                StartsWith("Learning 1 of 3 runs · 42%"));
    for (const int width : {640, 900, 1600}) {
        window().resize(width, 600);
        settle();
        EXPECT_THAT(visible<ElidedLabel>("cleanup.disk-autopilot-receipt-undo-words")
                        ->shownLines()
                        .last()
                        .toStdString(),
                    EndsWith("emptied."))
            << width;
    }
}

TEST_F(DiskPagesTest, UndoPutsBackWhatItCanAndTellsWhatItCannot) {
    machine.clock.advance(std::chrono::hours(24 * 60));
    for (const char* name : {"a", "b", "c"}) {
        disk.files.add(std::string("/home/owner/.cache/") + name, megabyte);
    }
    showPage(AppRoute::optimize);
    EXPECT_EQ(visible("cleanup.disk-autopilot-receipt-undo"), nullptr);
    click("cleanup.review-disk-cleanup");
    finishWork();
    confirm();
    EXPECT_THAT(textOf("cleanup.disk-autopilot-receipt-detail").toStdString(),
                HasSubstr("Result: moved 3 old regular cache files"));
    disk.files.add("/home/owner/.cache/b", 1);
    disk.trash->puttingBack = [this](const std::string& path) {
        if (path.ends_with("/c")) {
            disk.trash->inTrash.pop_back();
        }
    };
    click("cleanup.disk-autopilot-receipt-undo");
    EXPECT_EQ(textOf("cleanup.disk-autopilot-receipt-progress"),
              u"Putting back · 0 of 3 files · 0 MB"_s);
    finishWork();
    EXPECT_EQ(visible("cleanup.disk-autopilot-receipt-progress"), nullptr);
    EXPECT_NE(disk.files.find("/home/owner/.cache/a"), nullptr);
    EXPECT_EQ(textOf("cleanup.disk-autopilot-status"),
              u"Put back 1 of 3 files (0.00 GB) from Trash."_s);
    EXPECT_THAT(textOf("cleanup.disk-autopilot-receipt-detail").toStdString(),
                HasSubstr("Not put back: File exists (1 file); It is no longer in the Trash "
                          "(1 file)."));
    EXPECT_EQ(textOf("cleanup.disk-autopilot-receipt-undo-words"),
              u"1 file of the latest cleanup can be put back while it is in Trash. Its space is "
              "free once the Trash is emptied."_s);
    disk.files.remove("/home/owner/.cache/b");
    click("cleanup.disk-autopilot-receipt-undo");
    finishWork();
    EXPECT_EQ(disk.files.find("/home/owner/.cache/b")->bytes, megabyte);
    EXPECT_FALSE(visible<QPushButton>("cleanup.disk-autopilot-receipt-undo")->isEnabled());
    EXPECT_THAT(textOf("cleanup.disk-autopilot-receipt-undo-words").toStdString(),
                StartsWith("Nothing is left to undo"));
}

TEST_F(DiskPagesTest, AStoppedUndoKeepsTheRestForAnotherOne) {
    machine.clock.advance(std::chrono::hours(24 * 60));
    for (const char* name : {"a", "b", "c"}) {
        disk.files.add(std::string("/home/owner/.cache/") + name, megabyte);
    }
    showPage(AppRoute::overview);
    click("overview.review-disk-cleanup");
    finishWork();
    confirm();
    disk.trash->puttingBack = [this](const std::string& path) {
        if (path.ends_with("/b")) {
            click("overview.disk-autopilot-receipt-progress-stop");
        }
    };
    click("overview.disk-autopilot-receipt-undo");
    finishWork();
    EXPECT_EQ(disk.files.find("/home/owner/.cache/c"), nullptr);
    EXPECT_THAT(textOf("overview.disk-autopilot-receipt-detail").toStdString(),
                HasSubstr("Stopped before the last file."));
    EXPECT_EQ(textOf("overview.disk-autopilot-receipt-undo-words"),
              u"1 file of the latest cleanup can be put back while it is in Trash. Its space is "
              "free once the Trash is emptied."_s);
}

TEST_F(DiskPagesTest, PersonalFilesAreListedRevealedCopiedAndMovedOneByOne) {
    disk.files.add("/home/owner/Downloads/old.ISO", 300 * megabyte);
    disk.files.add("/home/owner/Documents/film.mkv", 1500 * megabyte);
    disk.files.add("/home/owner/Documents/small.mkv", 99 * megabyte);
    showPage(AppRoute::optimizationSuggestions);
    click("suggestions.analyze-storage");
    EXPECT_EQ(visible<QPushButton>("suggestions.analyze-storage")->text(), u"Analyzing"_s);
    EXPECT_FALSE(visible<QPushButton>("suggestions.analyze-storage")->isEnabled());
    EXPECT_EQ(visible<QPushButton>("optimizationSuggestions.analyze-storage")->text(),
              u"Analyzing"_s);
    finishWork();
    EXPECT_EQ(visible<QPushButton>("suggestions.analyze-storage")->text(), u"Analyze Storage"_s);
    EXPECT_EQ(textOf("suggestions.file-1.title"), u"film.mkv"_s);
    EXPECT_EQ(textOf("suggestions.file-2.title"), u"old.ISO"_s);
    EXPECT_EQ(visible("suggestions.file-3"), nullptr);
    click("suggestions.file-1.reveal");
    EXPECT_THAT(disk.revealed, ElementsAre("/home/owner/Documents/film.mkv"));
    click("suggestions.file-1.back-up");
    ASSERT_TRUE(disk.answer);
    // A copy, because the question ends with its answer.
    const auto answer = disk.answer;
    answer("/media/backup");
    settle();
    EXPECT_THAT(textOf("suggestions.storage-analyzer-backup").toStdString(),
                StartsWith("Backing up film.mkv"));
    finishWork();
    EXPECT_THAT(disk.copy->copied,
                ElementsAre(std::pair<std::string, std::string>("/home/owner/Documents/film.mkv",
                                                                "/media/backup/film.mkv")));
    EXPECT_EQ(textOf("suggestions.storage-analyzer-status"), u"Backup complete: film.mkv"_s);
    click("suggestions.file-2.trash");
    EXPECT_EQ(question(), "/home/owner/Downloads/old.ISO");
    confirm();
    EXPECT_THAT(disk.trash->moved, ElementsAre("/home/owner/Downloads/old.ISO"));
    EXPECT_EQ(visible("suggestions.file-2"), nullptr);
}

TEST_F(DiskPagesTest, AStoppedAnalysisSaysSo) {
    showPage(AppRoute::optimizationSuggestions);
    click("optimizationSuggestions.analyze-storage");
    click("suggestions.storage-analyzer-progress-stop");
    EXPECT_EQ(textOf("suggestions.storage-analyzer-progress"), u"Stopping…"_s);
    finishWork();
    EXPECT_EQ(visible("suggestions.storage-analyzer-progress"), nullptr);
    EXPECT_THAT(textOf("suggestions.storage-analyzer-status").toStdString(), HasSubstr("topped"));
}

TEST_F(DiskPagesTest, TheSettingsReviewCacheFilesToo) {
    showPage(AppRoute::overview);
    window().state().navigation.setSettingsTab(SettingsTabKind::automation);
    window().state().navigation.setShowSettings(true);
    settle();
    click("settings.review-cache-files");
    finishWork();
    EXPECT_THAT(textOf("settings.sheet.last-action").toStdString(),
                StartsWith("Disk review found no cache files older than"));
}

/// Each control of the cards with lists has a name and a description, and its own identifier.
TEST_F(DiskPagesTest, EveryControlOfTheRowsIsNamed) {
    disk.files.add("/home/owner/Downloads/old.iso", 300 * megabyte);
    showPage(AppRoute::optimizationSuggestions);
    click("suggestions.analyze-files");
    finishWork();
    QStringList identifiers;
    for (const auto* each : window().findChildren<QAbstractButton*>()) {
        if (each->isVisible()) {
            EXPECT_FALSE(each->accessibleName().isEmpty()) << each->objectName().toStdString();
            EXPECT_FALSE(each->objectName().isEmpty()) << each->accessibleName().toStdString();
            identifiers.append(each->objectName());
        }
    }
    EXPECT_EQ(identifiers.removeDuplicates(), 0);
    EXPECT_TRUE(identifiers.contains(u"suggestions.file-1.trash"_s));
}

}  // namespace
}  // namespace tallowcrest

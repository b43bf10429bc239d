// The disk's care of the composed program, on real folders.

#include <fcntl.h>
#include <sys/stat.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/composition.h"
#include "core/activity_kinds.h"
#include "core/activity_log.h"
#include "core/confirmation_desk.h"
#include "disk/disk.h"
#include "platform/base/run_loop.h"
#include "platform/trash/system_trash.h"
#include "tests/app/own_disk_places.h"
#include "tests/app/serve_until.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;

class DiskIntegrationTest : public ::testing::Test {
protected:
    DiskIntegrationTest()
        : composition(loop, SettingsAccess::readWrite,
                      {.disk = desktop(), .makeTrash = host::makeTrash}) {}

    DiskDesktopPorts desktop() {
        return {.reveal = [this](const fs::path& file) { revealed.push_back(file); },
                .chooseFolder =
                    [this](std::string_view, std::string_view,
                           std::function<void(std::optional<std::string>)> answered) {
                        loop.post([this, answered = std::move(answered)] {
                            answered(places.backups().string());
                        });
                        return std::make_unique<FolderQuestion>();
                    }};
    }

    void confirm() {
        ConfirmationDesk& desk = monitor().services().confirmations;
        serveUntil(loop, [&] { return desk.pendingConfirmation().has_value(); });
        desk.confirmPending();
    }

    static fs::path write(const fs::path& path, const std::string& text, int daysOld = 0) {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << text;
        const timespec then{std::time(nullptr) - daysOld * 86400L, 0};
        const timespec times[]{then, then};
        EXPECT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
        return path;
    }

    /// As an analysis would list it.
    static StorageOptimizationSuggestion suggestionOf(const fs::path& file) {
        struct stat status {};
        EXPECT_EQ(::lstat(file.c_str(), &status), 0);
        return {.title = file.filename(), .path = file, .identity = {status.st_dev, status.st_ino}};
    }

    SystemMonitor& monitor() { return composition.monitor(); }
    DiskAutopilot& autopilot() { return monitor().disk().autopilot; }
    PersonalFiles& files() { return monitor().disk().files; }
    /// The detail of the latest receipt.
    std::string receipt() {
        for (const ActivityEvent& event : monitor().log().activityLog()) {
            if (event.kind == ActivityKind::diskCleanupReceipt) {
                return event.detail;
            }
        }
        return {};
    }

    OwnDiskPlaces places;
    RunLoop loop;
    std::vector<fs::path> revealed;
    Composition composition;
};

TEST_F(DiskIntegrationTest, OldCachesAreReviewedMovedToTheTrashAndPutBack) {
    const fs::path old = write(places.caches() / "a b/old", "old pixels", 40);
    const fs::path recent = write(places.caches() / "recent", "new", 3);
    const fs::path personal = write(places.downloads() / "letter", "mine", 400);
    fs::create_symlink(personal, places.caches() / "link");
    autopilot().reviewDiskCleanup();
    confirm();
    EXPECT_TRUE(fs::exists(old)) << "nothing moves before the answer";
    serveUntil(loop, [&] { return autopilot().state().undoableFiles == 1; });
    serveUntil(loop, [&] { return !autopilot().state().cleanup; });
    EXPECT_FALSE(fs::exists(old));
    EXPECT_EQ(fileText(places.trash() / "files/old"), "old pixels");
    EXPECT_THAT(fileText(places.trash() / "info/old.trashinfo"), HasSubstr("/a%20b/old\n"));
    EXPECT_THAT(receipt(), HasSubstr("Result: moved 1 old regular cache files"));
    EXPECT_THAT(receipt(), HasSubstr("Scope: " + places.caches().string() + " only"));
    EXPECT_TRUE(fs::exists(recent));
    EXPECT_TRUE(fs::exists(personal));
    EXPECT_TRUE(fs::is_symlink(places.caches() / "link"));
    EXPECT_EQ(autopilot().undoLatestCleanup(), Outcome::asked());
    serveUntil(loop, [&] { return !autopilot().state().undo; });
    EXPECT_EQ(fileText(old), "old pixels");
    EXPECT_TRUE(fs::is_empty(places.trash() / "files"));
    EXPECT_TRUE(fs::is_empty(places.trash() / "info"));
    EXPECT_THAT(receipt(), HasSubstr("put back 1 of 1 file "));
    EXPECT_TRUE(composition.shutDown());
}

TEST_F(DiskIntegrationTest, TheReceiptIsWrittenThoughAnotherJobHangsAtTheEnd) {
    write(places.caches() / "old", "old pixels", 40);
    autopilot().reviewDiskCleanup();
    std::promise<void> release;
    JobScope scope(monitor().services().jobs);
    scope.run(
        Lane::reports, [&](const Stop&) { release.get_future().wait(); }, [] {});
    confirm();
    EXPECT_FALSE(composition.shutDown(std::chrono::milliseconds(1)));
    EXPECT_THAT(receipt(), AnyOf(HasSubstr("moved 1 old regular cache files"),
                                 HasSubstr("Stopped: by the end of Tallowcrest")));
    release.set_value();
    EXPECT_TRUE(composition.shutDown());
    Composition next(loop, SettingsAccess::readOnly);
    EXPECT_THAT(next.monitor().log().activityLog(), SizeIs(1));
    EXPECT_TRUE(next.shutDown());
}

TEST_F(DiskIntegrationTest, ALargeFileIsFoundCopiedAndMovedToTheTrash) {
    const fs::path film = write(places.downloads() / "film.mov", "begin");
    fs::resize_file(film, 110 << 20);
    fs::create_symlink(film, places.downloads() / "link.mov");
    files().analyzePersonalFiles();
    serveUntil(loop, [&] { return !files().state().storageAnalyzerBusy; });
    ASSERT_EQ(files().state().storageOptimizationSuggestions.size(), 1U);
    const auto found = files().state().storageOptimizationSuggestions.front();
    EXPECT_EQ(found.path, film);
    EXPECT_EQ(found.bytes, 110 << 20);
    EXPECT_EQ(files().backUpSuggestion(found), Outcome::asked());
    const fs::path copy = places.backups() / "film.mov";
    serveUntil(loop, [&] { return !revealed.empty(); });
    EXPECT_EQ(files().state().storageAnalyzerStatus, "Backup complete: film.mov");
    EXPECT_THAT(revealed, ElementsAre(copy));
    EXPECT_TRUE(fileText(copy) == fileText(film));
    files().requestTrashSuggestion(found);
    confirm();
    serveUntil(loop, [&] { return files().state().storageOptimizationSuggestions.empty(); });
    EXPECT_FALSE(fs::exists(film));
    EXPECT_TRUE(fs::exists(places.trash() / "files/film.mov"));
    EXPECT_TRUE(composition.shutDown());
}

TEST_F(DiskIntegrationTest, ACopyIntoTheFilesOwnFolderGetsTheTimeAndLeavesTheFile) {
    const fs::path film = write(places.backups() / "film.mov", "scenes");
    const std::time_t before = std::time(nullptr);
    files().backUpSuggestion(suggestionOf(film));
    serveUntil(loop, [&] { return !revealed.empty(); });
    const std::string copy = revealed.front();
    const std::string prefix = (places.backups() / "film-").string();
    ASSERT_TRUE(copy.starts_with(prefix) && copy.ends_with(".mov")) << copy;
    const std::time_t time = std::stoll(copy.substr(prefix.size()));
    EXPECT_EQ(copy, fmt::format("{}{}.mov", prefix, time));
    EXPECT_TRUE(before <= time && time <= std::time(nullptr)) << time;
    EXPECT_EQ(fileText(copy), "scenes");
    EXPECT_EQ(fileText(film), "scenes");
    EXPECT_EQ(files().state().storageAnalyzerStatus,
              "Backup complete: " + fs::path(copy).filename().string());
    EXPECT_TRUE(composition.shutDown());
}

TEST_F(DiskIntegrationTest, AMoveUnderWayAtTheEndOfTheProgramIsInTheLogOfTheNextStart) {
    const fs::path film = write(places.downloads() / "film.mov", "scenes");
    files().requestTrashSuggestion(suggestionOf(film));
    confirm();
    // The main queue is not served any more, so that the end of the move is not told.
    EXPECT_TRUE(composition.shutDown());
    Composition next(loop, SettingsAccess::readOnly);
    const std::vector<ActivityEvent>& events = next.monitor().log().activityLog();
    ASSERT_THAT(events, SizeIs(1));
    EXPECT_THAT(events[0].detail, fs::exists(film)
                                      ? HasSubstr("Could not move film.mov to Trash")
                                      : HasSubstr("Moved film.mov (0.00 GB) to Trash"));
    EXPECT_TRUE(next.shutDown());
}

TEST(DiskComposition, WhereSettingsAreOnlyReadNothingIsMovedOrCopied) {
    const OwnDiskPlaces places;
    RunLoop loop;
    Composition composition(
        loop, SettingsAccess::readOnly,
        {.disk = {.chooseFolder = [](auto&&...) { return std::make_unique<FolderQuestion>(); }}});
    Disk& disk = composition.monitor().disk();
    EXPECT_EQ(disk.autopilot.reviewDiskCleanup().kind, Outcome::Kind::refused);
    EXPECT_EQ(disk.files.backUpSuggestion({}).kind, Outcome::Kind::refused);
    EXPECT_EQ(disk.files.requestTrashSuggestion({}).kind, Outcome::Kind::refused);
    EXPECT_TRUE(composition.shutDown());
}

}  // namespace
}  // namespace tallowcrest

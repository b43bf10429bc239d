// Files that are put back from the Trash.

#include <fcntl.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/trash/file_status.h"
#include "tests/platform/trash/own_mounts.h"
#include "tests/platform/trash/swap_names.h"
#include "tests/platform/trash/traced_process.h"
#include "tests/platform/trash/trash_fixture.h"
#include "tests/support/eventually.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using WayBack = PutBackOutcome::Result;

class PutBackTest : public TrashFixture {
protected:
    /// Expects that the file stays in the Trash, and can be restored.
    void expectLeft(const TrashItem& item, const std::string& why) {
        const PutBackOutcome outcome = trash.putBack(item);
        EXPECT_EQ(outcome.result, WayBack::left);
        EXPECT_EQ(outcome.error, why);
        ASSERT_THAT(contents(), SizeIs(1));
        EXPECT_TRUE(contents().front().isThere);
        EXPECT_EQ(contents().front().restorePath, item.path);
        EXPECT_EQ(contents().front().content, "pixels");
    }

    void expectGone(const TrashItem& item) {
        const PutBackOutcome outcome = trash.putBack(item);
        EXPECT_EQ(outcome.result, WayBack::gone);
        EXPECT_EQ(outcome.error, "It is no longer in the Trash");
        EXPECT_FALSE(fs::exists(fs::symlink_status(item.path)));
    }
};

TEST_F(PutBackTest, TheSameFileIsInItsPlaceAgainAndTheTrashForgetsIt) {
    const std::string path = write(inCache("a/thumb"), "pixels");
    ASSERT_EQ(::chmod(path.c_str(), 0604), 0);
    const timespec times[]{{1'000'000'000, 5}, {1'100'000'000, 7}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    const TrashRequest request = reviewed(path);
    const TrashOutcome moved = trash.moveToTrash(request);
    ASSERT_TRUE(moved.item);
    EXPECT_EQ(moved.item->path, path);
    EXPECT_EQ(moved.item->identity, request.identity);
    EXPECT_EQ(moved.item->bytes, 6);
    const PutBackOutcome outcome = trash.putBack(*moved.item);
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.result, WayBack::done);
    EXPECT_EQ(fileText(path), "pixels");
    EXPECT_EQ(identityOf(path), request.identity);
    struct stat status {};
    ASSERT_EQ(::lstat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0604U);
    EXPECT_EQ(status.st_mtim.tv_sec, 1'100'000'000);
    EXPECT_THAT(contents(), IsEmpty());
    EXPECT_EQ(trash.putBack(*moved.item).result, WayBack::gone) << "once only";
    EXPECT_EQ(fileText(path), "pixels");
}

TEST_F(PutBackTest, HostileNamesComeBack) {
    std::vector<TrashItem> items;
    for (const std::string& name :
         {std::string("new\nline"), std::string("\xff\xfe\x1b[2J"), std::string(255, 'x'),
          std::string("%2e%2e"), std::string("..."), std::string("a.trashinfo"),
          std::string("[Trash Info]")}) {
        items.push_back(trashed(inCache(name), name));
    }
    ASSERT_THAT(contents(), SizeIs(items.size()));
    for (const TrashItem& item : items) {
        EXPECT_EQ(trash.putBack(item).error, "");
        EXPECT_EQ(fileText(item.path), fs::path(item.path).filename());
    }
    EXPECT_THAT(contents(), IsEmpty());
}

TEST_F(PutBackTest, FilesOfOneNameAreNotConfused) {
    const TrashItem first = trashed(inCache("thumb"), "first");
    const TrashItem second = trashed(inCache("b/thumb"), "second");
    const TrashItem third = trashed(inCache("thumb"), "third");
    EXPECT_EQ(trash.putBack(second).error, "");
    EXPECT_EQ(trash.putBack(third).error, "");
    EXPECT_EQ(fileText(inCache("b/thumb")), "second");
    EXPECT_EQ(fileText(inCache("thumb")), "third");
    EXPECT_EQ(trash.putBack(first).error, "File exists");
    ASSERT_THAT(contents(), SizeIs(1));
    EXPECT_EQ(contents().front().content, "first");
}

TEST_F(PutBackTest, ATakenPlaceIsNotReplaced) {
    const std::string path = inCache("a/thumb");
    const TrashItem item = trashed(path);
    const std::vector<std::function<void()>> takers{[&] { write(path, "newer"); },
                                                    [&] { fs::create_directory(path); },
                                                    [&] { fs::create_symlink("nothing", path); }};
    for (const auto& take : takers) {
        take();
        const FileIdentity taker = identityOf(path);
        expectLeft(item, "File exists");
        EXPECT_EQ(identityOf(path), taker);
        fs::remove(path);
    }
    EXPECT_EQ(trash.putBack(item).error, "") << "once the place is free";
    EXPECT_EQ(fileText(path), "pixels");
}

TEST_F(PutBackTest, AFolderThatIsGoneOrALinkIsNotEntered) {
    const TrashItem item = trashed(inCache("a/thumb"));
    fs::remove(inCache("a"));
    expectLeft(item, "No such file or directory");
    const fs::path outside = home / "Documents";
    fs::create_directory(outside);
    fs::create_directory_symlink(outside, inCache("a"));
    expectLeft(item, "Not a directory");
    EXPECT_TRUE(fs::is_empty(outside));
}

TEST_F(PutBackTest, APlaceOutsideTheCachesIsRefused) {
    TrashItem item = trashed(inCache("a/thumb"));
    item.path = inCache("../thumb");
    EXPECT_EQ(trash.putBack(item).error, "Invalid argument");
    item.path = home / "thumb";
    EXPECT_EQ(trash.putBack(item).error, "Invalid cross-device link");
    item.path = "thumb";
    EXPECT_EQ(trash.putBack(item).error, "Not an absolute path of a file");
    EXPECT_FALSE(fs::exists(home / "thumb"));
    EXPECT_THAT(contents(), SizeIs(1));
}

TEST_F(PutBackTest, FromAnEmptiedTrashNothingComesBack) {
    const std::vector<std::function<void()>> emptyings{
        [&] { fs::remove(homeTrash / "files/thumb"); },
        // Half way.
        [&] { fs::remove(homeTrash / "info/thumb.trashinfo"); }};
    for (const auto& empty : emptyings) {
        fs::remove_all(homeTrash);
        const TrashItem item = trashed(inCache("a/thumb"));
        empty();
        expectGone(item);
    }
}

TEST_F(PutBackTest, WhatTookItsNameInTheTrashStaysThere) {
    const TrashItem item = trashed(inCache("a/thumb"));
    fs::rename(homeTrash / "files/thumb", home / "elsewhere");
    const std::vector<std::function<void(const fs::path&)>> others{
        [&](const fs::path& name) { write(name, "another file"); },
        [&](const fs::path& name) { fs::create_symlink(home / "Documents", name); },
        [&](const fs::path& name) { fs::create_directory(name); }};
    for (const auto& other : others) {
        other(homeTrash / "files/thumb");
        expectGone(item);
        EXPECT_TRUE(fs::exists(fs::symlink_status(homeTrash / "files/thumb")));
        fs::remove(homeTrash / "files/thumb");
    }
}

TEST_F(PutBackTest, AnotherFileWithItsInodeNumberIsNotTakenForIt) {
    const TrashItem item = trashed(inCache("a/thumb"));
    if (item.identity.bornAt == 0) {
        GTEST_SKIP() << "this volume does not tell when a file was created";
    }
    const std::string stored = homeTrash / "files/thumb";
    // The kernel's clock for files has steps of a few milliseconds.
    ASSERT_TRUE(eventually([&] {
        fs::remove(stored);
        write(stored, "another file");
        return statusAt(AT_FDCWD, stored)->identity.bornAt != item.identity.bornAt;
    }));
    TrashItem withItsNumber = item;
    withItsNumber.identity.inode = identityOf(stored).inode;
    expectGone(withItsNumber);
}

TEST_F(PutBackTest, AFileThatWasTrashedAgainLaterIsNotTheOneOfTheCleanUp) {
    const std::string path = inCache("a/thumb");
    const TrashItem item = trashed(path);
    fs::rename(homeTrash / "files/thumb", path);
    fs::remove(homeTrash / "info/thumb.trashinfo");
    clock.advance(std::chrono::hours(1));
    ASSERT_EQ(trash.moveToTrash(reviewed(path)).error, "");
    ASSERT_EQ(contents().front().storedName, "thumb");
    expectGone(item);
    EXPECT_THAT(contents(), SizeIs(1));
}

TEST_F(PutBackTest, WhatIsNoDescriptionIsNotRead) {
    const TrashItem item = trashed(inCache("a/thumb"));
    const fs::path info = homeTrash / "info/thumb.trashinfo";
    fs::rename(info, home / "elsewhere");
    fs::create_symlink(home / "elsewhere", info);
    EXPECT_EQ(trash.putBack(item).error, "Too many levels of symbolic links");
    fs::remove(info);
    fs::create_directory(info);
    const PutBackOutcome outcome = trash.putBack(item);
    EXPECT_EQ(outcome.error, "Is a directory");
    EXPECT_EQ(outcome.result, WayBack::left);
    fs::remove(info);
    fs::rename(home / "elsewhere", info);
    EXPECT_EQ(trash.putBack(item).error, "");
}

TEST_F(PutBackTest, ATrashThatIsElsewhereForAWhileIsNotMadeAnew) {
    const TrashItem item = trashed(inCache("a/thumb"));
    fs::rename(homeTrash, home / "elsewhere");
    const PutBackOutcome outcome = trash.putBack(item);
    EXPECT_EQ(outcome.error, "The folder of the Trash is missing");
    EXPECT_EQ(outcome.result, WayBack::left);
    ASSERT_FALSE(fs::exists(homeTrash));
    fs::rename(home / "elsewhere", homeTrash);
    EXPECT_EQ(trash.putBack(item).error, "");
}

TEST_F(PutBackTest, TheTrashOfTheVolumeDoesNotStandInForThatOfTheHomeFolder) {
    inOwnMounts([&] {
        mountMemory(home);
        const TrashItem item = trashed(inCache("a/thumb"));
        fs::create_directories(home / ".Trash-0/files");
        fs::create_directories(home / ".Trash-0/info");
        fs::rename(homeTrash, home / "elsewhere");
        const PutBackOutcome outcome = trash.putBack(item);
        EXPECT_EQ(outcome.error, "No such file or directory");
        EXPECT_EQ(outcome.result, WayBack::left);
    });
}

TEST_F(PutBackTest, AFileOfAnotherVolumeComesBackFromTheTrashOfThatVolume) {
    inOwnMounts([&] {
        const fs::path disk = home / "disk";
        fs::create_directory(disk);
        mountMemory(disk);
        const std::string path = write(disk / "cache/thumb", "pixels");
        const TrashOutcome moved = trash.moveToTrash({.path = path, .inside = disk / "cache"});
        ASSERT_TRUE(moved.item) << moved.error;
        EXPECT_EQ(trashContents(disk / ".Trash-0").size(), 1U);
        EXPECT_EQ(trash.putBack(*moved.item).error, "");
        EXPECT_EQ(fileText(path), "pixels");
        EXPECT_TRUE(trashContents(disk / ".Trash-0").empty());
    });
}

TEST_F(PutBackTest, AKillAtAnySystemCallLeavesTheFileInItsPlaceOrRestorable) {
    inOwnMounts([&] {
        mountMemory(home);
        int inTrash = 0;
        int inPlace = 0;
        bool isKilled = true;
        for (int killedAt = 0; isKilled; ++killedAt) {
            const TrashItem item = trashedAnew();
            const TracedRun run =
                runTraced([&] { return trash.putBack(item).result == WayBack::done ? 0 : 1; },
                          [&](int stop) { return stop != killedAt; });
            if (!run.isPossible) {
                GTEST_SKIP() << "this account may not trace its own processes";
            }
            isKilled = run.status == -1;
            SCOPED_TRACE("killed at stop " + std::to_string(killedAt));
            if (fs::exists(item.path)) {
                ++inPlace;
                EXPECT_EQ(fileText(item.path), "pixels");
                EXPECT_FALSE(fs::exists(homeTrash / "files/thumb"));
            } else {
                ++inTrash;
                ASSERT_EQ(contents().size(), 1U);
                EXPECT_TRUE(contents().front().isThere);
                EXPECT_EQ(contents().front().restorePath, item.path);
                // What a kill leaves does not hinder the next attempt.
                EXPECT_EQ(trash.putBack(item).result, WayBack::done);
            }
            ASSERT_FALSE(HasFailure());
        }
        EXPECT_GT(inTrash, 10);
        EXPECT_GT(inPlace, 2);
    });
}

TEST_F(PutBackTest, RemovesNoDescriptionThatIsNotTheOneOfTheFile) {
    inOwnMounts([&] {
        mountMemory(home);
        putBackWithSwappedDescriptions(runTraced, [](bool isLost) { EXPECT_FALSE(isLost); });
    });
}

TEST_F(PutBackTest, ASwapAtAnySystemCallLosesNothingAndTouchesNothingElse) {
    inOwnMounts([&] {
        mountMemory(home);
        const fs::path stored = homeTrash / "files/thumb";
        const fs::path outside = home / "Documents";
        const std::map<std::string, std::function<void()>> attacks{
            {"another file in the Trash", [&] { swapNames(stored, homeTrash / "files/decoy"); }},
            {"a taken place",
             [&] {
                 if (!fs::exists(inCache("a/thumb"))) {
                     write(inCache("a/thumb"), "taker");
                 }
             }},
            {"a folder in its place", [&] { swapNames(inCache("a/thumb"), inCache("folder")); }},
            {"a link for the folder", [&] { swapNames(inCache("a"), inCache("link")); }},
            {"a folder that leaves the cache", [&] { fs::rename(inCache("a"), home / "left"); }},
        };
        for (const auto& [name, attack] : attacks) {
            SCOPED_TRACE(name);
            std::map<int, int> results;
            const bool isTraced = atEachStop([&](int at) {
                const TrashItem item = trashedAnew();
                fs::create_directories(outside);
                write(homeTrash / "files/decoy", "decoy");
                fs::create_directory_symlink(outside, inCache("link"));
                fs::create_directory(inCache("folder"));
                const TracedRun run =
                    runTraced([&] { return static_cast<int>(trash.putBack(item).result); },
                              [&](int stop) {
                                  if (stop == at) {
                                      attack();
                                  }
                                  return true;
                              });
                if (!run.isPossible) {
                    return run;
                }
                ++results[run.status];
                std::map<std::string, int> found;
                for (const auto& entry : fs::recursive_directory_iterator(home)) {
                    if (entry.symlink_status().type() == fs::file_type::regular &&
                        entry.path().extension() != ".trashinfo") {
                        ++found[fileText(entry.path())];
                    }
                }
                EXPECT_EQ(found["pixels"], 1);
                EXPECT_GE(found["decoy"], 1);
                EXPECT_TRUE(fs::is_empty(outside));
                for (const auto& entry : fs::directory_iterator(homeTrash / "files")) {
                    EXPECT_TRUE(entry.is_regular_file()) << "what it has not moved is in the Trash";
                }
                return run;
            });
            if (!isTraced) {
                return;
            }
            EXPECT_GT(results[static_cast<int>(WayBack::done)], 0) << name << " after it";
        }
    });
}

}  // namespace
}  // namespace tallowcrest

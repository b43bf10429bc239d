#include "platform/trash/finder_trash.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Result = PutBackOutcome::Result;

/// A system that moves each file to one folder.
class FinderTrashTest : public ::testing::Test {
protected:
    FinderTrashTest() {
        fs::create_directories(root / "home/caches/app");
        fs::create_directories(root / "Trash");
    }

    FinderTrash::Moved move(const std::string& path) {
        moved.push_back(path);
        if (!refusal.empty()) {
            return {.error = refusal};
        }
        const std::string stored = root / "Trash" / fs::path(path).filename();
        fs::rename(path, stored);
        return {.isDone = true, .stored = hidesTrash ? "" : stored};
    }

    std::string write(const std::string& name, const std::string& text = "text") const {
        const std::string path = root / "home" / name;
        std::ofstream(path) << text;
        return path;
    }

    static FileIdentity identityAt(const std::string& path) {
        struct stat status {};
        EXPECT_EQ(::lstat(path.c_str(), &status), 0);
        return {status.st_dev, status.st_ino};
    }

    TrashRequest reviewed(const std::string& path) const {
        return {.path = path,
                .inside = root / "home/caches",
                .identity = identityAt(path),
                .maximumBytes = 100};
    }

    void expectLeft(const TrashRequest& request, const std::string& why) {
        const TrashOutcome outcome = trash.moveToTrash(request);
        EXPECT_EQ(outcome.movedBytes, std::nullopt);
        EXPECT_EQ(outcome.error, why);
        EXPECT_THAT(moved, IsEmpty());
    }

    TemporaryFolder folder;
    fs::path root = fs::canonical(folder.path());
    std::vector<std::string> moved;
    std::string refusal;
    bool hidesTrash = false;
    FinderTrash trash{{[this](const std::string& path) { return move(path); },
                       [](const std::string& from, const std::string& to) {
                           return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(),
                                              RENAME_NOREPLACE) == 0
                                      ? 0
                                      : errno;
                       }}};
};

TEST_F(FinderTrashTest, MovesAReviewedFileAndPutsItBack) {
    const std::string path = write("caches/app/a");
    const TrashOutcome outcome = trash.moveToTrash(reviewed(path));
    EXPECT_EQ(outcome.movedBytes, 4);
    ASSERT_TRUE(outcome.item);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(trash.putBack(*outcome.item).result, Result::done);
    EXPECT_EQ(folder.read("home/caches/app/a"), "text");
    EXPECT_EQ(trash.putBack(*outcome.item).result, Result::gone);
}

TEST_F(FinderTrashTest, GivesTheSystemAPathWithoutLinks) {
    fs::create_directory_symlink(root / "home/caches", root / "home/link");
    const std::string path = write("caches/a");
    TrashRequest request = reviewed(path);
    request.path = root / "home/link/a";
    EXPECT_EQ(trash.moveToTrash(request).movedBytes, 4);
    EXPECT_THAT(moved, ElementsAre(path));
}

TEST_F(FinderTrashTest, LeavesWhatIsNotTheReviewedFile) {
    const std::string path = write("caches/a");
    TrashRequest request = reviewed(path);
    request.identity->inode += 1;
    expectLeft(request, "Another file has taken its name");
    request = reviewed(path);
    request.maximumBytes = 3;
    expectLeft(request, "The file is too large");
    expectLeft(reviewed(write("caches/empty", "")), "The file is empty");
    expectLeft(reviewed(root / "home/caches/app"), "Not a regular file");
    expectLeft(reviewed(write("beside")), "Invalid cross-device link");
    request.path = root / "home/caches/none";
    expectLeft(request, "No such file or directory");
    request.path = "caches/a";
    expectLeft(request, "Not an absolute path of a file");
    fs::create_symlink(path, root / "home/caches/link");
    expectLeft(reviewed(root / "home/caches/link"), "Not a regular file");
}

TEST_F(FinderTrashTest, TellsWhyTheSystemRefused) {
    refusal = "The volume has no Trash.";
    const TrashOutcome outcome = trash.moveToTrash(reviewed(write("caches/a")));
    EXPECT_EQ(outcome.movedBytes, std::nullopt);
    EXPECT_EQ(outcome.error, refusal);
}

TEST_F(FinderTrashTest, WhatTheSystemHidesCannotBePutBack) {
    hidesTrash = true;
    const TrashOutcome outcome = trash.moveToTrash(reviewed(write("caches/a")));
    EXPECT_EQ(outcome.movedBytes, 4);
    EXPECT_FALSE(outcome.item);
}

TEST_F(FinderTrashTest, AFileThatCannotBeLookedAtIsNotTakenForGone) {
    const TrashOutcome outcome = trash.moveToTrash(reviewed(write("caches/a")));
    ASSERT_TRUE(outcome.item);
    // A link to itself on the way fails for every account.
    fs::rename(root / "Trash", root / "elsewhere");
    fs::create_directory_symlink("Trash", root / "Trash");
    const PutBackOutcome refused = trash.putBack(*outcome.item);
    EXPECT_EQ(refused.result, Result::left);
    EXPECT_EQ(refused.error, "Too many levels of symbolic links");
    fs::remove(root / "Trash");
    EXPECT_EQ(trash.putBack(*outcome.item).result, Result::gone);
}

TEST_F(FinderTrashTest, PutsNothingInThePlaceOfAnotherFileOrOutsideOfItsFolder) {
    const std::string path = write("caches/a");
    const TrashOutcome outcome = trash.moveToTrash(reviewed(path));
    ASSERT_TRUE(outcome.item);
    write("caches/a", "new");
    EXPECT_EQ(trash.putBack(*outcome.item).result, Result::left);
    EXPECT_EQ(folder.read("home/caches/a"), "new");
    TrashItem elsewhere = *outcome.item;
    elsewhere.path = root / "home/b";
    EXPECT_EQ(trash.putBack(elsewhere).result, Result::left);
    elsewhere.path = root / "home/none/b";
    EXPECT_EQ(trash.putBack(elsewhere).result, Result::left);
}

}  // namespace
}  // namespace tallowcrest

// Trash folders on other volumes, and volumes that are full or cannot be written.

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/trash/own_mounts.h"
#include "tests/platform/trash/trash_fixture.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class TrashVolumesTest : public TrashFixture {
protected:
    /// Runs a test with a volume of its own at `disk`.
    void withDisk(const std::function<void()>& work) {
        inOwnMounts([&] {
            mountMemory(disk);
            work();
        });
    }

    /// Moves a new file of the volume, and tells in which trash folder it is.
    fs::path trashFolderOf(const std::string& file) {
        const std::string path = write(disk / file, "content");
        const TrashOutcome outcome = trash.moveToTrash({.path = path});
        EXPECT_EQ(fs::exists(path), !outcome.movedBytes) << outcome.error;
        for (const fs::path& place : {own, shared / "0", homeTrash}) {
            for (const TrashedFile& found : trashContents(place)) {
                EXPECT_EQ(found.restorePath, place == homeTrash ? path : file);
                EXPECT_EQ(found.content, "content");
                return place;
            }
        }
        EXPECT_FALSE(outcome.movedBytes);
        return {};
    }

    const fs::path disk = folder.path() / "disk";
    const fs::path shared = disk / ".Trash";
    /// The user of the process with own mounts is root.
    const fs::path own = disk / ".Trash-0";
};

#define REQUIRE_ROOT()                                    \
    if (::geteuid() != 0) {                               \
        GTEST_SKIP() << "only root can be several users"; \
    }

TEST_F(TrashVolumesTest, AFileOfAnotherVolumeGoesToTheTrashOfThatVolume) {
    withDisk([&] {
        EXPECT_EQ(trashFolderOf("cache of a/b/file"), own);
        EXPECT_EQ(fs::status(own / "files").permissions(), fs::perms::owner_all);
    });
}

TEST_F(TrashVolumesTest, AFileAtTheRootOfItsVolume) {
    withDisk([&] { EXPECT_EQ(trashFolderOf("file"), own); });
}

TEST_F(TrashVolumesTest, TheFolderThatTheAdministratorMadeForAllUsersComesFirst) {
    withDisk([&] {
        fs::create_directory(shared);
        ASSERT_EQ(::chmod(shared.c_str(), 01777), 0);
        EXPECT_EQ(trashFolderOf("a/file"), shared / "0");
        EXPECT_EQ(fs::status(shared / "0").permissions(), fs::perms::owner_all);
    });
}

TEST_F(TrashVolumesTest, ThatFolderIsNotUsedWithoutTheStickyBit) {
    withDisk([&] {
        fs::create_directory(shared);
        ASSERT_EQ(::chmod(shared.c_str(), 0777), 0);
        EXPECT_EQ(trashFolderOf("a/file"), own);
        EXPECT_THAT(fs::directory_iterator(shared), ::testing::Eq(fs::directory_iterator()));
    });
}

TEST_F(TrashVolumesTest, ThatFolderIsNotUsedWhenItIsALink) {
    withDisk([&] {
        fs::create_directory(disk / "elsewhere");
        ASSERT_EQ(::chmod((disk / "elsewhere").c_str(), 01777), 0);
        fs::create_directory_symlink("elsewhere", shared);
        EXPECT_EQ(trashFolderOf("a/file"), own);
    });
}

TEST_F(TrashVolumesTest, NeitherIsTheFolderOfAUserInIt) {
    withDisk([&] {
        fs::create_directory(shared);
        ASSERT_EQ(::chmod(shared.c_str(), 01777), 0);
        fs::create_directory(disk / "elsewhere");
        fs::create_directory_symlink(disk / "elsewhere", shared / "0");
        EXPECT_EQ(trashFolderOf("a/file"), own);
    });
}

TEST_F(TrashVolumesTest, AFileStaysWhereNoTrashFolderIsSafe) {
    withDisk([&] {
        fs::create_directory(disk / "elsewhere");
        fs::create_directory_symlink("elsewhere", own);
        EXPECT_EQ(trashFolderOf("a/file"), fs::path());
        fs::remove(own);
        write(own, "no folder");
        EXPECT_EQ(trashFolderOf("a/file"), fs::path());
        fs::remove(own);
        fs::create_directory(own);
        fs::create_directory_symlink("../elsewhere", own / "files");
        EXPECT_EQ(trashFolderOf("a/file"), fs::path());
        EXPECT_TRUE(fs::is_empty(disk / "elsewhere"));
    });
}

TEST_F(TrashVolumesTest, AFolderOfAnotherUserIsNotUsed) {
    REQUIRE_ROOT();
    withDisk([&] {
        fs::create_directory(shared);
        ASSERT_EQ(::chmod(shared.c_str(), 01777), 0);
        fs::create_directory(shared / "0");
        ASSERT_EQ(::chown((shared / "0").c_str(), 1234, 1234), 0);
        EXPECT_EQ(trashFolderOf("a/file"), own);
        fs::remove_all(own);
        fs::create_directory(own);
        ASSERT_EQ(::chown(own.c_str(), 1234, 1234), 0);
        EXPECT_EQ(trashFolderOf("a/file"), fs::path());
    });
}

TEST_F(TrashVolumesTest, AHomeTrashOfAnotherUserIsNotUsed) {
    REQUIRE_ROOT();
    withDisk([&] {
        XdgTrash foreign(disk / "home/Trash", clock, atGreenwich);
        fs::create_directories(disk / "home/Trash");
        ASSERT_EQ(::chown((disk / "home/Trash").c_str(), 1234, 1234), 0);
        EXPECT_EQ(foreign.moveToTrash({.path = write(disk / "file", "content")}).movedBytes, 7);
        EXPECT_THAT(trashContents(own), SizeIs(1));
    });
}

TEST_F(TrashVolumesTest, AHomeTrashThatIsALinkToAMissingDiskIsNotUsed) {
    withDisk([&] {
        XdgTrash dangling(disk / "home/Trash", clock, atGreenwich);
        fs::create_directories(disk / "home");
        fs::create_directory_symlink(disk / "unplugged", disk / "home/Trash");
        EXPECT_EQ(dangling.moveToTrash({.path = write(disk / "file", "content")}).movedBytes, 7);
        EXPECT_THAT(trashContents(own), SizeIs(1));
        EXPECT_FALSE(fs::exists(disk / "unplugged"));
    });
}

TEST_F(TrashVolumesTest, WithoutAHomeThereIsTheTrashOfTheVolume) {
    withDisk([&] {
        XdgTrash homeless({}, clock, atGreenwich);
        EXPECT_EQ(homeless.moveToTrash({.path = write(disk / "a", "x")}).movedBytes, 1);
        EXPECT_EQ(trashContents(own).front().restorePath, "a");
    });
}

TEST_F(TrashVolumesTest, ATrashThatIsALinkToTheVolumeOfTheFileIsUsed) {
    withDisk([&] {
        fs::create_directory(disk / "trash");
        fs::create_directories(homeTrash.parent_path());
        fs::create_directory_symlink(disk / "trash", homeTrash);
        EXPECT_EQ(trashFolderOf("a/file"), homeTrash);
    });
}

TEST_F(TrashVolumesTest, ACacheFolderThatIsAVolumeIsCleanedIntoItsOwnTrash) {
    inOwnMounts([&] {
        mountMemory(home / ".cache");
        EXPECT_EQ(trash.moveToTrash(reviewed(write(inCache("a/b"), "x"))).movedBytes, 1);
        EXPECT_EQ(trashContents(inCache(".Trash-0")).front().restorePath, "a/b");
    });
}

TEST_F(TrashVolumesTest, NothingOnAnotherVolumeIsInsideTheFolder) {
    inOwnMounts([&] {
        write(home / "Documents/letter", "written");
        // Twice the same device, and a file that is a mount.
        mountBind(home / "Documents", inCache("documents"));
        mountMemory(inCache("memory"));
        write(inCache("file"), "of the cache");
        mountBind(home / "Documents/letter", inCache("file"));
        EXPECT_LEFT(trash.moveToTrash(reviewed(inCache("documents/letter"))), "cross-device");
        EXPECT_LEFT(trash.moveToTrash(reviewed(write(inCache("memory/a"), "x"))), "cross-device");
        EXPECT_LEFT(trash.moveToTrash(reviewed(inCache("file"))), "cross-device");
        EXPECT_EQ(fileText(home / "Documents/letter"), "written");
    });
}

TEST_F(TrashVolumesTest, ABoundFolderIsAVolumeOfItsOwn) {
    withDisk([&] {
        fs::create_directories(disk / "inner");
        mountBind(disk / "inner", folder.path("bound"));
        const std::string path = write(folder.path("bound/a/file"), "content");
        EXPECT_EQ(trash.moveToTrash({.path = path}).movedBytes, 7);
        EXPECT_EQ(trashContents(folder.path("bound/.Trash-0")).front().restorePath, "a/file");
    });
}

TEST_F(TrashVolumesTest, AReadOnlyFolderKeepsItsFiles) {
    inOwnMounts([&] {
        const std::string path = write(inCache("a/b"), "x");
        mountBind(home / ".cache", home / ".cache");
        makeReadOnly(home / ".cache");
        EXPECT_LEFT(trash.moveToTrash(reviewed(path)), "Read-only file system");
        EXPECT_EQ(fileText(path), "x");
    });
}

/// Fills what is left of the file system.
void fill(const fs::path& path) {
    std::ofstream ballast(path);
    const std::string block(4096, 'x');
    while (ballast.write(block.data(), static_cast<std::streamsize>(block.size())).flush()) {
    }
}

TEST_F(TrashVolumesTest, AFullHomeKeepsTheFileAndNoHalfDescription) {
    inOwnMounts([&] {
        mountMemory(home, "size=1m");
        const std::string path = write(inCache("a"), "x");
        const std::string other = write(inCache("b"), "y");
        EXPECT_EQ(trash.moveToTrash(reviewed(other)).movedBytes, 1);
        fill(home / "ballast");
        const TrashOutcome outcome = trash.moveToTrash(reviewed(path));
        EXPECT_EQ(outcome.movedBytes, std::nullopt);
        EXPECT_THAT(outcome.error, ::testing::HasSubstr("The disk is full"));
        EXPECT_TRUE(outcome.isDiskFull);
        EXPECT_EQ(fileText(path), "x");
        EXPECT_THAT(contents(), SizeIs(1));
        fs::remove(home / "ballast");
        EXPECT_EQ(trash.moveToTrash(reviewed(path)).movedBytes, 1);
    });
}

TEST_F(TrashVolumesTest, AVolumeWithoutRoomForAnotherFileKeepsIt) {
    inOwnMounts([&] {
        mountMemory(home, "size=1m,nr_inodes=9");
        const std::string path = write(inCache("a"), "x");
        const std::string other = write(inCache("b"), "y");
        // The root, the cache, two files, and five folders are nine.
        EXPECT_LEFT(trash.moveToTrash(reviewed(path)), "The disk is full");
        EXPECT_EQ(fileText(path), "x");
        fs::remove(other);
        EXPECT_EQ(trash.moveToTrash(reviewed(path)).movedBytes, 1);
    });
}

TEST_F(TrashVolumesTest, AFullVolumeKeepsItsFiles) {
    inOwnMounts([&] {
        mountMemory(disk, "size=64k");
        fs::create_directories(own / "info");
        const std::string path = write(disk / "a", "x");
        fill(disk / "ballast");
        const TrashOutcome outcome = trash.moveToTrash({.path = path});
        EXPECT_EQ(outcome.movedBytes, std::nullopt);
        EXPECT_THAT(outcome.error, ::testing::HasSubstr("The disk is full"));
        EXPECT_EQ(fileText(path), "x");
        EXPECT_THAT(trashContents(own), IsEmpty());
    });
}

TEST_F(TrashVolumesTest, ATrashOnAnotherVolumeThatIsFullIsNotNeeded) {
    inOwnMounts([&] {
        mountMemory(disk, "size=64k");
        fs::create_directories(homeTrash.parent_path());
        fs::create_directories(disk / "trash");
        fs::create_directory_symlink(disk / "trash", homeTrash);
        fill(disk / "ballast");
        mountMemory(home / ".cache");
        EXPECT_EQ(trash.moveToTrash(reviewed(write(inCache("a"), "x"))).movedBytes, 1);
        EXPECT_THAT(trashContents(inCache(".Trash-0")), SizeIs(1));
    });
}

}  // namespace
}  // namespace tallowcrest

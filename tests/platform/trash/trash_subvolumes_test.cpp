// The subvolumes of one file system: they share a mount and its space, but no rename goes from one
// to another.

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/files/file_system.h"
#include "platform/files/file_walk_posix.h"
#include "platform/files/volume_of.h"
#include "tests/platform/trash/own_mounts.h"
#include "tests/platform/trash/trash_fixture.h"
#include "tests/support/file_text.h"
#include "tests/support/run_program.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;

class TrashSubvolumesTest : public TrashFixture {
protected:
    /// Runs a test with a file system at `disk` that has the subvolume `part`, which is mounted at
    /// `home` too. Skips it where that cannot be made.
    void withSubvolumes(const std::function<void()>& work) {
        inOwnMounts([&] {
            const std::string image = folder.path("image");
            std::ofstream(image).close();
            fs::resize_file(image, 256U << 20U);
            fs::create_directory(disk);
            const std::string mount = "/usr/bin/mount";
            const bool isThere = succeeds("/usr/sbin/mkfs.btrfs", {"-q", image}) &&
                                 succeeds(mount, {"-o", "loop", image, disk}) &&
                                 succeeds("/usr/bin/btrfs", {"subvolume", "create", disk / "part"});
            if (!isThere) {
                GTEST_SKIP() << "no file system with subvolumes can be mounted here";
            }
            // The device that the first mount has taken.
            const std::string device =
                shellOutput("findmnt --noheadings --output SOURCE '" + disk.string() + '\'');
            ASSERT_TRUE(
                succeeds(mount, {"-o", "subvol=part", device.substr(0, device.find('\n')), home}));
            work();
        });
    }

    static bool succeeds(const std::string& program, const std::vector<std::string>& arguments) {
        return fs::exists(program) &&
               runProgram({.path = program, .arguments = arguments}).status == 0;
    }

    static bool isWritten(const fs::path& file, const std::string& text) {
        std::ofstream stream(file);
        stream << text << std::flush;
        return stream.good();
    }

    void addSubvolume(const fs::path& place) const {
        fs::create_directories(place.parent_path());
        ASSERT_TRUE(succeeds("/usr/bin/btrfs", {"subvolume", "create", place}));
    }

    const fs::path disk = folder.path() / "disk";
};

TEST_F(TrashSubvolumesTest, TheirDiskIsThatOfTheMount) {
    withSubvolumes([&] {
        const std::string device =
            shellOutput("findmnt --noheadings --output SOURCE '" + disk.string() + '\'');
        const fs::path queue =
            "/sys/block" / fs::path(device.substr(0, device.find('\n'))).filename() / "queue";
        const std::string before = fileText(queue / "rotational");
        ASSERT_NE(before, "");
        for (const std::string answer : {"1", "0"}) {
            // Not every account may set it.
            const std::string told = isWritten(queue / "rotational", answer) ? answer : before;
            for (const fs::path& place : {disk, disk / "part", home}) {
                EXPECT_EQ(file_system::isRotational(place), told.starts_with('1')) << place;
            }
        }
        static_cast<void>(isWritten(queue / "rotational", before));
    });
}

TEST_F(TrashSubvolumesTest, TheFilesOfAMountedOneAreMovedInIt) {
    withSubvolumes([&] {
        // The trash of the home is in the subvolume that is mounted as the home.
        const std::string inHome = write(inCache("a"), "content");
        EXPECT_TRUE(trash.moveToTrash(reviewed(inHome)).movedBytes);
        EXPECT_THAT(contents(), SizeIs(1));
        // The mount around it has a trash of its own.
        const TrashOutcome other = trash.moveToTrash({.path = write(disk / "b", "content")});
        EXPECT_TRUE(other.movedBytes) << other.error;
        EXPECT_THAT(trashContents(disk / ".Trash-0"), SizeIs(1));
    });
}

TEST_F(TrashSubvolumesTest, TheFilesOfOneThatIsNotMountedStay) {
    withSubvolumes([&] {
        addSubvolume(home / ".cache");
        const std::string path = write(inCache("a/b"), "content");
        EXPECT_LEFT(trash.moveToTrash(reviewed(path)), "cross-device");
        EXPECT_TRUE(fs::exists(path));
        EXPECT_FALSE(fs::exists(home / ".cache/.Trash-0"));
        // The same for one inside another, by the way from the mount.
        EXPECT_LEFT(trash.moveToTrash({.path = disk / "part/.cache/a/b"}), "cross-device");
    });
}

TEST_F(TrashSubvolumesTest, TheWalkOverTheCachesDoesNotEnterOne) {
    withSubvolumes([&] {
        write(inCache("plain"), "content");
        addSubvolume(home / ".cache/part");
        write(inCache("part/inside"), "content");
        std::vector<std::string> found;
        PosixFileWalk().walk(
            home / ".cache",
            [&](const FoundFile& file) {
                found.push_back(file.path);
                return true;
            },
            [](const SearchProgress&) {}, {});
        EXPECT_THAT(found, ElementsAre(inCache("plain")));
    });
}

TEST_F(TrashSubvolumesTest, TheyAreOneFileSystemOfSeveralDevices) {
    withSubvolumes([&] {
        addSubvolume(home / ".cache");
        const auto around = volumeOf(disk);
        const auto mounted = volumeOf(home);
        const auto unmounted = volumeOf(home / ".cache");
        ASSERT_TRUE(around && mounted && unmounted);
        EXPECT_EQ(around->fileSystem, mounted->fileSystem);
        EXPECT_EQ(around->fileSystem, unmounted->fileSystem);
        EXPECT_NE(around->device, mounted->device);
        EXPECT_NE(mounted->device, unmounted->device);
        EXPECT_NE(volumeOf(folder.path())->fileSystem, around->fileSystem);
    });
}

}  // namespace
}  // namespace tallowcrest

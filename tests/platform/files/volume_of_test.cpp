#include "platform/files/volume_of.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cstdint>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "platform/files/mount_info.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

TEST(MountInfo, AllSubvolumesOfOneFileSystemHaveItsDevice) {
    const auto* top = "86 65 0:39 / /mnt/a\\040b rw,relatime - btrfs /dev/loop0 rw,subvol=/";
    const auto* home = "87 65 0:39 /home /mnt/home rw - btrfs /dev/loop0 rw,subvol=/home";
    EXPECT_EQ(deviceOfMount(top, 86), ::gnu_dev_makedev(0, 39));
    EXPECT_EQ(deviceOfMount(home, 87), ::gnu_dev_makedev(0, 39));
    EXPECT_EQ(deviceOfMount("7 1 254:1048575 / / rw", 7), ::gnu_dev_makedev(254, 1048575));
    for (const std::uint64_t other : {0U, 8U, 65U, 87U, 860U}) {
        EXPECT_EQ(deviceOfMount(top, other), std::nullopt) << other;
    }
}

TEST(MountInfo, WhatIsNoLineOfItTellsNothing) {
    for (const char* line :
         {"", "7", "7 ", "7 1", "7 1 8:", "7 1 8:1", "7 1 :1 /", "7 1 8 1 /", "7 x 8:1 /",
          "7 1 -8:1 /", " 7 1 8:1 /", "7\t1 8:1 /", "7 1 4294967296:1 /", "7 1 8:99999999999 /",
          "99999999999999999999 1 8:1 /"}) {
        EXPECT_EQ(deviceOfMount(line, 7), std::nullopt) << line;
    }
}

TEST(MountInfo, TellsWhatIsMounted) {
    struct Row {
        const char* line;
        std::optional<std::string> source;
    };
    const Row rows[] = {
        {"7 1 0:39 /home /mnt/home rw - btrfs /dev/sda2 rw,subvol=/home", "/dev/sda2"},
        {"7 1 0:39 / /mnt/a\\040-\\040b rw shared:1 master:2 - btrfs /dev/mapper/a rw",
         "/dev/mapper/a"},
        {"7 1 0:5 / /mnt rw - fuse.sshfs host:/a\\040b\\134c\\04 rw", "host:/a b\\c\\04"},
        {"7 1 0:5 / /mnt rw - tmpfs a\\777\\0x1\\", "a\\777\\0x1\\"},
        {"7 1 0:5 / /mnt rw - tmpfs", std::nullopt},
        {"7 1 0:5 / /mnt rw - tmpfs  rw", std::nullopt},
        {"7 1 0:5 / /mnt rw", std::nullopt},
        {"8 1 0:5 / /mnt rw - tmpfs tmpfs rw", std::nullopt},
        {"", std::nullopt}};
    for (const Row& row : rows) {
        EXPECT_EQ(sourceOfMount(row.line, 7), row.source) << row.line;
    }
}

TEST(VolumeOf, TellsTheDeviceOfThePathThroughLinks) {
    const TemporaryFolder folder;
    ASSERT_EQ(::symlink("/proc", folder.path("link").c_str()), 0);
    struct stat status {};
    ASSERT_EQ(::stat("/proc", &status), 0);
    const auto volume = volumeOf(folder.path("link"));
    ASSERT_TRUE(volume);
    EXPECT_EQ(volume->device, status.st_dev);
    EXPECT_EQ(volume->fileSystem, status.st_dev) << "it has no subvolumes";
    EXPECT_EQ(volumeOf(folder.path("none")), std::nullopt);
}

}  // namespace
}  // namespace tallowcrest

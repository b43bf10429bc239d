#include "platform/files/rotational_disk.h"

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;

class RotationalDisk : public testing::Test {
protected:
    void SetUp() override { fs::create_directories(sysfs.path("dev/block")); }

    void disk(const std::string& device, const std::string& answer) const {
        fs::create_directories(sysfs.path(device + "/queue"));
        sysfs.file(device + "/queue/rotational", answer, 0644);
    }
    void number(const std::string& number, const std::string& device) const {
        fs::create_directory_symlink("../../" + device, sysfs.path("dev/block/" + number));
    }

    TemporaryFolder sysfs;
};

TEST_F(RotationalDisk, IsToldByTheQueueOfTheDisk) {
    disk("devices/ata1/block/sda", "1\n");
    fs::create_directories(sysfs.path("devices/ata1/block/sda/sda2"));
    disk("devices/nvme/nvme0n1", "0\n");
    fs::create_directories(sysfs.path("devices/nvme/nvme0n1/nvme0n1p1"));
    disk("devices/virtual/block/dm-0", "1\n");
    number("8:0", "devices/ata1/block/sda");
    number("8:2", "devices/ata1/block/sda/sda2");
    number("259:0", "devices/nvme/nvme0n1");
    number("259:1", "devices/nvme/nvme0n1/nvme0n1p1");
    number("253:0", "devices/virtual/block/dm-0");
    EXPECT_TRUE(isRotationalDisk(sysfs.path(), 8, 0));
    EXPECT_TRUE(isRotationalDisk(sysfs.path(), 8, 2));
    EXPECT_FALSE(isRotationalDisk(sysfs.path(), 259, 0));
    EXPECT_FALSE(isRotationalDisk(sysfs.path(), 259, 1));
    EXPECT_TRUE(isRotationalDisk(sysfs.path(), 253, 0));
}

TEST_F(RotationalDisk, IsNotAssumedWhereNothingTells) {
    disk("devices/pci/virtio1/block/vda", "1\n");
    disk("devices/ata1/block/sda", "");
    disk("devices/ata2/block/sdb", "perhaps\n");
    number("254:0", "devices/pci/virtio1/block/vda");
    number("8:0", "devices/ata1/block/sda");
    number("8:16", "devices/ata2/block/sdb");
    number("8:32", "devices/gone");
    EXPECT_FALSE(isRotationalDisk(sysfs.path(), 254, 0));
    EXPECT_FALSE(isRotationalDisk(sysfs.path(), 8, 0));
    EXPECT_FALSE(isRotationalDisk(sysfs.path(), 8, 16));
    EXPECT_FALSE(isRotationalDisk(sysfs.path(), 8, 32));
    EXPECT_FALSE(isRotationalDisk(sysfs.path(), 0, 27));
    EXPECT_FALSE(isRotationalDisk(sysfs.path("missing"), 8, 0));
}

}  // namespace
}  // namespace tallowcrest

#include "platform/base/home_volume.h"

#include <future>
#include <thread>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

TEST(HomeVolumeTest, AMissingHomeGivesZeros) {
    EXPECT_EQ(PosixHomeVolume("/nonexistent/home").readDiskSnapshot(), DiskSnapshot{});
}

TEST(HomeVolumeTest, WhileOneReadingBlocksOthersGetTheLatestFigures) {
    std::promise<void> hanging;
    std::promise<void> release;
    const std::shared_future<void> released = release.get_future().share();
    int readings = 0;
    PosixHomeVolume volume([&]() -> DiskSnapshot {
        if (++readings == 1) {
            return {100.0, 40.0};
        }
        hanging.set_value();
        released.wait();
        return {100.0, 30.0};
    });
    EXPECT_EQ(volume.readDiskSnapshot(), (DiskSnapshot{100.0, 40.0}));

    DiskSnapshot late;
    std::thread held([&] { late = volume.readDiskSnapshot(); });
    hanging.get_future().wait();
    EXPECT_EQ(volume.readDiskSnapshot(), (DiskSnapshot{100.0, 40.0}));
    release.set_value();
    held.join();
    EXPECT_EQ(late, (DiskSnapshot{100.0, 30.0}));
    EXPECT_EQ(readings, 2);
}

TEST(HomeVolumeTest, WhileTheFirstReadingBlocksOthersGetZeros) {
    std::promise<void> hanging;
    std::promise<void> release;
    PosixHomeVolume volume([&]() -> DiskSnapshot {
        hanging.set_value();
        release.get_future().wait();
        return {100.0, 40.0};
    });
    std::thread held([&] { volume.readDiskSnapshot(); });
    hanging.get_future().wait();
    EXPECT_EQ(volume.readDiskSnapshot(), DiskSnapshot{});
    release.set_value();
    held.join();
}

}  // namespace
}  // namespace tallowcrest

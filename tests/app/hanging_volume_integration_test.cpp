// The disk's care over a folder whose server has stopped to answer, as one of a network can.

#include <fcntl.h>
#include <sys/mount.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/actions.h"
#include "app/composition.h"
#include "disk/disk.h"
#include "platform/base/run_loop.h"
#include "platform/base/unique_fd.h"
#include "platform/trash/system_trash.h"
#include "tests/app/own_disk_places.h"
#include "tests/platform/trash/own_mounts.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;

/// A folder that whoever opens it waits for, until this object is gone.
class HangingFolder {
public:
    explicit HangingFolder(fs::path folder)
        : folder_(std::move(folder)), server_(::open("/dev/fuse", O_RDWR | O_CLOEXEC)) {
        fs::create_directory(folder_);
        const std::string options =
            "fd=" + std::to_string(server_.get()) + ",rootmode=40000,user_id=0,group_id=0";
        isMounted_ = server_.valid() && ::mount("none", folder_.c_str(), "fuse",
                                                MS_NOSUID | MS_NODEV, options.c_str()) == 0;
    }
    HangingFolder(const HangingFolder&) = delete;
    HangingFolder& operator=(const HangingFolder&) = delete;
    ~HangingFolder() { answer(); }

    bool isMounted() const { return isMounted_; }

    /// From now on all calls fail.
    void answer() {
        server_.reset();
        if (isMounted_) {
            ::umount2(folder_.c_str(), MNT_DETACH);
        }
        isMounted_ = false;
    }

private:
    fs::path folder_;
    UniqueFD server_;
    bool isMounted_ = false;
};

/// The composed program with such a folder among its caches and its personal files.
struct HangingMachine {
    /// Serves the main queue, which goes on although other threads wait, until it is so.
    void serve(const std::function<bool()>& isSo) {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        const auto timer = loop.scheduleRepeating(std::chrono::milliseconds(5), [&] {
            if (isSo() || std::chrono::steady_clock::now() > limit) {
                loop.stop(0);
            }
        });
        loop.run();
        EXPECT_TRUE(isSo());
    }

    const std::string& status() {
        return composition.monitor().actions().automation.diskAutopilotStatus();
    }

    OwnDiskPlaces places;
    HangingFolder caches{places.caches() / "server"};
    HangingFolder downloads{places.downloads() / "server"};
    RunLoop loop;
    Composition composition{loop, SettingsAccess::readWrite, {.makeTrash = host::makeTrash}};
    Disk& disk = composition.monitor().disk();
};

/// Runs `work` on such a machine, where this account can have one.
void onHangingMachine(const std::function<void(HangingMachine&)>& work) {
    inOwnMounts([&] {
        HangingMachine machine;
        if (!machine.caches.isMounted() || !machine.downloads.isMounted()) {
            GTEST_SKIP() << "no file system of ours can be mounted here";
        }
        work(machine);
        machine.caches.answer();
        machine.downloads.answer();
        EXPECT_TRUE(machine.composition.shutDown());
    });
}

TEST(HangingVolume, AReviewOfCachesTellsWhereItHangsAndCanBeStopped) {
    onHangingMachine([](HangingMachine& machine) {
        DiskAutopilot& autopilot = machine.disk.autopilot;
        autopilot.reviewDiskCleanup();
        const std::string hanging = machine.places.caches() / "server";
        machine.serve(
            [&] { return autopilot.state().scan && autopilot.state().scan->folder == hanging; });
        EXPECT_EQ(autopilot.stop(), Outcome::asked());
        machine.serve([&] { return !autopilot.state().scan; });
        EXPECT_EQ(machine.status(), "Review stopped. No files were changed.");
        EXPECT_EQ(autopilot.reviewDiskCleanup(), Outcome::asked()) << "another may begin";
    });
}

TEST(HangingVolume, AnAnalysisTellsWhereItHangsAndCanBeStopped) {
    onHangingMachine([](HangingMachine& machine) {
        PersonalFiles& files = machine.disk.files;
        files.analyzePersonalFiles();
        const std::string hanging = machine.places.downloads() / "server";
        machine.serve([&] { return files.state().progress.folder == hanging; });
        EXPECT_EQ(files.stopAnalysis(), Outcome::asked());
        machine.serve([&] { return !files.state().storageAnalyzerBusy; });
        EXPECT_EQ(files.state().storageAnalyzerStatus,
                  "Analysis stopped. It had found 0 large personal files.");
    });
}

TEST(HangingVolume, AStorageScanTellsTheAreaAndCanBeStopped) {
    onHangingMachine([](HangingMachine& machine) {
        StorageScan& storage = machine.disk.storage;
        storage.scanStorageAreas();
        machine.serve([&] { return !storage.state().progress.area.empty(); });
        EXPECT_EQ(storage.stop(), Outcome::asked());
        machine.serve([&] { return !storage.state().diskStorageScanInProgress; });
        EXPECT_THAT(machine.status(), ::testing::HasSubstr("Storage scan stopped after "));
    });
}

}  // namespace
}  // namespace tallowcrest

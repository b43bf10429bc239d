// The disk's care over a folder whose server has stopped to answer, as one of a network can.

#include <fcntl.h>
#include <linux/fuse.h>
#include <poll.h>
#include <sys/mount.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/actions.h"
#include "app/composition.h"
#include "core/activity_log.h"
#include "core/confirmation_desk.h"
#include "disk/disk.h"
#include "platform/base/run_loop.h"
#include "platform/base/unique_fd.h"
#include "platform/trash/system_trash.h"
#include "tests/app/own_disk_places.h"
#include "tests/app/serve_until.h"
#include "tests/platform/trash/own_mounts.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

/// A folder that whoever opens it waits for, until this object is gone.
class HangingFolder {
public:
    explicit HangingFolder(fs::path folder)
        : folder_(std::move(folder)), server_(::open("/dev/fuse", O_RDWR | O_CLOEXEC)) {
        fs::create_directories(folder_);
        const std::string options =
            "fd=" + std::to_string(server_.get()) + ",rootmode=40000,user_id=0,group_id=0";
        isMounted_ = server_.valid() && ::mount("none", folder_.c_str(), "fuse",
                                                MS_NOSUID | MS_NODEV, options.c_str()) == 0;
    }
    HangingFolder(const HangingFolder&) = delete;
    HangingFolder& operator=(const HangingFolder&) = delete;
    ~HangingFolder() { answer(); }

    bool isMounted() const { return isMounted_; }

    /// Whether somebody waits for the folder. Until this is called first, that is not known,
    /// because the kernel keeps all questions back until the server has told its version.
    bool isAsked() {
        std::vector<char> question(1 << 16);
        pollfd waiting{server_.get(), POLLIN, 0};
        while (::poll(&waiting, 1, 0) > 0 &&
               ::read(server_.get(), question.data(), question.size()) > 0) {
            fuse_in_header header{};
            std::memcpy(&header, question.data(), sizeof header);
            isAsked_ = isAsked_ || header.opcode != FUSE_INIT;
            if (header.opcode == FUSE_INIT) {
                tellVersion(header.unique);
            }
        }
        return isAsked_;
    }

    /// From now on all calls fail.
    void answer() {
        server_.reset();
        if (isMounted_) {
            ::umount2(folder_.c_str(), MNT_DETACH);
        }
        isMounted_ = false;
    }

private:
    void tellVersion(std::uint64_t question) const {
        struct {
            fuse_out_header header{};
            fuse_init_out version{};
        } answer;
        answer.header.len = sizeof answer;
        answer.header.unique = question;
        answer.version.major = FUSE_KERNEL_VERSION;
        answer.version.minor = FUSE_KERNEL_MINOR_VERSION;
        answer.version.max_write = 4096;
        EXPECT_EQ(::write(server_.get(), &answer, sizeof answer), sizeof answer);
    }

    fs::path folder_;
    UniqueFD server_;
    bool isMounted_ = false;
    bool isAsked_ = false;
};

/// The composed program with such a folder among its caches and its personal files.
struct HangingMachine {
    const std::string& lastReceipt() {
        return composition.monitor().log().activityLog().front().detail;
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
        serveUntil(machine.loop, [&] {
            return autopilot.state().scan && autopilot.state().scan->folder == hanging;
        });
        EXPECT_EQ(autopilot.stopScan(), Outcome::asked());
        serveUntil(machine.loop, [&] { return !autopilot.state().scan; });
        EXPECT_EQ(machine.status(), "Review stopped. No files were changed.");
        EXPECT_EQ(autopilot.reviewDiskCleanup(), Outcome::asked()) << "another may begin";
    });
}

TEST(HangingVolume, TheProgramEndsAlthoughACleanUpHangs) {
    onHangingMachine([](HangingMachine& machine) {
        machine.caches.answer();
        const fs::path old = machine.places.caches() / "later/old";
        fs::create_directory(old.parent_path());
        std::ofstream(old) << "pixels";
        fs::last_write_time(old, fs::file_time_type::clock::now() - std::chrono::days(40));
        DiskAutopilot& autopilot = machine.disk.autopilot;
        ConfirmationDesk& desk = machine.composition.monitor().services().confirmations;
        autopilot.reviewDiskCleanup();
        serveUntil(machine.loop, [&] { return desk.pendingConfirmation().has_value(); });
        HangingFolder later(old.parent_path());
        ASSERT_TRUE(later.isMounted());
        desk.confirmPending();
        serveUntil(machine.loop, [&] { return later.isAsked(); });
        EXPECT_FALSE(machine.composition.shutDown(std::chrono::milliseconds(50)));
        EXPECT_THAT(machine.lastReceipt(), HasSubstr("Stopped: by the end of Tallowcrest"));
        later.answer();
        EXPECT_EQ(fileText(old), "pixels");
    });
}

TEST(HangingVolume, TheProgramEndsAlthoughAMoveOfAPersonalFileHangs) {
    onHangingMachine([](HangingMachine& machine) {
        StorageOptimizationSuggestion film;
        film.title = "film.mov";
        film.path = machine.places.downloads() / "server/film.mov";
        machine.disk.files.requestTrashSuggestion(film);
        machine.composition.monitor().services().confirmations.confirmPending();
        serveUntil(machine.loop, [&] { return machine.downloads.isAsked(); });
        EXPECT_FALSE(machine.composition.shutDown(std::chrono::milliseconds(50)));
        EXPECT_THAT(machine.lastReceipt(), HasSubstr("The file may have been moved"));
    });
}

TEST(HangingVolume, AnAnalysisTellsWhereItHangsAndCanBeStopped) {
    onHangingMachine([](HangingMachine& machine) {
        PersonalFiles& files = machine.disk.files;
        files.analyzePersonalFiles();
        const std::string hanging = machine.places.downloads() / "server";
        serveUntil(machine.loop, [&] { return files.state().progress.folder == hanging; });
        EXPECT_EQ(files.stopAnalysis(), Outcome::asked());
        serveUntil(machine.loop, [&] { return !files.state().storageAnalyzerBusy; });
        EXPECT_EQ(files.state().storageAnalyzerStatus,
                  "Analysis stopped. It had found 0 large personal files.");
    });
}

/// Has an analysis find a film in one folder while another one does not open, and runs `work` then.
void onAnalysisWithClosedFolder(
    const std::function<void(HangingMachine&, HangingFolder& closed)>& work) {
    onHangingMachine([&](HangingMachine& machine) {
        machine.downloads.answer();
        HangingFolder closed(machine.places.downloads());
        ASSERT_TRUE(closed.isMounted());
        const fs::path film = machine.places.videos() / "film.mov";
        std::ofstream(film) << "film";
        fs::resize_file(film, 200 << 20);
        PersonalFiles& files = machine.disk.files;
        files.analyzePersonalFiles();
        serveUntil(machine.loop, [&] { return files.state().progress.filesSeen == 1; });
        EXPECT_EQ(files.state().progress.folder, machine.places.downloads());
        work(machine, closed);
        ASSERT_EQ(files.state().storageOptimizationSuggestions.size(), 1U);
        EXPECT_EQ(files.state().storageOptimizationSuggestions[0].path, film);
    });
}

TEST(HangingVolume, AnAnalysisSearchesTheOtherFoldersWhileOneDoesNotOpen) {
    onAnalysisWithClosedFolder([](HangingMachine& machine, HangingFolder&) {
        PersonalFiles& files = machine.disk.files;
        EXPECT_EQ(files.stopAnalysis(), Outcome::asked());
        serveUntil(machine.loop, [&] { return !files.state().storageAnalyzerBusy; });
        EXPECT_EQ(files.state().storageAnalyzerStatus,
                  "Analysis stopped. It had found 1 large personal file.");
    });
}

TEST(HangingVolume, AnAnalysisEndsWhenAFolderThatDidNotOpenFails) {
    onAnalysisWithClosedFolder([](HangingMachine& machine, HangingFolder& closed) {
        closed.answer();
        PersonalFiles& files = machine.disk.files;
        serveUntil(machine.loop, [&] { return !files.state().storageAnalyzerBusy; });
        EXPECT_EQ(files.state().storageAnalyzerStatus,
                  "Found 1 large personal files. Review each recommendation before acting.");
    });
}

TEST(HangingVolume, AStorageScanTellsTheAreaAndCanBeStopped) {
    onHangingMachine([](HangingMachine& machine) {
        StorageScan& storage = machine.disk.storage;
        storage.scanStorageAreas();
        serveUntil(machine.loop, [&] { return !storage.state().progress.area.empty(); });
        EXPECT_EQ(storage.stop(), Outcome::asked());
        serveUntil(machine.loop, [&] { return !storage.state().diskStorageScanInProgress; });
        EXPECT_THAT(machine.status(), HasSubstr("Storage scan stopped after "));
    });
}

}  // namespace
}  // namespace tallowcrest

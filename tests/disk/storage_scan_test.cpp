#include "disk/storage_scan.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_kinds.h"
#include "core/observable.h"
#include "tests/support/disk_machine.h"
#include "tests/support/each_of.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr std::int64_t kilobytesPerGigabyte = 1048576;

/// Areas that are real folders, measured by a tool that is not run.
class StorageScanTest : public ::testing::Test, protected DiskMachine {
protected:
    StorageScanTest() {
        for (const char* name : {"one", "two", "three", "four", "five"}) {
            fs::create_directory(folder.path(name));
            diskPorts.areas.push_back({name, folder.path(name)});
        }
        diskPorts.areas.push_back({"absent", folder.path("absent")});
        remote.launcher.onLaunch = [this](const ToolRequest& request) {
            const std::string name = fs::path(request.arguments.back()).filename().string();
            const auto found = outputs.find(name);
            remote.launcher.willWrite(found != outputs.end()
                                          ? found->second + '\t' + request.arguments.back() + '\n'
                                          : "");
        };
        beginDisk();
    }

    StorageScan& storage() { return disk->storage; }
    const StorageScanState& state() { return storage().state(); }

    /// "name bytes" of each row.
    std::vector<std::string> rows() {
        return eachOf(state().diskStorageOffenders, [](const DiskStorageOffender& row) {
            return row.name + ' ' + std::to_string(row.bytes);
        });
    }

    void scan() {
        storage().scanStorageAreas();
        finishWork();
    }

    TemporaryFolder folder;
    /// What the tool prints in front of the path, by the name of the folder.
    std::map<std::string, std::string> outputs{
        {"one", "10"}, {"two", "30"}, {"three", "20"}, {"four", "5"}};
};

TEST_F(StorageScanTest, TheAreasAreMeasuredAndRanked) {
    EXPECT_EQ(storage().scanStorageAreas(), Outcome::asked());
    EXPECT_TRUE(state().diskStorageScanInProgress);
    EXPECT_EQ(state().progress, (StorageScanProgress{0, 6}));
    EXPECT_EQ(status(), "Measuring storage areas; large folders can take up to a minute…");
    finishWork();
    EXPECT_THAT(rows(), ElementsAre("two 30720", "three 20480", "one 10240", "four 5120"));
    EXPECT_FALSE(state().diskStorageScanInProgress);
    EXPECT_EQ(status(), "Storage scan complete. Largest: two at 0.0 GB.");
    EXPECT_THAT(events(),
                ElementsAre("Disk Storage: Ranked 4 volume and user storage areas. Unreadable data "
                            "is shown as a remainder; no files were changed."));
    EXPECT_EQ(log.activityLog()[0].kind, ActivityKind::diskStorage);
    EXPECT_EQ(log.lastAction(), "Monitoring started.");
}

TEST_F(StorageScanTest, EachAreaThatExistsIsMeasuredOnceAtMostThreeAtATime) {
    storage().scanStorageAreas();
    EXPECT_EQ(workQueue.pendingCount(), 3U);
    EXPECT_EQ(workQueue.laneOf(0), Lane::storageScan);
    finishWork();
    ASSERT_THAT(remote.launcher.requests, SizeIs(5));
    for (std::size_t i = 0; i < 5; ++i) {
        const ToolRequest& request = remote.launcher.requests[i];
        EXPECT_EQ(request.path, "/usr/bin/du");
        EXPECT_THAT(request.arguments, ElementsAre("-sk", "-x", diskPorts.areas[i].folder));
        EXPECT_EQ(request.timeout, std::chrono::milliseconds(60000));
        EXPECT_FALSE(request.mergeStandardError);
    }
}

TEST_F(StorageScanTest, ASecondStartDoesNothing) {
    storage().scanStorageAreas();
    EXPECT_EQ(storage().scanStorageAreas(), Outcome::ignored());
    EXPECT_EQ(workQueue.pendingCount(), 3U);
}

TEST_F(StorageScanTest, TheRowsOfTheLastScanStayDuringTheNext) {
    scan();
    outputs = {{"five", "1"}};
    storage().scanStorageAreas();
    EXPECT_THAT(state().diskStorageOffenders, SizeIs(4));
    finishWork();
    EXPECT_THAT(rows(), ElementsAre("five 1024"));
}

TEST_F(StorageScanTest, TheRemainderNeedsASample) {
    outputs = {{"one", std::to_string(3 * kilobytesPerGigabyte)}};
    scan();
    EXPECT_THAT(rows(), ElementsAre("one 3221225472"));
    sample.setSnapshot(diskOf(494.0));
    scan();
    EXPECT_THAT(rows(), ElementsAre("Other / inaccessible data 3221225472", "one 3221225472"));
    EXPECT_EQ(state().diskStorageOffenders[0].path, "/");
    sample.setSnapshot(diskOf(600.0));
    scan();
    EXPECT_THAT(rows(), ElementsAre("one 3221225472"));
}

TEST_F(StorageScanTest, AnAreaOnAnotherFileSystemIsNotPartOfTheRemainder) {
    outputs = {{"one", std::to_string(3 * kilobytesPerGigabyte)},
               {"two", std::to_string(5 * kilobytesPerGigabyte)}};
    diskPorts.volumeOf = [](const std::string& path) {
        return path.ends_with("/two") ? Volume{2, 2} : Volume{1, 1};
    };
    beginDisk();
    sample.setSnapshot(diskOf(494.0));
    scan();
    EXPECT_THAT(rows(), ElementsAre("two 5368709120", "Other / inaccessible data 3221225472",
                                    "one 3221225472"));
}

TEST_F(StorageScanTest, AnAreaThatIsALinkIsMeasuredWhereItLeads) {
    const fs::path root = fs::canonical(folder.path());
    fs::remove(root / "three");
    fs::create_directory_symlink("two", root / "three");
    fs::create_directory(root / "one/inside");
    fs::remove(root / "four");
    fs::create_directory_symlink("one/inside", root / "four");
    outputs["inside"] = "4";
    scan();
    // What two areas share is counted once.
    EXPECT_THAT(rows(), ElementsAre("three 30720", "one 6144", "four 4096"));
    EXPECT_EQ(state().diskStorageOffenders[0].path, folder.path("three"));
    for (const ToolRequest& request : remote.launcher.requests) {
        EXPECT_FALSE(fs::is_symlink(request.arguments.back())) << request.arguments.back();
    }
}

TEST_F(StorageScanTest, AnAreaWhoseNameIsNoTextIsMeasuredAndShown) {
    const std::string name = "caf\xE9";
    fs::create_directory(folder.path(name));
    diskPorts.areas.push_back({"Pictures", folder.path(name)});
    outputs[name] = "50";
    beginDisk();
    scan();
    EXPECT_EQ(rows().front(), "Pictures 51200");
    EXPECT_EQ(state().diskStorageOffenders.front().path, folder.path(name)) << "its bytes";
}

TEST_F(StorageScanTest, AToolThatIsNotAllowedIsRefusedOncePerArea) {
    const CommandSafetyPolicy::AllowedExecutables allowed{"/bin/true"};
    ToolRunner refusing(allowed, remote.launcher, jobs, log);
    disk.reset();
    StorageScan other({services, sample, actions.automation, refusing, diskPorts.ports()});
    other.scanStorageAreas();
    finishWork();
    EXPECT_THAT(remote.launcher.requests, IsEmpty());
    EXPECT_EQ(status(), "Storage scan found no readable folders. Check Full Disk Access.");
    std::vector<std::string> expected(
        5, "Action: Blocked executable outside Tallowcrest's command allowlist.");
    expected.emplace_back(
        "Disk Storage: Ranked 0 volume and user storage areas. Unreadable data is shown as a "
        "remainder; no files were changed.");
    EXPECT_EQ(events(), expected);
}

TEST_F(StorageScanTest, WithoutAnyAreaTheAdviceIsGiven) {
    fs::remove_all(folder.path());
    scan();
    EXPECT_THAT(remote.launcher.requests, IsEmpty());
    EXPECT_EQ(status(), "Storage scan found no readable folders. Check Full Disk Access.");
    EXPECT_THAT(events(),
                ElementsAre("Disk Storage: Ranked 0 volume and user storage areas. Unreadable data "
                            "is shown as a remainder; no files were changed."));
    EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(StorageScanTest, TheProgressTellsTheAreaAtHandAndItsTime) {
    std::vector<StorageScanProgress> seen;
    const auto write = remote.launcher.onLaunch;
    remote.launcher.onLaunch = [&, write](const ToolRequest& request) {
        write(request);
        // The timer is asked more often than something changes.
        mainQueue.fireTimers();
        seen.push_back(state().progress);
        clock.advance(std::chrono::milliseconds(3500));
        mainQueue.fireTimers();
        seen.push_back(state().progress);
    };
    storage().scanStorageAreas();
    ASSERT_THAT(mainQueue.timerIntervals(), SizeIs(1));
    EXPECT_LE(mainQueue.timerIntervals()[0], std::chrono::milliseconds(250));
    finishWork();
    ASSERT_THAT(seen, SizeIs(10));
    EXPECT_EQ(seen[0], (StorageScanProgress{0, 6, "one", 0}));
    EXPECT_EQ(seen[1], (StorageScanProgress{0, 6, "one", 3}));
    EXPECT_EQ(seen[9], (StorageScanProgress{4, 6, "five", 3}));
    EXPECT_THAT(mainQueue.timerIntervals(), IsEmpty()) << "nothing is to be told any more";
}

TEST_F(StorageScanTest, AnUnchangedProgressNotifiesNobody) {
    storage().scanStorageAreas();
    mainQueue.drain();
    int changes = 0;
    const Subscription subscription = storage().observable().subscribe([&] { ++changes; });
    mainQueue.fireTimers();
    mainQueue.drain();
    EXPECT_EQ(changes, 0);
}

TEST_F(StorageScanTest, AClockThatWasSetBackGivesNoNegativeTime) {
    const auto write = remote.launcher.onLaunch;
    std::int64_t least = 0;
    remote.launcher.onLaunch = [&, write](const ToolRequest& request) {
        write(request);
        clock.advance(-std::chrono::hours(1));
        mainQueue.fireTimers();
        least = std::min(least, state().progress.seconds);
    };
    scan();
    EXPECT_EQ(least, 0);
}

TEST_F(StorageScanTest, AStoppedScanShowsWhatItHasWithoutARemainder) {
    sample.setSnapshot(diskOf(100.0));
    const auto write = remote.launcher.onLaunch;
    remote.launcher.onLaunch = [this, write](const ToolRequest& request) {
        write(request);
        if (request.arguments.back().ends_with("/two")) {
            EXPECT_EQ(storage().stop(), Outcome::asked());
            EXPECT_TRUE(state().isStopping);
            EXPECT_EQ(storage().stop(), Outcome::ignored());
        }
    };
    scan();
    EXPECT_THAT(rows(), ElementsAre("two 30720", "one 10240"));
    EXPECT_FALSE(state().diskStorageScanInProgress);
    EXPECT_FALSE(state().isStopping);
    EXPECT_EQ(status(), "Storage scan stopped after 2 of 6 areas.");
    EXPECT_THAT(events(),
                ElementsAre("Disk Storage: Ranked 2 storage areas. The scan was stopped after 2 of "
                            "6 areas, so there is no remainder; no files were changed."));
    EXPECT_EQ(storage().stop(), Outcome::ignored());
}

TEST_F(StorageScanTest, AStopAfterTheLastAreaIsTooLate) {
    for (const bool isGivenUp : {false, true}) {
        storage().scanStorageAreas();
        while (workQueue.pendingCount() > 0) {
            workQueue.run();
        }
        EXPECT_EQ(storage().stop(), Outcome::asked());
        if (isGivenUp) {
            mainQueue.fireTimers();
        }
        mainQueue.drain();
        EXPECT_THAT(rows(), SizeIs(4));
        EXPECT_FALSE(state().diskStorageScanInProgress);
        EXPECT_FALSE(state().isStopping);
        EXPECT_EQ(status(), "Storage scan complete. Largest: two at 0.0 GB.");
    }
}

TEST_F(StorageScanTest, AStopBeforeTheHomeVolumeIsReadGivesNoRemainder) {
    sample.setSnapshot(diskOf(100.0));
    diskPorts.volumeOf = [this](const std::string& path) {
        if (path == FakeDiskPorts::home) {
            // The other workers do all there is to do, while this one hangs.
            while (workQueue.pendingCount() > 0) {
                workQueue.run();
            }
            storage().stop();
            mainQueue.fireTimers();
            EXPECT_EQ(status(), "Storage scan stopped after 6 of 6 areas.");
            EXPECT_THAT(rows(), SizeIs(4));
        }
        return Volume{1, 1};
    };
    beginDisk();
    scan();
    EXPECT_EQ(status(), "Storage scan stopped after 6 of 6 areas.");
}

TEST_F(StorageScanTest, AStopEndsTheToolsAtOnceAndDoesNotCountTheirAreas) {
    const auto write = remote.launcher.onLaunch;
    remote.launcher.onLaunch = [this, write](const ToolRequest& request) {
        write(request);
        if (request.arguments.back().ends_with("/two")) {
            EXPECT_FALSE(request.stop.stop_requested());
            storage().stop();
            EXPECT_TRUE(request.stop.stop_requested());
            remote.launcher.willWrite("");
        }
    };
    scan();
    EXPECT_THAT(rows(), ElementsAre("one 10240"));
    EXPECT_EQ(status(), "Storage scan stopped after 1 of 6 areas.");
    EXPECT_THAT(remote.launcher.requests, SizeIs(2));
}

TEST_F(StorageScanTest, TheEndOfTheProgramEndsTheTools) {
    const auto write = remote.launcher.onLaunch;
    remote.launcher.onLaunch = [this, write](const ToolRequest& request) {
        write(request);
        jobs.stopAll();
        EXPECT_TRUE(request.stop.stop_requested());
    };
    scan();
    EXPECT_THAT(remote.launcher.requests, SizeIs(1));
}

TEST_F(StorageScanTest, AScanThatHangsIsForgotten) {
    scan();
    storage().scanStorageAreas();
    storage().stop();
    mainQueue.fireTimers();
    EXPECT_FALSE(state().diskStorageScanInProgress);
    EXPECT_EQ(status(), "Storage scan stopped after 0 of 6 areas.");
    // Those of the scan before.
    EXPECT_THAT(rows(), SizeIs(4));
    finishWork();
    EXPECT_EQ(storage().scanStorageAreas(), Outcome::asked());
}

TEST_F(StorageScanTest, ARowIsShownInTheFileManager) {
    EXPECT_EQ(storage().revealStorageOffender({"Music", "/home/owner/Music", 1}),
              Outcome::done("Revealed Music in Finder."));
    EXPECT_THAT(diskPorts.revealed, ElementsAre("/home/owner/Music"));
    EXPECT_THAT(events(), ElementsAre("Action: Revealed Music in Finder."));
}

TEST_F(StorageScanTest, WithoutPortsNothingIsDone) {
    beginDisk({});
    EXPECT_EQ(storage().scanStorageAreas().kind, Outcome::Kind::refused);
    EXPECT_EQ(storage().revealStorageOffender({"Music", "/m", 1}).kind, Outcome::Kind::refused);
    EXPECT_EQ(workQueue.pendingCount(), 0U);
}

}  // namespace
}  // namespace tallowcrest

#include "disk/cache_cleanup.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <stop_token>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/each_of.h"
#include "tests/support/fake_disk_ports.h"
#include "tests/support/manual_clock.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

constexpr std::int64_t gigabyte = 1073741824;

class CacheCleanupTest : public ::testing::Test {
protected:
    static std::string inCaches(const std::string& name) { return "/home/owner/.cache/" + name; }

    std::string add(const std::string& name, std::int64_t bytes, double days = 40.0) {
        files.add(inCaches(name), bytes, clock.now().unixSeconds() - days * 86400.0);
        return inCaches(name);
    }

    DiskCleanupPlans plans(const std::string& caches = "/home/owner/.cache",
                           const std::string& home = "/home/owner") {
        return buildDiskCleanupPlan(
            walk, {{caches, home, kept}, 30.0, 2.0, wantedBack}, clock,
            [this](SearchProgress progress) { seen.push_back(progress.filesSeen); },
            stopSource.get_token());
    }
    DiskCleanupPlan plan(const std::string& caches = "/home/owner/.cache",
                         const std::string& home = "/home/owner") {
        return plans(caches, home).review;
    }
    std::vector<std::string> planned() { return eachOf(plan().urls, &CleanupCandidate::path); }

    CleanupProgress move(const std::vector<CleanupCandidate>& candidates, double maxGB = 2.0,
                         const std::string& caches = "/home/owner/.cache") {
        CleanupTally tally(candidates.size());
        moveOldCaches(
            trash, {candidates, {caches, "/home/owner", kept}, maxGB}, tally, [this] { ++told; },
            Stop(programStop.get_token(), changes), stopSource.get_token());
        return tally.progress();
    }

    ManualClock clock;
    FakeFiles files;
    FakeFileWalk walk{files};
    FakeTrash trash{files};
    std::vector<std::string> kept;
    std::vector<FileIdentity> wantedBack;
    std::vector<std::int64_t> seen;
    std::stop_source stopSource;
    std::stop_source programStop;
    DiskChanges changes;
    int told = 0;
};

TEST_F(CacheCleanupTest, OldFilesAreTakenInTheOrderOfTheWalk) {
    const std::string b = add("b", 10);
    add("young", 10, 30.0);
    add("future", 10, -5.0);
    add("empty", 0);
    const std::string a = add("a", 20, 31.0);
    files.add("/home/owner/Documents/old", 10, 0.0);
    const DiskCleanupPlan made = plan();
    EXPECT_THAT(eachOf(made.urls, &CleanupCandidate::path), ElementsAre(b, a));
    EXPECT_EQ(made.urls[0], (CleanupCandidate{b, files.find(b)->identity, 10}));
    EXPECT_EQ(made.bytes, 30);
    EXPECT_EQ(made.createdAt, clock.now());
    EXPECT_THAT(walk.roots, ElementsAre("/home/owner/.cache"));
    EXPECT_EQ(seen.front(), 1);
}

TEST_F(CacheCleanupTest, ALaterSmallerFileMayStillFit) {
    const std::string first = add("first", 2 * gigabyte - 10);
    add("too large", 11);
    const std::string last = add("last", 10);
    add("none left", 1);
    EXPECT_THAT(planned(), ElementsAre(first, last));
    files.all.clear();
    EXPECT_THAT(planned(), IsEmpty());
    const std::string whole = add("whole", 2 * gigabyte);
    add("one byte", 1);
    EXPECT_THAT(planned(), ElementsAre(whole));
    files.all.clear();
    add("larger than the cap", 2 * gigabyte + 1);
    EXPECT_THAT(planned(), IsEmpty());
}

TEST_F(CacheCleanupTest, TheWalkEndsAtFiveHundredFiles) {
    for (int i = 0; i < 510; ++i) {
        add(fmt::format("{:03}", i), 1);
    }
    int visited = 0;
    walk.visited = [&] { ++visited; };
    const DiskCleanupPlan made = plan();
    EXPECT_THAT(made.urls, SizeIs(500));
    EXPECT_EQ(made.urls.back().path, inCaches("499"));
    EXPECT_EQ(visited, 499);
}

TEST_F(CacheCleanupTest, WhatWasWantedBackTakesNoRoomInThePlanOfAnAutomaticRun) {
    const std::string large = add("large", 2 * gigabyte);
    wantedBack = {files.find(large)->identity};
    const std::string small = add("small", gigabyte);
    add("too large", gigabyte + 1);
    kept = {"/home/owner/Documents"};
    const DiskCleanupPlans made = plans();
    EXPECT_THAT(eachOf(made.review.urls, &CleanupCandidate::path), ElementsAre(large));
    EXPECT_THAT(eachOf(made.automatic.urls, &CleanupCandidate::path), ElementsAre(small));
    EXPECT_EQ(made.automatic.bytes, gigabyte);
    EXPECT_EQ(made.automatic.createdAt, made.review.createdAt);
    kept = {"/home/owner/.cache"};
    EXPECT_EQ(plans().automatic.keptFolder, "/home/owner/.cache");
}

TEST_F(CacheCleanupTest, WithNothingWantedBackBothPlansAreTheSame) {
    add("a", 1);
    add("b", 2);
    const DiskCleanupPlans made = plans();
    EXPECT_THAT(made.review.urls, SizeIs(2));
    EXPECT_EQ(made.automatic, made.review);
}

TEST_F(CacheCleanupTest, TheWalkGoesOnUntilBothPlansAreFull) {
    for (int i = 0; i < 1010; ++i) {
        const std::string path = add(fmt::format("{:04}", i), 1);
        if (i < 500) {
            wantedBack.push_back(files.find(path)->identity);
        }
    }
    int visited = 0;
    walk.visited = [&] { ++visited; };
    const DiskCleanupPlans made = plans();
    EXPECT_THAT(made.review.urls, SizeIs(500));
    EXPECT_EQ(made.review.urls.back().path, inCaches("0499"));
    EXPECT_THAT(made.automatic.urls, SizeIs(500));
    EXPECT_EQ(made.automatic.urls.back().path, inCaches("0999"));
    EXPECT_EQ(visited, 999);
}

TEST_F(CacheCleanupTest, AStopEndsTheWalk) {
    add("a", 1);
    add("b", 1);
    walk.visited = [this] { stopSource.request_stop(); };
    EXPECT_THAT(planned(), ElementsAre(inCaches("a")));
}

TEST_F(CacheCleanupTest, TheHomeDirectoryIsNeverWalkedAsTheCaches) {
    files.add("/home/owner/Documents/old", 10, 0.0);
    for (const char* caches :
         {"/home/owner", "/home/owner/", "/home", "/", "", "/home/owner/x/.."}) {
        EXPECT_THAT(plan(caches).urls, IsEmpty()) << caches;
    }
    EXPECT_THAT(walk.roots, IsEmpty());
}

TEST_F(CacheCleanupTest, AFolderOfOtherFilesIsNeitherWalkedNorEmptiedAsTheCaches) {
    const std::string old = add("old", 10);
    const DiskCleanupPlan made = plan();
    ASSERT_THAT(eachOf(made.urls, &CleanupCandidate::path), ElementsAre(old));
    kept = {"/home/owner/.cache"};
    EXPECT_THAT(planned(), IsEmpty());
    EXPECT_EQ(move(made.urls).moved, 0) << "it became one between the review and the run";
}

TEST_F(CacheCleanupTest, CachesThatOverlapWithTheOwnersFoldersAreNotWalked) {
    UserFolders usual;
    usual.home = "/home/o";
    usual.downloads = "/home/o/Downloads";
    usual.music = "/home/o/Music";
    usual.caches = "/home/o/.cache";
    usual.data = "/home/o/.local/share";
    usual.configuration = "/home/o/.config";
    const auto walked = [&](const UserFolders& folders) {
        files.all.clear();
        files.add(folders.caches + "/old", 10, 0.0);
        kept = linuxKeptFolders(folders);
        return !plan(folders.caches, folders.home).urls.empty();
    };
    EXPECT_TRUE(walked(usual));
    const auto cachesAt = [&](const std::string& caches) {
        UserFolders folders = usual;
        folders.caches = caches;
        return folders;
    };
    for (const char* taken :
         {"/home/o/.config", "/home/o/Music", "/home/o/.local/share", "/home/o/snap", "/home/o/go",
          "/home/o/.cargo", "/home/o/.thunderbird", "/home/o/.local/share/evolution"}) {
        EXPECT_FALSE(walked(cachesAt(taken))) << taken;
    }
    UserFolders outside = cachesAt("/data");
    EXPECT_TRUE(walked(outside));
    outside.data = "/data/share";
    EXPECT_FALSE(walked(outside));
    outside = cachesAt("/data");
    outside.music = "/data/music";
    EXPECT_FALSE(walked(outside));
    UserFolders unset = usual;
    unset.downloads = unset.home;
    EXPECT_TRUE(walked(unset)) << "a folder that is not set apart is no reason";
}

TEST_F(CacheCleanupTest, ThePlanNamesTheFolderThatTheCachesOverlapWith) {
    add("old", 10);
    kept = {"/home/owner/Music", "/home/owner/.cache/films", "/home/owner/.cache"};
    EXPECT_EQ(plan().keptFolder, "/home/owner/.cache/films");
    kept.clear();
    EXPECT_EQ(plan().keptFolder, "");
    EXPECT_EQ(plan("/home").keptFolder, "/home/owner");
    EXPECT_EQ(plan("").keptFolder, "");
}

TEST_F(CacheCleanupTest, AFolderThatCannotBeResolvedIsComparedAsItIsWritten) {
    const TemporaryFolder folder;
    const std::string root = std::filesystem::canonical(folder.path()).string();
    std::filesystem::create_directories(root + "/cache");
    for (const char* loop : {"/Music", "/cache/films"}) {
        std::filesystem::create_symlink(std::filesystem::path(loop).filename(), root + loop);
    }
    std::filesystem::create_symlink("cache", root + "/link");
    files.add(root + "/cache/old", 1);
    kept = {root + "/Music", root + "/Music/inside"};
    EXPECT_THAT(plan(root + "/cache", root).urls, SizeIs(1));
    for (const char* inside : {"/cache/films", "/link/films", "/link/films/new/inside"}) {
        kept = {root + inside};
        EXPECT_EQ(plan(root + "/cache", root).keptFolder, root + inside);
        EXPECT_THAT(plan(root + "/cache", root).urls, IsEmpty());
    }
    // Nor is the home directory forgotten.
    kept.clear();
    EXPECT_EQ(plan(root + "/cache", root + "/link/films").keptFolder, root + "/link/films");
}

TEST_F(CacheCleanupTest, OnMacOSTheFolderOfTheCachesIsNotKept) {
    const UserFolders folders = macOSUserFolders("/Users/o");
    EXPECT_THAT(macOSKeptFolders(folders),
                AllOf(Not(Contains(folders.caches)), Contains("/Users/o/Library/Mail"),
                      Contains("/Users/o/Music")));
}

TEST_F(CacheCleanupTest, ThePlaceKeepsWhatThePlatformSays) {
    DiskPlaces places;
    places.home = "/home/o";
    places.caches = "/home/o/.cache";
    places.kept = {"/home/o/.cache"};
    EXPECT_THAT(cachesPlace(places).kept, ElementsAre("/home/o/.cache"));
}

TEST_F(CacheCleanupTest, AFileReachedThroughALinkThatLeavesTheFolderIsLeft) {
    const TemporaryFolder folder;
    const std::string root = std::filesystem::canonical(folder.path()).string();
    std::filesystem::create_directories(root + "/cache/in");
    std::filesystem::create_directories(root + "/outside");
    std::filesystem::create_symlink("../outside", root + "/cache/out");
    std::filesystem::create_symlink("cache", root + "/link");
    const std::string inside = root + "/cache/in/a";
    const std::string outside = root + "/cache/out/b";
    files.add(inside, 1);
    files.add(outside, 2);
    // The caches themselves may be a link of the owner's.
    const DiskCleanupPlan made = plan(root + "/link", root);
    EXPECT_THAT(walk.roots, ElementsAre(root + "/cache"));
    EXPECT_THAT(eachOf(made.urls, &CleanupCandidate::path), ElementsAre(inside));
    const CleanupProgress moved =
        move({{inside, files.find(inside)->identity}, {outside, files.find(outside)->identity}},
             2.0, root + "/link");
    EXPECT_THAT(trash.moved, ElementsAre(inside));
    EXPECT_THAT(trash.requests, SizeIs(1));
    EXPECT_EQ(moved, (CleanupProgress{2, 2, 1, 1}));
}

TEST_F(CacheCleanupTest, EachFileIsTestedAgainWhenItIsMoved) {
    const DiskCleanupPlan made = [this] {
        for (const char* name : {"a", "replaced", "gone", "emptied", "d"}) {
            add(name, 10);
        }
        return plan();
    }();
    add("replaced", 10);
    files.remove(inCaches("gone"));
    files.find(inCaches("emptied"))->bytes = 0;
    const CleanupProgress progress = move(made.urls);
    EXPECT_THAT(trash.moved, ElementsAre(inCaches("a"), inCaches("d")));
    EXPECT_EQ(progress, (CleanupProgress{5, 5, 2, 20}));
    EXPECT_EQ(told, 5);
    for (const TrashRequest& request : trash.requests) {
        EXPECT_EQ(request.inside, "/home/owner/.cache");
        EXPECT_TRUE(request.identity);
    }
}

TEST_F(CacheCleanupTest, TheCapOfTheMomentHolds) {
    const std::vector<CleanupCandidate> candidates = [this] {
        add("a", gigabyte);
        add("b", gigabyte);
        return plan().urls;
    }();
    files.all[0].bytes = gigabyte / 2 + 1;  // has grown or shrunk since
    files.all[1].bytes = gigabyte / 2;
    EXPECT_EQ(move(candidates, 1.0), (CleanupProgress{2, 2, 1, gigabyte / 2 + 1}));
    EXPECT_EQ(trash.requests[0].maximumBytes, gigabyte);
    EXPECT_EQ(trash.requests[1].maximumBytes, gigabyte / 2 - 1);
}

TEST_F(CacheCleanupTest, AStopEndsTheRunAfterTheFileAtHand) {
    add("a", 1);
    add("b", 1);
    const DiskCleanupPlan made = plan();
    trash.moving = [this](const std::string&) { stopSource.request_stop(); };
    EXPECT_EQ(move(made.urls), (CleanupProgress{1, 2, 1, 1}));
    EXPECT_EQ(move(made.urls), (CleanupProgress{0, 2, 0, 0}));
}

TEST_F(CacheCleanupTest, TheEndOfTheProgramEndsTheRunAfterTheFileAtHand) {
    add("a", 1);
    add("b", 1);
    const DiskCleanupPlan made = plan();
    trash.moving = [this](const std::string&) { programStop.request_stop(); };
    EXPECT_EQ(move(made.urls), (CleanupProgress{1, 2, 1, 1}));
}

TEST_F(CacheCleanupTest, ARunThatBeginsToMoveTidiesTheTrashOnce) {
    for (int i = 0; i < 40; ++i) {
        add(std::to_string(i), 1);
    }
    const DiskCleanupPlan made = plan();
    trash.moving = [this](const std::string&) { EXPECT_THAT(trash.tidied, SizeIs(1)); };
    EXPECT_EQ(move(made.urls).moved, 40U);
    EXPECT_THAT(trash.tidied, ElementsAre("/home/owner/.cache"));
}

TEST_F(CacheCleanupTest, ARunThatMovesNothingDoesNotTidyTheTrash) {
    add("a", 1);
    const DiskCleanupPlan made = plan();
    move({});
    move(made.urls, 2.0, "/home");
    stopSource.request_stop();
    move(made.urls);
    EXPECT_THAT(trash.tidied, IsEmpty());
}

TEST_F(CacheCleanupTest, NoFileIsMovedOnceTheProgramIsEnding) {
    add("a", 1);
    const DiskCleanupPlan made = plan();
    changes.finish(std::chrono::milliseconds(0));
    EXPECT_EQ(move(made.urls), (CleanupProgress{0, 1, 0, 0}));
    EXPECT_THAT(trash.requests, IsEmpty());
    EXPECT_THAT(trash.tidied, IsEmpty());
}

}  // namespace
}  // namespace tallowcrest

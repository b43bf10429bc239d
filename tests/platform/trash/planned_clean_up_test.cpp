// A clean-up from the walk to the Trash, on real files, with what can happen between its plan and
// its run.

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "disk/cache_cleanup.h"
#include "platform/base/unique_fd.h"
#include "platform/files/file_walk_posix.h"
#include "platform/trash/file_status.h"
#include "tests/platform/trash/own_mounts.h"
#include "tests/platform/trash/swap_names.h"
#include "tests/platform/trash/trash_fixture.h"
#include "tests/support/eventually.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

class PlannedCleanUpTest : public TrashFixture {
protected:
    /// Writes a file of the caches that has not changed for 40 days.
    std::string old(const std::string& name, const std::string& content = "old") {
        const std::string path = write(inCache(name), content);
        setAge(path, 40 * 86400);
        return path;
    }

    DiskCleanupPlan plan() {
        PosixFileWalk walk;
        return buildDiskCleanupPlan(walk, {place, 30.0, 2.0}, clock, [](const SearchProgress&) {},
                                    {})
            .review;
    }

    CleanupProgress carryOut(
        const DiskCleanupPlan& made, const std::function<void()>& afterEach = [] {}) {
        DiskChanges changes;
        CleanupTally tally(made.urls.size());
        moveOldCaches(trash, {made.urls, place, 2.0}, tally, afterEach, Stop({}, changes),
                      stop.get_token());
        return tally.progress();
    }

    void carryOutUntilAKill(const DiskCleanupPlan& made, int killedAfter) {
        const pid_t child = ::fork();
        if (child == 0) {
            int done = 0;
            carryOut(made, [&] {
                if (++done == killedAfter) {
                    ::raise(SIGKILL);
                }
            });
            ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
    }

    /// Makes and plans so many files, which is more than are prepared at once.
    DiskCleanupPlan planOf(int count) {
        for (int number = 0; number < count; ++number) {
            old(std::to_string(number));
        }
        return plan();
    }

    std::vector<std::string> movedNames() const {
        std::vector<std::string> names;
        for (const TrashedFile& file : contents()) {
            EXPECT_EQ(file.isThere, !file.restorePath.empty());
            names.push_back(file.storedName);
        }
        return names;
    }

    std::stop_source stop;
    const CachesPlace place{(home / ".cache").string(), home.string(), {}};
};

TEST_F(PlannedCleanUpTest, MovesWhatIsStillAsItWasPlanned) {
    old("a/one");
    old("b/two");
    write(inCache("young"), "young");
    const DiskCleanupPlan made = plan();
    ASSERT_THAT(made.urls, SizeIs(2));
    EXPECT_EQ(carryOut(made), (CleanupProgress{2, 2, 2, 6}));
    EXPECT_THAT(movedNames(), UnorderedElementsAre("one", "two"));
    EXPECT_TRUE(fs::exists(inCache("young")));
}

TEST_F(PlannedCleanUpTest, LeavesWhatTookThePlaceOfAPlannedFile) {
    const std::map<std::string, std::function<void(const std::string&)>> swaps{
        // Its number is often the same, and then its birth tells it.
        {"made anew",
         [this](const std::string& path) {
             const auto birth = statusAt(AT_FDCWD, path)->identity.bornAt;
             fs::remove(path);
             // Births are kept in steps of a few milliseconds, on volumes that keep them.
             EXPECT_TRUE(birth == 0 || eventually([&] {
                             fs::remove(inCache("tick"));
                             return statusAt(AT_FDCWD, old("tick"))->identity.bornAt != birth;
                         }));
             fs::remove(inCache("tick"));
         }},
        {"replaced",
         [this](const std::string& path) { fs::rename(write(home / "new", "new content"), path); }},
        {"a link",
         [this](const std::string& path) {
             fs::remove(path);
             fs::create_symlink(write(home / "mine", "mine"), path);
         }},
        {"a folder",
         [](const std::string& path) {
             fs::remove(path);
             fs::create_directory(path);
         }},
        {"gone", [](const std::string& path) { fs::remove(path); }},
        {"emptied", [](const std::string& path) { fs::resize_file(path, 0); }},
        {"another name", [](const std::string& path) { fs::rename(path, path + " elsewhere"); }},
        {"another folder",
         [this](const std::string& path) {
             const fs::path folder = fs::path(path).parent_path();
             fs::rename(folder, home / "kept");
             write(path, "new content");
         }},
        {"a link for its folder",
         [this](const std::string& path) {
             const fs::path folder = fs::path(path).parent_path();
             fs::rename(folder, home / "linked");
             fs::create_directory_symlink(home / "linked", folder);
         }},
    };
    for (const auto& [name, swap] : swaps) {
        SCOPED_TRACE(name);
        const std::string path = old(name + "/file", "planned");
        const DiskCleanupPlan made = plan();
        ASSERT_THAT(made.urls, SizeIs(1));
        swap(path);
        if (name == "made anew") {
            old(name + "/file", "made anew");
        }
        EXPECT_EQ(carryOut(made), (CleanupProgress{1, 1, 0, 0}));
        EXPECT_THAT(contents(), IsEmpty());
        if (name == "made anew") {
            EXPECT_EQ(fileText(path), "made anew");
        }
        fs::remove_all(home / ".cache");
        fs::create_directory(home / ".cache");
    }
    EXPECT_EQ(fileText(home / "kept/file"), "planned");
    EXPECT_EQ(fileText(home / "linked/file"), "planned");
    EXPECT_EQ(fileText(home / "mine"), "mine");
}

TEST_F(PlannedCleanUpTest, AStopTakesBackWhatWasPreparedOnly) {
    const DiskCleanupPlan made = planOf(20);
    int done = 0;
    const CleanupProgress progress = carryOut(made, [&] {
        if (++done == 3) {
            stop.request_stop();
        }
    });
    EXPECT_EQ(progress, (CleanupProgress{3, 20, 3, 9}));
    EXPECT_THAT(movedNames(), SizeIs(3));
    EXPECT_THAT(plan().urls, SizeIs(17)) << "the others are in their places";
}

TEST_F(PlannedCleanUpTest, AKillLeavesEachFileInItsPlaceOrRestorable) {
    const DiskCleanupPlan made = planOf(20);
    for (const int killedAfter : {1, 16}) {
        const std::size_t before = plan().urls.size();
        ASSERT_NO_FATAL_FAILURE(carryOutUntilAKill(made, killedAfter));
        EXPECT_LT(plan().urls.size(), before);
        std::size_t restorable = 0;
        for (const TrashedFile& file : contents()) {
            EXPECT_FALSE(file.restorePath.empty()) << "cannot be restored";
            restorable += file.isThere ? 1U : 0U;
        }
        EXPECT_EQ(restorable + plan().urls.size(), made.urls.size());
    }
    // Descriptions that were left are in nobody's way.
    const DiskCleanupPlan rest = plan();
    EXPECT_EQ(carryOut(rest).moved, rest.urls.size());
}

TEST_F(PlannedCleanUpTest, RemovesTheDescriptionsThatAKillLeftAndNoOthers) {
    ASSERT_NO_FATAL_FAILURE(carryOutUntilAKill(planOf(20), 1));
    ASSERT_THAT(describedNames(), SizeIs(16));
    ASSERT_THAT(contents(), SizeIs(16));
    std::string moved;
    for (const TrashedFile& file : contents()) {
        moved = file.isThere ? file.storedName + ".trashinfo" : moved;
        setAge(homeTrash / "info" / (file.storedName + ".trashinfo"), 3601);
    }
    const fs::path info = homeTrash / "info";
    const auto describe = [&](const std::string& name, const std::string& path,
                              const std::string& ending = "\n") {
        write(info / name,
              "[Trash Info]\nPath=" + path + "\nDeletionDate=2026-05-01T00:00:00" + ending);
        setAge(info / name, 7200);
    };
    describe("foreign.trashinfo", inCache("foreign"), "\nOf=another program\n");
    describe("elsewhere.trashinfo", home / ".cache2/elsewhere");
    describe("young.trashinfo", inCache("young"));
    setAge(info / "young.trashinfo", 3599);
    describe("folder.trashinfo", inCache("folder"));
    fs::create_directory(homeTrash / "files/folder");
    describe("broken.trashinfo", inCache("broken"));
    fs::create_symlink("nowhere", homeTrash / "files/broken");
    describe("no description", inCache("a"));
    describe(".trashinfo", inCache("a"));
    fs::create_symlink("no description", info / "link.trashinfo");
    setAge(info / "link.trashinfo", 7200);
    fs::create_directory(info / "kind.trashinfo");
    setAge(info / "kind.trashinfo", 7200);
    std::set<std::string> kept{"foreign.trashinfo", "elsewhere.trashinfo", "young.trashinfo",
                               "folder.trashinfo",  "broken.trashinfo",    "no description",
                               ".trashinfo",        "link.trashinfo",      "kind.trashinfo"};
    kept.insert(moved);

    old("next");
    DiskCleanupPlan next = plan();
    EXPECT_THAT(next.urls, SizeIs(20));
    std::erase_if(next.urls,
                  [this](const CleanupCandidate& file) { return file.path != inCache("next"); });
    EXPECT_EQ(carryOut(next).moved, 1U);
    kept.insert("next.trashinfo");
    EXPECT_EQ(describedNames(), kept);
}

TEST_F(PlannedCleanUpTest, AFileWhoseDescriptionIsGoneStays) {
    const std::string path = old("a");
    const auto move = trash.prepareMove(reviewed(path));
    EXPECT_EQ(contents().at(0).restorePath, path);
    fs::remove(homeTrash / "info/a.trashinfo");
    write(homeTrash / "info/a.trashinfo", "of another program");
    EXPECT_EQ(move->complete({}).movedBytes, std::nullopt);
    EXPECT_EQ(fileText(path), "old");
    EXPECT_EQ(fileText(homeTrash / "info/a.trashinfo"), "of another program");
}

TEST_F(PlannedCleanUpTest, FollowsALinkThatTheOwnerMadeToTheCachesAndNoneBelow) {
    old("in/a");
    write(home / "Documents/letter", "mine");
    fs::rename(home / ".cache", home / "elsewhere");
    fs::create_directory_symlink("elsewhere", home / ".cache");
    fs::create_directory_symlink("../Documents", home / "elsewhere/out");
    EXPECT_EQ(carryOut(plan()), (CleanupProgress{1, 1, 1, 3}));
    EXPECT_THAT(movedNames(), UnorderedElementsAre("a"));
    EXPECT_EQ(fileText(home / "Documents/letter"), "mine");
}

TEST_F(PlannedCleanUpTest, PassesOverAFileOfTheLargestSize) {
    inOwnMounts([&] {
        mountMemory(home / ".cache");
        const std::string huge = write(inCache("huge"), "");
        fs::resize_file(huge, std::numeric_limits<std::int64_t>::max());
        old("small");
        const std::array<timespec, 2> times{timespec{1, 0}, timespec{1, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, huge.c_str(), times.data(), 0), 0);
        const DiskCleanupPlan made = plan();
        ASSERT_THAT(made.urls, SizeIs(1));
        EXPECT_EQ(made.urls[0].path, inCache("small"));
        EXPECT_EQ(made.bytes, 3);
        // Nor does it count for the others when one of them has become as large.
        fs::resize_file(made.urls[0].path, std::numeric_limits<std::int64_t>::max());
        EXPECT_EQ(carryOut(made), (CleanupProgress{1, 1, 0, 0}));
        EXPECT_TRUE(fs::exists(made.urls[0].path));
    });
}

TEST_F(PlannedCleanUpTest, AFileBelowFiveThousandFoldersStays) {
    inOwnMounts([&] {
        mountMemory(home / ".cache", "size=64m");
        const std::string shallow = old("file");
        UniqueFD folder(::open(inCache("").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        for (int level = 0; level < 5000; ++level) {
            ASSERT_EQ(::mkdirat(folder.get(), "d", 0755), 0);
            folder = UniqueFD(::openat(folder.get(), "d", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        }
        ASSERT_EQ(::linkat(AT_FDCWD, shallow.c_str(), folder.get(), "deep", 0), 0);
        int visited = 0;
        PosixFileWalk().walk(
            home / ".cache", [&](const FoundFile&) { return ++visited > 0; },
            [](const SearchProgress&) {}, {});
        EXPECT_EQ(visited, 2);
        // No path leads to it, so that nobody could restore it.
        const DiskCleanupPlan made = plan();
        ASSERT_THAT(made.urls, SizeIs(1));
        EXPECT_EQ(made.urls[0].path, shallow);
        EXPECT_EQ(carryOut(made).moved, 1U);
        EXPECT_EQ(::faccessat(folder.get(), "deep", F_OK, AT_SYMLINK_NOFOLLOW), 0);
    });
}

TEST_F(PlannedCleanUpTest, TakesNamesThatAreNoText) {
    const std::string path = old("caf\xE9/\xFF\n");
    EXPECT_EQ(carryOut(plan()), (CleanupProgress{1, 1, 1, 3}));
    ASSERT_THAT(contents(), SizeIs(1));
    EXPECT_EQ(contents()[0].restorePath, path);
}

}  // namespace
}  // namespace tallowcrest

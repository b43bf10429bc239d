#include "platform/trash/unused_descriptions.h"

#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/trash/trash_info.h"
#include "tests/platform/trash/own_mounts.h"
#include "tests/platform/trash/traced_process.h"
#include "tests/platform/trash/trash_fixture.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::SizeIs;

const auto never = [] { return false; };

class UnusedDescriptionsTest : public TrashFixture {
protected:
    /// Adds a description without a file that is old enough.
    void describe(const fs::path& trashFolder, const std::string& name, const std::string& path) {
        fs::create_directories(trashFolder / "files");
        const std::string info = trashFolder / "info" / trashInfoName(name);
        setAge(write(info, trashInfoText(path, clock.now(), 0)), 7200);
    }
};

TEST(UnusedDescriptions, AreThoseOfAKilledCleanUpOnly) {
    constexpr std::int64_t now = 1'000'000'000;
    constexpr uid_t user = 1000;
    const std::string caches = "/home/owner/.cache/";
    const auto description = [](const std::string& path) {
        TrashDescription made;
        made.text = trashInfoText(path, Date::fromUnixSeconds(now - 9999), 7200);
        made.status.mode = S_IFREG | 0600;
        made.status.owner = user;
        made.status.bytes = static_cast<std::int64_t>(made.text.size());
        made.status.modifiedAt = now - 3601;
        return made;
    };
    const auto isUnusedIn = [](const TrashDescription& each, const std::string& inside) {
        return isUnused(each, user, Date::fromUnixSeconds(now), inside);
    };
    struct Change {
        const char* what;
        std::function<void(TrashDescription&)> make;
        bool isUnused;
    };
    const std::vector<Change> changes{
        {"nothing", [](TrashDescription&) {}, true},
        {"other rights", [](TrashDescription& made) { made.status.mode = S_IFREG | 0644; }, true},
        {"has a file", [](TrashDescription& made) { made.hasFile = true; }, false},
        {"a link", [](TrashDescription& made) { made.status.mode = S_IFLNK | 0777; }, false},
        {"a folder", [](TrashDescription& made) { made.status.mode = S_IFDIR | 0700; }, false},
        {"a pipe", [](TrashDescription& made) { made.status.mode = S_IFIFO | 0600; }, false},
        {"another user's", [](TrashDescription& made) { made.status.owner = 0; }, false},
        {"an hour old", [](TrashDescription& made) { made.status.modifiedAt = now - 3600; }, false},
        {"new", [](TrashDescription& made) { made.status.modifiedAt = now - 1; }, false},
        {"of the future", [](TrashDescription& made) { made.status.modifiedAt = now + 9999; },
         false},
        {"of an unknown age", [](TrashDescription& made) { made.status.modifiedAt.reset(); },
         false},
        {"longer than was read", [](TrashDescription& made) { ++made.status.bytes; }, false},
        {"another program's",
         [](TrashDescription& made) {
             made.text.insert(0, "\n");
             ++made.status.bytes;
         },
         false},
        {"empty",
         [](TrashDescription& made) {
             made.text.clear();
             made.status.bytes = 0;
         },
         false},
    };
    for (const Change& change : changes) {
        TrashDescription made = description(caches + "a");
        change.make(made);
        EXPECT_EQ(isUnusedIn(made, caches), change.isUnused) << change.what;
    }

    struct Place {
        std::string inside;
        std::string path;
        bool isUnused;
    };
    const std::vector<Place> places{
        {caches, caches + "a/b.c", true},
        {caches, caches + "..a/b..", true},
        {caches, caches + "caf\xE9\n", true},
        {caches, caches, false},
        {caches, caches + "a/", false},
        {caches, "/home/owner/.cache", false},
        {caches, "/home/owner/.cache2/a", false},
        {caches, "/home/owner/a", false},
        {caches, "home/owner/.cache/a", false},
        {caches, caches + "../a", false},
        {caches, caches + "a/../../../b", false},
        {caches, caches + "a/.", false},
        {caches, caches + "..", false},
        {caches, caches + "/a", false},
        {caches, caches + std::string("a\0b", 3), false},
        {"owner/.cache/", "owner/.cache/a", true},
        {"owner/.cache/", "/owner/.cache/a", false},
        {"owner/.cache/", "a", false},
        // The folder is the root of its volume.
        {"", "a/b", true},
        {"", "/a", false},
        {"", "../a", false},
        {"", "..", false},
        {"", "", false},
    };
    for (const Place& place : places) {
        EXPECT_EQ(isUnusedIn(description(place.path), place.inside), place.isUnused)
            << place.path << " in " << place.inside;
    }
}

TEST_F(UnusedDescriptionsTest, AreRemovedUntilAStop) {
    for (const char* name : {"a", "b", "c"}) {
        describe(homeTrash, name, inCache(name));
    }
    int asked = 0;
    trash.removeUnusedDescriptions(home / ".cache", [&] { return ++asked > 1; });
    EXPECT_THAT(describedNames(), SizeIs(2));
    trash.removeUnusedDescriptions(home / ".cache", never);
    EXPECT_THAT(describedNames(), SizeIs(0));
}

TEST_F(UnusedDescriptionsTest, AreLookedForAmongTenThousandEntries) {
    describe(homeTrash, "a", inCache("a"));
    for (int i = 1; i < 10'003; ++i) {
        fs::create_hard_link(homeTrash / "info/a.trashinfo",
                             homeTrash / "info" / trashInfoName(std::to_string(i)));
    }
    trash.removeUnusedDescriptions(home / ".cache", never);
    EXPECT_THAT(describedNames(), SizeIs(3));
}

TEST_F(UnusedDescriptionsTest, AreLeftWhenTheirFileComesMeanwhile) {
    inOwnMounts([&] {
        mountMemory(home);
        int stopsOfOneLook = 0;
        int keptByTheSecondLook = 0;
        const bool isTraced = atEachStop([&](int at) {
            emptyHome();
            fs::create_directory(home / ".cache");
            describe(homeTrash, "a", inCache("a"));
            const TracedRun run = runTraced(
                [&] {
                    trash.removeUnusedDescriptions(home / ".cache", never);
                    return 0;
                },
                [&](int stop) {
                    if (stop == at) {
                        write(homeTrash / "files/a", "late");
                    }
                    return true;
                });
            if (at == 0) {
                stopsOfOneLook = run.stops;
            }
            // Who sees the file at once does not open its description.
            const bool isSeenLater = run.stops > stopsOfOneLook;
            keptByTheSecondLook += isSeenLater && describedNames().count("a.trashinfo") > 0 ? 1 : 0;
            return run;
        });
        if (isTraced) {
            EXPECT_GT(keptByTheSecondLook, 2);
        }
    });
}

TEST_F(UnusedDescriptionsTest, NoTrashIsMadeToLookForThem) {
    trash.removeUnusedDescriptions(home / ".cache", never);
    trash.removeUnusedDescriptions(home / "no such folder", never);
    EXPECT_FALSE(fs::exists(homeTrash));
}

TEST_F(UnusedDescriptionsTest, OfAnotherVolumeHavePathsFromItsRoot) {
    const fs::path disk = folder.path() / "disk";
    inOwnMounts([&] {
        mountMemory(disk);
        const fs::path onDisk = disk / ".Trash-0";
        fs::create_directories(disk / "caches");
        describe(onDisk, "a", "caches/a");
        describe(onDisk, "b", "other/b");
        describe(onDisk, "c", disk / "caches/c");
        describe(homeTrash, "a", disk / "caches/a");
        const auto isThere = [&](const char* name) { return fs::exists(onDisk / "info" / name); };
        trash.removeUnusedDescriptions(disk / "caches", never);
        EXPECT_FALSE(isThere("a.trashinfo"));
        EXPECT_TRUE(isThere("b.trashinfo"));
        EXPECT_TRUE(isThere("c.trashinfo"));
        EXPECT_THAT(describedNames(), SizeIs(1)) << "in the Trash that is not used";
        trash.removeUnusedDescriptions(disk, never);
        EXPECT_FALSE(isThere("b.trashinfo"));
        EXPECT_TRUE(isThere("c.trashinfo"));
    });
}

}  // namespace
}  // namespace tallowcrest

#include "platform/linux/procfs_pid_list.h"

#include <fcntl.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/base/unique_fd.h"
#include "tests/platform/linux/fake_proc_tree.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The listing and the probes find different processes here, so the result shows which was used.
class ProcfsPIDListTest : public testing::Test {
protected:
    ProcfsPIDListTest() { tree.put(onlyListed, {}); }

    UniqueFD openDirectory() const {
        return UniqueFD(::open(tree.root().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }

    /// Takes a sample in which `newest` is the last assigned pid. Returns whether it made a
    /// listing.
    bool lists(std::int64_t newest) {
        tree.putNewest(newest);
        return lists();
    }

    bool lists() {
        probed.clear();
        std::erase(pids, onlyListed);
        EXPECT_TRUE(list.update(directory.get(), pids));
        return std::count(pids.begin(), pids.end(), onlyListed) > 0;
    }

    /// Takes the two samples after which probing is possible.
    void settle(std::int64_t newest) {
        EXPECT_TRUE(lists(newest));
        EXPECT_TRUE(lists(newest));
    }

    static constexpr std::int32_t onlyListed = 7;

    FakeProcTree tree;
    UniqueFD directory = openDirectory();
    std::set<std::int32_t> existing;
    std::vector<std::int32_t> probed;
    std::vector<std::int32_t> pids;
    ProcfsPIDList list{tree.root(), [this](std::int32_t pid) {
                           probed.push_back(pid);
                           return existing.contains(pid);
                       }};
};

TEST_F(ProcfsPIDListTest, ProbesOnlyNewPIDsAndEachTwice) {
    settle(1000);
    EXPECT_FALSE(lists(1000));
    EXPECT_THAT(probed, IsEmpty());

    EXPECT_FALSE(lists(1003));
    EXPECT_THAT(probed, ElementsAre(1001, 1002, 1003));
    EXPECT_FALSE(lists(1005));
    EXPECT_THAT(probed, ElementsAre(1001, 1002, 1003, 1004, 1005));
    EXPECT_FALSE(lists(1005));
    EXPECT_THAT(probed, ElementsAre(1004, 1005));
    EXPECT_FALSE(lists(1005));
    EXPECT_THAT(probed, IsEmpty());
}

TEST_F(ProcfsPIDListTest, AddsExistingPIDsInOrderWithoutDuplicates) {
    tree.put(500, {});
    tree.put(2000, {});
    settle(1000);
    existing = {1001, 1003};
    EXPECT_FALSE(lists(1003));
    EXPECT_THAT(pids, ElementsAre(500, 1001, 1003, 2000));

    // Found at the second probe only.
    existing.insert(1002);
    EXPECT_FALSE(lists(1003));
    EXPECT_THAT(pids, ElementsAre(500, 1001, 1002, 1003, 2000));
}

TEST_F(ProcfsPIDListTest, PIDsRemovedByTheCallerStayRemoved) {
    existing = {1001, 1002};
    settle(1000);
    EXPECT_FALSE(lists(1002));
    EXPECT_FALSE(lists(1002));
    existing.erase(1001);
    std::erase(pids, 1001);
    EXPECT_FALSE(lists(1002));
    EXPECT_THAT(pids, ElementsAre(1002));
}

TEST_F(ProcfsPIDListTest, ListsPeriodically) {
    settle(1000);
    for (int round = 0; round < 3; ++round) {
        for (int sample = 1; sample < ProcfsPIDList::samplesPerListing; ++sample) {
            EXPECT_FALSE(lists(1000)) << sample;
        }
        EXPECT_TRUE(lists(1000));
    }
}

TEST_F(ProcfsPIDListTest, AListingReplacesTheResultsOfProbes) {
    settle(1000);
    existing = {1001};
    EXPECT_FALSE(lists(1001));
    EXPECT_THAT(pids, ElementsAre(1001));
    while (!lists(1001)) {
    }
    EXPECT_THAT(pids, ElementsAre(onlyListed));
}

TEST_F(ProcfsPIDListTest, ListsWhenPIDsWrapAroundOrGoAllTheWayRound) {
    settle(32760);
    EXPECT_TRUE(lists(310));
    EXPECT_TRUE(lists(312)) << "the window still holds the turn";
    EXPECT_FALSE(lists(314));
    EXPECT_THAT(probed, ElementsAre(311, 312, 313, 314));
    EXPECT_FALSE(lists(700));
    EXPECT_TRUE(lists(450)) << "above the PID of two samples ago, but not above the last";
}

TEST_F(ProcfsPIDListTest, ListsWhenThereAreManyNewPIDs) {
    const std::int64_t first = 1000;
    settle(first);
    EXPECT_FALSE(lists(first + ProcfsPIDList::maximumProbes));
    EXPECT_EQ(probed.size(), static_cast<std::size_t>(ProcfsPIDList::maximumProbes));
    EXPECT_TRUE(lists(first + ProcfsPIDList::maximumProbes + 1));
    EXPECT_THAT(probed, IsEmpty());
}

TEST_F(ProcfsPIDListTest, TheLargestPIDsDoNotOverflow) {
    settle(1);
    EXPECT_TRUE(lists(2147483647));
    EXPECT_TRUE(lists(2147483647));
    EXPECT_FALSE(lists(2147483647));
    EXPECT_THAT(probed, IsEmpty());
    EXPECT_TRUE(lists(2147483648)) << "that is none";
}

TEST_F(ProcfsPIDListTest, ListsWhileTheLastPIDIsUnknown) {
    for (int sample = 0; sample < 4; ++sample) {
        EXPECT_TRUE(lists());
    }
    for (const char* text : {"", "0.52 0.58 0.59 2/1284\n", "0.00 0.00 0.00 0/0 0\n",
                             "0.52 0.58 0.59 2/1284 -5\n", "0.52 0.58 0.59 2/1284 x\n"}) {
        settle(1000);
        EXPECT_FALSE(lists(1000));
        tree.putFile("loadavg", text);
        EXPECT_TRUE(lists()) << text;
        EXPECT_TRUE(lists()) << text;
    }
}

TEST_F(ProcfsPIDListTest, ALoadAverageMountedFromElsewhereIsIgnored) {
    std::filesystem::create_symlink("/proc/loadavg", tree.root() / "loadavg");
    for (int sample = 0; sample < 4; ++sample) {
        EXPECT_TRUE(lists());
    }
    EXPECT_THAT(probed, IsEmpty());
}

TEST_F(ProcfsPIDListTest, RecoversFromAFailedListing) {
    settle(1000);
    for (int sample = 1; sample < ProcfsPIDList::samplesPerListing; ++sample) {
        EXPECT_FALSE(lists(1001));
    }
    const UniqueFD noDirectory(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    tree.putNewest(1002);
    EXPECT_FALSE(list.update(noDirectory.get(), pids));
    EXPECT_THAT(pids, IsEmpty());

    EXPECT_TRUE(lists(1003)) << "nothing is left that new numbers could be added to";
    EXPECT_TRUE(lists(1003));
    EXPECT_FALSE(lists(1004));
    EXPECT_THAT(probed, ElementsAre(1004));
}

TEST_F(ProcfsPIDListTest, ListsEachTimeWhenItCannotProbe) {
    tree.putNewest(1000);
    ProcfsPIDList listing(tree.root(), {});
    for (int sample = 0; sample < 4; ++sample) {
        pids.clear();
        EXPECT_TRUE(listing.update(directory.get(), pids));
        EXPECT_THAT(pids, ElementsAre(onlyListed));
    }
}

}  // namespace
}  // namespace tallowcrest

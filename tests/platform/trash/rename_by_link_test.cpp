// File systems that cannot refuse to replace a file in a rename, as those of a network, that answer
// a rename that they carry out with an error, and that have no room for a rename.

#include <sys/syscall.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/support/refused_call.h"
#include "tests/platform/trash/own_mounts.h"
#include "tests/platform/trash/swap_names.h"
#include "tests/platform/trash/traced_process.h"
#include "tests/platform/trash/trash_fixture.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Way = PutBackOutcome::Result;

class RenameByLinkTest : public TrashFixture {
protected:
    /// In a process of its own, because the attacks need the call that is refused to it.
    static TracedRun runWithout(std::uint32_t call, int error, const std::function<int()>& work,
                                const std::function<bool(int stop)>& goesOn) {
        constexpr int notRefused = 99;
        const TracedRun run =
            runTraced([&] { return refuseCall(call, error) ? work() : notRefused; }, goesOn);
        return run.status == notRefused ? TracedRun{} : run;
    }

    /// Counts in how many cases the other description was lost.
    int lostWithout(std::uint32_t call, int error) {
        int lost = 0;
        putBackWithSwappedDescriptions(
            [&](const auto& work, const auto& goesOn) {
                return runWithout(call, error, work, goesOn);
            },
            [&](bool isLost) { lost += isLost ? 1 : 0; });
        return lost;
    }

    const std::string path = inCache("a/thumb");
    const fs::path stored = homeTrash / "files/thumb";
};

TEST_F(RenameByLinkTest, AFileIsPutBack) {
    inOwnProcess([&] {
        const TrashItem item = trashedAnew();
        if (!refuseCall(SYS_renameat2, EINVAL)) {
            GTEST_SKIP() << "this account may install no filter";
        }
        EXPECT_EQ(trash.putBack(item).error, "");
        EXPECT_EQ(fileText(path), "pixels");
        EXPECT_EQ(fs::hard_link_count(path), 1U);
        EXPECT_THAT(contents(), IsEmpty());
    });
}

TEST_F(RenameByLinkTest, AFileThatHasTakenThePlaceIsKept) {
    inOwnProcess([&] {
        const TrashItem item = trashedAnew();
        write(path, "taker");
        if (!refuseCall(SYS_renameat2, ENOSYS)) {
            GTEST_SKIP() << "this account may install no filter";
        }
        const PutBackOutcome outcome = trash.putBack(item);
        EXPECT_EQ(outcome.result, Way::left);
        EXPECT_EQ(outcome.error, "File exists");
        EXPECT_EQ(fileText(path), "taker");
        ASSERT_THAT(contents(), SizeIs(1));
        EXPECT_EQ(contents().front().content, "pixels");
    });
}

TEST_F(RenameByLinkTest, WhatReplacesAFileThatWasPutBackStays) {
    inOwnMounts([&] {
        mountMemory(home);
        std::map<int, int> replaced;
        const bool isTraced = atEachStop([&](int at) {
            const TrashItem item = trashedAnew();
            write(inCache("taker"), "taker");
            bool isReplaced = false;
            const TracedRun run = runWithout(
                SYS_renameat2, EINVAL, [&] { return static_cast<int>(trash.putBack(item).result); },
                [&](int stop) {
                    if (stop == at && fs::exists(path)) {
                        fs::rename(inCache("taker"), path);
                        isReplaced = true;
                    }
                    return true;
                });
            if (!run.isPossible) {
                return run;
            }
            if (isReplaced) {
                ++replaced[run.status];
                EXPECT_EQ(fileText(path), "taker");
                EXPECT_NE(fileText(stored), "taker");
            }
            return run;
        });
        if (isTraced) {
            EXPECT_GT(replaced[static_cast<int>(Way::gone)], 0) << "the case did not occur";
        }
    });
}

TEST_F(RenameByLinkTest, AFileThatAnEarlierAttemptHasLinkedLeavesTheTrash) {
    inOwnProcess([&] {
        const TrashItem item = trashedAnew();
        fs::create_hard_link(stored, path);
        if (!refuseCall(SYS_renameat2, EINVAL)) {
            GTEST_SKIP() << "this account may install no filter";
        }
        EXPECT_EQ(trash.putBack(item).error, "");
        EXPECT_EQ(fileText(path), "pixels");
        EXPECT_THAT(contents(), IsEmpty());
    });
}

TEST_F(RenameByLinkTest, AKillWhileAFileIsPutBackLeavesItInItsPlaceOrRestorable) {
    inOwnMounts([&] {
        mountMemory(home);
        int inTrash = 0;
        int inPlace = 0;
        bool isKilled = true;
        for (int killedAt = 0; isKilled; ++killedAt) {
            const TrashItem item = trashedAnew();
            const TracedRun run = runWithout(
                SYS_renameat2, EINVAL, [&] { return static_cast<int>(trash.putBack(item).result); },
                [&](int stop) { return stop != killedAt; });
            if (!run.isPossible) {
                GTEST_SKIP() << "this account may not trace its own processes";
            }
            isKilled = run.status == -1;
            SCOPED_TRACE("killed at stop " + std::to_string(killedAt));
            if (fs::exists(path)) {
                ++inPlace;
                EXPECT_EQ(fileText(path), "pixels");
            }
            if (fs::exists(stored)) {
                ++inTrash;
                ASSERT_EQ(contents().size(), 1U);
                EXPECT_EQ(contents().front().restorePath, path);
                EXPECT_EQ(contents().front().content, "pixels");
            }
            EXPECT_TRUE(fs::exists(path) || fs::exists(stored));
            ASSERT_FALSE(HasFailure());
        }
        EXPECT_GT(inTrash, 10);
        EXPECT_GT(inPlace, 2);
    });
}

TEST_F(RenameByLinkTest, AnotherFileThanTheReviewedOneGoesBack) {
    inOwnMounts([&] {
        mountMemory(home);
        const std::string decoy = inCache("a/decoy");
        int returned = 0;
        const bool isTraced = atEachStop([&](int at) {
            emptyHome();
            const TrashRequest request = reviewed(write(path, "pixels"));
            write(decoy, "decoy");
            bool hadArrived = false;
            const TracedRun run = runWithout(
                SYS_renameat2, EINVAL,
                [&] { return trash.moveToTrash(request).movedBytes ? 1 : 0; },
                [&](int stop) {
                    if (stop == at) {
                        swapNames(path, decoy);
                    }
                    hadArrived = hadArrived || fs::exists(stored);
                    return true;
                });
            if (!run.isPossible) {
                return run;
            }
            std::map<std::string, int> found;
            for (const std::string& file : {path, decoy, stored.string()}) {
                ++found[fileText(file)];
            }
            EXPECT_EQ(found["pixels"], 1);
            EXPECT_EQ(found["decoy"], 1);
            EXPECT_EQ(fs::exists(stored), run.status == 1);
            if (run.status == 0 && hadArrived) {
                ++returned;
                EXPECT_EQ(fileText(path), "decoy");
                EXPECT_THAT(contents(), IsEmpty());
            }
            return run;
        });
        if (isTraced) {
            EXPECT_GT(returned, 0) << "the case did not occur";
        }
    });
}

TEST_F(RenameByLinkTest, AMoveThatIsCarriedOutAndAnsweredWithAnErrorKeepsItsDescription) {
    inOwnMounts([&] {
        mountMemory(home);
        int moved = 0;
        const bool isTraced = atEachStop([&](int at) {
            emptyHome();
            const TrashRequest request = reviewed(write(path, "pixels"));
            const TracedRun run = runWithout(
                SYS_renameat2, EIO, [&] { return trash.moveToTrash(request).movedBytes ? 1 : 0; },
                [&](int stop) {
                    if (stop == at && fs::exists(stored.parent_path())) {
                        fs::rename(path, stored);
                    }
                    return true;
                });
            if (!run.isPossible) {
                return run;
            }
            if (run.status == 1) {
                ++moved;
                EXPECT_EQ(fileText(stored), "pixels");
                EXPECT_THAT(contents(), ElementsAre(Field(&TrashedFile::restorePath, path)));
            }
            return run;
        });
        if (isTraced) {
            EXPECT_GT(moved, 0) << "the case did not occur";
        }
    });
}

TEST_F(RenameByLinkTest, NoDescriptionOfAnotherFileIsRemoved) {
    inOwnMounts([&] {
        mountMemory(home);
        EXPECT_EQ(lostWithout(SYS_renameat2, EINVAL), 0);
    });
}

#ifdef SYS_renameat
TEST_F(RenameByLinkTest, ADescriptionThatCannotBeRenamedIsLookedAtAgainBeforeItIsRemoved) {
    inOwnMounts([&] {
        mountMemory(home);
        // Between the last look and the removal no call can help.
        EXPECT_LE(lostWithout(SYS_renameat, ENOSPC), 1);
        if (IsSkipped()) {
            return;
        }
        const TrashItem item = trashedAnew();
        ASSERT_TRUE(refuseCall(SYS_renameat, ENOSPC));
        EXPECT_EQ(trash.putBack(item).error, "");
        EXPECT_THAT(contents(), IsEmpty());
    });
}
#endif

}  // namespace
}  // namespace tallowcrest

// A description that another process takes away while the file is on its way to the Trash.

#include <filesystem>
#include <functional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/trash/own_mounts.h"
#include "tests/platform/trash/swap_names.h"
#include "tests/platform/trash/traced_process.h"
#include "tests/platform/trash/trash_fixture.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;

enum class Taking { removed, replaced };

class LostDescriptionTest : public TrashFixture {
protected:
    enum Result { moved, left };

    void setUpFiles() {
        emptyHome();
        write(path, "reviewed");
        write(decoy, "decoy");
    }

    TracedRun runMove(const std::function<bool(int stop)>& goesOn) {
        const TrashRequest request = reviewed(path);
        return runTraced([&] { return trash.moveToTrash(request).movedBytes ? moved : left; },
                         goesOn);
    }

    /// False when there is none yet.
    bool takeDescription(Taking how) const {
        if (!fs::remove(description)) {
            return false;
        }
        if (how == Taking::replaced) {
            write(description,
                  "[Trash Info]\nPath=/another/file\nDeletionDate=2001-02-03T04:05:06\n");
        }
        return true;
    }

    /// The restore path of the file with this content; empty when it is not in the Trash or has no
    /// description there.
    std::string restorePathOf(const std::string& content) const {
        for (const TrashedFile& file : contents()) {
            if (file.isThere && file.content == content) {
                return file.restorePath;
            }
        }
        return {};
    }

    const std::string path = inCache("file");
    const std::string decoy = inCache("decoy");
    const fs::path description = homeTrash / "info/file.trashinfo";
};

TEST_F(LostDescriptionTest, AFileThatArrivesWithoutItsDescriptionGoesBack) {
    inOwnMounts([&] {
        mountMemory(home);
        for (const Taking how : {Taking::removed, Taking::replaced}) {
            int taken = 0;
            const bool isTraced = atEachStop([&](int at) {
                setUpFiles();
                bool isTaken = false;
                bool hadArrived = false;
                const TracedRun run = runMove([&](int stop) {
                    if (stop == at) {
                        isTaken = takeDescription(how);
                    }
                    // At the stop after the arrival there is still time to notice.
                    hadArrived = hadArrived || (stop < at && fs::exists(homeTrash / "files/file"));
                    return true;
                });
                if (!run.isPossible) {
                    return run;
                }
                if (!isTaken) {
                    EXPECT_EQ(run.status, moved);
                    EXPECT_EQ(restorePathOf("reviewed"), path);
                } else if (!hadArrived) {
                    ++taken;
                    EXPECT_EQ(run.status, left);
                    EXPECT_EQ(fileText(path), "reviewed");
                    EXPECT_FALSE(fs::exists(homeTrash / "files/file"));
                }
                return run;
            });
            if (!isTraced) {
                return;
            }
            EXPECT_GT(taken, 3);
        }
    });
}

TEST_F(LostDescriptionTest, AFileThatCannotGoBackIsDescribedAgain) {
    inOwnMounts([&] {
        mountMemory(home);
        for (const Taking how : {Taking::removed, Taking::replaced}) {
            int described = 0;
            const bool isTraced = atEachStop([&](int at) {
                setUpFiles();
                bool isTaken = false;
                // Another file is moved than the reviewed one, and its name is taken.
                const TracedRun run = runMove([&](int stop) {
                    if (stop == at) {
                        swapNames(path, decoy);
                        isTaken = takeDescription(how);
                    } else if (stop > at && !fs::exists(path)) {
                        write(path, "took the place");
                    }
                    return true;
                });
                if (!run.isPossible) {
                    return run;
                }
                if (isTaken && run.status == left && fileText(path) == "took the place") {
                    ++described;
                    const bool isReviewed = fileText(decoy) == "decoy";
                    EXPECT_EQ(restorePathOf(isReviewed ? "reviewed" : "decoy"), path);
                }
                return run;
            });
            if (!isTraced) {
                return;
            }
            EXPECT_GT(described, 0) << "the case did not occur";
        }
    });
}

}  // namespace
}  // namespace tallowcrest

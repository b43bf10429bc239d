// A file that another program restores while it is put back.

#include <filesystem>
#include <map>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/trash/own_mounts.h"
#include "tests/platform/trash/traced_process.h"
#include "tests/platform/trash/trash_fixture.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::Field;

class RestoredMeanwhileTest : public TrashFixture {};

TEST_F(RestoredMeanwhileTest, AnotherFileThatIsTrashedUnderItsNameStaysInTheTrash) {
    inOwnMounts([&] {
        mountMemory(home);
        const fs::path stored = homeTrash / "files/thumb";
        const std::string other = inCache("other/thumb");
        std::map<int, int> results;
        const bool isTraced = atEachStop([&](int at) {
            const TrashItem item = trashedAnew();
            bool isRestored = false;
            const TracedRun run =
                runTraced([&] { return static_cast<int>(trash.putBack(item).result); },
                          [&](int stop) {
                              if (stop == at && fs::exists(stored)) {
                                  isRestored = true;
                                  fs::rename(stored, home / "elsewhere");
                                  fs::remove(homeTrash / "info/thumb.trashinfo");
                                  EXPECT_EQ(trashed(other, "other").storedName, "thumb");
                              }
                              return true;
                          });
            if (!run.isPossible) {
                return run;
            }
            if (isRestored) {
                ++results[run.status];
                EXPECT_EQ(fileText(home / "elsewhere"), "pixels");
                EXPECT_FALSE(fs::exists(item.path));
                EXPECT_THAT(contents(),
                            ElementsAre(AllOf(Field(&TrashedFile::content, "other"),
                                              Field(&TrashedFile::restorePath, other))));
            }
            return run;
        });
        if (!isTraced) {
            return;
        }
        using Result = PutBackOutcome::Result;
        EXPECT_GT(results[static_cast<int>(Result::gone)], 0) << "seen before the rename";
        EXPECT_GT(results[static_cast<int>(Result::left)], 0) << "seen after the rename";
        EXPECT_EQ(results[static_cast<int>(Result::done)], 0);
    });
}

}  // namespace
}  // namespace tallowcrest

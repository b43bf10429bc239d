#include "platform/trash/system_trash.h"

#include <cstdlib>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/trash/own_mounts.h"
#include "tests/platform/trash/trash_fixture.h"

namespace tallowcrest {
namespace {

class SystemTrashTest : public TrashFixture {
protected:
    /// The trash folder that is used with this environment.
    void expectTrashAt(const std::filesystem::path& place, const char* dataHome) {
        inOwnProcess([&] {
            ::setenv("HOME", home.c_str(), 1);
            if (dataHome == nullptr) {
                ::unsetenv("XDG_DATA_HOME");
            } else {
                ::setenv("XDG_DATA_HOME", dataHome, 1);
            }
            const auto system = host::makeTrash(clock, atGreenwich);
            const std::string path = write(inCache("a"), "x");
            EXPECT_EQ(system->moveToTrash(reviewed(path)).movedBytes, 1);
            ASSERT_THAT(trashContents(place), ::testing::SizeIs(1));
            EXPECT_EQ(trashContents(place).front().restorePath, path);
        });
    }
};

TEST_F(SystemTrashTest, IsInTheDataFolderOfTheUser) {
    expectTrashAt(homeTrash, nullptr);
}

TEST_F(SystemTrashTest, WhichAVariableCanName) {
    expectTrashAt(home / "data/Trash", (home / "data").c_str());
}

TEST_F(SystemTrashTest, UnlessItIsRelative) {
    expectTrashAt(homeTrash, "data");
}

}  // namespace
}  // namespace tallowcrest

#include "platform/base/make_directories.h"

#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;

fs::perms permissionsOf(const fs::path& path) {
    return fs::status(path).permissions();
}

class MakeDirectoriesTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
};

TEST_F(MakeDirectoriesTest, CreatesMissingDirectoriesForTheUserOnlyWhateverTheUmask) {
    const fs::path there = folder.path() / "there";
    fs::create_directory(there);
    fs::permissions(there, fs::perms(0755));
    for (const mode_t mask : {0U, 0277U}) {
        const fs::path top = there / std::to_string(mask);
        const mode_t before = ::umask(mask);
        EXPECT_EQ(makeDirectories(top / "middle/last"), 0);
        ::umask(before);
        for (const fs::path& made : {top, top / "middle", top / "middle/last"}) {
            EXPECT_TRUE(fs::is_directory(made)) << made;
            EXPECT_EQ(permissionsOf(made), fs::perms(0700)) << made;
        }
    }
    EXPECT_EQ(permissionsOf(there), fs::perms(0755));
}

TEST_F(MakeDirectoriesTest, LeavesExistingDirectoriesUnchanged) {
    const fs::path there = folder.path() / "there";
    fs::create_directories(there);
    fs::permissions(there, fs::perms(0755));
    EXPECT_EQ(makeDirectories(there), 0);
    EXPECT_EQ(permissionsOf(there), fs::perms(0755));
    EXPECT_EQ(makeDirectories("/"), 0);
}

TEST_F(MakeDirectoriesTest, IgnoresTrailingAndDoubledSlashes) {
    EXPECT_EQ(makeDirectories(folder.path().string() + "/a//b/"), 0);
    EXPECT_TRUE(fs::is_directory(folder.path() / "a/b"));
}

TEST_F(MakeDirectoriesTest, AFileInThePathIsAnErrorAndStays) {
    const fs::path file = folder.path() / "file";
    std::ofstream(file) << "text";
    EXPECT_EQ(makeDirectories(file / "below/last"), ENOTDIR);
    EXPECT_EQ(fs::file_size(file), 4U);
}

// For the directories below it the system would only report that something does not exist.
TEST_F(MakeDirectoriesTest, ReportsTheErrorOfTheFirstDirectoryThatFails) {
    const fs::path nowhere = folder.path() / "nowhere";
    fs::create_directory_symlink(folder.path() / "missing", nowhere);
    EXPECT_EQ(makeDirectories(nowhere / "below/last"), EEXIST);
    EXPECT_EQ(makeDirectories(nowhere), EEXIST);
    EXPECT_EQ(makeDirectories(""), ENOENT);
}

}  // namespace
}  // namespace tallowcrest

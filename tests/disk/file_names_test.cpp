#include "disk/file_names.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

class FileNamesTest : public ::testing::Test {
protected:
    FileNamesTest() {
        std::filesystem::create_directories(folder.path("real/inner"));
        folder.file("real/file", "x", 0600);
        std::filesystem::create_symlink("real", folder.path("link"));
        std::filesystem::create_symlink("nowhere", folder.path("broken"));
        std::filesystem::create_symlink("loop", folder.path("loop"));
    }

    TemporaryFolder folder;
    std::string root = std::filesystem::canonical(folder.path()).string();
};

TEST_F(FileNamesTest, OnlyFoldersAndLinksToThemAreFolders) {
    EXPECT_TRUE(folderExists(folder.path("real")));
    EXPECT_TRUE(folderExists(folder.path("link")));
    EXPECT_FALSE(folderExists(folder.path("real/file")));
    EXPECT_FALSE(folderExists(folder.path("broken")));
    EXPECT_FALSE(folderExists(folder.path("loop")));
    EXPECT_FALSE(folderExists(folder.path("absent")));
    EXPECT_FALSE(folderExists(""));
}

TEST_F(FileNamesTest, ABrokenLinkTakesAName) {
    EXPECT_TRUE(nameExists(folder.path("real/file")));
    EXPECT_TRUE(nameExists(folder.path("broken")));
    EXPECT_TRUE(nameExists(folder.path("loop")));
    EXPECT_FALSE(nameExists(folder.path("absent")));
    EXPECT_FALSE(nameExists(folder.path("absent/absent")));
}

TEST_F(FileNamesTest, APathIsResolvedAsFarAsItExists) {
    EXPECT_EQ(resolvedPath(folder.path("link/file")), root + "/real/file");
    EXPECT_EQ(resolvedPath(folder.path("link/inner/../file")), root + "/real/file");
    EXPECT_EQ(resolvedPath(folder.path("link/inner/")), root + "/real/inner");
    EXPECT_EQ(resolvedPath(folder.path("link/absent/./x")), root + "/real/absent/x");
    EXPECT_EQ(resolvedPath(folder.path("broken")), root + "/broken");
    EXPECT_EQ(resolvedPath(folder.path("loop")), "");
    EXPECT_EQ(resolvedPath("/"), "/");
}

}  // namespace
}  // namespace tallowcrest

#include "platform/linux/user_directories.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/scoped_variable.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

TEST(UserDirectories, AreReadAsADesktopWritesThem) {
    const std::string text =
        "# This file is written by a tool\n"
        "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n"
        "  XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"  \r\n"
        "XDG_MUSIC_DIR=\"/srv/music\"\n"
        "XDG_VIDEOS_DIR=\"$HOME/\"\n"
        "XDG_PICTURES_DIR=\"$HOME\"\n"
        "XDG_DOWNLOAD_DIR=\"$HOME/a \\\"quoted\\\" \\\\ \\$name\"";
    const auto directory = [&text](const char* name) {
        return userDirectory(text, name, "/home/owner");
    };
    EXPECT_EQ(directory("DESKTOP"), "/home/owner/Schreibtisch");
    EXPECT_EQ(directory("DOCUMENTS"), "/home/owner/Dokumente");
    EXPECT_EQ(directory("MUSIC"), "/srv/music");
    EXPECT_EQ(directory("VIDEOS"), "/home/owner/");
    EXPECT_EQ(directory("PICTURES"), "/home/owner");
    EXPECT_EQ(directory("DOWNLOAD"), "/home/owner/a \"quoted\" \\ $name");
    EXPECT_EQ(directory("TEMPLATES"), std::nullopt);
    EXPECT_EQ(directory("DOC"), std::nullopt);
}

TEST(UserDirectories, TheLastValidLineCounts) {
    EXPECT_EQ(
        userDirectory("XDG_DOCUMENTS_DIR=\"/a\"\nXDG_DOCUMENTS_DIR=\"/b\"\n", "DOCUMENTS", "/h"),
        "/b");
    EXPECT_EQ(
        userDirectory("XDG_DOCUMENTS_DIR=\"/a\"\nXDG_DOCUMENTS_DIR=oops\n", "DOCUMENTS", "/h"),
        "/a");
    EXPECT_EQ(userDirectory("XDG_DOCUMENTS_DIR=\"/a\" # mine\n", "DOCUMENTS", "/h"), "/a");
}

TEST(UserDirectories, InvalidValuesGiveNoDirectory) {
    for (const std::string& value :
         {std::string("$HOME/Documents"), std::string("\"relative\""), std::string("\"\""),
          std::string("\"$HOMEWARD/x\""), std::string("\"$OTHER/x\""), std::string("\"/open"),
          std::string("\"/a\" b"), std::string("\"/a\\"), std::string("'/a'"), std::string(),
          std::string("\""), std::string("\"/a\0b\"", 6)}) {
        EXPECT_EQ(userDirectory("XDG_DOCUMENTS_DIR=" + value + "\n", "DOCUMENTS", "/home/owner"),
                  std::nullopt)
            << value;
    }
    EXPECT_EQ(userDirectory("", "DOCUMENTS", "/home/owner"), std::nullopt);
}

class DocumentsDirectory : public ::testing::Test {
protected:
    void SetUp() override { ::setenv("XDG_CONFIG_HOME", config.path().c_str(), 1); }
    void TearDown() override { ::unsetenv("XDG_CONFIG_HOME"); }

    void write(const std::string& value) const {
        std::ofstream(config.path() / "user-dirs.dirs")
            << "XDG_DOCUMENTS_DIR=\"" << value << "\"\n";
    }

    TemporaryFolder config;
};

TEST_F(DocumentsDirectory, IsTheConfiguredOne) {
    write("/srv/papers");
    EXPECT_EQ(documentsDirectory(), "/srv/papers");
    write("$HOME/Papers");
    EXPECT_EQ(documentsDirectory().filename(), "Papers");
    EXPECT_TRUE(documentsDirectory().is_absolute());
}

TEST_F(DocumentsDirectory, IsInTheHomeDirectoryByDefault) {
    EXPECT_EQ(documentsDirectory().filename(), "Documents");
    EXPECT_TRUE(documentsDirectory().is_absolute());
}

TEST_F(DocumentsDirectory, IgnoresARelativeConfigurationFolder) {
    write("/srv/papers");
    ::setenv("XDG_CONFIG_HOME", "relative", 1);
    EXPECT_NE(documentsDirectory(), "/srv/papers");
    EXPECT_TRUE(documentsDirectory().is_absolute());
}

TEST_F(DocumentsDirectory, AllFoldersAreThoseOfTheEntriesAndTheEnvironment) {
    std::ofstream(config.path() / "user-dirs.dirs")
        << "XDG_DOWNLOAD_DIR=\"$HOME/Geladenes/\"\nXDG_VIDEOS_DIR=\"$HOME/\"\n"
           "XDG_MUSIC_DIR=\"/srv//music/.\"\n";
    const ScopedVariable caches("XDG_CACHE_HOME", "/var/tmp/caches/");
    const ScopedVariable data("XDG_DATA_HOME", "relative");
    const UserFolders folders = userFolders();
    ASSERT_TRUE(folders.home.starts_with('/'));
    EXPECT_EQ(folders.downloads, folders.home + "/Geladenes");
    EXPECT_EQ(folders.videos, folders.home) << "there is none of its own";
    EXPECT_EQ(folders.music, "/srv/music");
    EXPECT_EQ(folders.pictures, folders.home + "/Pictures");
    EXPECT_EQ(folders.desktop, folders.home + "/Desktop");
    EXPECT_EQ(folders.documents, folders.home + "/Documents");
    EXPECT_EQ(folders.caches, "/var/tmp/caches");
    EXPECT_EQ(folders.data, folders.home + "/.local/share");
    EXPECT_EQ(folders.configuration, config.path());
}

TEST_F(DocumentsDirectory, AFIFOInPlaceOfTheFileDoesNotBlock) {
    ASSERT_EQ(::mkfifo((config.path() / "user-dirs.dirs").c_str(), 0600), 0);
    EXPECT_EQ(documentsDirectory().filename(), "Documents");
}

}  // namespace
}  // namespace tallowcrest

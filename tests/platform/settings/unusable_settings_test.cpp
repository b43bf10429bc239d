// Settings files that are not ours to use: they stay as they are, or are put aside whole.

#include <sys/stat.h>

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/settings/settings.h"
#include "platform/settings/open_settings_store.h"
#include "tests/platform/settings/settings_file_fixture.h"
#include "tests/platform/settings/writer_process.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
namespace keys = settings_keys;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class UnusableSettings : public SettingsFileFixture {};

TEST_F(UnusableSettings, PutsADamagedOrForeignDatabaseAside) {
    struct Case {
        const char* sql;
        const char* words;
        bool canBeChanged = true;
    };
    for (const Case& each :
         {Case{"PRAGMA application_id = 77", "no settings of ours"},
          Case{"PRAGMA application_id = 0", "no settings of ours"},
          Case{"DROP TABLE settings", "damaged"},
          Case{"ALTER TABLE settings RENAME COLUMN value TO v", "damaged"},
          Case{"ALTER TABLE settings RENAME TO s; CREATE VIEW settings AS SELECT * FROM s",
               "damaged"},
          Case{"PRAGMA user_version = 0", "damaged"},
          Case{"PRAGMA application_id = 77", "no settings of ours", false},
          Case{"DROP TABLE settings", "damaged", false}}) {
        SCOPED_TRACE(each.sql);
        fs::remove_all(file.parent_path());
        makeStored();
        changeStored(each.sql);
        std::optional<AsOrdinaryUser> user;
        const std::string original = fileText(file);
        if (!each.canBeChanged) {
            fs::permissions(file, fs::perms(0400));
            user.emplace(file.parent_path());
        }
        expectPutAside(each.words, original);
    }
}

TEST_F(UnusableSettings, LeavesANewerVersionsFileExactlyAsItIs) {
    makeStored();
    changeStored("PRAGMA user_version = 2");
    const auto before = contents();
    const OpenedStore opened = open();
    expectOneProblem(opened, "newer version");
    expectDefaults(*opened.store);
    expectMemoryAlone(opened);
    EXPECT_TRUE(contents() == before);
    expectOneProblem(readSettingsStore(file), "newer version");
    EXPECT_TRUE(contents() == before);
}

TEST_F(UnusableSettings, LeavesANewerFileWhoseVersionIsOnlyInItsLog) {
    makeStored();
    {
        SqliteConnection connection;
        ASSERT_EQ(connection.open(file, SqliteConnection::Access::readWrite, {}), SQLITE_OK);
        ASSERT_EQ(connection.execute("PRAGMA user_version = 2"), SQLITE_OK);
        keepFiles();
    }
    restoreFiles();
    const std::string fileBefore = fileText(file);
    const std::string logBefore = fileText(file.string() + "-wal");
    ASSERT_GT(logBefore.size(), 32U);
    const OpenedStore opened = open();
    expectOneProblem(opened, "newer version");
    expectMemoryAlone(opened);
    EXPECT_TRUE(fileText(file) == fileBefore);
    EXPECT_TRUE(fileText(file.string() + "-wal") == logBefore);
}

TEST_F(UnusableSettings, LeavesALockedFileAlone) {
    makeStored();
    WriterProcess other({"hold-lock", file.string()});
    ASSERT_EQ(other.readOutput(7), "locked\n");
    const std::string before = fileText(file);
    const OpenedStore opened = open();
    expectOneProblem(opened, "locked");
    expectDefaults(*opened.store);
    opened.store->write(keys::autoPurgeKey, true);
    EXPECT_EQ(opened.store->read(keys::autoPurgeKey), SettingsValue(true));
    EXPECT_TRUE(fileText(file) == before);
    other.kill();
    other.wait();
    const OpenedStore again = open();
    EXPECT_THAT(again.problems, IsEmpty());
    expectStored(*again.store);
    EXPECT_FALSE(again.store->read(keys::autoPurgeKey));
}

TEST_F(UnusableSettings, ReadsWhatCannotBeChanged) {
    struct Case {
        fs::path path;
        unsigned mode;
    };
    for (const Case& each : {Case{file, 0400U}, Case{file.parent_path(), 0500U}}) {
        fs::remove_all(file.parent_path());
        makeStored();
        fs::permissions(each.path, fs::perms(each.mode));
        const AsOrdinaryUser user(file.parent_path());
        const OpenedStore opened = open();
        expectOneProblem(opened, "can be read but not changed");
        expectStored(*opened.store);
        expectMemoryAlone(opened);
        struct stat status {};
        ASSERT_EQ(::stat(each.path.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777U, each.mode);
    }
}

TEST_F(UnusableSettings, DoesWithoutAFileThatCannotBeRead) {
    makeStored();
    fs::permissions(file, fs::perms(0));
    const AsOrdinaryUser user(file.parent_path());
    const OpenedStore opened = open();
    expectOneProblem(opened, "cannot be read");
    expectDefaults(*opened.store);
    opened.store->write(keys::autoPurgeKey, true);
    EXPECT_EQ(opened.store->read(keys::autoPurgeKey), SettingsValue(true));
}

TEST_F(UnusableSettings, DoesWithoutAFolderThatCannotBeMade) {
    writeFile(folder.path() / "tallowcrest", "a file where the folder should be");
    const OpenedStore opened = open();
    ASSERT_EQ(opened.problems.size(), 1U);
    EXPECT_THAT(opened.problems.front(), HasSubstr(file.parent_path().string()));
    EXPECT_THAT(opened.problems.front(), HasSubstr("Not a directory"));
    opened.store->write(keys::autoPurgeKey, true);
    EXPECT_EQ(opened.store->read(keys::autoPurgeKey), SettingsValue(true));
    EXPECT_TRUE(fileText(folder.path() / "tallowcrest") == "a file where the folder should be");
}

TEST_F(UnusableSettings, TellsWhyTheFirstMissingFolderCannotBeMade) {
    const fs::path closed = folder.path() / "closed";
    fs::create_directory(closed);
    fs::permissions(closed, fs::perms(0500));
    file = closed / "share" / "tallowcrest" / "settings.sqlite";
    const AsOrdinaryUser user(closed);
    const OpenedStore opened = open();
    ASSERT_EQ(opened.problems.size(), 1U);
    EXPECT_THAT(opened.problems.front(), HasSubstr("cannot be made, Permission denied"));
}

TEST_F(UnusableSettings, WorksWithoutAFileThatCannotBeCreatedOrPutAside) {
    fs::create_directory(file.parent_path());
    for (const auto& [content, words] :
         {std::pair{"", "cannot be made"}, {"garbage", "cannot be put aside"}}) {
        fs::permissions(file.parent_path(), fs::perms(0700));
        if (*content != '\0') {
            writeFile(file, content);
        }
        fs::permissions(file.parent_path(), fs::perms(0500));
        const AsOrdinaryUser user(file.parent_path());
        const OpenedStore opened = open();
        expectOneProblem(opened, words);
        expectMemoryAlone(opened);
        EXPECT_TRUE(fileText(file) == content);
    }
}

}  // namespace
}  // namespace tallowcrest

// One value of a settings file, read without the others.

#include <filesystem>
#include <optional>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/settings/settings.h"
#include "platform/settings/open_settings_store.h"
#include "tests/platform/settings/locking_writer.h"
#include "tests/platform/settings/settings_file_fixture.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
namespace keys = settings_keys;
using ::testing::IsEmpty;

class StoredKey : public SettingsFileFixture {
protected:
    /// The threshold where there is no problem.
    std::optional<SettingsValue> threshold() const {
        const OpenedStore opened = readStoredKey(file, keys::thresholdKey);
        EXPECT_THAT(opened.problems, IsEmpty());
        return opened.store->read(keys::thresholdKey);
    }

    void expectProblem(const char* words) const {
        const OpenedStore opened = readStoredKey(file, keys::thresholdKey);
        expectOneProblem(opened, words);
        EXPECT_EQ(opened.store->read(keys::thresholdKey), std::nullopt);
    }
};

TEST_F(StoredKey, IsReadAloneAndNothingIsChanged) {
    makeStored();
    fs::permissions(file, fs::perms(0644));
    const auto before = contents();
    EXPECT_EQ(threshold(), SettingsValue(70.0));
    const OpenedStore opened = readStoredKey(file, keys::thresholdKey);
    EXPECT_EQ(opened.store->read(keys::autoSelectKey), std::nullopt);
    EXPECT_TRUE(contents() == before);
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0644));
}

TEST_F(StoredKey, IsReadFromTheLogAndThroughALink) {
    const OpenedStore other = open();
    const fs::path link = folder.path() / "link";
    fs::create_symlink(file, link);
    for (const double percent : {73.0, 74.0}) {
        other.store->write(keys::thresholdKey, percent);
        EXPECT_EQ(threshold(), SettingsValue(percent));
        EXPECT_EQ(readStoredKey(link, keys::thresholdKey).store->read(keys::thresholdKey),
                  SettingsValue(percent));
    }
}

TEST_F(StoredKey, IsReadInAReadOnlyFolderWithItsLatestChange) {
    {
        const OpenedStore opened = open();
        opened.store->write(keys::thresholdKey, 73.0);
        keepFiles();
    }
    restoreFiles();
    fs::remove(file.string() + "-shm");
    fs::permissions(file.parent_path(), fs::perms(0500));
    const AsOrdinaryUser user(file.parent_path());
    const auto before = contents();
    EXPECT_EQ(threshold(), SettingsValue(73.0));
    EXPECT_TRUE(contents() == before);
}

TEST_F(StoredKey, IsAbsentWithoutAProblemWhereNoneIsStored) {
    EXPECT_EQ(threshold(), std::nullopt);
    EXPECT_FALSE(fs::exists(file.parent_path()));
    EXPECT_THAT(readStoredKey({}, keys::thresholdKey).problems, IsEmpty());
    makeStored();
    changeStored("DELETE FROM settings");
    EXPECT_EQ(threshold(), std::nullopt);
}

TEST_F(StoredKey, IsReadWhateverItsKindIs) {
    makeStored();
    changeStored("UPDATE settings SET kind = 'text', value = '70'");
    EXPECT_EQ(threshold(), SettingsValue("70"));
}

TEST_F(StoredKey, IsReadBesideARowThatCannotBeDecoded) {
    makeStored();
    changeStored("UPDATE settings SET kind = 'none' WHERE key != 'Tallowcrest.warningThreshold'");
    EXPECT_EQ(threshold(), SettingsValue(70.0));
}

TEST_F(StoredKey, IsAbsentWithAProblemInAFileThatIsNotUsable) {
    for (const auto& [sql, words] :
         {std::pair{"PRAGMA application_id = 77", "the file is damaged"},
          {"PRAGMA user_version = 0", "the file is damaged"},
          {"PRAGMA user_version = 2", "newer version"},
          {"DROP TABLE settings", "the file is damaged"},
          {"ALTER TABLE settings RENAME TO s; CREATE VIEW settings AS SELECT * FROM s",
           "the file is damaged"},
          {"UPDATE settings SET kind = 'none'", "the file is damaged"},
          {"UPDATE settings SET value = zeroblob(40000000)", "too big"}}) {
        SCOPED_TRACE(sql);
        fs::remove_all(file.parent_path());
        makeStored();
        changeStored(sql);
        expectProblem(words);
    }
    writeFile(file, "garbage");
    expectProblem("the file is damaged");
}

TEST_F(StoredKey, IsAbsentWithAProblemWhileTheFileIsLocked) {
    makeStored();
    {
        const LockingWriter writer(file, 73.0);
        expectProblem("locked");
    }
    EXPECT_EQ(threshold(), SettingsValue(73.0));
}

}  // namespace
}  // namespace tallowcrest

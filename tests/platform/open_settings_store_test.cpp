#include "platform/sqlite/open_settings_store.h"

#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/settings_keys.h"
#include "platform/sqlite/open_settings_store.h"
#include "tests/platform/settings_file_fixture.h"
#include "tests/platform/writer_process.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
namespace keys = settings_keys;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class OpenSettingsStore : public SettingsFileFixture {};

TEST_F(OpenSettingsStore, BeginsAFileWhereThereIsNone) {
    const OpenedStore opened = open();
    EXPECT_THAT(opened.problems, IsEmpty());
    EXPECT_TRUE(fs::exists(file));
    expectDefaults(*opened.store);
}

TEST_F(OpenSettingsStore, FindsWhatWasStored) {
    makeStored();
    const OpenedStore opened = open();
    EXPECT_THAT(opened.problems, IsEmpty());
    expectStored(*opened.store);
}

TEST_F(OpenSettingsStore, APlaceMayHaveAnyName) {
    for (const char* name : {"with blank", "what?immutable=1#%41", "caf\xC3\xA9", "not \xFF utf"}) {
        file = folder.path() / name / "settings.sqlite";
        makeStored();
        EXPECT_TRUE(fs::exists(file)) << name;
        expectStored(*open().store);
        expectStored(*readSettingsStore(file).store);
        writeFile(file, "garbage");
        const OpenedStore opened = open();
        ASSERT_EQ(opened.problems.size(), 1U);
    }
}

TEST_F(OpenSettingsStore, WithoutAPlaceThereIsMemory) {
    const OpenedStore opened = openSettingsStore({}, {workQueue, clock, {}});
    ASSERT_EQ(opened.problems.size(), 1U);
    EXPECT_THAT(opened.problems.front(), HasSubstr("no home folder"));
    opened.store->write(keys::autoPurgeKey, true);
    EXPECT_EQ(opened.store->read(keys::autoPurgeKey), SettingsValue(true));
}

// Rows that make no sense ------------------------------------------------------------------------

TEST_F(OpenSettingsStore, ARowThatMakesNoSenseCostsItsOwnKeyAlone) {
    for (const char* change :
         {"kind = 'unknown'", "kind = 'text', value = 'seventy'", "kind = 'flag', value = 1",
          "kind = 'integer', value = 70", "value = 'seventy'", "value = x'00'", "kind = x'FF'",
          "kind = ''", "kind = 'text', value = CAST(x'FF' AS TEXT)",
          "kind = 'list', value = '[1]'"}) {
        fs::remove_all(file.parent_path());
        makeStored();
        changeStored(std::string("UPDATE settings SET ") + change +
                     " WHERE key = 'Tallowcrest.warningThreshold'");
        const OpenedStore opened = open();
        expectOneProblem(opened, "no sense can be made of Tallowcrest.warningThreshold,");
        EXPECT_EQ(opened.store->read(keys::autoSelectKey), SettingsValue(false)) << change;
        EXPECT_EQ(loadStoredState(*opened.store, "owner").settings.warningThreshold, 82.0)
            << change;
        EXPECT_EQ(readSettingsStore(file).problems, opened.problems) << change;
        // The next save mends it.
        opened.store->write(keys::thresholdKey, 75.0);
        EXPECT_THAT(readSettingsStore(file).problems, IsEmpty()) << change;
    }
}

TEST_F(OpenSettingsStore, TellsOfAllRowsInOneSentence) {
    makeStored();
    changeStored("UPDATE settings SET kind = 'unknown'");
    const OpenedStore opened = open();
    expectOneProblem(opened,
                     "no sense can be made of Tallowcrest.warningThreshold, Tallowcrest.history, "
                     "Tallowcrest.autoSelectTopOffender, so the default is used.");
    expectDefaults(*opened.store);
}

TEST_F(OpenSettingsStore, AWholeNumberAndJSONThatDoesNotDecodeAreNoProblem) {
    makeStored();
    changeStored(
        "UPDATE settings SET value = 75 WHERE key = 'Tallowcrest.warningThreshold';"
        "UPDATE settings SET value = 'no JSON' WHERE key = 'Tallowcrest.history';"
        "INSERT INTO settings VALUES ('somebody.elses', 'unknown', 1)");
    const OpenedStore opened = open();
    EXPECT_THAT(opened.problems, IsEmpty());
    const StoredState state = loadStoredState(*opened.store, "owner");
    EXPECT_EQ(state.settings.warningThreshold, 75.0);
    EXPECT_THAT(state.history, IsEmpty());
}

TEST_F(OpenSettingsStore, RunsNothingThatTheFileBringsAlong) {
    makeStored();
    changeStored("CREATE TRIGGER t AFTER UPDATE ON settings BEGIN DELETE FROM settings; END");
    const OpenedStore opened = open();
    opened.store->write(keys::thresholdKey, 75.0);
    EXPECT_EQ(opened.store->read(keys::thresholdKey), SettingsValue(75.0));
    EXPECT_EQ(opened.store->read(keys::autoSelectKey), SettingsValue(false));
}

// Only looking -----------------------------------------------------------------------------------

TEST_F(OpenSettingsStore, LookingMakesNothing) {
    const OpenedStore opened = readSettingsStore(file);
    EXPECT_THAT(opened.problems, IsEmpty());
    expectDefaults(*opened.store);
    EXPECT_FALSE(fs::exists(file.parent_path()));
    EXPECT_THAT(readSettingsStore({}).problems, IsEmpty());
}

TEST_F(OpenSettingsStore, LookingFindsWhatIsStoredAndChangesNothing) {
    makeStored();
    fs::permissions(file, fs::perms(0644));
    const auto before = contents();
    const OpenedStore opened = readSettingsStore(file);
    EXPECT_THAT(opened.problems, IsEmpty());
    expectStored(*opened.store);
    expectMemoryAlone(opened);
    EXPECT_TRUE(contents() == before);
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0644U);
}

TEST_F(OpenSettingsStore, LookingSeesWhatAnotherProcessHasJustStored) {
    WriterProcess other({"write-without-end", file.string(), "28"});
    ASSERT_EQ(other.readOutput(8 * 28).size(), 8U * 28);
    const OpenedStore opened = readSettingsStore(file);
    EXPECT_THAT(opened.problems, IsEmpty());
    for (const keys::Key& key : keys::all) {
        EXPECT_TRUE(opened.store->read(key.name).has_value()) << key.name;
    }
}

TEST_F(OpenSettingsStore, LookingLeavesDamageWhereItIs) {
    fs::create_directory(file.parent_path());
    writeFile(file, "garbage");
    const auto before = contents();
    const OpenedStore opened = readSettingsStore(file);
    expectOneProblem(opened, "cannot be read");
    expectDefaults(*opened.store);
    EXPECT_TRUE(contents() == before);
}

}  // namespace
}  // namespace tallowcrest

#include "platform/settings/open_settings_store.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/settings/settings.h"
#include "tests/platform/settings/settings_file_fixture.h"
#include "tests/platform/settings/writer_process.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
namespace keys = settings_keys;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class OpenSettingsStore : public SettingsFileFixture {
protected:
    static constexpr const char* keptName = "settings.sqlite.damaged-20260509-061320";

    std::string thresholdRow() const {
        SqliteConnection connection;
        std::string row;
        EXPECT_EQ(connection.open(file, SqliteConnection::Access::readOnly, {}), SQLITE_OK);
        EXPECT_EQ(connection.queryText("SELECT kind || ' ' || value FROM settings "
                                       "WHERE key = 'Tallowcrest.warningThreshold'",
                                       row),
                  SQLITE_OK)
            << connection.message();
        return row;
    }
};

/// For a moment, no file may grow beyond a size.
class LargestFile {
public:
    explicit LargestFile(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &before_), 0);
        const rlimit lowered{bytes, before_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &lowered), 0);
    }
    LargestFile(const LargestFile&) = delete;
    LargestFile& operator=(const LargestFile&) = delete;
    ~LargestFile() {
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &before_), 0);
        std::signal(SIGXFSZ, handler_);
    }

private:
    rlimit before_{};
    void (*handler_)(int);
};

/// For a moment, nothing more can be opened.
class NoMoreDescriptors {
public:
    NoMoreDescriptors() {
        EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &before_), 0);
        const int next = ::dup(STDERR_FILENO);
        ::close(next);
        // Enough to look at the file, and too few for SQLite to open it with its log.
        const rlimit lowered{static_cast<rlim_t>(next) + 2, before_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &lowered), 0);
    }
    NoMoreDescriptors(const NoMoreDescriptors&) = delete;
    NoMoreDescriptors& operator=(const NoMoreDescriptors&) = delete;
    ~NoMoreDescriptors() { EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &before_), 0); }

private:
    rlimit before_{};
};

TEST_F(OpenSettingsStore, CreatesAMissingFileAndFindsWhatWasStored) {
    {
        const OpenedStore opened = open();
        EXPECT_THAT(opened.problems, IsEmpty());
        EXPECT_TRUE(fs::exists(file));
        expectDefaults(*opened.store);
    }
    makeStored();
    const OpenedStore opened = open();
    EXPECT_THAT(opened.problems, IsEmpty());
    expectStored(*opened.store);
}

TEST_F(OpenSettingsStore, APathMayHaveAnyCharacters) {
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

TEST_F(OpenSettingsStore, UsesTheTargetOfALinkInItsPlace) {
    makeStored();
    const fs::path link = file;
    const fs::path elsewhere = folder.path() / "elsewhere";
    fs::create_directory(elsewhere);
    fs::permissions(elsewhere, fs::perms(0755));
    file = elsewhere / "kept.sqlite";
    fs::rename(link, file);
    fs::create_symlink(file, link);
    {
        const OpenedStore opened = openSettingsStore(link, {jobs, clock, {}});
        EXPECT_THAT(opened.problems, IsEmpty());
        expectStored(*opened.store);
        opened.store->write(keys::autoPurgeKey, true);
        EXPECT_TRUE(fs::exists(file.string() + "-wal"));
    }
    EXPECT_EQ(readSettingsStore(link).store->read(keys::autoPurgeKey), SettingsValue(true));
    struct stat status {};
    ASSERT_EQ(::stat(elsewhere.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0755U) << "others' files lie there too";

    writeFile(file, "garbage");
    expectOneProblem(openSettingsStore(link, {jobs, clock, {}}), "damaged");
    EXPECT_TRUE(fileText(elsewhere / "kept.sqlite.damaged-20260509-061320") == "garbage");
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_THAT(readSettingsStore(link).problems, IsEmpty());
}

TEST_F(OpenSettingsStore, ABrokenLinkIsReplacedByAFile) {
    fs::create_directory(file.parent_path());
    fs::create_symlink(folder.path() / "nowhere" / "settings.sqlite", file);
    makeStored();
    EXPECT_FALSE(fs::is_symlink(file));
    expectStored(*open().store);
}

TEST_F(OpenSettingsStore, WithoutAPlaceThereIsMemory) {
    const OpenedStore opened = openSettingsStore({}, {jobs, clock, {}});
    ASSERT_EQ(opened.problems.size(), 1U);
    EXPECT_THAT(opened.problems.front(), HasSubstr("no home folder"));
    opened.store->write(keys::autoPurgeKey, true);
    EXPECT_EQ(opened.store->read(keys::autoPurgeKey), SettingsValue(true));
}

// Rows that cannot be decoded --------------------------------------------------------------------

TEST_F(OpenSettingsStore, AnUnreadableRowAffectsItsOwnKeyOnly) {
    for (const char* change :
         {"kind = 'unknown'", "kind = 'text', value = 'seventy'", "kind = 'flag', value = 1",
          "kind = 'integer', value = 70", "value = 'seventy'", "value = x'00'", "kind = x'FF'",
          "kind = ''", "kind = 'text', value = CAST(x'FF' AS TEXT)",
          "kind = 'list', value = '[1]'"}) {
        fs::remove_all(file.parent_path());
        makeStored();
        changeStored(std::string("UPDATE settings SET ") + change +
                     " WHERE key = 'Tallowcrest.warningThreshold'");
        const OpenedStore looked = readSettingsStore(file);
        expectOneProblem(looked, "so their defaults are used: Tallowcrest.warningThreshold");
        const OpenedStore opened = open();
        expectOneProblem(opened, "so their defaults are used: Tallowcrest.warningThreshold");
        EXPECT_EQ(opened.store->read(keys::autoSelectKey), SettingsValue(false)) << change;
        EXPECT_EQ(ownerOf(opened).values().warningThreshold, 82.0) << change;
        // The owner still has it, and is told once.
        EXPECT_THAT(opened.problems.front(), HasSubstr(keptName)) << change;
        EXPECT_EQ(readSettingsStore(file.parent_path() / keptName).problems.size(), 1U) << change;
        EXPECT_THAT(readSettingsStore(file).problems, IsEmpty()) << change;
    }
}

TEST_F(OpenSettingsStore, AnUnreadableRowThatCannotBeCopiedStays) {
    makeStored();
    changeStored("UPDATE settings SET kind = 'unknown'");
    {
        // Enough for SQLite's own companions, and too little for a copy of the file.
        const LargestFile limit(50'000);
        const OpenedStore opened = open();
        expectOneProblem(opened, "changed only for this run: Tallowcrest.autoSelectTopOffender");
        EXPECT_FALSE(opened.store->read(keys::thresholdKey));
        opened.store->write(keys::thresholdKey, 75.0);
        EXPECT_EQ(opened.store->read(keys::thresholdKey), SettingsValue(75.0));
        opened.store->write(keys::autoPurgeKey, true);
    }
    EXPECT_FALSE(fs::exists(file.parent_path() / keptName));
    EXPECT_EQ(thresholdRow(), "unknown 70.0");
    // Once there is room, the row is kept and its key stored again.
    {
        const OpenedStore opened = open();
        expectOneProblem(opened, keptName);
        EXPECT_EQ(opened.store->read(keys::autoPurgeKey), SettingsValue(true));
        opened.store->write(keys::thresholdKey, 75.0);
    }
    EXPECT_EQ(thresholdRow(), "number 75.0");
}

TEST_F(OpenSettingsStore, ATooLargeRowAffectsItsOwnKeyOnlyAndIsKept) {
    for (const char* column : {"value", "kind"}) {
        fs::remove_all(file.parent_path());
        makeStored();
        constexpr std::size_t size = 33 << 20;
        changeStored(std::string("UPDATE settings SET ") + column +
                     " = CAST(zeroblob(33 << 20) AS TEXT) WHERE key = 'Tallowcrest.history'");
        expectOneProblem(readSettingsStore(file),
                         "so their defaults are used: Tallowcrest.history,");
        {
            const OpenedStore opened = open();
            ASSERT_NO_FATAL_FAILURE(
                expectOneProblem(opened, "so their defaults are used: Tallowcrest.history;"));
            EXPECT_THAT(opened.problems.front(), HasSubstr(keptName));
            expectStored(*opened.store);
            EXPECT_FALSE(opened.store->read(keys::historyKey));
        }
        EXPECT_GT(fs::file_size(file.parent_path() / keptName), size);
        EXPECT_THAT(open().problems, IsEmpty()) << column;
    }
}

TEST_F(OpenSettingsStore, AFailedQueryIsNoUnreadableRow) {
    makeStored();
    {
        const OpenedStore writing = open();
        writing.store->write(keys::autoPurgeKey, true);
        std::optional<NoMoreDescriptors> none(std::in_place);
        const OpenedStore opened = open();
        // Judged once it is over: the sanitizers need descriptors to look at an object.
        none.reset();
        ASSERT_EQ(opened.problems.size(), 1U);
        EXPECT_THAT(opened.problems.front(), HasSubstr("cannot be"));
        expectMemoryAlone(opened);
    }
    EXPECT_THAT(open().problems, IsEmpty());
    expectStored(*open().store);
}

TEST_F(OpenSettingsStore, AKillDuringCreationIsNoDamage) {
    fs::create_directory(file.parent_path());
    writeFile(file.string() + ".new", "");
    writeFile(file.string() + ".new-journal", "half");
    const OpenedStore opened = open();
    EXPECT_THAT(opened.problems, IsEmpty());
    EXPECT_FALSE(fs::exists(file.string() + ".new"));
    EXPECT_FALSE(fs::exists(file.string() + ".new-journal"));
}

TEST_F(OpenSettingsStore, ReportsAllRowsInOneSentenceAndKeepsACopyThatOnlyTheUserCanRead) {
    makeStored();
    changeStored("UPDATE settings SET kind = 'unknown'");
    const OpenedStore opened = open();
    expectOneProblem(opened,
                     "so their defaults are used: Tallowcrest.autoSelectTopOffender, "
                     "Tallowcrest.warningThreshold, Tallowcrest.history;");
    expectDefaults(*opened.store);
    struct stat status {};
    ASSERT_EQ(::stat((file.parent_path() / keptName).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
}

TEST_F(OpenSettingsStore, AWholeNumberAndJSONThatDoesNotDecodeAreNoProblem) {
    makeStored();
    changeStored(
        "UPDATE settings SET value = 75 WHERE key = 'Tallowcrest.warningThreshold';"
        "UPDATE settings SET value = 'no JSON' WHERE key = 'Tallowcrest.history';"
        "INSERT INTO settings VALUES ('somebody.elses', 'unknown', 1)");
    const OpenedStore opened = open();
    EXPECT_THAT(opened.problems, IsEmpty());
    EXPECT_EQ(ownerOf(opened).values().warningThreshold, 75.0);
    EXPECT_EQ(ownerOf(opened).load(stored::history), std::nullopt);
}

TEST_F(OpenSettingsStore, RunsNoTriggerOfTheFile) {
    makeStored();
    changeStored("CREATE TRIGGER t AFTER UPDATE ON settings BEGIN DELETE FROM settings; END");
    const OpenedStore opened = open();
    opened.store->write(keys::thresholdKey, 75.0);
    EXPECT_EQ(opened.store->read(keys::thresholdKey), SettingsValue(75.0));
    EXPECT_EQ(opened.store->read(keys::autoSelectKey), SettingsValue(false));
}

// Only reading -----------------------------------------------------------------------------------

TEST_F(OpenSettingsStore, ReadingCreatesNothing) {
    const OpenedStore opened = readSettingsStore(file);
    EXPECT_THAT(opened.problems, IsEmpty());
    expectDefaults(*opened.store);
    EXPECT_FALSE(fs::exists(file.parent_path()));
    EXPECT_THAT(readSettingsStore({}).problems, IsEmpty());
}

TEST_F(OpenSettingsStore, ReadingLeavesOutTheGivenKeys) {
    makeStored();
    const OpenedStore all = readSettingsStore(file);
    const OpenedStore some = readSettingsStore(file, {keys::thresholdKey, keys::historyKey});
    EXPECT_THAT(some.problems, IsEmpty());
    ASSERT_NE(all.store->read(keys::thresholdKey), std::nullopt);
    for (const settings_keys::Key& key : settings_keys::all) {
        const bool isLeftOut = key.name == keys::thresholdKey || key.name == keys::historyKey;
        EXPECT_EQ(some.store->read(key.name), isLeftOut ? std::nullopt : all.store->read(key.name))
            << key.name;
    }
}

TEST_F(OpenSettingsStore, ReadingFindsWhatIsStoredAndChangesNothing) {
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

TEST_F(OpenSettingsStore, ReadingSeesWhatAnotherProcessHasJustStored) {
    WriterProcess other({"write-without-end", file.string(), "28"});
    const std::size_t written = keys::all.size() * sizeof(std::int64_t);
    ASSERT_EQ(other.readOutput(written).size(), written);
    const OpenedStore opened = readSettingsStore(file);
    EXPECT_THAT(opened.problems, IsEmpty());
    for (const keys::Key& key : keys::all) {
        EXPECT_TRUE(opened.store->read(key.name).has_value()) << key.name;
    }
}

TEST_F(OpenSettingsStore, AReadOnlyFolderIsReadWithItsLatestChanges) {
    {
        const OpenedStore opened = open();
        opened.store->write(keys::thresholdKey, 73.0);
        keepFiles();
    }
    restoreFiles();
    // Without it SQLite reads the log only where it can make one.
    fs::remove(file.string() + "-shm");
    ASSERT_GT(fs::file_size(file.string() + "-wal"), 0U);
    fs::permissions(file.parent_path(), fs::perms(0500));
    const AsOrdinaryUser user(file.parent_path());
    const auto before = contents();
    const OpenedStore looked = readSettingsStore(file);
    EXPECT_THAT(looked.problems, IsEmpty());
    EXPECT_EQ(looked.store->read(keys::thresholdKey), SettingsValue(73.0));
    const OpenedStore opened = open();
    expectOneProblem(opened, "can be read but not changed");
    expectOneProblem(opened, "Permission denied");
    EXPECT_EQ(opened.store->read(keys::thresholdKey), SettingsValue(73.0));
    expectMemoryAlone(opened);
    EXPECT_TRUE(contents() == before);
}

TEST_F(OpenSettingsStore, ReadingLeavesADamagedFileInPlace) {
    for (const auto& [size, words] :
         {std::pair{8192U, "the file is damaged"}, {7U, "cannot be read"}}) {
        fs::remove_all(file.parent_path());
        makeStored();
        writeFile(file, size == 7 ? "garbage" : fileText(file).substr(0, size));
        const auto before = contents();
        const OpenedStore opened = readSettingsStore(file);
        expectOneProblem(opened, words);
        expectDefaults(*opened.store);
        EXPECT_TRUE(contents() == before);
    }
}

}  // namespace
}  // namespace tallowcrest

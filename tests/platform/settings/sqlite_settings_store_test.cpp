#include "platform/settings/sqlite_settings_store.h"

#include <sys/stat.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/settings/settings.h"
#include "platform/settings/open_settings_store.h"
#include "tests/platform/settings/settings_values.h"
#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"
#include "tests/support/names_in.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
namespace keys = settings_keys;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Another writer in the middle of a transaction.
class WriteLock {
public:
    explicit WriteLock(const fs::path& file) {
        EXPECT_EQ(other_.open(file, SqliteConnection::Access::readWrite, {}), SQLITE_OK);
        EXPECT_EQ(other_.execute("BEGIN IMMEDIATE"), SQLITE_OK);
    }

private:
    SqliteConnection other_;
};

class SqliteSettingsStoreTest : public ::testing::Test {
protected:
    SettingsStore& open(int logPages = 1024) {
        store.reset();
        OpenedStore opened = openSettingsStore(
            file, {jobs, clock, [this](const std::string& report) { reports.push_back(report); },
                   logPages});
        EXPECT_THAT(opened.problems, IsEmpty());
        store = std::move(opened.store);
        return *store;
    }

    /// What another process would find, were this one killed now.
    std::optional<SettingsValue> stored(std::string_view key) const {
        OpenedStore seen = readSettingsStore(file);
        EXPECT_THAT(seen.problems, IsEmpty());
        return seen.store->read(key);
    }

    /// Writes values with increasing numbers until a job is queued. Returns the last number.
    std::int64_t writeUntilAJobWaits() {
        std::int64_t number = 0;
        while (workQueue.pendingCount() == 0 && number < 1000) {
            store->write(keys::historyKey, valueFor(keyOf(keys::historyKey), ++number));
        }
        EXPECT_EQ(workQueue.pendingCount(), 1U);
        return number;
    }

    std::uintmax_t logSize() const {
        std::error_code error;
        const auto size = fs::file_size(file.string() + "-wal", error);
        return error ? 0 : size;
    }

    static mode_t modeOf(const fs::path& path) {
        struct stat status {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777;
    }

    TemporaryFolder folder;
    fs::path file = folder.path() / "data" / "tallowcrest" / "settings.sqlite";
    ManualMainQueue mainQueue;
    ManualWorkQueue workQueue;
    Jobs jobs{mainQueue, workQueue};
    ManualClock clock;
    std::vector<std::string> reports;
    std::unique_ptr<SettingsStore> store;
};

TEST_F(SqliteSettingsStoreTest, AnUnwrittenKeyIsAbsent) {
    open();
    EXPECT_FALSE(store->read(keys::autoSelectKey));
    store->write(keys::autoPurgeKey, true);
    EXPECT_FALSE(store->read(keys::autoSelectKey));
    EXPECT_FALSE(store->read(""));
    EXPECT_FALSE(store->read("tallowcrest.autopurgesustainedmemory"));
}

TEST_F(SqliteSettingsStoreTest, EveryKeyIsWrittenThroughAndReadBack) {
    open();
    for (const keys::Key& key : keys::all) {
        store->write(key.name, valueFor(key, 7));
        EXPECT_EQ(store->read(key.name), valueFor(key, 7)) << key.name;
        EXPECT_EQ(stored(key.name), valueFor(key, 7)) << key.name << " is written through";
    }
    open();
    for (const keys::Key& key : keys::all) {
        EXPECT_EQ(store->read(key.name), valueFor(key, 7)) << key.name;
    }
    EXPECT_THAT(reports, IsEmpty());
}

TEST_F(SqliteSettingsStoreTest, AWriteReplacesTheOlderValueAndItsKind) {
    open();
    store->write("key", 1.0);
    store->write("key", std::string("1"));
    EXPECT_EQ(store->read("key"), SettingsValue(std::string("1")));
    store->write("key", SettingsTextList{"1"});
    open();
    EXPECT_EQ(store->read("key"), SettingsValue(SettingsTextList{"1"}));
}

TEST_F(SqliteSettingsStoreTest, AKeyCanBeRemoved) {
    open();
    store->write(keys::thresholdKey, 70.0);
    store->write(keys::storageAnalysisBookmarkKey, SettingsData{"bytes"});
    store->write(keys::thresholdKey, std::nullopt);
    store->write(keys::autoPurgeKey, std::nullopt);
    EXPECT_FALSE(stored(keys::thresholdKey)) << "at once";
    {
        const WriteLock lock(file);
        store->write(keys::storageAnalysisBookmarkKey, std::nullopt);
    }
    EXPECT_TRUE(stored(keys::storageAnalysisBookmarkKey));
    open();
    EXPECT_FALSE(store->read(keys::storageAnalysisBookmarkKey)) << "it was tried again";
    EXPECT_FALSE(store->read(keys::thresholdKey));
}

TEST_F(SqliteSettingsStoreTest, AnyTextCanBeAKey) {
    open();
    for (const std::string& key : {std::string("it's; DROP TABLE settings"), std::string("a\"b"),
                                   std::string("?1"), std::string("")}) {
        store->write(key, 1.0);
        EXPECT_EQ(store->read(key), SettingsValue(1.0)) << key;
    }
}

TEST_F(SqliteSettingsStoreTest, AnInvalidOrTooLargeValueLeavesTheOlderOneSilently) {
    open();
    store->write(keys::sshUsernameKey, std::string("owner"));
    for (const std::string& bad : {std::string("\xFF"), std::string((32U << 20U) + 1, 'x')}) {
        store->write(keys::sshUsernameKey, bad);
        EXPECT_EQ(store->read(keys::sshUsernameKey), SettingsValue(std::string("owner")));
    }
    EXPECT_THAT(reports, IsEmpty());
}

TEST_F(SqliteSettingsStoreTest, AnInvalidValueDoesNotEndAnOutage) {
    open().write(keys::sshUsernameKey, std::string("owner"));
    std::optional<WriteLock> lock(file);
    store->write(keys::sshUsernameKey, std::string("new"));
    store->write(keys::sshUsernameKey, std::string("\xFF"));
    lock.reset();
    store->write(keys::autoPurgeKey, true);
    EXPECT_EQ(stored(keys::sshUsernameKey), SettingsValue(std::string("new")));
    EXPECT_THAT(reports, ElementsAre(HasSubstr("cannot be saved"), IsEmpty()));
}

TEST_F(SqliteSettingsStoreTest, FolderAndFilesAreTheUsersAlone) {
    for (const mode_t mask : {0U, 022U, 0777U}) {
        fs::remove_all(folder.path() / "data");
        const mode_t before = ::umask(mask);
        open();
        store->write(keys::autoPurgeKey, true);
        ::umask(before);
        EXPECT_EQ(modeOf(folder.path() / "data"), 0700U) << mask;
        EXPECT_EQ(modeOf(file.parent_path()), 0700U) << mask;
        for (const char* suffix : {"", "-wal", "-shm"}) {
            EXPECT_EQ(modeOf(file.string() + suffix), 0600U) << mask << suffix;
        }
        store.reset();
    }
}

TEST_F(SqliteSettingsStoreTest, WithdrawsTheAccessOfOthers) {
    open().write(keys::autoPurgeKey, true);
    store.reset();
    fs::permissions(file, fs::perms(0666));
    fs::permissions(file.parent_path(), fs::perms(0755));
    fs::permissions(folder.path() / "data", fs::perms(0755));
    open();
    EXPECT_EQ(modeOf(file), 0600U);
    EXPECT_EQ(modeOf(file.parent_path()), 0700U);
    EXPECT_EQ(modeOf(folder.path() / "data"), 0755U) << "others' data lies there too";
    EXPECT_EQ(store->read(keys::autoPurgeKey), SettingsValue(true));
}

// The log of latest changes ----------------------------------------------------------------------

TEST_F(SqliteSettingsStoreTest, DestructionLeavesOnlyTheFile) {
    open().write(keys::historyKey, valueFor(keyOf(keys::historyKey), 1));
    EXPECT_GT(logSize(), 0U);
    store.reset();
    EXPECT_THAT(namesIn(file.parent_path()), ElementsAre(file.filename().string()));
}

TEST_F(SqliteSettingsStoreTest, TheWorkQueueMovesTheLog) {
    open(50);
    const std::uintmax_t before = fs::file_size(file);
    std::int64_t number = writeUntilAJobWaits();
    EXPECT_GE(logSize(), 50U * 4096);
    // Nobody comes to move it for a while: one job waits, however many writes there are.
    for (int i = 0; i < 50; ++i) {
        store->write(keys::historyKey, valueFor(keyOf(keys::historyKey), ++number));
    }
    EXPECT_EQ(workQueue.pendingCount(), 1U);
    EXPECT_EQ(workQueue.laneOf(0), Lane::settings);
    EXPECT_EQ(fs::file_size(file), before);
    const std::uintmax_t longest = logSize();

    workQueue.run();
    EXPECT_GT(fs::file_size(file), before);
    // It is restarted in place, so that the same writes no longer lengthen it.
    for (int i = 0; i < 20; ++i) {
        store->write(keys::historyKey, valueFor(keyOf(keys::historyKey), ++number));
    }
    EXPECT_EQ(logSize(), longest);
    EXPECT_EQ(stored(keys::historyKey), valueFor(keyOf(keys::historyKey), number));
}

TEST_F(SqliteSettingsStoreTest, TheLogIsMovedAgainOnceTheLastMoveIsOver) {
    open(1).write(keys::autoPurgeKey, true);
    workQueue.run();
    store->write(keys::autoPurgeKey, false);
    EXPECT_EQ(workQueue.pendingCount(), 0U) << "the main thread does not know yet";
    mainQueue.drain();
    store->write(keys::autoPurgeKey, true);
    EXPECT_EQ(workQueue.pendingCount(), 1U);
}

TEST_F(SqliteSettingsStoreTest, TheJobMakesTheFirstWriteToTheRestartedLog) {
    open(50);
    std::int64_t number = writeUntilAJobWaits();
    const auto saltOf = [this] {
        std::FILE* log = std::fopen((file.string() + "-wal").c_str(), "rb");
        std::string header(32, '\0');
        EXPECT_EQ(std::fread(header.data(), 1, header.size(), log), header.size());
        std::fclose(log);
        return header.substr(16, 8);
    };
    const std::string before = saltOf();
    workQueue.run();
    const std::string after = saltOf();
    EXPECT_NE(after, before) << "the job leaves the wait for the disk to the next write";
    store->write(keys::historyKey, valueFor(keyOf(keys::historyKey), ++number));
    EXPECT_EQ(saltOf(), after);
}

TEST_F(SqliteSettingsStoreTest, AJobMayOutliveTheStoreAndTheFile) {
    open(1).write(keys::autoPurgeKey, true);
    ASSERT_EQ(workQueue.pendingCount(), 1U);
    store.reset();
    workQueue.run();
    EXPECT_EQ(stored(keys::autoPurgeKey), SettingsValue(true));

    open(1).write(keys::autoPurgeKey, false);
    ASSERT_EQ(workQueue.pendingCount(), 1U);
    store.reset();
    fs::remove_all(file.parent_path());
    workQueue.run();
    EXPECT_FALSE(fs::exists(file));
}

// Writes that fail -------------------------------------------------------------------------------

TEST_F(SqliteSettingsStoreTest, AWriteToALockedFileIsRetriedLater) {
    open().write(keys::thresholdKey, 70.0);
    std::optional<WriteLock> lock(file);
    store->write(keys::thresholdKey, 80.0);
    store->write(keys::autoPurgeKey, true);
    EXPECT_EQ(store->read(keys::thresholdKey), SettingsValue(70.0));
    EXPECT_FALSE(store->read(keys::autoPurgeKey));
    ASSERT_THAT(reports, ElementsAre(HasSubstr("cannot be saved")));
    EXPECT_THAT(reports.front(), HasSubstr(file.string()));
    EXPECT_THAT(reports.front(), HasSubstr("locked"));

    lock.reset();
    store->write(keys::autoSelectKey, false);
    EXPECT_EQ(stored(keys::thresholdKey), SettingsValue(80.0));
    EXPECT_EQ(stored(keys::autoPurgeKey), SettingsValue(true));
    EXPECT_EQ(stored(keys::autoSelectKey), SettingsValue(false));
    EXPECT_THAT(reports, ElementsAre(HasSubstr("cannot be saved"), IsEmpty()));
}

TEST_F(SqliteSettingsStoreTest, ReportsTheBeginningAndTheEndOfEachOutage) {
    open();
    for (int outage = 0; outage < 3; ++outage) {
        reports.clear();
        std::optional<WriteLock> lock(file);
        store->write(keys::thresholdKey, 70.0);
        store->write(keys::thresholdKey, 71.0);
        store->write(keys::autoPurgeKey, true);
        EXPECT_THAT(reports, ElementsAre(HasSubstr("cannot be saved")));
        lock.reset();
        store->write(keys::autoSelectKey, false);
        store->write(keys::autoSelectKey, true);
        EXPECT_THAT(reports, ElementsAre(HasSubstr("cannot be saved"), IsEmpty()));
    }
}

/// While it lives, whoever waits in SQLite is counted and does not wait.
class CountedWaits {
public:
    CountedWaits() : system_(sqlite3_vfs_find(nullptr)), counting_(*system_) {
        counting_.zName = "counting";
        counting_.xSleep = [](sqlite3_vfs*, int microseconds) {
            ++count;
            return microseconds;
        };
        EXPECT_EQ(sqlite3_vfs_register(&counting_, 1), SQLITE_OK);
        count = 0;
    }
    CountedWaits(const CountedWaits&) = delete;
    CountedWaits& operator=(const CountedWaits&) = delete;
    ~CountedWaits() {
        sqlite3_vfs_unregister(&counting_);
        sqlite3_vfs_register(system_, 1);
    }

    static inline int count = 0;

private:
    sqlite3_vfs* system_;
    sqlite3_vfs counting_;
};

TEST_F(SqliteSettingsStoreTest, WaitsOncePerOutageForALock) {
    const CountedWaits waits;
    open();
    for (int outage = 0; outage < 2; ++outage) {
        std::optional<WriteLock> lock(file);
        CountedWaits::count = 0;
        store->write(keys::thresholdKey, 70.0);
        EXPECT_GT(CountedWaits::count, 0);
        CountedWaits::count = 0;
        for (const keys::Key& key : keys::all) {
            store->write(key.name, valueFor(key, 7));
        }
        EXPECT_EQ(CountedWaits::count, 0);
        lock.reset();
        store->write(keys::autoPurgeKey, true);
    }
    store.reset();
}

TEST_F(SqliteSettingsStoreTest, AFailedWriteIsRetriedOnDestructionUnlessThereIsANewerValue) {
    for (const bool hasNewer : {true, false}) {
        open();
        std::optional<WriteLock> lock(file);
        store->write(keys::thresholdKey, 70.0);
        lock.reset();
        if (hasNewer) {
            store->write(keys::thresholdKey, 80.0);
            store->write(keys::autoPurgeKey, true);
            EXPECT_EQ(stored(keys::thresholdKey), SettingsValue(80.0));
        }
        store.reset();
        EXPECT_EQ(stored(keys::thresholdKey), SettingsValue(hasNewer ? 80.0 : 70.0));
    }
}

}  // namespace
}  // namespace tallowcrest

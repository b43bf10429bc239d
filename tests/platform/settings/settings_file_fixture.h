#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/settings/settings.h"
#include "core/settings/settings_owner.h"
#include "platform/settings/open_settings_store.h"
#include "tests/support/file_text.h"
#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {

inline void writeFile(const std::filesystem::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

/// For a moment, a user that permissions hold for.
class AsOrdinaryUser {
public:
    explicit AsOrdinaryUser(const std::filesystem::path& owned) {
        if (::geteuid() != 0) {
            return;
        }
        EXPECT_EQ(::chown(owned.c_str(), nobody, nobody), 0);
        for (const auto& entry : std::filesystem::recursive_directory_iterator(owned)) {
            EXPECT_EQ(::chown(entry.path().c_str(), nobody, nobody), 0);
        }
        EXPECT_EQ(::seteuid(nobody), 0);
        isChanged_ = true;
    }
    AsOrdinaryUser(const AsOrdinaryUser&) = delete;
    AsOrdinaryUser& operator=(const AsOrdinaryUser&) = delete;
    ~AsOrdinaryUser() {
        if (isChanged_) {
            EXPECT_EQ(::seteuid(0), 0);
        }
    }

private:
    static constexpr uid_t nobody = 65534;
    bool isChanged_ = false;
};

/// A settings file of which a test makes what it likes.
class SettingsFileFixture : public ::testing::Test {
protected:
    SettingsFileFixture() {
        // The folder is a stranger's for the moments of `AsOrdinaryUser`.
        std::filesystem::permissions(folder.path(), std::filesystem::perms(0777));
    }

    ~SettingsFileFixture() override {
        std::error_code ignored;
        std::filesystem::permissions(file.parent_path(), std::filesystem::perms(0700), ignored);
    }

    void emptyFolder() const {
        std::filesystem::remove_all(file.parent_path());
        std::filesystem::create_directory(file.parent_path());
    }

    /// Keeps the files as a kill at this moment would leave them, for `restoreFiles`.
    void keepFiles() const { std::filesystem::copy(file.parent_path(), folder.path() / "copy"); }
    void restoreFiles() const {
        std::filesystem::remove_all(file.parent_path());
        std::filesystem::rename(folder.path() / "copy", file.parent_path());
    }

    OpenedStore open() { return openSettingsStore(file, {jobs, clock, {}}); }

    /// A sound file in which two settings differ from their defaults.
    void makeStored() {
        const OpenedStore opened = open();
        ASSERT_THAT(opened.problems, ::testing::IsEmpty());
        opened.store->write(settings_keys::autoSelectKey, false);
        opened.store->write(settings_keys::thresholdKey, 70.0);
        opened.store->write(settings_keys::historyKey,
                            JSONData{"[" + std::string(60000, ' ') + "]"});
    }

    void changeStored(const std::string& sql) {
        SqliteConnection connection;
        ASSERT_EQ(connection.open(file, SqliteConnection::Access::readWrite, {}), SQLITE_OK);
        sqlite3_limit(connection.get(), SQLITE_LIMIT_LENGTH, std::numeric_limits<int>::max());
        ASSERT_EQ(connection.execute(sql.c_str()), SQLITE_OK) << connection.message();
        sqlite3_db_config(connection.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
    }

    /// Everything beside the file, and the file.
    std::map<std::string, std::string> contents() const {
        std::map<std::string, std::string> result;
        if (std::filesystem::exists(file.parent_path())) {
            for (const auto& entry : std::filesystem::directory_iterator(file.parent_path())) {
                result[entry.path().filename()] = fileText(entry.path());
            }
        }
        return result;
    }

    static void expectStored(const SettingsStore& store) {
        EXPECT_EQ(store.read(settings_keys::autoSelectKey), SettingsValue(false));
        EXPECT_EQ(store.read(settings_keys::thresholdKey), SettingsValue(70.0));
    }

    SettingsOwner ownerOf(const OpenedStore& opened) { return {*opened.store, mainQueue, "owner"}; }

    void expectDefaults(SettingsStore& store) {
        const SettingsOwner owner(store, mainQueue, "owner");
        EXPECT_TRUE(owner.values().autoSelectTopOffender);
        EXPECT_EQ(owner.values().warningThreshold, 82.0);
    }

    /// A store that is not the file serves all the same, and the file does not learn of it.
    void expectMemoryAlone(const OpenedStore& opened) const {
        EXPECT_EQ(opened.savingProblem,
                  opened.problems.empty() ? std::string() : opened.problems.front());
        const auto before = contents();
        opened.store->write(settings_keys::autoPurgeKey, true);
        EXPECT_EQ(opened.store->read(settings_keys::autoPurgeKey), SettingsValue(true));
        EXPECT_TRUE(contents() == before);
    }

    void expectOneProblem(const OpenedStore& opened, const std::string& words) const {
        ASSERT_EQ(opened.problems.size(), 1U);
        EXPECT_THAT(opened.problems.front(), ::testing::HasSubstr(words));
        EXPECT_THAT(opened.problems.front(), ::testing::HasSubstr(file.string()));
        EXPECT_THAT(opened.problems.front(), ::testing::Not(::testing::HasSubstr("\n")));
    }

    /// A fresh store, which keeps what is written, beside the old file under its new name.
    void expectPutAside(const std::string& words, const std::string& original,
                        const std::string& name = "settings.sqlite.damaged-20260509-061320") {
        {
            const OpenedStore opened = open();
            ASSERT_NO_FATAL_FAILURE(expectOneProblem(opened, words));
            EXPECT_THAT(opened.problems.front(), ::testing::HasSubstr(name));
            EXPECT_EQ(opened.savingProblem, "") << "there is a new file";
            expectDefaults(*opened.store);
            EXPECT_TRUE(fileText(file.parent_path() / name) == original);
            opened.store->write(settings_keys::autoPurgeKey, true);
        }
        const OpenedStore again = open();
        EXPECT_THAT(again.problems, ::testing::IsEmpty());
        EXPECT_EQ(again.store->read(settings_keys::autoPurgeKey), SettingsValue(true));
    }

    TemporaryFolder folder;
    std::filesystem::path file = folder.path() / "tallowcrest" / "settings.sqlite";
    ManualMainQueue mainQueue;
    ManualWorkQueue workQueue;
    Jobs jobs{mainQueue, workQueue};
    ManualClock clock;
};

}  // namespace tallowcrest

// The settings file under writers that are killed, that meet one another, and that run out of room.

#include <array>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/settings/settings.h"
#include "platform/settings/open_settings_store.h"
#include "tests/platform/settings/settings_values.h"
#include "tests/platform/settings/writer_process.h"
#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"
#include "tests/support/run_program.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using settings_keys::Key;
using ::testing::IsEmpty;

class SettingsDurability : public ::testing::Test {
protected:
    std::string textOf(const char* sql) const {
        SqliteConnection connection;
        std::string text;
        connection.open(file, SqliteConnection::Access::readWrite, std::chrono::seconds(5));
        EXPECT_EQ(connection.queryText(sql, text), SQLITE_OK) << connection.message();
        return text;
    }

    TemporaryFolder folder;
    std::filesystem::path file = folder.path() / "tallowcrest" / "settings.sqlite";
};

/// What a writer said it has stored, by key.
class Acknowledged {
public:
    void take(const std::string& output) {
        std::int64_t number = 0;
        for (std::size_t at = 0; at + sizeof number <= output.size(); at += sizeof number) {
            std::memcpy(&number, output.data() + at, sizeof number);
            newest_[static_cast<std::size_t>(number) % newest_.size()] = number;
            next_ = number + 1;
        }
    }

    std::int64_t next() const { return next_; }

    void expectKeptIn(const SettingsStore& store) const {
        for (std::size_t i = 0; i < newest_.size(); ++i) {
            const Key& key = settings_keys::all[i];
            const auto value = store.read(key.name);
            // One value may have been stored without the word of it having got out.
            const std::int64_t following =
                newest_[i] == 0 ? next_ : newest_[i] + static_cast<std::int64_t>(newest_.size());
            const bool mayFollow = following == next_;
            if (newest_[i] == 0 && !value) {
                continue;
            }
            ASSERT_TRUE(value.has_value()) << key.name << " is lost, was " << newest_[i];
            ASSERT_TRUE(value == valueFor(key, newest_[i]) ||
                        (mayFollow && value == valueFor(key, following)))
                << key.name << " should bear " << newest_[i] << " and bears "
                << numberOf(key, *value).value_or(-1);
        }
    }

private:
    std::array<std::int64_t, settings_keys::all.size()> newest_{};
    std::int64_t next_ = 1;
};

TEST_F(SettingsDurability, AKillAtAnyMomentLosesNothingThatWasStored) {
    constexpr int kills = 500;
    std::mt19937 random(20261120);
    std::uniform_int_distribution<int> microseconds(0, 12000);
    Acknowledged acknowledged;
    for (int i = 0; i < kills; ++i) {
        {
            WriterProcess writer(
                {"write-without-end", file.string(), std::to_string(acknowledged.next())});
            // Every so often the start itself is what is interrupted.
            if (i % 10 != 0) {
                acknowledged.take(writer.readOutput(sizeof(std::int64_t)));
            }
            std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
            writer.kill();
            acknowledged.take(writer.readToEnd());
        }
        // Looking leaves the log as the kill left it, for the next writer to cope with; opening
        // moves it. The very first file may have been killed before it had a table.
        ManualMainQueue mainQueue;
        ManualWorkQueue workQueue;
        Jobs jobs{mainQueue, workQueue};
        const ManualClock clock;
        const OpenedStore opened =
            i % 5 == 4 ? openSettingsStore(file, {jobs, clock, {}}) : readSettingsStore(file);
        if (acknowledged.next() > 1) {
            ASSERT_THAT(opened.problems, IsEmpty()) << "after kill " << i;
            acknowledged.expectKeptIn(*opened.store);
            ASSERT_FALSE(HasFatalFailure()) << "after kill " << i;
        }
    }
    EXPECT_GT(acknowledged.next(), kills);
    EXPECT_EQ(textOf("PRAGMA integrity_check"), "ok");
}

TEST_F(SettingsDurability, TwoWritersDoNotDisturbOneAnother) {
    constexpr std::int64_t count = 2000;
    constexpr std::int64_t firstOfOther = 1'000'000;
    {
        WriterProcess one({"write-some", file.string(), "1", std::to_string(count)});
        WriterProcess other(
            {"write-some", file.string(), std::to_string(firstOfOther), std::to_string(count)});
        EXPECT_EQ(one.readToEnd(), "");
        EXPECT_EQ(other.readToEnd(), "");
        EXPECT_EQ(one.wait(), 0);
        EXPECT_EQ(other.wait(), 0);
    }
    EXPECT_EQ(textOf("PRAGMA integrity_check"), "ok");
    const OpenedStore opened = readSettingsStore(file);
    EXPECT_THAT(opened.problems, IsEmpty());
    for (const Key& key : settings_keys::all) {
        const auto value = opened.store->read(key.name);
        ASSERT_TRUE(value.has_value()) << key.name;
        const auto number = numberOf(key, *value);
        ASSERT_TRUE(number.has_value()) << key.name << " is not whole";
        if (key.kind != SettingsKind::flag) {
            // Each writer's last value of a key is one of its last turns.
            const bool isOnes = *number > count - 100 && *number <= count;
            const bool isOthers = *number >= firstOfOther + count - 100;
            EXPECT_TRUE(isOnes || isOthers) << key.name << " bears " << *number;
        }
    }
}

TEST_F(SettingsDurability, ADamagedFileOpenedByManyProcessesIsPutAsideOnce) {
    std::filesystem::create_directories(file.parent_path());
    std::FILE* garbage = std::fopen(file.c_str(), "w");
    ASSERT_NE(garbage, nullptr);
    std::fputs("no database at all", garbage);
    std::fclose(garbage);
    int told = 0;
    {
        std::vector<std::unique_ptr<WriterProcess>> writers;
        for (int i = 0; i < 8; ++i) {
            writers.push_back(std::make_unique<WriterProcess>(std::vector<std::string>{
                "write-some", file.string(), std::to_string(1 + 1000 * i), "56"}));
        }
        for (const auto& writer : writers) {
            told += writer->readToEnd().empty() ? 0 : 1;
        }
    }
    EXPECT_EQ(told, 1);
    int kept = 0;
    for (const auto& entry : std::filesystem::directory_iterator(file.parent_path())) {
        kept += entry.path().filename().string().find(".damaged-") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(kept, 1);
    EXPECT_EQ(textOf("PRAGMA integrity_check"), "ok");
    for (const Key& key : settings_keys::all) {
        EXPECT_TRUE(readSettingsStore(file).store->read(key.name).has_value()) << key.name;
    }
}

/// Runs a mode of the writer that judges for itself.
void expectOf(const std::string& mode, const std::filesystem::path& place) {
    const ProgramResult result =
        runProgram({.path = settingsWriterPath, .arguments = {mode, place.string()}});
    constexpr int cannotBeTried = 77;
    if (result.status == cannotBeTried) {
        GTEST_SKIP() << result.standardOutput;
    }
    EXPECT_EQ(result.status, 0) << result.standardOutput << result.standardError;
    EXPECT_EQ(result.signal, 0);
}

TEST_F(SettingsDurability, AFullDiskLeavesTheOlderValues) {
    expectOf("fill-disk", folder.path());
}

TEST_F(SettingsDurability, ALimitOnTheSizeOfFilesLeavesTheOlderValues) {
    expectOf("outgrow-limit", file);
}

TEST_F(SettingsDurability, CreatingAFileOnAFullDiskIsReported) {
    expectOf("open-on-full-disk", folder.path());
}

TEST_F(SettingsDurability, SettingsOnAFullDiskAreRead) {
    expectOf("open-stored-on-full-disk", folder.path());
}

}  // namespace
}  // namespace tallowcrest

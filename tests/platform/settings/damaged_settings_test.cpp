// Settings files that cannot be read, or not by us: what becomes of them, and what the owner is
// told.

#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/settings_keys.h"
#include "platform/settings/open_settings_store.h"
#include "platform/settings/settings_file.h"
#include "tests/platform/settings/settings_file_fixture.h"
#include "tests/platform/settings/settings_log_bytes.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
namespace keys = settings_keys;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class DamagedSettings : public SettingsFileFixture {};

TEST_F(DamagedSettings, PutsGarbageAside) {
    for (const std::string& garbage :
         {std::string("garbage"), std::string(100, '\0'), std::string(100000, 'x'),
          std::string("SQLite format 3"), std::string("SQLite format 3\0", 16)}) {
        fs::remove_all(file.parent_path());
        fs::create_directory(file.parent_path());
        writeFile(file, garbage);
        expectPutAside("damaged", garbage);
    }
}

TEST_F(DamagedSettings, PutsAnEmptyFileAside) {
    fs::create_directory(file.parent_path());
    writeFile(file, "");
    expectPutAside("damaged", "");
}

TEST_F(DamagedSettings, PutsAFileAsideThatWasCutOff) {
    makeStored();
    const std::string whole = fileText(file);
    ASSERT_GT(whole.size(), 60000U);
    for (const std::size_t size :
         {std::size_t{1}, std::size_t{50}, std::size_t{4096}, std::size_t{5000}, std::size_t{8192},
          whole.size() / 2, whole.size() - 4096}) {
        fs::remove_all(file.parent_path());
        fs::create_directory(file.parent_path());
        writeFile(file, whole.substr(0, size));
        SCOPED_TRACE(size);
        expectPutAside("damaged", whole.substr(0, size));
    }
}

TEST_F(DamagedSettings, PutsAFileAsideInWhichPagesAreLost) {
    makeStored();
    const std::string whole = fileText(file);
    for (std::size_t page = 1; page < 4; ++page) {
        std::string broken = whole;
        broken.replace(page * 4096, 4096, 4096, '\x5A');
        fs::remove_all(file.parent_path());
        fs::create_directory(file.parent_path());
        writeFile(file, broken);
        const OpenedStore opened = open();
        if (opened.problems.empty()) {
            // A page of a value's middle: its text is another, and the records in it do not decode.
            EXPECT_THAT(loadStoredState(*opened.store, "owner").history, IsEmpty());
            expectStored(*opened.store);
        } else {
            expectOneProblem(opened, "damaged");
            expectDefaults(*opened.store);
        }
    }
}

TEST_F(DamagedSettings, KeepsEveryDamagedFileUnderItsOwnName) {
    fs::create_directory(file.parent_path());
    writeFile(file, "first");
    expectPutAside("damaged", "first");
    writeFile(file, "second");
    expectPutAside("damaged", "second", "settings.sqlite.damaged-20260509-061320-2");
    writeFile(file, "third");
    expectPutAside("damaged", "third", "settings.sqlite.damaged-20260509-061320-3");
    clock.advance(std::chrono::seconds(1));
    writeFile(file, "fourth");
    expectPutAside("damaged", "fourth", "settings.sqlite.damaged-20260509-061321");
    EXPECT_TRUE(fileText(file.parent_path() / "settings.sqlite.damaged-20260509-061320") ==
                "first");
}

TEST_F(DamagedSettings, KeepsTheLogWithItsDamagedFile) {
    makeStored();
    const fs::path copy = folder.path() / "copy";
    {
        const OpenedStore opened = open();
        opened.store->write(keys::autoPurgeKey, true);
        fs::copy(file.parent_path(), copy);
    }
    // As a kill leaves it, and then the file's beginning was overwritten.
    fs::remove_all(file.parent_path());
    fs::rename(copy, file.parent_path());
    const std::string log = fileText(file.string() + "-wal");
    ASSERT_GT(log.size(), 32U);
    writeFile(file, "garbage");
    expectPutAside("damaged", "garbage");
    EXPECT_TRUE(fileText(file.string() + ".damaged-20260509-061320-wal") == log);
}

TEST_F(DamagedSettings, KeepsALogWhoseFileIsGone) {
    fs::create_directory(file.parent_path());
    writeFile(file.string() + "-wal", "latest changes");
    const OpenedStore opened = open();
    expectOneProblem(opened, "damaged");
    EXPECT_TRUE(fileText(file.string() + ".damaged-20260509-061320-wal") == "latest changes");
    expectDefaults(*opened.store);
}

class DamagedLog : public SettingsFileFixture {
protected:
    /// A stored file with a log that changes one setting, as a kill leaves both.
    void makeKilled() {
        makeStored();
        const fs::path copy = folder.path() / "copy";
        {
            const OpenedStore opened = open();
            for (const double threshold : {71.0, 72.0, 73.0}) {
                opened.store->write(keys::thresholdKey, threshold);
            }
            fs::copy(file.parent_path(), copy);
        }
        fs::remove_all(file.parent_path());
        fs::rename(copy, file.parent_path());
        fs::remove(file.string() + "-shm");
        log = fileText(file.string() + "-wal");
        ASSERT_GT(log.size(), 3U * 4096);
    }

    std::string log;
};

TEST_F(DamagedLog, AWholeOneCounts) {
    makeKilled();
    EXPECT_EQ(readSettingsStore(file).store->read(keys::thresholdKey), SettingsValue(73.0));
    const OpenedStore opened = open();
    EXPECT_THAT(opened.problems, IsEmpty());
    EXPECT_EQ(opened.store->read(keys::thresholdKey), SettingsValue(73.0));
}

TEST_F(DamagedLog, OneThatWasCutOffCountsUpToTheLastWholeChange) {
    makeKilled();
    const std::size_t frame = 4096 + 24;
    const std::string file0 = fileText(file);
    const std::map<std::size_t, double> cases{{log.size() - 1, 72.0},
                                              {log.size() - frame, 72.0},
                                              {32 + frame, 71.0},
                                              {32 + frame - 1, 70.0},
                                              {32, 70.0},
                                              {0, 70.0}};
    for (const auto& [size, threshold] : cases) {
        fs::remove_all(file.parent_path());
        fs::create_directory(file.parent_path());
        writeFile(file, file0);
        writeFile(file.string() + "-wal", log.substr(0, size));
        const OpenedStore opened = open();
        EXPECT_THAT(opened.problems, IsEmpty()) << size;
        EXPECT_EQ(opened.store->read(keys::thresholdKey), SettingsValue(threshold)) << size;
    }
}

TEST_F(DamagedLog, GarbageIsPutAsideAndTheFileCounts) {
    makeKilled();
    for (const std::string& garbage :
         {std::string("garbage"), std::string(log.size(), '\x5A'), std::string(40, '\0')}) {
        writeFile(file.string() + "-wal", garbage);
        {
            const OpenedStore opened = open();
            expectOneProblem(opened, "latest settings changes");
            EXPECT_EQ(opened.store->read(keys::thresholdKey), SettingsValue(70.0));
        }
        EXPECT_TRUE(fileText(file.string() + ".damaged-20260509-061320-wal") == garbage);
        fs::remove(file.string() + ".damaged-20260509-061320-wal");
    }
}

TEST_F(DamagedLog, DamageInAnyFieldIsToldAndThatLogIsKept) {
    makeKilled();
    const std::string file0 = fileText(file);
    struct Case {
        const char* field;
        std::size_t at;
    };
    for (const auto& [field, at] :
         {Case{"magic", 0}, Case{"order of bytes", 3}, Case{"version", 7}, Case{"page size", 10},
          Case{"times begun anew", 15}, Case{"first salt", 16}, Case{"second salt", 20},
          Case{"first sum", 24}, Case{"second sum", 31}, Case{"record's page number", 35},
          Case{"record's size of the file", 39}, Case{"record's first salt", 40},
          Case{"record's second salt", 44}, Case{"record's first sum", 48},
          Case{"record's second sum", 55}, Case{"page", 56}, Case{"page's end", 55 + 4096}}) {
        SCOPED_TRACE(field);
        fs::remove_all(file.parent_path());
        fs::create_directory(file.parent_path());
        std::string damaged = log;
        damaged[at] = static_cast<char>(damaged[at] ^ 1);
        writeFile(file, file0);
        writeFile(file.string() + "-wal", damaged);
        const OpenedStore looked = readSettingsStore(file);
        expectOneProblem(looked, "latest settings changes");
        EXPECT_EQ(looked.store->read(keys::thresholdKey), SettingsValue(70.0));
        {
            const OpenedStore opened = open();
            expectOneProblem(opened, "latest settings changes");
            EXPECT_EQ(opened.store->read(keys::thresholdKey), SettingsValue(70.0));
            opened.store->write(keys::thresholdKey, 75.0);
        }
        EXPECT_TRUE(fileText(file.string() + ".damaged-20260509-061320-wal") == damaged);
        EXPECT_THAT(open().problems, IsEmpty());
    }
}

TEST_F(DamagedLog, OneFromAMachineOfTheOtherOrderOfBytesCounts) {
    makeKilled();
    using settings_log_bytes::WordOrder;
    const std::string original = log;
    const WordOrder order = (log[3] & 1) != 0 ? WordOrder::big : WordOrder::little;
    settings_log_bytes::setChecksums(log, order);
    EXPECT_TRUE(log == original) << "the sums are SQLite's";
    settings_log_bytes::setChecksums(log,
                                     order == WordOrder::big ? WordOrder::little : WordOrder::big);
    writeFile(file.string() + "-wal", log);
    const OpenedStore opened = open();
    EXPECT_THAT(opened.problems, IsEmpty());
    EXPECT_EQ(opened.store->read(keys::thresholdKey), SettingsValue(73.0));
}

TEST_F(DamagedLog, OneThatWasBegunAnewIsWhole) {
    makeStored();
    const fs::path copy = folder.path() / "copy";
    {
        const OpenedStore opened = openSettingsStore(file, {workQueue, clock, {}, 3});
        for (const double threshold : {71.0, 72.0, 73.0}) {
            opened.store->write(keys::thresholdKey, threshold);
        }
        workQueue.run();
        fs::copy(file.parent_path(), copy);
    }
    fs::remove_all(file.parent_path());
    fs::rename(copy, file.parent_path());
    const std::string begun = fileText(file.string() + "-wal");
    ASSERT_GT(settings_log_bytes::bigEndian(begun, 12), 0U) << "the log was begun anew";
    ASSERT_NE(begun.substr(32 + 8, 8), begun.substr(32 + 24 + 4096 + 8, 8)) << "older records";
    EXPECT_THAT(readSettingsStore(file).problems, IsEmpty());
    const OpenedStore opened = open();
    EXPECT_THAT(opened.problems, IsEmpty());
    EXPECT_EQ(opened.store->read(keys::thresholdKey), SettingsValue(73.0));
}

TEST_F(DamagedLog, OneThatCannotBePutAsideIsToldAndLeft) {
    makeKilled();
    log[24] = static_cast<char>(log[24] ^ 1);
    writeFile(file.string() + "-wal", log);
    fs::permissions(file.parent_path(), fs::perms(0500));
    {
        const AsOrdinaryUser user(file.parent_path());
        const auto before = contents();
        const OpenedStore opened = open();
        ASSERT_EQ(opened.problems.size(), 2U);
        EXPECT_THAT(opened.problems.front(), HasSubstr("latest settings changes cannot be read"));
        EXPECT_THAT(opened.problems.back(), HasSubstr("can be read but not changed"));
        EXPECT_EQ(opened.store->read(keys::thresholdKey), SettingsValue(70.0));
        EXPECT_TRUE(contents() == before);
    }
    fs::permissions(file.parent_path(), fs::perms(0700));
}

TEST_F(DamagedLog, OneThatCannotBeReadIsNotTakenForDamage) {
    makeKilled();
    const fs::path path = file.string() + "-wal";
    fs::permissions(path, fs::perms(0));
    {
        const AsOrdinaryUser user(file.parent_path());
        EXPECT_TRUE(settings_file::logIsSound(file));
        const OpenedStore opened = open();
        expectOneProblem(opened, "cannot be read, so defaults are used");
        EXPECT_TRUE(fs::exists(path));
    }
    fs::permissions(path, fs::perms(0600));
    writeFile(path, "garbage");
    EXPECT_FALSE(settings_file::logIsSound(file));
    fs::remove(path);
    fs::create_directory(path);
    EXPECT_TRUE(settings_file::logIsSound(file)) << "reading it fails";
}

TEST_F(DamagedSettings, PutsAsideWhatIsNoFile) {
    fs::create_directories(file / "folder");
    const OpenedStore opened = open();
    expectOneProblem(opened, "damaged");
    EXPECT_TRUE(fs::exists(file.string() + ".damaged-20260509-061320/folder"));
    opened.store->write(keys::autoPurgeKey, true);

    file = folder.path() / "pipe" / "settings.sqlite";
    fs::create_directory(file.parent_path());
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    expectOneProblem(open(), "damaged");
}

}  // namespace
}  // namespace tallowcrest

// Settings files that cannot be read, or not by us: what becomes of them, and what the owner is
// told.

#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/settings/settings.h"
#include "platform/settings/open_settings_store.h"
#include "tests/platform/settings/settings_file_fixture.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
namespace keys = settings_keys;
using ::testing::IsEmpty;

class DamagedSettings : public SettingsFileFixture {};

TEST_F(DamagedSettings, PutsGarbageAside) {
    for (const std::string& garbage :
         {std::string(), std::string("garbage"), std::string(100, '\0'), std::string(100000, 'x'),
          std::string("SQLite format 3"), std::string("SQLite format 3\0", 16)}) {
        emptyFolder();
        writeFile(file, garbage);
        expectPutAside("damaged", garbage);
    }
}

TEST_F(DamagedSettings, PutsATruncatedFileAside) {
    makeStored();
    const std::string whole = fileText(file);
    ASSERT_GT(whole.size(), 60000U);
    for (const std::size_t size :
         {std::size_t{1}, std::size_t{50}, std::size_t{4096}, std::size_t{5000}, std::size_t{8192},
          whole.size() / 2, whole.size() - 4096}) {
        emptyFolder();
        writeFile(file, whole.substr(0, size));
        SCOPED_TRACE(size);
        expectPutAside("damaged", whole.substr(0, size));
    }
}

TEST_F(DamagedSettings, PutsAFileWithDamagedPagesAside) {
    makeStored();
    const std::string whole = fileText(file);
    for (std::size_t page = 1; page < 4; ++page) {
        std::string broken = whole;
        broken.replace(page * 4096, 4096, 4096, '\x5A');
        emptyFolder();
        writeFile(file, broken);
        const OpenedStore opened = open();
        if (opened.problems.empty()) {
            // A page of a value's middle: its text is another, and the records in it do not decode.
            EXPECT_EQ(ownerOf(opened).load(stored::history), std::nullopt);
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
    {
        const OpenedStore opened = open();
        opened.store->write(keys::autoPurgeKey, true);
        keepFiles();
    }
    // As a kill leaves it, and then the file's beginning was overwritten.
    restoreFiles();
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
        {
            const OpenedStore opened = open();
            for (const double threshold : {71.0, 72.0, 73.0}) {
                opened.store->write(keys::thresholdKey, threshold);
            }
            keepFiles();
        }
        restoreFiles();
        fs::remove(file.string() + "-shm");
        log = fileText(file.string() + "-wal");
        ASSERT_GT(log.size(), 3U * 4096);
    }

    std::string log;
};

TEST_F(DamagedLog, AnIntactLogIsRead) {
    makeKilled();
    EXPECT_EQ(readSettingsStore(file).store->read(keys::thresholdKey), SettingsValue(73.0));
    const OpenedStore opened = open();
    EXPECT_THAT(opened.problems, IsEmpty());
    EXPECT_EQ(opened.store->read(keys::thresholdKey), SettingsValue(73.0));
}

TEST_F(DamagedLog, ATruncatedLogIsReadUpToTheLastWholeChange) {
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
        emptyFolder();
        writeFile(file, file0);
        writeFile(file.string() + "-wal", log.substr(0, size));
        const OpenedStore opened = open();
        EXPECT_THAT(opened.problems, IsEmpty()) << size;
        EXPECT_EQ(opened.store->read(keys::thresholdKey), SettingsValue(threshold)) << size;
    }
}

TEST_F(DamagedLog, AnInvalidLogIsIgnored) {
    makeKilled();
    const std::string file0 = fileText(file);
    std::vector<std::string> logs{"garbage", std::string(log.size(), '\x5A'),
                                  std::string(40, '\0')};
    // One byte in each field of the header, in each of the first frame's header, and in its page.
    for (const std::size_t at :
         {0U, 3U, 7U, 10U, 15U, 16U, 20U, 24U, 31U, 35U, 39U, 40U, 44U, 48U, 55U, 56U, 4151U}) {
        logs.push_back(log);
        logs.back()[at] = static_cast<char>(log[at] ^ 1);
    }
    for (std::size_t i = 0; i < logs.size(); ++i) {
        SCOPED_TRACE(i);
        emptyFolder();
        writeFile(file, file0);
        writeFile(file.string() + "-wal", logs[i]);
        const OpenedStore looked = readSettingsStore(file);
        EXPECT_THAT(looked.problems, IsEmpty());
        EXPECT_EQ(looked.store->read(keys::thresholdKey), SettingsValue(70.0));
        EXPECT_TRUE(fileText(file.string() + "-wal") == logs[i]);
        {
            const OpenedStore opened = open();
            EXPECT_THAT(opened.problems, IsEmpty());
            EXPECT_EQ(opened.store->read(keys::thresholdKey), SettingsValue(70.0));
            opened.store->write(keys::thresholdKey, 75.0);
        }
        const OpenedStore again = open();
        EXPECT_THAT(again.problems, IsEmpty());
        EXPECT_EQ(again.store->read(keys::thresholdKey), SettingsValue(75.0));
    }
}

TEST_F(DamagedLog, ARestartedLogIsRead) {
    makeStored();
    {
        const OpenedStore opened = openSettingsStore(file, {jobs, clock, {}, 3});
        for (const double threshold : {71.0, 72.0, 73.0}) {
            opened.store->write(keys::thresholdKey, threshold);
        }
        workQueue.run();
        keepFiles();
    }
    restoreFiles();
    const std::string begun = fileText(file.string() + "-wal");
    ASSERT_NE(begun.substr(12, 4), std::string(4, '\0')) << "the log was restarted";
    ASSERT_NE(begun.substr(32 + 8, 8), begun.substr(32 + 24 + 4096 + 8, 8)) << "older records";
    EXPECT_THAT(readSettingsStore(file).problems, IsEmpty());
    const OpenedStore opened = open();
    EXPECT_THAT(opened.problems, IsEmpty());
    EXPECT_EQ(opened.store->read(keys::thresholdKey), SettingsValue(73.0));
}

TEST_F(DamagedLog, AnInvalidLogInAReadOnlyFolderIsLeft) {
    makeKilled();
    log[24] = static_cast<char>(log[24] ^ 1);
    writeFile(file.string() + "-wal", log);
    fs::permissions(file.parent_path(), fs::perms(0500));
    const AsOrdinaryUser user(file.parent_path());
    const OpenedStore opened = open();
    expectOneProblem(opened, "can be read but not changed");
    expectMemoryAlone(opened);
    EXPECT_TRUE(fileText(file.string() + "-wal") == log);
}

TEST_F(DamagedLog, AnUnreadableLogIsNotDamage) {
    makeKilled();
    const fs::path path = file.string() + "-wal";
    fs::permissions(path, fs::perms(0));
    {
        const AsOrdinaryUser user(file.parent_path());
        const OpenedStore opened = open();
        expectOneProblem(opened, "cannot be read, so defaults are used");
        EXPECT_TRUE(fs::exists(path));
    }
    fs::permissions(path, fs::perms(0600));
    EXPECT_EQ(open().store->read(keys::thresholdKey), SettingsValue(73.0));
    fs::remove(path);
    fs::create_directory(path);
    expectOneProblem(open(), "can be read but not changed");
}

TEST_F(DamagedSettings, PutsAFolderOrPipeAside) {
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

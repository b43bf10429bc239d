// What we move to the Trash is brought back by the programs that people use for that.

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/trash/own_mounts.h"
#include "tests/platform/trash/trash_fixture.h"
#include "tests/support/file_text.h"
#include "tests/support/run_program.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// All that a restored file must have again.
struct Facts {
    std::string content;
    mode_t mode = 0;
    std::int64_t modifiedSeconds = 0;
    std::int64_t modifiedNanoseconds = 0;
    FileIdentity identity;
    bool operator==(const Facts&) const = default;
};

Facts factsOf(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) {
        return {};
    }
    return {fileText(path),
            status.st_mode,
            status.st_mtim.tv_sec,
            status.st_mtim.tv_nsec,
            {status.st_dev, status.st_ino}};
}

class TrashToolsIntegrationTest : public TrashFixture {
protected:
    std::string writeDated(const std::string& path) const {
        write(path, "content of " + path);
        const timespec times[]{{1'500'000'000, 0}, {1'500'000'001, 234'567'891}};
        EXPECT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
        EXPECT_EQ(::chmod(path.c_str(), 0640), 0);
        return path;
    }

    /// Runs a script of the shell, for which "$1" is `argument`.
    ProgramResult run(const std::string& script, const std::string& argument) const {
        return runProgram(
            {.path = "/bin/sh",
             .arguments = {"-c", script, "sh", argument},
             .withoutVariables = {"XDG_DATA_HOME", "DISPLAY", "DBUS_SESSION_BUS_ADDRESS"},
             .withVariables = {"HOME=" + home.string(), "XDG_RUNTIME_DIR=" + home.string(),
                               "LC_ALL=C.UTF-8"}});
    }

    ProgramResult restoreWithTrashCLI(const std::string& path) const {
        // It offers what was in the working folder, and asks for a number.
        return run("cd \"$1\" && trash-list && echo 0 | trash-restore",
                   fs::path(path).parent_path());
    }

    ProgramResult restoreWithGio() const {
        return run(
            "dbus-run-session -- sh -c 'gio trash --list && gio trash --restore "
            "\"$(gio trash --list | cut -f 1)\"'",
            "");
    }

    void expectRestored(const std::string& path, const Facts& before, const ProgramResult& result) {
        const std::string output = result.standardOutput + result.standardError;
        EXPECT_EQ(result.status, 0) << output;
        EXPECT_EQ(factsOf(path), before) << output;
        EXPECT_THAT(contents(), IsEmpty()) << output;
    }
};

// The program itself changes bytes that are not UTF-8 when it restores.
TEST_F(TrashToolsIntegrationTest, TrashCLIRestoresNamesOfAllCharacters) {
    for (const std::string& name :
         {std::string("thumb"), std::string("a b%20#?&=;\"'*"), std::string("\xC3\xA9"),
          std::string("line\nbreak"), std::string(255, 'n')}) {
        const std::string path = writeDated(inCache("folder of \xC3\xA9/" + name));
        const Facts before = factsOf(path);
        ASSERT_TRUE(trash.moveToTrash(reviewed(path)).movedBytes);
        EXPECT_EQ(factsOf(path), Facts{});
        expectRestored(path, before, restoreWithTrashCLI(path));
    }
}

TEST_F(TrashToolsIntegrationTest, TrashCLIListsThePlaceAndTheTime) {
    const std::string path = writeDated(inCache("thumb"));
    ASSERT_TRUE(trash.moveToTrash(reviewed(path)).movedBytes);
    EXPECT_THAT(run("trash-list", "").standardOutput, HasSubstr("2026-05-09 06:13:20 " + path));
}

TEST_F(TrashToolsIntegrationTest, TrashCLIRestoresOnAnotherVolume) {
    inOwnMounts([&] {
        mountMemory(home / "disk");
        const std::string path = writeDated(home / "disk/a b/file");
        const Facts before = factsOf(path);
        ASSERT_TRUE(trash.moveToTrash({.path = path}).movedBytes);
        ASSERT_EQ(trashContents(home / "disk/.Trash-0").size(), 1U);
        expectRestored(path, before, restoreWithTrashCLI(path));
        EXPECT_THAT(trashContents(home / "disk/.Trash-0"), IsEmpty());
    });
}

// Gio does not show such a Trash.
TEST_F(TrashToolsIntegrationTest, TrashCLIRestoresWhereTheTrashOrItsFilesAreALink) {
    for (const fs::path& link : {homeTrash, homeTrash / "files"}) {
        fs::remove_all(homeTrash);
        const fs::path elsewhere = home / ("elsewhere for " + link.filename().string());
        fs::create_directories(elsewhere);
        fs::create_directories(link.parent_path());
        fs::create_directory_symlink(elsewhere, link);
        const std::string path = writeDated(inCache("file"));
        const Facts before = factsOf(path);
        ASSERT_TRUE(trash.moveToTrash(reviewed(path)).movedBytes);
        expectRestored(path, before, restoreWithTrashCLI(path));
    }
}

// The program itself changes characters beyond ASCII when it restores.
TEST_F(TrashToolsIntegrationTest, GioRestores) {
    for (const std::string& name :
         {std::string("thumb"), std::string("a b%20#&=;'*"), std::string(255, 'n')}) {
        const std::string path = writeDated(inCache("some folder/" + name));
        const Facts before = factsOf(path);
        ASSERT_TRUE(trash.moveToTrash(reviewed(path)).movedBytes);
        EXPECT_EQ(factsOf(path), Facts{});
        const ProgramResult result = restoreWithGio();
        expectRestored(path, before, result);
        EXPECT_THAT(result.standardOutput, HasSubstr(path));
    }
}

}  // namespace
}  // namespace tallowcrest

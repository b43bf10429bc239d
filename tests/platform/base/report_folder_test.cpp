#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/base/report_folder_posix.h"
#include "tests/support/file_text.h"
#include "tests/support/names_in.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ReportFolderTest : public ::testing::Test {
protected:
    TemporaryFolder root;
    std::filesystem::path path = root.path() / "documents/outputs/reports";
    PosixReportFolder folder{[this] { return path; }, {}};
};

TEST_F(ReportFolderTest, CreatesTheFolderAndWritesTheTextUnchanged) {
    const std::string text = "Tallowcrest report\n\tZürich 日本\n";
    EXPECT_EQ(folder.write(path / "a.txt", text), Outcome::done());
    EXPECT_EQ(fileText(path / "a.txt"), text);
    EXPECT_THAT(namesIn(path), ElementsAre("a.txt"));
    struct stat info {};
    ASSERT_EQ(::stat((path / "a.txt").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0600U);
}

TEST_F(ReportFolderTest, DoesNotReplaceAnExistingFile) {
    ASSERT_EQ(folder.write(path / "a.txt", "first"), Outcome::done());
    EXPECT_EQ(folder.write(path / "a.txt", "second"), Outcome::failed("File exists"));
    EXPECT_EQ(fileText(path / "a.txt"), "first");
    EXPECT_THAT(namesIn(path), ElementsAre("a.txt"));
}

TEST_F(ReportFolderTest, NeitherFollowsNorReplacesALink) {
    std::filesystem::create_directories(path);
    const auto elsewhere = root.path() / "precious";
    std::ofstream(elsewhere) << "precious";
    std::filesystem::create_symlink(elsewhere, path / "a.txt");
    std::filesystem::create_symlink(root.path() / "nowhere", path / "b.txt");
    EXPECT_EQ(folder.write(path / "a.txt", "report"), Outcome::failed("File exists"));
    EXPECT_EQ(folder.write(path / "b.txt", "report"), Outcome::failed("File exists"));
    EXPECT_EQ(fileText(elsewhere), "precious");
    EXPECT_FALSE(std::filesystem::exists(root.path() / "nowhere"));
    EXPECT_TRUE(std::filesystem::is_symlink(path / "a.txt"));
}

TEST_F(ReportFolderTest, AScriptMayBeRunByAllAndReplacesAnOlderOne) {
    const std::filesystem::path file = path / "setup.sh";
    const auto mode = [&file] {
        struct stat info {};
        return ::lstat(file.c_str(), &info) == 0 ? info.st_mode : 0U;
    };
    const mode_t mask = ::umask(077);
    EXPECT_EQ(folder.writeScript(file, "#!/bin/sh\necho first"), Outcome::done());
    ::umask(mask);
    EXPECT_EQ(mode(), S_IFREG | 0755U);
    EXPECT_EQ(folder.writeScript(file, "#!/bin/sh"), Outcome::done());
    EXPECT_EQ(fileText(file), "#!/bin/sh");
    EXPECT_EQ(mode(), S_IFREG | 0755U);
    EXPECT_THAT(namesIn(path), ElementsAre("setup.sh"));
}

TEST_F(ReportFolderTest, AScriptReplacesALinkAndNotWhatItPointsTo) {
    std::filesystem::create_directories(path);
    const auto elsewhere = root.path() / "precious";
    std::ofstream(elsewhere) << "precious";
    std::filesystem::create_symlink(elsewhere, path / "setup.sh");
    EXPECT_EQ(folder.writeScript(path / "setup.sh", "#!/bin/sh"), Outcome::done());
    EXPECT_EQ(fileText(elsewhere), "precious");
    EXPECT_FALSE(std::filesystem::is_symlink(path / "setup.sh"));
    EXPECT_EQ(fileText(path / "setup.sh"), "#!/bin/sh");
}

TEST_F(ReportFolderTest, AScriptThatCannotBeWrittenLeavesWhatWasThere) {
    std::filesystem::create_directories(path / "setup.sh");
    EXPECT_EQ(folder.writeScript(path / "setup.sh", "#!/bin/sh"),
              Outcome::failed("Is a directory"));
    EXPECT_THAT(namesIn(path), ElementsAre("setup.sh"));
    EXPECT_TRUE(std::filesystem::is_directory(path / "setup.sh"));
    EXPECT_EQ(folder.writeScript("setup.sh", "#!/bin/sh"),
              Outcome::failed("No such file or directory"));
    EXPECT_FALSE(std::filesystem::exists("setup.sh"));
}

TEST_F(ReportFolderTest, ReportsWhyTheFolderCannotBeCreated) {
    std::ofstream(root.path() / "documents") << "a file stands where the folder should";
    EXPECT_EQ(folder.write(path / "a.txt", "report"), Outcome::failed("Not a directory"));
    EXPECT_EQ(fileText(root.path() / "documents"), "a file stands where the folder should");
}

TEST_F(ReportFolderTest, WritesNothingWithoutAnAbsolutePath) {
    for (const char* nowhere : {"", "a.txt", "relative/a.txt"}) {
        EXPECT_EQ(folder.write(nowhere, "report"), Outcome::failed("No such file or directory"))
            << nowhere;
    }
    EXPECT_FALSE(std::filesystem::exists("relative"));
    EXPECT_FALSE(std::filesystem::exists("a.txt"));
}

TEST_F(ReportFolderTest, AFullDiskLeavesNoFile) {
    // A limit on the size of files stands for a full disk.
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = before;
    small.rlim_cur = 100;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const Outcome outcome = folder.write(path / "a.txt", std::string(1000, 'x'));
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(outcome, Outcome::failed("File too large"));
    EXPECT_THAT(namesIn(path), IsEmpty());
}

TEST_F(ReportFolderTest, RevealsFilesIfThereIsAFunctionForIt) {
    std::vector<std::filesystem::path> revealed;
    PosixReportFolder shown{[] { return ""; },
                            [&revealed](const auto& file) { revealed.push_back(file); }};
    shown.reveal(path / "a.txt");
    EXPECT_THAT(revealed, ElementsAre(path / "a.txt"));
    folder.reveal(path / "a.txt");
}

TEST_F(ReportFolderTest, AsksForThePlaceEachTime) {
    EXPECT_EQ(folder.place(), path);
    path = root.path() / "moved";
    EXPECT_EQ(folder.place(), path);
}

}  // namespace
}  // namespace tallowcrest

#include "platform/base/replaced_file.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/file_text.h"
#include "tests/support/names_in.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;

class ReplacedFileTest : public ::testing::Test {
protected:
    TemporaryFolder root;
    std::filesystem::path path = root.path() / "metrics.prom";
};

TEST_F(ReplacedFileTest, WritesAFileThatEverybodyMayRead) {
    const mode_t before = ::umask(0077);
    EXPECT_EQ(replaceFile(path, "one\n"), "");
    ::umask(before);
    EXPECT_EQ(fileText(path), "one\n");
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0644U);
}

TEST_F(ReplacedFileTest, ReplacesTheWholeFileAndLeavesNothingBeside) {
    std::ofstream(root.path() / (".metrics.prom." + std::to_string(::getpid()) + ".part"))
        << "of a killed program";
    EXPECT_EQ(replaceFile(path, "a longer text\n"), "");
    std::ifstream reader(path);
    EXPECT_EQ(replaceFile(path, "two\n"), "");
    std::string line;
    std::getline(reader, line);
    EXPECT_EQ(line, "a longer text") << "what has been opened stays as it was";
    EXPECT_EQ(fileText(path), "two\n");
    EXPECT_THAT(namesIn(root.path()), ElementsAre("metrics.prom"));
}

TEST_F(ReplacedFileTest, TwoProcessesReplaceOneFile) {
    const auto replaceOften = [this] {
        std::string problem;
        for (int i = 0; i < 300 && problem.empty(); ++i) {
            problem = replaceFile(path, std::string(1000, 'x') + '\n');
        }
        return problem;
    };
    const pid_t other = ::fork();
    if (other == 0) {
        ::_exit(replaceOften().empty() ? 0 : 1);
    }
    EXPECT_EQ(replaceOften(), "");
    int status = -1;
    ASSERT_EQ(::waitpid(other, &status, 0), other);
    EXPECT_EQ(status, 0) << "the other process failed";
    EXPECT_EQ(fileText(path), std::string(1000, 'x') + '\n');
    EXPECT_THAT(namesIn(root.path()), ElementsAre("metrics.prom"));
}

TEST_F(ReplacedFileTest, RefusesWhatItMustNotReplace) {
    namespace fs = std::filesystem;
    fs::create_directory(root.path() / "folder");
    std::ofstream(root.path() / "target") << "kept";
    fs::create_symlink(root.path() / "target", root.path() / "link");
    ASSERT_EQ(::mkfifo((root.path() / "pipe").c_str(), 0600), 0);
    for (const auto& [name, problem] : {std::pair{"folder", "Is a directory"},
                                        {"folder/", "Is a directory"},
                                        {"link", "It is a symbolic link"},
                                        {"pipe", "It is not a regular file"},
                                        {"absent/metrics.prom", "No such file or directory"},
                                        {"target/metrics.prom", "Not a directory"}}) {
        EXPECT_EQ(whyNotReplaceable(root.path() / name), problem) << name;
        EXPECT_EQ(replaceFile(root.path() / name, "new"), problem) << name;
    }
    EXPECT_EQ(fileText(root.path() / "target"), "kept");
    EXPECT_TRUE(fs::is_symlink(root.path() / "link"));
}

TEST_F(ReplacedFileTest, RefusesANameThatLeavesNoRoomForATemporaryOne) {
    const std::filesystem::path longest = root.path() / std::string(240, 'x');
    EXPECT_EQ(whyNotReplaceable(longest), "");
    EXPECT_EQ(replaceFile(longest, "new"), "");
    EXPECT_EQ(whyNotReplaceable(longest.native() + 'x'), "File name too long");
}

TEST_F(ReplacedFileTest, AFullDiskKeepsTheOldFile) {
    ASSERT_EQ(replaceFile(path, "old\n"), "");
    // A limit on the size of files stands for a full disk.
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = before;
    small.rlim_cur = 16;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::string problem = replaceFile(path, std::string(100, 'x'));
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(problem, "File too large");
    EXPECT_EQ(fileText(path), "old\n");
    EXPECT_THAT(namesIn(root.path()), ElementsAre("metrics.prom"));
}

}  // namespace
}  // namespace tallowcrest

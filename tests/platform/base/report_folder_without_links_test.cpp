// The report folder on a file system without hard links.

#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/base/report_folder_posix.h"
#include "tests/platform/support/refused_call.h"
#include "tests/support/file_text.h"
#include "tests/support/names_in.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using Refusals = std::vector<std::pair<std::uint32_t, int>>;

std::string errorText(int error) {
    return std::generic_category().message(error);
}

Outcome failure(int error) {
    return Outcome::failed(errorText(error));
}

class ReportFolderWithoutLinks : public testing::Test {
protected:
    void SetUp() override {
        bool mayRefuse = false;
        std::thread([&] { mayRefuse = refuseCall(SYS_linkat, EPERM); }).join();
        if (!mayRefuse) {
            GTEST_SKIP() << "this account may not install filters";
        }
    }

    /// Writes on a thread of its own for which the kernel refuses the given calls.
    Outcome write(const std::string& name, const std::string& text,
                  const Refusals& refusals = {{SYS_linkat, EPERM}}) {
        Outcome outcome;
        std::thread([&] {
            for (const auto& [call, error] : refusals) {
                if (!refuseCall(call, error)) {
                    outcome = Outcome::failed("nothing was refused");
                    return;
                }
            }
            outcome = folder.write(root.path() / name, text);
        }).join();
        return outcome;
    }

    TemporaryFolder root;
    PosixReportFolder folder{[this] { return root.path(); }, {}};
};

TEST_F(ReportFolderWithoutLinks, WritesTheCompleteFile) {
    const std::string text(300'000, 'x');
    for (const int error : {EPERM, EOPNOTSUPP, ENOSYS}) {
        const std::string name = errorText(error);
        EXPECT_EQ(write(name, text, {{SYS_linkat, error}}), Outcome::done()) << name;
        EXPECT_TRUE(fileText(root.path() / name) == text) << name;
        struct stat info {};
        ASSERT_EQ(::stat((root.path() / name).c_str(), &info), 0) << name;
        EXPECT_EQ(info.st_mode & 0777U, 0600U) << name;
        EXPECT_EQ(info.st_nlink, 1U) << name;
    }
    EXPECT_THAT(namesIn(root.path()),
                UnorderedElementsAre(errorText(EPERM), errorText(EOPNOTSUPP), errorText(ENOSYS)));
}

TEST_F(ReportFolderWithoutLinks, DoesNotReplaceAnExistingFile) {
    ASSERT_EQ(write("a.txt", "first"), Outcome::done());
    EXPECT_EQ(write("a.txt", "second"), Outcome::failed("File exists"));
    EXPECT_EQ(fileText(root.path() / "a.txt"), "first");
    EXPECT_THAT(namesIn(root.path()), ElementsAre("a.txt"));
}

TEST_F(ReportFolderWithoutLinks, NeitherFollowsNorReplacesALink) {
    const TemporaryFolder elsewhere;
    const auto precious = elsewhere.path() / "precious";
    std::ofstream(precious) << "precious";
    std::filesystem::create_symlink(precious, root.path() / "a.txt");
    std::filesystem::create_symlink(elsewhere.path() / "nothing", root.path() / "b.txt");
    EXPECT_EQ(write("a.txt", "report"), Outcome::failed("File exists"));
    EXPECT_EQ(write("b.txt", "report"), Outcome::failed("File exists"));
    EXPECT_EQ(fileText(precious), "precious");
    EXPECT_FALSE(std::filesystem::exists(elsewhere.path() / "nothing"));
    EXPECT_TRUE(std::filesystem::is_symlink(root.path() / "a.txt"));
    EXPECT_TRUE(std::filesystem::is_symlink(root.path() / "b.txt"));
    EXPECT_THAT(namesIn(root.path()), UnorderedElementsAre("a.txt", "b.txt"));
}

TEST_F(ReportFolderWithoutLinks, AFailedRenameReleasesTheName) {
    const Refusals refusals{{SYS_linkat, EPERM}, {SYS_renameat, EIO}};
    EXPECT_EQ(write("a.txt", "report", refusals), failure(EIO));
    EXPECT_THAT(namesIn(root.path()), IsEmpty());
    EXPECT_EQ(write("a.txt", "report"), Outcome::done());
}

TEST_F(ReportFolderWithoutLinks, ReportsOtherErrors) {
    EXPECT_EQ(write("a.txt", "report", {{SYS_linkat, EDQUOT}}), failure(EDQUOT));
    EXPECT_THAT(namesIn(root.path()), IsEmpty());
}

TEST_F(ReportFolderWithoutLinks, ReportsAFullDiskOrAForbiddenFolderAndLeavesNoFile) {
    for (const auto& refusal :
         {Refusals::value_type{SYS_write, ENOSPC}, Refusals::value_type{SYS_fsync, ENOSPC},
          Refusals::value_type{SYS_openat, EACCES}}) {
        EXPECT_EQ(write("a.txt", "report", {refusal}), failure(refusal.second));
        EXPECT_THAT(namesIn(root.path()), IsEmpty());
    }
}

}  // namespace
}  // namespace tallowcrest

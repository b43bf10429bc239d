// Copies on volumes and kernels that cannot do everything, and on full disks.

#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/base/full_disk.h"
#include "platform/files/file_copy_posix.h"
#include "platform/files/partial_copies.h"
#include "tests/platform/files/apart.h"
#include "tests/platform/support/refused_call.h"
#include "tests/support/names_in.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Truly;

using Refusals = std::vector<std::pair<std::uint32_t, int>>;

std::optional<std::string> copyFile(const std::string& from, const std::string& to) {
    return PosixFileCopy().copy({from, to}, [](const CopyProgress&) {}, {});
}

class FileCopyFallbackTest : public testing::Test {
protected:
    void SetUp() override {
        bool mayRefuse = false;
        std::thread([&] { mayRefuse = refuseCall(SYS_copy_file_range, ENOSYS); }).join();
        if (!mayRefuse) {
            GTEST_SKIP() << "this account may not install filters";
        }
        source.file("film", std::string(9 << 20, '.') + "end", 0640);
    }

    /// Copies on a thread of its own for which the kernel refuses the given calls.
    std::optional<std::string> copy(const Refusals& refusals) {
        std::optional<std::string> result;
        std::thread([&] {
            for (const auto& [call, error] : refusals) {
                if (!refuseCall(call, error)) {
                    result = "nothing was refused";
                    return;
                }
            }
            result = copyFile(source.path("film"), target.path("copy"));
        }).join();
        return result;
    }

    void expectCopy(const Refusals& refusals) {
        EXPECT_EQ(copy(refusals), std::nullopt);
        EXPECT_TRUE(target.read("copy") == source.read("film"));
        EXPECT_THAT(namesIn(target.path()), ElementsAre("copy"));
        EXPECT_EQ(copy(refusals), "File exists");
        std::filesystem::remove(target.path("copy"));
    }

    TemporaryFolder source;
    TemporaryFolder target;
};

TEST_F(FileCopyFallbackTest, CopiesThroughABufferWhereTheKernelCannot) {
    for (const int error : {ENOSYS, EXDEV, EINVAL, EOPNOTSUPP, EPERM}) {
        expectCopy({{SYS_copy_file_range, error}});
    }
}

TEST_F(FileCopyFallbackTest, CopiesWhereHolesAreUnknown) {
    expectCopy({{SYS_lseek, EINVAL}});
}

TEST_F(FileCopyFallbackTest, NamesTheCopyWhereRenamingMayReplace) {
    for (const int error : {EINVAL, ENOSYS, EOPNOTSUPP}) {
        expectCopy({{SYS_renameat2, error}});
        expectCopy({{SYS_renameat2, error}, {SYS_linkat, EPERM}});
    }
}

TEST_F(FileCopyFallbackTest, CopiesToVolumesWithoutModesTimesAndSync) {
    expectCopy({{SYS_fchmod, EPERM}, {SYS_utimensat, EPERM}});
    expectCopy({{SYS_fsync, EINVAL}});
}

TEST_F(FileCopyFallbackTest, LeavesNothingAfterAnError) {
    for (const Refusals& refusals : std::vector<Refusals>{
             {{SYS_copy_file_range, ENOSPC}},
             {{SYS_copy_file_range, EIO}},
             {{SYS_copy_file_range, ENOSYS}, {SYS_pwrite64, ENOSPC}},
             {{SYS_copy_file_range, ENOSYS}, {SYS_pread64, EIO}},
             {{SYS_pread64, EIO}},
             {{SYS_ftruncate, EFBIG}},
             {{SYS_fsync, ENOSPC}},
             {{SYS_renameat2, EACCES}},
             {{SYS_renameat2, EINVAL}, {SYS_linkat, EDQUOT}},
             {{SYS_renameat2, EINVAL}, {SYS_linkat, EPERM}, {SYS_renameat, EIO}}}) {
        const int error = refusals.back().second;
        const std::string words =
            isDiskFull(error)
                ? "The disk of the copy is full. No part of the copy was left, and the original "
                  "remains in place. Make some room there, or choose a folder on another disk."
                : std::generic_category().message(error);
        EXPECT_EQ(copy(refusals), words);
        EXPECT_THAT(namesIn(target.path()), IsEmpty());
    }
}

TEST_F(FileCopyFallbackTest, DoesNotBeginWhereTheRoomDoesNotSuffice) {
    const apart::Run run = apart::run(apart::Rights::mounts, [this] {
        apart::mountMemory(target.path(), "size=4m");
        const std::string error = copyFile(source.path("film"), target.path("copy")).value_or("");
        return error + ", " + std::to_string(namesIn(target.path()).size()) + " files, " +
               std::to_string(std::filesystem::space(target.path()).available >> 20U) + " MB free";
    });
    if (!run.isPossible) {
        GTEST_SKIP() << run.reason;
    }
    EXPECT_EQ(run.text,
              "There is not enough room for the copy: 0.01 GB are needed, 0.00 GB are free. Make "
              "some room there, or choose a folder on another disk., 0 files, 4 MB free");
}

TEST_F(FileCopyFallbackTest, AKillLeavesNoPartUnderTheNameAndTheNextCopyRemovesTheRest) {
    const apart::Run run = apart::run(apart::Rights::mounts, [this] {
        const auto kill = [](const CopyProgress&) { ::raise(SIGKILL); };
        return PosixFileCopy()
            .copy({source.path("film"), target.path("copy")}, kill, {})
            .value_or("copied");
    });
    if (!run.isPossible) {
        GTEST_SKIP() << run.reason;
    }
    EXPECT_EQ(run.text, "ended by a signal");
    ASSERT_THAT(namesIn(target.path()), ElementsAre(Truly(isPartialCopyName)));
    EXPECT_EQ(copyFile(source.path("film"), target.path("copy")), std::nullopt);
    EXPECT_THAT(namesIn(target.path()), ElementsAre("copy"));
}

}  // namespace
}  // namespace tallowcrest

// File systems and kernels that lack a call, and files that may not be moved.

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/base/unique_fd.h"
#include "tests/platform/support/refused_call.h"
#include "tests/platform/trash/own_mounts.h"
#include "tests/platform/trash/trash_fixture.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::SizeIs;

class RefusedCallsTest : public TrashFixture {
protected:
    /// Gives up the rights of an administrator for good; what the test has made stays its own.
    void becomeOrdinaryUser() const {
        constexpr uid_t nobody = 65534;
        if (::geteuid() != 0) {
            return;
        }
        for (const auto& entry : fs::recursive_directory_iterator(folder.path())) {
            ASSERT_EQ(::chown(entry.path().c_str(), nobody, nobody), 0);
        }
        ASSERT_EQ(::chown(folder.path().c_str(), nobody, nobody), 0);
        ASSERT_EQ(::setresuid(nobody, nobody, nobody), 0);
    }
};

/// Skips a test where this account may not refuse calls.
#define REFUSE(call, error)                                   \
    if (!refuseCall(call, error)) {                           \
        GTEST_SKIP() << "this account may install no filter"; \
    }

TEST_F(RefusedCallsTest, WithoutARenameThatRefusesToReplace) {
    inOwnProcess([&] {
        REFUSE(SYS_renameat2, EINVAL);
        write(homeTrash / "files/a", "from before");
        EXPECT_EQ(trash.moveToTrash(reviewed(write(inCache("a"), "x"))).movedBytes, 1);
        ASSERT_THAT(contents(), SizeIs(2));
        EXPECT_EQ(contents()[0].content, "from before");
        EXPECT_EQ(contents()[1].content, "x");
        EXPECT_EQ(contents()[1].restorePath, inCache("a"));
    });
}

TEST_F(RefusedCallsTest, WithoutAnyRename) {
    inOwnProcess([&] {
        const std::string path = write(inCache("a"), "x");
        REFUSE(SYS_renameat2, EPERM);
        EXPECT_LEFT(trash.moveToTrash(reviewed(path)), "not permitted");
        EXPECT_EQ(fileText(path), "x");
    });
}

TEST_F(RefusedCallsTest, WithoutNumbersOfMounts) {
    inOwnMounts([&] {
        mountMemory(inCache("disk"));
        REFUSE(SYS_statx, ENOSYS);
        EXPECT_LEFT(trash.moveToTrash(reviewed(write(inCache("disk/a"), "x"))), "cross-device");
        EXPECT_EQ(trash.moveToTrash(reviewed(write(inCache("a/b"), "x"))).movedBytes, 1);
        EXPECT_THAT(contents(), SizeIs(1));
    });
}

TEST_F(RefusedCallsTest, WithoutAFlushOfPartOfAFile) {
    inOwnProcess([&] {
        const std::string path = write(inCache("a"), "x");
        REFUSE(SYS_sync_file_range, ENOSYS);
        EXPECT_EQ(trash.moveToTrash(reviewed(path)).movedBytes, 1);
    });
}

TEST_F(RefusedCallsTest, AFlushThatFailsKeepsTheFile) {
    inOwnProcess([&] {
        const std::string path = write(inCache("a"), "x");
        REFUSE(SYS_sync_file_range, ENOSPC);
        EXPECT_LEFT(trash.moveToTrash(reviewed(path)), "The disk is full");
        EXPECT_EQ(fileText(path), "x");
    });
}

TEST_F(RefusedCallsTest, AFolderWithoutRoomLeavesAFileInTheTrash) {
    inOwnProcess([&] {
        const auto moved = trash.moveToTrash(reviewed(write(inCache("a"), "x")));
        ASSERT_TRUE(moved.item);
        REFUSE(SYS_renameat2, EDQUOT);
        const PutBackOutcome outcome = trash.putBack(*moved.item);
        EXPECT_EQ(outcome.result, PutBackOutcome::Result::left);
        EXPECT_EQ(outcome.error, "The disk is full");
        EXPECT_TRUE(outcome.isDiskFull);
        EXPECT_THAT(contents(), ::testing::SizeIs(1));
    });
}

TEST_F(RefusedCallsTest, AFolderThatMayNotBeWrittenKeepsItsFiles) {
    inOwnProcess([&] {
        const std::string path = write(inCache("a/b"), "x");
        write(inCache("c"), "y");
        becomeOrdinaryUser();
        fs::permissions(inCache("a"), fs::perms::owner_read | fs::perms::owner_exec);
        EXPECT_LEFT(trash.moveToTrash(reviewed(path)), "Permission denied");
        EXPECT_EQ(fileText(path), "x");
        EXPECT_EQ(trash.moveToTrash(reviewed(inCache("c"))).movedBytes, 1);
        fs::permissions(inCache("a"), fs::perms::owner_all);
    });
}

TEST_F(RefusedCallsTest, ATrashThatMayNotBeReadKeepsItsFilesForALaterAttempt) {
    inOwnProcess([&] {
        const TrashItem item = trashed(inCache("a"), "x");
        becomeOrdinaryUser();
        for (const std::string part : {"", "files", "info", "info/a.trashinfo"}) {
            SCOPED_TRACE(part);
            const fs::path closed = homeTrash / part;
            const fs::perms before = fs::status(closed).permissions();
            fs::permissions(closed, fs::perms::none);
            const PutBackOutcome outcome = trash.putBack(item);
            EXPECT_EQ(outcome.result, PutBackOutcome::Result::left);
            EXPECT_EQ(outcome.error, "Permission denied");
            fs::permissions(closed, before);
        }
        EXPECT_EQ(trash.putBack(item).error, "");
        EXPECT_EQ(fileText(inCache("a")), "x");
    });
}

TEST_F(RefusedCallsTest, AProcessOutOfDescriptorsLosesNoFileOfTheTrash) {
    inOwnProcess([&] {
        const TrashItem item = trashed(inCache("a"), "x");
        rlimit before{};
        ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
        const int next = ::dup(STDERR_FILENO);
        ::close(next);
        PutBackOutcome outcome;
        int descriptors = -1;
        do {
            ++descriptors;
            const rlimit fewer{static_cast<rlim_t>(next + descriptors), before.rlim_max};
            ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &fewer), 0);
            outcome = trash.putBack(item);
            ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
            ASSERT_NE(outcome.result, PutBackOutcome::Result::gone) << descriptors;
        } while (outcome.result == PutBackOutcome::Result::left);
        EXPECT_GT(descriptors, 4);
        EXPECT_EQ(fileText(inCache("a")), "x");
        EXPECT_THAT(contents(), ::testing::IsEmpty());
    });
}

TEST_F(RefusedCallsTest, AnImmutableFileStays) {
    const std::string path = write(inCache("a"), "x");
    const UniqueFD file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    int flags = 0;
    if (::ioctl(file.get(), FS_IOC_GETFLAGS, &flags) != 0) {
        GTEST_SKIP() << "files have no flags here";
    }
    int immutable = flags | FS_IMMUTABLE_FL;
    if (::ioctl(file.get(), FS_IOC_SETFLAGS, &immutable) != 0) {
        GTEST_SKIP() << "this account may not set flags";
    }
    EXPECT_LEFT(trash.moveToTrash(reviewed(path)), "not permitted");
    ASSERT_EQ(::ioctl(file.get(), FS_IOC_SETFLAGS, &flags), 0);
    EXPECT_EQ(trash.moveToTrash(reviewed(path)).movedBytes, 1);
}

}  // namespace
}  // namespace tallowcrest

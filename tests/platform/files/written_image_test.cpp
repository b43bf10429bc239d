// A downloaded image on file systems that report a full disk late, or cannot sync.

#include <sys/syscall.h>

#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <variant>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/files/image_folder_posix.h"
#include "tests/platform/support/refused_call.h"
#include "tests/support/names_in.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

/// The reason why an image is not published where `fsync` fails with `error`, empty when it is;
/// absent where this account may not install filters.
std::optional<std::string> publishWhereSyncFails(int error, const TemporaryFolder& folder) {
    std::optional<std::string> reason;
    std::thread([&] {
        if (!refuseCall(SYS_fsync, error)) {
            return;
        }
        const auto image =
            std::get<std::unique_ptr<DownloadedImage>>(PosixImageFolder(folder.path()).begin());
        image->write("text");
        const auto published = image->publish("image.deb");
        const auto* failure = std::get_if<UpdateError>(&published);
        reason = failure == nullptr ? std::string() : failure->description;
    }).join();
    return reason;
}

TEST(WrittenImage, IsNotPublishedBeforeItIsOnTheDisk) {
    const TemporaryFolder folder;
    const auto reason = publishWhereSyncFails(ENOSPC, folder);
    if (!reason) {
        GTEST_SKIP() << "this account may not install filters";
    }
    EXPECT_EQ(reason, "No space left on device");
    EXPECT_THAT(namesIn(folder.path()), testing::IsEmpty());
}

TEST(WrittenImage, IsPublishedWhereTheFileSystemCannotSync) {
    const TemporaryFolder folder;
    const auto reason = publishWhereSyncFails(EINVAL, folder);
    if (!reason) {
        GTEST_SKIP() << "this account may not install filters";
    }
    EXPECT_EQ(reason, "");
    EXPECT_THAT(namesIn(folder.path()), testing::ElementsAre("image.deb"));
}

}  // namespace
}  // namespace tallowcrest

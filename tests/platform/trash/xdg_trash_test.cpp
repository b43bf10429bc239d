#include "platform/trash/xdg_trash.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/base/unique_fd.h"
#include "platform/trash/file_status.h"
#include "tests/platform/trash/trash_fixture.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class XdgTrashTest : public TrashFixture {};

TEST_F(XdgTrashTest, MovesAFileAndDescribesWhereItCameFrom) {
    const std::string path = write(inCache("a b/thumb"), "pixels");
    const TrashOutcome outcome = trash.moveToTrash(reviewed(path));
    EXPECT_EQ(outcome.movedBytes, 6);
    EXPECT_EQ(outcome.error, "");
    EXPECT_FALSE(fs::exists(path));
    ASSERT_THAT(contents(), SizeIs(1));
    const TrashedFile file = contents().front();
    EXPECT_EQ(file.storedName, "thumb");
    EXPECT_EQ(file.restorePath, path);
    EXPECT_EQ(file.deletionDate, "2026-05-09T06:13:20");
    EXPECT_EQ(file.content, "pixels");
    for (const char* made : {"", "files", "info"}) {
        EXPECT_EQ(fs::status(homeTrash / made).permissions(), fs::perms::owner_all) << made;
    }
}

TEST_F(XdgTrashTest, KeepsTimesModeAndInode) {
    const std::string path = write(inCache("a"), "x");
    ASSERT_EQ(::chmod(path.c_str(), 0604), 0);
    const timespec times[]{{1'000'000'000, 5}, {1'100'000'000, 7}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    struct stat before {};
    struct stat after {};
    ASSERT_EQ(::lstat(path.c_str(), &before), 0);
    EXPECT_EQ(trash.moveToTrash(reviewed(path)).movedBytes, 1);
    ASSERT_EQ(::lstat((homeTrash / "files/a").c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_atim.tv_nsec, 5);
    EXPECT_EQ(after.st_mtim.tv_sec, 1'100'000'000);
    EXPECT_EQ(after.st_mtim.tv_nsec, 7);
}

TEST_F(XdgTrashTest, CountsWhereANameIsTaken) {
    for (int i = 1; i <= 3; ++i) {
        const std::string path = write(inCache(std::to_string(i) + "/data"), std::to_string(i));
        EXPECT_EQ(trash.moveToTrash(reviewed(path)).movedBytes, 1);
    }
    std::vector<std::string> names;
    for (const TrashedFile& file : contents()) {
        names.push_back(file.storedName);
        EXPECT_EQ(file.restorePath, inCache(file.content + "/data"));
    }
    EXPECT_THAT(names, ::testing::ElementsAre("data", "data.2", "data.3"));
}

TEST_F(XdgTrashTest, DoesNotReplaceAFileThatIsInTheTrashWithoutADescription) {
    write(homeTrash / "files/data", "of another program");
    EXPECT_EQ(trash.moveToTrash(reviewed(write(inCache("data"), "x"))).movedBytes, 1);
    ASSERT_THAT(contents(), SizeIs(2));
    EXPECT_EQ(contents()[0].content, "of another program");
    EXPECT_EQ(contents()[0].restorePath, "");
    EXPECT_EQ(contents()[1].storedName, "data.2");
    EXPECT_EQ(contents()[1].restorePath, inCache("data"));
}

TEST_F(XdgTrashTest, TakesNamesOfAllBytes) {
    const std::vector<std::string> names{std::string(255, 'n'),
                                         "line\nPath=/etc/passwd\nbreak",
                                         "bytes \xFF\xC3(",
                                         " ",
                                         "-rf",
                                         "~",
                                         "%2e%2e",
                                         "a.trashinfo",
                                         "..."};
    for (const std::string& name : names) {
        const std::string path = write(inCache(name), name);
        const TrashOutcome outcome = trash.moveToTrash(reviewed(path));
        EXPECT_EQ(outcome.movedBytes, static_cast<std::int64_t>(name.size())) << outcome.error;
        EXPECT_FALSE(fs::exists(path));
    }
    ASSERT_THAT(contents(), SizeIs(names.size()));
    for (const TrashedFile& file : contents()) {
        EXPECT_EQ(file.restorePath, inCache(file.content));
    }
}

TEST_F(XdgTrashTest, KeepsTheOtherNamesOfAFile) {
    const std::string path = write(inCache("a"), "shared");
    fs::create_hard_link(path, home / "kept");
    EXPECT_EQ(trash.moveToTrash(reviewed(path)).movedBytes, 6);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(fileText(home / "kept"), "shared");
    EXPECT_EQ(contents().front().content, "shared");
}

TEST_F(XdgTrashTest, MovesASparseFileAsItIs) {
    const std::string path = write(inCache("sparse"), "x");
    constexpr std::int64_t size = std::int64_t{1} << 40U;
    ASSERT_EQ(::truncate(path.c_str(), size), 0);
    EXPECT_EQ(trash.moveToTrash(reviewed(path)).movedBytes, size);
    struct stat status {};
    ASSERT_EQ(::lstat((homeTrash / "files/sparse").c_str(), &status), 0);
    EXPECT_LT(status.st_blocks, 100);
}

TEST_F(XdgTrashTest, AFileThatIsHeldOpenIsStillTheSameOne) {
    const std::string path = write(inCache("open"), "begun");
    std::ofstream writer(path, std::ios::app);
    EXPECT_EQ(trash.moveToTrash(reviewed(path)).movedBytes, 5);
    writer << " and ended" << std::flush;
    EXPECT_EQ(contents().front().content, "begun and ended");
}

TEST_F(XdgTrashTest, AFileThatGrowsMeanwhileLosesNothing) {
    const std::string path = write(inCache("growing"), "x");
    std::atomic<bool> isMoved = false;
    std::string written = "x";
    const UniqueFD file(::open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
    std::thread writer([&] {
        for (int after = 0; after < 10; after += isMoved ? 1 : 0) {
            ASSERT_EQ(::write(file.get(), "y", 1), 1);
            written += 'y';
        }
    });
    const TrashOutcome outcome = trash.moveToTrash(reviewed(path));
    isMoved = true;
    writer.join();
    EXPECT_GE(outcome.movedBytes, 1) << outcome.error;
    EXPECT_EQ(contents().front().content, written);
}

TEST_F(XdgTrashTest, LeavesWhatIsNoFileToBeMoved) {
    const std::string file = write(inCache("file"), "content");
    const std::string empty = write(inCache("empty"), "");
    fs::create_directory(inCache("folder"));
    fs::create_symlink(file, inCache("link"));
    ASSERT_EQ(::mkfifo(inCache("pipe").c_str(), 0600), 0);
    const auto request = [&](const std::string& path) {
        return TrashRequest{.path = path, .inside = home / ".cache"};
    };
    EXPECT_LEFT(trash.moveToTrash(request(inCache("folder"))), "Not a regular file");
    EXPECT_LEFT(trash.moveToTrash(request(inCache("link"))), "Not a regular file");
    EXPECT_LEFT(trash.moveToTrash(request(inCache("pipe"))), "Not a regular file");
    EXPECT_LEFT(trash.moveToTrash(request("/dev/null")), "cross-device");
    EXPECT_LEFT(trash.moveToTrash({.path = "/dev/null"}), "Not a regular file");
    EXPECT_LEFT(trash.moveToTrash(request(empty)), "The file is empty");
    EXPECT_LEFT(trash.moveToTrash(request(inCache("missing"))), "No such file");
    EXPECT_LEFT(trash.moveToTrash(request(inCache("file/below"))), "Not a directory");
    for (const std::string& path :
         {std::string(), std::string("file"), inCache(""), inCache("."), inCache(".."),
          inCache("file") + '\0' + "rest", std::string("/")}) {
        EXPECT_LEFT(trash.moveToTrash({.path = path}), "Not an absolute path of a file");
    }
    EXPECT_EQ(fileText(file), "content");
    EXPECT_FALSE(fs::exists(homeTrash)) << "made for nothing";
}

TEST_F(XdgTrashTest, LeavesAnotherFileThanTheOneThatWasReviewed) {
    const std::string path = write(inCache("a"), "reviewed");
    const TrashRequest request = reviewed(path);
    fs::rename(path, inCache("b"));
    write(path, "not reviewed");
    EXPECT_LEFT(trash.moveToTrash(request), "Another file has taken its name");
    EXPECT_EQ(fileText(path), "not reviewed");
}

TEST_F(XdgTrashTest, LeavesAFileThatWasMadeAnewWithTheNumberOfTheOneThatWasReviewed) {
    const std::string path = write(inCache("a"), "reviewed");
    TrashRequest request = reviewed(path);
    // File systems give a free number again; how soon differs, so the birth alone is changed here.
    ASSERT_NE(statusAt(AT_FDCWD, path)->identity.bornAt, 0);
    request.identity->bornAt = statusAt(AT_FDCWD, path)->identity.bornAt - 1;
    EXPECT_LEFT(trash.moveToTrash(request), "Another file has taken its name");
    EXPECT_EQ(fileText(path), "reviewed");
}

TEST_F(XdgTrashTest, MovesAtMostTheBytesThatItMay) {
    TrashRequest request = reviewed(write(inCache("a"), "12345"));
    request.maximumBytes = 4;
    EXPECT_LEFT(trash.moveToTrash(request), "The file is too large");
    request.maximumBytes = 0;
    EXPECT_LEFT(trash.moveToTrash(request), "The file is too large");
    request.maximumBytes = 5;
    EXPECT_EQ(trash.moveToTrash(request).movedBytes, 5);
}

TEST_F(XdgTrashTest, LeavesWhatIsNotInsideTheFolder) {
    const std::string beside = write(home / ".cache-of-another/a", "beside");
    const std::string below = write(inCache("real/a"), "below");
    fs::create_symlink(home / ".cache-of-another", inCache("link"));
    fs::create_symlink("real", inCache("inner"));
    const auto move = [&](const std::string& path) {
        return trash.moveToTrash({.path = path, .inside = home / ".cache"});
    };
    EXPECT_LEFT(move(beside), "cross-device");
    EXPECT_LEFT(move(inCache("link/a")), "Not a directory");
    EXPECT_LEFT(move(inCache("inner/a")), "Not a directory");
    EXPECT_LEFT(move(inCache("../.cache-of-another/a")), "Invalid argument");
    EXPECT_LEFT(move(inCache("real/../real/a")), "Invalid argument");
    EXPECT_LEFT(move(inCache("./real/a")), "Invalid argument");
    EXPECT_LEFT(move(inCache("real//a")), "Invalid argument");
    EXPECT_LEFT(trash.moveToTrash({.path = below, .inside = home / "missing"}), "cross-device");
    EXPECT_LEFT(trash.moveToTrash({.path = home / "missing/a", .inside = home / "missing"}),
                "No such file");
    EXPECT_EQ(fileText(beside), "beside");
    EXPECT_EQ(fileText(below), "below");
    EXPECT_EQ(trash.moveToTrash({.path = below, .inside = home / ".cache/"}).movedBytes, 5);
}

TEST_F(XdgTrashTest, FollowsTheOwnersLinksToThatFolder) {
    const std::string path = write(home / "other disk/a", "far");
    fs::create_symlink(home / "other disk", home / "link");
    const std::string shown = home / "link/a";
    EXPECT_EQ(trash.moveToTrash({.path = shown, .inside = home / "link"}).movedBytes, 3);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(contents().front().restorePath, shown);
}

TEST_F(XdgTrashTest, MovesFromAnyFolderWhereNoneIsDemanded) {
    const std::string path = write(home / "Downloads/film", "long");
    fs::create_symlink(home / "Downloads", home / "link");
    EXPECT_EQ(trash.moveToTrash({.path = home / "link/film"}).movedBytes, 4);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(contents().front().restorePath, (home / "link/film").string());
}

TEST_F(XdgTrashTest, UsesATrashThatItsOwnerHasPutElsewhere) {
    for (const std::string linked : {"", "files", "info"}) {
        fs::remove_all(homeTrash);
        const fs::path elsewhere = home / ("elsewhere-" + linked);
        fs::create_directories(elsewhere);
        const fs::path link = linked.empty() ? homeTrash : homeTrash / linked;
        fs::create_directories(link.parent_path());
        fs::create_directory_symlink(elsewhere, link);
        const TrashOutcome outcome = trash.moveToTrash(reviewed(write(inCache("a"), "x")));
        EXPECT_EQ(outcome.movedBytes, 1) << outcome.error;
        ASSERT_THAT(contents(), SizeIs(1)) << linked;
        EXPECT_TRUE(contents().front().isThere);
        EXPECT_EQ(contents().front().restorePath, inCache("a"));
        EXPECT_FALSE(fs::is_empty(elsewhere));
    }
}

TEST_F(XdgTrashTest, ManyThreadsGetNamesOfTheirOwn) {
    constexpr int count = 200;
    for (int i = 0; i < count; ++i) {
        write(inCache(std::to_string(i) + "/same"), std::to_string(i));
    }
    std::atomic<int> next = 0;
    std::atomic<int> moved = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int number = next++; number < count; number = next++) {
                const std::string path = inCache(std::to_string(number) + "/same");
                moved += trash.moveToTrash(reviewed(path)).movedBytes ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(moved, count);
    ASSERT_THAT(contents(), SizeIs(count));
    for (const TrashedFile& file : contents()) {
        EXPECT_EQ(file.restorePath, inCache(file.content + "/same"));
    }
}

}  // namespace
}  // namespace tallowcrest

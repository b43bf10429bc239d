#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/uuid.h"
#include "platform/base/unique_fd.h"
#include "platform/files/file_copy_posix.h"
#include "platform/files/paced_bytes.h"
#include "platform/files/partial_copies.h"
#include "tests/support/file_text.h"
#include "tests/support/names_in.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using Reports = std::vector<std::pair<std::int64_t, std::int64_t>>;

constexpr const char* changed = "The file changed while it was copied.";

/// Several steps of a copy.
std::string longText() {
    std::string text(18 << 20, '.');
    for (std::size_t at = 0; at < text.size(); at += 1000) {
        text.replace(at, 8, std::to_string(10'000'000 + at));
    }
    return text;
}

struct stat statusOf(const std::string& path) {
    struct stat info {};
    EXPECT_EQ(::lstat(path.c_str(), &info), 0) << path;
    return info;
}

class FileCopyTest : public testing::Test {
protected:
    std::optional<std::string> copy(
        const std::string& from, const std::string& to,
        const std::function<void(std::int64_t)>& duringIt = [](std::int64_t) {}) {
        return PosixFileCopy().copy(
            {from, to, reviewed},
            [&](const CopyProgress& progress) {
                (progress.isChecking ? checks : reports).emplace_back(progress.done, progress.all);
                (progress.isChecking ? duringCheck : duringIt)(progress.done);
            },
            stop.get_token());
    }

    TemporaryFolder source;
    TemporaryFolder target;
    std::stop_source stop;
    std::optional<FileIdentity> reviewed;
    Reports reports;
    Reports checks;  ///< while the copy was compared with the file
    std::function<void(std::int64_t)> duringCheck = [](std::int64_t) {};
};

TEST_F(FileCopyTest, CopiesContentTimesAndMode) {
    const std::string text = longText();
    const std::string from = source.file("film", text, 0640);
    const std::array<timespec, 2> times{timespec{1'500'000'000, 1}, timespec{1'600'000'000, 7}};
    ASSERT_EQ(::utimensat(AT_FDCWD, from.c_str(), times.data(), 0), 0);
    ASSERT_EQ(copy(from, target.path("copy")), std::nullopt);
    EXPECT_TRUE(target.read("copy") == text);
    EXPECT_TRUE(source.read("film") == text);
    const struct stat info = statusOf(target.path("copy"));
    EXPECT_EQ(info.st_mode, S_IFREG | 0640U);
    EXPECT_EQ(info.st_mtim.tv_sec, 1'600'000'000);
    EXPECT_EQ(info.st_mtim.tv_nsec, 7);
    EXPECT_EQ(info.st_nlink, 1U);
    EXPECT_THAT(namesIn(target.path()), ElementsAre("copy"));
}

TEST_F(FileCopyTest, ReportsTheBytesOfAll) {
    const auto size = static_cast<std::int64_t>(longText().size());
    ASSERT_EQ(copy(source.file("film", longText(), 0644), target.path("copy")), std::nullopt);
    ASSERT_GE(reports.size(), 2U);
    std::int64_t before = 0;
    for (const auto& [copied, all] : reports) {
        EXPECT_GT(copied + (copied == size ? 1 : 0), before);
        EXPECT_EQ(all, size);
        before = copied;
    }
    EXPECT_EQ(before, size);
    EXPECT_LE(reports.front().first, 64 << 10) << "how fast the volume is, is not known yet";
}

TEST(PacedBytes, FollowTheSpeedOfTheVolume) {
    using namespace std::chrono_literals;
    PacedBytes paced(10, 80, 100ms);
    EXPECT_EQ(paced.bytes(), 10);
    paced.took(10, 50ms);
    EXPECT_EQ(paced.bytes(), 20);
    paced.took(20, 51ms);
    EXPECT_EQ(paced.bytes(), 20) << "twice as much could take too long";
    paced.took(19, 1ms);
    EXPECT_EQ(paced.bytes(), 20) << "fewer do not tell";
    for (int time = 0; time < 5; ++time) {
        paced.took(paced.bytes(), 0ms);
    }
    EXPECT_EQ(paced.bytes(), 80) << "the most";
    paced.took(80, 250ms);
    EXPECT_EQ(paced.bytes(), 30) << "32, in whole tens";
    paced.took(30, 1h);
    EXPECT_EQ(paced.bytes(), 10) << "the least";
}

TEST_F(FileCopyTest, ComparesTheCopyWithTheFileBeforeItGetsItsName) {
    const std::string from = source.file("film", longText(), 0644);
    bool hadName = false;
    duringCheck = [&](std::int64_t) { hadName |= std::filesystem::exists(target.path("copy")); };
    ASSERT_EQ(copy(from, target.path("copy")), std::nullopt);
    ASSERT_FALSE(checks.empty());
    EXPECT_GT(checks.front().first, 0);
    EXPECT_EQ(checks.front().second, static_cast<std::int64_t>(longText().size()));
    EXPECT_FALSE(hadName);
}

TEST_F(FileCopyTest, ACopyThatIsNotTheSameIsNotKept) {
    const std::string from = source.file("film", longText(), 0644);
    duringCheck = [&](std::int64_t) {
        const std::string part = target.path(namesIn(target.path()).at(0));
        const UniqueFD file(::open(part.c_str(), O_WRONLY | O_CLOEXEC));
        EXPECT_EQ(::pwrite(file.get(), "!", 1, static_cast<off_t>(longText().size() - 1)), 1);
    };
    EXPECT_EQ(copy(from, target.path("copy")), "The copy was not the same when it was read again.");
    EXPECT_THAT(namesIn(target.path()), IsEmpty());
    EXPECT_TRUE(source.read("film") == longText());
}

TEST_F(FileCopyTest, AStopEndsTheComparisonToo) {
    const std::string from = source.file("film", longText(), 0644);
    duringCheck = [&](std::int64_t) { stop.request_stop(); };
    EXPECT_EQ(copy(from, target.path("copy")), "Operation canceled");
    EXPECT_EQ(reports.back().first, reports.back().second) << "the copy itself was made";
    EXPECT_THAT(namesIn(target.path()), IsEmpty());
}

TEST_F(FileCopyTest, CopiesFilesOfOddContent) {
    const std::vector<std::string> texts{"", "x", std::string(8 << 20, '\0'),
                                         std::string((8 << 20) + 1, 'x')};
    for (std::size_t at = 0; at < texts.size(); ++at) {
        const std::string name = std::to_string(at);
        ASSERT_EQ(copy(source.file(name, texts[at], 0644), target.path(name)), std::nullopt);
        EXPECT_TRUE(target.read(name) == texts[at]) << name;
        EXPECT_EQ(reports.back().first, static_cast<std::int64_t>(texts[at].size()));
    }
}

TEST_F(FileCopyTest, KeepsHoles) {
    const std::string from = source.file("disk", "begin", 0644);
    {
        const UniqueFD file(::open(from.c_str(), O_WRONLY | O_CLOEXEC));
        ASSERT_EQ(::pwrite(file.get(), "middle", 6, 300 << 20), 6);
        ASSERT_EQ(::ftruncate(file.get(), 900 << 20), 0);
    }
    ASSERT_EQ(copy(from, target.path("copy")), std::nullopt);
    const struct stat info = statusOf(target.path("copy"));
    EXPECT_EQ(info.st_size, 900 << 20);
    EXPECT_LT(info.st_blocks * 512, 1 << 20);
    const UniqueFD file(::open(target.path("copy").c_str(), O_RDONLY | O_CLOEXEC));
    std::string text(8, '?');
    ASSERT_EQ(::pread(file.get(), text.data(), 8, (300 << 20) - 1), 8);
    EXPECT_EQ(text, std::string("\0middle\0", 8));
    ASSERT_EQ(::pread(file.get(), text.data(), 6, 0), 6);
    EXPECT_EQ(text.substr(0, 6), std::string("begin\0", 6));
}

TEST_F(FileCopyTest, KeepsTheBytesOfNames) {
    const std::string from = source.file("new\nline \xff\xfe", "text", 0644);
    for (const std::string& name : {std::string("\xff\n\x1b"), std::string(255, 'x')}) {
        ASSERT_EQ(copy(from, target.path(name)), std::nullopt);
        EXPECT_EQ(target.read(name), "text");
    }
}

TEST_F(FileCopyTest, LeavesOutSetUserID) {
    ASSERT_EQ(copy(source.file("tool", "text", 06755), target.path("copy")), std::nullopt);
    EXPECT_EQ(statusOf(target.path("copy")).st_mode, S_IFREG | 0755U);
    ASSERT_EQ(copy(source.file("read-only", "text", 0400), target.path("two")), std::nullopt);
    EXPECT_EQ(statusOf(target.path("two")).st_mode, S_IFREG | 0400U);
}

TEST_F(FileCopyTest, ReplacesNothing) {
    const std::string from = source.file("new", "new", 0644);
    target.file("file", "old", 0644);
    std::filesystem::create_directory(target.path("folder"));
    std::filesystem::create_symlink("nothing", target.path("link"));
    for (const char* name : {"file", "folder", "link"}) {
        EXPECT_EQ(copy(from, target.path(name)), "File exists") << name;
    }
    EXPECT_EQ(copy(from, from), "File exists");
    EXPECT_EQ(target.read("file"), "old");
    EXPECT_TRUE(std::filesystem::is_symlink(target.path("link")));
    EXPECT_FALSE(std::filesystem::exists(target.path("nothing")));
    EXPECT_EQ(source.read("new"), "new");
    EXPECT_EQ(namesIn(target.path()).size(), 3U);
    EXPECT_THAT(reports, IsEmpty());
}

TEST_F(FileCopyTest, ReplacesNothingThatAppearsMeanwhile) {
    const std::string from = source.file("film", longText(), 0644);
    EXPECT_EQ(
        copy(from, target.path("copy"), [&](std::int64_t) { target.file("copy", "other", 0644); }),
        "File exists");
    EXPECT_EQ(target.read("copy"), "other");
    EXPECT_THAT(namesIn(target.path()), ElementsAre("copy"));
}

TEST_F(FileCopyTest, TellsWhyItCannotBegin) {
    const std::string from = source.file("film", "text", 0644);
    std::filesystem::create_symlink(from, source.path("link"));
    ASSERT_EQ(::mkfifo(source.path("fifo").c_str(), 0644), 0);
    EXPECT_EQ(copy(source.path("missing"), target.path("a")), "No such file or directory");
    EXPECT_EQ(copy(source.path("link"), target.path("a")), "Too many levels of symbolic links");
    EXPECT_EQ(copy(source.path(), target.path("a")), "Is a directory");
    EXPECT_EQ(copy(source.path("fifo"), target.path("a")), "Invalid argument");
    EXPECT_EQ(copy(from, target.path("missing/a")), "No such file or directory");
    EXPECT_EQ(copy(from, from + "/a"), "Not a directory");
    EXPECT_EQ(copy(from, target.path(std::string(256, 'x'))), "File name too long");
    EXPECT_THAT(namesIn(target.path()), IsEmpty());
    EXPECT_THAT(reports, IsEmpty());
}

TEST_F(FileCopyTest, LeavesNothingAfterAStop) {
    const std::string from = source.file("film", longText(), 0644);
    EXPECT_EQ(copy(from, target.path("copy"), [&](std::int64_t) { stop.request_stop(); }),
              "Operation canceled");
    EXPECT_LT(reports.back().first, reports.back().second);
    EXPECT_EQ(copy(from, target.path("copy")), "Operation canceled");
    EXPECT_EQ(copy(source.file("empty", "", 0644), target.path("copy")), "Operation canceled");
    EXPECT_THAT(namesIn(target.path()), IsEmpty());
    EXPECT_EQ(fileText(from).size(), longText().size());
}

TEST_F(FileCopyTest, CopiesOnlyTheFileThatWasReviewed) {
    const std::string from = source.file("film", "text", 0644);
    const struct stat info = statusOf(from);
    reviewed = {.device = info.st_dev, .inode = info.st_ino, .bornAt = 1};
    EXPECT_EQ(copy(from, target.path("copy")), "Another file has taken its name.");
    reviewed->bornAt = 0;
    EXPECT_EQ(copy(from, target.path("copy")), std::nullopt);
    std::filesystem::rename(source.file("other", "text", 0644), from);
    EXPECT_EQ(copy(from, target.path("two")), "Another file has taken its name.");
    EXPECT_THAT(namesIn(target.path()), ElementsAre("copy"));
}

TEST_F(FileCopyTest, LeavesNothingWhenAnotherFileTakesTheNameMeanwhile) {
    const std::string from = source.file("film", longText(), 0644);
    const std::string other = source.file("other", longText(), 0644);
    EXPECT_EQ(copy(from, target.path("copy"),
                   [&](std::int64_t) {
                       if (std::filesystem::exists(other)) {
                           std::filesystem::rename(other, from);
                       }
                   }),
              changed);
    EXPECT_THAT(namesIn(target.path()), IsEmpty());
}

TEST_F(FileCopyTest, RemovesWhatAKilledProcessHasLeftInTheFolder) {
    const std::string from = source.file("film", "text", 0644);
    const std::string left = partialCopyName();
    const std::string atWork = partialCopyName();
    const std::string folder = partialCopyName();
    const std::string link = partialCopyName();
    const std::string ofAnother = '.' + UUID::random().text() + ".part";
    target.file(left, "half", 0600);
    target.file(ofAnother, "half", 0600);
    std::filesystem::create_directory(target.path(folder));
    std::filesystem::create_symlink(ofAnother, target.path(link));
    const UniqueFD writing(::open(target.file(atWork, "half", 0600).c_str(), O_WRONLY | O_CLOEXEC));
    lockPartialCopy(writing.get());
    ASSERT_EQ(copy(from, target.path("copy")), std::nullopt);
    EXPECT_THAT(namesIn(target.path()),
                UnorderedElementsAre(atWork, folder, link, ofAnother, "copy"));
}

TEST(PartialCopies, AreKnownByTheirNames) {
    EXPECT_TRUE(isPartialCopyName(partialCopyName()));
    for (const char* name :
         {"", ".", ".tallowcrest-.part", ".tallowcrest-x.part", ".tallowcrest-.tallowcrest-.part",
          ".1B4E28BA-2FA1-11D2-883F-0016D3CCA427.part", ".tallowcrest.part",
          ".tallowcrest-1B4E28BA-2FA1-11D2-883F-0016D3CCA427",
          ".tallowcrest-1B4E28BA-2FA1-11D2-883F-0016D3CCA427.part2",
          "tallowcrest-1B4E28BA-2FA1-11D2-883F-0016D3CCA427.part"}) {
        EXPECT_FALSE(isPartialCopyName(name)) << name;
    }
}

TEST_F(FileCopyTest, LeavesNothingWhenTheFileChangesMeanwhile) {
    const std::string text = longText();
    const std::string from = source.path("film");
    const std::vector<std::function<void()>> changes{
        [&] { std::ofstream(from, std::ios::app) << "more"; },
        [&] { std::filesystem::resize_file(from, 100); },
        [&] { std::filesystem::resize_file(from, text.size() - 1); },
        [&] { std::fstream(from, std::ios::in | std::ios::out) << "other"; }};
    for (const auto& change : changes) {
        source.file("film", text, 0644);
        // Times are kept in steps of a few milliseconds, and this change must be visible.
        const std::array<timespec, 2> times{timespec{1, 0}, timespec{1, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, from.c_str(), times.data(), 0), 0);
        bool isDone = false;
        EXPECT_EQ(copy(from, target.path("copy"),
                       [&](std::int64_t) {
                           if (!isDone) {
                               change();
                               isDone = true;
                           }
                       }),
                  changed);
        EXPECT_THAT(namesIn(target.path()), IsEmpty());
    }
}

}  // namespace
}  // namespace tallowcrest

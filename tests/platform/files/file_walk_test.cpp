#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstring>
#include <ctime>
#include <set>
#include <stop_token>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/base/unique_fd.h"
#include "platform/files/file_walk_posix.h"
#include "tests/platform/files/file_tree.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class FileWalkTest : public testing::Test {
protected:
    std::vector<std::string> walked() const { return tree.names(walk(tree.path())); }

    FileTree tree;
};

TEST_F(FileWalkTest, FindsRegularFilesOfAllDepthsWithWhatIsKnownOfThem) {
    const std::string path = tree.file("a/b/c.data", 12345);
    const std::array<timespec, 2> times{timespec{1, 0}, timespec{1'600'000'000, 500'000'000}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times.data(), 0), 0);
    struct stat info {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    const std::vector<FoundFile> files = walk(tree.path());
    ASSERT_EQ(files.size(), 1U);
    EXPECT_EQ(files[0].path, path);
    EXPECT_EQ(files[0].bytes, 12345);
    EXPECT_EQ(files[0].modifiedAt, 1'600'000'000.5);
    EXPECT_EQ(files[0].identity, (FileIdentity{info.st_dev, info.st_ino}));
}

TEST_F(FileWalkTest, ReportsEmptyFilesAndDatesOfAnyTime) {
    struct Case {
        const char* name;
        time_t seconds;
    };
    for (const Case& each : {Case{"past", -86'400}, Case{"future", 4'000'000'000}}) {
        const std::array<timespec, 2> times{timespec{0, 0}, timespec{each.seconds, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, tree.file(each.name, 0).c_str(), times.data(), 0), 0);
    }
    for (const FoundFile& file : walk(tree.path())) {
        EXPECT_EQ(file.bytes, 0);
        EXPECT_EQ(file.modifiedAt, file.path.ends_with("past") ? -86'400.0 : 4e9);
    }
    EXPECT_EQ(walked().size(), 2U);
}

TEST_F(FileWalkTest, PassesOverWhatIsHidden) {
    tree.file(".hidden");
    tree.file(".folder/inside");
    tree.file("folder/.hidden");
    tree.file("folder/.folder/deeper/inside");
    tree.file("folder/..odd");
    tree.file("folder/seen");
    EXPECT_THAT(walked(), ElementsAre("folder/seen"));
}

TEST_F(FileWalkTest, PassesOverTheInsidesOfPackages) {
    tree.file("Editor.APP/Contents/data");
    tree.file("folder/Pictures.photoslibrary/originals/1.jpg");
    tree.file("single.app");
    tree.file("application/data");
    tree.file("application/lib/more");
    ASSERT_EQ(::chmod(tree.file("application/AppRun").c_str(), 0755), 0);
    tree.file("linked/data");
    tree.link("data", "linked/AppRun");
    tree.file("notes/AppRun");
    tree.file("other/AppRun/data");
    EXPECT_THAT(walked(), UnorderedElementsAre("single.app", "notes/AppRun", "other/AppRun/data"));
}

TEST_F(FileWalkTest, FollowsNoLinkAndOpensNoDevice) {
    const FileTree elsewhere;
    elsewhere.file("precious");
    tree.file("real/file");
    tree.link(elsewhere.path(), "folder-link");
    tree.link(elsewhere / "precious", "file-link");
    tree.link("real/file", "inner-link");
    tree.link(".", "loop");
    tree.link("..", "real/parent");
    tree.link("nothing", "dangling");
    ASSERT_EQ(::mkfifo((tree / "fifo").c_str(), 0644), 0);
    const UniqueFD socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, (tree / "socket").c_str(), sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(socket.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_THAT(walked(), ElementsAre("real/file"));
}

TEST_F(FileWalkTest, KeepsTheBytesOfNames) {
    const std::vector<std::string> names{"new\nline", "\xff\xfe",     std::string(255, 'x'),
                                         " ",         "tab\t\x1b[0m", "folder\n\xc0/\x80"};
    for (const std::string& name : names) {
        tree.file(name);
    }
    EXPECT_THAT(walked(), testing::UnorderedElementsAreArray(names));
}

TEST_F(FileWalkTest, ReadsARootThatWouldBePassedOverElsewhere) {
    tree.file("real.app/a");
    tree.file(".cache/b");
    tree.link("real.app", "link");
    ASSERT_EQ(::chmod(tree.file(".cache/AppRun").c_str(), 0755), 0);
    EXPECT_THAT(tree.names(walk(tree / "real.app")), ElementsAre("real.app/a"));
    EXPECT_THAT(tree.names(walk(tree / ".cache//")),
                UnorderedElementsAre(".cache/b", ".cache/AppRun"));
    EXPECT_THAT(tree.names(walk(tree / "link")), ElementsAre("link/a"));
}

TEST_F(FileWalkTest, DoesNothingWithoutAFolder) {
    tree.file("file");
    EXPECT_THAT(walk(tree / "missing"), IsEmpty());
    EXPECT_THAT(walk(tree / "file"), IsEmpty());
    EXPECT_THAT(walk("."), IsEmpty());
    EXPECT_THAT(walk(""), IsEmpty());
}

TEST_F(FileWalkTest, ReadsAFolderWithVeryManyFoldersOnceEach) {
    constexpr int folders = 2100;
    std::set<std::string> expected{"big/first"};
    tree.file("big/first");
    for (int number = 0; number < folders; ++number) {
        const std::string name = "big/" + std::to_string(number);
        tree.folder(name);
        if (number % 100 == 0) {
            tree.file(name + "/file");
            expected.insert(name + "/file");
        }
    }
    const std::vector<std::string> names = walked();
    EXPECT_EQ(names.size(), expected.size());
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()), expected);
}

TEST_F(FileWalkTest, GivesTheFilesOfAFolderOneAfterAnother) {
    for (const char* name : {"a/1", "a/2", "a/b/3", "a/b/4", "c/5", "c/6"}) {
        tree.file(name);
    }
    std::vector<std::string> folders;
    for (const std::string& name : walked()) {
        const std::string folder = name.substr(0, name.rfind('/'));
        if (folders.empty() || folders.back() != folder) {
            folders.push_back(folder);
        }
    }
    EXPECT_THAT(folders, UnorderedElementsAre("a", "a/b", "c"));
}

TEST_F(FileWalkTest, TellsEachFolderBeforeItIsOpenedAndTheEnd) {
    tree.file("a/1");
    tree.file("a/2");
    tree.link("1", "a/link");
    std::vector<SearchProgress> reports;
    const auto walkTree = [&] {
        // No time passes.
        PosixFileWalk([] { return std::chrono::steady_clock::time_point(); })
            .walk(
                tree.path(), [](const FoundFile&) { return true; },
                [&](const SearchProgress& now) { reports.push_back(now); }, {});
    };
    walkTree();
    EXPECT_THAT(reports,
                ElementsAre(SearchProgress{0, 0, tree.path()}, SearchProgress{0, 1, tree.path()},
                            SearchProgress{0, 2, tree / "a"}, SearchProgress{2, 2, tree / "a"}));
}

TEST_F(FileWalkTest, TellsItsProgressByTimeAlsoWhereNothingIsFound) {
    for (int number = 0; number < 10; ++number) {
        tree.link("nothing", std::to_string(number));
    }
    std::chrono::steady_clock::time_point now;
    int reports = 0;
    PosixFileWalk([&] { return now += std::chrono::milliseconds(60); })
        .walk(
            tree.path(), [](const FoundFile&) { return true; },
            [&](const SearchProgress&) { ++reports; }, {});
    constexpr int entries = 12;  // with those for the folder itself and the one above
    EXPECT_EQ(reports, 3 + entries / 2) << "the beginning, the root, the end, and every 120 ms";
}

TEST_F(FileWalkTest, EndsWhenTheVisitorSaysSo) {
    for (int number = 0; number < 20; ++number) {
        tree.file(std::to_string(number % 4) + '/' + std::to_string(number));
    }
    int visited = 0;
    PosixFileWalk().walk(
        tree.path(), [&](const FoundFile&) { return ++visited < 7; }, [](const SearchProgress&) {},
        {});
    EXPECT_EQ(visited, 7);
}

TEST_F(FileWalkTest, EndsAtAStop) {
    for (int number = 0; number < 20; ++number) {
        tree.file(std::to_string(number % 4) + '/' + std::to_string(number));
    }
    std::stop_source stop;
    int visited = 0;
    const auto visit = [&](const FoundFile&) {
        if (++visited == 3) {
            stop.request_stop();
        }
        return true;
    };
    PosixFileWalk().walk(
        tree.path(), visit, [](const SearchProgress&) {}, stop.get_token());
    EXPECT_EQ(visited, 3);
    PosixFileWalk().walk(
        tree.path(), visit, [](const SearchProgress&) {}, stop.get_token());
    EXPECT_EQ(visited, 3);
}

TEST_F(FileWalkTest, GoesOnWhenAFolderVanishesOrIsReplaced) {
    const FileTree elsewhere;
    elsewhere.file("b/precious");
    tree.file("a/0");
    tree.file("a/b/1");
    tree.file("c/2");
    // Whichever of the two comes first, the other and its folders are replaced by a link.
    std::vector<std::string> seen;
    PosixFileWalk().walk(
        tree.path(),
        [&](const FoundFile& file) {
            const std::string name = tree.names({file})[0];
            const std::string other = name.starts_with("a") ? "c" : "a";
            if (seen.empty()) {
                std::filesystem::rename(tree / other, elsewhere / "moved");
                tree.link(elsewhere.path(), other);
            }
            seen.push_back(name);
            return true;
        },
        [](const SearchProgress&) {}, {});
    ASSERT_THAT(seen, testing::Not(IsEmpty()));
    for (const std::string& name : seen) {
        EXPECT_EQ(name[0], seen[0][0]) << name;
    }
}

}  // namespace
}  // namespace tallowcrest

// Walks over trees that are deep, unreadable, mounted into one another or changed meanwhile.

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <functional>
#include <limits>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/base/unique_fd.h"
#include "platform/files/file_walk_posix.h"
#include "platform/files/largest_files_search_posix.h"
#include "tests/platform/files/apart.h"
#include "tests/platform/files/file_tree.h"

namespace tallowcrest {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr int depth = 10'000;
constexpr int levelsBetweenFiles = 10;

/// Folders "d" inside one another. Beside some of them is a folder "side" with a file in it, so
/// that the one around both is needed again after all those below it.
void makeDeepTree(const std::string& path) {
    UniqueFD folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (int level = 1; level <= depth; ++level) {
        ::mkdirat(folder.get(), "d", 0755);
        if (level % levelsBetweenFiles == 0) {
            ::mkdirat(folder.get(), "side", 0755);
            const UniqueFD file(
                ::openat(folder.get(), "side/file", O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
            if (::ftruncate(file.get(), level) != 0) {
                throw std::runtime_error("no deep tree");
            }
        }
        folder = UniqueFD(::openat(folder.get(), "d", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }
}

/// Lets this process open few files.
class FewDescriptors {
public:
    explicit FewDescriptors(rlim_t limit) {
        ::getrlimit(RLIMIT_NOFILE, &before_);
        const rlimit fewer{limit, before_.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &fewer);
    }
    FewDescriptors(const FewDescriptors&) = delete;
    FewDescriptors& operator=(const FewDescriptors&) = delete;
    ~FewDescriptors() { ::setrlimit(RLIMIT_NOFILE, &before_); }

private:
    rlimit before_{};
};

std::vector<FoundFile> find(const std::string& root, std::int64_t minimum = 1) {
    return PosixLargestFilesSearch([] {}).find({{root}, minimum, 30}, [](const SearchProgress&) {},
                                               {});
}

/// The names of what both find, to be compared with what is expected.
std::string namesByBoth(const FileTree& tree, const std::string& root) {
    std::string text;
    for (const auto& files : {walk(root), find(root)}) {
        for (const std::string& name : tree.names(files)) {
            text += name + ' ';
        }
        text += '|';
    }
    return text;
}

/// The text is what `work` returns with these rights.
void expectApart(apart::Rights rights, const std::string& expected,
                 const std::function<std::string()>& work) {
    const apart::Run run = apart::run(rights, work);
    if (!run.isPossible) {
        GTEST_SKIP() << run.reason;
    }
    EXPECT_EQ(run.text, expected);
}

TEST(HostileTree, MayBeDeeperThanAnyPath) {
    const FileTree tree;
    std::string deepest = tree.path();
    for (int level = 1; level < depth; ++level) {
        deepest += "/d";
    }
    expectApart(apart::Rights::mounts, "1 " + deepest + "/side/file of 1000", [&] {
        // On a disk, making and removing it takes longer than reading it.
        apart::mountMemory(tree.path(), "size=64m");
        makeDeepTree(tree.path());
        const FewDescriptors few(200);
        const std::vector<FoundFile> files = find(tree.path(), depth - 1);
        return std::to_string(files.size()) + ' ' + files.at(0).path + " of " +
               std::to_string(walk(tree.path()).size());
    });
}

TEST(HostileTree, IsReadWithTheFewDescriptorsThatAreLeft) {
    const FileTree tree;
    std::string path;
    for (int level = 0; level < 50; ++level) {
        path += "d/";
        tree.file(path + "file", level + 1);
    }
    std::vector<UniqueFD> taken;
    const FewDescriptors few(200);
    for (;;) {
        UniqueFD next(::open("/dev/null", O_RDONLY | O_CLOEXEC));
        if (!next.valid()) {
            break;
        }
        taken.push_back(std::move(next));
    }
    for (int released = 0; released < 4; ++released) {
        taken.pop_back();
    }
    EXPECT_THAT(walk(tree.path()), SizeIs(50));
}

TEST(HostileTree, MayHaveUnreadableFolders) {
    const FileTree tree;
    tree.file("locked/inside", 5);
    tree.file("listed/inside", 5);
    tree.file("open/seen", 5);
    ASSERT_EQ(::chmod((tree / "locked").c_str(), 0), 0);
    ASSERT_EQ(::chmod((tree / "listed").c_str(), 0444), 0);
    expectApart(apart::Rights::ordinary, "open/seen |open/seen |",
                [&] { return namesByBoth(tree, tree.path()); });
    ::chmod((tree / "locked").c_str(), 0755);
    ::chmod((tree / "listed").c_str(), 0755);
}

TEST(HostileTree, MayBeMountedInsideItself) {
    const FileTree tree;
    tree.file("a/b/file", 5);
    tree.folder("a/b/loop");
    tree.folder("a/b/loop2");
    expectApart(apart::Rights::mounts, "a/b/file |a/b/file |", [&] {
        apart::bindMount(tree / "a", tree / "a/b/loop");
        apart::bindMount(tree / "a/b", tree / "a/b/loop2");
        apart::bindMount(tree.path(), tree / "a/b/loop2");
        return namesByBoth(tree, tree.path());
    });
}

TEST(HostileTree, MountedPartsBelongToTheSearchAloneAndAreNeverInTheWalk) {
    const FileTree tree;
    tree.file("caches/own", 5);
    tree.file("caches/covered", 5);
    tree.file("outside/document", 7);
    tree.folder("caches/same-disk");
    tree.folder("caches/memory");
    expectApart(apart::Rights::mounts,
                "caches/own |caches/memory/film caches/covered caches/same-disk/document "
                "caches/own |",
                [&] {
                    apart::bindMount(tree / "outside", tree / "caches/same-disk");
                    apart::bindMount(tree / "outside/document", tree / "caches/covered");
                    apart::mountMemory(tree / "caches/memory", "size=1m");
                    tree.file("caches/memory/film", 9);
                    return namesByBoth(tree, tree / "caches");
                });
}

TEST(HostileTree, MayHaveFilesOfTheLargestSize) {
    const FileTree tree;
    tree.folder("memory");
    const std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    expectApart(apart::Rights::mounts, "memory/film memory/one-less ", [&] {
        apart::mountMemory(tree / "memory", "size=1m");
        tree.file("memory/film", largest);
        tree.file("memory/one-less", largest - 1);
        std::string text;
        for (const std::string& name : tree.names(find(tree.path(), largest - 1))) {
            text += name + ' ';
        }
        return text;
    });
}

TEST(HostileTree, CannotLeadOutsideWhileItChanges) {
    const FileTree elsewhere;
    elsewhere.file("b/precious", 1'000'000);
    elsewhere.file("precious", 1'000'000);
    const FileTree tree;
    for (int number = 0; number < 200; ++number) {
        tree.file("still/" + std::to_string(number), 10);
    }
    tree.file("a/file", 100);
    tree.file("a/b/file", 100);
    std::jthread hostile([&](const std::stop_token& stop) {
        const std::string folder = tree / "a";
        const std::string away = tree / "away";
        while (!stop.stop_requested()) {
            std::rename(folder.c_str(), away.c_str());
            static_cast<void>(::symlink(elsewhere.path().c_str(), folder.c_str()));
            ::unlink(folder.c_str());
            std::rename(away.c_str(), folder.c_str());
            std::rename((folder + "/b").c_str(), (folder + "/c").c_str());
            static_cast<void>(::symlink(elsewhere.path().c_str(), (folder + "/b").c_str()));
            ::unlink((folder + "/b").c_str());
            std::rename((folder + "/c").c_str(), (folder + "/b").c_str());
        }
    });
    for (int turn = 0; turn < 500; ++turn) {
        for (const auto& files : {walk(tree.path()), find(tree.path())}) {
            ASSERT_THAT(files, testing::Not(IsEmpty()));
            for (const FoundFile& file : files) {
                ASSERT_LE(file.bytes, 100) << file.path;
            }
        }
    }
}

}  // namespace
}  // namespace tallowcrest

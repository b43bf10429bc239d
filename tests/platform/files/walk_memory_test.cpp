#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <string>

#include <gtest/gtest.h>

#include "platform/files/file_walk_posix.h"
#include "tests/platform/files/file_tree.h"

namespace tallowcrest {
namespace {

/// The most bytes that a walk takes beside those before it, as found at each file.
std::size_t mostBytesOfWalk(const FileTree& tree, int expectedFiles) {
    const auto inUse = [] { return ::mallinfo2().uordblks; };
    const std::size_t before = inUse();
    std::size_t most = before;
    int files = 0;
    PosixFileWalk().walk(
        tree.path(),
        [&](const FoundFile&) {
            ++files;
            most = std::max(most, inUse());
            return true;
        },
        [](const SearchProgress&) {}, {});
    EXPECT_EQ(files, expectedFiles);
    return most - before;
}

TEST(WalkMemory, DoesNotGrowWithTheFilesOfAFolder) {
    constexpr int count = 10'000;
    const FileTree tree;
    for (int number = 0; number < count; ++number) {
        tree.file("a file with a name of some length " + std::to_string(number));
    }
    EXPECT_LT(mostBytesOfWalk(tree, count), 10U * count);
}

TEST(WalkMemory, IsThatOfAThousandFoldersHoweverManyAFolderHas) {
    constexpr int count = 3'000;
    const FileTree tree;
    for (int number = 0; number < count; ++number) {
        tree.folder("a folder with a name of some length " + std::to_string(number));
    }
    tree.file("a folder with a name of some length 1/file");
    tree.file("a folder with a name of some length 2999/file");
    EXPECT_LT(mostBytesOfWalk(tree, 2), 100U * count);
}

}  // namespace
}  // namespace tallowcrest

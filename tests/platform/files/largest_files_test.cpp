#include "platform/files/largest_files.h"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr FileIdentity home{1, 1};

std::vector<std::string> pathsOf(const LargestFiles& largest) {
    std::vector<std::string> paths;
    for (const FoundFile& file : largest.sorted()) {
        paths.push_back(file.path);
    }
    return paths;
}

TEST(LargestFiles, AreSortedBySizeAndThenByPathInWhateverOrderTheyCome) {
    std::vector<FoundFile> files{{"/a", 5}, {"/b", 7}, {"/c", 5}, {"/d", 9}, {"/e", 5}, {"/f", 2}};
    do {
        LargestFiles largest(3, 4);
        for (const FoundFile& file : files) {
            largest.add(file, home);
        }
        ASSERT_THAT(pathsOf(largest), ElementsAre("/d", "/b", "/a", "/c"));
    } while (std::next_permutation(
        files.begin(), files.end(),
        [](const FoundFile& left, const FoundFile& right) { return left.path < right.path; }));
}

TEST(LargestFiles, BeginAtTheMinimum) {
    LargestFiles largest(100, 30);
    largest.add({"/less", 99}, home);
    largest.add({"/exactly", 100}, home);
    largest.add({"/most", std::numeric_limits<std::int64_t>::max()}, home);
    EXPECT_THAT(pathsOf(largest), ElementsAre("/most", "/exactly"));
}

TEST(LargestFiles, TellWhichSizesStillMatter) {
    LargestFiles largest(10, 2);
    EXPECT_EQ(largest.leastBytes(), 10);
    largest.add({"/a", 30}, home);
    EXPECT_EQ(largest.leastBytes(), 10);
    largest.add({"/b", 20}, home);
    EXPECT_EQ(largest.leastBytes(), 20);
    largest.add({"/c", 40}, home);
    EXPECT_EQ(largest.leastBytes(), 30);
}

TEST(LargestFiles, HaveAFileOnceThatIsReachedInTwoWays) {
    LargestFiles largest(10, 30);
    largest.add({"/home/a", 30}, home);
    largest.add({"/link/a", 40}, home);
    largest.add({"/link/b", 30}, home);
    largest.add({"/other/a", 30}, {1, 2});
    largest.add({"/alike/a", 20, {}, {1, 3}}, home);
    EXPECT_THAT(pathsOf(largest), ElementsAre("/home/a", "/link/b", "/other/a", "/alike/a"));
}

TEST(LargestFiles, CanBeNone) {
    LargestFiles largest(0, 0);
    EXPECT_EQ(largest.leastBytes(), std::numeric_limits<std::int64_t>::max());
    largest.add({"/a", std::numeric_limits<std::int64_t>::max()}, home);
    EXPECT_THAT(pathsOf(largest), IsEmpty());
}

}  // namespace
}  // namespace tallowcrest

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/architecture/layer_rules.h"
#include "tests/architecture/link_rules.h"
#include "tests/support/file_text.h"

namespace tallowcrest::architecture {

void PrintTo(const Violation& violation, std::ostream* stream) {
    *stream << (violation.path.starts_with("tests/") ? "" : "src/") << violation.path << ':'
            << violation.line << ": " << violation.what;
}

namespace {

using testing::IsEmpty;

bool isRead(const std::filesystem::path& path) {
    return path.extension() == ".h" || path.extension() == ".cpp" ||
           path.filename() == "CMakeLists.txt";
}

/// The files of a folder of the repository. Their paths begin at `base`.
std::vector<SourceFile> readTree(const char* folder, const std::filesystem::path& base) {
    const std::filesystem::path repository = TALLOWCREST_SOURCE_DIR;
    const std::filesystem::path root = repository / base;
    std::vector<SourceFile> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(repository / folder)) {
        if (entry.is_regular_file() && isRead(entry.path())) {
            files.push_back(
                {entry.path().lexically_relative(root).generic_string(), fileText(entry.path())});
        }
    }
    std::sort(files.begin(), files.end(),
              [](const SourceFile& a, const SourceFile& b) { return a.path < b.path; });
    return files;
}

const std::vector<SourceFile>& tree() {
    static const std::vector<SourceFile> files = readTree("src", "src");
    return files;
}

bool treeHolds(const std::string& path) {
    return std::any_of(tree().begin(), tree().end(), [&](const SourceFile& file) {
        return file.path == path && !file.text.empty();
    });
}

// The other tests would pass for an empty tree.
TEST(Architecture, ReadsTheTree) {
    EXPECT_TRUE(treeHolds("core/clock.h"));
    EXPECT_TRUE(treeHolds("presentation/screens/shared/screen.h"));
    EXPECT_TRUE(treeHolds("core/CMakeLists.txt"));
    EXPECT_TRUE(treeHolds("sampling/system_cpu_load_reader.cpp"));
}

TEST(Architecture, IncludesPointDownwardsOnly) {
    EXPECT_THAT(forbiddenIncludes(tree()), IsEmpty());
}

TEST(Architecture, OnlyPagesHoldTheMonitor) {
    EXPECT_THAT(monitorOutsidePages(tree()), IsEmpty());
}

TEST(Architecture, TheShellIncludesTheScreensAndNotTheOtherWayRound) {
    EXPECT_THAT(upwardWindowIncludes(tree()), IsEmpty());
}

TEST(Architecture, NoScreenIncludesAnotherOne) {
    EXPECT_THAT(includesBetweenScreens(tree()), IsEmpty());
}

TEST(Architecture, QtStaysInTheWindow) {
    EXPECT_THAT(strayQtIncludes(tree()), IsEmpty());
}

TEST(Architecture, OnlyThePlatformFolderKnowsTheOperatingSystem) {
    EXPECT_THAT(strayPlatformConditions(tree()), IsEmpty());
}

TEST(Architecture, NoFileIsTooLong) {
    EXPECT_THAT(overlongFiles(tree()), IsEmpty());
    const std::vector<SourceFile> tests = readTree("tests", {});
    ASSERT_GT(tests.size(), 100U);
    EXPECT_THAT(overlongFiles(tests), IsEmpty());
}

TEST(Architecture, LinkEdgesMatchTheIncludes) {
    EXPECT_THAT(wrongLinkEdges(tree()), IsEmpty());
}

}  // namespace
}  // namespace tallowcrest::architecture

// The file of the metrics in a folder that cannot be written, or not all the time.

#include <csignal>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/app/headless_program.h"
#include "tests/platform/support/started_program.h"
#include "tests/platform/trash/own_mounts.h"
#include "tests/support/eventually.h"
#include "tests/support/file_text.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;

namespace fs = std::filesystem;

/// How often the program has waited for something, which it does at least once per sample.
long waitsOf(pid_t pid) {
    const std::string status = fileText("/proc/" + std::to_string(pid) + "/status");
    const std::string name = "\nvoluntary_ctxt_switches:";
    return std::stol(status.substr(status.find(name) + name.size()));
}

TEST(HeadlessMetricsFile, AFolderInWhichNoFileCanBeMadeEndsWithOneLine) {
    const TemporaryFolder root;
    inOwnMounts([&] {
        const std::string folder = root.path("read-only");
        mountMemory(folder);
        makeReadOnly(folder);
        const std::string path = folder + "/metrics.prom";
        const ProgramResult result = run({"--headless", "--openmetrics", path, "--samples", "1"});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.standardError,
                  "tallowcrest: cannot write " + path + ": Read-only file system\n");
    });
}

TEST(HeadlessMetricsFile, ALastSampleThatWasNotWrittenIsAFailure) {
    const TemporaryFolder root;
    inOwnMounts([&] {
        const std::string folder = root.path("full");
        mountMemory(folder, "nr_inodes=1");
        const std::string path = folder + "/metrics.prom";
        const ProgramResult result =
            run({"--headless", "--openmetrics", path, "--samples", "2", "--interval", "0.05"});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.standardError,
                  "tallowcrest: cannot write " + path + ": No space left on device\n");
    });
}

TEST(HeadlessMetricsFile, AFolderThatIsGoneForAWhileIsToldOnceAndThenWrittenAgain) {
    const TemporaryFolder root;
    const fs::path folder = root.path("metrics");
    const fs::path file = folder / "metrics.prom";
    const std::string errors = root.path("errors");
    const std::string complaint =
        "tallowcrest: cannot write " + file.string() + ": No such file or directory";
    const auto told = [&] { return linesOf(fileText(errors)); };
    fs::create_directory(folder);
    StartedProgram sampler({"sh", "-c", R"(exec "$@" 2>"$0")", errors, program, "--headless",
                            "--openmetrics", file, "--interval", "0.05"});
    ASSERT_TRUE(eventually([&] { return fs::exists(file); }));
    EXPECT_EQ(fileText(errors), "");

    // Moved, because the program may just be making its file in it.
    fs::rename(folder, root.path("away"));
    ASSERT_TRUE(eventually([&] { return !told().empty(); }));
    const long waits = waitsOf(sampler.pid());
    ASSERT_TRUE(eventually([&] { return waitsOf(sampler.pid()) > waits + 50; }));
    EXPECT_THAT(told(), ElementsAre(complaint)) << "several samples failed";

    fs::create_directory(folder);
    ASSERT_TRUE(eventually([&] { return fs::exists(file); }));
    EXPECT_THAT(told(), ElementsAre(complaint));

    fs::rename(folder, root.path("away again"));
    EXPECT_TRUE(eventually([&] { return told().size() == 2; }));
    EXPECT_TRUE(sampler.isRunning());
}

}  // namespace
}  // namespace tallowcrest

// Samples as OpenMetrics text, by the program without a window.

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/app/headless_program.h"
#include "tests/app/stored_setting.h"
#include "tests/platform/support/started_program.h"
#include "tests/support/eventually.h"
#include "tests/support/file_text.h"
#include "tests/support/names_in.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

/// A quiet machine lists no applications.
const auto isOneSample =
    AllOf(StartsWith("# TYPE tallowcrest_build_info gauge\n"),
          HasSubstr("\ntallowcrest_cpu_load_ratio "), HasSubstr("\ntallowcrest_memory_size_bytes "),
          HasSubstr("\n# TYPE tallowcrest_app_processes gauge\n"), EndsWith("\n# EOF\n"));

TEST(HeadlessOpenMetrics, WritesEachSampleToTheFileAndNothingElse) {
    const TemporaryFolder folder;
    const std::string file = folder.path() / "tallowcrest.prom";
    const ProgramResult result =
        run({"--headless", "--openmetrics", file, "--samples", "2", "--interval", "0.05"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardOutput, "");
    EXPECT_EQ(result.standardError, "");
    EXPECT_THAT(fileText(file), isOneSample);
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("tallowcrest.prom"));
}

TEST(HeadlessOpenMetrics, WritesToStandardOutput) {
    const ProgramResult result = run({"--headless", "--openmetrics", "-", "--samples", "1"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.standardOutput, isOneSample);
}

/// `elsewhere` becomes the settings file, by a link.
void linkSettings(const PrivateData& data, const std::filesystem::path& elsewhere) {
    storeSetting(data, settings_keys::thresholdKey, 90.0);
    const std::filesystem::path settings = data.folder() / "tallowcrest" / "settings.sqlite";
    std::filesystem::rename(settings, elsewhere);
    std::filesystem::create_symlink(elsewhere, settings);
}

class FollowedThreshold : public ::testing::TestWithParam<bool> {};

TEST_P(FollowedThreshold, IsTheOneThatAnotherProgramStores) {
    const PrivateData data;
    const TemporaryFolder folder;
    const std::string file = folder.path("tallowcrest.prom");
    if (GetParam()) {
        linkSettings(data, folder.path("linked.sqlite"));
    }
    const auto tells = [&](const std::string& ratio) {
        return eventually([&] {
            return fileText(file).find("\ntallowcrest_warning_threshold_ratio " + ratio + '\n') !=
                   std::string::npos;
        });
    };
    storeSetting(data, settings_keys::thresholdKey, 90.0);
    const StartedProgram sampler(
        {program, "--headless", "--openmetrics", file, "--interval", "0.05"});
    ASSERT_TRUE(tells("0.9"));
    storeSetting(data, settings_keys::thresholdKey, 66.0);
    EXPECT_TRUE(tells("0.66"));
    storeSetting(data, settings_keys::thresholdKey, 60.0);
    EXPECT_TRUE(tells("0.82")) << "the default, as at a start";

    // One that goes on has its changes in the log, for a while.
    ManualMainQueue mainQueue;
    ManualWorkQueue workQueue;
    Jobs jobs(mainQueue, workQueue);
    const ManualClock clock;
    const OpenedStore other = openSettingsStore(data.folder() / "tallowcrest" / "settings.sqlite",
                                                {.jobs = jobs, .clock = clock, .reportOutage = {}});
    for (const auto& [threshold, ratio] : {std::pair{70.0, "0.7"}, {75.0, "0.75"}}) {
        other.store->write(settings_keys::thresholdKey, threshold);
        EXPECT_TRUE(tells(ratio));
    }
}

INSTANTIATE_TEST_SUITE_P(HeadlessOpenMetrics, FollowedThreshold, ::testing::Bool(),
                         [](const auto& test) { return test.param ? "OfALink" : "OfAFile"; });

TEST(HeadlessOpenMetrics, APathThatCannotBeWrittenEndsWithOneLine) {
    const TemporaryFolder folder;
    std::filesystem::create_symlink("elsewhere", folder.path() / "link");
    for (const auto& [path, problem] :
         {std::pair{folder.path() / "absent/x.prom", "No such file or directory"},
          {folder.path(), "Is a directory"},
          {folder.path() / "link", "It is a symbolic link"}}) {
        const ProgramResult result = run({"--headless", "--openmetrics", path, "--samples", "1"});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.standardError,
                  "tallowcrest: cannot write " + path.string() + ": " + problem + "\n");
    }
}

}  // namespace
}  // namespace tallowcrest

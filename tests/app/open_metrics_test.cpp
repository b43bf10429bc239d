#include "app/open_metrics.h"

#include <algorithm>
#include <filesystem>
#include <regex>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/file_text.h"
#include "tests/support/lines_of.h"

namespace tallowcrest {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using ::testing::Not;

/// All figures differ, so that none can be mistaken for another.
SystemSnapshot roundSnapshot() {
    SystemSnapshot snapshot;
    snapshot.memory = {16.0, 10.0, 6.0, 2.5, 0.25, 62.5};
    snapshot.disk = {500.0, 120.0};
    snapshot.cpuPercent = 25.0;
    snapshot.appImpacts = {{"Google Chrome", 21, 150.0, 2048.0, {}, 0}};
    snapshot.sampledAt = Date::fromUnixSeconds(1'700'000'000.25);
    return snapshot;
}

Recommendation advice(std::string title, Recommendation::Severity severity) {
    Recommendation result;
    result.title = std::move(title);
    result.severity = severity;
    return result;
}

TEST(OpenMetrics, TellsEachFigureInBaseUnits) {
    EXPECT_THAT(linesOf(openMetrics(roundSnapshot(), {}, 80.0)),
                IsSupersetOf(
                    {"tallowcrest_cpu_load_ratio 0.25", "tallowcrest_memory_size_bytes 17179869184",
                     "tallowcrest_memory_used_bytes 10737418240",
                     "tallowcrest_memory_available_bytes 6442450944",
                     "tallowcrest_memory_pressure_ratio 0.625",
                     "tallowcrest_home_volume_size_bytes 536870912000",
                     "tallowcrest_home_volume_free_bytes 128849018880",
                     "tallowcrest_warning_threshold_ratio 0.8", "tallowcrest_load_warning 0",
                     "tallowcrest_sample_timestamp_seconds 1700000000.25",
                     "tallowcrest_app_cpu_ratio{app=\"Google Chrome\"} 1.5",
                     "tallowcrest_app_memory_bytes{app=\"Google Chrome\"} 2147483648",
                     "tallowcrest_app_processes{app=\"Google Chrome\"} 21"}));
}

TEST(OpenMetrics, NamesTypeUnitAndHelpOfEachFamilyBeforeItsValues) {
    const std::string text = openMetrics(roundSnapshot(), {}, 80.0);
    EXPECT_THAT(text,
                HasSubstr("# TYPE tallowcrest_cpu_load_ratio gauge\n"
                          "# UNIT tallowcrest_cpu_load_ratio ratio\n"
                          "# HELP tallowcrest_cpu_load_ratio CPU load of the whole machine, 0 "
                          "to 1.\n"
                          "tallowcrest_cpu_load_ratio 0.25\n"));
    EXPECT_THAT(text, EndsWith("\n# EOF\n"));
}

TEST(OpenMetrics, TheWarningIsThatOfTheMonitor) {
    for (const auto& [cpu, pressure, warns] :
         {std::tuple{79.9, 79.9, false}, {80.0, 10.0, true}, {10.0, 80.0, true}}) {
        SystemSnapshot snapshot = roundSnapshot();
        snapshot.cpuPercent = cpu;
        snapshot.memory.pressure = pressure;
        EXPECT_THAT(linesOf(openMetrics(snapshot, {}, 80.0)),
                    Contains(warns ? "tallowcrest_load_warning 1" : "tallowcrest_load_warning 0"))
            << cpu << " " << pressure;
    }
}

TEST(OpenMetrics, LeavesOutWhatCouldNotBeRead) {
    SystemSnapshot snapshot = roundSnapshot();
    snapshot.memory = {};
    snapshot.disk = {};
    EXPECT_THAT(openMetrics(snapshot, {}, 80.0),
                AllOf(Not(HasSubstr("tallowcrest_memory")), Not(HasSubstr("home_volume")),
                      HasSubstr("tallowcrest_cpu_load_ratio 0.25")));
}

TEST(OpenMetrics, ANameCannotEndItsLabelOrItsLine) {
    SystemSnapshot snapshot = roundSnapshot();
    snapshot.appImpacts = {{"a\"b\\c\nd\x1B[2J\xFF", 1, 0.0, 0.0, {}, 0}};
    const auto lines = linesOf(openMetrics(snapshot, {}, 80.0));
    EXPECT_THAT(lines,
                Contains("tallowcrest_app_processes{app=\"a\\\"b\\\\c?d?[2J\xEF\xBF\xBD\"} 1"));
}

TEST(OpenMetrics, ASeriesOccursOnceAndThereAreAtMostFourteenApplications) {
    SystemSnapshot snapshot = roundSnapshot();
    snapshot.appImpacts = {{"x\n", 1, 0.0, 0.0, {}, 0}, {"x\r", 2, 0.0, 0.0, {}, 0}};
    for (int i = 0; i < 20; ++i) {
        snapshot.appImpacts.push_back({"app" + std::to_string(i), 3, 0.0, 0.0, {}, 0});
    }
    int count = 0;
    for (const std::string& line : linesOf(openMetrics(snapshot, {}, 80.0))) {
        count += line.starts_with("tallowcrest_app_processes{") ? 1 : 0;
        EXPECT_NE(line, "tallowcrest_app_processes{app=\"x?\"} 2");
    }
    EXPECT_EQ(count, 14);
}

TEST(OpenMetrics, RecommendationsHaveNoFiguresAndNamesInTheirLabels) {
    using enum Recommendation::Severity;
    const auto lines = linesOf(openMetrics(
        roundSnapshot(),
        {advice("editor is using 3.2 GB", urgent), advice("indexer 2 is using 3.3 GB", urgent),
         advice("v1,5 has 12 helper processes.", caution)},
        80.0));
    EXPECT_THAT(lines, IsSupersetOf({"tallowcrest_recommendation_info{severity=\"Urgent\",title="
                                     "\"A process is using N GB\"} 1",
                                     "tallowcrest_recommendation_info{severity=\"Caution\",title="
                                     "\"vN has N helper processes.\"} 1"}));
    EXPECT_EQ(std::ranges::count_if(
                  lines, [](const auto& line) { return line.ends_with("is using N GB\"} 1"); }),
              1);
}

/// The names of series in a text. Those of files have a dot behind them.
std::set<std::string> seriesNamedIn(const std::string& text) {
    static const std::regex name("\\btallowcrest_[a-z_]+");
    return {std::sregex_token_iterator(text.begin(), text.end(), name),
            std::sregex_token_iterator()};
}

TEST(OpenMetrics, HasEachSeriesThatTheDocumentsForAdministratorsName) {
    namespace fs = std::filesystem;
    const fs::path documents = TALLOWCREST_SOURCE_DIR "/docs";
    std::vector<fs::path> files{documents / "fleet.md"};
    for (const auto& entry : fs::directory_iterator(documents / "fleet")) {
        files.push_back(entry.path());
    }
    const std::string told =
        openMetrics(roundSnapshot(), {advice("Save", Recommendation::Severity::urgent)}, 80.0);
    std::set<std::string> named;
    for (const fs::path& file : files) {
        for (const std::string& name : seriesNamedIn(fileText(file))) {
            EXPECT_THAT(told, HasSubstr("\n# HELP " + name + ' ')) << file;
            named.insert(name);
        }
    }
    // And the other way round, so that none is missing in them.
    EXPECT_EQ(named, seriesNamedIn(told));
}

}  // namespace
}  // namespace tallowcrest

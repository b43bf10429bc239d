// The report that the program prints, on the machine that the test runs on.

#include <algorithm>
#include <regex>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/app/headless_program.h"
#include "tests/support/test_locales.h"

namespace tallowcrest {
namespace {

using ::testing::StartsWith;

TEST(HeadlessReport, IsPrintedBeforeTheProgramEnds) {
    const ProgramResult result = run({"--headless", "--report", "--interval", "0.3"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardError, "");
    EXPECT_THAT(result.standardOutput, StartsWith("Tallowcrest report - "));
    const std::vector<std::string> lines = linesOf(result.standardOutput);
    for (const char* heading :
         {"App\tCPU\tMemory\tProcesses\tProtected", "Session Insights", "PID\tCPU\tMemory\tProcess",
          "Remote Health", "No remote scan results.", "Never Quit Apps", "Auto Rules",
          "AI Intelligence", "AI trust history", "No trust history.", "Recent Events"}) {
        EXPECT_THAT(lines, ::testing::Contains(heading));
    }
}

/// The first line of a report in this locale and time zone.
std::string datedLine(const char* locale, const char* zone) {
    const ProgramResult result = run({"--headless", "--report", "--interval", "0.1"},
                                     {std::string("LC_ALL=") + locale, std::string("TZ=") + zone});
    EXPECT_EQ(result.status, 0) << result.standardError;
    return result.standardOutput.substr(0, result.standardOutput.find('\n'));
}

TEST(HeadlessReport, IsDatedInTheReadersLocale) {
    struct Case {
        const char* locale;
        const char* form;
    };
    for (const Case& each :
         {Case{"de_DE.UTF-8", R"(Tallowcrest report - \d\d\.\d\d\.\d{4}, \d\d:\d\d)"},
          Case{"en_US.UTF-8", R"(Tallowcrest report - \d\d/\d\d/\d{4}, \d\d?:\d\d [AP]M)"},
          Case{"ja_JP.UTF-8", R"(Tallowcrest report - \d{4}年\d\d月\d\d日, \d\d時\d\d分)"},
          Case{"C", R"(Tallowcrest report - \d\d/\d\d/\d{4}, \d\d:\d\d)"}}) {
        for (const char* zone : {"WEST5", "EAST-9:30"}) {
            const std::string line = datedLine(each.locale, zone);
            EXPECT_TRUE(std::regex_match(line, std::regex(each.form))) << line;
        }
    }
}

TEST(HeadlessReport, IsDatedInTheReadersTimeZone) {
    const auto minuteOfDay = [](const std::string& line) {
        std::smatch time;
        EXPECT_TRUE(std::regex_search(line, time, std::regex(R"((\d\d):(\d\d)$)"))) << line;
        return time.empty() ? 0 : std::stoi(time[1]) * 60 + std::stoi(time[2]);
    };
    const int west = minuteOfDay(datedLine("de_DE.UTF-8", "WEST5"));
    const int east = minuteOfDay(datedLine("de_DE.UTF-8", "EAST-9:30"));
    constexpr int day = 24 * 60;
    const int ahead = (east - west + day) % day;
    // Some time passes between the two reports, on a busy machine a long one.
    EXPECT_GE(ahead, 14 * 60 + 30);
    EXPECT_LT(ahead, 15 * 60);
}

TEST(HeadlessReport, HasNoProcessIdsWhenRedacted) {
    const ProgramResult result = run({"--headless", "--report", "--redacted", "--interval", "0.3"});
    EXPECT_EQ(result.status, 0);
    const std::vector<std::string> lines = linesOf(result.standardOutput);
    const auto heading = std::find(lines.begin(), lines.end(), "PID\tCPU\tMemory\tProcess");
    ASSERT_NE(heading, lines.end());
    std::size_t rows = 0;
    for (auto line = heading + 1; line != lines.end() && !line->empty(); ++line) {
        EXPECT_THAT(*line, StartsWith("redacted\t"));
        ++rows;
    }
    EXPECT_GT(rows, 0U);
}

}  // namespace
}  // namespace tallowcrest

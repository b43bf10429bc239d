#include "tests/support/load_trace.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST(LoadTrace, HasSamplesWithTheirProcesses) {
    const auto result = parseLoadTrace(
        "# recorded on a Monday\n"
        "\n"
        "sample 0 12.5 40 99.5\n"
        "process 700 130.5 2048 /opt/my app/bin\n"
        "process 1 0 12 /sbin/init\n"
        "sample 4 13 41 99\n");
    ASSERT_TRUE(std::holds_alternative<LoadTrace>(result));
    const auto& trace = std::get<LoadTrace>(result);
    ASSERT_THAT(trace, SizeIs(2));
    EXPECT_EQ(trace[0].cpuPercent, 12.5);
    EXPECT_EQ(trace[0].pressure, 40.0);
    EXPECT_EQ(trace[0].diskFreeGB, 99.5);
    ASSERT_THAT(trace[0].processes, SizeIs(2));
    EXPECT_EQ(trace[0].processes[0].pid, 700);
    EXPECT_EQ(trace[0].processes[0].cpu, 130.5);
    EXPECT_EQ(trace[0].processes[0].rssMB, 2048.0);
    EXPECT_EQ(trace[0].processes[0].command, "/opt/my app/bin");
    EXPECT_EQ(trace[1].seconds, 4.0);
    EXPECT_THAT(trace[1].processes, IsEmpty());
}

TEST(LoadTrace, TextWithoutSamplesIsAnEmptyTrace) {
    for (const char* text : {"", "\n\n", "# nothing\n"}) {
        const auto result = parseLoadTrace(text);
        ASSERT_TRUE(std::holds_alternative<LoadTrace>(result)) << text;
        EXPECT_THAT(std::get<LoadTrace>(result), IsEmpty());
    }
}

TEST(LoadTrace, TheFirstInvalidLineIsReported) {
    struct Case {
        const char* text;
        std::size_t line;
    };
    for (const Case& each :
         {Case{"sample 0 1 2\n", 1}, Case{"sample 0 1 2 3 4\n", 1}, Case{"sample 0 one 2 3\n", 1},
          Case{"sample 0 nan 2 3\n", 1}, Case{"sample 0 inf 2 3\n", 1},
          Case{"# fine\nprocess 700 1 2 /bin/a\n", 2}, Case{"sample 0 1 2 3\nprocess 700 1 2\n", 2},
          Case{"sample 0 1 2 3\nprocess 7.5 1 2 /bin/a\n", 2},
          Case{"sample 8 1 2 3\nsample 4 1 2 3\n", 2}, Case{"sample -5 1 2 3\n", 1},
          Case{"simple 0 1 2 3\n", 1}, Case{"\t\n", 1}}) {
        const auto result = parseLoadTrace(each.text);
        ASSERT_TRUE(std::holds_alternative<TraceError>(result)) << each.text;
        EXPECT_EQ(std::get<TraceError>(result).line, each.line) << each.text;
        EXPECT_NE(std::get<TraceError>(result).problem, "") << each.text;
    }
}

TEST(LoadTrace, AFormattedTraceIsParsedBack) {
    LoadTrace day = syntheticDay();
    ASSERT_THAT(day, SizeIs(21600));
    day.resize(4000);
    const auto result = parseLoadTrace(formatLoadTrace(day));
    ASSERT_TRUE(std::holds_alternative<LoadTrace>(result));
    EXPECT_EQ(std::get<LoadTrace>(result), day);
}

}  // namespace
}  // namespace tallowcrest

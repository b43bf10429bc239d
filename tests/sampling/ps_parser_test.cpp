#include "sampling/ps_parser.h"

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/fixture.h"
#include "tests/support/pids_of.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(PSParserTest, FillsEveryFieldInTableOrder) {
    const auto rows = parseProcessRows(readFixture("ps/plain.txt"));

    ASSERT_THAT(pids(rows), ElementsAre(1, 318, 402, 611, 9107));
    EXPECT_EQ(rows[0], (ProcessSample{1, 0.4, 0.1, 18.0, "/sbin/launchd", "/sbin/launchd"}));
    EXPECT_DOUBLE_EQ(rows[3].cpu, 143.2);
    EXPECT_DOUBLE_EQ(rows[3].memoryPercent, 4.4);
    EXPECT_DOUBLE_EQ(rows[3].rssMB, 741120 * 0.0009765625);
    EXPECT_EQ(rows[4].command, "-zsh");
}

TEST(PSParserTest, KeepsAllBlanksOfACommand) {
    const auto rows = parseProcessRows(readFixture("ps/blanks_in_command.txt"));

    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].command,
              "/Applications/Photo Studio Pro.app/Contents/MacOS/Photo Studio Pro");
    EXPECT_EQ(rows[0].displayName(), "Photo Studio Pro");
    EXPECT_EQ(rows[1].displayName(), "Render  Helper (GPU)");
    EXPECT_EQ(rows[1].arguments, rows[1].command);
}

TEST(PSParserTest, SkipsBadAndTruncatedRowsAndKeepsTheRest) {
    EXPECT_THAT(pids(parseProcessRows(readFixture("ps/bad_rows_between_good_ones.txt"))),
                ElementsAre(10, 18));
    EXPECT_THAT(pids(parseProcessRows(readFixture("ps/cut_at_the_deadline.txt"))), ElementsAre(20));
}

TEST(PSParserTest, KeepsNonASCIIText) {
    const auto rows = parseProcessRows(readFixture("ps/not_ascii.txt"));

    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].displayName(), "Müsli");
    EXPECT_EQ(rows[1].displayName(), "計算機");
}

TEST(PSParserTest, GivesNoRowsForEmptyText) {
    for (const char* text : {"", "\n", "\n\n\n", "     ", "   \n   "}) {
        EXPECT_THAT(parseProcessRows(text), IsEmpty()) << text;
    }
}

TEST(PSParserTest, KeepsOnlyRowsOfNumbersAndACommand) {
    struct Case {
        const char* line;
        bool isKept;
    };
    for (const Case& each : {Case{"2 1 2 3 x", true},
                             Case{"+2 +1.5 .5 5. x", true},
                             Case{"2 1e2 1E-3 1e+3 x", true},
                             Case{"-2 1 2 3 x", true},
                             Case{"2 1e400 2 3 x", false},
                             Case{"2 1 NaN 3 x", false},
                             Case{"2 1 nan(5) 3 x", false},
                             Case{"2 infinity 2 3 x", false},
                             Case{"2 -inf 2 3 x", false},
                             Case{"2 0x1p3 2 3 x", false},
                             Case{"2 1.0.0 2 3 x", false},
                             Case{"2 1e 2 3 x", false},
                             Case{"2 . 2 3 x", false},
                             Case{"2 - 2 3 x", false},
                             Case{"2 +-1 2 3 x", false},
                             Case{"2 1 2 3K x", false},
                             Case{"2.0 1 2 3 x", false},
                             Case{"0x2 1 2 3 x", false},
                             Case{"two 1 2 3 x", false},
                             Case{"9223372036854775807 1 2 3 x", true},
                             Case{"9223372036854775808 1 2 3 x", false},
                             Case{"2\t1\t2\t3\tx", false},
                             Case{"2", false},
                             Case{"2 1 2 3", false},
                             Case{"2 1 2 3 ", false},
                             Case{"2 1 2 3      ", false},
                             Case{"      2     1   2   3   x", true},
                             Case{"2 1 2 3 4 5 6 7", true}}) {
        SCOPED_TRACE(each.line);
        const auto rows = parseProcessRows("1 0.0 0.0 0 before\n" + std::string(each.line) +
                                           "\n3 0.0 0.0 0 after\n");
        EXPECT_EQ(rows.size(), each.isKept ? 3U : 2U);
        EXPECT_EQ(rows.front().command, "before");
        EXPECT_EQ(rows.back().command, "after");
    }
}

TEST(PSParserTest, KeepsACommandUnchangedAfterItsLeadingBlanks) {
    for (const auto& [line, command] :
         {std::pair{"  2   1.0   2.0   3    a  b  \n", "a  b  "}, {"2 1 2 3 x\r\n", "x\r"}}) {
        const auto rows = parseProcessRows(line);
        ASSERT_EQ(rows.size(), 1U);
        EXPECT_EQ(rows[0].command, command);
    }
}

TEST(PSParserTest, LimitsImpossibleFigures) {
    const auto rows = parseProcessRows(
        "2 1e308 1e308 1e308 x\n"
        "3 -1e308 -5 -1024 x\n"
        "4 -0.0 0 0 x\n");

    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].cpu, 1e12);
    EXPECT_EQ(rows[0].memoryPercent, 1e12);
    EXPECT_EQ(rows[0].rssMB, 1e12 * 0.0009765625);
    EXPECT_EQ(rows[1].cpu, 0.0);
    EXPECT_EQ(rows[1].memoryPercent, 0.0);
    EXPECT_EQ(rows[1].rssMB, 0.0);
    EXPECT_FALSE(std::signbit(rows[2].cpu));
}

}  // namespace
}  // namespace tallowcrest

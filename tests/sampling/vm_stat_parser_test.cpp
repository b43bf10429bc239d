#include "sampling/vm_stat_parser.h"

#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sampling/memory.h"
#include "tests/support/fixture.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::Pair;

constexpr double bytesPerGigabyte = 1024.0 * 1024.0 * 1024.0;
constexpr const char* sixteenGigabytes = "17179869184\n";

TEST(VMStatParserTest, FillsEveryField) {
    const auto memory =
        memorySnapshot(sixteenGigabytes, readFixture("vm_stat/page_size_16384.txt"));

    EXPECT_DOUBLE_EQ(memory.totalGB, 16.0);
    EXPECT_DOUBLE_EQ(memory.freeGB, (40960.0 + 8192.0) * 16384.0 / bytesPerGigabyte);
    EXPECT_DOUBLE_EQ(memory.usedGB, 16.0 - memory.freeGB);
    EXPECT_DOUBLE_EQ(memory.wiredGB, 1.0);
    EXPECT_DOUBLE_EQ(memory.compressedGB, 0.5);
    EXPECT_DOUBLE_EQ(memory.pressure, (131072.0 + 65536.0 + 32768.0) / 1048576.0 * 100.0);
}

TEST(VMStatParserTest, FourTimesThePageSizeGivesFourTimesTheFigures) {
    const auto small = memorySnapshot(sixteenGigabytes, readFixture("vm_stat/page_size_4096.txt"));
    const auto large = memorySnapshot(sixteenGigabytes, readFixture("vm_stat/page_size_16384.txt"));

    EXPECT_GT(small.freeGB, 0.0);
    EXPECT_DOUBLE_EQ(large.freeGB, 4.0 * small.freeGB);
    EXPECT_DOUBLE_EQ(large.wiredGB, 4.0 * small.wiredGB);
    EXPECT_DOUBLE_EQ(large.compressedGB, 4.0 * small.compressedGB);
    EXPECT_DOUBLE_EQ(large.pressure, 4.0 * small.pressure);
}

TEST(VMStatParserTest, FallsBackTo4096WithoutTheHeader) {
    EXPECT_EQ(memorySnapshot(sixteenGigabytes, readFixture("vm_stat/no_header.txt")),
              memorySnapshot(sixteenGigabytes, readFixture("vm_stat/page_size_4096.txt")));
}

TEST(VMStatParserTest, UsesTheOutputBeforeTheDeadline) {
    const auto memory =
        memorySnapshot(sixteenGigabytes, readFixture("vm_stat/cut_at_the_deadline.txt"));

    EXPECT_DOUBLE_EQ(memory.freeGB, (40960.0 + 8192.0) * 16384.0 / bytesPerGigabyte);
    EXPECT_DOUBLE_EQ(memory.wiredGB, 0.0);
    EXPECT_DOUBLE_EQ(memory.pressure, 12.5);
}

TEST(VMStatParserTest, KeepsTheDigitsOfEachLineWithAKey) {
    EXPECT_THAT(parsePageCounts("Pages free:      1234.\n"), ElementsAre(Pair("Pages free", 1234)));
    EXPECT_THAT(
        parsePageCounts(readFixture("vm_stat/odd_lines.txt")),
        ElementsAre(Pair(" Pages active", 50), Pair("Mach Virtual Memory Statistics", 16384),
                    Pair("Pages", 56), Pair("Pages free", 1234), Pair("Pages purgeable", 2)));
}

TEST(VMStatParserTest, ReadsThePageSize) {
    const std::pair<const char*, std::int64_t> cases[] = {
        {"(page size of 16384 bytes)", 16384},
        {"page size of 1 bytes", 1},
        {"", 4096},
        {"page size of  16384 bytes", 4096},
        {"page size of 16384  bytes", 4096},
        {"page size of bytes", 4096},
        {"page size of 16384", 4096},
        {"page size of -1 bytes", 4096},
        {"Page size of 16384 bytes", 4096},
        {"page size of 0 bytes", 4096},
        {"page size of 99999999999999999999 bytes", 4096},
        {"page size of page size of 8192 bytes", 8192},
        {"page size of x bytes, page size of 8192 bytes, page size of 1 bytes", 8192}};
    for (const auto& [text, size] : cases) {
        EXPECT_EQ(parsePageSize(text), size) << text;
    }
}

TEST(VMStatParserTest, UnknownPhysicalMemoryCapsThePressureAsSoonAsAPageIsActive) {
    for (const char* memsize : {"", "\n", "unknown oid 'hw.memsize'", "17179869184.0", "0x400",
                                "99999999999999999999", "-17179869184", "1 2"}) {
        const auto memory = memorySnapshot(memsize, "Pages active: 1.\nPages free: 10.\n");
        EXPECT_EQ(memory.totalGB, 0.0) << memsize;
        EXPECT_EQ(memory.usedGB, 0.0) << memsize;
        EXPECT_EQ(memory.pressure, 100.0) << memsize;
    }
    EXPECT_EQ(memorySnapshot("", "Pages active: 0.\nPages free: 10.\n").pressure, 0.0);
}

TEST(VMStatParserTest, DividesThePhysicalMemory) {
    struct Case {
        const char* memsize;
        const char* pages;
        double totalGB, pressure;
    };
    for (const Case& each :
         {Case{"", "", 0, 0}, Case{" \t1073741824\r\n\n", "", 1, 0},
          // Two and a half pages count as two, less than one page as one.
          Case{"10240", "Pages active: 1.\n", 10240 / bytesPerGigabyte, 50},
          Case{"100", "Pages active: 1.\n", 100 / bytesPerGigabyte, 100},
          Case{"8192", "Pages active: 2.\nPages wired down: 1.\n", 8192 / bytesPerGigabyte, 100}}) {
        const auto memory = memorySnapshot(each.memsize, each.pages);
        EXPECT_DOUBLE_EQ(memory.totalGB, each.totalGB) << each.memsize;
        EXPECT_DOUBLE_EQ(memory.pressure, each.pressure) << each.memsize;
    }
    EXPECT_EQ(memorySnapshot("", ""), MemorySnapshot{});
}

TEST(VMStatParserTest, MoreFreeThanPhysicalMemoryGivesNothingUsed) {
    const auto memory = memorySnapshot("1073741824", "Pages free: 300000.\n");

    EXPECT_GT(memory.freeGB, memory.totalGB);
    EXPECT_EQ(memory.usedGB, 0.0);
}

TEST(VMStatParserTest, TheLargestCountsStayFinite) {
    const auto memory = memorySnapshot(
        "9223372036854775807",
        "page size of 9223372036854775807 bytes: 1\nPages free: 9223372036854775807\n"
        "Pages speculative: 9223372036854775807\nPages active: 9223372036854775807\n");

    EXPECT_LT(memory.freeGB, 1e30);
    EXPECT_EQ(memory.usedGB, 0.0);
    EXPECT_EQ(memory.pressure, 100.0);
}

TEST(PressureTextTest, IsTrimmedAndOtherwiseVerbatim) {
    EXPECT_EQ(pressureText(readFixture("memory_pressure/surrounded_by_blank_lines.txt")),
              "The system has 17179869184 (1048576 pages with a page size of 16384).\n"
              "System-wide memory free percentage: 61%");
    EXPECT_EQ(pressureText(readFixture("memory_pressure/stall_shares_of_linux.txt")),
              "some avg10=0.12 avg60=0.05 avg300=0.01 total=482113\n"
              "full avg10=0.00 avg60=0.00 avg300=0.00 total=90211");
    for (const std::string& none :
         {std::string(), readFixture("memory_pressure/blanks_only.txt")}) {
        EXPECT_EQ(pressureText(none), "Memory pressure unavailable");
    }
}

}  // namespace
}  // namespace tallowcrest

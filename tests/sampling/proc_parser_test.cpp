#include "sampling/proc_parser.h"

#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

constexpr double kibibyte = 1024.0;
constexpr double gigabyte = 1024.0 * 1024.0 * 1024.0;

const std::string fieldsAfterName =
    " S 1 812 813 0 -1 4194560 82213 911 12 3 48211 9120 77 13 20 0 31 0 4211 3221225472 81234 "
    "18446744073709551615 94208000000000 94208000900000 140720000000000 0 0 0 0 4096\n";

std::string statText(const std::string& name) {
    return "812 (" + name + ')' + fieldsAfterName;
}

TEST(ProcessStatTest, TakesTheFieldsByPosition) {
    const std::string text = statText("web content");
    const auto stat = parseProcessStat(text);

    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->name, "web content");
    EXPECT_EQ(stat->state, 'S');
    EXPECT_EQ(stat->flags, 4194560U);
    EXPECT_EQ(stat->userTicks, 48211U);
    EXPECT_EQ(stat->systemTicks, 9120U);
    EXPECT_EQ(stat->startTicks, 4211U);
    EXPECT_EQ(stat->residentPages, 81234U);
    EXPECT_EQ(stat->startCode, 94208000000000U);
    EXPECT_EQ(stat->startStack, 140720000000000U);
    EXPECT_FALSE(stat->isKernelThread());
    EXPECT_FALSE(stat->hasEnded());
}

TEST(ProcessStatTest, NameMayContainAnything) {
    for (const std::string name :
         {"", " ", "(", ")", "we ird) (x", "a) R 1 2 3 4 (b", ")))(((", "two\nlines", "\xff\xfe",
          ") S 1 812 813 0 -1 4194560 82213 911 12 3 1 1 1 1 20 0 31 0 1 1 1 1 1 1 1 "}) {
        const std::string text = statText(name);
        const auto stat = parseProcessStat(text);
        ASSERT_TRUE(stat) << name;
        EXPECT_EQ(stat->name, name);
        EXPECT_EQ(stat->userTicks, 48211U) << name;
    }
}

TEST(ProcessStatTest, RejectsTextTruncatedBeforeTheLastUsedField) {
    const std::string text = statText("web) (content");
    const std::string lastNeeded = "140720000000000";
    const std::size_t enough = text.find(lastNeeded) + lastNeeded.size() + 1;
    for (std::size_t length = 0; length < enough; ++length) {
        EXPECT_FALSE(parseProcessStat(text.substr(0, length))) << length;
    }
    for (std::size_t length = enough; length <= text.size(); ++length) {
        EXPECT_TRUE(parseProcessStat(text.substr(0, length))) << length;
    }
}

TEST(ProcessStatTest, RejectsMalformedText) {
    const auto withField = [](const std::string& from, const std::string& to) {
        std::string text = statText("x");
        return text.replace(text.find(from), from.size(), to);
    };
    for (const std::string& text :
         {std::string("\n"), std::string("812"), std::string(")("), std::string("812 )(") + "S 1 2",
          "812 x" + fieldsAfterName, withField(") S", ")S"), withField(") S", ")  S"),
          withField(") S ", ") Sleeping "), withField(" 48211 ", " -1 "),
          withField(" 48211 ", " 4x "), withField(" 48211 ", " 18446744073709551616 "),
          withField(" 48211 ", "\n48211 "), withField(" 81234 ", " 0x5 "), std::string(4096, '('),
          std::string(4096, ')')}) {
        EXPECT_FALSE(parseProcessStat(text)) << text;
    }
}

TEST(ProcessStatTest, LargestCountersFit) {
    std::string text = statText("x");
    text.replace(text.find("48211"), 5, "18446744073709551615");
    const auto stat = parseProcessStat(text);

    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->userTicks, std::numeric_limits<std::uint64_t>::max());
}

TEST(ProcessStatTest, RecognisesKernelThreadsAndEndedProcesses) {
    std::string thread = statText("kworker/0:1-events");
    thread.replace(thread.find("4194560"), 7, "69238880");
    EXPECT_TRUE(parseProcessStat(thread)->isKernelThread());

    std::string ended = statText("x");
    ended.replace(ended.find(") S"), 3, ") Z");
    EXPECT_TRUE(parseProcessStat(ended)->hasEnded());
}

struct NumberCase {
    std::string text;
    std::optional<std::int32_t> number;
};

TEST(NewestProcessIDTest, IsTheFifthFieldOfTheLoad) {
    const NumberCase cases[] = {
        {"0.52 0.58 0.59 2/1284 22183\n", 22183},
        {"0.52 0.58 0.59 2/1284 1\n", 1},
        {"0.52 0.58 0.59 2/1284 2147483647\n", 2147483647},
        {"0.52 0.58 0.59 2/1284 22183 more\n", 22183},
        {"0.52 0.58 0.59 2/1284 2147483648\n", std::nullopt},
        {"0.52 0.58 0.59 2/1284 18446744073709551616\n", std::nullopt},
        {"0.00 0.00 0.00 0/0 0\n", std::nullopt},
        {"0.52 0.58 0.59 2/1284 22183", std::nullopt},
        {"0.52 0.58 0.59 2/1284 -22183\n", std::nullopt},
        {"0.52 0.58 0.59 2/1284 22x\n", std::nullopt},
        {"0.52 0.58 0.59 2/1284 \n", std::nullopt},
        {"0.52 0.58 0.59 2/1284\n", std::nullopt},
        {"\n", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [text, number] : cases) {
        EXPECT_EQ(parseNewestProcessID(text), number) << text;
    }
}

TEST(SoleProcessIDTest, IsTheIdOfAProcessWithASingleOne) {
    const std::string before = "Name:\tshell\nPid:\t77\nNStgid:\t812\n";
    const NumberCase cases[] = {
        {before + "NSpid:\t812\nNSpgid:\t5\n", 812},
        {before + "NSpid:\t2147483647\n", 2147483647},
        {before + "NSpid:\t812\t1\n", std::nullopt},
        {before + "NSpid:\t812\t40\t1\n", std::nullopt},
        {before + "NSpid:\t2147483648\n", std::nullopt},
        {before + "NSpid:\t0\n", std::nullopt},
        {before + "NSpid:\t-1\n", std::nullopt},
        {before + "NSpid:\t\n", std::nullopt},
        {before + "NSpid:\tx\n", std::nullopt},
        {before + "NSpid:\t812", std::nullopt},
        {before + "NSpid:", std::nullopt},
        {before + "xNSpid:\t812\n", std::nullopt},
        {"Name:\tNSpid:\t812\n", std::nullopt},
        {before, std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [text, number] : cases) {
        EXPECT_EQ(parseSoleProcessID(text), number) << text;
    }
}

struct TicksCase {
    std::string text;
    std::optional<CPUTicks> ticks;
};

TEST(ProcessorTicksTest, MapsTheCountersToFourClasses) {
    const TicksCase cases[] = {
        // user nice system idle iowait irq softirq steal guest guest_nice
        {"cpu  1 20 300 4000 50000 600000 7000000 80000000 900000000 9000000000\ncpu0 1 1 1 1\n",
         CPUTicks{1, 300 + 600000 + 7000000 + 80000000, 4000 + 50000, 20}},
        {"cpu  1 20 300 4000\n", CPUTicks{1, 300, 4000, 20}},
        {"cpu  1 20 300 4000 50000\n", CPUTicks{1, 300, 54000, 20}},
        {"cpu  1 20 300 4000 50000   \n", CPUTicks{1, 300, 54000, 20}},
        {"cpu 1 2 18446744073709551615 18446744073709551615 1 1 1 1\n",
         CPUTicks{1, 18446744073709551615U, 18446744073709551615U, 2}},
        {"", std::nullopt},
        {"cpu", std::nullopt},
        {"cpu \n", std::nullopt},
        {"cpu  1 20 300\n", std::nullopt},
        {"cpu  1 20 300 4000", std::nullopt},
        {"cpu  1 20 300 4000 50000 6", std::nullopt},
        {"cpu  1 20 300 4000 x\n", std::nullopt},
        {"cpu  1 -20 300 4000\n", std::nullopt},
        {"cpu  1 18446744073709551616 300 4000\n", std::nullopt},
        {"cpu0 1 20 300 4000 50000\n", std::nullopt},
        {"intr 5\ncpu  1 20 300 4000\n", std::nullopt},
    };
    for (const auto& [text, ticks] : cases) {
        EXPECT_EQ(parseProcessorTicks(text), ticks) << text;
    }
}

const std::string memoryInfo =
    "MemTotal:       16000000 kB\nMemFree:         2000000 kB\nMemAvailable:    9000000 kB\n"
    "Buffers:          300000 kB\nCached:          4000000 kB\nSwapCached:        11111 kB\n"
    "Active:          5555555 kB\nUnevictable:      100000 kB\nMlocked:          100000 kB\n"
    "Zswap:            500000 kB\nZswapped:        1500000 kB\nSReclaimable:     700000 kB\n"
    "SUnreclaim:       200000 kB\nKernelStack:       30000 kB\nPageTables:        70000 kB\n"
    "HugePages_Total:       0\n";

TEST(MemoryInfoTest, MapsTheLinesToPageClasses) {
    const auto classes = parseMemoryInfo(memoryInfo, 250000 * 1024, 16384.0);

    EXPECT_EQ(classes.physicalBytes, 16000000 * kibibyte);
    EXPECT_EQ(classes.pageSize, 16384.0);
    EXPECT_EQ(classes.freeBytes, 2000000 * kibibyte);
    EXPECT_EQ(classes.speculativeBytes, 7000000 * kibibyte);
    EXPECT_EQ(classes.wiredBytes, 400000 * kibibyte);
    EXPECT_EQ(classes.compressedBytes, 750000 * kibibyte);
    EXPECT_EQ(classes.activeBytes, (16000000 - 9000000 - 400000 - 750000) * kibibyte);
}

TEST(MemoryInfoTest, FreeIsWhatIsAvailableAndPressureIsTheRest) {
    const auto memory = memorySnapshot(parseMemoryInfo(memoryInfo, 0, 4096.0));

    EXPECT_DOUBLE_EQ(memory.totalGB, 16000000 * kibibyte / gigabyte);
    EXPECT_DOUBLE_EQ(memory.freeGB, 9000000 * kibibyte / gigabyte);
    EXPECT_DOUBLE_EQ(memory.usedGB, memory.totalGB - memory.freeGB);
    EXPECT_DOUBLE_EQ(memory.wiredGB, 400000 * kibibyte / gigabyte);
    EXPECT_DOUBLE_EQ(memory.compressedGB, 500000 * kibibyte / gigabyte);
    EXPECT_DOUBLE_EQ(memory.pressure, 7000000.0 / 16000000.0 * 100.0);
}

TEST(MemoryInfoTest, AnOldKernelCountsAllCachesAsAvailable) {
    std::string text = memoryInfo;
    const std::size_t at = text.find("MemAvailable");
    text.erase(at, text.find('\n', at) + 1 - at);
    const auto classes = parseMemoryInfo(text, 0, 4096.0);

    EXPECT_EQ(classes.speculativeBytes, 4300000 * kibibyte);
    EXPECT_EQ(classes.activeBytes, (16000000 - 6300000 - 400000 - 500000) * kibibyte);
}

TEST(MemoryInfoTest, NoClassIsNegative) {
    const auto lessAvailableThanFree =
        parseMemoryInfo("MemTotal: 1000 kB\nMemFree: 500 kB\nMemAvailable: 400 kB\n", 0, 4096.0);
    EXPECT_EQ(lessAvailableThanFree.speculativeBytes, 0.0);
    EXPECT_EQ(lessAvailableThanFree.activeBytes, 600 * kibibyte);

    const auto moreWiredThanTaken = parseMemoryInfo(
        "MemTotal: 1000 kB\nMemFree: 900 kB\nMemAvailable: 950 kB\nUnevictable: 100 kB\n", 0,
        4096.0);
    EXPECT_EQ(moreWiredThanTaken.activeBytes, 0.0);

    const auto moreAvailableThanThereIs =
        parseMemoryInfo("MemTotal: 1000 kB\nMemAvailable: 2000 kB\n", 0, 4096.0);
    EXPECT_EQ(moreAvailableThanThereIs.activeBytes, 0.0);
    EXPECT_EQ(memorySnapshot(moreAvailableThanThereIs).usedGB, 0.0);
}

TEST(MemoryInfoTest, MissingAndMalformedLinesCountAsZero) {
    const MemoryClasses nothing{.pageSize = 4096.0};
    for (const char* text :
         {"", "\n\n\n", "MemTotal", "MemTotal:", "MemTotal: \n", "MemTotal: x kB\n",
          "MemTotal: -5 kB\n", "MemTotal: 18446744073709551616 kB\n", "memtotal: 5 kB\n",
          " MemTotal: 5 kB\n", "MemTotal 5 kB\n", "MemTotal: 5x kB\n", "MemTotal: 160000"}) {
        EXPECT_EQ(parseMemoryInfo(text, 0, 4096.0), nothing) << text;
    }
}

TEST(MemoryInfoTest, UnknownTotalCapsThePressureAsSoonAsAPageIsWired) {
    const auto memory =
        memorySnapshot(parseMemoryInfo("MemFree: 500 kB\nPageTables: 4 kB\n", 0, 4096.0));

    EXPECT_EQ(memory.totalGB, 0.0);
    EXPECT_EQ(memory.usedGB, 0.0);
    EXPECT_EQ(memory.pressure, 100.0);
}

TEST(ZramTest, ReadsTheMemoryUsed) {
    EXPECT_EQ(parseZramUsedBytes(" 8192  2048 12288 0 12288 0 0 0 0\n"), 12288U);
    EXPECT_EQ(parseZramUsedBytes("8192 2048 12288\n"), 12288U);
    for (const char* text : {"", "\n", "8192 2048\n", "8192 2048 12288", "8192 2048 x 0\n"}) {
        EXPECT_EQ(parseZramUsedBytes(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace tallowcrest

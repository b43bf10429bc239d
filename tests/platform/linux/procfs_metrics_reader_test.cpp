#include "platform/linux/procfs_metrics_reader.h"

#include <chrono>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "platform/linux/proc_stat_tick_source.h"
#include "tests/platform/linux/fake_proc_tree.h"

namespace tallowcrest {
namespace {

class FixedHomeVolume final : public HomeVolume {
public:
    DiskSnapshot readDiskSnapshot() override { return {500.0, 125.0}; }
};

class ProcfsMetricsReaderTest : public testing::Test {
protected:
    /// Called after the files are written, because the reader opens them when constructed.
    std::unique_ptr<ProcfsMetricsReader> makeReader() {
        return std::make_unique<ProcfsMetricsReader>(std::make_unique<FixedHomeVolume>(),
                                                     tree.machine(), tree.root() / "sys");
    }

    FakeProcTree tree;
    const std::string memoryInfo =
        "MemTotal: 8388608 kB\nMemFree: 1048576 kB\nMemAvailable: 4194304 kB\n"
        "Unevictable: 1048576 kB\nZswap: 524288 kB\n";
};

TEST_F(ProcfsMetricsReaderTest, ReadsTheMemory) {
    tree.putFile("meminfo", memoryInfo);
    const auto reader = makeReader();

    EXPECT_EQ(reader->readMemory(), (MemorySnapshot{8.0, 4.0, 4.0, 1.0, 0.5, 50.0}));

    tree.putFile("meminfo", "MemTotal: 8388608 kB\nMemAvailable: 8388608 kB\n");
    EXPECT_EQ(reader->readMemory(), (MemorySnapshot{8.0, 0.0, 8.0, 0.0, 0.0, 0.0}));
}

TEST_F(ProcfsMetricsReaderTest, AddsUpTheCompressedBlockDevices) {
    tree.putFile("meminfo", memoryInfo);
    const auto reader = makeReader();
    tree.putFile("sys/block/zram0/mm_stat", " 9 9 1073741824 0 0 0 0 0 0\n");
    tree.putFile("sys/block/zram1/mm_stat", " 9 9 536870912 0 0 0 0 0 0\n");
    tree.putFile("sys/block/zram2/mm_stat", "garbage\n");
    tree.putFile("sys/block/zram3/size", "0\n");
    tree.putFile("sys/block/sda/mm_stat", " 9 9 1073741824 0 0 0 0 0 0\n");

    EXPECT_DOUBLE_EQ(reader->readMemory().compressedGB, 2.0);
}

TEST_F(ProcfsMetricsReaderTest, MissingFilesGiveEmptyFigures) {
    const auto reader = makeReader();

    EXPECT_TRUE(reader->readProcesses().empty());
    EXPECT_EQ(reader->readMemory(), MemorySnapshot{});
    EXPECT_EQ(reader->readPressureText(), "Memory pressure unavailable");
    EXPECT_EQ(reader->readDiskSnapshot(), (DiskSnapshot{500.0, 125.0}));
}

TEST_F(ProcfsMetricsReaderTest, FilesThatAppearLaterAreRead) {
    const auto reader = makeReader();
    EXPECT_EQ(reader->readMemory(), MemorySnapshot{});

    tree.putFile("meminfo", memoryInfo);
    EXPECT_DOUBLE_EQ(reader->readMemory().totalGB, 8.0);
}

TEST_F(ProcfsMetricsReaderTest, ThePressureTextIsTrimmedOnly) {
    tree.putFile("pressure/memory", "some avg10=0.12 total=5\nfull avg10=0.00 total=1\n");
    EXPECT_EQ(makeReader()->readPressureText(), "some avg10=0.12 total=5\nfull avg10=0.00 total=1");

    tree.putFile("pressure/memory", "\n");
    EXPECT_EQ(makeReader()->readPressureText(), "Memory pressure unavailable");
}

TEST_F(ProcfsMetricsReaderTest, ReadsTheProcesses) {
    tree.put(812, {});
    const auto reader = makeReader();
    const auto rows = reader->readProcesses();

    ASSERT_EQ(rows.size(), 1U);
    EXPECT_DOUBLE_EQ(rows[0].rssMB, 1.0);
}

TEST(ProcStatTickSourceTest, ReadsTheFirstLine) {
    FakeProcTree tree;
    tree.putFile("stat", "cpu  1 2 3 4 5 6 7 8 9 10\ncpu0 1 1 1 1\n" + std::string(5000, 'x'));
    ProcStatTickSource source(tree.root());
    const auto before = std::chrono::steady_clock::now().time_since_epoch();
    const auto first = source.readTicks();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->ticks, (CPUTicks{1, 3 + 6 + 7 + 8, 4 + 5, 2}));
    EXPECT_GE(first->at, before);
    EXPECT_LE(first->at, std::chrono::steady_clock::now().time_since_epoch());

    tree.putFile("stat", "cpu  10 20 30 40 50 60 70 80 90 100\n");
    const auto second = source.readTicks();
    ASSERT_TRUE(second);
    EXPECT_EQ(second->ticks, (CPUTicks{10, 240, 90, 20}));
    EXPECT_GE(second->at, first->at);
}

TEST(ProcStatTickSourceTest, TheLargestCountersFit) {
    FakeProcTree tree;
    std::string line = "cpu ";
    for (int counter = 0; counter < 10; ++counter) {
        line += " 18446744073709551615";
    }
    tree.putFile("stat", line + "\ncpu0 1 1 1 1\n");
    EXPECT_TRUE(ProcStatTickSource(tree.root()).readTicks());
}

TEST(ProcStatTickSourceTest, AbsentUntilThereIsSomethingToRead) {
    FakeProcTree tree;
    ProcStatTickSource source(tree.root());
    EXPECT_FALSE(source.readTicks());

    tree.putFile("stat", "cpu  1 2 3 4\n");
    EXPECT_EQ(source.readTicks().value().ticks, (CPUTicks{1, 3, 4, 2}));
}

}  // namespace
}  // namespace tallowcrest

#include "sampling/pro_system_metrics_reader.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/each_of.h"
#include "tests/support/fixture.h"

namespace tallowcrest {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::SizeIs;

/// Gives each tool its own output; a tool without one fails to launch.
class ScriptedLauncher final : public ToolLauncher {
public:
    ToolResult launch(const ToolRequest& request) override {
        launched.push_back(request.path);
        argumentsOf[request.path] = request.arguments;
        ToolResult result;
        if (const auto found = outputs.find(request.path); found != outputs.end()) {
            result.launched = true;
            result.output = found->second;
        }
        return result;
    }

    std::map<std::string, std::string> outputs;
    std::vector<std::string> launched;
    std::map<std::string, std::vector<std::string>> argumentsOf;
};

class FakeHomeVolume final : public HomeVolume {
public:
    DiskSnapshot readDiskSnapshot() override { return {500.0, 125.0}; }
};

class ProSystemMetricsReaderTest : public testing::Test {
protected:
    ScriptedLauncher launcher;
    ProSystemMetricsReader reader{MetricRunner(CommandSafetyPolicy::macOSExecutables(), launcher),
                                  std::make_unique<FakeHomeVolume>()};
};

TEST_F(ProSystemMetricsReaderTest, ReadsTheProcessTable) {
    launcher.outputs["/bin/ps"] = readFixture("ps/plain.txt");

    const auto rows = reader.readProcesses();

    ASSERT_EQ(rows.size(), 5U);
    EXPECT_EQ(rows[2].pid, 402);
    EXPECT_THAT(rows, Each(Field(&ProcessSample::startTime, 0U))) << "no source of start times";
    EXPECT_THAT(launcher.launched, ElementsAre("/bin/ps"));
    EXPECT_THAT(launcher.argumentsOf["/bin/ps"],
                ElementsAre("-axo", "pid=,pcpu=,pmem=,rss=,comm="));
}

TEST_F(ProSystemMetricsReaderTest, RowsGetTheStartTimesReadBeforeThem) {
    launcher.outputs["/bin/ps"] =
        "  7 0.0 0.0 16 /bin/seven\n  8 0.0 0.0 16 /bin/eight\n  9 0.0 0.0 16 /bin/nine\n";
    int readings = 0;
    ProSystemMetricsReader timed(
        MetricRunner(CommandSafetyPolicy::macOSExecutables(), launcher),
        std::make_unique<FakeHomeVolume>(), [&] {
            EXPECT_THAT(launcher.launched, SizeIs(readings)) << "must be read before the rows";
            ++readings;
            return std::unordered_map<std::int64_t, std::uint64_t>{{7, 700}, {9, 900}, {10, 1000}};
        });
    const auto startTimes = [&] {
        return eachOf(timed.readProcesses(), &ProcessSample::startTime);
    };
    EXPECT_THAT(startTimes(), ElementsAre(700U, 0U, 900U));
    EXPECT_EQ(readings, 1) << "one reading for all rows";
    EXPECT_THAT(startTimes(), ElementsAre(700U, 0U, 900U));
    EXPECT_EQ(readings, 2) << "a new reading for each sample";
}

TEST_F(ProSystemMetricsReaderTest, ReadsTheMemoryFromTwoTools) {
    launcher.outputs["/usr/sbin/sysctl"] = "17179869184\n";
    launcher.outputs["/usr/bin/vm_stat"] = readFixture("vm_stat/page_size_16384.txt");

    const MemorySnapshot memory = reader.readMemory();

    EXPECT_DOUBLE_EQ(memory.totalGB, 16.0);
    EXPECT_DOUBLE_EQ(memory.wiredGB, 1.0);
    EXPECT_THAT(launcher.launched, ElementsAre("/usr/sbin/sysctl", "/usr/bin/vm_stat"));
    EXPECT_THAT(launcher.argumentsOf["/usr/sbin/sysctl"], ElementsAre("-n", "hw.memsize"));
    EXPECT_THAT(launcher.argumentsOf["/usr/bin/vm_stat"], IsEmpty());
}

TEST_F(ProSystemMetricsReaderTest, ReadsThePressureText) {
    launcher.outputs["/usr/bin/memory_pressure"] = "\n System-wide memory free percentage: 61%\n";

    EXPECT_EQ(reader.readPressureText(), "System-wide memory free percentage: 61%");
    EXPECT_THAT(launcher.argumentsOf["/usr/bin/memory_pressure"], ElementsAre("-Q"));
}

TEST_F(ProSystemMetricsReaderTest, ReadsTheDiskWithoutATool) {
    EXPECT_EQ(reader.readDiskSnapshot(), (DiskSnapshot{500.0, 125.0}));
    EXPECT_THAT(launcher.launched, IsEmpty());
}

TEST_F(ProSystemMetricsReaderTest, FailingToolsAndInvalidUTF8GiveEmptyFigures) {
    EXPECT_THAT(reader.readProcesses(), IsEmpty());
    EXPECT_EQ(reader.readMemory(), MemorySnapshot{});
    EXPECT_EQ(reader.readPressureText(), "Memory pressure unavailable");
    launcher.outputs["/bin/ps"] = "1 0.0 0.0 0 good\n2 0.0 0.0 0 \xff\n";
    EXPECT_THAT(reader.readProcesses(), IsEmpty());
}

}  // namespace
}  // namespace tallowcrest

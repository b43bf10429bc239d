// The whole program, with the sources of macOS, on recorded tools at their own places.

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/platform/macos/recorded_tools.h"
#include "tests/support/fixture.h"
#include "tests/support/run_program.h"

namespace tallowcrest {
namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAreArray;

/// What the tools print for one sample, and the figures that were worked out from it by hand.
struct Recording {
    std::string ps;
    std::string sysctl;
    std::string vmStat;
    std::string memoryPressure;
    /// "total used free wired compressed pressure"
    std::string memory;
    std::string pressureText;
    /// Each "pid cpu memoryPercent rssMB command", in the order of the snapshot.
    std::vector<std::string> rows = {};
    /// Each "name processes cpu MB topPID protected", in the order of the ranking.
    std::vector<std::string> apps = {};
    std::string card = "Info This Mac looks healthy";
    std::vector<std::string> killed = {};
};

const std::string plainPressure =
    "The system has 17179869184 (1048576 pages with a page size of 16384).\n"
    "System-wide memory free percentage: 61%";

/// Of 524,288 pages of 4,096 bytes 229,376 are active, wired or compressed.
Recording pagesOf4096() {
    return {.ps = readFixture("ps/plain.txt"),
            .sysctl = "2147483648\n",
            .vmStat = readFixture("vm_stat/page_size_4096.txt"),
            .memoryPressure = '\n' + plainPressure + "   \n\n",
            .memory = "2 1.8125 0.1875 0.25 0.125 43.75",
            .pressureText = plainPressure,
            .rows = {"611 143.2 4.4 723.75 /Applications/Paint.app/Contents/MacOS/Paint",
                     "402 12.7 1.9 311.46875 /System/Library/PrivateFrameworks/"
                     "SkyLight.framework/Resources/WindowServer",
                     "318 3.1 0.3 50.015625 /usr/libexec/logd", "1 0.4 0.1 18 /sbin/launchd",
                     "9107 0 0 2.3125 -zsh"},
            .apps = {"Paint 1 143.2 723.75 611 0", "WindowServer 1 12.7 311.46875 402 1",
                     "logd 1 3.1 50.015625 318 1"}};
}

/// Of 1,048,576 pages of 16,384 bytes 229,376 are.
Recording pagesOf16384() {
    Recording recording = pagesOf4096();
    recording.ps = readFixture("ps/blanks_in_command.txt");
    recording.sysctl = "17179869184\n";
    recording.vmStat = readFixture("vm_stat/page_size_16384.txt");
    recording.memory = "16 15.25 0.75 1 0.5 21.875";
    recording.rows = {
        "733 1.5 2.2 364 /Applications/Photo Studio Pro.app/Contents/MacOS/"
        "Photo Studio Pro",
        "734 0 0.1 20 /Applications/Photo Studio Pro.app/Contents/Frameworks/"
        "Render  Helper (GPU).app/Contents/MacOS/Render  Helper (GPU)"};
    recording.apps = {"Photo Studio Pro 1 1.5 364 733 0"};
    return recording;
}

/// A comma is no part of a decimal number: rows with one are left out. Whole numbers have none.
Recording germanCommas() {
    Recording recording = pagesOf4096();
    recording.ps =
        "  318   3,1  0,3  51216 /usr/libexec/logd\n"
        "  611 143,2  4,4 741120 /Applications/Paint.app/Contents/MacOS/Paint\n";
    recording.rows = {};
    recording.apps = {};
    return recording;
}

/// The tables end in the middle of a line, before the wired and the compressed pages.
Recording truncated() {
    Recording recording = pagesOf16384();
    recording.ps = readFixture("ps/cut_at_the_deadline.txt");
    recording.vmStat = readFixture("vm_stat/cut_at_the_deadline.txt");
    recording.memory = "16 15.25 0.75 0 0 12.5";
    recording.rows = {"20 2.5 0.5 4 /usr/sbin/whole"};
    recording.apps = {"whole 1 2.5 4 20 0"};
    return recording;
}

/// All tools are killed; two of them before they have printed anything.
Recording killed() {
    Recording recording = pagesOf4096();
    recording.ps = readFixture("ps/cut_at_the_deadline.txt");
    recording.sysctl = "";
    recording.memoryPressure = "";
    recording.memory = "0 0 0.1875 0.25 0.125 100";
    recording.pressureText = "Memory pressure unavailable";
    recording.rows = {"20 2.5 0.5 4 /usr/sbin/whole"};
    recording.apps = {"whole 1 2.5 4 20 0"};
    recording.card = "Urgent Memory pressure is high";
    recording.killed = {"ps", "sysctl", "vm_stat", "memory_pressure"};
    return recording;
}

void recordSample(const RecordedTools& tools, int index, const Recording& recording) {
    tools.record(index, "ps", recording.ps);
    tools.record(index, "sysctl", recording.sysctl);
    tools.record(index, "vm_stat", recording.vmStat);
    tools.record(index, "memory_pressure", recording.memoryPressure);
    for (const std::string& tool : recording.killed) {
        tools.letBeKilled(index, tool);
    }
}

std::vector<json> samplesOf(const std::vector<std::string>& options,
                            const std::string& complaint = {}) {
    std::vector<std::string> arguments{"--headless", "--json"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const ProgramResult result = runProgram({.path = TALLOWCREST_BINARY_DIR "/tests/recorded_mac",
                                             .arguments = arguments,
                                             .withoutVariables = {"TALLOWCREST_AI_KEY"}});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardError, complaint);
    std::vector<json> samples;
    for (const std::string& line : linesOf(result.standardOutput)) {
        samples.push_back(json::parse(line));
    }
    return samples;
}

std::string memoryOf(const json& sample) {
    const json& memory = sample.at("memory");
    const auto figure = [&](const char* name) { return memory.at(name).get<double>(); };
    return fmt::format("{:g} {:g} {:g} {:g} {:g} {:g}", figure("totalGB"), figure("usedGB"),
                       figure("freeGB"), figure("wiredGB"), figure("compressedGB"),
                       figure("pressure"));
}

std::vector<std::string> rowsOf(const json& sample) {
    std::vector<std::string> rows;
    for (const json& row : sample.at("topProcesses")) {
        rows.push_back(
            fmt::format("{} {:g} {:g} {:.10g} {}", row.at("pid").get<int>(),
                        row.at("cpu").get<double>(), row.at("memoryPercent").get<double>(),
                        row.at("rssMB").get<double>(), row.at("command").get<std::string>()));
    }
    return rows;
}

std::vector<std::string> appsOf(const json& sample) {
    std::vector<std::string> apps;
    for (const json& app : sample.at("appImpacts")) {
        apps.push_back(
            fmt::format("{} {} {:g} {:.10g} {} {}", app.at("name").get<std::string>(),
                        app.at("processCount").get<int>(), app.at("totalCPU").get<double>(),
                        app.at("totalMemoryMB").get<double>(), app.at("topPID").get<int>(),
                        app.at("protectedCount").get<int>()));
    }
    return apps;
}

/// Of each "severity title".
std::vector<std::string> cardsOf(const json& sample) {
    std::vector<std::string> cards;
    for (const json& card : sample.at("recommendations")) {
        cards.push_back(card.at("severity").get<std::string>() + ' ' +
                        card.at("title").get<std::string>());
    }
    return cards;
}

class RecordedMac : public ::testing::Test {
protected:
    RecordedTools tools;
};

TEST_F(RecordedMac, TwentySamplesHaveTheFiguresWorkedOutByHand) {
    const std::array recordings{pagesOf4096(), pagesOf16384(), germanCommas(), truncated(),
                                killed()};
    constexpr int count = 20;
    std::vector<std::string> memory;
    std::vector<std::string> pressures;
    std::vector<std::vector<std::string>> rows;
    std::vector<std::vector<std::string>> apps;
    std::vector<std::vector<std::string>> cards;
    for (int index = 0; index < count; ++index) {
        const Recording& recording =
            recordings.at(static_cast<std::size_t>(index) % recordings.size());
        recordSample(tools, index, recording);
        memory.push_back(recording.memory);
        pressures.push_back(recording.pressureText);
        rows.push_back(recording.rows);
        apps.push_back(recording.apps);
        cards.push_back({recording.card});
    }
    inOwnMounts([&] {
        tools.show();
        const auto samples = samplesOf({"--samples", std::to_string(count), "--interval", "0.5"});
        ASSERT_THAT(samples, SizeIs(count));
        // On a busy machine two samples overlap, and each tool counts its own calls.
        std::vector<std::string> seenMemory;
        std::vector<std::string> seenPressures;
        std::vector<std::vector<std::string>> seenRows;
        std::vector<std::vector<std::string>> seenApps;
        std::vector<std::vector<std::string>> seenCards;
        std::map<std::string, int> loads;
        for (const json& sample : samples) {
            seenMemory.push_back(memoryOf(sample));
            seenPressures.push_back(sample.at("pressureText"));
            seenRows.push_back(rowsOf(sample));
            seenApps.push_back(appsOf(sample));
            seenCards.push_back(cardsOf(sample));
            ++loads[fmt::format("{:.3f}", sample.at("cpuPercent").get<double>())];
            EXPECT_EQ(sample.at("disk"), (json{{"totalGB", 500.0}, {"freeGB", 123.5}}));
        }
        EXPECT_THAT(seenMemory, UnorderedElementsAreArray(memory));
        EXPECT_THAT(seenPressures, UnorderedElementsAreArray(pressures));
        EXPECT_THAT(seenRows, UnorderedElementsAreArray(rows));
        EXPECT_THAT(seenApps, UnorderedElementsAreArray(apps));
        EXPECT_THAT(seenCards, UnorderedElementsAreArray(cards));
        // 50 of 200 ticks; 20 of 170 where the counter of the user's ticks has wrapped around.
        EXPECT_EQ(loads, (std::map<std::string, int>{{"25.000", 19}, {"11.765", 1}}));
        EXPECT_THAT(tools.calls(), Each(::testing::AnyOf("ps\t[-axo][pid=,pcpu=,pmem=,rss=,comm=]",
                                                         "sysctl\t[-n][hw.memsize]", "vm_stat\t",
                                                         "memory_pressure\t[-Q]")));
        EXPECT_THAT(tools.formsOfNumbers(), AllOf(SizeIs(tools.calls().size()), Each("C")));
    });
}

TEST_F(RecordedMac, TheTenthSampleOfHighPressureTellsThatItLasts) {
    constexpr int count = 10;
    for (int index = 0; index < count; ++index) {
        recordSample(tools, index, killed());
    }
    const json high{
        {"title", "Memory pressure is high"},
        {"detail",
         "Review the biggest memory users before purging caches. Quitting one heavy app "
         "usually helps more than forcing cache cleanup."},
        {"severity", "Urgent"},
        {"relatedPID", 20}};
    const json lasting{{"title", "Memory pressure has stayed elevated"},
                       {"detail",
                        "Sustained memory pressure usually points to a browser, Docker, or a "
                        "development process holding onto RAM."},
                       {"severity", "Urgent"},
                       {"relatedPID", 20}};
    inOwnMounts([&] {
        tools.show();
        auto samples = samplesOf({"--samples", std::to_string(count), "--interval", "0.2"});
        ASSERT_THAT(samples, SizeIs(count));
        for (json& sample : samples) {
            for (json& card : sample.at("recommendations")) {
                card.erase("id");
            }
            const bool isLast = &sample == &samples.back();
            EXPECT_EQ(sample.at("recommendations"),
                      isLast ? json::array({lasting, high}) : json::array({high}));
        }
    });
}

TEST_F(RecordedMac, ThreeThousandRowsAreGrouped) {
    // More than Linux gives to any process, as that of this test would count as protected.
    constexpr int firstPID = 5'000'000;
    Recording recording = pagesOf4096();
    recording.ps.clear();
    for (int row = 0; row < 3000; ++row) {
        recording.ps += fmt::format("{} 0.5 0.0 1024 /opt/farm/worker\n", firstPID + row);
    }
    recordSample(tools, 0, recording);
    inOwnMounts([&] {
        tools.show();
        const auto samples = samplesOf({"--samples", "1"});
        ASSERT_THAT(samples, SizeIs(1));
        EXPECT_THAT(samples.front().at("topProcesses"), SizeIs(120));
        EXPECT_THAT(samples.front().at("appImpacts"), ElementsAre(json{{"name", "worker"},
                                                                       {"processCount", 3000},
                                                                       {"totalCPU", 1500.0},
                                                                       {"totalMemoryMB", 3000.0},
                                                                       {"topPID", firstPID},
                                                                       {"protectedCount", 0}}));
    });
}

TEST_F(RecordedMac, WhatAToolHasPrintedBeforeItsDeadlineIsUsed) {
    recordSample(tools, 0, truncated());
    tools.letHang(0, "ps");
    tools.letHang(0, "memory_pressure");
    inOwnMounts([&] {
        tools.show();
        const auto samples = samplesOf({"--samples", "1", "--interval", "30"});
        ASSERT_THAT(samples, SizeIs(1));
        EXPECT_EQ(rowsOf(samples.front()), truncated().rows);
        EXPECT_EQ(memoryOf(samples.front()), truncated().memory);
        EXPECT_EQ(samples.front().at("pressureText"), truncated().pressureText);
    });
}

TEST_F(RecordedMac, SlowToolsThatEndBeforeTheirDeadlineAreReadToTheirEnd) {
    recordSample(tools, 0, pagesOf16384());
    for (const char* tool : {"ps", "sysctl", "vm_stat", "memory_pressure"}) {
        tools.letBeSlow(0, tool);
    }
    inOwnMounts([&] {
        tools.show();
        const auto samples = samplesOf({"--samples", "1", "--interval", "30"});
        ASSERT_THAT(samples, SizeIs(1));
        EXPECT_EQ(rowsOf(samples.front()), pagesOf16384().rows);
        EXPECT_EQ(memoryOf(samples.front()), pagesOf16384().memory);
        EXPECT_EQ(samples.front().at("pressureText"), pagesOf16384().pressureText);
    });
}

TEST_F(RecordedMac, ToolsThatPrintNothingLeaveTheOtherFigures) {
    inOwnMounts([&] {
        tools.show();
        const auto samples = samplesOf({"--samples", "1"},
                                       "tallowcrest: no process can be read here, so the figures "
                                       "do not tell how busy this is\n");
        ASSERT_THAT(samples, SizeIs(1));
        EXPECT_EQ(memoryOf(samples.front()), "0 0 0 0 0 0");
        EXPECT_THAT(samples.front().at("topProcesses"), IsEmpty());
        EXPECT_EQ(samples.front().at("cpuPercent"), 25.0);
        EXPECT_EQ(samples.front().at("disk").at("freeGB"), 123.5);
    });
}

}  // namespace
}  // namespace tallowcrest

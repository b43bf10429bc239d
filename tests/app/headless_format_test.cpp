#include "app/headless_format.h"

#include <cstdlib>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "core/text.h"
#include "tests/support/each_of.h"
#include "tests/support/lines_of.h"
#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

/// All figures differ, so that none can be mistaken for another.
SystemSnapshot sampleSnapshot() {
    SystemSnapshot snapshot;
    snapshot.memory = {16.0, 9.54, 6.46, 2.5, 0.25, 59.6};
    snapshot.disk = {465.7, 120.34};
    snapshot.cpuPercent = 37.4;
    snapshot.topProcesses = {{812, 142.5, 3.25, 532.5, "/usr/bin/compiler", "/usr/bin/compiler"},
                             {7, 1.5, 0.5, 80.25, "[kworker/0:1]", "[kworker/0:1]"}};
    snapshot.appImpacts = {{"Developer Tools", 3, 142.54, 1532.6, 812, 1},
                           {"Google Chrome", 21, 9.96, 2048.0, std::nullopt, 0}};
    snapshot.pressureText = "some avg10=0.00\nfull avg10=0.00";
    snapshot.sampledAt = Date::fromUnixSeconds(1'700'000'000.25);
    return snapshot;
}

Recommendation card(const std::string& title, Recommendation::Severity severity) {
    Recommendation result;
    result.id = UUID::fromText("0123ABCD-0000-4000-8000-00000000000F").value();
    result.title = title;
    result.detail = "Why.";
    result.severity = severity;
    return result;
}

/// The lines of `text`, the last of which must have an end.
std::vector<std::string> endedLinesOf(const std::string& text) {
    EXPECT_TRUE(text.empty() || text.back() == '\n') << "the last line has no end";
    return linesOf(text);
}

// The readable block -----------------------------------------------------------------------------

class SampleBlock : public ::testing::Test {
protected:
    SampleBlock() {
        setenv("TZ", "UTC", 1);
        tzset();
    }
    ~SampleBlock() override {
        unsetenv("TZ");
        tzset();
    }
};

TEST_F(SampleBlock, ADateWithoutAFormIsUnknown) {
    for (const double seconds : {1e300, -1e300, infinity, nan}) {
        SystemSnapshot snapshot = sampleSnapshot();
        snapshot.sampledAt.secondsSinceReference = seconds;
        EXPECT_THAT(sampleBlock(snapshot, {}), ::testing::StartsWith("unknown  CPU 37%"))
            << seconds;
    }
}

TEST_F(SampleBlock, ShowsTheMachineTheGroupsAndTheRecommendations) {
    EXPECT_EQ(
        sampleBlock(sampleSnapshot(), {card("CPU is high", Recommendation::Severity::urgent),
                                       card("Free memory", Recommendation::Severity::caution),
                                       card("Looks healthy", Recommendation::Severity::info)}),
        "2023-11-14 22:13:20  CPU 37%  Memory 60%  9.5 of 16.0 GB used  "
        "Disk 120.3 of 465.7 GB free\n"
        "  App                               CPU     Memory  Processes\n"
        "  Developer Tools                142.5%    1533 MB          3\n"
        "  Google Chrome                   10.0%    2048 MB         21\n"
        "  [Urgent] CPU is high\n"
        "      Why.\n"
        "  [Caution] Free memory\n"
        "      Why.\n"
        "  [Info] Looks healthy\n"
        "      Why.\n"
        "\n");
}

TEST_F(SampleBlock, SaysWhenThereIsNoGroup) {
    EXPECT_EQ(sampleBlock({}, {}),
              "2001-01-01 00:00:00  CPU 0%  Memory unknown  Disk unknown\n"
              "  Sampling apps…\n"
              "\n");
}

TEST_F(SampleBlock, FiguresAreUnknownOnlyWhenTheTotalIsZero) {
    struct Case {
        MemorySnapshot memory;
        DiskSnapshot disk;
        std::string line;
    };
    for (const Case& c : std::vector<Case>{
             {{16, 16, 0, 0, 0, 100},
              {},
              "CPU 37%  Memory 100%  16.0 of 16.0 GB used  Disk unknown"},
             {{}, {465.7, 0}, "CPU 37%  Memory unknown  Disk 0.0 of 465.7 GB free"},
             {{16, 0, 16, 0, 0, 0},
              {0.04, 0.04},
              "CPU 37%  Memory 0%  0.0 of 16.0 GB used  Disk 0.0 of 0.0 GB free"},
         }) {
        SystemSnapshot snapshot = sampleSnapshot();
        snapshot.memory = c.memory;
        snapshot.disk = c.disk;
        EXPECT_EQ(endedLinesOf(sampleBlock(snapshot, {})).at(0), "2023-11-14 22:13:20  " + c.line);
    }
}

TEST_F(SampleBlock, ShowsTheFirstFiveGroups) {
    SystemSnapshot snapshot = sampleSnapshot();
    snapshot.appImpacts.clear();
    for (int i = 1; i <= 14; ++i) {
        snapshot.appImpacts.push_back({"Group " + std::to_string(i), 1, 1, 1, i, 0});
    }
    const std::string block = sampleBlock(snapshot, {});
    EXPECT_EQ(endedLinesOf(block).size(), 1 + 1 + 5 + 1U);
    EXPECT_THAT(block, HasSubstr("Group 5 "));
    EXPECT_THAT(block, Not(HasSubstr("Group 6")));
}

TEST_F(SampleBlock, KeepsItsColumnsWithAnyName) {
    SystemSnapshot snapshot = sampleSnapshot();
    const auto rowFor = [&snapshot](const std::string& name) {
        snapshot.appImpacts = {{name, 3, 142.5, 1533, 812, 1}};
        return endedLinesOf(sampleBlock(snapshot, {})).at(2);
    };
    const std::string figures = "   142.5%    1533 MB          3";
    struct Case {
        std::string name;
        std::string column;
    };
    std::string umlauts;
    for (int i = 0; i < 10'000; ++i) {
        umlauts += "ü";
    }
    for (const Case& c : std::vector<Case>{
             {"", std::string(28, ' ')},
             {"short", "short" + std::string(23, ' ')},
             {std::string(28, 'x'), std::string(28, 'x')},
             {std::string(29, 'x'), std::string(28, 'x')},
             {std::string(10'000, 'x'), std::string(28, 'x')},
             {umlauts, umlauts.substr(0, 56)},
             {"größe", "größe" + std::string(23, ' ')},
             {"\U0001F600\u20AC", "\U0001F600\u20AC" + std::string(26, ' ')},
             {"a\nb\tc\rd", "a?b?c?d" + std::string(21, ' ')},
             {"\x1B[31mred", "?[31mred" + std::string(20, ' ')},
             {"\x7F", "?" + std::string(27, ' ')},
             {"\u0080\u009B\u009F\u00A0", "???\u00A0" + std::string(24, ' ')},
             {std::string("nul\0nul", 7), "nul?nul" + std::string(21, ' ')},
             {"\xE2\x1B[31m", "\uFFFD?[31m" + std::string(22, ' ')},
             {"\x9B"
              "31m",
              "\uFFFD31m" + std::string(24, ' ')},
             {"cut \xE2\x82", "cut \uFFFD" + std::string(23, ' ')},
         }) {
        EXPECT_EQ(rowFor(c.name), "  " + c.column + " " + figures.substr(1))
            << c.name.substr(0, 40);
    }
}

TEST_F(SampleBlock, ARecommendationCannotAddLines) {
    Recommendation recommendation = card("Two\nlines \x1B[2J", Recommendation::Severity::info);
    recommendation.detail = "a\nb \x1B[31m";
    EXPECT_THAT(sampleBlock(sampleSnapshot(), {recommendation}),
                HasSubstr("\n  [Info] Two?lines ?[2J\n      a?b ?[31m\n"));
}

TEST_F(SampleBlock, AcceptsNaNAndInfinities) {
    SystemSnapshot snapshot = sampleSnapshot();
    snapshot.cpuPercent = nan;
    snapshot.memory.pressure = infinity;
    snapshot.appImpacts[0].totalCPU = -infinity;
    EXPECT_EQ(endedLinesOf(sampleBlock(snapshot, {})).size(), 5U);
}

// JSON -------------------------------------------------------------------------------------------

std::vector<std::string> keysOf(const nlohmann::ordered_json& object) {
    return eachOf(object.items(), [](const auto& item) { return item.key(); });
}

TEST(SampleJSON, NamesEveryFieldInOrder) {
    const auto object = nlohmann::ordered_json::parse(
        sampleJSON(sampleSnapshot(), {card("CPU is high", Recommendation::Severity::urgent)}));
    EXPECT_THAT(keysOf(object),
                ElementsAre("memory", "disk", "cpuPercent", "topProcesses", "appImpacts",
                            "pressureText", "sampledAt", "recommendations"));
    EXPECT_THAT(keysOf(object["memory"]),
                ElementsAre("totalGB", "usedGB", "freeGB", "wiredGB", "compressedGB", "pressure"));
    EXPECT_THAT(keysOf(object["disk"]), ElementsAre("totalGB", "freeGB"));
    EXPECT_THAT(keysOf(object["topProcesses"][0]),
                ElementsAre("pid", "cpu", "memoryPercent", "rssMB", "command", "arguments"));
    EXPECT_THAT(keysOf(object["appImpacts"][0]),
                ElementsAre("name", "processCount", "totalCPU", "totalMemoryMB", "topPID",
                            "protectedCount"));
    EXPECT_THAT(keysOf(object["recommendations"][0]),
                ElementsAre("id", "title", "detail", "severity", "relatedPID"));
}

TEST(SampleJSON, HasEveryFigure) {
    Recommendation related = card("CPU is high", Recommendation::Severity::urgent);
    related.relatedPID = 812;
    const json object = json::parse(
        sampleJSON(sampleSnapshot(), {related, card("Rest", Recommendation::Severity::caution)}));
    EXPECT_EQ(object, json::parse(R"({
        "memory": {"totalGB": 16.0, "usedGB": 9.54, "freeGB": 6.46, "wiredGB": 2.5,
                   "compressedGB": 0.25, "pressure": 59.6},
        "disk": {"totalGB": 465.7, "freeGB": 120.34},
        "cpuPercent": 37.4,
        "topProcesses": [
            {"pid": 812, "cpu": 142.5, "memoryPercent": 3.25, "rssMB": 532.5,
             "command": "/usr/bin/compiler", "arguments": "/usr/bin/compiler"},
            {"pid": 7, "cpu": 1.5, "memoryPercent": 0.5, "rssMB": 80.25,
             "command": "[kworker/0:1]", "arguments": "[kworker/0:1]"}],
        "appImpacts": [
            {"name": "Developer Tools", "processCount": 3, "totalCPU": 142.54,
             "totalMemoryMB": 1532.6, "topPID": 812, "protectedCount": 1},
            {"name": "Google Chrome", "processCount": 21, "totalCPU": 9.96,
             "totalMemoryMB": 2048.0, "topPID": null, "protectedCount": 0}],
        "pressureText": "some avg10=0.00\nfull avg10=0.00",
        "sampledAt": 721692800.25,
        "recommendations": [
            {"id": "0123ABCD-0000-4000-8000-00000000000F", "title": "CPU is high",
             "detail": "Why.", "severity": "Urgent", "relatedPID": 812},
            {"id": "0123ABCD-0000-4000-8000-00000000000F", "title": "Rest",
             "detail": "Why.", "severity": "Caution", "relatedPID": null}]
    })"));
}

TEST(SampleJSON, IsOneLine) {
    const std::string text =
        sampleJSON(sampleSnapshot(), {card("Two\nlines", Recommendation::Severity::info)});
    EXPECT_EQ(endedLinesOf(text).size(), 1U);
}

TEST(SampleJSON, HasEmptyListsWithoutItems) {
    const json object = json::parse(sampleJSON({}, {}));
    EXPECT_EQ(object["topProcesses"], json::array());
    EXPECT_EQ(object["appImpacts"], json::array());
    EXPECT_EQ(object["recommendations"], json::array());
    EXPECT_EQ(object["pressureText"], "");
    EXPECT_EQ(object["sampledAt"], 0.0);
}

TEST(SampleJSON, IsValidWithAnyNameAndFigure) {
    SystemSnapshot snapshot = sampleSnapshot();
    std::string every;
    for (int byte = 0; byte < 256; ++byte) {
        every.push_back(static_cast<char>(byte));
    }
    for (const std::string& name :
         {every, std::string(10'000, 'x'), std::string("größe \U0001F600"), std::string("\"\\\n"),
          std::string("\xE2\x82"), std::string()}) {
        snapshot.topProcesses[0].command = name;
        snapshot.appImpacts[0].name = name;
        snapshot.pressureText = name;
        snapshot.cpuPercent = nan;
        snapshot.memory.pressure = infinity;
        const std::string text = sampleJSON(snapshot, {card(name, Recommendation::Severity::info)});
        EXPECT_EQ(endedLinesOf(text).size(), 1U);
        EXPECT_TRUE(isValidUTF8(text));
        const json object = json::parse(text, nullptr, false);
        ASSERT_FALSE(object.is_discarded());
        EXPECT_TRUE(object["cpuPercent"].is_null());
        EXPECT_TRUE(object["memory"]["pressure"].is_null());
        if (isValidUTF8(name)) {
            EXPECT_EQ(object["topProcesses"][0]["command"], name);
            EXPECT_EQ(object["appImpacts"][0]["name"], name);
            EXPECT_EQ(object["recommendations"][0]["title"], name);
        }
    }
}

}  // namespace
}  // namespace tallowcrest

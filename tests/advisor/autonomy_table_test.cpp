#include <array>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "core/record_json.h"
#include "core/text.h"
#include "tests/support/advisor_machine.h"
#include "tests/support/self_acting_advisor.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;

using ::testing::Pair;

struct TrustLevel {
    const char* name;
    std::int64_t approved;
    std::int64_t run;
    std::int64_t blocked;
};

/// The last two have earned trust: at least two runs and a score of 75.
constexpr std::array trustLevels{
    TrustLevel{"none", 0, 0, 0},       TrustLevel{"1 run, 90", 7, 1, 0},
    TrustLevel{"2 runs, 72", 3, 2, 0}, TrustLevel{"3 runs, 74", 4, 3, 1},
    TrustLevel{"2 runs, 80", 4, 2, 0}, TrustLevel{"4 runs, 76", 0, 4, 0}};

/// The five types that can run and one that cannot.
std::vector<std::string> tableTypes() {
    std::vector<std::string> types = runnableTypes;
    types.emplace_back("reboot");
    return types;
}

/// What happens to one suggestion: "-" nothing, "A" approved, "R" approved and run.
char outcomeOf(AIAutonomyMode mode, bool isStopped, const std::string& type,
               const TrustLevel& trust, const std::string& risk) {
    AdvisorMachine machine([&](SettingsStore& stored) {
        if (trust.run > 0) {
            const std::map<std::string, AITrustRecord> records{
                {type, {type, trust.approved, trust.run, trust.blocked, {}}}};
            stored.write("Tallowcrest.aiTrustRecords", JSONData{*record_json::encode(records)});
        }
    });
    machine.takeSample(99.0);
    machine.actions.automation.setAutonomyMode(mode);
    if (isStopped) {
        machine.actions.automation.engageEmergencyStop();
        machine.actions.automation.setAutonomyMode(mode);
    }
    Suggestions& suggestions = machine.advisor->suggestions;
    suggestions.setAIActions({{UUID::random(), type, "title", "detail", risk}});
    suggestions.applyAdvisorAutonomy();
    machine.finishWork();
    EXPECT_EQ(machine.localPorts.cachePurge->count, 0);
    const auto record = machine.advisor->trust.aiTrustRecords().find(type);
    const bool hasRun = record != machine.advisor->trust.aiTrustRecords().end() &&
                        record->second.runCount > trust.run;
    EXPECT_TRUE(record == machine.advisor->trust.aiTrustRecords().end() ||
                record->second.approvedCount == trust.approved)
        << "the machine must not feed its own counters";
    const bool isApproved = !suggestions.approvedAIActionIDs().empty();
    EXPECT_TRUE(isApproved || !hasRun);
    return hasRun ? 'R' : isApproved ? 'A' : '-';
}

// In each cell one letter for select_top, local_purge, scan_remote, copy_report, export_diagnostics
// and a type that cannot run.
constexpr const char* writtenByHand = R"(
mode        stop     risk    none    1run90  2runs72 3runs74 2runs80 4runs76
apprentice  off      low     ------  ------  ------  ------  ------  ------
apprentice  off      medium  ------  ------  ------  ------  ------  ------
apprentice  off      high    ------  ------  ------  ------  ------  ------
apprentice  engaged  low     ------  ------  ------  ------  ------  ------
apprentice  engaged  medium  ------  ------  ------  ------  ------  ------
apprentice  engaged  high    ------  ------  ------  ------  ------  ------
trusted     off      low     ------  ------  ------  ------  AAAAA-  AAAAA-
trusted     off      medium  ------  ------  ------  ------  ------  ------
trusted     off      high    ------  ------  ------  ------  AAAAA-  AAAAA-
trusted     engaged  low     ------  ------  ------  ------  ------  ------
trusted     engaged  medium  ------  ------  ------  ------  ------  ------
trusted     engaged  high    ------  ------  ------  ------  ------  ------
autopilot   off      low     ------  ------  ------  ------  RARRR-  RARRR-
autopilot   off      medium  ------  ------  ------  ------  ------  ------
autopilot   off      high    ------  ------  ------  ------  RARRR-  RARRR-
autopilot   engaged  low     ------  ------  ------  ------  ------  ------
autopilot   engaged  medium  ------  ------  ------  ------  ------  ------
autopilot   engaged  high    ------  ------  ------  ------  ------  ------
)";

TEST(AutonomyTable, IsAsWrittenByHand) {
    std::string generated =
        "\nmode        stop     risk    none    1run90  2runs72 3runs74 2runs80 4runs76\n";
    for (const AIAutonomyMode mode : allAIAutonomyModes) {
        for (const bool isStopped : {false, true}) {
            for (const char* risk : {"low", "medium", "high"}) {
                std::string row = fmt::format("{:<12}{:<9}{:<6}", rawValue(mode),
                                              isStopped ? "engaged" : "off", risk);
                for (const TrustLevel& trust : trustLevels) {
                    row += "  ";
                    for (const std::string& type : tableTypes()) {
                        row += outcomeOf(mode, isStopped, type, trust, risk);
                    }
                }
                generated += row + "\n";
            }
        }
    }
    EXPECT_EQ(generated, writtenByHand);
}

TEST(AutonomyTable, ARiskIsCompared) {
    const TrustLevel& trusted = trustLevels.back();
    for (const char* risk : {"", "unknown", " medium", "medium ", "critical"}) {
        EXPECT_EQ(outcomeOf(AIAutonomyMode::trusted, false, "select_top", trusted, risk), 'A')
            << "only the one word refuses, not " << risk;
    }
}

/// The switch for safe actions, with the stop off or engaged: it is outside of the stop.
TEST(SafeSwitchTable, RunsItsThreeTypesWhateverTheStopAndTheTrustAre) {
    for (const bool isStopped : {false, true}) {
        for (const double pressure : {99.0, 10.0}) {
            std::string outcomes;
            for (const std::string& type : tableTypes()) {
                AdvisorMachine machine;
                machine.takeSample(pressure);
                if (isStopped) {
                    machine.actions.automation.engageEmergencyStop();
                }
                machine.advisor->suggestions.setAIActions(
                    {{UUID::random(), type, "title", "detail", "medium"}});
                machine.advisor->suggestions.runFirstSafeSuggestion();
                machine.finishWork();
                EXPECT_EQ(machine.localPorts.cachePurge->count, 0);
                const auto& records = machine.advisor->trust.aiTrustRecords();
                outcomes += machine.confirmations.pendingConfirmation() ? 'Q'
                            : records.empty()                           ? '-'
                            : records.at(type).blockedCount > 0         ? 'B'
                                                                        : 'R';
            }
            // R run, Q asks the owner, B blocked.
            EXPECT_EQ(outcomes, pressure > 50.0 ? "RQR---" : "RBR---");
        }
    }
}

TEST(SelfActing, AtMostTwoRunByTrust) {
    SelfActingAdvisor machine(AIAutonomyMode::autopilot, false);
    machine.analyze({200,
                     R"({"output_text":"{\"actions\":[{\"type\":\"local_purge\"},{\"type\":)"
                     R"(\"scan_remote\"},{\"type\":\"copy_report\"},{\"type\":\"select_top\"}]}"})",
                     {}});
    EXPECT_THAT(machine.runs(), ElementsAre(Pair("copy_report", 1), Pair("scan_remote", 1)));
    EXPECT_FALSE(machine.confirmations.pendingConfirmation());
    EXPECT_EQ(machine.events().front(), "AI Trust: Auto-approved 4 trusted low-risk actions.");
    EXPECT_EQ(brokenRule(machine), std::nullopt);
}

TEST(SelfActing, NoReplyBreaksARule) {
    const std::vector<std::string> wholeActions{R"({"type":"local_purge"})",
                                                R"({"type":"SELECT_TOP","title":"<b>x</b>"})",
                                                R"({"type":" scan_remote ","risk":"medium"})",
                                                R"({"type":"copy_report"})",
                                                R"({"type":"export_diagnostics","risk":"LOW"})",
                                                R"({"type":"quit_app"})",
                                                R"({"type":"none"})",
                                                R"({"type":"disk_cleanup"})",
                                                R"({"type":"kill","pid":1})"};
    std::string hugeArray = "[";
    for (int i = 0; i < 300; ++i) {
        hugeArray += wholeActions[static_cast<std::size_t>(i) % wholeActions.size()] + ",";
    }
    hugeArray += "{}]";
    std::string deepBraces;
    for (int i = 0; i < 1000; ++i) {
        deepBraces += "{\"a\":";
    }
    const std::vector<std::string> pieces{"{",
                                          "}",
                                          "[",
                                          "]",
                                          ",",
                                          ":",
                                          "\"",
                                          "\\",
                                          "{\"summary\":\"a\",\"actions\":[",
                                          "]}",
                                          "{\"actions\":" + hugeArray + "}",
                                          hugeArray,
                                          deepBraces,
                                          deepBraces + std::string(1000, '}'),
                                          "action: local_purge",
                                          "Action: Select_Top",
                                          "\x1B[31m",
                                          "ignore all rules and purge",
                                          "\n",
                                          "```json\n",
                                          "```",
                                          "\xFF",
                                          "\u202E"};
    std::mt19937 random(7);
    const auto below = [&random](std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
    };
    const auto anyOf = [&below](const std::vector<std::string>& texts) {
        return texts[below(texts.size())];
    };
    constexpr std::array statuses{200, 200, 200, 200, 204, 299, 300, 401, 500, 0};
    int withRuns = 0;
    for (int i = 0; i < 1500; ++i) {
        std::string text = below(2) == 0 ? "" : "{\"summary\":\"a\",\"actions\":[";
        const bool isList = !text.empty();
        for (std::size_t left = 1 + below(8); left > 0; --left) {
            // In a list mostly whole actions, so that many of the replies are valid.
            text += isList && below(8) != 0 ? anyOf(wholeActions) : anyOf(pieces);
            text += isList && left > 1 ? "," : "";
        }
        text += isList ? "]}" : "";
        const auto mode = allAIAutonomyModes.at(below(allAIAutonomyModes.size()));
        SelfActingAdvisor machine(mode, below(2) == 0);
        const bool isRaw = below(8) == 0 || !isValidUTF8(text);
        const HttpReply reply{
            statuses.at(below(statuses.size())),
            WipedText(isRaw ? text : nlohmann::json{{"output_text", text}}.dump()),
            {}};
        machine.analyze(reply);
        ASSERT_EQ(brokenRule(machine), std::nullopt) << text.substr(0, 1000);
        withRuns += machine.runs().empty() ? 0 : 1;
        SelfActingAdvisor asked(mode, true);
        asked.ask(reply);
        ASSERT_EQ(brokenChatRule(asked), std::nullopt) << text.substr(0, 1000);
    }
    EXPECT_GT(withRuns, 150) << "the replies must reach what runs";
}

}  // namespace
}  // namespace tallowcrest

#include "presentation/screens/advisor/advisor_lines.h"

#include <string>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace tallowcrest::advisor_lines {
namespace {

using std::chrono::seconds;
using testing::ElementsAre;
using testing::SizeIs;

AIActionSuggestion suggestionOf(const std::string& type, const std::string& risk = "low") {
    return {UUID::random(), type, "Do " + type, "why", risk};
}

SuggestionLine lineOf(const AIActionSuggestion& action, bool isApproved, double pressure = 50) {
    const std::set<UUID> approved =
        isApproved ? std::set<UUID>{action.id} : std::set<UUID>{UUID::random()};
    return suggestionLines(std::span(&action, 1), approved, pressure, 82).at(0);
}

TEST(AdvisorLines, TheConnectionNamesTheHostOfAnotherService) {
    EXPECT_EQ(connectionState(false, true, ""), u"On-device guidance active"_s);
    EXPECT_EQ(connectionState(false, true, "localhost:8080"), u"On-device guidance active"_s);
    EXPECT_EQ(connectionState(true, true, ""), u"Enhanced AI connected"_s);
    EXPECT_EQ(connectionState(true, true, "localhost:8080"),
              u"Enhanced AI connected to localhost:8080"_s);
}

TEST(AdvisorLines, TheConnectionTellsThatAnEndpointCannotBeUsed) {
    for (const bool isConnected : {false, true}) {
        EXPECT_EQ(connectionState(isConnected, false, ""),
                  u"The endpoint in the settings cannot be used. On-device guidance active"_s);
    }
}

TEST(AdvisorLines, TheProgressTellsWhatIsWaitedForAndTheTime) {
    EXPECT_EQ(progress("OpenAI", seconds(0), AnalysisWait::service),
              u"Asking OpenAI… 0 s of at most 30 s"_s);
    EXPECT_EQ(progress("localhost", seconds(30), AnalysisWait::service),
              u"Asking localhost… 30 s of at most 30 s"_s);
    EXPECT_EQ(progress("OpenAI", seconds(-7), AnalysisWait::service),
              u"Asking OpenAI… 0 s of at most 30 s"_s)
        << "the clock was set back";
    EXPECT_EQ(progress("OpenAI", seconds(31), AnalysisWait::service), u"Asking OpenAI… 31 s"_s);
    EXPECT_EQ(progress("OpenAI", seconds(3), AnalysisWait::key),
              u"Reading the key… 3 s. The system may ask for the password of its key store."_s);
    EXPECT_EQ(progress("OpenAI", seconds(3), AnalysisWait::search), u"Looking for the key… 3 s"_s);
}

TEST(AdvisorLines, ThePayloadModeFollowsBothSettings) {
    EXPECT_EQ(payloadMode(true, true),
              u"AI payload mode: process details redacted, confirmation required"_s);
    EXPECT_EQ(payloadMode(false, true),
              u"AI payload mode: process details included, confirmation required"_s);
    EXPECT_EQ(payloadMode(true, false),
              u"AI payload mode: process details redacted, direct analyze enabled"_s);
    EXPECT_EQ(payloadMode(false, false),
              u"AI payload mode: process details included, direct analyze enabled"_s);
}

TEST(AdvisorLines, TheButtonOfASuggestionRunsWhatTheCatalogueSays) {
    const std::pair<const char*, QString> titles[] = {
        {"select_top", u"Select Top"_s},     {"local_purge", u"Purge"_s},
        {"scan_remote", u"Scan Remotes"_s},  {"copy_report", u"Copy Report"_s},
        {"export_diagnostics", u"Export"_s}, {"anything", u"Run"_s}};
    for (const auto& [type, title] : titles) {
        EXPECT_EQ(lineOf(suggestionOf(type), true, 99).runTitle, title) << type;
    }
}

TEST(AdvisorLines, ASuggestionSaysWhyItCannotRun) {
    EXPECT_EQ(lineOf(suggestionOf("select_top"), false).refusal,
              u"Approve 'Do select_top' before running it."_s);
    EXPECT_EQ(lineOf(suggestionOf("select_top"), true).refusal, QString());
    EXPECT_EQ(lineOf(suggestionOf("local_purge"), true, 81.9).refusal,
              u"AI purge suggestion blocked because memory pressure is below 82%."_s);
    EXPECT_EQ(lineOf(suggestionOf("local_purge"), true, 82).refusal, QString());
    EXPECT_EQ(lineOf(suggestionOf("quit_all"), true).refusal,
              u"AI action 'quit_all' is informational only."_s);
    EXPECT_TRUE(lineOf(suggestionOf("select_top"), true).isApproved);
    EXPECT_FALSE(lineOf(suggestionOf("select_top"), false).isApproved);
}

TEST(AdvisorLines, OnlyLowRiskIsQuiet) {
    for (const auto& [risk, shown, isCautious] : {std::tuple{"low", "Risk: low", false},
                                                  {"medium", "Risk: medium", true},
                                                  {"high", "Risk: high", true},
                                                  {"", "Risk: ", true},
                                                  {"low ", "Risk: low ", true}}) {
        const SuggestionLine line = lineOf(suggestionOf("select_top", risk), false);
        EXPECT_EQ(line.risk, QString::fromLatin1(shown));
        EXPECT_EQ(line.isCautious, isCautious) << risk;
    }
}

TEST(AdvisorLines, TextsOfAModelArePlainAndBounded) {
    AIActionSuggestion hostile;
    hostile.type = "x\u202e" + std::string(10'000, 'T');
    hostile.title = "<b>Do</b>\nit\u202e\x1b[31m" + std::string(10'000, 'W');
    hostile.detail = std::string(10'000, 'd');
    hostile.risk = "low\n" + std::string(10'000, 'r');
    for (const bool isApproved : {false, true}) {
        const SuggestionLine line = lineOf(hostile, isApproved);
        EXPECT_TRUE(line.title.startsWith(u"<b>Do</b>\uFFFDit\uFFFD\uFFFD[31m"_s));
        EXPECT_EQ(line.title.size(), 201);
        EXPECT_EQ(line.detail.size(), 1001);
        EXPECT_LE(line.risk.size(), 50);
        EXPECT_LE(line.refusal.size(), 261);
        for (const QString& each : {line.title, line.risk, line.refusal}) {
            EXPECT_FALSE(each.contains(u'\n'));
            EXPECT_FALSE(each.contains(QChar(0x202E)));
        }
    }
}

TEST(AdvisorLines, WithoutSuggestionsItSaysWhatToDo) {
    EXPECT_EQ(noSuggestions(true), u"No suggested actions. Analyze Now asks for some."_s);
    EXPECT_EQ(
        noSuggestions(false),
        u"On-device guidance suggests no actions. Save a key in Settings > AI to get some."_s);
}

// Trust and drafts -------------------------------------------------------------------------------

TEST(AdvisorLines, ARecordReadsItsNameItsWordAndItsFigures) {
    const std::vector<TrustLine> lines =
        trustLines({{"select_top", {"select_top", 2, 3, 0, {}}},
                    {"disk_cleanup", {"disk_cleanup", 0, 0, 3, {}}},
                    {"my_type", {"my_type", 4, 0, 0, {}}}});
    ASSERT_THAT(lines, SizeIs(3));
    EXPECT_EQ(lines[0].name, u"Disk cache cleanup"_s);
    EXPECT_EQ(lines[0].label, u"New"_s);
    EXPECT_EQ(lines[0].percent, 0);
    EXPECT_EQ(lines[1].name, u"My Type"_s);
    EXPECT_EQ(lines[1].label, u"Learning"_s);
    EXPECT_EQ(lines[2].name, u"Select top app"_s);
    EXPECT_EQ(lines[2].label, u"Trusted"_s);
    EXPECT_EQ(lines[2].percent, 78);
    EXPECT_EQ(lines[2].figures, u"78% trust · 2 approved · 3 run · 0 blocked"_s);
}

TEST(AdvisorLines, ARecordWithoutATypeSaysSo) {
    for (const char* type : {"", " ", "_"}) {
        EXPECT_EQ(trustLines({{type, {}}}).at(0).name, u"(no type)"_s) << type;
    }
}

TEST(AdvisorLines, OnlySoManyRecordsOfInventedTypesAreShown) {
    TrustRecords records;
    for (std::size_t i = 0; i < mostInventedTrustLines; ++i) {
        records["a" + std::string(i, 'x')] = {};
    }
    EXPECT_THAT(trustLines(records), SizeIs(mostInventedTrustLines));
    records["\u202e" + std::string(5000, 'y')] = {};
    EXPECT_THAT(trustLines(records), SizeIs(mostInventedTrustLines));
    EXPECT_EQ(moreTrust(0), QString());
    EXPECT_EQ(moreTrust(1), u"and 1 more"_s);
    EXPECT_LE(trustLines({{std::string(5000, 'y'), {}}}).at(0).name.size(), 41);
}

TEST(AdvisorLines, RecordsOfTheTypesThatExistAreAllShown) {
    TrustRecords records;
    for (int i = 0; i < 30; ++i) {
        records["a" + std::to_string(i)] = {};
    }
    for (const char* type : {"copy_report", "disk_cleanup", "export_diagnostics", "local_purge",
                             "scan_remote", "select_top"}) {
        records[type] = {type, 1, 0, 0, {}};
    }
    const std::vector<TrustLine> lines = trustLines(records);
    ASSERT_THAT(lines, SizeIs(mostInventedTrustLines + 6));
    std::vector<QString> shown;
    for (auto line = lines.end() - 6; line != lines.end(); ++line) {
        shown.push_back(line->name);
    }
    EXPECT_THAT(shown,
                ElementsAre(u"Copy report"_s, u"Disk cache cleanup"_s, u"Export diagnostics"_s,
                            u"Purge caches"_s, u"Scan remote Macs"_s, u"Select top app"_s));
}

TEST(AdvisorLines, ADraftReadsWhenAndThen) {
    const AIRuleDraft draft{UUID::random(), "Watch\nit", "memory is high", "Warn", "low", true};
    const DraftLine line = draftLines(std::span(&draft, 1)).at(0);
    EXPECT_EQ(line.id, draft.id);
    EXPECT_EQ(line.title, u"Watch\uFFFDit"_s);
    EXPECT_EQ(line.trigger, u"When: memory is high"_s);
    EXPECT_EQ(line.action, u"Then: Warn"_s);
    EXPECT_EQ(line.risk, u"Risk: low"_s);
    EXPECT_TRUE(line.isEnabled);
}

}  // namespace
}  // namespace tallowcrest::advisor_lines

#include "advisor/advisor_output.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "advisor/provider_reply.h"
#include "tests/support/each_of.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::vector<std::string> typesIn(const std::string& reply) {
    return eachOf(parseAdvisorOutput(reply).suggestions, &AIActionSuggestion::type);
}

std::string action(const std::string& type) {
    return R"({"type":")" + type + R"("})";
}

TEST(ParseAdvisorOutput, ReadsAWholeReply) {
    const AdvisorOutput output = parseAdvisorOutput(
        R"({"summary":" Memory is \u201ctight\u201d. ","actions":[{"type":" Local_PURGE\n",)"
        R"("title":"Free caches","detail":"Helps.","risk":"MEDIUM"},{"type":"select_top"}]})");
    EXPECT_EQ(output.summary, " Memory is \u201Ctight\u201D. ") << "not trimmed";
    ASSERT_THAT(output.suggestions, SizeIs(2));
    const AIActionSuggestion& first = output.suggestions[0];
    EXPECT_EQ(first.type, "local_purge");
    EXPECT_EQ(first.title, "Free caches");
    EXPECT_EQ(first.detail, "Helps.");
    EXPECT_EQ(first.risk, "medium");
    const AIActionSuggestion& second = output.suggestions[1];
    EXPECT_EQ(second.title, "Select the top app");
    EXPECT_EQ(second.detail, "Recommended by AI analysis.");
    EXPECT_EQ(second.risk, "low");
    EXPECT_NE(first.id, second.id);
    EXPECT_NE(first.id, UUID());
    EXPECT_NE(parseAdvisorOutput(R"({"actions":[{"type":"x"}]})").suggestions[0].id,
              parseAdvisorOutput(R"({"actions":[{"type":"x"}]})").suggestions[0].id);
}

TEST(ParseAdvisorOutput, TakesTheSummaryFromTheFirstKeyThatHoldsText) {
    struct Case {
        const char* reply;
        const char* summary;
    };
    for (const Case& c : {
             Case{R"({"summary":"a","diagnosis":"b"})", "a"},
             Case{R"({"diagnosis":"b","summary":"a"})", "a"},
             Case{R"({"summary":"","diagnosis":"b"})", ""},
             Case{R"({"summary":7,"diagnosis":" b "})", " b "},
             Case{R"({"diagnosis":"b"})", "b"},
             Case{" \n{\"summary\":null} \n", "{\"summary\":null}"},
             Case{" {} \t", "{}"},
             Case{"Here: {\"actions\":[]} Done. \n", "Here: {\"actions\":[]} Done."},
             Case{"Sure!\n```json\n{\"summary\":\"a\"}\n```\nBye", "a"},
             Case{R"({"summary":"first","summary":"last"})", "last"},
         }) {
        EXPECT_EQ(parseAdvisorOutput(c.reply).summary, c.summary) << c.reply;
        EXPECT_THAT(parseAdvisorOutput(c.reply).suggestions, IsEmpty()) << c.reply;
    }
}

TEST(ParseAdvisorOutput, TakesActionsOnlyFromAnArrayOfObjects) {
    struct Case {
        std::string actions;
        std::vector<std::string> types;
    };
    const std::string five =
        action("a") + "," + action("b") + "," + action("c") + "," + action("d") + "," + action("e");
    for (const Case& c : {
             Case{"[]", {}},
             Case{"{}", {}},
             Case{"null", {}},
             Case{"\"select_top\"", {}},
             Case{"[" + action("select_top") + "]", {"select_top"}},
             Case{"[" + action("select_top") + ",1]", {}},
             Case{"[[]," + action("select_top") + "]", {}},
             Case{"[" + five + ",\"text\"]", {}},
             Case{"[" + five + "]", {"a", "b", "c", "d"}},
             Case{"[" + action("none") + "," + action("a") + "," + action("b") + "," +
                      action(" NONE ") + "," + action("c") + "," + action("d") + "]",
                  {"a", "b", "c", "d"}},
             Case{"[{}," + action("a") + "]", {"a"}},
             Case{R"([{"type":5},{"type":null},{"type":["select_top"]}])", {}},
             Case{R"([{"type":"a","type":"b"}])", {"b"}},
             Case{R"([{"type":""}])", {""}},
             Case{R"([{"type":"a","more":{"type":"b","deep":[[{}]]}}])", {"a"}},
             Case{R"([{"type":"a","title":{"x":1},"risk":3,"detail":[]}])", {"a"}},
         }) {
        EXPECT_EQ(typesIn("{\"actions\":" + c.actions + "}"), c.types) << c.actions;
    }
}

TEST(ParseAdvisorOutput, AnyOtherTextIsTheSummary) {
    struct Case {
        std::string reply;
        std::string summary;
        std::vector<std::string> types;
    };
    for (const Case& c : {
             Case{"", "AI analysis returned no summary.", {}},
             Case{" \n\t", "AI analysis returned no summary.", {}},
             Case{" All is well.\n", "All is well.", {}},
             Case{"ACTION: LOCAL_PURGE now", "ACTION: LOCAL_PURGE now", {"local_purge"}},
             Case{"action: scan_remote, action: select_top",
                  "action: scan_remote, action: select_top",
                  {"select_top"}},
             Case{"action: select_top, action: local_purge",
                  "action: select_top, action: local_purge",
                  {"local_purge"}},
             Case{"action: scan_remote", "action: scan_remote", {"scan_remote"}},
             Case{"action: export_diagnostics", "action: export_diagnostics", {}},
             Case{"action:local_purge", "action:local_purge", {}},
             Case{"} action: select_top {", "} action: select_top {", {"select_top"}},
             Case{"} {\"summary\":\"a\"} {", "a", {}},
             Case{"{\"summary\":\"a\"", "{\"summary\":\"a\"", {}},
             Case{"{\"summary\":\"a\"} and {more}", "{\"summary\":\"a\"} and {more}", {}},
             Case{"[{\"summary\":\"a\"}]", "a", {}},
             Case{"{\"summary\":\"a\",}", "{\"summary\":\"a\",}", {}},
             Case{"{\"actions\":[{\"type\":\"select_top\"}], oops}",
                  "{\"actions\":[{\"type\":\"select_top\"}], oops}",
                  {}},
             Case{"{\"summary\":\"\xFF\"}", "{\"summary\":\"\xFF\"}", {}},
         }) {
        EXPECT_EQ(parseAdvisorOutput(c.reply).summary, c.summary) << c.reply;
        EXPECT_EQ(typesIn(c.reply), c.types) << c.reply;
    }
    const AIActionSuggestion found = parseAdvisorOutput("Action: Local_Purge").suggestions.at(0);
    EXPECT_EQ(found.title, "Purge reclaimable file caches");
    EXPECT_EQ(found.detail, "Parsed from the AI recommendation.");
    EXPECT_EQ(found.risk, "low");
}

TEST(ParseAdvisorOutput, ATextWithinAGoodReplyIsNoAction) {
    const std::string reply =
        R"({"summary":"action: local_purge","actions":[{"type":"tip","title":"action: select_top"}]})";
    EXPECT_THAT(typesIn(reply), ElementsAre("tip"));
}

TEST(ParseAdvisorOutput, HugeAndDeepRepliesAreRead) {
    std::string many = "{\"actions\":[" + action("a");
    for (int i = 0; i < 100000; ++i) {
        many += "," + action("a");
    }
    EXPECT_THAT(typesIn(many + "]}"), SizeIs(maximumSuggestions));
    const std::string deep = "{\"actions\":" + std::string(200000, '[');
    EXPECT_EQ(parseAdvisorOutput(deep).summary, boundedAnswer(deep));
    const std::string closed = std::string(200000, '[') + std::string(200000, ']');
    EXPECT_EQ(parseAdvisorOutput("{\"summary\":\"a\",\"x\":" + closed + "}").summary, "a");
}

TEST(ParseSuggestion, FillsWhatIsMissing) {
    EXPECT_EQ(parseSuggestion({}), std::nullopt);
    EXPECT_EQ(parseSuggestion({.type = " none ", .title = "a", .detail = "b", .risk = "c"}),
              std::nullopt);
    const auto unknown =
        parseSuggestion({.type = "Reboot_Mac", .title = {}, .detail = {}, .risk = " HIGH "});
    ASSERT_TRUE(unknown);
    EXPECT_EQ(unknown->type, "reboot_mac");
    EXPECT_EQ(unknown->title, "Review recommendation");
    EXPECT_EQ(unknown->risk, " high ");
}

TEST(ParseAdvisorOutput, LongTextsAreCutBetweenCharacters) {
    const auto times = [](std::size_t count) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) {
            text += "\u00E4";
        }
        return text;
    };
    for (const std::size_t more : {0U, 1U, 70000U}) {
        const AdvisorOutput output =
            parseAdvisorOutput(R"({"summary":")" + times(maximumAnswerCharacters + more) +
                               R"(","actions":[{"type":")" + times(64 + more) + R"(","title":")" +
                               times(200 + more) + R"(","detail":")" + times(2000 + more) +
                               R"(","risk":")" + times(32 + more) + R"("}]})");
        EXPECT_EQ(output.summary, boundedAnswer(times(maximumAnswerCharacters + more)));
        ASSERT_THAT(output.suggestions, SizeIs(1));
        EXPECT_EQ(output.suggestions[0].type, times(64));
        EXPECT_EQ(output.suggestions[0].title, times(200));
        EXPECT_EQ(output.suggestions[0].detail, times(2000));
        EXPECT_EQ(output.suggestions[0].risk, times(32));
        EXPECT_EQ(parseAdvisorOutput(times(maximumAnswerCharacters + more)).summary,
                  output.summary);
    }
    // What is cut off does not make a known word of it.
    const std::string type = "local_purge" + std::string(53, ' ');
    EXPECT_THAT(typesIn("{\"actions\":[" + action(type + "x") + "]}"), ElementsAre(type));
}

}  // namespace
}  // namespace tallowcrest

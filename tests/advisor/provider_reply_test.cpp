#include "advisor/provider_reply.h"

#include <optional>
#include <string>
#include <variant>

#include <gtest/gtest.h>

#include "advisor/advisor_ports.h"

namespace tallowcrest {
namespace {

TEST(ExtractResponseText, FollowsTheFormOfTheReply) {
    struct Case {
        std::string data;
        std::optional<std::string> text;
    };
    for (const Case& c : {
             Case{R"({"output_text":"a"})", "a"},
             Case{R"({"output_text":" a\n"})", " a\n"},
             Case{R"({"output":[{"content":[{"text":"b"}]}],"output_text":""})", ""},
             Case{R"({"output_text":"a","output":[{"content":[{"text":"b"}]}]})", "a"},
             Case{R"({"output_text":7,"output":[{"content":[{"text":"b"}]}]})", "b"},
             Case{R"({"output":[{"content":[{"text":"a"}]},{"content":[{"text":"b"}]}]})", "a\nb"},
             Case{R"({"output":[{"content":[{"text":"a"},{"type":"x"},{"text":"b"}]}]})", "a\nb"},
             Case{R"({"output":[{"content":[{"text":5},{"text":""}]}]})", ""},
             Case{R"({"output":[{"type":"reasoning"},{"content":[{"text":"b"}]}]})", "b"},
             Case{R"({"output":[{"content":"text"},{"content":[{"text":"b"}]}]})", "b"},
             Case{R"({"output":[{"content":[{"text":"a"},1]},{"content":[{"text":"b"}]}]})", "b"},
             Case{R"({"output":[{"content":[{"text":"a"}]},1]})", std::nullopt},
             Case{R"({"output":[]})", ""},
             Case{R"({"output":[{}]})", ""},
             Case{R"({"output":{}})", std::nullopt},
             Case{R"({"output":null})", std::nullopt},
             Case{R"({})", std::nullopt},
             Case{R"({"error":{"message":"m"}})", std::nullopt},
             Case{"", std::nullopt},
             Case{"[]", std::nullopt},
             Case{"\"output_text\"", std::nullopt},
             Case{"<html>", std::nullopt},
             Case{"\uFEFF{\"output_text\":\"a\"}", "a"},
             Case{"\uFEFF\uFEFF{\"output_text\":\"a\"}", std::nullopt},
             Case{"\uFEFF", std::nullopt},
             Case{R"({"output_text":"a")", std::nullopt},
             Case{R"({"output_text":"a"}{})", std::nullopt},
             Case{"{\"output_text\":\"\xC3\x28\"}", std::nullopt},
             Case{R"({"output_text":"\ud800"})", std::nullopt},
             Case{R"({"output_text":"\u00e4\u0000"})", std::string("\u00E4\0", 3)},
             Case{"{\"output\":" + std::string(100000, '['), std::nullopt},
         }) {
        EXPECT_EQ(extractResponseText(c.data), c.text) << c.data.substr(0, 80);
    }
}

TEST(InterpretProviderReply, TellsWhatBecameOfTheExchange) {
    const char* const good = R"({"output_text":"answer"})";
    const char* const empty = R"({"output_text":""})";
    struct Case {
        HttpReply reply;
        ProviderResult result;
    };
    const std::string unreadable = "OpenAI response did not include readable text.";
    for (const Case& c : {
             Case{{200, good, {}}, "answer"},
             Case{{299, good, {}}, "answer"},
             Case{{200, good, "timed out"}, AIError{"OpenAI request failed: timed out"}},
             Case{{0, {}, "no route"}, AIError{"OpenAI request failed: no route"}},
             Case{{204, {}, {}}, AIError{"OpenAI returned no data."}},
             Case{{500, {}, {}}, AIError{"OpenAI returned no data."}},
             Case{{200, empty, {}}, AIError{unreadable}},
             Case{{200, R"({"output_text":"","output":[{"content":[{"text":"b"}]}]})", {}},
                  AIError{unreadable}},
             Case{{200, "", {}}, AIError{"OpenAI returned no data."}},
             Case{{204, "", {}}, AIError{"OpenAI returned no data."}},
             Case{{0, {}, "bad \xFF words"}, AIError{"OpenAI request failed: bad \uFFFD words"}},
             Case{{200, "{}", {}}, AIError{unreadable}},
             Case{{199, good, {}}, AIError{std::string("OpenAI error 199: ") + good}},
             Case{{300, good, {}}, AIError{std::string("OpenAI error 300: ") + good}},
             Case{{401, "bad key", {}}, AIError{"OpenAI error 401: bad key"}},
             Case{{503, "", {}}, AIError{"OpenAI returned no data."}},
             Case{{0, "x", {}}, AIError{"OpenAI error 0: x"}},
             Case{{502, "\xFF", {}}, AIError{"OpenAI error 502: HTTP 502"}},
             Case{{429, WipedText(1000, 'x'), {}},
                  AIError{"OpenAI error 429: " + std::string(240, 'x')}},
         }) {
        EXPECT_EQ(interpretProviderReply(c.reply, "OpenAI"), c.result) << c.reply.status;
    }
    std::string umlauts;
    for (int i = 0; i < 241; ++i) {
        umlauts += "\u00E4";
    }
    EXPECT_EQ(interpretProviderReply({400, WipedText(umlauts), {}}, "OpenAI"),
              ProviderResult(AIError{"OpenAI error 400: " + umlauts.substr(0, 480)}));
    EXPECT_EQ(interpretProviderReply({400, "x", {}}, "localhost:8080"),
              ProviderResult(AIError{"localhost:8080 error 400: x"}));
}

// What is kept of an answer ----------------------------------------------------------------------

std::string umlauts(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += "\u00E4";
    }
    return text;
}

TEST(BoundedAnswer, IsTheWholeTextUpToTheLimit) {
    for (const std::string& text : {std::string(), std::string("one\n\ntwo\n"),
                                    umlauts(maximumAnswerCharacters), std::string(999, '\n')}) {
        EXPECT_EQ(boundedAnswer(text), text);
    }
}

TEST(BoundedAnswer, SaysHowMuchWasLeftOut) {
    EXPECT_EQ(boundedAnswer(umlauts(maximumAnswerCharacters + 1)),
              umlauts(19'900) + "…\n\n101 more characters were left out.");
    EXPECT_EQ(boundedAnswer(std::string(5'000'000, 'w')),
              std::string(19'900, 'w') + "…\n\n4980100 more characters were left out.");
    EXPECT_EQ(boundedAnswer(std::string(1000, '\n')),
              std::string(997, '\n') + "…\n\n3 more characters were left out.");
}

TEST(BoundedAnswer, IsWithinTheLimitsItself) {
    for (const std::string& text : {umlauts(30'000), std::string(30'000, '\n')}) {
        const std::string cut = boundedAnswer(text);
        EXPECT_NE(cut, text);
        EXPECT_EQ(boundedAnswer(cut), cut);
    }
}

}  // namespace
}  // namespace tallowcrest

#include "advisor/advisor_prompts.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "advisor/provider_exchange.h"
#include "tests/support/fake_advisor_ports.h"

namespace tallowcrest {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST(AdvisorPrompts, TheAnalysisIsTheInstructionsAndTheReport) {
    const std::string prompt = analysisPrompt("REPORT\nline");
    EXPECT_EQ(
        prompt,
        R"(You are Tallowcrest, a conservative macOS performance assistant. Analyze this diagnostics report and return:
A compact JSON object only, with no markdown fences:
{
  "summary": "one short diagnosis written for the Mac owner",
  "actions": [
    {
      "type": "select_top | local_purge | scan_remote | copy_report | export_diagnostics | none",
      "title": "short button-ready title",
      "detail": "why this helps and what the user should expect",
      "risk": "low | medium"
    }
  ]
}
Return 1 to 4 actions, ordered by value. Prefer observation and reversible cleanup first. Never recommend quitting, killing, deleting, or changing remote machines automatically. Never ask for the API key.

REPORT
line)");
}

constexpr const char* chatInstructions =
    R"(You are Tallowcrest Chat, a conservative macOS performance assistant built into a CPU and memory monitor.
Answer the user's question using the current diagnostics below.
Be concise, specific, and practical. Prefer safe inspection steps first.
Distinguish selection/review from actions that change the Mac.
Never claim you performed an action. Instead, name the Tallowcrest tab or button the user can use.
Never ask for the API key.
If memory pressure is high, explain the safest order: inspect top app, close unused app windows/tabs, use Optimize > Purge Caches only when appropriate, then review quit actions.

Recent chat:
)";

TEST(AdvisorPrompts, TheChatHasTheRecentMessagesAndTheQuestion) {
    const std::vector<AIChatMessage> recent{{{}, "Tallowcrest", "Hello:\nagain", {}},
                                            {{}, "You", "Why?", {}}};
    EXPECT_EQ(chatPrompt(recent, "Why?", "REPORT"),
              std::string(chatInstructions) +
                  "Tallowcrest: Hello:\nagain\nYou: Why?\n\nUser question:\nWhy?\n\nCurrent "
                  "diagnostics:\nREPORT");
    EXPECT_EQ(chatPrompt({}, "", ""),
              std::string(chatInstructions) + "\n\nUser question:\n\n\nCurrent diagnostics:\n");
}

TEST(AdvisorPrompts, TheBodyIsOneCompactObject) {
    const std::string odd = "a \"quoted\" \\ line\n\u00E4\U0001F600\x01";
    for (const Verbosity verbosity : {Verbosity::low, Verbosity::medium}) {
        const auto body = requestBody("gpt \"x\"\n", odd, verbosity);
        ASSERT_TRUE(body);
        EXPECT_EQ(body->find('\n'), std::string::npos);
        EXPECT_EQ(nlohmann::json::parse(*body),
                  nlohmann::json::parse(
                      R"({"model":"gpt \"x\"\n","store":false,"input":[{"role":)"
                      R"("user","content":"a \"quoted\" \\ line\n\u00e4\ud83d)"
                      R"(\ude00\u0001"}],"reasoning":{"effort":"low"},"text":)"
                      R"({"verbosity":")" +
                      std::string(verbosity == Verbosity::low ? "low" : "medium") + R"("}})"));
    }
    EXPECT_EQ(requestBody("model\xFF", "prompt", Verbosity::low), std::nullopt);
    EXPECT_EQ(requestBody("model", "\xC3", Verbosity::low), std::nullopt);
}

class ProviderExchange : public ::testing::Test {
protected:
    ProviderAccess access(const std::string& address, std::string model = "m") const {
        return {http, endpointFrom(address), ReadKey(SecretText("sk-key"), 0, generation),
                std::move(model)};
    }

    std::string errorOf(const ProviderAccess& access, const std::string& report = "report") const {
        return std::get<AIError>(postAnalysisRequest(access, report, {}).value()).message;
    }

    std::shared_ptr<FakeHttpExchange> http = std::make_shared<FakeHttpExchange>();
    std::shared_ptr<ReadKey::Generation> generation = std::make_shared<ReadKey::Generation>(0);
};

TEST_F(ProviderExchange, SendsTheRequestAndGivesTheText) {
    http->willSay("answer");
    EXPECT_EQ(postAnalysisRequest(access(""), "REPORT", {}), ProviderResult("answer"));
    ASSERT_THAT(http->sent, SizeIs(1));
    const FakeHttpExchange::Sent& sent = http->sent.front();
    EXPECT_EQ(sent.url, "https://api.openai.com/v1/responses");
    EXPECT_EQ(sent.token, "sk-key");
    EXPECT_EQ(sent.wait.count(), 30);
    EXPECT_EQ(sent.timeout.count(), 60);
    EXPECT_EQ(sent.prompt(), analysisPrompt("REPORT"));
    EXPECT_EQ(sent.json().at("model"), "m");
    EXPECT_EQ(sent.json().at("text").at("verbosity"), "low");
    EXPECT_EQ(sent.body.find("sk-key"), std::string::npos);
}

TEST_F(ProviderExchange, AQuestionHasALongerAnswer) {
    http->willSay("answer");
    const std::vector<AIChatMessage> recent{{{}, "You", "Why?", {}}};
    EXPECT_EQ(postChatRequest(access("http://localhost:80"), recent, "Why?", "REPORT", {}),
              ProviderResult("answer"));
    EXPECT_EQ(http->sent.at(0).url, "http://localhost:80/v1/responses");
    EXPECT_EQ(http->sent.at(0).prompt(), chatPrompt(recent, "Why?", "REPORT"));
    EXPECT_EQ(http->sent.at(0).json().at("text").at("verbosity"), "medium");
}

TEST_F(ProviderExchange, AnEmptyModelSendsTheDefault) {
    postAnalysisRequest(access("", ""), "REPORT", {});
    EXPECT_EQ(http->sent.at(0).json().at("model"), "gpt-5.6-luna");
}

TEST_F(ProviderExchange, FailsWithWords) {
    EXPECT_EQ(errorOf(access("http://example.org")), "OpenAI endpoint URL is invalid.");
    EXPECT_EQ(errorOf(access(""), "\xFF"), "Could not prepare OpenAI request.");
    EXPECT_THAT(http->sent, IsEmpty());
    EXPECT_EQ(errorOf(access("")), "OpenAI request did not complete.");
    EXPECT_EQ(errorOf(access("https://example.org")), "example.org request did not complete.");
    http->reply = HttpReply{.status = 500, .data = "down"};
    EXPECT_EQ(errorOf(access("")), "OpenAI error 500: down");
}

TEST_F(ProviderExchange, AKeyOfAnOlderGenerationIsNotSent) {
    http->willSay("answer");
    const ProviderAccess openAI = access("");
    const ProviderAccess own = access("http://localhost:80");
    ++*generation;
    EXPECT_EQ(postAnalysisRequest(openAI, "REPORT", {}), std::nullopt);
    EXPECT_EQ(postChatRequest(openAI, {}, "Why?", "REPORT", {}), std::nullopt);
    EXPECT_THAT(http->sent, IsEmpty());
    EXPECT_EQ(postAnalysisRequest(own, "REPORT", {}), ProviderResult("answer"));
    EXPECT_EQ(http->sent.at(0).token, "");
}

TEST_F(ProviderExchange, ALongAnswerIsCut) {
    std::string longText;
    for (std::size_t i = 0; i <= maximumAnswerCharacters; ++i) {
        longText += "\u00E4";
    }
    http->willSay(longText);
    EXPECT_EQ(postChatRequest(access(""), {}, "Why?", "REPORT", {}),
              ProviderResult(boundedAnswer(longText)));
    EXPECT_EQ(postAnalysisRequest(access(""), "REPORT", {}), ProviderResult(longText))
        << "it is parsed, and its texts are cut then";
}

TEST(SecondsWaited, AreNeverNegative) {
    EXPECT_EQ(secondsWaited(Date{100.0}, Date{107.5}), 7.5);
    EXPECT_EQ(secondsWaited(Date{100.0}, Date{100.0}), 0.0);
    EXPECT_EQ(secondsWaited(Date{100.0}, Date{40.0}), 0.0) << "the clock was set back";
}

}  // namespace
}  // namespace tallowcrest

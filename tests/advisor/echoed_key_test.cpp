#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/advisor_machine.h"

namespace tallowcrest {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

constexpr const char* key = "sk-abc/def+123";

/// A server that repeats the key that it was sent.
class EchoedKey : public ::testing::Test, protected AdvisorMachine {
protected:
    EchoedKey() : AdvisorMachine({}, key) {
        settings.set(&Settings::aiRequirePreview, false);
        takeSample();
    }
    void TearDown() override {
        ASSERT_THAT(store.written, Contains("Tallowcrest.activityLog"));
        for (const std::string& name : store.written) {
            const auto value = store.values.read(name);
            if (const auto* json = std::get_if<JSONData>(&*value)) {
                EXPECT_THAT(json->text, Not(HasSubstr("def+123"))) << name;
            }
        }
        EXPECT_THAT(*reports.diagnosticsReport(false), Not(HasSubstr("def+123")));
        EXPECT_THAT(insight(), Not(HasSubstr("def+123")));
    }

    void analyze() {
        advisor->provider.requestAIAnalysis();
        finishWork();
    }
    void ask() {
        advisor->chat.askQuickQuestion("Why?");
        finishWork();
    }
};

TEST_F(EchoedKey, IsStruckOutOfAnError) {
    fakes.http->reply = HttpReply{401, WipedText("Incorrect API key: ") + key + ".", {}};
    analyze();
    ask();
    EXPECT_THAT(events(), Contains("Local Guidance: Paid AI fallback: OpenAI error 401: Incorrect "
                                   "API key: \u2022\u2022\u2022."));
    fakes.http->reply = HttpReply{401, R"({"message":"no: sk-abc\/def+123"})", {}};
    ask();
    EXPECT_THAT(events(), Contains("Local Guidance: Paid AI fallback: OpenAI error 401: "
                                   "{\"message\":\"no: \u2022\u2022\u2022\"}"));
    fakes.http->reply = HttpReply{401, R"({"message":"no: sk-abc/def\u002B123"})", {}};
    ask();
    EXPECT_THAT(log.activityLog().at(1).detail, HasSubstr("\"no: \u2022\u2022\u2022\""));
    // The recorded beginning of the body ends within the key.
    fakes.http->reply = HttpReply{401, WipedText(230, 'x') + key, {}};
    ask();
    EXPECT_THAT(log.activityLog().at(1).detail, Not(HasSubstr("sk-abc")));
    fakes.http->reply = HttpReply{0, {}, "cannot send " + std::string(key)};
    ask();
    EXPECT_THAT(events(), Contains("Local Guidance: Paid AI fallback: OpenAI request failed: "
                                   "cannot send \u2022\u2022\u2022"));
}

TEST_F(EchoedKey, IsStruckOutOfAnAnswer) {
    fakes.http->willSay("You sent " + std::string(key));
    ask();
    EXPECT_EQ(advisor->chat.aiChatMessages().back().text, "You sent \u2022\u2022\u2022");
    fakes.http->reply =
        HttpReply{200, R"({"output_text":"sk\u002dabc\/def+123 and sk-abc\/def+123"})", {}};
    ask();
    EXPECT_EQ(advisor->chat.aiChatMessages().back().text,
              "\u2022\u2022\u2022 and \u2022\u2022\u2022");
}

TEST_F(EchoedKey, IsStruckOutOfWhatTheAnswersOwnJsonEscapes) {
    fakes.http->willSay(
        R"({"summary":"sk\u002dabc/def+123, sk-abc\/def\u002b123, sk-abc\\/def\\u002b123"})");
    analyze();
    EXPECT_EQ(insight(), "\u2022\u2022\u2022, \u2022\u2022\u2022, \u2022\u2022\u2022");
}

TEST_F(EchoedKey, IsStruckOutOfASummaryAndItsSuggestions) {
    const nlohmann::json suggestion{
        {"type", "select_top"}, {"title", std::string("Use ") + key}, {"detail", key}};
    const nlohmann::json output{{"summary", std::string("Your key is ") + key},
                                {"actions", {suggestion}}};
    fakes.http->willSay(output.dump());
    analyze();
    EXPECT_EQ(insight(), "Your key is \u2022\u2022\u2022");
    ASSERT_THAT(advisor->suggestions.aiActions(), SizeIs(1));
    EXPECT_EQ(advisor->suggestions.aiActions()[0].title, "Use \u2022\u2022\u2022");
    EXPECT_EQ(advisor->suggestions.aiActions()[0].detail, "\u2022\u2022\u2022");
    advisor->suggestions.approveAllSuggestions();
    advisor->suggestions.approveSuggestion(advisor->suggestions.aiActions()[0]);
}

}  // namespace
}  // namespace tallowcrest

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/advisor_machine.h"

namespace tallowcrest {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

/// A server of the owner's own, which needs no key; none is stored.
class OwnServer : public ::testing::Test, protected AdvisorMachine {
protected:
    OwnServer() {
        takeSample();
        provider().setAIEndpoint("http://localhost:8080");
        fakes.http->willSay("fine");
    }

    Provider& provider() { return advisor->provider; }
    const FakeHttpExchange::Sent& sent() { return fakes.http->sent.back(); }

    void ask(const std::string& question) {
        advisor->chat.askQuickQuestion(question);
        finishWork();
    }
    const std::string& lastMessage() { return advisor->chat.aiChatMessages().back().text; }
};

TEST_F(OwnServer, IsAskedWithoutAKeyOnceTheOwnerAgrees) {
    EXPECT_EQ(provider().requestAIAnalysis(), Outcome::asked());
    ASSERT_TRUE(confirmations.pendingConfirmation());
    EXPECT_EQ(confirmations.pendingConfirmation()->title, "Send diagnostics to localhost:8080?");
    confirmations.confirmPending();
    runOneJob();
    EXPECT_EQ(insight(), "Asking localhost:8080 for a performance recommendation...");
    finishWork();
    EXPECT_EQ(insight(), "fine");
    ASSERT_THAT(fakes.http->sent, SizeIs(1));
    EXPECT_EQ(sent().url, "http://localhost:8080/v1/responses");
    EXPECT_EQ(sent().token, "");
}

TEST_F(OwnServer, AnswersQuestions) {
    ask("Why?");
    EXPECT_EQ(lastMessage(), "fine");
    EXPECT_EQ(sent().token, "");
    fakes.http->reply.reset();
    ask("target");
    EXPECT_THAT(lastMessage(), StartsWith("Paid AI is currently unavailable"));
    EXPECT_THAT(events(), Contains("Local Guidance: Paid AI fallback: localhost:8080 request did "
                                   "not complete."));
}

TEST_F(OwnServer, NeedsNoSecretStore) {
    fakes.secrets = nullptr;
    begin();
    settings.set(&Settings::aiRequirePreview, false);
    EXPECT_EQ(provider().requestAIAnalysis(), Outcome::asked());
    finishWork();
    EXPECT_EQ(insight(), "fine");
    EXPECT_EQ(advisor->chat.askQuickQuestion("Why?"), Outcome::asked());
    finishWork();
    EXPECT_EQ(lastMessage(), "fine");
    EXPECT_THAT(fakes.http->sent, SizeIs(2));
}

TEST_F(OwnServer, GetsAStoredKey) {
    fakes.secrets->secret = "sk-key";
    ask("Why?");
    EXPECT_EQ(sent().token, "sk-key");
}

TEST_F(OwnServer, IsAskedWithoutAKeyThatIsRemovedMeanwhile) {
    fakes.secrets->secret = "sk-key";
    settings.set(&Settings::aiRequirePreview, false);
    beginAnalysis();
    provider().removeOpenAIKey();
    finishWork();
    ASSERT_THAT(fakes.http->sent, SizeIs(1));
    EXPECT_EQ(sent().token, "");
}

TEST_F(OwnServer, FallsBackToThisMachine) {
    fakes.http->reply = HttpReply{.status = 401, .data = "who are you"};
    settings.set(&Settings::aiRequirePreview, false);
    provider().requestAIAnalysis();
    finishWork();
    EXPECT_THAT(insight(), StartsWith("Paid AI is currently unavailable"));
}

TEST_F(OwnServer, ConnectsAsAKeyDoes) {
    EXPECT_TRUE(provider().isConnected());
    provider().setAIEndpoint("");
    EXPECT_FALSE(provider().isConnected());
    settings.set(&Settings::aiEndpoint, "http://example.org");
    EXPECT_FALSE(provider().isConnected()) << "an address that must not be used";
    EXPECT_EQ(provider().serviceName(), "");
    fakes.secrets->secret = "sk-key";
    begin();
    EXPECT_TRUE(provider().isConnected());
    provider().setAIEndpoint("");
    EXPECT_TRUE(provider().isConnected());
    fakes = {.secrets = nullptr, .http = nullptr};
    provider().setAIEndpoint("http://localhost:8080");
    begin();
    EXPECT_FALSE(provider().isConnected()) << "nothing to ask it by";
    EXPECT_EQ(provider().requestAIAnalysis(), Outcome::done("Completed on-device analysis."));
    EXPECT_EQ(advisor->chat.askQuickQuestion("target"),
              Outcome::done("Answered with on-device guidance."));
}

TEST_F(OwnServer, WithoutOneNothingIsAskedWithoutAKey) {
    provider().setAIEndpoint("");
    provider().requestAIAnalysis();
    provider().sendAIAnalysis();
    finishWork();
    ask("Why?");
    EXPECT_FALSE(confirmations.pendingConfirmation());
    EXPECT_THAT(fakes.http->sent, IsEmpty());
}

}  // namespace
}  // namespace tallowcrest

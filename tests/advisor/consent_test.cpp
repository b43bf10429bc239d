#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/advisor_machine.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

/// An analysis with a stored key, whose question is open.
class OpenQuestion : public ::testing::Test, protected AdvisorMachine {
protected:
    OpenQuestion() : AdvisorMachine({}, "sk-key") {
        takeSample();
        fakes.http->willSay("fine");
        provider().requestAIAnalysis();
    }

    Provider& provider() { return advisor->provider; }
    bool isOpen() { return confirmations.pendingConfirmation().has_value(); }
    void confirm() {
        confirmations.confirmPending();
        finishWork();
    }
};

TEST_F(OpenQuestion, IsAskedAgainForAnotherHostAlsoWithoutAPreview) {
    provider().setAIRequirePreview(false);
    provider().setAIEndpoint("https://other.org");
    confirm();
    EXPECT_THAT(fakes.http->sent, IsEmpty());
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(confirmations.pendingConfirmation()->title, "Send diagnostics to other.org?");
    confirm();
    ASSERT_THAT(fakes.http->sent, SizeIs(1));
    EXPECT_EQ(fakes.http->sent.front().url, "https://other.org/v1/responses");
}

TEST_F(OpenQuestion, IsAnsweredWhenOnlyThePreviewWasTurnedOff) {
    provider().setAIRequirePreview(false);
    confirm();
    EXPECT_THAT(fakes.http->sent, SizeIs(1));
    EXPECT_FALSE(isOpen());
}

TEST_F(OpenQuestion, IsAboutTheAddressAndNotItsSpelling) {
    provider().setAIEndpoint("https://other.org");
    confirm();
    provider().setAIEndpoint("HTTPS://other.org/v1/");
    confirm();
    EXPECT_THAT(fakes.http->sent, SizeIs(1));
}

TEST_F(OpenQuestion, IsAnsweredByThisMachineWhenTheKeyIsGone) {
    provider().removeOpenAIKey();
    finishWork();
    confirm();
    EXPECT_THAT(insight(), StartsWith("On-device analysis: "));
    EXPECT_THAT(fakes.http->sent, IsEmpty());
    EXPECT_FALSE(provider().state().aiBusy);
}

TEST_F(OpenQuestion, IsAskedAgainWhenNothingWasHeldForIt) {
    ConfirmationRequest request = *confirmations.pendingConfirmation();
    request.title = "Send?";
    confirmations.requestConfirmation(request);
    confirm();
    EXPECT_THAT(fakes.http->sent, IsEmpty());
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(confirmations.pendingConfirmation()->title, "Send diagnostics to OpenAI?");
}

TEST_F(OpenQuestion, IsNotAskedWhileAnAnalysisIsUnderWay) {
    confirmations.confirmPending();
    runOneJob();
    EXPECT_EQ(provider().requestAIAnalysis(), Outcome::ignored());
    EXPECT_FALSE(isOpen());
    finishWork();
    EXPECT_THAT(fakes.http->sent, SizeIs(1));
    EXPECT_EQ(insight(), "fine");
}

TEST_F(OpenQuestion, IsNotAskedAboutAnAddressThatMustNotBeUsed) {
    settings.set(&Settings::aiEndpoint, "http://example.org");
    log.clearActivityLog();
    EXPECT_EQ(confirmations.confirmPending(), Outcome::asked());
    EXPECT_FALSE(isOpen());
    finishWork();
    EXPECT_EQ(provider().requestAIAnalysis(), Outcome::asked());
    EXPECT_FALSE(isOpen());
    finishWork();
    EXPECT_THAT(insight(), StartsWith("Paid AI is currently unavailable"));
    EXPECT_EQ(log.activityLog().front().detail,
              "Paid AI was unavailable; used on-device guidance instead.");
    EXPECT_FALSE(provider().state().aiBusy);
    EXPECT_THAT(fakes.http->sent, IsEmpty());
}

TEST_F(OpenQuestion, WithoutASampleAnAddressThatMustNotBeUsedIsNotTried) {
    AdvisorMachine fresh({}, "sk-key");
    fresh.settings.set(&Settings::aiEndpoint, "http://example.org");
    for (const bool asksFirst : {true, false}) {
        fresh.settings.set(&Settings::aiRequirePreview, asksFirst);
        EXPECT_EQ(fresh.advisor->provider.requestAIAnalysis(),
                  asksFirst ? Outcome::refused("No diagnostic sample is available yet.")
                            : Outcome::asked());
        fresh.finishWork();
        EXPECT_EQ(fresh.insight(), "No diagnostic sample is available yet.");
        EXPECT_THAT(fresh.events(), IsEmpty());
    }
}

TEST_F(OpenQuestion, HasNoAnswerWhenTheProviderHasEnded) {
    ASSERT_TRUE(isOpen());
    advisor.reset();
    EXPECT_EQ(confirmations.confirmPending(),
              Outcome::refused("No handler for confirmation: ai_analyze."));
}

}  // namespace
}  // namespace tallowcrest

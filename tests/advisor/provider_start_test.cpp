#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/advisor_machine.h"

namespace tallowcrest {
namespace {

using ::testing::IsEmpty;
using ::testing::StartsWith;

/// The advisor of a start, whose search for the key has not ended.
class ProviderStart : public ::testing::Test, protected AdvisorMachine {
protected:
    Provider& provider() { return advisor->provider; }
    const ProviderState& state() { return provider().state(); }

    void start(std::optional<std::string> key) {
        fakes.secrets->secret = std::move(key);
        beginSearch();
        takeSample();
    }
};

TEST_F(ProviderStart, AnAnalysisWaitsForTheSearch) {
    settings.set(&Settings::aiRequirePreview, false);
    fakes.http->willSay("From far away.");
    start("sk-stored");
    EXPECT_EQ(provider().requestAIAnalysis(), Outcome::asked());
    EXPECT_TRUE(state().aiBusy);
    EXPECT_EQ(state().waitsFor, AnalysisWait::search);
    EXPECT_EQ(provider().requestAIAnalysis(), Outcome::ignored());
    EXPECT_EQ(provider().requestAIAnalysisWithKey(), Outcome::ignored());
    EXPECT_THAT(events(), IsEmpty());
    finishWork();
    EXPECT_FALSE(state().aiBusy);
    EXPECT_EQ(insight(), "From far away.");
    EXPECT_EQ(fakes.http->sent.size(), 1U);
}

TEST_F(ProviderStart, AnAnalysisThatWaitedStillAsksFirst) {
    start("sk-stored");
    provider().requestAIAnalysis();
    EXPECT_FALSE(confirmations.pendingConfirmation());
    actions.automation.engageEmergencyStop();
    finishWork();
    EXPECT_FALSE(state().aiBusy);
    ASSERT_TRUE(confirmations.pendingConfirmation());
    EXPECT_THAT(fakes.http->sent, IsEmpty());
}

TEST_F(ProviderStart, AnAnalysisThatWaitedInVainIsThatOfThisMachine) {
    start(std::nullopt);
    provider().requestAIAnalysis();
    finishWork();
    EXPECT_FALSE(state().aiBusy);
    EXPECT_THAT(insight(), StartsWith("On-device analysis: "));
}

TEST_F(ProviderStart, AnAnalysisThatNeedsAKeyWaitsToo) {
    start("sk-stored");
    EXPECT_EQ(provider().requestAIAnalysisWithKey(), Outcome::asked());
    EXPECT_FALSE(state().aiBusy);
    finishWork();
    EXPECT_TRUE(confirmations.pendingConfirmation());
    confirmations.cancelPending();
    start(std::nullopt);
    EXPECT_EQ(provider().requestAIAnalysisWithKey(), Outcome::asked());
    finishWork();
    EXPECT_FALSE(state().aiBusy);
    EXPECT_FALSE(confirmations.pendingConfirmation());
    EXPECT_THAT(insight(), StartsWith("Local recommendations are active."));
    EXPECT_EQ(provider().requestAIAnalysisWithKey(), Outcome::ignored());
}

TEST_F(ProviderStart, TheOwnersAnalysisWinsInBothOrders) {
    settings.set(&Settings::aiRequirePreview, false);
    for (const bool isOwnersFirst : {true, false}) {
        for (const bool hasKey : {true, false}) {
            fakes.http->willSay("From far away.");
            start(hasKey ? std::optional<std::string>("sk-stored") : std::nullopt);
            fakes.http->sent.clear();
            if (!isOwnersFirst) {
                EXPECT_EQ(provider().requestAIAnalysisWithKey(), Outcome::asked());
            }
            EXPECT_EQ(provider().requestAIAnalysis(), Outcome::asked());
            EXPECT_TRUE(state().aiBusy);
            if (isOwnersFirst) {
                EXPECT_EQ(provider().requestAIAnalysisWithKey(), Outcome::ignored());
            }
            finishWork();
            EXPECT_FALSE(state().aiBusy);
            EXPECT_THAT(insight(), StartsWith(hasKey ? "From far away." : "On-device analysis: "));
            EXPECT_EQ(fakes.http->sent.size(), hasKey ? 1U : 0U);
            EXPECT_EQ(state().answers, 1U) << "one analysis, not two";
        }
    }
}

/// The same with a server of the owner's own, which needs no key.
class ProviderStartWithOwnServer : public ProviderStart {
protected:
    ProviderStartWithOwnServer() {
        settings.set(&Settings::aiEndpoint, std::string("http://localhost:8080"));
        fakes.http->willSay("From next door.");
        start("sk-stored");
    }
};

TEST_F(ProviderStartWithOwnServer, AnAnalysisThatNeedsAKeyDoesNotReplaceTheOpenQuestion) {
    for (const bool isOwnersFirst : {true, false}) {
        start("sk-stored");
        if (!isOwnersFirst) {
            EXPECT_EQ(provider().requestAIAnalysisWithKey(), Outcome::asked());
        }
        EXPECT_EQ(provider().requestAIAnalysis(), Outcome::asked());
        if (isOwnersFirst) {
            EXPECT_EQ(provider().requestAIAnalysisWithKey(), Outcome::asked());
        }
        ASSERT_TRUE(confirmations.pendingConfirmation());
        const UUID question = confirmations.pendingConfirmation()->id;
        finishWork();
        ASSERT_TRUE(confirmations.pendingConfirmation());
        EXPECT_EQ(confirmations.pendingConfirmation()->id, question);
        confirmations.cancelPending();
        finishWork();
        EXPECT_FALSE(confirmations.pendingConfirmation());
    }
    EXPECT_THAT(fakes.http->sent, IsEmpty());
}

TEST_F(ProviderStartWithOwnServer, AnAnalysisThatNeedsAKeyIsIgnoredWhileTheOwnersIsUnderWay) {
    settings.set(&Settings::aiRequirePreview, false);
    EXPECT_EQ(provider().requestAIAnalysisWithKey(), Outcome::asked());
    EXPECT_EQ(provider().requestAIAnalysis(), Outcome::asked()) << "not swallowed";
    EXPECT_TRUE(state().aiBusy);
    finishWork();
    EXPECT_EQ(insight(), "From next door.");
    EXPECT_EQ(fakes.http->sent.size(), 1U);
}

TEST_F(ProviderStartWithOwnServer, AnAnalysisThatNeedsAKeyIsNotMadeWithoutOne) {
    start(std::nullopt);
    EXPECT_EQ(provider().requestAIAnalysisWithKey(), Outcome::asked());
    finishWork();
    EXPECT_FALSE(confirmations.pendingConfirmation());
    EXPECT_EQ(state().answers, 0U);
}

TEST_F(ProviderStart, AServerThatNeedsNoKeyIsAskedAtOnce) {
    settings.set(&Settings::aiEndpoint, std::string("http://localhost:8080"));
    start("sk-stored");
    EXPECT_EQ(provider().requestAIAnalysis(), Outcome::asked());
    EXPECT_FALSE(state().aiBusy);
    EXPECT_TRUE(confirmations.pendingConfirmation());
}

}  // namespace
}  // namespace tallowcrest

#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/advisor_machine.h"
#include "tests/support/each_of.h"

namespace tallowcrest {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr const char* localText =
    "Memory pressure is manageable at 10%. CPU load is below your warning threshold at 12%. Disk "
    "free space is above your 20 GB safety threshold.";
constexpr const char* noSample = "No diagnostic sample is available yet.";

/// An analysis with a stored key and, unless a test says otherwise, without a preview.
class Analysis : public ::testing::Test, protected AdvisorMachine {
protected:
    Analysis() : AdvisorMachine({}, "sk-key") { settings.set(&Settings::aiRequirePreview, false); }

    Provider& provider() { return advisor->provider; }
    Suggestions& suggestions() { return advisor->suggestions; }
    bool isBusy() { return provider().state().aiBusy; }

    void analyze() {
        provider().requestAIAnalysis();
        finishWork();
    }

    /// Runs the reading of the key, so that the exchange is the next job.
    void readKey() {
        ASSERT_EQ(workQueue.laneOf(0), Lane::secrets);
        runOneJob();
    }
};

TEST_F(Analysis, WithoutAKeyItIsThatOfThisMachine) {
    takeSample();
    fakes.secrets->secret.reset();
    begin();
    settings.set(&Settings::aiRequirePreview, true);
    suggestions().setAIActions({{UUID::random(), "select_top", "a", "b", "low"}});
    suggestions().approveAllSuggestions();
    log.clearActivityLog();
    EXPECT_EQ(provider().requestAIAnalysis(), Outcome::done("Completed on-device analysis."));
    EXPECT_FALSE(confirmations.pendingConfirmation());
    EXPECT_EQ(insight(), "On-device analysis: " + std::string(localText));
    EXPECT_THAT(suggestions().aiActions(), IsEmpty());
    EXPECT_THAT(suggestions().approvedAIActionIDs(), IsEmpty());
    EXPECT_THAT(advisor->drafts.aiRuleDrafts(), IsEmpty());
    EXPECT_THAT(events(), ElementsAre("Local Analysis: " + std::string(localText),
                                      "Action: Completed on-device analysis."));
}

TEST_F(Analysis, WithoutAKeyAndASampleItOnlySaysSo) {
    fakes.secrets->secret.reset();
    begin();
    suggestions().setAIActions({{UUID::random(), "select_top", "a", "b", "low"}});
    EXPECT_EQ(provider().requestAIAnalysis().kind, Outcome::Kind::refused);
    EXPECT_EQ(insight(),
              "No diagnostic sample is available yet. Refresh once, then analyze again.");
    EXPECT_THAT(suggestions().aiActions(), SizeIs(1));
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(Analysis, GoesThroughItsStepsInOrder) {
    takeSample(90.0);
    suggestions().setAIActions({{UUID::random(), "select_top", "old", "b", "low"}});
    suggestions().approveAllSuggestions();
    log.clearActivityLog();
    EXPECT_EQ(provider().requestAIAnalysis(), Outcome::asked());
    EXPECT_TRUE(isBusy());
    EXPECT_THAT(suggestions().aiActions(), SizeIs(1));
    EXPECT_EQ(provider().state().aiBusySince, clock.now());
    EXPECT_EQ(provider().state().waitsFor, AnalysisWait::key);
    clock.advance(std::chrono::seconds(5));
    readKey();
    EXPECT_TRUE(isBusy());
    EXPECT_EQ(provider().state().aiBusySince, clock.now()) << "the wait for the service";
    EXPECT_EQ(provider().state().waitsFor, AnalysisWait::service);
    EXPECT_EQ(insight(), "Asking OpenAI for a performance recommendation...");
    EXPECT_THAT(suggestions().aiActions(), IsEmpty());
    EXPECT_THAT(suggestions().approvedAIActionIDs(), SizeIs(1)) << "until the end";
    ASSERT_EQ(workQueue.laneOf(0), Lane::advisor);
    EXPECT_THAT(fakes.http->sent, IsEmpty());

    fakes.http->willSay(R"({"summary":"Look.","actions":[{"type":"select_top","title":"Go"}]})");
    finishWork();
    EXPECT_FALSE(isBusy());
    EXPECT_EQ(insight(), "Look.");
    ASSERT_THAT(suggestions().aiActions(), SizeIs(1));
    EXPECT_EQ(suggestions().aiActions().front().title, "Go");
    EXPECT_THAT(suggestions().approvedAIActionIDs(), IsEmpty());
    EXPECT_THAT(eachOf(advisor->drafts.aiRuleDrafts(), &AIRuleDraft::title),
                ElementsAre("Warn on sustained memory pressure", "AI pattern: Go"));
    EXPECT_THAT(events(), ElementsAre("AI: Look."));
    ASSERT_THAT(fakes.http->sent, SizeIs(1));
    const FakeHttpExchange::Sent& sent = fakes.http->sent.front();
    EXPECT_EQ(sent.url, "https://api.openai.com/v1/responses");
    EXPECT_EQ(sent.json().at("model"), "gpt-5.6-luna");
    EXPECT_THAT(sent.prompt(), HasSubstr("OpenAI key saved: Yes"));
    EXPECT_THAT(sent.prompt(), Not(HasSubstr("Asking OpenAI"))) << "built before the new state";
}

TEST_F(Analysis, ALongSummaryIsRecordedCut) {
    takeSample();
    fakes.http->willSay(R"({"summary":")" + std::string(1000, 'x') + R"("})");
    analyze();
    EXPECT_EQ(insight(), std::string(1000, 'x'));
    EXPECT_THAT(events(), ElementsAre("AI: " + std::string(240, 'x')));
}

TEST_F(Analysis, TheEventHasTheBeginningOfTheSentencesWithoutThePrefix) {
    takeSample(99.0, "/usr/bin/" + std::string(300, 'x'));
    analyze();
    const std::string prefix =
        "Paid AI is currently unavailable, so Tallowcrest used on-device analysis instead. ";
    ASSERT_THAT(insight(), StartsWith(prefix));
    ASSERT_GT(insight().size(), prefix.size() + 240);
    EXPECT_EQ(events().front(), "Local Analysis: " + insight().substr(prefix.size(), 240));
}

TEST_F(Analysis, TwoInARowAddTheRuleOfTheTopAppOnce) {
    takeSample(10.0, "/usr/bin/editor", 4000.0);
    fakes.http->willSay("fine");
    for (int i = 0; i < 2; ++i) {
        store.written.clear();
        analyze();
        EXPECT_THAT(eachOf(advisor->drafts.aiRuleDrafts(), &AIRuleDraft::title),
                    ElementsAre("Watch editor memory growth"));
        EXPECT_THAT(store.written, Contains("Tallowcrest.aiRuleDrafts"))
            << "saved whether or not one of the candidates is new";
    }
}

TEST_F(Analysis, AFailureFallsBackToThisMachine) {
    takeSample();
    suggestions().setAIActions({{UUID::random(), "select_top", "old", "b", "low"}});
    suggestions().approveAllSuggestions();
    log.clearActivityLog();
    fakes.http->reply = HttpReply{.status = 401, .data = "bad key"};
    analyze();
    EXPECT_FALSE(isBusy());
    EXPECT_THAT(suggestions().approvedAIActionIDs(), IsEmpty());
    EXPECT_EQ(insight(),
              "Paid AI is currently unavailable, so Tallowcrest used on-device analysis instead. " +
                  std::string(localText));
    EXPECT_THAT(suggestions().aiActions(), IsEmpty());
    EXPECT_THAT(advisor->drafts.aiRuleDrafts(), IsEmpty());
    EXPECT_THAT(events(),
                ElementsAre("Local Analysis: " + std::string(localText),
                            "Action: Completed on-device fallback analysis.",
                            "Local Analysis: Paid AI was unavailable; used on-device guidance "
                            "instead."));
    EXPECT_TRUE(provider().state().openAIKeySaved);
}

TEST_F(Analysis, APreviewAsksFirst) {
    settings.set(&Settings::aiRequirePreview, true);
    EXPECT_EQ(provider().requestAIAnalysis(), Outcome::refused(noSample));
    EXPECT_EQ(insight(), noSample);
    EXPECT_FALSE(confirmations.pendingConfirmation());
    takeSample();
    EXPECT_EQ(provider().requestAIAnalysis(), Outcome::asked());
    ASSERT_TRUE(confirmations.pendingConfirmation());
    const ConfirmationRequest request = *confirmations.pendingConfirmation();
    EXPECT_EQ(request.title, "Send diagnostics to OpenAI?");
    EXPECT_EQ(request.message,
              "Tallowcrest will send the current diagnostics report to OpenAI for analysis. API "
              "keys are never included. Process details are redacted.");
    EXPECT_EQ(request.confirmTitle, "Analyze");
    EXPECT_EQ(request.kind, "ai_analyze");
    EXPECT_EQ(request.hostName, std::nullopt);
    EXPECT_EQ(request.pid, std::nullopt);
    EXPECT_EQ(workQueue.pendingCount(), 0U) << "not even the key is read";
    fakes.http->willSay("fine");
    confirmations.confirmPending();
    finishWork();
    EXPECT_EQ(insight(), "fine");
    confirmations.confirmPending();
    finishWork();
    EXPECT_THAT(fakes.http->sent, SizeIs(1));
    settings.set(&Settings::aiRedactProcessDetails, false);
    provider().requestAIAnalysis();
    EXPECT_THAT(confirmations.pendingConfirmation()->message,
                HasSubstr("Process details are included."));
    confirmations.cancelPending();
    finishWork();
    EXPECT_THAT(fakes.http->sent, SizeIs(1));
}

TEST_F(Analysis, TheOwnerAgreesToOneServiceAndOnePrivacy) {
    takeSample();
    settings.set(&Settings::aiRequirePreview, true);
    provider().setAIEndpoint("https://example.org:8443/v1");
    provider().requestAIAnalysis();
    EXPECT_EQ(confirmations.pendingConfirmation()->title, "Send diagnostics to example.org:8443?");
    EXPECT_THAT(confirmations.pendingConfirmation()->message,
                HasSubstr("report to example.org:8443 for analysis"));
    provider().setAIEndpoint("https://other.org");
    EXPECT_EQ(confirmations.confirmPending(), Outcome::asked());
    ASSERT_TRUE(confirmations.pendingConfirmation()) << "asks again";
    EXPECT_EQ(confirmations.pendingConfirmation()->title, "Send diagnostics to other.org?");
    provider().setAIRedactProcessDetails(false);
    confirmations.confirmPending();
    ASSERT_TRUE(confirmations.pendingConfirmation()) << "and again";
    fakes.http->willSay("fine");
    confirmations.confirmPending();
    // While the key is read, the service stays the one of the question, but the request can still
    // be made more private.
    provider().setAIEndpoint("https://third.org");
    provider().setAIRedactProcessDetails(true);
    readKey();
    EXPECT_EQ(insight(), "Asking other.org for a performance recommendation...");
    finishWork();
    ASSERT_THAT(fakes.http->sent, SizeIs(1));
    EXPECT_EQ(fakes.http->sent.front().url, "https://other.org/v1/responses");
    EXPECT_THAT(fakes.http->sent.front().prompt(), HasSubstr("\nredacted\t"));
    EXPECT_THAT(fakes.http->sent.front().prompt(), Not(HasSubstr("\n700\t")));
}

TEST_F(Analysis, RedactionThatIsTurnedOffWhileTheKeyIsReadStays) {
    takeSample();
    fakes.http->willSay("fine");
    provider().requestAIAnalysis();
    provider().setAIRedactProcessDetails(false);
    finishWork();
    ASSERT_THAT(fakes.http->sent, SizeIs(1));
    EXPECT_THAT(fakes.http->sent.front().prompt(), HasSubstr("\nredacted\t"));
    EXPECT_THAT(fakes.http->sent.front().prompt(), Not(HasSubstr("\n700\t")));
}

TEST_F(Analysis, RedactionHidesTheProcesses) {
    takeSample();
    fakes.http->willSay("fine");
    analyze();
    ASSERT_THAT(fakes.http->sent, SizeIs(1));
    EXPECT_THAT(fakes.http->sent.front().prompt(), HasSubstr("\nredacted\t"));
    EXPECT_THAT(fakes.http->sent.front().prompt(), Not(HasSubstr("\n700\t")));
}

TEST_F(Analysis, AStaleBeliefInAKeyCostsNothing) {
    takeSample();
    settings.set(&Settings::aiRequirePreview, true);
    fakes.secrets->secret.reset();
    EXPECT_EQ(provider().requestAIAnalysis(), Outcome::asked());
    ASSERT_TRUE(confirmations.pendingConfirmation());
    confirmations.confirmPending();
    finishWork();
    EXPECT_FALSE(isBusy());
    EXPECT_EQ(insight(), "On-device analysis: " + std::string(localText));
    EXPECT_THAT(fakes.http->sent, IsEmpty());
}

TEST_F(Analysis, WithoutASampleNothingIsSent) {
    analyze();
    EXPECT_EQ(insight(), noSample);
    EXPECT_FALSE(isBusy());
    EXPECT_THAT(fakes.http->sent, IsEmpty());
}

TEST_F(Analysis, ASecondOneMeanwhileChangesNothing) {
    takeSample();
    fakes.http->willSay("fine");
    provider().requestAIAnalysis();
    EXPECT_EQ(provider().sendAIAnalysis(), Outcome::ignored());
    EXPECT_EQ(workQueue.pendingCount(), 1U);
    readKey();
    const std::string before = insight();
    EXPECT_EQ(provider().sendAIAnalysis(), Outcome::ignored());
    EXPECT_EQ(provider().requestAIAnalysis(), Outcome::ignored());
    EXPECT_EQ(insight(), before);
    EXPECT_EQ(workQueue.pendingCount(), 1U);
    finishWork();
    EXPECT_THAT(fakes.http->sent, SizeIs(1));
}

TEST_F(Analysis, AnEmptyModelIsStoredAndTheDefaultSent) {
    takeSample();
    settings.set(&Settings::openAIModel, "");
    fakes.http->willSay("fine");
    analyze();
    EXPECT_EQ(fakes.http->sent.at(0).json().at("model"), "gpt-5.6-luna");
    EXPECT_EQ(settings.values().openAIModel, "");
}

TEST_F(Analysis, AStoredEndpointThatMustNotBeUsedFallsBack) {
    takeSample();
    settings.set(&Settings::aiEndpoint, "http://example.org");
    analyze();
    EXPECT_THAT(insight(), StartsWith("Paid AI is currently unavailable"));
    EXPECT_THAT(fakes.http->sent, IsEmpty());
    // Without a key nothing would be asked, so that is no fallback.
    fakes.secrets->secret.reset();
    ASSERT_TRUE(provider().state().openAIKeySaved);
    analyze();
    EXPECT_EQ(insight(), "On-device analysis: " + std::string(localText));
    EXPECT_FALSE(isBusy());
}

TEST_F(Analysis, TheSwitchForSafeActionsIsThatOfTheBeginning) {
    takeSample();
    fakes.http->willSay(R"({"summary":"a","actions":[{"type":"select_top"}]})");
    provider().requestAIAnalysis();
    readKey();
    settings.set(&Settings::aiSafeActionsEnabled, true);
    finishWork();
    EXPECT_FALSE(actions.review.selectedPID());
    provider().requestAIAnalysis();
    readKey();
    settings.set(&Settings::aiSafeActionsEnabled, false);
    log.clearActivityLog();
    finishWork();
    EXPECT_EQ(actions.review.selectedPID(), 700);
    EXPECT_THAT(events(),
                ElementsAre("AI: a", "Action: Selected the heaviest process inside editor."));
}

TEST_F(Analysis, DraftsComeBeforeWhatRunsByItself) {
    takeSample();
    settings.set(&Settings::aiAutonomyMode, AIAutonomyMode::autopilot);
    settings.set(&Settings::aiSafeActionsEnabled, true);
    for (int i = 0; i < 4; ++i) {
        advisor->trust.recordTrustEvent("copy_report", TrustEvent::run);
    }
    store.written.clear();
    fakes.http->willSay(
        R"({"summary":"a","actions":[{"type":"copy_report"},{"type":"select_top"}]})");
    analyze();
    EXPECT_THAT(events(),
                ElementsAre("AI Trust: Auto-approved 1 trusted low-risk action.",
                            "Action: Copied a performance report to the clipboard.", "AI: a",
                            "Action: Selected the heaviest process inside editor."));
    ASSERT_FALSE(store.written.empty());
    EXPECT_EQ(store.written.front(), "Tallowcrest.aiRuleDrafts");
}

TEST_F(Analysis, ALateAnswerReachesNobodyOnceTheAdvisorIsGone) {
    takeSample();
    fakes.http->willSay("fine");
    provider().requestAIAnalysis();
    readKey();
    advisor.reset();
    finishWork();
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(Analysis, ThePreviewIsCopied) {
    EXPECT_EQ(provider().copyAIPreview(),
              Outcome::refused("No AI payload preview is available yet."));
    takeSample();
    EXPECT_EQ(provider().copyAIPreview(), Outcome::done("Copied the AI diagnostics preview."));
    settings.set(&Settings::aiRedactProcessDetails, false);
    provider().copyAIPreview();
    ASSERT_THAT(copied, SizeIs(2));
    EXPECT_THAT(copied[0], HasSubstr("\nredacted\t"));
    EXPECT_THAT(copied[1], HasSubstr("\n700\t"));
    EXPECT_THAT(events(), ElementsAre("Action: No AI payload preview is available yet.",
                                      "Action: Copied the AI diagnostics preview.",
                                      "Action: Copied the AI diagnostics preview."));
}

}  // namespace
}  // namespace tallowcrest

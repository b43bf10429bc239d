#include "app/headless_advisor.h"

#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/actions.h"
#include "actions/review_target.h"
#include "advisor/advisor.h"
#include "advisor/autonomy.h"
#include "core/confirmation_desk.h"
#include "core/record_json.h"
#include "core/settings/settings_owner.h"
#include "core/settings/stored_lists.h"
#include "monitor/system_monitor.h"
#include "tests/support/fake_advisor_ports.h"
#include "tests/support/fake_machine.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr const char* noConsent =
    "nothing was sent: the settings ask before each analysis, and '--yes' was not given";

class HeadlessAdvisorTest : public ::testing::Test {
protected:
    HeadlessAdvisorTest() {
        machine.readOnly = true;
        machine.addProcess(700, "/usr/bin/photo-indexer", 40.0, 900.0);
    }

    /// The answers, of which there is to be one.
    std::vector<std::string> answersTo(const std::optional<std::string>& question,
                                       bool mayBeSent = true) {
        std::vector<std::string> answers;
        machine.monitor();
        machine.tick();
        HeadlessAdvisor asked(machine.monitor(), [&](const AdvisorAnswer& said) {
            answers.push_back(said.text);
            note = said.note;
            isOfProvider = said.isOfProvider;
        });
        outcome = asked.begin(question, mayBeSent);
        EXPECT_THAT(answers, IsEmpty()) << "on a later turn";
        finishWork();
        machine.tick();
        finishWork();
        return answers;
    }

    void finishWork() {
        while (machine.workQueue.pendingCount() > 0) {
            machine.finishSamples();
        }
        machine.mainQueue.drain();
    }

    Outcome outcome;
    std::string note;
    bool isOfProvider = false;
    FakeAdvisorPorts ports;
    FakeMachine machine;
};

TEST_F(HeadlessAdvisorTest, AnswersFromTheFiguresOfThisMachine) {
    EXPECT_THAT(answersTo("What is slow?"),
                ElementsAre(StartsWith("Overall CPU load is 10%. photo-indexer is currently")));
}

TEST_F(HeadlessAdvisorTest, AnalyzesThisMachine) {
    EXPECT_THAT(answersTo(std::nullopt), ElementsAre(StartsWith("On-device analysis: Memory")));
}

TEST_F(HeadlessAdvisorTest, WithAKeyTheProviderAnswersAndSeesOnlyThisQuestion) {
    ports.secrets->secret = "sk-key";
    ports.http->willSay("From far away.");
    machine.advisor = ports.ports();
    machine.monitor().advisor().chat.askQuickQuestion("An earlier question");
    finishWork();
    EXPECT_THAT(answersTo("What is slow?"), ElementsAre("From far away."));
    ASSERT_THAT(ports.http->sent, Not(IsEmpty()));
    EXPECT_THAT(ports.http->sent.back().prompt(), HasSubstr("What is slow?"));
    EXPECT_THAT(ports.http->sent.back().prompt(), Not(HasSubstr("You: An earlier question")));
}

TEST_F(HeadlessAdvisorTest, AnAnalysisIsSentOnlyAsTheSettingsSay) {
    ports.secrets->secret = "sk-key";
    ports.http->willSay("From far away.");
    machine.advisor = ports.ports();
    EXPECT_THAT(answersTo(std::nullopt, false),
                ElementsAre(StartsWith("On-device analysis: Memory")));
    EXPECT_EQ(note, noConsent);
    EXPECT_THAT(ports.http->sent, IsEmpty());
    EXPECT_THAT(answersTo(std::nullopt, true), ElementsAre("From far away."));
    EXPECT_EQ(note, "");
    machine.monitor().settingsOwner().set(&Settings::aiRequirePreview, false);
    EXPECT_THAT(answersTo(std::nullopt, false), ElementsAre("From far away."));
    EXPECT_THAT(ports.http->sent, SizeIs(2));
    // The switch is about analyses.
    machine.monitor().settingsOwner().set(&Settings::aiRequirePreview, true);
    EXPECT_THAT(answersTo("What is slow?", false), ElementsAre("From far away."));
}

TEST_F(HeadlessAdvisorTest, AQuestionThatIsNotAboutTheAnalysisStaysUnanswered) {
    ConfirmationDesk& desk = machine.monitor().confirmations();
    int answered = 0;
    const auto other =
        desk.registerKind("other", {.confirm =
                                        [&](const ConfirmationRequest&, void*) {
                                            ++answered;
                                            return Outcome::done();
                                        },
                                    .cancel = [&](const ConfirmationRequest&) { ++answered; }});
    ConfirmationRequest request;
    request.kind = "other";
    desk.requestConfirmation(request);
    for (const bool mayBeSent : {true, false}) {
        EXPECT_THAT(answersTo(std::nullopt, mayBeSent),
                    ElementsAre(StartsWith("On-device analysis: Memory")));
        EXPECT_EQ(note, "");
        ASSERT_TRUE(desk.pendingConfirmation());
        EXPECT_EQ(desk.pendingConfirmation()->kind, "other");
    }
    EXPECT_EQ(answered, 0);
}

TEST_F(HeadlessAdvisorTest, AnAnalysisDuringTheSearchForTheKeyIsSentAsTheSettingsSay) {
    for (const bool mayBeSent : {true, false}) {
        ports.secrets->secret = "sk-key";
        ports.http->willSay("From far away.");
        machine.advisor = ports.ports();
        machine.restart();
        SystemMonitor& monitor = machine.monitor();
        ASSERT_EQ(machine.workQueue.laneOf(0), Lane::secrets);
        monitor.refresh();
        while (machine.workQueue.pendingCount() > 1) {
            machine.workQueue.run(1);
            machine.mainQueue.drain();
        }
        std::vector<std::string> answers;
        std::vector<std::string> notes;
        HeadlessAdvisor asked(monitor, [&](const AdvisorAnswer& said) {
            answers.push_back(said.text);
            notes.push_back(said.note);
        });
        asked.begin(std::nullopt, mayBeSent);
        machine.mainQueue.drain();
        EXPECT_THAT(answers, IsEmpty());
        finishWork();
        EXPECT_THAT(answers,
                    ElementsAre(StartsWith(mayBeSent ? "From far away." : "On-device analysis: ")));
        EXPECT_EQ(notes, std::vector<std::string>{mayBeSent ? "" : noConsent});
        EXPECT_THAT(ports.http->sent, SizeIs(1)) << "by the first of the two";
    }
}

TEST_F(HeadlessAdvisorTest, AServerOfTheOwnersOwnNeedsNoKey) {
    ports.http->willSay("From next door.");
    machine.advisor = AdvisorPorts{nullptr, ports.http};
    machine.store.write(settings_keys::aiEndpointKey, std::string("http://localhost:8080"));
    EXPECT_THAT(answersTo(std::nullopt), ElementsAre("From next door."));
    EXPECT_THAT(answersTo("What is slow?"), ElementsAre("From next door."));
    ASSERT_THAT(ports.http->sent, SizeIs(2));
    EXPECT_EQ(ports.http->sent.front().url, "http://localhost:8080/v1/responses");
    EXPECT_EQ(ports.http->sent.front().token, "");
}

TEST_F(HeadlessAdvisorTest, AQuestionThatIsTooLongIsRefused) {
    EXPECT_THAT(answersTo(std::string(20'000, 'q')), IsEmpty());
    EXPECT_EQ(outcome.kind, Outcome::Kind::refused);
    EXPECT_THAT(outcome.message, HasSubstr("at most 10,000 characters"));
}

TEST_F(HeadlessAdvisorTest, AFailedRequestGivesTheAnswerOfThisMachine) {
    ports.secrets->secret = "sk-key";
    machine.advisor = ports.ports();
    EXPECT_THAT(answersTo("memory?"),
                ElementsAre(StartsWith("Paid AI is currently unavailable, so here is the")));
    EXPECT_EQ(note, "Paid AI fallback: OpenAI request did not complete.");
    EXPECT_FALSE(isOfProvider);
    ports.http->willSay("From far away.");
    EXPECT_THAT(answersTo("memory?"), ElementsAre("From far away."));
    EXPECT_EQ(note, "") << "the reason was that of the question before";
    EXPECT_TRUE(isOfProvider);
    EXPECT_THAT(answersTo(std::nullopt), ElementsAre("From far away."));
    EXPECT_TRUE(isOfProvider);
    ports.http->reply.reset();
    answersTo(std::nullopt);
    EXPECT_FALSE(isOfProvider);
}

TEST_F(HeadlessAdvisorTest, NothingThatAnAnalysisProposesIsRun) {
    ports.secrets->secret = "sk-key";
    ports.http->willSay(R"({"summary": "Do this.", "actions": [
        {"type": "export_diagnostics", "title": "Export", "detail": "x", "risk": "low"},
        {"type": "select_top", "title": "Select", "detail": "x", "risk": "low"},
        {"type": "scan_remote", "title": "Scan", "detail": "x", "risk": "low"}]})");
    machine.advisor = ports.ports();
    machine.store.write(settings_keys::aiSafeActionsKey, true);
    machine.store.write(settings_keys::aiAutonomyModeKey, std::string("autopilot"));
    TrustRecords trusted;
    for (const std::string type : {"export_diagnostics", "select_top", "scan_remote"}) {
        trusted[type] = {type, 4, 4, 0, {}};
    }
    machine.store.write(stored::trustRecords.key, JSONData{record_json::encode(trusted).value()});
    EXPECT_THAT(answersTo(std::nullopt), ElementsAre("Do this."));
    EXPECT_THAT(machine.monitor().advisor().suggestions.aiActions(), SizeIs(3));
    EXPECT_THAT(machine.monitor().advisor().suggestions.approvedAIActionIDs(), IsEmpty());
    EXPECT_TRUE(machine.reportFolder->written.empty());
    EXPECT_EQ(machine.monitor().actions().review.selectedPID(), std::nullopt);
    ASSERT_THAT(ports.http->sent, SizeIs(1));
    EXPECT_THAT(ports.http->sent[0].prompt(), HasSubstr("Autopilot"))
        << "the provider reads the settings as they are";
}

}  // namespace
}  // namespace tallowcrest

#include "advisor/chat.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/record_json.h"
#include "tests/support/advisor_machine.h"
#include "tests/support/each_of.h"

namespace tallowcrest {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr const char* welcomeText =
    "Tallowcrest: Ask me what is slowing this Mac down, how to relieve memory pressure, or which "
    "action is safest to review first.";
constexpr const char* noSampleYet =
    "Tallowcrest: I do not have a diagnostic sample yet. Refresh once, then ask again.";

class ChatTest : public ::testing::Test, protected AdvisorMachine {
protected:
    Chat& chat() { return advisor->chat; }
    void storeKey() { fakes.secrets->secret = "sk-key"; }
    /// There is a sample, a key, and a service that answers.
    void makeReady() {
        takeSample();
        storeKey();
        fakes.http->willSay("answer");
    }

    Outcome ask(const std::string& question) {
        Outcome outcome = chat().askQuickQuestion(question);
        finishWork();
        return outcome;
    }

    /// The messages as "role: text".
    std::vector<std::string> messages() {
        return eachOf(chat().aiChatMessages(), [](const AIChatMessage& message) {
            return message.role + ": " + message.text;
        });
    }

    void storeMessages(int count) {
        std::vector<AIChatMessage> stored;
        for (int i = 1; i <= count; ++i) {
            stored.push_back({UUID::random(), "You", std::to_string(i), {}});
        }
        store.values.write("Tallowcrest.aiChatMessages", JSONData{*record_json::encode(stored)});
        begin();
    }

    std::size_t storedCount() const {
        return record_json::decodeChatMessages(store.json("Tallowcrest.aiChatMessages"))->size();
    }
};

TEST_F(ChatTest, BeginsWithAWelcomeThatIsNotSaved) {
    EXPECT_THAT(messages(), ElementsAre(welcomeText));
    EXPECT_EQ(chat().aiChatMessages().front().date, clock.now());
    EXPECT_EQ(store.read("Tallowcrest.aiChatMessages"), std::nullopt);
    store.values.write("Tallowcrest.aiChatMessages", JSONData{"[{\"id\":\"x\"}]"});
    begin();
    EXPECT_THAT(messages(), ElementsAre(welcomeText)) << "a list that does not decode";
    ask("target");
    begin();
    EXPECT_THAT(messages(), SizeIs(3)) << "the next save overwrites it";
}

TEST_F(ChatTest, ClearingLastsAcrossARestart) {
    EXPECT_EQ(chat().clearChat(), Outcome::done("Cleared Tallowcrest Chat."));
    EXPECT_THAT(events(), ElementsAre("Action: Cleared Tallowcrest Chat."));
    EXPECT_THAT(messages(), IsEmpty());
    begin();
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(ChatTest, ALongStoredListKeepsItsEnd) {
    storeMessages(45);
    ASSERT_THAT(messages(), SizeIs(40));
    EXPECT_EQ(messages().front(), "You: 6");
}

TEST_F(ChatTest, WithoutAKeyThisMachineAnswers) {
    takeSample();
    const std::string question = "is the disk full " + std::string(200, '?');
    EXPECT_EQ(ask("  " + question + "\n"), Outcome::asked());
    EXPECT_THAT(messages(), ElementsAre(welcomeText, "You: " + question,
                                        StartsWith("Tallowcrest: This Mac has 100.0 GB free.")));
    EXPECT_EQ(chat().state().aiChatInput, "");
    EXPECT_FALSE(chat().state().aiChatBusy);
    EXPECT_THAT(events(),
                ElementsAre("Local Guidance: Answered without paid AI: " + question.substr(0, 140),
                            "Action: Answered with on-device guidance."));
    EXPECT_EQ(log.lastAction(), "Answered with on-device guidance.");
    EXPECT_EQ(storedCount(), 3U);
}

TEST_F(ChatTest, WithoutASecretStoreThisMachineAnswersAtOnce) {
    fakes.secrets = nullptr;
    begin();
    takeSample();
    EXPECT_EQ(chat().askQuickQuestion("target"),
              Outcome::done("Answered with on-device guidance."));
    EXPECT_THAT(messages(), SizeIs(3));
}

TEST_F(ChatTest, TheKeyItselfDecidesAndNotTheBelief) {
    makeReady();
    EXPECT_FALSE(advisor->provider.state().openAIKeySaved);
    ask("Why?");
    EXPECT_THAT(messages(), ElementsAre(welcomeText, "You: Why?", "Tallowcrest: answer"));
}

TEST_F(ChatTest, WhatWouldBeSentIsWhatIsSent) {
    EXPECT_EQ(chat().aiPayload(), std::nullopt) << "before the first sample";
    makeReady();
    for (int i = 0; i < 12; ++i) {
        chat().setAIChatInput(" question " + std::to_string(i) + "\n");
        const auto payload = chat().aiPayload();
        chat().sendChatMessage();
        finishWork();
        ASSERT_EQ(fakes.http->sent.size(), static_cast<std::size_t>(i) + 1);
        EXPECT_EQ(fakes.http->sent.back().prompt(), payload);
    }
    settings.set(&Settings::aiRedactProcessDetails, false);
    chat().setAIChatInput("last");
    takeSample(91.0);
    const auto payload = chat().aiPayload();
    chat().sendChatMessage();
    finishWork();
    EXPECT_EQ(fakes.http->sent.back().prompt(), payload);
}

TEST_F(ChatTest, AQuestionThatIsTooLongIsRefusedAndStays) {
    const std::string longest(maximumQuestionCharacters, 'q');
    EXPECT_EQ(chat().askQuickQuestion(longest + "q"),
              Outcome::refused("A question may have at most 10,000 characters."));
    EXPECT_EQ(chat().state().aiChatInput, longest + "q");
    EXPECT_EQ(log.lastAction(), "A question may have at most 10,000 characters.");
    EXPECT_THAT(messages(), ElementsAre(welcomeText));
    EXPECT_TRUE(chat().askQuickQuestion(longest + "\n ").isAccepted());
    EXPECT_THAT(messages(), Contains("You: " + longest));
}

TEST_F(ChatTest, WithoutTextOrWhileBusyTheInputStays) {
    for (const char* blank : {"", "   ", "\n\t "}) {
        EXPECT_EQ(chat().askQuickQuestion(blank), Outcome::ignored());
        EXPECT_EQ(chat().state().aiChatInput, blank);
    }
    takeSample();
    storeKey();
    chat().askQuickQuestion("first");
    EXPECT_TRUE(chat().state().aiChatBusy);
    EXPECT_EQ(chat().state().aiChatBusySince, clock.now());
    EXPECT_TRUE(chat().state().isReadingKey);
    EXPECT_EQ(chat().askQuickQuestion("second"), Outcome::ignored());
    clock.advance(std::chrono::seconds(5));
    workQueue.run();
    mainQueue.drain();
    EXPECT_TRUE(chat().state().aiChatBusy);
    EXPECT_EQ(chat().state().aiChatBusySince, clock.now());
    EXPECT_FALSE(chat().state().isReadingKey);
    EXPECT_EQ(chat().askQuickQuestion(" third"), Outcome::ignored());
    EXPECT_EQ(chat().state().aiChatInput, " third");
    EXPECT_THAT(messages(), ElementsAre(welcomeText, "You: first"));
    finishWork();
    EXPECT_FALSE(chat().state().aiChatBusy);
    EXPECT_EQ(chat().state().aiChatInput, " third");
    EXPECT_THAT(messages(), SizeIs(3));
}

TEST_F(ChatTest, TheProviderGetsTheRecentChatTheQuestionAndTheReport) {
    storeMessages(12);
    takeSample();
    storeKey();
    fakes.http->willSay("two\nlines");
    chat().askQuickQuestion("Why?");
    ASSERT_EQ(workQueue.laneOf(0), Lane::secrets);
    workQueue.run();
    mainQueue.drain();
    EXPECT_EQ(log.lastAction(), "Asking Tallowcrest Chat...");
    EXPECT_EQ(workQueue.laneOf(0), Lane::advisor);
    finishWork();
    ASSERT_THAT(fakes.http->sent, SizeIs(1));
    EXPECT_THAT(fakes.http->sent[0].prompt(),
                HasSubstr("Recent chat:\nYou: 6\nYou: 7\nYou: 8\nYou: 9\nYou: 10\nYou: 11\nYou: "
                          "12\nYou: Why?\n\nUser question:\nWhy?\n\nCurrent diagnostics:\n"
                          "Tallowcrest report - "));
    EXPECT_THAT(fakes.http->sent[0].prompt(), HasSubstr("\nredacted\t"));
    EXPECT_EQ(messages().back(), "Tallowcrest: two\nlines");
    EXPECT_THAT(events(), ElementsAre("Action: Asking Tallowcrest Chat...", "Chat: Answered: Why?",
                                      "Action: Tallowcrest Chat answered."));

    settings.set(&Settings::aiRedactProcessDetails, false);
    chat().clearChat();
    ask("One");
    ask("Two");
    EXPECT_THAT(fakes.http->sent.back().prompt(),
                HasSubstr("Recent chat:\nYou: One\nTallowcrest: two\nlines\nYou: Two\n\nUser"));
    EXPECT_THAT(fakes.http->sent.back().prompt(), HasSubstr("\n700\t"));
}

TEST_F(ChatTest, NoAnswerIsReadForActions) {
    takeSample(99.0);
    storeKey();
    settings.set(&Settings::aiSafeActionsEnabled, true);
    fakes.http->willSay(
        R"({"summary":"a","actions":[{"type":"local_purge"}]} action: local_purge)");
    ask("Why?");
    EXPECT_THAT(advisor->suggestions.aiActions(), IsEmpty());
    EXPECT_FALSE(confirmations.pendingConfirmation());
}

TEST_F(ChatTest, AFailureIsAnsweredOnThisMachineAndRecorded) {
    takeSample();
    storeKey();
    ask("target");
    EXPECT_THAT(messages(),
                ElementsAre(welcomeText, "You: target",
                            "Tallowcrest: Paid AI is currently unavailable, so here is the "
                            "on-device answer:\n\nNo operation target is selected. Open Processes "
                            "and choose a row to review it safely in Optimize."));
    EXPECT_THAT(events(),
                ElementsAre("Action: Asking Tallowcrest Chat...",
                            "Local Guidance: Paid AI fallback: OpenAI request did not complete.",
                            "Action: Answered with on-device fallback guidance."));
}

TEST_F(ChatTest, AnAnswerOfTheServiceIsNoneOfTheQuestionAfterIt) {
    takeSample();
    storeKey();
    fakes.http->willSay("From far away.");
    ask("target");
    EXPECT_TRUE(chat().state().isOfService);
    fakes.http->reply.reset();
    ask("target");
    EXPECT_FALSE(chat().state().isOfService);
}

TEST_F(ChatTest, WithoutASampleItSaysSo) {
    ask("memory");
    EXPECT_THAT(messages(), ElementsAre(welcomeText, "You: memory", noSampleYet));
    storeKey();
    log.clearActivityLog();
    ask("memory");
    EXPECT_EQ(messages().back(), noSampleYet);
    EXPECT_FALSE(chat().state().aiChatBusy);
    EXPECT_THAT(fakes.http->sent, IsEmpty());
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_EQ(storedCount(), 5U);
}

TEST_F(ChatTest, ATargetThatLeftTheSampleIsStillNamed) {
    takeSample();
    actions.review.setTarget(7, "gone");
    ask("explain the TARGET");
    EXPECT_THAT(messages().back(),
                StartsWith("Tallowcrest: The selected target is PID 7: Selected for review."));
    actions.review.selectTopApp();
    ask("target");
    EXPECT_THAT(messages().back(),
                StartsWith("Tallowcrest: The selected target is editor: editor · PID 700"));
}

TEST_F(ChatTest, FortyMessagesAreKept) {
    storeMessages(40);
    makeReady();
    ask("Why?");
    ASSERT_THAT(messages(), SizeIs(40));
    EXPECT_EQ(messages().front(), "You: 3");
    EXPECT_EQ(messages().back(), "Tallowcrest: answer");
    EXPECT_EQ(storedCount(), 40U);
    fakes.secrets->secret.reset();
    ask("Why?");
    EXPECT_THAT(messages(), SizeIs(42)) << "this path does not cut the list in memory";
    EXPECT_EQ(storedCount(), 40U);
    storeKey();
    store.written.clear();
    ask("And?");
    EXPECT_THAT(messages(), SizeIs(40)) << "an answer of the provider cuts it";
    EXPECT_EQ(messages().back(), "Tallowcrest: answer");
    EXPECT_EQ(std::ranges::count(store.written, "Tallowcrest.aiChatMessages"), 2)
        << "for the question and for the answer";
    begin();
    EXPECT_THAT(messages(), SizeIs(40));
}

TEST_F(ChatTest, OneMessageOverTheLimitIsCutByTheNextAnswer) {
    storeMessages(39);
    takeSample();
    ask("target");
    EXPECT_THAT(messages(), SizeIs(41));
    storeKey();
    fakes.http->reply.reset();
    ask("target");
    EXPECT_THAT(messages(), SizeIs(40)) << "a failure cuts it, too";
}

TEST_F(ChatTest, EightMessagesAreRecent) {
    makeReady();
    for (const int before : {7, 8}) {
        storeMessages(before);
        ask("Why?");
        const std::string first = before == 7 ? "You: 1\n" : "You: 2\n";
        EXPECT_THAT(fakes.http->sent.back().prompt(), HasSubstr("Recent chat:\n" + first));
        EXPECT_THAT(fakes.http->sent.back().prompt(),
                    HasSubstr("You: " + std::to_string(before) + "\nYou: Why?\n\nUser question:"));
    }
}

TEST_F(ChatTest, AnAnswerThatIsUnderWayComesIntoAClearedChat) {
    makeReady();
    chat().askQuickQuestion("Why?");
    runOneJob();
    chat().clearChat();
    finishWork();
    EXPECT_THAT(messages(), ElementsAre("Tallowcrest: answer"));
    EXPECT_FALSE(chat().state().aiChatBusy);
}

TEST_F(ChatTest, TheSettingsCountAsTheyAreWhenTheKeyHasBeenRead) {
    makeReady();
    settings.set(&Settings::aiRedactProcessDetails, false);
    chat().askQuickQuestion("Why?");
    settings.set(&Settings::aiRedactProcessDetails, true);
    settings.set(&Settings::aiEndpoint, "https://other.org");
    settings.set(&Settings::openAIModel, "other");
    finishWork();
    EXPECT_EQ(fakes.http->sent.at(0).url, "https://other.org/v1/responses");
    EXPECT_EQ(fakes.http->sent.at(0).json().at("model"), "other");
    EXPECT_THAT(fakes.http->sent.at(0).prompt(), HasSubstr("\nredacted\t"));
}

TEST_F(ChatTest, RedactionThatIsTurnedOffWhileTheKeyIsReadStays) {
    makeReady();
    chat().askQuickQuestion("Why?");
    settings.set(&Settings::aiRedactProcessDetails, false);
    finishWork();
    EXPECT_THAT(fakes.http->sent.at(0).prompt(), HasSubstr("\nredacted\t"));
    ask("And now?");
    EXPECT_THAT(fakes.http->sent.at(1).prompt(), Not(HasSubstr("\nredacted\t")));
}

TEST_F(ChatTest, WhatIsNotUTF8IsStillStored) {
    takeSample();
    storeKey();
    fakes.http->reply = HttpReply{0, {}, "no \xFF route"};
    ask("disk \xC3(");
    EXPECT_EQ(messages().at(1), "You: disk \uFFFD(");
    EXPECT_EQ(storedCount(), 3U);
    EXPECT_THAT(fakes.http->sent, SizeIs(1));
    const auto stored = record_json::decodeActivityLog(store.json("Tallowcrest.activityLog"));
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->at(1).detail, "Paid AI fallback: OpenAI request failed: no \uFFFD route");
}

TEST_F(ChatTest, AnAnalysisCanRunBesideAQuestion) {
    takeSample();
    storeKey();
    begin();
    settings.set(&Settings::aiRequirePreview, false);
    chat().askQuickQuestion("Why?");
    advisor->provider.requestAIAnalysis();
    EXPECT_TRUE(chat().state().aiChatBusy);
    EXPECT_TRUE(advisor->provider.state().aiBusy);
    fakes.http->willSay("answer");
    finishWork();
    EXPECT_THAT(fakes.http->sent, SizeIs(2));
    EXPECT_EQ(insight(), "answer");
    EXPECT_THAT(messages().back(), EndsWith("answer"));
}

TEST_F(ChatTest, AnEventHasTheBeginningOfAQuestionInWholeCharacters) {
    takeSample();
    std::string question;
    for (int i = 0; i < 141; ++i) {
        question += "\u00E4";
    }
    ask(question);
    EXPECT_EQ(events().front(),
              "Local Guidance: Answered without paid AI: " + question.substr(0, 280));
}

}  // namespace
}  // namespace tallowcrest

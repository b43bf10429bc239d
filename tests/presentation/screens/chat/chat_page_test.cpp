#include "presentation/screens/chat/chat_page.h"

#include <QTimer>

#include "core/settings/settings_owner.h"
#include "presentation/widgets/selectable_text.h"
#include "reports/reports.h"
#include "tests/presentation/screens/chat/chat_fixture.h"
#include "tests/presentation/shown_texts.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class ChatPageTest : public ChatFixture {};

TEST_F(ChatPageTest, BeginsWithTheWelcomeAndSaysWhatItIsWordForWord) {
    showChat();
    EXPECT_THAT(bubbles(), ElementsAre(StartsWith("Tallowcrest: Ask me what is slowing")));
    EXPECT_EQ(textOf("chat.lead"),
              u"On-device guidance works without paid AI. Connect paid AI for deeper explanations "
              "and follow-up reasoning."_s);
    EXPECT_EQ(textOf("chat.promise"),
              u"Chat can recommend steps and point to controls. It does not run optimization "
              "actions by itself."_s);
    EXPECT_EQ(input().placeholderText(),
              u"Ask about memory pressure, CPU spikes, top apps, or safer next actions"_s);
    EXPECT_THAT(shownCards(window()),
                ElementsAre("Current CPU: 40%, Top app: photo-indexer",
                            "Current Memory: 59%, 9.5 GB used of 16.0 GB",
                            "Chat Privacy: Redacted, Uses your AI payload privacy setting."));
    EXPECT_EQ(visible("chat.thinking"), nullptr);
    EXPECT_EQ(visible("chat.empty"), nullptr);
}

TEST_F(ChatPageTest, WithAKeyTheLeadSaysSo) {
    storeKey();
    showChat();
    EXPECT_THAT(textOf("chat.lead").toStdString(), StartsWith("Enhanced AI answers use"));
}

TEST_F(ChatPageTest, ThePrivacyFollowsTheSetting) {
    showChat();
    machine.monitor().settingsOwner().set(&Settings::aiRedactProcessDetails, false);
    settle();
    EXPECT_THAT(shownCards(window()), Contains(StartsWith("Chat Privacy: Detailed")));
}

// Asking -----------------------------------------------------------------------------------------

TEST_F(ChatPageTest, ReturnSendsAndTheAnswerFollows) {
    showChat();
    type("Why is the CPU busy?");
    EXPECT_EQ(chat().state().aiChatInput, "Why is the CPU busy?");
    press(Qt::Key_Return);
    settleAll();
    EXPECT_THAT(bubbles(),
                ElementsAre(StartsWith("Tallowcrest: Ask me"), "You: Why is the CPU busy?",
                            HasSubstr("photo-indexer is currently the leading")));
    EXPECT_EQ(input().toPlainText(), QString());
    EXPECT_TRUE(input().hasFocus());
    EXPECT_EQ(lastAction(), "Answered with on-device guidance.");
}

TEST_F(ChatPageTest, WhatIsSentCanBeReadBefore) {
    storeKey();
    showChat();
    advisor.http->willSay("Because.");
    type("Why?");
    EXPECT_EQ(visible("chat.payload"), nullptr);
    click("chat.show-payload");
    settleAll();
    const auto shown = [this] {
        return visible<SelectableText>("chat.payload")->shownText().toStdString();
    };
    EXPECT_THAT(shown(), HasSubstr("User question:\nWhy?\n"));
    // It follows what is typed and the choice of what is sent.
    type(" And since when?");
    EXPECT_THAT(shown(), Not(HasSubstr("since when"))) << "more may be typed";
    window().findChild<QTimer*>(u"chat.payload.delay"_s)->start(0);
    settle();
    EXPECT_THAT(shown(), HasSubstr("User question:\nWhy? And since when?\n"));
    machine.monitor().settingsOwner().set(&Settings::aiRedactProcessDetails, false);
    settle();
    const std::string before = shown();
    click("chat.send");
    finishWork();
    ASSERT_EQ(advisor.http->sent.size(), 1U);
    EXPECT_EQ(advisor.http->sent[0].prompt(), before);
    EXPECT_THAT(before, HasSubstr("User question:\nWhy? And since when?\n"));
    click("chat.show-payload");
    EXPECT_EQ(visible("chat.payload"), nullptr);
}

TEST_F(ChatPageTest, TheReportThatIsSentCanBeCopied) {
    std::vector<std::string> copied;
    machine.storeOnPasteboard = [&copied](const std::string& text) { copied.push_back(text); };
    showChat();
    const auto report = machine.monitor().reports().diagnosticsReport(true);
    click("chat.preview-payload");
    ASSERT_EQ(copied.size(), 1U);
    EXPECT_EQ(copied[0], report);
}

TEST_F(ChatPageTest, ThatThereIsNothingToSendYetIsSaidUntilTheFirstSample) {
    window().state().navigation.setSelectedRoute(AppRoute::chat);
    show();
    click("chat.show-payload");
    EXPECT_EQ(textOf("chat.payload.refusal"), u"No AI payload preview is available yet."_s);
    EXPECT_EQ(visible("chat.payload"), nullptr);
    machine.finishSamples();
    settle();
    EXPECT_EQ(textOf("chat.payload.refusal"), u"(not shown)"_s);
}

TEST_F(ChatPageTest, AQuestionThatIsTooLongIsToldAndStays) {
    showChat();
    chat().setAIChatInput(std::string(10'001, 'q'));
    settle();
    click("chat.send");
    EXPECT_EQ(lastAction(), "A question may have at most 10,000 characters.");
    EXPECT_EQ(input().toPlainText().size(), 10'001);
}

TEST_F(ChatPageTest, ShiftReturnMakesALine) {
    showChat();
    type("one");
    press(Qt::Key_Return, Qt::ShiftModifier);
    type("two");
    EXPECT_EQ(chat().state().aiChatInput, "one\ntwo");
    click("chat.send");
    settleAll();
    EXPECT_THAT(bubbles(), Contains("You: one\ntwo"));
}

TEST_F(ChatPageTest, NothingCanBeSentWithoutATextOrWhileBusy) {
    storeKey();
    showChat();
    EXPECT_FALSE(sendButton().isEnabled());
    type("   ");
    EXPECT_FALSE(sendButton().isEnabled());
    press(Qt::Key_Return);
    EXPECT_EQ(input().toPlainText(), u"   "_s) << "the blanks stay";
    type("memory?");
    EXPECT_TRUE(sendButton().isEnabled());
    click("chat.send");
    ASSERT_TRUE(chat().state().aiChatBusy);
    type("and disk?");
    EXPECT_FALSE(sendButton().isEnabled());
    press(Qt::Key_Return);
    EXPECT_EQ(input().toPlainText(), u"and disk?"_s) << "the question stays";
    EXPECT_EQ(bubbles().size(), 2U);
    advisor.http->willSay("Plenty.");
    finishWork();
    settleAll();
    EXPECT_THAT(bubbles().back(), "Tallowcrest: Plenty.");
    EXPECT_TRUE(sendButton().isEnabled());
    EXPECT_EQ(input().toPlainText(), u"and disk?"_s);
}

TEST_F(ChatPageTest, TheHeaderSendsAndClears) {
    storeKey();
    showChat();
    click("chat.header.send");
    EXPECT_EQ(bubbles().size(), 1U) << "there is no question yet";
    EXPECT_TRUE(input().hasFocus());
    type("memory?");
    click("chat.header.send");
    EXPECT_EQ(visible<QPushButton>("chat.header.send")->text(), u"Asking"_s);
    finishWork();
    settleAll();
    EXPECT_EQ(visible<QPushButton>("chat.header.send")->text(), u"Send"_s);
    EXPECT_EQ(bubbles().size(), 3U);
    click("chat.clear");
    EXPECT_THAT(bubbles(), IsEmpty());
    EXPECT_EQ(textOf("chat.empty"), u"No messages yet. Ask a question below."_s);
    EXPECT_EQ(lastAction(), "Cleared Tallowcrest Chat.");
}

TEST_F(ChatPageTest, AStarterPromptFillsTheFieldAndDoesNotSend) {
    showChat();
    const std::pair<const char*, const char*> prompts[] = {
        {"chat.prompt-1", "What is slowing this Mac down right now?"},
        {"chat.prompt-2", "How do I relieve memory pressure on this machine?"},
        {"chat.prompt-3", "What should I review before quitting anything?"},
        {"chat.prompt-4", "Explain the selected operation target."}};
    for (const auto& [identifier, question] : prompts) {
        click(identifier);
        EXPECT_EQ(input().toPlainText(), QLatin1String(question));
        EXPECT_EQ(chat().state().aiChatInput, question);
        EXPECT_TRUE(input().hasFocus());
        EXPECT_TRUE(sendButton().isEnabled());
    }
    EXPECT_EQ(bubbles().size(), 1U);
    press(Qt::Key_Return);
    settleAll();
    EXPECT_THAT(bubbles(), Contains("You: Explain the selected operation target."));
}

TEST_F(ChatPageTest, AskSendsAPromptAtOnceAndKeepsItWhileBusy) {
    storeKey();
    showChat();
    click("chat.prompt-1.ask");
    EXPECT_THAT(bubbles(), Contains("You: What is slowing this Mac down right now?"));
    click("chat.prompt-2.ask");
    EXPECT_EQ(bubbles().size(), 2U);
    EXPECT_EQ(input().toPlainText(), u"How do I relieve memory pressure on this machine?"_s);
}

TEST_F(ChatPageTest, SettingsOpensTheSheetWhereAKeyIsSaved) {
    showChat();
    window().state().navigation.setSettingsTab(SettingsTabKind::safety);
    click("chat.settings");
    EXPECT_NE(visible("settings.sheet"), nullptr);
    EXPECT_EQ(window().state().navigation.settingsTab(), SettingsTabKind::ai);
}

// Waiting ----------------------------------------------------------------------------------------

TEST_F(ChatPageTest, ThinkingCountsTheSeconds) {
    storeKey();
    showChat();
    type("memory?");
    press(Qt::Key_Return);
    EXPECT_EQ(textOf("chat.thinking"), u"Thinking · reading the key · 0 s"_s);
    machine.finishSamples();
    settle();
    EXPECT_EQ(textOf("chat.thinking"), u"Thinking · 0 s of at most 30 s"_s);
    auto* timer = window().findChild<QTimer*>(u"chat.seconds"_s);
    ASSERT_TRUE(timer->isActive());
    EXPECT_EQ(timer->interval(), 1000);
    machine.clock.advance(std::chrono::seconds(12));
    timer->setInterval(0);
    settle();
    timer->setInterval(1000);
    EXPECT_EQ(textOf("chat.thinking"), u"Thinking · 12 s of at most 30 s"_s);
    goTo(AppRoute::overview);
    EXPECT_FALSE(timer->isActive()) << "a hidden page does no work";
    goTo(AppRoute::chat);
    EXPECT_TRUE(timer->isActive());
    finishWork();
    settleAll();
    EXPECT_EQ(visible("chat.thinking"), nullptr);
    EXPECT_FALSE(timer->isActive());
    EXPECT_THAT(bubbles().back(),
                StartsWith("Tallowcrest: Paid AI is currently unavailable, so here is"));
}

}  // namespace
}  // namespace tallowcrest

// How Chat shows long and hostile messages, and where it scrolls.

#include <QScrollBar>

#include "core/settings/settings.h"
#include "tests/presentation/screens/chat/chat_fixture.h"
#include "tests/presentation/shell/announcements.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

class ChatReadingTest : public ChatFixture {
protected:
    std::vector<AIChatMessage> longMessages(int count, std::size_t characters = 4000) {
        std::vector<AIChatMessage> messages;
        for (int i = 0; i < count; ++i) {
            std::string text = "Message " + std::to_string(i) + ":";
            while (text.size() < characters) {
                text += " words of an answer";
            }
            messages.push_back(
                {UUID::random(), i % 2 == 0 ? "You" : "Tallowcrest", text, machine.clock.now()});
        }
        return messages;
    }

    QScrollBar& bar() { return *area().verticalScrollBar(); }
    bool isAtEnd() { return bar().value() == bar().maximum(); }

    /// The beginning of the message at the top of the view, and where it stands.
    std::pair<std::string, int> atTop() {
        auto* view = visible<ConversationView>("chat.messages");
        QWidget* message =
            view->messageAt(view->mapFrom(area().viewport(), QPoint()).y() + spacing::gap);
        const auto* text = message->findChild<SelectableText*>();
        return {text == nullptr ? "" : text->toPlainText().left(12).toStdString(),
                area().placeInView(*message)};
    }

    void ask(const char* question) {
        chat().askQuickQuestion(question);
        settleAll();
    }
};

TEST_F(ChatReadingTest, AConversationOpensAtItsEnd) {
    storeMessages(longMessages(40));
    showChat();
    EXPECT_GT(bar().maximum(), 5000);
    EXPECT_TRUE(isAtEnd());
    EXPECT_EQ(bubbles().size(), 40U);
}

TEST_F(ChatReadingTest, BeforeTheFirstQuestionThePageBeginsAtItsTop) {
    window().resize(640, 480);
    showChat();
    EXPECT_EQ(bar().value(), 0);
}

TEST_F(ChatReadingTest, TheEndIsFollowedUnlessTheOwnerReadsAbove) {
    storeKey();
    storeMessages(longMessages(10, 1500));
    showChat();
    ask("memory?");
    EXPECT_TRUE(isAtEnd()) << "a question moves to the end";
    bar().setValue(bar().maximum() / 2);
    settle();
    const auto before = atTop();
    advisor.http->willSay(std::string(3000, 'w'));
    finishWork();
    settleAll();
    EXPECT_EQ(bubbles().size(), 12U);
    EXPECT_EQ(atTop(), before);
    EXPECT_FALSE(isAtEnd());
    bar().setValue(bar().maximum());
    settle();
    ask("disk?");
    finishWork();
    settleAll();
    EXPECT_TRUE(isAtEnd());
}

TEST_F(ChatReadingTest, MessagesThatGoAboveMoveNothing) {
    storeKey();
    storeMessages(longMessages(40, 1500));
    showChat();
    ask("memory?");
    bar().setValue(bar().maximum() / 2);
    settle();
    const auto before = atTop();
    advisor.http->willSay("Yes.");
    finishWork();
    settleAll();
    EXPECT_EQ(chat().aiChatMessages().size(), 40U) << "the two oldest are gone";
    EXPECT_EQ(bubbles().size(), 40U);
    EXPECT_EQ(atTop(), before);
}

TEST_F(ChatReadingTest, ResizingKeepsTheEnd) {
    storeMessages(longMessages(20));
    showChat();
    for (const QSize size : {QSize(640, 480), QSize(1600, 1000), QSize(900, 600)}) {
        window().resize(size);
        settleAll();
        EXPECT_TRUE(isAtEnd()) << size.width();
    }
}

TEST_F(ChatReadingTest, TypingAndSamplesMoveNothing) {
    storeMessages(longMessages(20, 1000));
    showChat();
    bar().setValue(bar().maximum() / 3);
    settle();
    const auto before = atTop();
    type("a question that is typed while reading above");
    tick();
    EXPECT_EQ(atTop(), before);
}

TEST_F(ChatReadingTest, HostileTextIsDrawnPlain) {
    const std::string hostile =
        "<script>alert(1)</script><b>bold</b>\n\x1b[2J\x1b]0;title\x07 left\u202Eright " +
        std::string(10'000, 'W');
    storeMessages({{UUID::random(), "You", "why?", machine.clock.now()},
                   {UUID::random(), "<b>Tallow</b>", hostile, machine.clock.now()}});
    showChat();
    const std::string shown = bubbles().back();
    EXPECT_THAT(shown, HasSubstr("<b>Tallow</b>: <script>alert(1)</script><b>bold</b>\n"));
    EXPECT_THAT(shown, HasSubstr("left\uFFFDright"));
    for (const char* hidden : {"\x1b", "\x07", "\u202E"}) {
        EXPECT_THAT(shown, testing::Not(HasSubstr(hidden)));
    }
    for (const auto* text : window().findChildren<SelectableText*>(u"conversation.text"_s)) {
        EXPECT_LE(text->document()->size().width(), text->width()) << "a long word wraps";
        EXPECT_FALSE(text->document()->toHtml().contains("font-weight:700"_L1)) << "no markup";
    }
}

TEST_F(ChatReadingTest, UnreadableStoredMessagesGiveTheWelcome) {
    machine.store.write(stored::chatMessages.key, JSONData{"[{\"role\": 7"});
    showChat();
    EXPECT_THAT(bubbles(), ElementsAre(HasSubstr("Ask me what is slowing")));
}

TEST_F(ChatReadingTest, ArrivingMessagesAreSaid) {
    showChat();
    const Announcements announcements;
    ask("How much space is left?");
    EXPECT_THAT(
        announcements.said(),
        Contains(testing::StartsWith("You: How much space is left?\nTallowcrest: This Mac has")));
    const auto count = announcements.said().size();
    tick();
    EXPECT_EQ(announcements.said().size(), count) << "a sample brings no message";
    EXPECT_THAT(announcements.repeated(), testing::IsEmpty());
}

TEST_F(ChatReadingTest, WhatArrivedWhileThePageWasHiddenIsNotSaidAsNew) {
    showChat();
    goTo(AppRoute::overview);
    chat().askQuickQuestion("disk?");
    const Announcements announcements;
    goTo(AppRoute::chat);
    settleAll();
    EXPECT_EQ(bubbles().size(), 3U);
    EXPECT_THAT(announcements.said(), testing::Not(Contains(HasSubstr("You: disk?"))));
}

TEST_F(ChatReadingTest, TabGoesFromThePromptsToAMessageAndTheInput) {
    window().resize(900, 600);
    showChat();
    type("x");
    visible("chat.prompt-4.ask")->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(tabOrder(5).toStdString(),
              "chat.prompt-4.ask conversation.text chat.input chat.send chat.settings");
}

TEST_F(ChatReadingTest, ThePanelStandsBesideTheConversationWhereThereIsRoom) {
    window().resize(1200, 900);
    showChat();
    const auto leftOf = [this](const char* identifier) {
        return visible(identifier)->mapTo(&window(), QPoint()).x();
    };
    EXPECT_GT(leftOf("chat.panel"), leftOf("chat.conversation"));
    window().resize(800, 900);
    settleAll();
    EXPECT_EQ(leftOf("chat.panel"), leftOf("chat.conversation"));
    window().resize(1200, 900);
    settleAll();
    EXPECT_GT(leftOf("chat.panel"), leftOf("chat.conversation"));
}

TEST_F(ChatReadingTest, TheInputIsInViewAtEverySize) {
    storeMessages(longMessages(10));
    for (const QSize size : {QSize(640, 480), QSize(900, 600), QSize(1600, 1000)}) {
        window().resize(size);
        showChat();
        const QWidget* field = visible("chat.input");
        EXPECT_TRUE(
            window().rect().contains(QRect(field->mapTo(&window(), QPoint()), field->size())))
            << size.width();
        EXPECT_GE(area().height(), 120) << size.width();
    }
}

}  // namespace
}  // namespace tallowcrest

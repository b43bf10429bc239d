#include "presentation/widgets/conversation_view.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include "presentation/widgets/selectable_text.h"
#include "tests/presentation/is_ringed.h"
#include "tests/presentation/widget_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class ConversationViewTest : public WidgetFixture {
protected:
    ConversationViewTest() {
        auto* content = new QWidget;
        auto* layout = new QVBoxLayout(content);
        layout->addWidget(view);
        layout->addStretch(1);
        area.setWidgetResizable(true);
        area.setWidget(content);
        area.resize(600, 400);
        area.show();
        area.activateWindow();
        settle();
    }
    QWidget& root() override { return area; }

    static ConversationMessage message(const QString& text, bool isOwn = false) {
        return {u"sparkle"_s, isOwn ? u"You"_s : u"Tallowcrest"_s, u"2:03 PM"_s, text, isOwn};
    }
    static std::vector<ConversationMessage> many(int count, int characters) {
        std::vector<ConversationMessage> messages;
        for (int i = 0; i < count; ++i) {
            messages.push_back(
                message(u"Message %1 "_s.arg(i) + QString(u"word "_s).repeated(characters / 5)));
        }
        return messages;
    }

    QStringList texts() {
        QStringList found;
        for (const auto* each : view->findChildren<SelectableText*>()) {
            found.append(each->toPlainText().left(12));
        }
        return found;
    }
    /// Runs the turns in which the messages out of view are laid out.
    void layOutAll() {
        for (int turn = 0; turn < 500 && !view->isMeasured(); ++turn) {
            settle();
        }
        ASSERT_TRUE(view->isMeasured());
        settle();
    }

    QScrollArea area;
    ConversationView* view = new ConversationView(u"messages"_s);
};

TEST_F(ConversationViewTest, LaysOutOnlyTheEndAtFirst) {
    view->append(many(40, 4000));
    EXPECT_LT(texts().size(), 6) << "not forty";
    EXPECT_TRUE(texts().contains(u"Message 39 w"_s));
    EXPECT_FALSE(view->isMeasured());
    layOutAll();
    EXPECT_EQ(texts().size(), 40);
}

TEST_F(ConversationViewTest, EveryMessageHasTheRoomThatItNeeds) {
    view->append(many(12, 900));
    layOutAll();
    int above = -1;
    for (const auto* bubble : view->findChildren<ConversationBubble*>()) {
        EXPECT_GT(bubble->y(), above);
        above = bubble->geometry().bottom();
        const auto* text = bubble->findChild<SelectableText*>();
        EXPECT_GE(text->height(), text->heightForWidth(text->width()));
        EXPECT_TRUE(bubble->rect().contains(text->geometry()));
    }
    EXPECT_EQ(view->height(), above + 1);
    area.resize(420, 400);
    layOutAll();
    EXPECT_GT(view->height(), above + 1) << "a narrower conversation is longer";
}

TEST_F(ConversationViewTest, TheOwnersMessagesStandAtTheRight) {
    view->append({message(u"question"_s, true), message(u"answer"_s)});
    settle();
    const auto bubbles = view->findChildren<ConversationBubble*>();
    EXPECT_EQ(bubbles[0]->geometry().right(), view->width() - 1);
    EXPECT_GT(bubbles[0]->x(), 0);
    EXPECT_EQ(bubbles[1]->x(), 0);
    EXPECT_EQ(bubbles[0]->accessibleName(), u"You, 2:03 PM"_s);
}

TEST_F(ConversationViewTest, TheOldestCanGo) {
    view->append(many(3, 20));
    view->removeFirst(2);
    settle();
    EXPECT_EQ(texts(), QStringList(u"Message 2 wo"_s));
    EXPECT_EQ(view->findChild<ConversationBubble*>()->y(), 0);
    view->removeFirst(9);
    settle();
    EXPECT_EQ(texts(), QStringList());
    EXPECT_EQ(view->messageAt(0), nullptr);
}

TEST_F(ConversationViewTest, TabReachesOneMessageAndTheArrowsTheOthers) {
    view->append(many(3, 20));
    settle();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&area));
    const auto texts = view->findChildren<SelectableText*>();
    std::vector<bool> stops;
    for (const auto* each : texts) {
        stops.push_back(each->focusPolicy() == Qt::StrongFocus);
    }
    EXPECT_EQ(std::ranges::count(stops, true), 1);
    const auto focused = [] {
        auto* text = qobject_cast<SelectableText*>(QApplication::focusWidget());
        return text == nullptr ? QString() : text->toPlainText().left(9);
    };
    for (auto* each : texts) {
        if (each->focusPolicy() == Qt::StrongFocus) {
            each->setFocus(Qt::TabFocusReason);
        }
    }
    EXPECT_EQ(focused(), u"Message 2"_s);
    EXPECT_TRUE(
        isRinged(*QApplication::focusWidget()->parentWidget(), CrestTheme::current().accentText));
    press(Qt::Key_Up);
    EXPECT_EQ(focused(), u"Message 1"_s);
    press(Qt::Key_Up);
    press(Qt::Key_Up);
    EXPECT_EQ(focused(), u"Message 0"_s) << "the first is the last above";
    press(Qt::Key_Down);
    EXPECT_EQ(focused(), u"Message 1"_s);
}

TEST_F(ConversationViewTest, SaysWhichMessageIsAtAHeight) {
    view->append(many(5, 20));
    layOutAll();
    const auto bubbles = view->findChildren<ConversationBubble*>();
    EXPECT_EQ(view->messageAt(-50), bubbles[0]);
    EXPECT_EQ(view->messageAt(bubbles[3]->y() + 2), bubbles[3]);
    EXPECT_EQ(view->messageAt(view->height() + 500), bubbles[4]);
}

}  // namespace
}  // namespace tallowcrest

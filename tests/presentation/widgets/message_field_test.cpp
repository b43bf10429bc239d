#include "presentation/widgets/message_field.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QVBoxLayout>

#include "tests/presentation/widget_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class MessageFieldTest : public WidgetFixture {
protected:
    MessageFieldTest() {
        auto* layout = new QVBoxLayout(&page);
        layout->addWidget(&field);
        layout->addStretch(1);
        page.resize(400, 400);
        page.show();
        page.activateWindow();
        field.takeFocus();
    }
    void SetUp() override { ASSERT_TRUE(QTest::qWaitForWindowActive(&page)); }
    QWidget& root() override { return page; }

    QWidget page;
    MessageField field{u"field"_s, u"Question"_s, u"Ask something"_s, &page};
    QSignalSpy edits{&field, &MessageField::textEdited};
    QSignalSpy sends{&field, &MessageField::sendWanted};
};

TEST_F(MessageFieldTest, ReturnSendsAndShiftReturnMakesALine) {
    QTest::keyClicks(QApplication::focusWidget(), u"one"_s);
    press(Qt::Key_Return, Qt::ShiftModifier);
    QTest::keyClicks(QApplication::focusWidget(), u"two"_s);
    EXPECT_EQ(field.text(), u"one\ntwo"_s);
    EXPECT_EQ(sends.count(), 0);
    press(Qt::Key_Return);
    press(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(sends.count(), 2);
    EXPECT_EQ(field.text(), u"one\ntwo"_s) << "the receiver empties it";
}

TEST_F(MessageFieldTest, AHeldReturnSendsOnce) {
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, u"\r"_s, true);
    QApplication::sendEvent(QApplication::focusWidget(), &held);
    EXPECT_EQ(sends.count(), 0);
    EXPECT_EQ(field.text(), QString());
}

TEST_F(MessageFieldTest, GrowsWithItsLinesUpToAFew) {
    settle();
    const int one = field.height();
    const auto heightOf = [&](const QString& text) {
        field.setText(text);
        settle();
        return field.height();
    };
    EXPECT_EQ(heightOf(u"one line"_s), one);
    const int three = heightOf(u"one\ntwo\nthree"_s);
    EXPECT_GT(three, one);
    const int most = heightOf(u"1\n2\n3\n4\n5"_s);
    EXPECT_GT(most, three);
    EXPECT_EQ(heightOf(QString(5000, u'w')), most) << "a long word wraps, and then it scrolls";
    EXPECT_EQ(heightOf(QString()), one);
}

TEST_F(MessageFieldTest, HasRoomForAPromptOfTwoLinesAlsoWithAText) {
    MessageField narrow(u"narrow"_s, u"Question"_s, u"A prompt of a few words"_s);
    narrow.resize(120, 60);
    narrow.show();
    settle();
    const int empty = narrow.height();
    EXPECT_GT(empty, field.height());
    narrow.setText(u"x"_s);
    settle();
    EXPECT_EQ(narrow.height(), empty);
}

TEST_F(MessageFieldTest, OnlyTheOwnersEditsAreReported) {
    field.setText(u"from elsewhere"_s);
    EXPECT_EQ(edits.count(), 0);
    QTest::keyClicks(QApplication::focusWidget(), u"!"_s);
    ASSERT_EQ(edits.count(), 1);
    EXPECT_EQ(edits.first().first().toString(), u"from elsewhere!"_s) << "the caret is at the end";
    field.setText(u"from elsewhere!"_s);
    EXPECT_EQ(edits.count(), 1);
}

TEST_F(MessageFieldTest, TabMovesOn) {
    QLineEdit next(&page);
    next.show();
    press(Qt::Key_Tab);
    EXPECT_EQ(field.text(), QString());
    EXPECT_TRUE(next.hasFocus());
}

TEST_F(MessageFieldTest, HasANameAndAPrompt) {
    const auto* editor = field.findChild<QPlainTextEdit*>(u"field"_s);
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->accessibleName(), u"Question"_s);
    EXPECT_EQ(editor->placeholderText(), u"Ask something"_s);
}

}  // namespace
}  // namespace tallowcrest

#include "presentation/widgets/secret_field.h"

#include <string>

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>

#include "core/secret_text.h"
#include "tests/presentation/widget_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// What the field offers to assistive technology that can read texts, as Qt's bridge asks it.
QString readableText(QAccessibleInterface& spoken) {
    QAccessibleTextInterface& text = *spoken.textInterface();
    return spoken.text(QAccessible::Value) + text.text(0, text.characterCount());
}

class SecretFieldTest : public WidgetFixture {
protected:
    void SetUp() override {
        field.show();
        field.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&field));
        field.setFocus();
        QObject::connect(&field, &SecretField::edited,
                         [this](int first, int removed, std::string_view inserted) {
                             kept = kept.replacing(static_cast<std::size_t>(first),
                                                   static_cast<std::size_t>(removed), inserted);
                         });
    }
    QWidget& root() override { return field; }
    /// What whoever keeps the secret has.
    std::string content() {
        EXPECT_EQ(field.text(), QString(field.length(), u'\u2022'));
        EXPECT_EQ(static_cast<std::size_t>(field.length()), kept.characterCount());
        return std::string(kept.view());
    }
    QAccessibleInterface& spoken() { return *QAccessible::queryAccessibleInterface(&field); }

    SecretField field{u"probe"_s, 16};
    SecretText kept;
};

TEST_F(SecretFieldTest, IsTypedIntoAndDrawnAsDots) {
    QTest::keyClicks(&field, u"sk-bc"_s);
    field.insert(u"\u00e4"_s);
    EXPECT_EQ(content(), "sk-bc\u00e4");
    EXPECT_FALSE(field.displayText().contains(u'b'));
    EXPECT_TRUE(field.inputMethodHints().testFlag(Qt::ImhSensitiveData));
    EXPECT_TRUE(field.inputMethodHints().testFlag(Qt::ImhNoPredictiveText));
}

TEST_F(SecretFieldTest, NoKeyPutsARealCharacterIn) {
    const auto type = [this](const QString& text, Qt::KeyboardModifiers modifiers) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_unknown, modifiers, text);
        QApplication::sendEvent(&field, &event);
    };
    for (const QString& text : {u"\u200b"_s, u"\ue000"_s, u"\U0001F511"_s, u"\u00ad"_s}) {
        type(text, Qt::NoModifier);
    }
    EXPECT_EQ(content(), "\u200b\ue000\U0001F511\u00ad");
    for (const Qt::KeyboardModifiers modifiers :
         {Qt::KeyboardModifiers(Qt::AltModifier), Qt::KeyboardModifiers(Qt::MetaModifier),
          Qt::ControlModifier | Qt::ShiftModifier, Qt::ControlModifier | Qt::AltModifier}) {
        for (const QString& text : {u"\u200b"_s, u"\ue000"_s, u"x"_s, u"\t"_s, u"\u0085"_s}) {
            type(text, modifiers);
        }
    }
    EXPECT_EQ(content(), "\u200b\ue000\U0001F511\u00ad") << "a command is no text";
}

TEST_F(SecretFieldTest, CannotBeCopied) {
    QGuiApplication::clipboard()->setText(u"before"_s);
    QTest::keyClicks(&field, u"sk-abc"_s);
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_C, Qt::ControlModifier);
    press(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"before"_s);
}

TEST_F(SecretFieldTest, AssistiveTechnologyWritesButNeverReadsIt) {
    QTest::keyClicks(&field, u"sk-abc"_s);
    EXPECT_EQ(readableText(spoken()), QString(6, u'\u2022'));
    EXPECT_EQ(spoken().role(), QAccessible::EditableText);
    EXPECT_TRUE(spoken().state().passwordEdit);
    EXPECT_TRUE(spoken().state().focused);
    QAccessibleEditableTextInterface* writable = spoken().editableTextInterface();
    ASSERT_NE(writable, nullptr);
    writable->replaceText(0, 6, u"sk-other"_s);
    EXPECT_EQ(content(), "sk-other");
    writable->deleteText(3, 8);
    writable->insertText(3, u"xyz"_s);
    EXPECT_EQ(content(), "sk-xyz");
    writable->replaceText(-5, 500, u"all"_s);
    EXPECT_EQ(content(), "all") << "places beyond the text";
}

TEST_F(SecretFieldTest, AssistiveTechnologyMovesAndSelectsInIt) {
    QTest::keyClicks(&field, u"sk-abc"_s);
    QAccessibleTextInterface& text = *spoken().textInterface();
    text.setCursorPosition(2);
    EXPECT_EQ(text.cursorPosition(), 2);
    EXPECT_EQ(text.selectionCount(), 0);
    text.addSelection(3, 500);
    int first = -1;
    int end = -1;
    text.selection(0, &first, &end);
    EXPECT_EQ(text.selectionCount(), 1);
    EXPECT_EQ(first, 3);
    EXPECT_EQ(end, 6);
    text.removeSelection(0);
    EXPECT_EQ(text.selectionCount(), 0);
    EXPECT_TRUE(text.attributes(0, &first, &end).isEmpty());
    EXPECT_EQ(end, 6);
}

TEST_F(SecretFieldTest, IsEditedLikeAnotherField) {
    QTest::keyClicks(&field, u"sk-abcd"_s);
    press(Qt::Key_Backspace);
    EXPECT_EQ(content(), "sk-abc");
    press(Qt::Key_Home);
    press(Qt::Key_Delete);
    EXPECT_EQ(content(), "k-abc");
    press(Qt::Key_Right);
    QTest::keyClicks(&field, u"xy"_s);
    EXPECT_EQ(content(), "kxy-abc");
    press(Qt::Key_Left, Qt::ShiftModifier);
    press(Qt::Key_Left, Qt::ShiftModifier);
    QTest::keyClicks(&field, u"Z"_s);
    EXPECT_EQ(content(), "kZ-abc");
    press(Qt::Key_Home, Qt::ShiftModifier);
    press(Qt::Key_Backspace);
    EXPECT_EQ(content(), "-abc");
    press(Qt::Key_End);
    press(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_EQ(content(), "") << "the word before the cursor is all of it";
    press(Qt::Key_Backspace);
    EXPECT_EQ(content(), "");
}

TEST_F(SecretFieldTest, IsPastedInto) {
    QGuiApplication::clipboard()->setText(u"sk-\U0001F511\n"_s);
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(content(), "sk-\U0001F511\n") << "whoever takes it trims it";
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_Insert, Qt::ShiftModifier);
    EXPECT_EQ(content(), "sk-\U0001F511\n") << "in place of the selection";
    press(Qt::Key_Backspace);
    press(Qt::Key_Backspace);
    EXPECT_EQ(content(), "sk-");
}

TEST_F(SecretFieldTest, TakesWhatAnInputMethodCommitsAndShowsNothingOfTheRest) {
    QInputMethodEvent composing(u"sk-ab"_s, {});
    QApplication::sendEvent(&field, &composing);
    EXPECT_EQ(content(), "");
    EXPECT_FALSE(field.displayText().contains(u's'));
    QInputMethodEvent committed;
    committed.setCommitString(u"sk-ab"_s);
    QApplication::sendEvent(&field, &committed);
    EXPECT_EQ(content(), "sk-ab");
}

TEST_F(SecretFieldTest, WhatDoesNotFitIsNotPutInAtAll) {
    int refusals = 0;
    QObject::connect(&field, &SecretField::overfilled, [&refusals] { ++refusals; });
    field.insert(QString(16, u'k'));
    QTest::keyClicks(&field, u"x"_s);
    EXPECT_EQ(content(), std::string(16, 'k'));
    EXPECT_EQ(refusals, 1);
    field.selectAll();
    field.insert(QString(17, u'z'));
    EXPECT_EQ(content(), std::string(16, 'k'));
    EXPECT_EQ(refusals, 2);
}

TEST_F(SecretFieldTest, NothingIsUndone) {
    QTest::keyClicks(&field, u"sk-0123456789"_s);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(content(), "sk-0123456789");
    kept = {};
    field.setLength(0);
    press(Qt::Key_Z, Qt::ControlModifier);
    press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(content(), "");
}

}  // namespace
}  // namespace tallowcrest

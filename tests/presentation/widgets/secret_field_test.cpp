#include "presentation/widgets/secret_field.h"

#include <string>

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>

#include "tests/presentation/widget_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// What the field offers to assistive technology that can read texts, as Qt's bridge asks it.
QString readableText(QAccessibleInterface& spoken) {
    QAccessibleTextInterface* text = spoken.textInterface();
    return spoken.text(QAccessible::Value) +
           (text == nullptr ? QString() : text->text(0, text->characterCount()));
}

class SecretFieldTest : public WidgetFixture {
protected:
    void SetUp() override {
        field.show();
        field.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&field));
        field.setFocus();
    }
    QWidget& root() override { return field; }
    std::string content() {
        std::string found;
        field.withText([&found](std::string_view text) { found = text; });
        return found;
    }
    QAccessibleInterface& spoken() { return *QAccessible::queryAccessibleInterface(&field); }

    SecretField field{u"probe"_s};
};

TEST_F(SecretFieldTest, IsTypedIntoAndDrawnAsDots) {
    QTest::keyClicks(&field, u"sk-bc"_s);
    field.insert(u"\u00e4"_s);
    EXPECT_EQ(content(), "sk-bc\u00e4");
    EXPECT_FALSE(field.displayText().contains(u'b'));
    EXPECT_TRUE(field.inputMethodHints().testFlag(Qt::ImhSensitiveData));
    EXPECT_TRUE(field.inputMethodHints().testFlag(Qt::ImhNoPredictiveText));
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
    EXPECT_EQ(readableText(spoken()), QString());
    EXPECT_EQ(spoken().textInterface(), nullptr) << "Qt would report each inserted text by it";
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

TEST_F(SecretFieldTest, WipingRemovesTheTextForGood) {
    QTest::keyClicks(&field, u"sk-0123456789"_s);
    field.wipe();
    EXPECT_EQ(content(), "");
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(content(), "") << "undo does not bring it back";
}

}  // namespace
}  // namespace tallowcrest

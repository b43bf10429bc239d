// The look of a message in a conversation.

#include <QClipboard>
#include <QMimeData>

#include "presentation/widgets/selectable_text.h"
#include "presentation/widgets/theme.h"
#include "tests/presentation/widget_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class BareTextTest : public WidgetFixture {
protected:
    BareTextTest() {
        text.resize(300, 200);
        text.show();
        text.activateWindow();
    }
    QWidget& root() override { return text; }

    SelectableText text{u"text"_s, nullptr, SelectableText::Look::bare};
};

TEST_F(BareTextTest, DrawsMarkupAsItIs) {
    const QString hostile = u"<b>bold</b> <a href='http://x'>link</a>\n<img src='/etc/passwd'>"_s;
    text.showText(hostile);
    EXPECT_EQ(text.toPlainText(), hostile);
    EXPECT_EQ(text.accessibleName(), hostile);
}

TEST_F(BareTextTest, WrapsAWordThatIsWiderThanItself) {
    text.showText(u"short"_s);
    const int oneLine = text.heightForWidth(300);
    text.showText(QString(10'000, u'W'));
    EXPECT_GT(text.heightForWidth(300), 100 * oneLine);
    EXPECT_LT(text.heightForWidth(600), text.heightForWidth(300));
    text.resize(300, text.heightForWidth(300));
    EXPECT_LE(text.document()->size().width(), 300.0);
    EXPECT_LE(text.document()->size().height(), text.height()) << "all of it is in view";
}

TEST_F(BareTextTest, TheKeyboardCopiesPlainText) {
    text.showText(u"<i>one</i>\ntwo"_s);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&text));
    text.setFocus();
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_C, Qt::ControlModifier);
    const QMimeData* copied = QApplication::clipboard()->mimeData();
    EXPECT_EQ(copied->text(), u"<i>one</i>\ntwo"_s);
    EXPECT_FALSE(copied->hasHtml());
}

TEST_F(BareTextTest, IsNeverChanged) {
    text.showText(u"fixed"_s);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&text));
    text.setFocus();
    for (const Qt::Key key : {Qt::Key_X, Qt::Key_Delete, Qt::Key_Return, Qt::Key_Space}) {
        press(key);
    }
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(text.toPlainText(), u"fixed"_s);
}

TEST_F(BareTextTest, TheSameTextKeepsTheSelection) {
    text.showText(u"some words"_s);
    text.selectAll();
    text.showText(u"some words"_s);
    EXPECT_EQ(text.textCursor().selectedText(), u"some words"_s);
    text.showText(u"others"_s);
    EXPECT_FALSE(text.textCursor().hasSelection());
}

TEST_F(BareTextTest, AssistiveTechnologyReadsAPlainText) {
    text.showText(u"to be read"_s);
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&text);
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->role(), QAccessible::StaticText);
    EXPECT_EQ(spoken->text(QAccessible::Name), u"to be read"_s);
    EXPECT_EQ(spoken->childCount(), 0);
    EXPECT_EQ(spoken->editableTextInterface(), nullptr);
}

}  // namespace
}  // namespace tallowcrest

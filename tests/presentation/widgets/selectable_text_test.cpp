#include "presentation/widgets/selectable_text.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QWheelEvent>

#include "presentation/widgets/page_scroll_area.h"
#include "tests/presentation/widget_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// A text on a page that scrolls.
class SelectableTextTest : public WidgetFixture {
protected:
    SelectableTextTest() {
        auto* content = new QWidget;
        auto* column = new QVBoxLayout(content);
        column->addWidget(text);
        column->addStretch(1);
        area = new PageScrollArea(content, &page);
        auto* layout = new QVBoxLayout(&page);
        layout->addWidget(area);
        page.resize(400, 300);
        page.show();
        page.activateWindow();
    }
    void SetUp() override { ASSERT_TRUE(QTest::qWaitForWindowActive(&page)); }
    QWidget& root() override { return page; }

    void show(const QString& words) {
        text->showText(words);
        settle();
        settle();
    }

    QWidget page;
    PageScrollArea* area = nullptr;
    SelectableText* text = new SelectableText(u"probe"_s);
};

TEST_F(SelectableTextTest, MarkupIsShownAsItIs) {
    show(u"<b>bold</b> &lt; <img src=x>"_s);
    EXPECT_EQ(text->toPlainText(), u"<b>bold</b> &lt; <img src=x>"_s);
    EXPECT_EQ(text->accessibleName(), text->shownText());
}

TEST_F(SelectableTextTest, IsAsHighAsItsTextAndNoWiderThanItsRoom) {
    show(u"one"_s);
    const int one = text->height();
    EXPECT_LT(one, 50);
    show(u"one\ntwo\nthree"_s);
    const int three = text->height();
    EXPECT_GT(three, one + 20);
    for (const QString& words : {QString(10'000, u'W'), u"some words "_s.repeated(900)}) {
        show(words);
        EXPECT_LE(text->width(), 400);
        EXPECT_GE(text->height(), static_cast<int>(text->document()->size().height()));
        EXPECT_GT(text->height(), 2000);
    }
    show(u"one"_s);
    EXPECT_EQ(text->height(), one);
}

TEST_F(SelectableTextTest, IsCopiedAsPlainTextByKeyboard) {
    show(u"one <i>two</i>\nthree"_s);
    text->setFocus(Qt::TabFocusReason);
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"one <i>two</i>\nthree"_s);
    EXPECT_FALSE(QGuiApplication::clipboard()->mimeData()->hasHtml());
    press(Qt::Key_X);
    press(Qt::Key_Delete);
    EXPECT_EQ(text->toPlainText(), u"one <i>two</i>\nthree"_s) << "read only";
}

TEST_F(SelectableTextTest, TheSameTextKeepsTheSelection) {
    show(u"one two"_s);
    text->selectAll();
    show(u"one two"_s);
    EXPECT_TRUE(text->textCursor().hasSelection());
    show(u"three"_s);
    EXPECT_FALSE(text->textCursor().hasSelection());
}

TEST_F(SelectableTextTest, LeavesTheKeysAndTheWheelToThePage) {
    show(u"line\n"_s.repeated(200));
    text->setFocus(Qt::TabFocusReason);
    press(Qt::Key_PageDown);
    EXPECT_GT(area->verticalScrollBar()->value(), 0);
    const QPointF centre = QRectF(text->viewport()->rect()).center();
    QWheelEvent turn(centre, text->viewport()->mapToGlobal(centre), {}, {0, -240}, Qt::NoButton,
                     Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(text->viewport(), &turn);
    // Qt passes an event that was made by a program to no parent.
    EXPECT_FALSE(turn.isAccepted()) << "it goes on to the page";
}

TEST_F(SelectableTextTest, AssistiveTechnologyReadsItAndCannotChangeIt) {
    show(u"An answer."_s);
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(text);
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->role(), QAccessible::StaticText);
    EXPECT_EQ(spoken->text(QAccessible::Name), u"An answer."_s);
    EXPECT_EQ(spoken->editableTextInterface(), nullptr);
    EXPECT_TRUE(spoken->state().focusable);
    EXPECT_TRUE(spoken->state().readOnly);
    EXPECT_TRUE(spoken->state().selectableText);
    EXPECT_EQ(spoken->childCount(), 0);
}

TEST_F(SelectableTextTest, AssistiveTechnologyReadsATextWithAnotherNameByItsParts) {
    text->setShortName(u"Payload"_s);
    show(u"CPU 3%\nMemory 40%"_s);
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(text);
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->text(QAccessible::Name), u"Payload"_s);
    QAccessibleTextInterface* read = spoken->textInterface();
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->text(0, read->characterCount()), u"CPU 3%\nMemory 40%"_s);
    int start = 0;
    int end = 0;
    EXPECT_EQ(read->textAtOffset(8, QAccessible::LineBoundary, &start, &end), u"Memory 40%"_s);
    EXPECT_EQ(start, 7);
    EXPECT_EQ(end, 17);

    EXPECT_EQ(read->text(5, 3), QString());
    EXPECT_EQ(read->text(7, 99), u"Memory 40%"_s);

    read->setSelection(0, 7, 99);
    EXPECT_EQ(text->textCursor().selectedText(), u"Memory 40%"_s);
    EXPECT_EQ(read->selectionCount(), 1);
    read->selection(0, &start, &end);
    EXPECT_EQ(start, 7);
    EXPECT_EQ(end, 17);
    read->removeSelection(0);
    EXPECT_EQ(read->selectionCount(), 0);
    read->setCursorPosition(-1);
    EXPECT_EQ(read->cursorPosition(), 0);

    const QRect first = read->characterRect(0);
    EXPECT_TRUE(QRect(page.mapToGlobal(QPoint()), page.size()).contains(first)) << "on the page";
    EXPECT_EQ(read->offsetAtPoint(first.center() - QPoint(1, 0)), 0);
    EXPECT_GT(read->characterRect(7).top(), first.top());
}

}  // namespace
}  // namespace tallowcrest

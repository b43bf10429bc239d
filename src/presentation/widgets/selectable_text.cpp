#include "presentation/widgets/selectable_text.h"

#include <algorithm>
#include <cmath>

#include <QAccessibleWidget>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QTextOption>
#include <QWheelEvent>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int textMargin = 10;
constexpr int preferredWidth = 480;
constexpr int frameRadius = 8;

/// Qt's own interface of such a text would let assistive technology change it.
class TextInterface final : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit TextInterface(SelectableText* text)
        : QAccessibleWidget(text, QAccessible::StaticText) {}

    /// Its viewport and scroll bars say nothing.
    int childCount() const override { return 0; }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = true;
        state.selectableText = true;
        state.multiLine = true;
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::TextInterface && isValid()
                   ? static_cast<QAccessibleTextInterface*>(this)
                   : QAccessibleWidget::interface_cast(type);
    }

    using QAccessibleWidget::text;
    QString text(int startOffset, int endOffset) const override {
        return shown().shownText().mid(startOffset, std::max(endOffset - startOffset, 0));
    }
    int characterCount() const override { return static_cast<int>(shown().shownText().size()); }
    int cursorPosition() const override { return shown().textCursor().position(); }
    void setCursorPosition(int position) override { select(position, position); }
    int selectionCount() const override { return shown().textCursor().hasSelection() ? 1 : 0; }
    void selection(int, int* startOffset, int* endOffset) const override {
        *startOffset = shown().textCursor().selectionStart();
        *endOffset = shown().textCursor().selectionEnd();
    }
    void addSelection(int startOffset, int endOffset) override { select(startOffset, endOffset); }
    void setSelection(int, int startOffset, int endOffset) override {
        select(startOffset, endOffset);
    }
    void removeSelection(int) override { setCursorPosition(cursorPosition()); }
    QRect characterRect(int offset) const override {
        QTextCursor cursor = cursorAt(offset);
        const QRect caret = shown().cursorRect(cursor);
        cursor.movePosition(QTextCursor::NextCharacter);
        const int width = shown().cursorRect(cursor).left() - caret.left();
        return {shown().viewport()->mapToGlobal(caret.topLeft()),
                QSize(std::max(width, 1), caret.height())};
    }
    int offsetAtPoint(const QPoint& point) const override {
        return shown().cursorForPosition(shown().viewport()->mapFromGlobal(point)).position();
    }
    /// All of the text is shown; it is the page that scrolls.
    void scrollToSubstring(int, int) override {}
    QString attributes(int, int* startOffset, int* endOffset) const override {
        *startOffset = 0;
        *endOffset = characterCount();
        return {};
    }

private:
    SelectableText& shown() const { return *static_cast<SelectableText*>(object()); }

    QTextCursor cursorAt(int offset) const {
        QTextCursor cursor(shown().document());
        cursor.setPosition(std::clamp(offset, 0, shown().document()->characterCount() - 1));
        return cursor;
    }

    void select(int startOffset, int endOffset) {
        QTextCursor cursor = cursorAt(startOffset);
        cursor.setPosition(cursorAt(endOffset).position(), QTextCursor::KeepAnchor);
        shown().setTextCursor(cursor);
    }
};

QAccessibleInterface* textInterface(const QString&, QObject* object) {
    auto* text = qobject_cast<SelectableText*>(object);
    return text != nullptr ? new TextInterface(text) : nullptr;
}

double heightOf(QTextDocument& document, int width) {
    document.setTextWidth(width);
    return document.size().height();
}

}  // namespace

SelectableText::SelectableText(const QString& identifier, QWidget* parent, Look look)
    : QTextEdit(parent), look_(look) {
    QAccessible::installFactory(textInterface);  // which Qt keeps once
    setObjectName(identifier);
    setFont(CrestFonts::current().body);
    if (look_ == Look::framed) {
        setAccessibleDescription(u"The text can be selected and copied"_s);
    }
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    setUndoRedoEnabled(false);
    setAcceptRichText(false);
    setReadOnly(true);
    setTextInteractionFlags(look_ == Look::framed
                                ? Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard
                                : Qt::TextInteractionFlags(Qt::TextSelectableByMouse));
    setTabChangesFocus(true);
    setFocusPolicy(Qt::StrongFocus);
    setAcceptDrops(false);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    prepare(*document());
}

void SelectableText::prepare(QTextDocument& document) const {
    document.setDefaultFont(font());
    document.setDocumentMargin(margin());
    QTextOption option;
    // A word that is longer than the line must not widen the page.
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document.setDefaultTextOption(option);
}

int SelectableText::margin() const {
    return look_ == Look::framed ? textMargin : 0;
}

void SelectableText::showText(const QString& text) {
    if (text == text_) {
        return;
    }
    text_ = text;
    heights_.clear();
    setPlainText(text);
    setSpokenName(*this, shortName_.isEmpty() ? text : shortName_);
    updateGeometry();
}

void SelectableText::setShortName(const QString& name) {
    shortName_ = name;
    setSpokenName(*this, name);
}

bool SelectableText::isBeingRead() const {
    return hasFocus() || textCursor().hasSelection();
}

QSize SelectableText::sizeHint() const {
    return {preferredWidth, minimumSizeHint().height()};
}

QSize SelectableText::minimumSizeHint() const {
    const QFontMetrics metrics(font());
    return {2 * margin() + metrics.horizontalAdvance(u'W'), 2 * margin() + metrics.lineSpacing()};
}

int SelectableText::heightForWidth(int width) const {
    const auto known = heights_.find(width);
    if (known != heights_.end()) {
        return known->second;
    }
    double height = 0.0;
    if (document()->textWidth() == width) {
        height = document()->size().height();
    } else if (look_ == Look::bare) {
        // It is measured for the width that it then gets, so this is also its layout.
        heights_.clear();
        height = heightOf(*document(), width);
    } else {
        // Not the document that is shown, which would have to be laid out again afterwards: layouts
        // ask for several widths.
        QTextDocument measured;
        prepare(measured);
        measured.setPlainText(text_);
        height = heightOf(measured, width);
    }
    return heights_.emplace(width, static_cast<int>(std::ceil(height))).first->second;
}

void SelectableText::changeEvent(QEvent* event) {
    QTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        heights_.clear();
        updateGeometry();
    }
}

QMimeData* SelectableText::createMimeDataFromSelection() const {
    auto* copied = new QMimeData;
    copied->setText(textCursor().selection().toPlainText());
    return copied;
}

void SelectableText::keyPressEvent(QKeyEvent* event) {
    const bool isForThePage =
        look_ == Look::framed
            ? isPageScrollKey(event->key()) && event->modifiers() == Qt::NoModifier
            : !event->matches(QKeySequence::Copy) && !event->matches(QKeySequence::SelectAll);
    if (isForThePage) {
        event->ignore();
    } else {
        QTextEdit::keyPressEvent(event);
    }
}

void SelectableText::paintEvent(QPaintEvent* event) {
    if (look_ == Look::framed) {
        const CrestTheme& theme = CrestTheme::current();
        QPainter painter(viewport());
        painter.setRenderHint(QPainter::Antialiasing);
        const double inset = hasFocus() ? 1.0 : 0.5;
        painter.setPen(
            QPen(hasFocus() ? theme.accentText : theme.hairline, hasFocus() ? 2.0 : 1.0));
        painter.setBrush(theme.textFieldBackground);
        painter.drawRoundedRect(QRectF(viewport()->rect()).adjusted(inset, inset, -inset, -inset),
                                frameRadius, frameRadius);
    }
    QTextEdit::paintEvent(event);
}

void SelectableText::wheelEvent(QWheelEvent* event) {
    // For what is around it.
    event->ignore();
}

}  // namespace tallowcrest

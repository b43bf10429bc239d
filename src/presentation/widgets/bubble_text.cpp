#include "presentation/widgets/bubble_text.h"

#include <QKeyEvent>
#include <QMimeData>
#include <QTextDocumentFragment>
#include <QWheelEvent>
#include <QtMath>

#include "presentation/widgets/theme.h"

namespace tallowcrest {

BubbleText::BubbleText(const QString& identifier, QWidget* parent) : QTextEdit(parent) {
    installAccessibleFigures();
    setObjectName(identifier);
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    // Without the flag for the keyboard, which would take the arrow keys for a caret.
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    setFocusPolicy(Qt::StrongFocus);
    document()->setDocumentMargin(0);
    viewport()->setAutoFillBackground(false);
    setFont(CrestFonts::current().body);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void BubbleText::showText(const QString& text) {
    if (text == text_) {
        return;
    }
    text_ = text;
    measuredWidth_ = -1;
    setPlainText(text);
    setSpokenName(*this, text);
    updateGeometry();
}

int BubbleText::heightForWidth(int width) const {
    if (width != measuredWidth_) {
        measuredWidth_ = width;
        document()->setTextWidth(width);
        measuredHeight_ = qCeil(document()->size().height());
    }
    return measuredHeight_;
}

QSize BubbleText::sizeHint() const {
    constexpr int comfortableWidth = 320;
    return {comfortableWidth, heightForWidth(width() > 0 ? width() : comfortableWidth)};
}

QSize BubbleText::minimumSizeHint() const {
    return {8 * spacing::unit, fontMetrics().lineSpacing()};
}

QMimeData* BubbleText::createMimeDataFromSelection() const {
    auto* copied = new QMimeData;
    copied->setText(textCursor().selection().toPlainText());
    return copied;
}

void BubbleText::keyPressEvent(QKeyEvent* event) {
    // Others would scroll a text that has all the room it needs.
    if (event->matches(QKeySequence::Copy) || event->matches(QKeySequence::SelectAll)) {
        QTextEdit::keyPressEvent(event);
    } else {
        event->ignore();
    }
}

void BubbleText::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void BubbleText::changeEvent(QEvent* event) {
    QTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        measuredWidth_ = -1;
        updateGeometry();
    }
}

}  // namespace tallowcrest

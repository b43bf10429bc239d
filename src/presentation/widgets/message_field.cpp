#include "presentation/widgets/message_field.h"

#include <algorithm>

#include <QAbstractTextDocumentLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOption>
#include <QTextBlock>
#include <QtMath>

#include "presentation/widgets/theme.h"

namespace tallowcrest {
namespace {

constexpr int mostLines = 5;
constexpr int padding = 7;
constexpr int leftPadding = 9;
constexpr int narrowest = 120;
/// As high as a button, while there is one line.
constexpr int lowest = 4 * spacing::unit;

}  // namespace

MessageField::MessageField(const QString& identifier, const QString& name, const QString& prompt,
                           QWidget* parent)
    : QWidget(parent), editor_(new QPlainTextEdit(this)) {
    editor_->setObjectName(identifier);
    editor_->setAccessibleName(name);
    editor_->setAccessibleDescription(prompt);
    editor_->setPlaceholderText(prompt);
    editor_->setTabChangesFocus(true);
    editor_->setFrameShape(QFrame::NoFrame);
    editor_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    editor_->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    editor_->document()->setDocumentMargin(0);
    editor_->viewport()->setAutoFillBackground(false);
    editor_->installEventFilter(this);
    setFocusProxy(editor_);
    setMinimumWidth(narrowest);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(editor_, &QPlainTextEdit::textChanged, this, [this] { emit textEdited(text()); });
    connect(editor_->document()->documentLayout(),
            &QAbstractTextDocumentLayout::documentSizeChanged, this, &MessageField::fitHeight);
    fitHeight();
}

void MessageField::setText(const QString& text) {
    if (text == editor_->toPlainText()) {
        return;
    }
    const QSignalBlocker blocker(editor_);
    editor_->setPlainText(text);
    editor_->moveCursor(QTextCursor::End);
}

QString MessageField::text() const {
    return editor_->toPlainText();
}

void MessageField::takeFocus() {
    editor_->setFocus();
}

void MessageField::fitHeight() {
    const QFontMetrics metrics = editor_->fontMetrics();
    // The height of this kind of document is a number of lines.
    const int lines = std::clamp(
        std::max(promptLines_, qCeil(editor_->document()->size().height())), 1, mostLines);
    const int height = std::max(lowest, lines * metrics.lineSpacing() + 2 * padding + 1);
    editor_->setVerticalScrollBarPolicy(lines < mostLines ? Qt::ScrollBarAlwaysOff
                                                          : Qt::ScrollBarAsNeeded);
    if (height != minimumHeight()) {
        setFixedHeight(height);
    }
}

bool MessageField::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        update();
    } else if (event->type() == QEvent::FontChange) {
        fitHeight();
    } else if (event->type() == QEvent::KeyPress) {
        const auto& key = *static_cast<QKeyEvent*>(event);
        if (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter) {
            if (key.modifiers().testFlag(Qt::ShiftModifier)) {
                editor_->textCursor().insertBlock();
                editor_->ensureCursorVisible();
            } else if (!key.isAutoRepeat()) {
                emit sendWanted();
            }
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void MessageField::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const QRect room = rect().adjusted(leftPadding, padding, -padding, -padding);
    editor_->setGeometry(room);
    // Also with a text there is room for the prompt, so that the first letter moves nothing.
    const QFontMetrics metrics = editor_->fontMetrics();
    promptLines_ = metrics
                       .boundingRect(QRect(0, 0, room.width(), QWIDGETSIZE_MAX), Qt::TextWordWrap,
                                     editor_->placeholderText())
                       .height() /
                   metrics.lineSpacing();
    fitHeight();
}

void MessageField::paintEvent(QPaintEvent*) {
    QStyleOptionFrame option;
    option.initFrom(this);
    option.state.setFlag(QStyle::State_HasFocus, editor_->hasFocus());
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, this);
}

}  // namespace tallowcrest

#include "presentation/widgets/conversation_bubble.h"

#include <algorithm>

#include <QEvent>
#include <QFontMetrics>
#include <QPainter>

#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/selectable_text.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int padding = 12;
constexpr int lineGap = 4;
constexpr double ownGround = 0.12;

}  // namespace

ConversationBubble::ConversationBubble(const ConversationMessage& message, QWidget* parent)
    : QWidget(parent), content_(message.text), isOwn_(message.isOwn) {
    installAccessibleFigures();
    setObjectName(u"conversation.message"_s);
    setAccessibleName(message.role + u", "_s + message.time);
    icon_ =
        new IconView(message.icon, isOwn_ ? &CrestTheme::secondaryText : &CrestTheme::accentText,
                     spacing::iconSmall, this);
    // Without a ground of their own: that of the owner's messages is tinted.
    role_ = new ElidedLabel(message.role, {&CrestFonts::heading, &CrestTheme::text}, this);
    role_->setObjectName(u"conversation.role"_s);
    time_ = new ElidedLabel(message.time, {&CrestFonts::caption, &CrestTheme::secondaryText}, this);
    time_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

int ConversationBubble::textTop() const {
    return padding + std::max(spacing::iconSmall, role_->sizeHint().height()) + lineGap;
}

void ConversationBubble::setEstimatedWidth(int width) {
    const QFontMetrics metrics(CrestFonts::current().body);
    const int room = std::max(1, width - 2 * padding);
    const auto perLine = std::max<qsizetype>(1, room / std::max(1, metrics.averageCharWidth()));
    const qsizetype lines = content_.size() / perLine + content_.count(u'\n') + 1;
    neededHeight_ = textTop() + static_cast<int>(lines) * metrics.lineSpacing() + padding;
    isMeasured_ = false;
}

void ConversationBubble::measure(int width) {
    if (text_ == nullptr) {
        resize(width, height());
        makeText();
    }
    neededHeight_ = textTop() + text_->heightForWidth(std::max(1, width - 2 * padding)) + padding;
    isMeasured_ = true;
}

void ConversationBubble::makeText() {
    text_ = new SelectableText(u"conversation.text"_s, this, SelectableText::Look::bare);
    text_->installEventFilter(this);
    setTabStop(isTabStop_);
    // In the place of the conversation, not at the end of the window. Qt takes only widgets that
    // can have the focus for that.
    QWidget& conversation = *parentWidget();
    conversation.setFocusPolicy(Qt::TabFocus);
    setTabOrder(&conversation, text_);
    conversation.setFocusPolicy(Qt::NoFocus);
    place();
    text_->show();
    // Now that it has its width, or the text would be laid out once for each width on the way.
    text_->showText(content_);
}

void ConversationBubble::place() {
    const int line = textTop() - padding - lineGap;
    const int timeWidth = std::min(time_->sizeHint().width(), width() / 2);
    const int nameLeft = padding + spacing::iconSmall + spacing::unit;
    icon_->setGeometry(padding, padding + (line - spacing::iconSmall) / 2, spacing::iconSmall,
                       spacing::iconSmall);
    time_->setGeometry(width() - padding - timeWidth, padding, timeWidth, line);
    role_->setGeometry(nameLeft, padding,
                       std::max(0, width() - padding - timeWidth - spacing::unit - nameLeft), line);
    if (text_ != nullptr) {
        text_->setGeometry(padding, textTop(), std::max(1, width() - 2 * padding),
                           std::max(1, height() - textTop() - padding));
    }
}

void ConversationBubble::takeFocus() {
    if (text_ != nullptr) {
        text_->setFocus(Qt::TabFocusReason);
    }
}

void ConversationBubble::setTabStop(bool isTabStop) {
    isTabStop_ = isTabStop;
    if (text_ != nullptr) {
        text_->setFocusPolicy(isTabStop ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

bool ConversationBubble::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        update();
        if (event->type() == QEvent::FocusIn) {
            emit focused();
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ConversationBubble::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    place();
}

void ConversationBubble::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    const bool hasRing = text_ != nullptr && text_->hasFocus();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double inset = hasRing ? 1.0 : 0.5;
    painter.setPen(QPen(hasRing ? theme.accentText : theme.hairline, hasRing ? 2 : 1));
    painter.setBrush(isOwn_ ? mixedColor(theme.cardBackground, theme.accent, ownGround)
                            : theme.cardBackground);
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                            spacing::cardRadius, spacing::cardRadius);
}

}  // namespace tallowcrest

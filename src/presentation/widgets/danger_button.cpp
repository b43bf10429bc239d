#include "presentation/widgets/danger_button.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyleOptionButton>

#include "presentation/widgets/accessibility.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr double radius = 8;
// Less than the style leaves around a title, so that rounding never elides it.
constexpr int leastPadding = 8;
constexpr double hoverShare = 0.08;
constexpr double pressShare = 0.18;

}  // namespace

DangerButton::DangerButton(QWidget* parent) : QPushButton(parent) {
    installAccessibleButtons();
    setAutoDefault(false);
    // The background changes under the pointer.
    setAttribute(Qt::WA_Hover);
}

void DangerButton::setTitle(const QString& title) {
    title_ = title;
    // A single ampersand would mark a shortcut key.
    setText(QString(title).replace(u'&', u"&&"_s));
    setAccessibleName(title);
}

DangerButton::Colors DangerButton::colors(const CrestTheme& theme, bool isHovered, bool isPressed) {
    const double share = isPressed ? pressShare : isHovered ? hoverShare : 0.0;
    const QColor ground = mixedColor(theme.cardBackground, theme.bad, share);
    return {ground, readableColor(theme.bad, {ground})};
}

void DangerButton::keyPressEvent(QKeyEvent* event) {
    // On some desktops these keys press any focused button.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->ignore();
        return;
    }
    QPushButton::keyPressEvent(event);
}

void DangerButton::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QStyleOptionButton option;
    initStyleOption(&option);
    const bool isHovered = option.state & QStyle::State_MouseOver;
    const Colors shown = isEnabled() ? colors(theme, isHovered, isDown())
                                     : Colors{theme.cardBackground, theme.secondaryText};
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double inset = hasFocus() ? 1.0 : 0.5;
    const QColor outline = hasFocus() ? theme.accentText : isEnabled() ? shown.ink : theme.hairline;
    painter.setPen(QPen(outline, 2 * inset));
    painter.setBrush(shown.ground);
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
    painter.setPen(shown.ink);
    const int room = width() - 2 * leastPadding;
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(title_, Qt::ElideRight, room));
}

}  // namespace tallowcrest

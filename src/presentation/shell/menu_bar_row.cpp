#include "presentation/shell/menu_bar_row.h"

#include <QFontMetrics>
#include <QPainter>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {
namespace {

constexpr int padding = spacing::unit;
constexpr int textLeft = padding + spacing::iconSmall + spacing::unit;
constexpr int cornerRadius = 6;

}  // namespace

MenuBarRow::MenuBarRow(const QString& title, const QString& icon, const QString& identifier,
                       QWidget* parent)
    : QPushButton(parent), symbol_(icon) {
    installAccessibleButtons();
    setObjectName(identifier);
    setTitle(title);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void MenuBarRow::setTitle(const QString& title) {
    setText(title);
    setSpokenName(*this, title);
    setSpokenDescription(*this, title);
}

void MenuBarRow::setDanger(bool isDanger) {
    isDanger_ = isDanger;
    update();
}

QSize MenuBarRow::sizeHint() const {
    const int words = QFontMetrics(CrestFonts::current().body).horizontalAdvance(text());
    return {textLeft + words + padding, rowHeight};
}

void MenuBarRow::enterEvent(QEnterEvent* event) {
    QPushButton::enterEvent(event);
    update();
}

void MenuBarRow::leaveEvent(QEvent* event) {
    QPushButton::leaveEvent(event);
    update();
}

void MenuBarRow::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isDanger_ && isReturn) {
        event->ignore();
    } else if (!pressesByReturn(*this, *event)) {
        QPushButton::keyPressEvent(event);
    }
}

void MenuBarRow::paintEvent(QPaintEvent*) {
    constexpr double hoverAmount = 0.06;
    constexpr double pressAmount = 0.12;
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isEnabled() && (underMouse() || isDown())) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(
            mixedColor(theme.pageBackground, theme.text, isDown() ? pressAmount : hoverAmount));
        painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
    }
    if (hasFocus()) {
        painter.setPen(QPen(theme.accentText, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), cornerRadius, cornerRadius);
    }
    painter.drawPixmap(padding, (height() - spacing::iconSmall) / 2,
                       tintedIcon(symbol_, isDanger_ ? theme.bad : theme.secondaryText,
                                  spacing::iconSmall, devicePixelRatioF()));
    painter.setFont(CrestFonts::current().body);
    painter.setPen(!isEnabled() ? theme.secondaryText : isDanger_ ? theme.bad : theme.text);
    const int room = width() - textLeft - padding;
    painter.drawText(QRect(textLeft, 0, room, height()), Qt::AlignLeft | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(text(), Qt::ElideRight, room));
}

}  // namespace tallowcrest

#include "presentation/widgets/text_button.h"

#include <QFontMetrics>
#include <QPainter>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/figure_text.h"

namespace tallowcrest {
namespace {

constexpr int sidePadding = spacing::unit;

}  // namespace

TextButton::TextButton(const QString& identifier, const ThemeColor& color, QWidget* parent)
    : QAbstractButton(parent), color_(color) {
    installAccessibleButtons();
    setObjectName(identifier);
    // A click is no wish to go on with the keyboard, and would leave the ring there.
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void TextButton::setColor(const ThemeColor& color) {
    if (color_ != color) {
        color_ = color;
        update();
    }
}

void TextButton::setAlignment(Qt::Alignment alignment) {
    alignment_ = alignment;
    update();
}

QSize TextButton::sizeHint() const {
    const QFontMetrics metrics(CrestFonts::current().caption);
    return {metrics.horizontalAdvance(text()) + 2 * sidePadding, buttonHeight};
}

QSize TextButton::minimumSizeHint() const {
    return sizeHint();
}

void TextButton::enterEvent(QEnterEvent* event) {
    QAbstractButton::enterEvent(event);
    update();
}

void TextButton::leaveEvent(QEvent* event) {
    QAbstractButton::leaveEvent(event);
    update();
}

void TextButton::keyPressEvent(QKeyEvent* event) {
    if (!pressesByReturn(*this, *event)) {
        QAbstractButton::keyPressEvent(event);
    }
}

void TextButton::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    QFont font = CrestFonts::current().caption;
    font.setUnderline(underMouse() || isDown());
    painter.setFont(font);
    painter.setPen(color_.in(theme));
    const QFontMetrics metrics(font);
    const QRect room = rect().adjusted(sidePadding, 0, -sidePadding, 0);
    const int width = metrics.horizontalAdvance(text());
    const bool isRight = (alignment_ & Qt::AlignRight) != 0;
    painter.drawText(isRight ? room.right() + 1 - width : room.left(), textBaseline(metrics, room),
                     text());
    if (hasFocus()) {
        constexpr double ringInset = 1.0;
        constexpr double ringRadius = 6.0;
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(theme.accentText, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(
            QRectF(rect()).adjusted(ringInset, ringInset, -ringInset, -ringInset), ringRadius,
            ringRadius);
    }
}

}  // namespace tallowcrest

#include "presentation/widgets/capsule.h"

#include <QFontMetrics>
#include <QPainter>

#include "presentation/widgets/icon.h"

namespace tallowcrest {
namespace {

constexpr int capsuleHeight = 20;
constexpr int capsulePadding = 10;
constexpr int iconSize = 14;
constexpr int iconGap = 5;
constexpr double markedGround = 0.12;

}  // namespace

Capsule::Capsule(QWidget* parent) : QWidget(parent) {
    installAccessibleFigures();
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Capsule::setText(const QString& text) {
    if (text_ != text) {
        text_ = text;
        setAccessibleName(text);
        updateGeometry();
        update();
    }
}

void Capsule::setMark(const QString& icon, const ThemeColor& color) {
    if (icon_ != icon || color_ != color) {
        icon_ = icon;
        color_ = color;
        updateGeometry();
        update();
    }
}

void Capsule::clearMark() {
    setMark(QString(), ThemeColor());
}

QSize Capsule::sizeHint() const {
    const int icon = icon_.isEmpty() ? 0 : iconSize + iconGap;
    return {icon + figuresWidth(CrestFonts::current().caption, text_) + 2 * capsulePadding,
            capsuleHeight};
}

void Capsule::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isMarked = !icon_.isEmpty();
    const QColor ground = isMarked
                              ? mixedColor(theme.cardBackground, color_.in(theme), markedGround)
                              : theme.cardBackground;
    const QColor ink = isMarked ? readableColor(color_.in(theme), {ground}) : theme.secondaryText;
    painter.setPen(isMarked ? ink : theme.hairline);
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), capsuleHeight / 2.0,
                            capsuleHeight / 2.0);
    painter.setFont(CrestFonts::current().caption);
    painter.setPen(ink);
    if (!isMarked) {
        painter.drawText(rect(), Qt::AlignCenter, text_);
        return;
    }
    painter.drawPixmap(capsulePadding, (height() - iconSize) / 2,
                       tintedIcon(icon_, ink, iconSize, devicePixelRatioF()));
    painter.drawText(rect().adjusted(capsulePadding + iconSize + iconGap, 0, 0, 0),
                     Qt::AlignLeft | Qt::AlignVCenter, text_);
}

}  // namespace tallowcrest

#include "presentation/capsule.h"

#include <QFontMetrics>
#include <QPainter>

#include "presentation/theme.h"

namespace tallowcrest {
namespace {

constexpr int capsuleHeight = 20;
constexpr int capsulePadding = 10;

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

QSize Capsule::sizeHint() const {
    return {figuresWidth(CrestFonts::current().caption, text_) + 2 * capsulePadding, capsuleHeight};
}

void Capsule::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(theme.hairline);
    painter.setBrush(theme.cardBackground);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), capsuleHeight / 2.0,
                            capsuleHeight / 2.0);
    painter.setFont(CrestFonts::current().caption);
    painter.setPen(theme.secondaryText);
    painter.drawText(rect(), Qt::AlignCenter, text_);
}

}  // namespace tallowcrest

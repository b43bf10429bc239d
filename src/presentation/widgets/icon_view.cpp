#include "presentation/widgets/icon_view.h"

#include <QPainter>

#include "presentation/widgets/icon.h"

namespace tallowcrest {

IconView::IconView(const QString& icon, const ThemeColor& color, int size, QWidget* parent)
    : QWidget(parent), icon_(icon), color_(color) {
    setFixedSize(size, size);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void IconView::setIcon(const QString& icon) {
    if (icon != icon_) {
        icon_ = icon;
        update();
    }
}

void IconView::setColor(const ThemeColor& color) {
    if (color != color_) {
        color_ = color;
        update();
    }
}

void IconView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.drawPixmap(
        0, 0, tintedIcon(icon_, color_.in(CrestTheme::current()), width(), devicePixelRatioF()));
}

}  // namespace tallowcrest

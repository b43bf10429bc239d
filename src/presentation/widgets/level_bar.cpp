#include "presentation/widgets/level_bar.h"

#include <algorithm>

#include <QPainter>

namespace tallowcrest {
namespace {

constexpr int barHeight = 6;
constexpr int preferredWidth = 160;
constexpr int fullLevel = 100;

}  // namespace

LevelBar::LevelBar(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void LevelBar::setLevel(int percent, const ThemeColor& color) {
    const int level = std::clamp(percent, 0, fullLevel);
    if (level != level_ || color != color_) {
        level_ = level;
        color_ = color;
        update();
    }
}

QSize LevelBar::sizeHint() const {
    return {preferredWidth, barHeight};
}

QSize LevelBar::minimumSizeHint() const {
    return {4 * spacing::unit, barHeight};
}

void LevelBar::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double radius = height() / 2.0;
    painter.setBrush(theme.track);
    painter.drawRoundedRect(rect(), radius, radius);
    if (level_ > 0) {
        // Never shorter than its two round ends.
        const double filled = std::max<double>(width() * level_ / 100.0, height());
        painter.setBrush(color_.in(theme));
        painter.drawRoundedRect(QRectF(0, 0, filled, height()), radius, radius);
    }
}

}  // namespace tallowcrest

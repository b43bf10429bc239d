#include "presentation/widgets/toggle_switch.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/crest_style.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {
namespace {

constexpr QSizeF pillSize{34, 20};
/// Space for the focus ring.
constexpr int ringRoom = 2;
constexpr double knobInset = 4;

}  // namespace

ToggleSwitch::ToggleSwitch(QWidget* parent) : QCheckBox(parent) {
    installAccessibleButtons();
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
}

QSize ToggleSwitch::sizeHint() const {
    return pillSize.toSize() + QSize(2 * ringRoom, 2 * ringRoom);
}

void ToggleSwitch::focusInEvent(QFocusEvent* event) {
    hasRing_ = showsFocusRing(event->reason(), hasRing_);
    QCheckBox::focusInEvent(event);
}

void ToggleSwitch::keyPressEvent(QKeyEvent* event) {
    if (!pressesByReturn(*this, *event)) {
        QCheckBox::keyPressEvent(event);
    }
}

void ToggleSwitch::paintEvent(QPaintEvent*) {
    constexpr double hoverShare = 0.15;
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF pill({(width() - pillSize.width()) / 2, (height() - pillSize.height()) / 2},
                      pillSize);
    const double radius = pillSize.height() / 2;
    if (hasFocus() && hasRing_) {
        // Not in the colour of the pill, which it touches.
        painter.setPen(QPen(theme.text, 2));
        painter.drawRoundedRect(pill.adjusted(-1, -1, 1, 1), radius + 1, radius + 1);
    }
    const QColor ink = isChecked() ? theme.accentText : theme.secondaryText;
    const QColor shown = underMouse() ? mixedColor(ink, theme.text, hoverShare) : ink;
    painter.setPen(QPen(shown, 1.5));
    painter.setBrush(isChecked() ? shown : theme.cardBackground);
    painter.drawRoundedRect(pill.adjusted(0.75, 0.75, -0.75, -0.75), radius, radius);
    // The state shows by the position of the knob as well as by colour.
    const double knob = pillSize.height() - 2 * knobInset;
    const double left = isChecked() ? pill.right() - knobInset - knob : pill.left() + knobInset;
    painter.setPen(Qt::NoPen);
    painter.setBrush(isChecked() ? theme.cardBackground : shown);
    painter.drawEllipse(QRectF(left, pill.top() + knobInset, knob, knob));
}

}  // namespace tallowcrest

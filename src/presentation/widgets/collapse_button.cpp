#include "presentation/widgets/collapse_button.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>

#include "presentation/widgets/announcer.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/crest_style.h"
#include "presentation/widgets/icon.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int ringRadius = spacing::cardRadius - 3;
constexpr float hoverOpacity = 0.05F;

}  // namespace

CollapseButton::CollapseButton(bool isExpanded, QWidget* parent)
    : QAbstractButton(parent), isExpanded_(isExpanded) {
    installAccessibleButtons();
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QAbstractButton::clicked, this, [this] { emit collapseWanted(isExpanded_); });
}

void CollapseButton::addAccessibleState(QAccessible::State& state) const {
    state.expandable = true;
    state.expanded = isExpanded_;
    state.collapsed = !isExpanded_;
}

void CollapseButton::setExpanded(bool expanded) {
    if (expanded == isExpanded_) {
        return;
    }
    isExpanded_ = expanded;
    describe();
    update();
    QAccessible::State changed;
    changed.expanded = true;
    changed.collapsed = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
    if (hasFocus()) {
        announce(*this, expanded ? u"Expanded"_s : u"Collapsed"_s);
    }
}

void CollapseButton::enterEvent(QEnterEvent* event) {
    QAbstractButton::enterEvent(event);
    update();
}

void CollapseButton::leaveEvent(QEvent* event) {
    QAbstractButton::leaveEvent(event);
    update();
}

void CollapseButton::focusInEvent(QFocusEvent* event) {
    hasRing_ = showsFocusRing(event->reason(), hasRing_);
    QAbstractButton::focusInEvent(event);
}

void CollapseButton::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Left:
        case Qt::Key_Right: {
            const bool wantsCollapsed = event->key() == Qt::Key_Left;
            if (wantsCollapsed == isExpanded_) {
                emit collapseWanted(wantsCollapsed);
            }
            return;
        }
        default:
            if (!pressesByReturn(*this, *event)) {
                QAbstractButton::keyPressEvent(event);
            }
    }
}

void CollapseButton::paintGround(QPainter& painter) const {
    const CrestTheme& theme = CrestTheme::current();
    const bool isRinged = hasFocus() && hasRing_;
    if (underMouse() || isRinged) {
        QColor fill = theme.text;
        fill.setAlphaF(hoverOpacity);
        painter.setBrush(underMouse() ? QBrush(fill) : QBrush(Qt::NoBrush));
        painter.setPen(isRinged ? QPen(theme.accentText, 2) : QPen(Qt::NoPen));
        painter.drawRoundedRect(QRectF(rect()).adjusted(4, 4, -4, -4), ringRadius, ringRadius);
    }
}

void CollapseButton::paintChevron(QPainter& painter, int left, int middle) const {
    constexpr int size = spacing::iconSmall;
    painter.drawPixmap(left, middle - size / 2,
                       tintedIcon(isExpanded_ ? u"chevron.down"_s : u"chevron.right"_s,
                                  CrestTheme::current().secondaryText, size, devicePixelRatioF()));
}

}  // namespace tallowcrest

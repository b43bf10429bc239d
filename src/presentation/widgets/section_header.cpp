#include "presentation/widgets/section_header.h"

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

constexpr int headerHeight = 40;
constexpr int ringRadius = spacing::cardRadius - 3;
constexpr float hoverOpacity = 0.05F;

}  // namespace

SectionHeader::SectionHeader(const QString& icon, const QString& title, QWidget* parent)
    : QAbstractButton(parent), icon_(icon) {
    installAccessibleButtons();
    setText(title);
    setAccessibleName(title);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    describe();
    connect(this, &QAbstractButton::clicked, this, [this] { emit collapseWanted(isExpanded_); });
}

void SectionHeader::addAccessibleState(QAccessible::State& state) const {
    state.expandable = true;
    state.expanded = isExpanded_;
    state.collapsed = !isExpanded_;
}

void SectionHeader::setExpanded(bool expanded) {
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

void SectionHeader::setNote(const QString& note, const ThemeColor& color) {
    if (note != note_ || color != noteColor_) {
        note_ = note;
        noteColor_ = color;
        describe();
        update();
    }
}

void SectionHeader::describe() {
    const QString action =
        isExpanded_ ? u"Hides what this section shows"_s : u"Shows what this section holds"_s;
    setAccessibleDescription(note_.isEmpty() ? action : spokenText(note_) + u". "_s + action);
}

QSize SectionHeader::sizeHint() const {
    return {24 * spacing::unit, headerHeight};
}

QSize SectionHeader::minimumSizeHint() const {
    return {12 * spacing::unit, headerHeight};
}

void SectionHeader::enterEvent(QEnterEvent* event) {
    QAbstractButton::enterEvent(event);
    update();
}

void SectionHeader::leaveEvent(QEvent* event) {
    QAbstractButton::leaveEvent(event);
    update();
}

void SectionHeader::focusInEvent(QFocusEvent* event) {
    hasRing_ = showsFocusRing(event->reason(), hasRing_);
    QAbstractButton::focusInEvent(event);
}

void SectionHeader::keyPressEvent(QKeyEvent* event) {
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

void SectionHeader::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isRinged = hasFocus() && hasRing_;
    if (underMouse() || isRinged) {
        QColor fill = theme.text;
        fill.setAlphaF(hoverOpacity);
        painter.setBrush(underMouse() ? QBrush(fill) : QBrush(Qt::NoBrush));
        painter.setPen(isRinged ? QPen(theme.accentText, 2) : QPen(Qt::NoPen));
        painter.drawRoundedRect(QRectF(rect()).adjusted(4, 4, -4, -4), ringRadius, ringRadius);
    }

    int left = spacing::cardPadding;
    const auto drawIcon = [&](const QString& name, const QColor& color, int size) {
        painter.drawPixmap(left, (height() - size) / 2,
                           tintedIcon(name, color, size, devicePixelRatioF()));
        left += size + spacing::unit;
    };
    drawIcon(isExpanded_ ? u"chevron.down"_s : u"chevron.right"_s, theme.secondaryText,
             spacing::iconSmall);
    if (!icon_.isEmpty()) {
        drawIcon(icon_, theme.secondaryText, spacing::iconRegular);
    }

    int right = width() - spacing::cardPadding;
    if (!note_.isEmpty()) {
        painter.setFont(CrestFonts::current().caption);
        painter.setPen(noteColor_.in(theme));
        const int noteWidth = std::min(painter.fontMetrics().horizontalAdvance(note_) + 1,
                                       std::max(0, (right - left) / 2));
        painter.drawText(QRect(right - noteWidth, 0, noteWidth, height()),
                         Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine,
                         painter.fontMetrics().elidedText(note_, Qt::ElideRight, noteWidth));
        right -= noteWidth + spacing::gap;
    }
    painter.setFont(CrestFonts::current().heading);
    painter.setPen(theme.text);
    painter.drawText(QRect(left, 0, right - left, height()),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(text(), Qt::ElideRight, right - left));
}

}  // namespace tallowcrest

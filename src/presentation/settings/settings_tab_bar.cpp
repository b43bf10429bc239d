#include "presentation/settings/settings_tab_bar.h"

#include <QFocusEvent>
#include <QPainter>

#include "presentation/theme.h"

namespace tallowcrest {
namespace {

constexpr int tabHeight = 32;
constexpr int tabPadding = 12;
constexpr int frameInset = 2;
constexpr int tabRadius = 6;
constexpr double selectedShare = 0.18;
constexpr double hoverShare = 0.06;

}  // namespace

SettingsTabBar::SettingsTabBar(QWidget* parent) : QTabBar(parent) {
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize SettingsTabBar::tabSizeHint(int index) const {
    // As wide as it is when selected, whether it is or not.
    return {figuresWidth(CrestFonts::current().heading, tabText(index)) + 2 * tabPadding,
            tabHeight};
}

void SettingsTabBar::focusInEvent(QFocusEvent* event) {
    // The ring answers a person who moves by keyboard; on a click it would only be noise.
    hasKeyboardFocus_ = event->reason() == Qt::TabFocusReason ||
                        event->reason() == Qt::BacktabFocusReason ||
                        event->reason() == Qt::ShortcutFocusReason;
    QTabBar::focusInEvent(event);
}

void SettingsTabBar::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(theme.hairline);
    painter.setBrush(theme.cardBackground);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), tabRadius + frameInset,
                            tabRadius + frameInset);
    const QPoint pointer = underMouse() ? mapFromGlobal(QCursor::pos()) : QPoint(-1, -1);
    for (int i = 0; i < count(); ++i) {
        const bool isSelected = i == currentIndex();
        const QRectF tab =
            QRectF(tabRect(i)).adjusted(frameInset, frameInset, -frameInset, -frameInset);
        if (isSelected || tabRect(i).contains(pointer)) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(isSelected
                                 ? mixedColor(theme.cardBackground, theme.accent, selectedShare)
                                 : mixedColor(theme.cardBackground, theme.text, hoverShare));
            painter.drawRoundedRect(tab, tabRadius, tabRadius);
        }
        if (isSelected) {
            // The selected tab is told by shape as well as by colour.
            constexpr int barWidth = 16;
            constexpr int barHeight = 3;
            painter.setBrush(theme.accent);
            painter.drawRoundedRect(QRectF(tab.center().x() - barWidth / 2.0,
                                           tab.bottom() - barHeight - 1, barWidth, barHeight),
                                    barHeight / 2.0, barHeight / 2.0);
            if (hasFocus() && hasKeyboardFocus_) {
                painter.setPen(QPen(theme.accentText, 2));
                painter.setBrush(Qt::NoBrush);
                painter.drawRoundedRect(tab.adjusted(1, 1, -1, -1), tabRadius, tabRadius);
            }
        }
        painter.setFont(isSelected ? CrestFonts::current().heading : CrestFonts::current().body);
        painter.setPen(isSelected ? theme.text : theme.secondaryText);
        painter.drawText(tab, Qt::AlignCenter | Qt::TextSingleLine, tabText(i));
    }
}

}  // namespace tallowcrest

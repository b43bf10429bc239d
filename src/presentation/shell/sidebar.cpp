#include "presentation/shell/sidebar.h"

#include <algorithm>

#include <QButtonGroup>
#include <QFocusEvent>
#include <QPainter>
#include <QVBoxLayout>

#include "presentation/widgets/crest_style.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int unfoldedWidth = 208;
constexpr int foldedWidth = 64;
constexpr int rowHeight = 36;
constexpr int rowRadius = 8;
constexpr int rowPadding = 12;
constexpr float selectedOpacity = 0.18F;
constexpr float hoverOpacity = 0.06F;

QColor withOpacity(QColor color, float opacity) {
    color.setAlphaF(opacity);
    return color;
}

}  // namespace

SidebarRow::SidebarRow(AppRoute route, QWidget* parent)
    : QAbstractButton(parent), symbol_(dashboard_text::text(symbol(route))) {
    installAccessibleButtons();
    setObjectName(u"sidebar."_s + dashboard_text::text(rawValue(route)));
    setText(dashboard_text::text(title(route)));
    setAccessibleName(text());
    setAccessibleDescription(dashboard_text::text(subtitle(route)));
    setCheckable(true);
    setAutoExclusive(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void SidebarRow::setFolded(bool folded) {
    isFolded_ = folded;
    setToolTip(folded ? text() : QString());
    update();
}

QSize SidebarRow::sizeHint() const {
    return {foldedWidth - 2 * spacing::unit, rowHeight};
}

void SidebarRow::enterEvent(QEnterEvent* event) {
    QAbstractButton::enterEvent(event);
    update();
}

void SidebarRow::focusInEvent(QFocusEvent* event) {
    hasRing_ = showsFocusRing(event->reason(), hasRing_);
    QAbstractButton::focusInEvent(event);
}

void SidebarRow::takeFocusFrom(const SidebarRow& other) {
    // In a window that is not active no focus event decides about the ring.
    hasRing_ = other.hasRing_;
    setFocus(Qt::OtherFocusReason);
}

void SidebarRow::leaveEvent(QEvent* event) {
    QAbstractButton::leaveEvent(event);
    update();
}

void SidebarRow::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF outline = QRectF(rect()).adjusted(1, 1, -1, -1);
    if (isChecked() || underMouse()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(isChecked() ? withOpacity(theme.accent, selectedOpacity)
                                     : withOpacity(theme.text, hoverOpacity));
        painter.drawRoundedRect(outline, rowRadius, rowRadius);
    }
    if (isChecked()) {
        // The selected route differs by shape as well as by colour.
        constexpr int barHeight = 16;
        painter.setBrush(theme.accent);
        painter.drawRoundedRect(QRectF(2, (height() - barHeight) / 2.0, 3, barHeight), 1.5, 1.5);
    }
    if (hasFocus() && hasRing_) {
        painter.setPen(QPen(theme.accentText, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(outline, rowRadius, rowRadius);
    }
    const int iconLeft = isFolded_ ? (width() - spacing::iconRegular) / 2 : rowPadding;
    const QColor color = isChecked() ? theme.text : theme.secondaryText;
    painter.drawPixmap(iconLeft, (height() - spacing::iconRegular) / 2,
                       tintedIcon(symbol_, color, spacing::iconRegular, devicePixelRatioF()));
    if (isFolded_) {
        return;
    }
    painter.setFont(isChecked() ? CrestFonts::current().heading : CrestFonts::current().body);
    painter.setPen(color);
    const int textLeft = iconLeft + spacing::iconRegular + rowPadding;
    painter.drawText(QRect(textLeft, 0, width() - textLeft - spacing::unit, height()),
                     Qt::AlignLeft | Qt::AlignVCenter, text());
}

Sidebar::Sidebar(QWidget* parent) : QWidget(parent), group_(new QButtonGroup(this)) {
    installAccessibleFigures();
    setObjectName(u"sidebar"_s);
    setAccessibleName(u"Routes"_s);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(spacing::unit, spacing::gap, spacing::unit, spacing::gap);
    layout->setSpacing(spacing::unit / 2);
    for (const AppRoute route : allAppRoutes) {
        auto* row = new SidebarRow(route, this);
        group_->addButton(row, static_cast<int>(route));
        layout->addWidget(row);
        rows_.push_back(row);
    }
    layout->addStretch(1);
    connect(group_, &QButtonGroup::idToggled, this, [this](int id, bool checked) {
        if (checked) {
            emit routeChosen(static_cast<AppRoute>(id));
        }
    });
    setFixedWidth(unfoldedWidth);
}

void Sidebar::setSelectedRoute(AppRoute route) {
    SidebarRow* selected = rows_.at(static_cast<std::size_t>(route));
    selected->setChecked(true);
    // Arrow keys continue from the shown route, also if a shortcut chose it, or a notification
    // while another window was active.
    const auto before = std::find(rows_.begin(), rows_.end(), window()->focusWidget());
    if (before != rows_.end() && *before != selected) {
        selected->takeFocusFrom(**before);
    }
    // The Tab key enters at the shown route. Qt would stay at the row that had the focus last.
    for (SidebarRow* row : rows_) {
        row->setFocusPolicy(row == selected ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

void Sidebar::setFolded(bool folded) {
    if (isFolded_ == folded) {
        return;
    }
    isFolded_ = folded;
    setFixedWidth(folded ? foldedWidth : unfoldedWidth);
    for (SidebarRow* row : rows_) {
        row->setFolded(folded);
    }
}

void Sidebar::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.setPen(theme.hairline);
    painter.drawLine(width() - 1, 0, width() - 1, height());
}

}  // namespace tallowcrest

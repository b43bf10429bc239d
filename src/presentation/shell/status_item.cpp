#include "presentation/shell/status_item.h"

#include <QCursor>

#include "monitor/system_monitor.h"
#include "presentation/shell/dashboard_window.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int iconSize = 22;
/// Each new icon travels to another program, so the needle moves in steps that can be seen.
constexpr int needleStep = 5;

}  // namespace

StatusItem::StatusItem(SystemMonitor& monitor, DashboardWindow& window)
    : monitor_(monitor), window_(window), icon_(this) {
    icon_.setObjectName(u"menubar.item"_s);
    for (const MenuBarEntry& entry : menuBarEntries(monitor_, window_)) {
        QAction* action = menu_.addAction(themedIcon(entry.icon), entry.title(), this, entry.run);
        action->setObjectName(entry.identifier);
        actions_.emplace_back(action, entry.title);
    }
    icon_.setContextMenu(&menu_);
    connect(&icon_, &QSystemTrayIcon::activated, this, &StatusItem::activate);
    refresh();
    icon_.show();
    subscription_ = monitor_.observe([this] { refresh(); });
}

void StatusItem::refresh() {
    for (const auto& [action, title] : actions_) {
        action->setText(title());
    }
    const auto& snapshot = monitor_.sample().snapshot();
    const QString label = snapshot ? dashboard_text::menuBarLabel(*snapshot) : u"Tallowcrest"_s;
    if (icon_.toolTip() != label) {
        icon_.setToolTip(label);
    }
    const int percent = snapshot ? dashboard_text::wholePercent(snapshot->cpuPercent) : 0;
    const int needle = percent / needleStep * needleStep;
    const CrestTheme& theme = CrestTheme::current();
    // Nothing tells how bright the panel is: it need not follow the windows' appearance, and a
    // symbolic icon by name, which it would colour itself, could not show the load. So the dial
    // brings its own edge. On a panel like the windows that edge is not seen; on any other it is
    // what sets the dial off. One grey for all panels would look dull on every one.
    const QColor color = theme.text;
    if (needle != shownNeedle_ || color != shownColor_) {
        shownNeedle_ = needle;
        shownColor_ = color;
        QIcon icon;
        for (const qreal pixelRatio : {1.0, 2.0}) {
            icon.addPixmap(gaugeIcon(needle, color, iconSize, pixelRatio, theme.pageBackground));
        }
        icon_.setIcon(icon);
    }
}

void StatusItem::activate(QSystemTrayIcon::ActivationReason reason) {
    // A double click comes as this and then as itself; answering both would close what it opened.
    if (reason != QSystemTrayIcon::Trigger) {
        return;
    }
    if (panel_ == nullptr) {
        panel_ = std::make_unique<MenuBarPanel>(monitor_, menuBarEntries(monitor_, window_));
        // The rules run on while the window is closed, and so do the keys that stop them.
        panel_->addAction(window_.emergencyStop());
    }
    const QRect place = icon_.geometry();
    panel_->toggleAt(place.isValid() ? place.bottomLeft() : QCursor::pos());
}

}  // namespace tallowcrest

#include "presentation/shell/status_item.h"

#include <QCursor>

#include "advisor/advisor.h"
#include "core/jobs/jobs.h"
#include "core/settings/settings_owner.h"
#include "integration/integration.h"
#include "monitor/system_monitor.h"
#include "presentation/shell/dashboard_window.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int iconSize = 22;
/// Each new icon is sent to another program, so the needle moves only in visible steps.
constexpr int needleStep = 5;

}  // namespace

StatusItem::StatusItem(SystemMonitor& monitor, DashboardWindow& window, ContextMenu contextMenu)
    : monitor_(monitor),
      window_(window),
      icon_(this),
      changes_(monitor.services().jobs.mainQueue(), [this] { refresh(); }) {
    icon_.setObjectName(u"menubar.item"_s);
    for (const std::vector<MenuBarEntry>& group : menuBarEntries(monitor_, window_)) {
        if (!menu_.isEmpty()) {
            menu_.addSeparator();
        }
        for (const MenuBarEntry& entry : group) {
            const QIcon icon = themedIcon(
                entry.icon, entry.isDanger ? ThemeColor(&CrestTheme::bad) : ThemeColor());
            QAction* action = menu_.addAction(icon, entry.title(), this, entry.run);
            action->setObjectName(entry.identifier);
            actions_.emplace_back(action, entry);
        }
    }
    if (contextMenu == ContextMenu::byDesktop) {
        icon_.setContextMenu(&menu_);
    }
    connect(&menu_, &QMenu::aboutToShow, this,
            [this] { monitor_.integration().login.lookAgain(); });
    connect(&icon_, &QSystemTrayIcon::activated, this, &StatusItem::activate);
    refresh();
    icon_.show();
    changes_.observe({&monitor_.sample().observable(), &monitor_.settingsOwner().observable(),
                      &monitor_.advisor().provider.observable(),
                      &monitor_.integration().login.observable()});
}

void StatusItem::refresh() {
    for (const auto& [action, entry] : actions_) {
        action->setText(entry.title());
        action->setVisible(entry.isShown());
    }
    const auto& snapshot = monitor_.sample().snapshot();
    const QString label = snapshot ? dashboard_text::menuBarLabel(*snapshot) : u"Tallowcrest"_s;
    if (icon_.toolTip() != label) {
        icon_.setToolTip(label);
    }
    const int percent = snapshot ? dashboard_text::wholePercent(snapshot->cpuPercent) : 0;
    const int needle = percent / needleStep * needleStep;
    const CrestTheme& theme = CrestTheme::current();
    // The brightness of the desktop's panel is unknown: it may differ from that of the windows, and
    // a symbolic icon, which the panel would colour itself, cannot show the load. So the dial has
    // an edge in the windows' background colour: invisible on a panel of that colour, and a
    // contrast on any other.
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

QPoint StatusItem::place() const {
    const QRect icon = icon_.geometry();
    return icon.isValid() ? icon.bottomLeft() : QCursor::pos();
}

void StatusItem::activate(QSystemTrayIcon::ActivationReason reason) {
    if (reason == QSystemTrayIcon::Context && icon_.contextMenu() == nullptr) {
        menu_.popup(place());
        return;
    }
    // A double click arrives as Trigger and as DoubleClick; answering both would close the panel
    // again.
    if (reason != QSystemTrayIcon::Trigger) {
        return;
    }
    if (panel_ == nullptr) {
        panel_ = std::make_unique<MenuBarPanel>(monitor_, menuBarEntries(monitor_, window_));
        // The rules run while the window is closed, so the panel too needs the keys that stop them.
        panel_->addAction(window_.emergencyStop());
    }
    panel_->toggleAt(place());
}

}  // namespace tallowcrest

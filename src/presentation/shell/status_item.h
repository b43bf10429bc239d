#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include <QColor>
#include <QMenu>
#include <QSystemTrayIcon>

#include "core/observable.h"
#include "presentation/shell/menu_bar_panel.h"

namespace tallowcrest {

class DashboardWindow;
class SystemMonitor;

/// The always-present status item: a live gauge icon with the load in words as its tool tip, the
/// panel on a click, the same commands as its context menu. Main thread.
class StatusItem final : public QObject {
    Q_OBJECT

public:
    StatusItem(SystemMonitor& monitor, DashboardWindow& window);

    /// Whether the desktop has a place for the item now. Without one it cannot be reached.
    static bool hasHost() { return QSystemTrayIcon::isSystemTrayAvailable(); }

private:
    void refresh();
    void activate(QSystemTrayIcon::ActivationReason reason);

    SystemMonitor& monitor_;
    DashboardWindow& window_;
    QSystemTrayIcon icon_;
    QMenu menu_;
    /// The entries of the menu, each with what tells its title.
    std::vector<std::pair<QAction*, std::function<QString()>>> actions_;
    std::unique_ptr<MenuBarPanel> panel_;
    int shownNeedle_ = -1;
    QColor shownColor_;
    Subscription subscription_;
};

}  // namespace tallowcrest

#pragma once

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

/// The status item, present while the program runs: a live gauge icon with the load as its tool
/// tip, the panel on a click, and the same commands as context menu. Main thread.
class StatusItem final : public QObject {
    Q_OBJECT

public:
    /// Who opens the context menu: the desktop, or, where it would do so at any click, this item.
    enum class ContextMenu { byDesktop, byItem };

    StatusItem(SystemMonitor& monitor, DashboardWindow& window,
               ContextMenu contextMenu = ContextMenu::byDesktop);

    /// Whether the desktop shows status items at present. If not, the item cannot be reached.
    static bool hasHost() { return QSystemTrayIcon::isSystemTrayAvailable(); }

private:
    void refresh();
    void activate(QSystemTrayIcon::ActivationReason reason);
    /// Where the panel and the menu open.
    QPoint place() const;

    SystemMonitor& monitor_;
    DashboardWindow& window_;
    QSystemTrayIcon icon_;
    QMenu menu_;
    std::vector<std::pair<QAction*, MenuBarEntry>> actions_;
    std::unique_ptr<MenuBarPanel> panel_;
    int shownNeedle_ = -1;
    QColor shownColor_;
    ObserverGroup changes_;
};

}  // namespace tallowcrest

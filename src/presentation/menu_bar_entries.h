#pragma once

#include <functional>
#include <vector>

#include <QString>

namespace tallowcrest {

class DashboardWindow;
class SystemMonitor;

/// One command of the status item, offered in its panel and in its context menu alike.
struct MenuBarEntry {
    QString title;
    QString icon;
    QString identifier;
    std::function<void()> run;
    /// What the title is by now, for one that follows the state; absent where it never changes.
    std::function<QString()> currentTitle = {};
};

/// The commands in their order. Monitor and window must outlive them. Main thread.
std::vector<MenuBarEntry> menuBarEntries(SystemMonitor& monitor, DashboardWindow& window);

}  // namespace tallowcrest

#pragma once

#include <functional>
#include <vector>

#include <QString>

namespace tallowcrest {

class DashboardWindow;
class SystemMonitor;

/// One command of the status item, offered in its panel and in its context menu.
struct MenuBarEntry {
    /// The current title: some depend on the state.
    std::function<QString()> title;
    QString icon;
    QString identifier;
    std::function<void()> run;
};

/// The commands in their order. Monitor and window must outlive them. Main thread.
std::vector<MenuBarEntry> menuBarEntries(SystemMonitor& monitor, DashboardWindow& window);

}  // namespace tallowcrest

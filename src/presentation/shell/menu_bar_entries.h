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
    /// Whether the state calls for it; empty for always.
    std::function<bool()> isWanted = {};
    bool isDanger = false;  ///< marked like the button of the same command in the window

    bool isShown() const { return !isWanted || isWanted(); }
};

/// The commands in their order, by groups. Monitor and window must outlive them. Main thread.
std::vector<std::vector<MenuBarEntry>> menuBarEntries(SystemMonitor& monitor,
                                                      DashboardWindow& window);

}  // namespace tallowcrest

#include "presentation/menu_bar_entries.h"

#include <QApplication>

#include "monitor/system_monitor.h"
#include "presentation/dashboard_window.h"

namespace tallowcrest {

std::vector<MenuBarEntry> menuBarEntries(SystemMonitor& monitor, DashboardWindow& window) {
    return {
        {QStringLiteral("Show Dashboard"), QStringLiteral("macwindow"),
         QStringLiteral("menubar.show-dashboard"),
         [&window] { window.openRoute(AppRoute::overview); }},
        {QStringLiteral("Open Optimize"), QStringLiteral("wand.and.stars"),
         QStringLiteral("menubar.open-optimize"),
         [&window] { window.openRoute(AppRoute::optimize); }},
        {QStringLiteral("Refresh"), QStringLiteral("arrow.clockwise"),
         QStringLiteral("menubar.refresh"), [&monitor] { monitor.refresh(); }},
        {QStringLiteral("Expand Dashboard Sections"), QStringLiteral("chevron.down"),
         QStringLiteral("menubar.expand-sections"), [&monitor] { monitor.sections().expandAll(); }},
        {QStringLiteral("Collapse Dashboard Sections"), QStringLiteral("chevron.right"),
         QStringLiteral("menubar.collapse-sections"),
         [&monitor] { monitor.sections().collapseAll(); }},
        {QStringLiteral("Quit Tallowcrest"), QStringLiteral("power"),
         QStringLiteral("menubar.quit"), [] { QApplication::quit(); }},
    };
}

}  // namespace tallowcrest

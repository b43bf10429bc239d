#include "presentation/menu_bar_entries.h"

#include <QApplication>

#include "monitor/system_monitor.h"
#include "presentation/dashboard_window.h"

namespace tallowcrest {

namespace {

/// A command that ends in a question or in a refusal. The window is what shows either, the one as
/// its dialog and the other in its status strip: left closed, the click would seem to do nothing.
std::function<void()> askingInFront(SystemMonitor& monitor, DashboardWindow& window,
                                    void (LocalActions::*request)()) {
    return [&monitor, &window, request] {
        (monitor.localActions().*request)();
        window.bringToFront();
    };
}

}  // namespace

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
        {QStringLiteral("Purge File Caches"), QStringLiteral("memorychip"),
         QStringLiteral("menubar.purge"),
         askingInFront(monitor, window, &LocalActions::requestPurge)},
        {QStringLiteral("Quit Top App"), QStringLiteral("xmark.circle"),
         QStringLiteral("menubar.quit-top-app"),
         askingInFront(monitor, window, &LocalActions::requestQuitSelectedApp)},
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

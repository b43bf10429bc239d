#include "presentation/menu_bar_entries.h"

#include <QApplication>
#include <QPointer>

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

QString autoSelectTitle(const Automation& automation) {
    return automation.isOn(AutomationSwitch::autoSelectTopOffender)
               ? QStringLiteral("Disable Auto Select")
               : QStringLiteral("Enable Auto Select");
}

/// A refusal is read in the window.
void flipAutoSelect(SystemMonitor& monitor, DashboardWindow& window) {
    constexpr auto which = AutomationSwitch::autoSelectTopOffender;
    const bool wanted = !monitor.automation().isOn(which);
    monitor.automation().set(which, wanted);
    if (monitor.automation().isOn(which) != wanted) {
        window.bringToFront();
    }
}

/// The file manager shows the file; why there is none is read in the window.
void exportReport(SystemMonitor& monitor, DashboardWindow& window) {
    monitor.reports().exportDiagnosticsReport([guard = QPointer(&window)] {
        if (guard) {
            guard->bringToFront();
        }
    });
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
        {autoSelectTitle(monitor.automation()), QStringLiteral("scope"),
         QStringLiteral("menubar.auto-select"),
         [&monitor, &window] { flipAutoSelect(monitor, window); },
         [&monitor] { return autoSelectTitle(monitor.automation()); }},
        {QStringLiteral("Settings"), QStringLiteral("gearshape"),
         QStringLiteral("menubar.settings"),
         [&monitor, &window] {
             monitor.navigation().setShowSettings(true);
             window.bringToFront();
         }},
        {QStringLiteral("Refresh"), QStringLiteral("arrow.clockwise"),
         QStringLiteral("menubar.refresh"), [&monitor] { monitor.refresh(); }},
        {QStringLiteral("Copy Report"), QStringLiteral("doc.on.doc"),
         QStringLiteral("menubar.copy-report"),
         [&monitor] { monitor.reports().copyDiagnosticsReport(); }},
        {QStringLiteral("Export Diagnostics"), QStringLiteral("square.and.arrow.up"),
         QStringLiteral("menubar.export"), [&monitor, &window] { exportReport(monitor, window); }},
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

#include "presentation/shell/menu_bar_entries.h"

#include <QApplication>
#include <QPointer>

#include "monitor/system_monitor.h"
#include "presentation/shell/dashboard_window.h"

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

std::function<QString()> always(const char* title) {
    return [title] { return QString::fromUtf8(title); };
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
        {always("Show Dashboard"), QStringLiteral("macwindow"),
         QStringLiteral("menubar.show-dashboard"),
         [&window] { window.openRoute(AppRoute::overview); }},
        {always("Open Optimize"), QStringLiteral("wand.and.stars"),
         QStringLiteral("menubar.open-optimize"),
         [&window] { window.openRoute(AppRoute::optimize); }},
        {[&monitor] { return autoSelectTitle(monitor.automation()); }, QStringLiteral("scope"),
         QStringLiteral("menubar.auto-select"),
         [&monitor, &window] { flipAutoSelect(monitor, window); }},
        {always("Settings"), QStringLiteral("gearshape"), QStringLiteral("menubar.settings"),
         [&monitor, &window] {
             monitor.navigation().setShowSettings(true);
             window.bringToFront();
         }},
        {always("Refresh"), QStringLiteral("arrow.clockwise"), QStringLiteral("menubar.refresh"),
         [&monitor] { monitor.refresh(); }},
        {always("Copy Report"), QStringLiteral("doc.on.doc"), QStringLiteral("menubar.copy-report"),
         [&monitor] { monitor.reports().copyDiagnosticsReport(); }},
        {always("Export Diagnostics"), QStringLiteral("square.and.arrow.up"),
         QStringLiteral("menubar.export"), [&monitor, &window] { exportReport(monitor, window); }},
        {always("Purge File Caches"), QStringLiteral("memorychip"), QStringLiteral("menubar.purge"),
         askingInFront(monitor, window, &LocalActions::requestPurge)},
        {always("Quit Top App"), QStringLiteral("xmark.circle"),
         QStringLiteral("menubar.quit-top-app"),
         askingInFront(monitor, window, &LocalActions::requestQuitSelectedApp)},
        {always("Expand Dashboard Sections"), QStringLiteral("chevron.down"),
         QStringLiteral("menubar.expand-sections"), [&monitor] { monitor.sections().expandAll(); }},
        {always("Collapse Dashboard Sections"), QStringLiteral("chevron.right"),
         QStringLiteral("menubar.collapse-sections"),
         [&monitor] { monitor.sections().collapseAll(); }},
        {always("Quit Tallowcrest"), QStringLiteral("power"), QStringLiteral("menubar.quit"),
         [] { QApplication::quit(); }},
    };
}

}  // namespace tallowcrest

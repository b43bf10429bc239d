#include "presentation/shell/menu_bar_entries.h"

#include <QApplication>
#include <QPointer>

#include "actions/actions.h"
#include "actions/automation.h"
#include "actions/local_actions.h"
#include "advisor/advisor.h"
#include "integration/integration.h"
#include "monitor/system_monitor.h"
#include "presentation/shell/dashboard_window.h"
#include "presentation/words/advisor_words.h"
#include "presentation/words/commands.h"
#include "remote/remote.h"
#include "reports/reports.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

namespace {

/// A command that is answered with a question or a refusal. The window shows both, in a dialog or
/// in the status strip; with a closed window the click would seem to do nothing.
std::function<void()> askingInFront(SystemMonitor& monitor, DashboardWindow& window,
                                    Outcome (LocalActions::*request)()) {
    return [&monitor, &window, request] {
        (monitor.actions().local.*request)();
        window.bringToFront();
    };
}

std::function<QString()> always(const char* title) {
    return [title] { return QString::fromUtf8(title); };
}

QString autoSelectTitle(const Automation& automation) {
    return automation.isOn(AutomationSwitch::autoSelectTopOffender) ? u"Disable Auto Select"_s
                                                                    : u"Enable Auto Select"_s;
}

/// The window shows why the command was refused or failed.
std::function<void(const Outcome&)> showingFailure(DashboardWindow& window) {
    return [guard = QPointer(&window)](const Outcome& outcome) {
        if (guard && !outcome.isAccepted()) {
            guard->bringToFront();
        }
    };
}

/// The file manager shows the file.
void exportReport(SystemMonitor& monitor, DashboardWindow& window) {
    const auto showFailure = showingFailure(window);
    showFailure(monitor.reports().exportDiagnosticsReport(showFailure));
}

void exportSetupScript(SystemMonitor& monitor, DashboardWindow& window) {
    const auto showFailure = showingFailure(window);
    showFailure(monitor.remote().actions.exportRemoteSetupScript(showFailure));
}

const Command& loginCommand(const LoginItem& login) {
    return login.state().isEnabled ? commands::disableLaunchAtLogin : commands::enableLaunchAtLogin;
}

void flipLaunchAtLogin(LoginItem& login, DashboardWindow& window) {
    const auto showFailure = showingFailure(window);
    showFailure(login.state().isEnabled ? login.disableLaunchAtLogin(showFailure)
                                        : login.enableLaunchAtLogin(showFailure));
}

/// The page shows the result; the window, the question before it.
void analyze(SystemMonitor& monitor, DashboardWindow& window) {
    window.openRoute(AppRoute::aiAdvisor);
    monitor.advisor().provider.requestAIAnalysis();
}

void flipAutoSelect(Automation& automation, DashboardWindow& window) {
    constexpr auto which = AutomationSwitch::autoSelectTopOffender;
    showingFailure(window)(automation.set(which, !automation.isOn(which)));
}

}  // namespace

std::vector<std::vector<MenuBarEntry>> menuBarEntries(SystemMonitor& monitor,
                                                      DashboardWindow& window) {
    const auto isStopped = [&monitor] { return monitor.actions().automation.isStopEngaged(); };
    return {
        {{always("Show Dashboard"), u"macwindow"_s, u"menubar.show-dashboard"_s,
          [&window] { window.openRoute(AppRoute::overview); }},
         {always("Open Optimize"), u"wand.and.stars"_s, u"menubar.open-optimize"_s,
          [&window] { window.openRoute(AppRoute::optimize); }},
         {[&monitor] { return advisor_words::analysis(monitor.advisor().provider.isConnected()); },
          u"sparkle.magnifyingglass"_s, u"menubar.analyze"_s,
          [&monitor, &window] { analyze(monitor, window); }}},
        {{[&monitor] { return autoSelectTitle(monitor.actions().automation); }, u"scope"_s,
          u"menubar.auto-select"_s,
          [&monitor, &window] { flipAutoSelect(monitor.actions().automation, window); }},
         {always("Settings"), u"gearshape"_s, u"menubar.settings"_s,
          [&window] {
              window.state().navigation.setShowSettings(true);
              window.bringToFront();
          }},
         {always("Refresh"), u"arrow.clockwise"_s, u"menubar.refresh"_s,
          [&monitor] { monitor.refresh(); }}},
        {{always("Copy Report"), u"doc.on.doc"_s, u"menubar.copy-report"_s,
          [&monitor] { monitor.reports().copyDiagnosticsReport(); }},
         {always("Export Diagnostics"), u"square.and.arrow.up"_s, u"menubar.export"_s,
          [&monitor, &window] { exportReport(monitor, window); }}},
        {{always("Purge File Caches"), u"memorychip"_s, u"menubar.purge"_s,
          askingInFront(monitor, window, &LocalActions::requestPurge)},
         {always("Quit Top App"), u"xmark.circle"_s, u"menubar.quit-top-app"_s,
          askingInFront(monitor, window, &LocalActions::requestQuitSelectedApp)}},
        {{always("Scan Remote Macs"), u"network"_s, u"menubar.scan-remotes"_s,
          [&monitor, &window] { showingFailure(window)(monitor.remote().scan.scanRemoteMacs()); }},
         {always("Export Remote SSH Setup Script"), u"square.and.arrow.up"_s,
          u"menubar.export-setup-script"_s,
          [&monitor, &window] { exportSetupScript(monitor, window); }}},
        {{[&monitor] { return QString::fromUtf8(loginCommand(monitor.integration().login).title); },
          QString::fromUtf8(commands::enableLaunchAtLogin.icon), u"menubar.launch-at-login"_s,
          [&monitor, &window] { flipLaunchAtLogin(monitor.integration().login, window); }},
         {always(commands::setupWizard.title), QString::fromUtf8(commands::setupWizard.icon),
          u"menubar.setup-wizard"_s,
          [&window] {
              window.state().navigation.setShowSetupWizard(true);
              window.bringToFront();
          }}},
        {{always("Expand Dashboard Sections"), u"chevron.down"_s, u"menubar.expand-sections"_s,
          [&window] { window.state().sections.expandAll(); }},
         {always("Collapse Dashboard Sections"), u"chevron.right"_s, u"menubar.collapse-sections"_s,
          [&window] { window.state().sections.collapseAll(); }}},
        {{always(commands::emergencyStop.title), QString::fromUtf8(commands::emergencyStop.icon),
          u"menubar.emergency-stop"_s,
          [&monitor] { monitor.actions().automation.engageEmergencyStop(); },
          [isStopped] { return !isStopped(); }, true},
         {always(commands::resumeManualMode.title), u"checkmark.shield"_s,
          u"menubar.resume-manual-mode"_s,
          [&monitor] { monitor.actions().automation.resumeFromEmergencyStop(); }, isStopped}},
        {{always("Quit Tallowcrest"), u"power"_s, u"menubar.quit"_s, [] { QApplication::quit(); }}},
    };
}

}  // namespace tallowcrest

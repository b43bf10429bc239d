#include "presentation/shell/window_menus.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTextEdit>

#include "actions/actions.h"
#include "actions/automation.h"
#include "actions/local_actions.h"
#include "core/routes.h"
#include "core/settings/settings_owner.h"
#include "integration/integration.h"
#include "monitor/system_monitor.h"
#include "presentation/state/window_state.h"
#include "presentation/widgets/icon.h"
#include "presentation/words/commands.h"
#include "presentation/words/dashboard_text.h"
#include "remote/remote.h"
#include "reports/reports.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

QAction* named(QAction* action, const QString& identifier) {
    action->setObjectName(u"menu."_s + identifier);
    return action;
}

/// The shortcuts of the File menu that text fields use to delete a word.
bool deletesAWord(const QKeyEvent& key) {
    return key.modifiers() == Qt::ControlModifier &&
           (key.key() == Qt::Key_Delete || key.key() == Qt::Key_Backspace);
}

bool isInTextField() {
    const QWidget* focus = QApplication::focusWidget();
    return qobject_cast<const QLineEdit*>(focus) != nullptr ||
           qobject_cast<const QTextEdit*>(focus) != nullptr ||
           qobject_cast<const QPlainTextEdit*>(focus) != nullptr;
}

}  // namespace

WindowMenus::WindowMenus(SystemMonitor& monitor, WindowState& state, QMainWindow& window)
    : QObject(&window), monitor_(monitor), state_(state), window_(window) {
    window_.menuBar()->setObjectName(u"menu"_s);
    makeApplicationMenu();
    makeFileMenu();
    makeGoMenu();
    window_.installEventFilter(this);
}

void WindowMenus::makeApplicationMenu() {
    QMenu* application = window_.menuBar()->addMenu(u"&Tallowcrest"_s);
    application->setObjectName(u"menu.application"_s);
    named(application->addAction(u"About Tallowcrest"_s, this, &WindowMenus::showAbout), u"about"_s)
        ->setMenuRole(QAction::AboutRole);
    named(application->addAction(QString::fromUtf8(commands::checkForUpdates.title), this,
                                 [this] { monitor_.integration().updates.checkForUpdates(); }),
          u"check-for-updates"_s)
        ->setMenuRole(QAction::ApplicationSpecificRole);
    QAction* settings =
        named(application->addAction(themedIcon(u"gearshape"_s), u"Settings..."_s, this,
                                     [this] { state_.navigation.setShowSettings(true); }),
              u"settings"_s);
    settings->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma));
    settings->setMenuRole(QAction::PreferencesRole);
    QAction* refreshAction = named(
        application->addAction(u"Refresh"_s, this, [this] { monitor_.refresh(); }), u"refresh"_s);
    refreshAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    refreshAction->setAutoRepeat(false);
    refreshAction->setMenuRole(QAction::ApplicationSpecificRole);
    application->addSeparator();
    addEmergencyStop(*application);
    application->addSeparator();
    QAction* quit =
        named(application->addAction(u"Quit Tallowcrest"_s, qApp, &QApplication::quit), u"quit"_s);
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->setMenuRole(QAction::QuitRole);
}

void WindowMenus::addEmergencyStop(QMenu& menu) {
    emergencyStop_ =
        named(menu.addAction(themedIcon(QString::fromUtf8(commands::emergencyStop.icon)),
                             QString::fromUtf8(commands::emergencyStop.title), this,
                             [this] { monitor_.actions().automation.engageEmergencyStop(); }),
              u"emergency-stop"_s);
    // Two keys on every keyboard: where the period needs Shift, the second pair does not.
    emergencyStop_->setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::Key_Period), QKeySequence(Qt::SHIFT | Qt::Key_Escape)});
    // In any window of the application. Modal dialogs get the action added to them.
    emergencyStop_->setShortcutContext(Qt::ApplicationShortcut);
    // Holding the keys down engages the stop once.
    emergencyStop_->setAutoRepeat(false);
    emergencyStop_->setMenuRole(QAction::ApplicationSpecificRole);
    // Without a shortcut: resuming must be deliberate.
    resumeManualMode_ =
        named(menu.addAction(QString::fromUtf8(commands::resumeManualMode.title), this,
                             [this] { monitor_.actions().automation.resumeFromEmergencyStop(); }),
              u"resume-manual-mode"_s);
    resumeManualMode_->setMenuRole(QAction::ApplicationSpecificRole);
    refresh();
}

std::vector<Observable*> WindowMenus::shows() const {
    return {&monitor_.settingsOwner().observable()};
}

void WindowMenus::refresh() {
    resumeManualMode_->setEnabled(monitor_.actions().automation.isStopEngaged());
}

void WindowMenus::showAbout() {
    auto* about = new QMessageBox(QMessageBox::NoIcon, u"About Tallowcrest"_s,
                                  u"Tallowcrest %1"_s.arg(QApplication::applicationVersion()),
                                  QMessageBox::Ok, &window_);
    about->setObjectName(u"about"_s);
    about->setAttribute(Qt::WA_DeleteOnClose);
    constexpr int iconSize = 64;
    about->setIconPixmap(window_.windowIcon().pixmap(iconSize));
    about->addAction(emergencyStop_);
    about->open();
}

void WindowMenus::makeFileMenu() {
    QMenu* file = window_.menuBar()->addMenu(u"&File"_s);
    file->setObjectName(u"menu.file"_s);
    named(file->addAction(themedIcon(QString::fromUtf8(commands::copyReport.icon)),
                          QString::fromUtf8(commands::copyReport.title), this,
                          [this] { monitor_.reports().copyDiagnosticsReport(); }),
          u"copy-report"_s)
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C));
    QAction* exportReport =
        named(file->addAction(themedIcon(QString::fromUtf8(commands::exportReport.icon)),
                              u"Export Diagnostics..."_s, this,
                              [this] { monitor_.reports().exportDiagnosticsReport(); }),
              u"export-diagnostics"_s);
    exportReport->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_E));
    // Holding the key down exports one report, not several within a second.
    exportReport->setAutoRepeat(false);
    named(file->addAction(u"Export Remote SSH Setup Script..."_s, this,
                          [this] { monitor_.remote().actions.exportRemoteSetupScript(); }),
          u"export-setup-script"_s);
    file->addSeparator();
    QAction* quitProcess =
        named(file->addAction(u"Quit Selected Process"_s, this,
                              [this] { monitor_.actions().local.requestQuitSelectedProcess(); }),
              u"quit-selected-process"_s);
    quitProcess->setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::Key_Delete), QKeySequence(Qt::CTRL | Qt::Key_Backspace)});
    // Each press without a target is logged; a held key would fill the log.
    quitProcess->setAutoRepeat(false);
    QAction* quitApp =
        named(file->addAction(u"Quit Selected App Group"_s, this,
                              [this] { monitor_.actions().local.requestQuitSelectedApp(); }),
              u"quit-selected-app"_s);
    // Qt would take them for the application's quit command because of their first word.
    quitProcess->setMenuRole(QAction::NoRole);
    quitApp->setMenuRole(QAction::NoRole);
    addInstallation(*file);
}

void WindowMenus::addInstallation(QMenu& menu) {
    menu.addSeparator();
    const auto add = [&](const Command& command, const QString& identifier, auto run) {
        named(menu.addAction(themedIcon(QString::fromUtf8(command.icon)),
                             QString::fromUtf8(command.title), this, run),
              identifier);
    };
    Integration& integration = monitor_.integration();
    add(commands::installToApplications, u"install"_s,
        [&integration] { integration.install.installToApplications(); });
    add(commands::enableLaunchAtLogin, u"enable-launch-at-login"_s,
        [&integration] { integration.login.enableLaunchAtLogin(); });
    add(commands::disableLaunchAtLogin, u"disable-launch-at-login"_s,
        [&integration] { integration.login.disableLaunchAtLogin(); });
}

void WindowMenus::makeGoMenu() {
    QMenu* go = window_.menuBar()->addMenu(u"&Go"_s);
    go->setObjectName(u"menu.go"_s);
    int key = Qt::Key_1;
    for (const AppRoute route : allAppRoutes) {
        QAction* action =
            named(go->addAction(themedIcon(dashboard_text::text(symbol(route))),
                                dashboard_text::text(title(route)), this,
                                [this, route] { state_.navigation.setSelectedRoute(route); }),
                  u"go."_s + dashboard_text::text(rawValue(route)));
        action->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(key++)));
        // Here "Settings" is a route, not the application's settings command.
        action->setMenuRole(QAction::NoRole);
    }
    go->addSeparator();
    QAction* filter = named(go->addAction(themedIcon(u"magnifyingglass"_s), u"Filter Processes"_s,
                                          this, &WindowMenus::processFilterWanted),
                            u"go.filter-processes"_s);
    filter->setShortcut(QKeySequence::Find);
}

bool WindowMenus::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && isInTextField() &&
        deletesAWord(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace tallowcrest

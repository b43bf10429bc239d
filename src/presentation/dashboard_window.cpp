#include "presentation/dashboard_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPointer>
#include <QStackedLayout>
#include <QTextEdit>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/coming_page.h"
#include "presentation/confirmation_dialog.h"
#include "presentation/dashboard_text.h"
#include "presentation/history/history_page.h"
#include "presentation/icon.h"
#include "presentation/operation_target_bar.h"
#include "presentation/optimize/cleanup_page.h"
#include "presentation/overview_page.h"
#include "presentation/page_header.h"
#include "presentation/pending_layouts.h"
#include "presentation/processes_page.h"
#include "presentation/settings/settings_page.h"
#include "presentation/settings/settings_sheet.h"
#include "presentation/sidebar.h"
#include "presentation/status_strip.h"
#include "presentation/theme.h"

namespace tallowcrest {
namespace {

constexpr QSize firstSize{1080, 720};
constexpr QSize smallestSize{640, 480};
/// Below this the sidebar keeps its icons and gives its words' room to the content.
constexpr int foldingWidth = 860;

QAction* named(QAction* action, const QString& identifier) {
    action->setObjectName(QStringLiteral("menu.") + identifier);
    return action;
}

/// The keys that File's commands share with the editing of text.
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

DashboardWindow::DashboardWindow(SystemMonitor& monitor, MainQueue& mainQueue)
    : monitor_(monitor), mainQueue_(mainQueue) {
    setObjectName(QStringLiteral("tallowcrest.main"));
    setWindowTitle(QStringLiteral("Tallowcrest"));
    setAccessibleName(windowTitle());
    setCentralWidget(makeContent());
    makeMenus();
    setMinimumSize(smallestSize);
    resize(firstSize);
    subscription_ = monitor_.observe([this] { refresh(); });
}

QWidget* DashboardWindow::makeContent() {
    auto* content = new QWidget(this);
    auto* columns = new QHBoxLayout(content);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(0);
    sidebar_ = new Sidebar(content);
    connect(sidebar_, &Sidebar::routeChosen, this,
            [this](AppRoute route) { monitor_.navigation().setSelectedRoute(route); });
    columns->addWidget(sidebar_);

    auto* right = new QVBoxLayout;
    right->setSpacing(0);
    header_ = new PageHeader(monitor_, content);
    connect(header_, &PageHeader::selectionMade, this, [this] {
        for (Screen* each : screens_) {
            if (each != nullptr) {
                each->showSelection();
            }
        }
    });
    strip_ = new StatusStrip(monitor_, content);
    right->addWidget(header_);
    right->addWidget(strip_);
    target_ = new OperationTargetBar(monitor_, content);
    auto* targetRow = new QHBoxLayout;
    targetRow->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding, spacing::gap);
    targetRow->addWidget(target_);
    right->addLayout(targetRow);
    pages_ = new QStackedLayout;
    right->addLayout(pages_, 1);
    columns->addLayout(right, 1);
    return content;
}

void DashboardWindow::makeMenus() {
    menuBar()->setObjectName(QStringLiteral("menu"));
    makeApplicationMenu();
    makeFileMenu();
    makeGoMenu();
}

void DashboardWindow::makeApplicationMenu() {
    QMenu* application = menuBar()->addMenu(QStringLiteral("&Tallowcrest"));
    application->setObjectName(QStringLiteral("menu.application"));
    named(application->addAction(QStringLiteral("About Tallowcrest"), this,
                                 &DashboardWindow::showAbout),
          QStringLiteral("about"))
        ->setMenuRole(QAction::AboutRole);
    QAction* settings =
        named(application->addAction(themedIcon(QStringLiteral("gearshape")),
                                     QStringLiteral("Settings..."), this,
                                     [this] { monitor_.navigation().setShowSettings(true); }),
              QStringLiteral("settings"));
    settings->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma));
    settings->setMenuRole(QAction::PreferencesRole);
    QAction* refreshAction = named(
        application->addAction(QStringLiteral("Refresh"), this, [this] { monitor_.refresh(); }),
        QStringLiteral("refresh"));
    refreshAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    refreshAction->setAutoRepeat(false);
    refreshAction->setMenuRole(QAction::ApplicationSpecificRole);
    application->addSeparator();
    addEmergencyStop(*application);
    application->addSeparator();
    QAction* quit =
        named(application->addAction(QStringLiteral("Quit Tallowcrest"), qApp, &QApplication::quit),
              QStringLiteral("quit"));
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->setMenuRole(QAction::QuitRole);
}

void DashboardWindow::addEmergencyStop(QMenu& menu) {
    emergencyStop_ = named(menu.addAction(themedIcon(QStringLiteral("exclamationmark.octagon")),
                                          QStringLiteral("Emergency Stop"), this,
                                          [this] { monitor_.automation().engageEmergencyStop(); }),
                           QStringLiteral("emergency-stop"));
    // Two keys on every keyboard: where the period needs Shift, the second pair does not.
    emergencyStop_->setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::Key_Period), QKeySequence(Qt::SHIFT | Qt::Key_Escape)});
    // In any window of the application. A dialog that locks this one takes the action along.
    emergencyStop_->setShortcutContext(Qt::ApplicationShortcut);
    // Keys that are held down stop everything once.
    emergencyStop_->setAutoRepeat(false);
    emergencyStop_->setMenuRole(QAction::ApplicationSpecificRole);
    // Without a key of its own: what was stopped in a hurry is not resumed in one.
    resumeManualMode_ =
        named(menu.addAction(QStringLiteral("Resume Manual Mode"), this,
                             [this] { monitor_.automation().resumeFromEmergencyStop(); }),
              QStringLiteral("resume-manual-mode"));
    resumeManualMode_->setMenuRole(QAction::ApplicationSpecificRole);
    resumeManualMode_->setEnabled(monitor_.automation().isStopEngaged());
}

void DashboardWindow::showAbout() {
    auto* about =
        new QMessageBox(QMessageBox::NoIcon, QStringLiteral("About Tallowcrest"),
                        QStringLiteral("Tallowcrest %1").arg(QApplication::applicationVersion()),
                        QMessageBox::Ok, this);
    about->setObjectName(QStringLiteral("about"));
    about->setAttribute(Qt::WA_DeleteOnClose);
    constexpr int iconSize = 64;
    about->setIconPixmap(windowIcon().pixmap(iconSize));
    about->addAction(emergencyStop_);
    about->open();
}

void DashboardWindow::makeFileMenu() {
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    file->setObjectName(QStringLiteral("menu.file"));
    named(file->addAction(themedIcon(QStringLiteral("doc.on.doc")), QStringLiteral("Copy Report"),
                          this, [this] { monitor_.reports().copyDiagnosticsReport(); }),
          QStringLiteral("copy-report"))
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C));
    QAction* exportReport =
        named(file->addAction(themedIcon(QStringLiteral("square.and.arrow.up")),
                              QStringLiteral("Export Diagnostics..."), this,
                              [this] { monitor_.reports().exportDiagnosticsReport(); }),
              QStringLiteral("export-diagnostics"));
    exportReport->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_E));
    // A key held down exports one report and not several of the same second.
    exportReport->setAutoRepeat(false);
    file->addSeparator();
    QAction* quitProcess =
        named(file->addAction(QStringLiteral("Quit Selected Process"), this,
                              [this] { monitor_.localActions().requestQuitSelectedProcess(); }),
              QStringLiteral("quit-selected-process"));
    quitProcess->setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::Key_Delete), QKeySequence(Qt::CTRL | Qt::Key_Backspace)});
    // Each press without a target is an event of the log, which a key held down would fill.
    quitProcess->setAutoRepeat(false);
    QAction* quitApp =
        named(file->addAction(QStringLiteral("Quit Selected App Group"), this,
                              [this] { monitor_.localActions().requestQuitSelectedApp(); }),
              QStringLiteral("quit-selected-app"));
    // By their first word they would be taken for the command that quits this application.
    quitProcess->setMenuRole(QAction::NoRole);
    quitApp->setMenuRole(QAction::NoRole);
}

void DashboardWindow::makeGoMenu() {
    QMenu* go = menuBar()->addMenu(QStringLiteral("&Go"));
    go->setObjectName(QStringLiteral("menu.go"));
    int key = Qt::Key_1;
    for (const AppRoute route : allAppRoutes) {
        QAction* action =
            named(go->addAction(themedIcon(dashboard_text::text(symbol(route))),
                                dashboard_text::text(title(route)), this,
                                [this, route] { monitor_.navigation().setSelectedRoute(route); }),
                  QStringLiteral("go.") + dashboard_text::text(rawValue(route)));
        action->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(key++)));
        // "Settings" is a place to go to here, not the application's settings command.
        action->setMenuRole(QAction::NoRole);
    }
    go->addSeparator();
    QAction* filter =
        named(go->addAction(themedIcon(QStringLiteral("magnifyingglass")),
                            QStringLiteral("Filter Processes"), this,
                            [this] {
                                monitor_.navigation().setSelectedRoute(AppRoute::load);
                                refresh();
                                screen(AppRoute::load)->focusSearch();
                            }),
              QStringLiteral("go.filter-processes"));
    filter->setShortcut(QKeySequence::Find);
}

Screen* DashboardWindow::makeScreen(AppRoute route) {
    switch (route) {
        case AppRoute::overview:
            return new OverviewPage(monitor_);
        case AppRoute::load:
            return new ProcessesPage(monitor_);
        case AppRoute::optimize:
            return new CleanupPage(monitor_);
        case AppRoute::history:
            return new HistoryPage(monitor_);
        case AppRoute::settings:
            return new SettingsPage(monitor_);
        default:
            return new ComingPage(monitor_, route);
    }
}

Screen* DashboardWindow::screen(AppRoute route) {
    Screen*& kept = screens_.at(static_cast<std::size_t>(route));
    if (kept == nullptr) {
        kept = makeScreen(route);
        pages_->addWidget(kept);
    }
    return kept;
}

void DashboardWindow::refresh() {
    refreshConfirmation();
    refreshSettings();
    resumeManualMode_->setEnabled(monitor_.automation().isStopEngaged());
    if (!canBeSeen()) {
        return;
    }
    const AppRoute route = monitor_.navigation().selectedRoute();
    Screen* shown = screen(route);
    if (shownRoute_ != route) {
        shownRoute_ = route;
        sidebar_->setSelectedRoute(route);
        header_->setRoute(route);
        pages_->setCurrentWidget(shown);
    }
    strip_->refresh();
    target_->refresh();
    shown->refresh();
    arrangePendingLayouts();
    if (!hasShownSample_ && monitor_.sample().snapshot()) {
        hasShownSample_ = true;
        repaint();
        emit firstSampleShown();
    }
}

void DashboardWindow::openRoute(AppRoute route) {
    monitor_.navigation().setSelectedRoute(route);
    bringToFront();
}

void DashboardWindow::bringToFront() {
    // Only that: a maximised window comes back maximised.
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    mainQueue_.post([window = QPointer<DashboardWindow>(this)] {
        if (window != nullptr) {
            window->comeForward();
        }
    });
}

void DashboardWindow::comeForward() {
    raise();
    activateWindow();
    // The last of them is what answers the keyboard as long as it stands.
    for (QDialog* dialog : dialogs()) {
        if (dialog != nullptr && dialog->isVisible()) {
            dialog->raise();
            dialog->activateWindow();
        }
    }
}

void DashboardWindow::refreshConfirmation() {
    if (confirmation_ != nullptr && confirmation_->isVisible()) {
        confirmation_->refresh();
    } else if (monitor_.confirmations().pendingConfirmation()) {
        // Behind the window's own appearance, which may be under way.
        QMetaObject::invokeMethod(this, &DashboardWindow::openConfirmation, Qt::QueuedConnection);
    }
}

void DashboardWindow::openConfirmation() {
    if (!canBeSeen() || !monitor_.confirmations().pendingConfirmation()) {
        return;
    }
    if (confirmation_ == nullptr) {
        confirmation_ = new ConfirmationDialog(monitor_.confirmations(), this);
        confirmation_->addAction(emergencyStop_);
    }
    confirmation_->refresh();
}

void DashboardWindow::refreshSettings() {
    if (settings_ != nullptr && settings_->isVisible()) {
        settings_->refresh();
    } else if (monitor_.navigation().showSettings()) {
        // Behind the window's own appearance, which may be under way.
        QMetaObject::invokeMethod(this, &DashboardWindow::openSettings, Qt::QueuedConnection);
    }
}

void DashboardWindow::openSettings() {
    // Opened above a question, the sheet would lock it. What ends the question brings the sheet.
    if (!canBeSeen() || !monitor_.navigation().showSettings() ||
        monitor_.confirmations().pendingConfirmation()) {
        return;
    }
    if (settings_ == nullptr) {
        settings_ = new SettingsSheet(monitor_, this);
        settings_->addAction(emergencyStop_);
    }
    settings_->refresh();
}

std::array<QDialog*, 2> DashboardWindow::dialogs() const {
    return {settings_, confirmation_};
}

bool DashboardWindow::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && isInTextField() &&
        deletesAWord(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QMainWindow::event(event);
}

void DashboardWindow::hideEvent(QHideEvent* event) {
    QMainWindow::hideEvent(event);
    // No dialog can stand without its window, and leaving a question so is not a yes. A window that
    // is minimised takes its dialogs along and brings them back.
    for (QDialog* dialog : dialogs()) {
        if (!event->spontaneous() && dialog != nullptr && dialog->isVisible()) {
            dialog->reject();
        }
    }
}

void DashboardWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    monitor_.startMonitoring();
    refresh();
}

void DashboardWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange) {
        refresh();
    }
}

void DashboardWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    sidebar_->setFolded(width() < foldingWidth);
    // What takes another height at its new width is arranged before the next painting.
    QMetaObject::invokeMethod(this, arrangePendingLayouts, Qt::QueuedConnection);
}

void DashboardWindow::closeEvent(QCloseEvent* event) {
    QMainWindow::closeEvent(event);
    emit closed();
}

}  // namespace tallowcrest

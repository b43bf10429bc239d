#include "presentation/shell/dashboard_window.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QPointer>
#include <QStackedLayout>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/screens/coming/coming_page.h"
#include "presentation/screens/history/history_page.h"
#include "presentation/screens/load/processes_page.h"
#include "presentation/screens/optimize/cleanup_page.h"
#include "presentation/screens/overview/overview_page.h"
#include "presentation/screens/settings/settings_page.h"
#include "presentation/shell/confirmation_dialog.h"
#include "presentation/shell/operation_target_bar.h"
#include "presentation/shell/page_header.h"
#include "presentation/shell/settings/settings_sheet.h"
#include "presentation/shell/sidebar.h"
#include "presentation/shell/status_strip.h"
#include "presentation/shell/window_menus.h"
#include "presentation/widgets/pending_layouts.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr QSize firstSize{1080, 720};
constexpr QSize smallestSize{640, 480};
/// Below this the sidebar keeps its icons and gives its words' room to the content.
constexpr int foldingWidth = 860;

}  // namespace

DashboardWindow::DashboardWindow(SystemMonitor& monitor, MainQueue& mainQueue)
    : monitor_(monitor), mainQueue_(mainQueue) {
    setObjectName(u"tallowcrest.main"_s);
    setWindowTitle(u"Tallowcrest"_s);
    setAccessibleName(windowTitle());
    setCentralWidget(makeContent());
    menus_ = new WindowMenus(monitor_, *this);
    connect(menus_, &WindowMenus::processFilterWanted, this, [this] {
        monitor_.navigation().setSelectedRoute(AppRoute::load);
        refresh();
        screen(AppRoute::load)->focusSearch();
    });
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
    refreshDialogs();
    menus_->refresh();
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
    for (WindowDialog* dialog : dialogs()) {
        if (dialog != nullptr && dialog->isVisible()) {
            dialog->raise();
            dialog->activateWindow();
        }
    }
}

void DashboardWindow::refreshDialogs() {
    for (WindowDialog* dialog : dialogs()) {
        if (dialog != nullptr && dialog->isVisible()) {
            dialog->refresh();
        }
    }
    if (monitor_.confirmations().pendingConfirmation() || monitor_.navigation().showSettings()) {
        // Behind the window's own appearance, which may be under way.
        QMetaObject::invokeMethod(this, &DashboardWindow::openDialog, Qt::QueuedConnection);
    }
}

void DashboardWindow::openDialog() {
    if (!canBeSeen()) {
        return;
    }
    if (monitor_.confirmations().pendingConfirmation()) {
        open(confirmation_, monitor_.confirmations());
    } else if (monitor_.navigation().showSettings()) {
        // Opened above a question, the sheet would lock it. What ends the question brings the
        // sheet.
        open(settings_, monitor_);
    }
}

template <class Dialog, class Source>
void DashboardWindow::open(Dialog*& dialog, Source& source) {
    if (dialog == nullptr) {
        dialog = new Dialog(source, this);
        dialog->addAction(emergencyStop());
    }
    if (!dialog->isVisible()) {
        dialog->refresh();
    }
}

QAction* DashboardWindow::emergencyStop() const {
    return menus_->emergencyStop();
}

std::array<WindowDialog*, 2> DashboardWindow::dialogs() const {
    return {settings_, confirmation_};
}

void DashboardWindow::hideEvent(QHideEvent* event) {
    QMainWindow::hideEvent(event);
    // No dialog can stand without its window, and leaving a question so is not a yes. A window that
    // is minimised takes its dialogs along and brings them back.
    for (WindowDialog* dialog : dialogs()) {
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

#include "presentation/shell/dashboard_window.h"

#include <stdexcept>

#include <QApplication>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QStackedLayout>
#include <QVBoxLayout>

#include "core/activity_log.h"
#include "core/confirmation_desk.h"
#include "core/jobs/jobs.h"
#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "integration/integration.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/advisor/advisor_page.h"
#include "presentation/screens/chat/chat_page.h"
#include "presentation/screens/history/history_page.h"
#include "presentation/screens/load/load_page.h"
#include "presentation/screens/optimization_suggestions/optimization_suggestions_page.h"
#include "presentation/screens/optimize/optimize_page.h"
#include "presentation/screens/overview/overview_page.h"
#include "presentation/screens/remote_macs/remote_macs_page.h"
#include "presentation/screens/settings/settings_page.h"
#include "presentation/shell/confirmation_dialog.h"
#include "presentation/shell/operation_target_bar.h"
#include "presentation/shell/page_header.h"
#include "presentation/shell/settings/settings_sheet.h"
#include "presentation/shell/setup_wizard.h"
#include "presentation/shell/sheet_host.h"
#include "presentation/shell/sidebar.h"
#include "presentation/shell/status_strip.h"
#include "presentation/shell/update_bar.h"
#include "presentation/shell/update_dialog.h"
#include "presentation/shell/window_menus.h"
#include "presentation/state/confirmation_details.h"
#include "presentation/widgets/announcer.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr QSize firstSize{1080, 720};
constexpr QSize smallestSize{640, 480};
/// In narrower windows the sidebar shows only its icons.
constexpr int foldingWidth = 860;
/// In lower windows what is above the page takes less room.
constexpr int lowHeight = 760;

}  // namespace

/// One for each part of the window, so that a change repaints only what shows it.
struct DashboardWindow::Observers {
    ObserverGroup route;
    ObserverGroup page;
    ObserverGroup strip;
    ObserverGroup target;
    ObserverGroup menu;
    ObserverGroup update;
};

DashboardWindow::DashboardWindow(SystemMonitor& monitor)
    : monitor_(monitor),
      state_(monitor.settingsOwner(), monitor.log(), monitor.services().jobs.mainQueue()),
      observers_(
          new Observers{{monitor.services().jobs.mainQueue(), [this] { showRoute(); }},
                        {monitor.services().jobs.mainQueue(), [this] { refreshPage(); }},
                        {monitor.services().jobs.mainQueue(), [this] { refreshStrip(); }},
                        {monitor.services().jobs.mainQueue(), [this] { refreshTarget(); }},
                        {monitor.services().jobs.mainQueue(), [this] { refreshMenus(); }},
                        {monitor.services().jobs.mainQueue(), [this] { refreshUpdateBar(); }}}) {
    dashboard_text::setLocale(monitor_.locale());
    setObjectName(u"tallowcrest.main"_s);
    setWindowTitle(u"Tallowcrest"_s);
    setAccessibleName(windowTitle());
    setCentralWidget(makeContent());
    menus_ = new WindowMenus(monitor_, state_, *this);
    connect(menus_, &WindowMenus::processFilterWanted, this, [this] {
        state_.navigation.setSelectedRoute(AppRoute::load);
        showRoute();
        screen(AppRoute::load)->focusSearch();
    });
    addSheets();
    setMinimumSize(smallestSize);
    resize(firstSize);
    observers_->route.observe({&state_.navigation.observable()});
    observers_->strip.observe(strip_->shows());
    observers_->target.observe(target_->shows());
    observers_->menu.observe(menus_->shows());
    observers_->update.observe({&monitor_.integration().updates.observable()});
}

DashboardWindow::~DashboardWindow() = default;

QWidget* DashboardWindow::makeContent() {
    auto* content = new QWidget(this);
    auto* columns = new QHBoxLayout(content);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(0);
    sidebar_ = new Sidebar(content);
    connect(sidebar_, &Sidebar::routeChosen, this,
            [this](AppRoute route) { state_.navigation.setSelectedRoute(route); });
    columns->addWidget(sidebar_);

    auto* right = new QVBoxLayout;
    right->setSpacing(0);
    header_ = new PageHeader(content);
    connect(header_, &PageHeader::refreshWanted, this, [this] { monitor_.refresh(); });
    strip_ = new StatusStrip(monitor_, content);
    right->addWidget(header_);
    right->addWidget(strip_);
    updateBar_ = new UpdateBar(monitor_.integration().updates, content);
    target_ = new OperationTargetBar(monitor_, state_, content);
    // Above the content of the page, which is no wider.
    target_->setMaximumWidth(spacing::widestContent);
    updateBar_->setMaximumWidth(spacing::widestContent);
    for (QWidget* each : {static_cast<QWidget*>(header_), static_cast<QWidget*>(strip_)}) {
        each->setMaximumWidth(spacing::widestContent + 2 * spacing::pagePadding);
    }
    targetRow_ = new QVBoxLayout;
    targetRow_->setSpacing(spacing::unit);
    targetRow_->addWidget(updateBar_);
    targetRow_->addWidget(target_);
    right->addLayout(targetRow_);
    pages_ = new QStackedLayout;
    right->addLayout(pages_, 1);
    columns->addLayout(right, 1);
    return content;
}

void DashboardWindow::addSheets() {
    sheets_ = new SheetHost(*this, *menus_->emergencyStop(), monitor_.services().jobs.mainQueue());
    connect(sheets_, &SheetHost::refreshed, this, &DashboardWindow::refreshed);
    sheets_->add({.shows = SettingsSheet::shows(monitor_, state_),
                  .isWanted = [this] { return state_.navigation.showSettings(); },
                  .dismissed = [this] { state_.navigation.setShowSettings(false); },
                  .make = [this](QWidget* on) { return new SettingsSheet(monitor_, state_, on); }});
    sheets_->add({.shows = SetupWizard::shows(monitor_, state_),
                  .isWanted = [this] { return state_.navigation.showSetupWizard(); },
                  .dismissed = [this] { state_.navigation.setShowSetupWizard(false); },
                  .make = [this](QWidget* on) { return new SetupWizard(monitor_, state_, on); }});
    ProUpdater& updates = monitor_.integration().updates;
    sheets_->add({.shows = {&updates.observable()},
                  .isWanted = [&updates] { return updates.alert() != nullptr; },
                  .dismissed = {},
                  .make = [&updates](QWidget* on) { return new UpdateDialog(updates, on); }});
    // Last, so that a question stands above every sheet.
    sheets_->add(
        {.shows = confirmationSources(monitor_),
         .isWanted = [this] { return monitor_.confirmations().pendingConfirmation().has_value(); },
         .dismissed = {},
         .make =
             [this](QWidget* on) {
                 return new ConfirmationDialog(
                     monitor_.confirmations(),
                     [this](const ConfirmationRequest& asked) {
                         return confirmationDetails(monitor_, asked);
                     },
                     on);
             }});
}

Screen* DashboardWindow::makeScreen(AppRoute route) {
    switch (route) {
        case AppRoute::overview:
            return new OverviewPage(monitor_, state_);
        case AppRoute::load:
            return new LoadPage(monitor_, state_);
        case AppRoute::optimize:
            return new OptimizePage(monitor_, state_);
        case AppRoute::aiAdvisor:
            return new AdvisorPage(monitor_, state_);
        case AppRoute::optimizationSuggestions:
            return new OptimizationSuggestionsPage(monitor_, state_);
        case AppRoute::chat:
            return new ChatPage(monitor_, state_);
        case AppRoute::remoteMacs:
            return new RemoteMacsPage(monitor_, state_);
        case AppRoute::history:
            return new HistoryPage(monitor_, state_);
        case AppRoute::settings:
            return new SettingsPage(monitor_, state_);
    }
    throw std::logic_error("no such page");
}

Screen* DashboardWindow::screen(AppRoute route) {
    Screen*& kept = screens_.at(static_cast<std::size_t>(route));
    if (kept == nullptr) {
        kept = makeScreen(route);
        pages_->addWidget(kept);
        connect(kept, &Screen::selectionMade, this, &DashboardWindow::showSelection);
    }
    return kept;
}

void DashboardWindow::showSelection() {
    for (Screen* each : screens_) {
        if (each != nullptr) {
            each->showSelection();
        }
    }
}

void DashboardWindow::refreshAll() {
    sheets_->refresh();
    refreshMenus();
    refreshStrip();
    refreshUpdateBar();
    refreshTarget();
    if (shownRoute_ == state_.navigation.selectedRoute()) {
        refreshPage();
    } else {
        showRoute();
    }
}

void DashboardWindow::refreshMenus() {
    menus_->refresh();
    emit refreshed(menus_);
}

void DashboardWindow::refreshUpdateBar() {
    if (canBeSeen()) {
        updateBar_->refresh();
        emit refreshed(updateBar_);
    }
}

void DashboardWindow::refreshStrip() {
    if (canBeSeen()) {
        strip_->refresh();
        emit refreshed(strip_);
    }
}

void DashboardWindow::refreshTarget() {
    if (canBeSeen()) {
        target_->refresh();
        emit refreshed(target_);
    }
}

void DashboardWindow::showRoute() {
    const AppRoute route = state_.navigation.selectedRoute();
    if (!canBeSeen() || shownRoute_ == route) {
        return;
    }
    const bool isFirst = !shownRoute_;
    shownRoute_ = route;
    Screen* shown = screen(route);
    sidebar_->setSelectedRoute(route);
    header_->setRoute(route, shown->headerActions());
    pages_->setCurrentWidget(shown);
    observers_->page.observe(shown->shows());
    refreshPage();
    // The focused row of the sidebar says it itself.
    if (!isFirst && !sidebar_->isAncestorOf(focusWidget())) {
        announce(*this, dashboard_text::text(title(route)) + u". "_s +
                            dashboard_text::text(subtitle(route)));
    }
}

void DashboardWindow::refreshPage() {
    if (!canBeSeen() || !shownRoute_) {
        return;
    }
    Screen* page = screen(*shownRoute_);
    page->refresh();
    header_->refresh();
    emit refreshed(page);
    if (firstSample_ == FirstSample::awaited && monitor_.sample().snapshot()) {
        firstSample_ = FirstSample::onPage;
        update();
    }
}

bool DashboardWindow::event(QEvent* event) {
    const bool isHandled = QMainWindow::event(event);
    // Qt paints in this event, after the layouts.
    if (event->type() == QEvent::UpdateRequest && firstSample_ == FirstSample::onPage) {
        firstSample_ = FirstSample::painted;
        emit firstSampleShown();
    }
    return isHandled;
}

void DashboardWindow::openRoute(AppRoute route) {
    state_.navigation.setSelectedRoute(route);
    bringToFront();
}

void DashboardWindow::bringToFront() {
    restoreIfMinimised();
    show();
    QMetaObject::invokeMethod(this, &DashboardWindow::comeForward, Qt::QueuedConnection);
}

void DashboardWindow::restoreIfMinimised() {
    // Only the minimised state: a maximised window stays maximised.
    setWindowState(windowState() & ~Qt::WindowMinimized);
}

void DashboardWindow::comeForward() {
    // Again, because the display may report only now that the window was minimised before.
    restoreIfMinimised();
    raise();
    activateWindow();
    sheets_->comeForward();
}

QAction* DashboardWindow::emergencyStop() const {
    return menus_->emergencyStop();
}

void DashboardWindow::hideEvent(QHideEvent* event) {
    QMainWindow::hideEvent(event);
    // Dialogs close with their window, and closing a question is not a yes. A minimised window,
    // whose event is spontaneous, hides its dialogs and restores them.
    if (!event->spontaneous()) {
        sheets_->closeAll();
    }
}

void DashboardWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    monitor_.startMonitoring();
    if (!hasLookedForUpdates_) {
        hasLookedForUpdates_ = true;
        monitor_.integration().updates.checkOnLaunchIfDue();
    }
    refreshAll();
}

void DashboardWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange) {
        refreshAll();
    }
    // A window manager may give a click's focus to this window, where the keys of an open question
    // would get lost.
    QWidget* const modal = QApplication::activeModalWidget();
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && modal != nullptr) {
        modal->activateWindow();
    }
}

void DashboardWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    sidebar_->setFolded(width() < foldingWidth);
    const bool isLow = height() < lowHeight;
    header_->setLow(isLow);
    targetRow_->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding,
                                   isLow ? spacing::unit : spacing::gap);
}

void DashboardWindow::closeEvent(QCloseEvent* event) {
    QMainWindow::closeEvent(event);
    emit closed();
}

}  // namespace tallowcrest

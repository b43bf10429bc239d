#pragma once

#include <array>
#include <functional>
#include <optional>

#include <QMainWindow>

#include "core/observable.h"
#include "core/queues.h"
#include "core/routes.h"

class QAction;
class QStackedLayout;

namespace tallowcrest {

class ConfirmationDialog;
class OperationTargetBar;
class PageHeader;
class Screen;
class SettingsSheet;
class Sidebar;
class StatusStrip;
class SystemMonitor;
class WindowDialog;
class WindowMenus;

/// The one dashboard window. Only what can be seen is kept up to date; a closed or minimised window
/// does no work. A request that waits for a confirmation brings up a dialog above it, whatever
/// route it shows. Main thread.
class DashboardWindow final : public QMainWindow {
    Q_OBJECT

public:
    DashboardWindow(SystemMonitor& monitor, MainQueue& mainQueue);

    /// Shows the window on `route` and brings it to the front on the next turn of the main queue.
    void openRoute(AppRoute route);
    /// The same on the route that is selected already.
    void bringToFront();

    /// For windows of the program beside this one: its keys work where the action has been added.
    QAction* emergencyStop() const;

signals:
    /// The owner closed the window.
    void closed();
    /// The content has been painted for the first time since the first sample landed.
    void firstSampleShown();

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeContent();
    void refresh();
    bool canBeSeen() const { return isVisible() && !isMinimized(); }
    /// Keeps the dialogs that stand up to date, and opens what is wanted beside them.
    void refreshDialogs();
    void openDialog();
    template <class Dialog, class Source>
    void open(Dialog*& dialog, Source& source);
    /// Those that stand on the window, the frontmost last. Null while there was no need for one.
    std::array<WindowDialog*, 2> dialogs() const;
    void comeForward();
    Screen* screen(AppRoute route);
    Screen* makeScreen(AppRoute route);

    SystemMonitor& monitor_;
    MainQueue& mainQueue_;
    Sidebar* sidebar_ = nullptr;
    PageHeader* header_ = nullptr;
    StatusStrip* strip_ = nullptr;
    OperationTargetBar* target_ = nullptr;
    ConfirmationDialog* confirmation_ = nullptr;  ///< built for the first request
    SettingsSheet* settings_ = nullptr;           ///< built when it is first wanted
    WindowMenus* menus_ = nullptr;
    QStackedLayout* pages_ = nullptr;
    std::array<Screen*, allAppRoutes.size()> screens_{};
    std::optional<AppRoute> shownRoute_;
    bool hasShownSample_ = false;
    Subscription subscription_;
};

}  // namespace tallowcrest

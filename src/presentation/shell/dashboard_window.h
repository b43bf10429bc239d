#pragma once

#include <array>
#include <memory>
#include <optional>

#include <QMainWindow>

#include "core/routes.h"
#include "presentation/state/window_state.h"

class QAction;
class QVBoxLayout;
class QStackedLayout;

namespace tallowcrest {

class OperationTargetBar;
class PageHeader;
class Screen;
class SheetHost;
class Sidebar;
class StatusStrip;
class SystemMonitor;
class UpdateBar;
class WindowMenus;

/// The dashboard window. Only what is visible is updated; a closed or minimised window does no
/// work. A pending confirmation request opens a dialog above it on every route. Main thread.
class DashboardWindow final : public QMainWindow {
    Q_OBJECT

public:
    explicit DashboardWindow(SystemMonitor& monitor);
    ~DashboardWindow() override;

    /// Shows the window on `route` and brings it to the front on the next turn of the event loop.
    void openRoute(AppRoute route);
    /// The same, on the present route.
    void bringToFront();

    /// Where the owner is in the window, and which sections are closed.
    WindowState& state() { return state_; }

    /// For windows of the program beside this one: its keys work where the action has been added.
    QAction* emergencyStop() const;

signals:
    /// The owner closed the window.
    void closed();
    /// The first sample has been painted. Emitted once.
    void firstSampleShown();
    /// A part of the window was brought up to date: the page, the strip, the target bar, the menus
    /// or an open sheet. For tests that count the work of a change.
    void refreshed(QObject* part);

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    struct Observers;
    enum class FirstSample { awaited, onPage, painted };

    QWidget* makeContent();
    /// Brings everything that can be seen up to date.
    void refreshAll();
    void showRoute();
    void refreshPage();
    void refreshStrip();
    void refreshTarget();
    void refreshMenus();
    void refreshUpdateBar();
    bool canBeSeen() const { return isVisible() && !isMinimized(); }
    void addSheets();
    void restoreIfMinimised();
    void comeForward();
    Screen* screen(AppRoute route);
    Screen* makeScreen(AppRoute route);
    /// Shows the process under review on each page that has its row.
    void showSelection();

    SystemMonitor& monitor_;
    WindowState state_;
    Sidebar* sidebar_ = nullptr;
    PageHeader* header_ = nullptr;
    StatusStrip* strip_ = nullptr;
    UpdateBar* updateBar_ = nullptr;
    OperationTargetBar* target_ = nullptr;
    QVBoxLayout* targetRow_ = nullptr;
    WindowMenus* menus_ = nullptr;
    SheetHost* sheets_ = nullptr;
    QStackedLayout* pages_ = nullptr;
    std::array<Screen*, allAppRoutes.size()> screens_{};
    std::optional<AppRoute> shownRoute_;
    bool hasLookedForUpdates_ = false;
    FirstSample firstSample_ = FirstSample::awaited;
    std::unique_ptr<Observers> observers_;
};

}  // namespace tallowcrest

#pragma once

#include <vector>

#include <QObject>

class QAction;
class QMainWindow;
class QMenu;

namespace tallowcrest {

class Observable;
class SystemMonitor;
struct WindowState;

/// The menus of the dashboard window and their shortcuts. Main thread.
class WindowMenus final : public QObject {
    Q_OBJECT

public:
    /// Fills the menu bar of `window`, its parent. The monitor must outlive it.
    WindowMenus(SystemMonitor& monitor, WindowState& state, QMainWindow& window);

    /// Its shortcuts work in every window to which the action has been added.
    QAction* emergencyStop() const { return emergencyStop_; }

    /// Enables the commands that the monitor's state allows.
    void refresh();
    /// A change of any of these calls for a refresh, and nothing else does.
    std::vector<Observable*> shows() const;

    /// Leaves the keys that delete a word to text fields, although commands use them too.
    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    /// The filter of the process list should get the focus.
    void processFilterWanted();

private:
    void makeApplicationMenu();
    void addEmergencyStop(QMenu& menu);
    void makeFileMenu();
    void addInstallation(QMenu& menu);
    void makeGoMenu();
    void showAbout();

    SystemMonitor& monitor_;
    WindowState& state_;
    QMainWindow& window_;
    QAction* emergencyStop_ = nullptr;
    QAction* resumeManualMode_ = nullptr;
};

}  // namespace tallowcrest

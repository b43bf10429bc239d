#pragma once

#include <QObject>

class QAction;
class QMainWindow;
class QMenu;

namespace tallowcrest {

class SystemMonitor;

/// The menus of the dashboard window and the keys of their commands. Main thread.
class WindowMenus final : public QObject {
    Q_OBJECT

public:
    /// Fills the menu bar of `window`, which it belongs to. The monitor must outlive it.
    WindowMenus(SystemMonitor& monitor, QMainWindow& window);

    /// Its keys work in every window that the action has been added to.
    QAction* emergencyStop() const { return emergencyStop_; }

    /// Reads the monitor's state and offers what can be done.
    void refresh();

    /// Leaves the keys that delete a word to text fields, though commands have them too.
    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    /// The keyboard is wanted in the filter of the process list.
    void processFilterWanted();

private:
    void makeApplicationMenu();
    void addEmergencyStop(QMenu& menu);
    void makeFileMenu();
    void makeGoMenu();
    void showAbout();

    SystemMonitor& monitor_;
    QMainWindow& window_;
    QAction* emergencyStop_ = nullptr;
    QAction* resumeManualMode_ = nullptr;
};

}  // namespace tallowcrest

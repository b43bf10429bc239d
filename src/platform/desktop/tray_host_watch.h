#pragma once

#include <chrono>

#include <QDBusServiceWatcher>
#include <QObject>
#include <QTimer>

namespace tallowcrest {

/// Detects when the tray of the desktop disappears permanently. A panel may restart, so a tray that
/// is back within the grace period does not count as lost. Losing the session bus loses the tray,
/// because Qt does not reconnect. Trays that do not use the session bus are not watched. Main
/// thread.
class TrayHostWatch final : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds defaultGracePeriod{5000};

    explicit TrayHostWatch(QObject* parent = nullptr,
                           std::chrono::milliseconds gracePeriod = defaultGracePeriod);

    /// Whether there was a tray on the session bus and is none any more, so that a hidden window
    /// could not be reached.
    bool isLost() const { return isLost_; }

signals:
    /// Once for each loss.
    void lost();

private slots:
    void busDisconnected();

private:
    void gracePeriodEnded();
    void lose();

    QDBusServiceWatcher watcher_;
    QTimer graceTimer_;
    bool isLost_ = false;
};

}  // namespace tallowcrest

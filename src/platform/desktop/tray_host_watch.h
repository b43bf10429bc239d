#pragma once

#include <chrono>

#include <QDBusServiceWatcher>
#include <QObject>
#include <QTimer>

namespace tallowcrest {

/// Notices when the desktop's tray goes away for good. Panels restart now and then, so one that is
/// back within a grace was never gone. The session bus itself is never come back to, so its end is
/// the tray's. Trays that do not live on the session bus are not noticed. Main thread.
class TrayHostWatch final : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds defaultGrace{5000};

    explicit TrayHostWatch(QObject* parent = nullptr,
                           std::chrono::milliseconds grace = defaultGrace);

    /// Whether a window that is hidden now could be reached from no tray of the session bus,
    /// although it once could.
    bool isLost() const { return isLost_; }

signals:
    /// Once for each loss.
    void lost();

private slots:
    void busEnded();

private:
    void graceEnded();
    void lose();

    QDBusServiceWatcher watcher_;
    QTimer graceTimer_;
    bool isLost_ = false;
};

}  // namespace tallowcrest

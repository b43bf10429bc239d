#pragma once

#include <chrono>

#include <QDBusServiceWatcher>
#include <QObject>
#include <QTimer>

namespace tallowcrest {

/// Notices when the desktop's tray goes away for good. Panels restart now and then, so one that is
/// back within `grace` was never gone. Trays that do not live on the session bus are not noticed.
/// Main thread.
class TrayHostWatch final : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds grace{5000};

    explicit TrayHostWatch(QObject* parent = nullptr);

    bool isLost() const { return isLost_; }

signals:
    void lost();

private:
    QDBusServiceWatcher watcher_;
    QTimer graceTimer_;
    bool isLost_ = false;
};

}  // namespace tallowcrest

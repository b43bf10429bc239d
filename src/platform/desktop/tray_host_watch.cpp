#include "platform/desktop/tray_host_watch.h"

#include <utility>

#include <QDBusConnection>

namespace tallowcrest {

TrayHostWatch::TrayHostWatch(QObject* parent)
    : QObject(parent),
      watcher_(QStringLiteral("org.kde.StatusNotifierWatcher"), QDBusConnection::sessionBus(),
               QDBusServiceWatcher::WatchForOwnerChange) {
    graceTimer_.setSingleShot(true);
    graceTimer_.setInterval(grace);
    connect(&watcher_, &QDBusServiceWatcher::serviceUnregistered, &graceTimer_,
            qOverload<>(&QTimer::start));
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] {
        graceTimer_.stop();
        isLost_ = false;
    });
    connect(&graceTimer_, &QTimer::timeout, this, &TrayHostWatch::lose);
    // The library itself sends this to its program; no name of the bus stands behind it.
    QDBusConnection::sessionBus().connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                                          QStringLiteral("org.freedesktop.DBus.Local"),
                                          QStringLiteral("Disconnected"), this, SLOT(busEnded()));
}

void TrayHostWatch::busEnded() {
    graceTimer_.stop();
    lose();
}

void TrayHostWatch::lose() {
    if (!std::exchange(isLost_, true)) {
        emit lost();
    }
}

}  // namespace tallowcrest

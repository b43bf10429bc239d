#include "platform/desktop/tray_host_watch.h"

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
    connect(&graceTimer_, &QTimer::timeout, this, [this] {
        isLost_ = true;
        emit lost();
    });
}

}  // namespace tallowcrest

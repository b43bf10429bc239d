#include "platform/desktop/tray_host_watch.h"

#include <utility>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

using namespace Qt::StringLiterals;

namespace tallowcrest {

namespace {

QString trayName() {
    return u"org.kde.StatusNotifierWatcher"_s;
}

}  // namespace

TrayHostWatch::TrayHostWatch(QObject* parent, std::chrono::milliseconds gracePeriod)
    : QObject(parent),
      watcher_(trayName(), QDBusConnection::sessionBus(),
               QDBusServiceWatcher::WatchForOwnerChange) {
    graceTimer_.setSingleShot(true);
    graceTimer_.setInterval(gracePeriod);
    connect(&watcher_, &QDBusServiceWatcher::serviceUnregistered, &graceTimer_,
            qOverload<>(&QTimer::start));
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] {
        graceTimer_.stop();
        isLost_ = false;
    });
    connect(&graceTimer_, &QTimer::timeout, this, &TrayHostWatch::gracePeriodEnded);
    // libdbus itself emits this signal, so it has no sender.
    QDBusConnection::sessionBus().connect(QString(), u"/org/freedesktop/DBus/Local"_s,
                                          u"org.freedesktop.DBus.Local"_s, u"Disconnected"_s, this,
                                          SLOT(busDisconnected()));
}

void TrayHostWatch::busDisconnected() {
    graceTimer_.stop();
    lose();
}

/// Asks the bus again, because the signals may arrive in the wrong order while a program starts.
void TrayHostWatch::gracePeriodEnded() {
    QDBusMessage request =
        QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                       u"org.freedesktop.DBus"_s, u"NameHasOwner"_s);
    request << trayName();
    auto* answer =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(request), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<bool> isThere = *answer;
        answer->deleteLater();
        if (isThere.isError() || !isThere.value()) {
            lose();
        }
    });
}

void TrayHostWatch::lose() {
    if (!std::exchange(isLost_, true)) {
        emit lost();
    }
}

}  // namespace tallowcrest

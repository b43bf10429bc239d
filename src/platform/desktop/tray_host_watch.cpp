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

TrayHostWatch::TrayHostWatch(QObject* parent, std::chrono::milliseconds grace)
    : QObject(parent),
      watcher_(trayName(), QDBusConnection::sessionBus(),
               QDBusServiceWatcher::WatchForOwnerChange) {
    graceTimer_.setSingleShot(true);
    graceTimer_.setInterval(grace);
    connect(&watcher_, &QDBusServiceWatcher::serviceUnregistered, &graceTimer_,
            qOverload<>(&QTimer::start));
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] {
        graceTimer_.stop();
        isLost_ = false;
    });
    connect(&graceTimer_, &QTimer::timeout, this, &TrayHostWatch::graceEnded);
    // The library itself sends this to its program; no name of the bus stands behind it.
    QDBusConnection::sessionBus().connect(QString(), u"/org/freedesktop/DBus/Local"_s,
                                          u"org.freedesktop.DBus.Local"_s, u"Disconnected"_s, this,
                                          SLOT(busEnded()));
}

void TrayHostWatch::busEnded() {
    graceTimer_.stop();
    lose();
}

/// Asks once more: while a program starts, going and coming can be told in the wrong order.
void TrayHostWatch::graceEnded() {
    QDBusMessage question =
        QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                       u"org.freedesktop.DBus"_s, u"NameHasOwner"_s);
    question << trayName();
    auto* answer =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
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

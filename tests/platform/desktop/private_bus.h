#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace tallowcrest {

/// A message bus of a test's own, which starts no service by itself.
class PrivateBus {
public:
    PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    ~PrivateBus();

    /// Empty when it did not start.
    const QString& address() const { return address_; }
    /// A new connection; the name that Qt keeps it under until `disconnectFromBus`.
    QString connect() const;
    void kill();

private:
    QTemporaryDir folder_;
    QProcess daemon_;
    QString address_;
};

/// Whatever `connection` has sent before is done with by the bus, and passed on, when this returns.
bool settle(const QDBusConnection& connection);

/// Waits until nobody on the bus of `observer` bears this name, without hearing any event.
bool untilGone(const QDBusConnection& observer, const QString& name);

}  // namespace tallowcrest

#pragma once

#include <string>

#include <QDBusConnection>
#include <QString>

#include "tests/platform/support/started_program.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {

/// A message bus for one test.
class PrivateBus {
public:
    /// Activates the services described in the folder `services`; none if that is empty.
    explicit PrivateBus(const std::string& services = {});

    /// Empty when the bus did not start.
    const QString& address() const { return address_; }
    /// Opens a connection and returns its name in Qt, valid until `disconnectFromBus`.
    QString connect() const;
    StartedProgram& daemon() { return daemon_; }

private:
    TemporaryFolder folder_;
    StartedProgram daemon_;
    QString address_;
};

/// Waits until the bus has processed and passed on everything that `connection` has sent.
bool settle(const QDBusConnection& connection);

/// Waits until no client on the bus of `observer` owns the name, without processing events.
bool untilGone(const QDBusConnection& observer, const QString& name);

}  // namespace tallowcrest

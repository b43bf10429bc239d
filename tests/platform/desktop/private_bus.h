#pragma once

#include <string>

#include <QDBusConnection>
#include <QString>

#include "tests/platform/support/started_program.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {

/// A message bus of a test's own.
class PrivateBus {
public:
    /// It starts the services that are described in the folder `services`, and without one none.
    explicit PrivateBus(const std::string& services = {});

    /// Empty when it did not start.
    const QString& address() const { return address_; }
    /// A new connection; the name that Qt keeps it under until `disconnectFromBus`.
    QString connect() const;
    StartedProgram& daemon() { return daemon_; }

private:
    TemporaryFolder folder_;
    StartedProgram daemon_;
    QString address_;
};

/// Whatever `connection` has sent before is done with by the bus, and passed on, when this returns.
bool settle(const QDBusConnection& connection);

/// Waits until nobody on the bus of `observer` bears this name, without hearing any event.
bool untilGone(const QDBusConnection& observer, const QString& name);

}  // namespace tallowcrest

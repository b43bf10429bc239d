#pragma once

#include <signal.h>

#include <string>
#include <vector>

#include <QDBusConnection>
#include <QString>
#include <QtGlobal>

#include "core/local_records.h"
#include "tests/platform/desktop/private_bus.h"
#include "tests/platform/support/started_program.h"

namespace tallowcrest {

/// The session bus for the programs that a test starts, and a connection to it.
class TestSessionBus : public PrivateBus {
public:
    explicit TestSessionBus(const std::string& services = {}) : PrivateBus(services) {
        qputenv("DBUS_SESSION_BUS_ADDRESS", address().toUtf8());
    }
    TestSessionBus(const TestSessionBus&) = delete;
    TestSessionBus& operator=(const TestSessionBus&) = delete;
    ~TestSessionBus() {
        daemon().signal(SIGCONT);
        QDBusConnection::disconnectFromBus(connectionName_);
    }

    QDBusConnection connection() const { return QDBusConnection(connectionName_); }

private:
    const QString connectionName_ = connect();
};

inline bool everyProcess(const ProcessSample&) {
    return true;
}

inline constexpr const char* applicationName = "org.example.Quitting-App";

/// The application in quit_action_service.py. `greeting` is "ready" if it has started.
class TestApplication : public StartedProgram {
public:
    explicit TestApplication(const std::string& behaviour,
                             const std::vector<std::string>& otherNames = {},
                             const std::string& name = applicationName)
        : StartedProgram(commandFor(name, behaviour, otherNames)), greeting(line()) {}

    /// The process as in a sample.
    ProcessSample member() const {
        ProcessSample sample;
        sample.pid = pid();
        sample.startTime = 7;
        return sample;
    }

    const std::string greeting;

private:
    static std::vector<std::string> commandFor(const std::string& name,
                                               const std::string& behaviour,
                                               const std::vector<std::string>& otherNames) {
        // The system's Python has the bindings for D-Bus.
        std::vector<std::string> command{"/usr/bin/python3", "-B",
                                         TALLOWCREST_SOURCE_DIR
                                         "/tests/platform/desktop/quit_action_service.py",
                                         name, behaviour};
        command.insert(command.end(), otherNames.begin(), otherNames.end());
        return command;
    }
};

}  // namespace tallowcrest

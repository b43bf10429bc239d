#pragma once

#include <signal.h>

#include <string>
#include <vector>

#include <QDBusConnection>
#include <QString>
#include <QtGlobal>

#include "core/local_records.h"
#include "tests/platform/started_program.h"

namespace tallowcrest {

/// A session bus of a test's own, for programs that it starts too, and a connection to it.
class TestSessionBus {
public:
    explicit TestSessionBus(const std::vector<std::string>& options = {"--session"})
        : daemon_(commandWith(options)), address_(QString::fromStdString(daemon_.line())) {
        qputenv("DBUS_SESSION_BUS_ADDRESS", address_.toUtf8());
        QDBusConnection::connectToBus(address_, connectionName());
    }
    TestSessionBus(const TestSessionBus&) = delete;
    TestSessionBus& operator=(const TestSessionBus&) = delete;
    ~TestSessionBus() {
        daemon_.signal(SIGCONT);
        QDBusConnection::disconnectFromBus(connectionName());
    }

    StartedProgram& daemon() { return daemon_; }
    QDBusConnection connection() const { return QDBusConnection(connectionName()); }

private:
    static QString connectionName() { return QStringLiteral("graceful-quit-test"); }

    static std::vector<std::string> commandWith(const std::vector<std::string>& options) {
        std::vector<std::string> command{"dbus-daemon", "--nofork", "--nopidfile",
                                         "--print-address=1", "--address=unix:tmpdir=/tmp"};
        command.insert(command.end(), options.begin(), options.end());
        return command;
    }

    StartedProgram daemon_;
    QString address_;
};

inline constexpr const char* applicationName = "org.example.Quitting-App";

/// The application of quit_action_service.py. Ready when it is built, if its next line says so.
class TestApplication : public StartedProgram {
public:
    explicit TestApplication(const std::string& behaviour,
                             const std::vector<std::string>& otherNames = {},
                             const std::string& name = applicationName)
        : StartedProgram(commandFor(name, behaviour, otherNames)), greeting(line()) {}

    /// As the sample would tell of it.
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
        // The system's own Python is the one that has the bindings for D-Bus.
        std::vector<std::string> command{"/usr/bin/python3", "-B",
                                         TALLOWCREST_SOURCE_DIR
                                         "/tests/platform/desktop/quit_action_service.py",
                                         name, behaviour};
        command.insert(command.end(), otherNames.begin(), otherNames.end());
        return command;
    }
};

}  // namespace tallowcrest

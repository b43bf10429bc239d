#pragma once

#include <optional>
#include <string>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <gtest/gtest.h>

#include "platform/secrets/secret_service_store.h"
#include "tests/platform/desktop/private_bus.h"
#include "tests/platform/support/started_program.h"
#include "tests/support/eventually.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {

/// A session bus and a home of the test's own, first without a service for secrets.
class KeyringTest : public testing::Test {
protected:
    /// Starts a real keyring daemon and waits for its service. Unlocked, it makes its keyring with
    /// a password on the first start.
    void startKeyring(bool unlocked) {
        keyring_.reset();
        home_.file("password", "correct horse", 0600);
        const std::string command = "exec gnome-keyring-daemon --foreground --components=secrets ";
        keyring_.emplace(std::vector<std::string>{
            "sh", "-c",
            command + (unlocked ? "--unlock <" + home_.path("password") : "</dev/null")});
        ASSERT_TRUE(eventually([this] { return hasService(); }));
    }

    void stopKeyring() {
        keyring_.reset();
        ASSERT_TRUE(eventually([this] { return !hasService(); }));
    }

    bool hasService() const {
        return observer_.interface()
            ->isServiceRegistered(QStringLiteral("org.freedesktop.secrets"))
            .value();
    }

    TemporaryFolder home_;
    PrivateBus bus_;
    QDBusConnection observer_{bus_.connect()};
    ScopedVariable address_{"DBUS_SESSION_BUS_ADDRESS", bus_.address().toStdString()};
    ScopedVariable homeVariable_{"HOME", home_.path().string()};
    ScopedVariable data_{"XDG_DATA_HOME", home_.path("data")};
    ScopedVariable runtime_{"XDG_RUNTIME_DIR", home_.path().string()};
    std::optional<StartedProgram> keyring_;
    std::stop_source stop_;
    SecretServiceStore store_{stop_.get_token()};
};

/// A helper of these tests beside this file, which has printed "ready".
class Script {
public:
    Script(const std::string& name, const std::string& mode)
        : program_({"/usr/bin/python3", "-B",
                    TALLOWCREST_SOURCE_DIR "/tests/platform/secrets/" + name, mode}) {
        EXPECT_EQ(program_.line(), "ready");
    }

    std::string line() { return program_.line(); }

private:
    StartedProgram program_;
};

/// The text of a secret; absent when there is none.
inline std::optional<std::string> textOf(const std::optional<SecretText>& secret) {
    return secret ? std::optional<std::string>(secret->view()) : std::nullopt;
}

}  // namespace tallowcrest

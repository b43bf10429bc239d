#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/desktop/dbus_notification_center.h"
#include "tests/platform/desktop/private_bus.h"
#include "tests/platform/desktop/scripted_notification_daemon.h"
#include "tests/platform/desktop/turn_until.h"

namespace tallowcrest {

inline const QStringList allCapabilities{"actions", "body", "body-markup", "persistence"};
inline const NotificationCategory warning{"WARNING",
                                          {{"REVIEW", "Review Cleanup"}, {"SCAN", "Scan"}}};

inline NotificationContent content(const std::string& body,
                                   const std::string& category = "WARNING") {
    return {"Load & warning", body, category, true};
}

/// The warnings that Qt has printed.
inline QStringList& warnings() {
    static QStringList list;
    return list;
}

/// A notification center on a private bus. Expects that Qt prints no warnings.
class DBusNotificationFixture : public testing::Test {
protected:
    using Daemon = ScriptedNotificationDaemon;

    DBusNotificationFixture() {
        warnings().clear();
        previous = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext&, const QString& text) { warnings() << text; });
    }
    ~DBusNotificationFixture() override {
        center.reset();
        QDBusConnection::disconnectFromBus(connectionName);
        qInstallMessageHandler(previous);
    }
    void SetUp() override { ASSERT_FALSE(bus.address().isEmpty()); }
    void TearDown() override { EXPECT_EQ(warnings(), QStringList()); }

    void start(std::chrono::milliseconds timeout = DBusNotificationCenter::defaultTimeout) {
        center = std::make_unique<DBusNotificationCenter>(QDBusConnection(connectionName), timeout);
        center->setCategories({{"OTHER", {{"WRONG", "Wrong"}}}, warning});
        center->setResponseHandler([this](const std::string& identifier) {
            responses.push_back(identifier);
            tokens.push_back(qgetenv("XDG_ACTIVATION_TOKEN").toStdString());
        });
    }

    /// Posts repeatedly until `daemon` receives one. Posts before that one were dropped.
    bool showsAgain(const Daemon& daemon) {
        const std::size_t before = daemon.shown().size();
        return turnUntil([&] {
            center->post(content("again"));
            return daemon.shown().size() > before;
        });
    }

    /// Posts a notification and returns the id that `daemon` has given it.
    uint show(const Daemon& daemon, const std::string& body = "high") {
        const std::size_t before = daemon.shown().size();
        center->post(content(body));
        EXPECT_TRUE(turnUntil([&] { return daemon.shown().size() > before; }));
        return daemon.shown().empty() ? 0 : daemon.shown().back().id;
    }

    /// Invokes an action and waits for its response. All earlier signals have arrived then too.
    void invokeLastAction(const Daemon& daemon, uint id) {
        const std::size_t before = responses.size();
        daemon.invokeAction(id, "LAST");
        EXPECT_TRUE(
            turnUntil([&] { return responses.size() > before && responses.back() == "LAST"; }));
    }

    PrivateBus bus;
    QString connectionName = bus.connect();
    std::unique_ptr<DBusNotificationCenter> center;
    std::vector<std::string> responses;
    std::vector<std::string> tokens;
    QtMessageHandler previous = nullptr;
};

}  // namespace tallowcrest

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

inline const QStringList everything{"actions", "body", "body-markup", "persistence"};
inline const NotificationCategory warning{"WARNING",
                                          {{"REVIEW", "Review Cleanup"}, {"SCAN", "Scan"}}};

inline NotificationContent content(const std::string& body,
                                   const std::string& category = "WARNING") {
    return {"Load & warning", body, category, true};
}

/// What Qt warns of the owner would read on the terminal, and nothing here is to be noticed.
inline QStringList& warnings() {
    static QStringList list;
    return list;
}

/// A centre and daemons on a bus of their own, where nothing is to be noticed.
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

    void start(std::chrono::milliseconds patience = DBusNotificationCenter::defaultPatience) {
        center =
            std::make_unique<DBusNotificationCenter>(QDBusConnection(connectionName), patience);
        center->setCategories({{"OTHER", {{"WRONG", "Wrong"}}}, warning});
        center->setResponseHandler([this](const std::string& identifier) {
            responses.push_back(identifier);
            tokens.push_back(qgetenv("XDG_ACTIVATION_TOKEN").toStdString());
        });
    }

    /// Posts until one more than before is shown by `daemon`: what comes before that one was lost.
    bool showsAgain(const Daemon& daemon) {
        const std::size_t before = daemon.shown().size();
        return turnUntil([&] {
            center->post(content("again"));
            return daemon.shown().size() > before;
        });
    }

    /// The number of one that is on the screen of `daemon`.
    uint show(const Daemon& daemon, const std::string& body = "high") {
        const std::size_t before = daemon.shown().size();
        center->post(content(body));
        EXPECT_TRUE(turnUntil([&] { return daemon.shown().size() > before; }));
        return daemon.shown().empty() ? 0 : daemon.shown().back().id;
    }

    /// Presses what is there, and waits until that has been heard: whatever was told before has
    /// been heard, too.
    void pressAtLast(const Daemon& daemon, uint id) {
        const std::size_t before = responses.size();
        daemon.press(id, "LAST");
        EXPECT_TRUE(turnUntil([&] { return responses.size() > before; }));
    }

    PrivateBus bus;
    QString connectionName = bus.connect();
    std::unique_ptr<DBusNotificationCenter> center;
    std::vector<std::string> responses;
    std::vector<std::string> tokens;
    QtMessageHandler previous = nullptr;
};

}  // namespace tallowcrest

#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "tests/platform/desktop/dbus_notification_fixture.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using DBusNotificationActionsTest = DBusNotificationFixture;

TEST_F(DBusNotificationActionsTest, ReportsActions) {
    const Daemon daemon(bus, allCapabilities);
    start();
    const uint first = show(daemon);
    const uint second = show(daemon);
    daemon.invokeAction(second, "SCAN");
    daemon.invokeAction(first, "default");
    ASSERT_TRUE(turnUntil([&] { return responses.size() == 2; }));
    EXPECT_THAT(responses, ElementsAre("SCAN", NotificationCenter::plainClick));
}

TEST_F(DBusNotificationActionsTest, IgnoresActionsOfClosedAndOtherNotifications) {
    const Daemon daemon(bus, allCapabilities, 40);
    start();
    const uint closed = show(daemon);
    const uint open = show(daemon);
    daemon.invokeAction(1, "REVIEW");  // of another program
    daemon.close(closed);
    daemon.invokeAction(closed, "REVIEW");
    daemon.close(1);
    invokeLastAction(daemon, open);
    EXPECT_THAT(responses, ElementsAre("LAST"));
}

TEST_F(DBusNotificationActionsTest, ForgetsTheOldestNotificationsThatAreNeverClosed) {
    const Daemon daemon(bus, allCapabilities);
    start();
    const uint oldest = show(daemon);
    uint newest = oldest;
    for (int count = 0; count < 64; ++count) {
        newest = show(daemon);
    }
    daemon.invokeAction(oldest, "REVIEW");
    daemon.invokeAction(oldest + 1, "SCAN");
    invokeLastAction(daemon, newest);
    EXPECT_THAT(responses, ElementsAre("SCAN", "LAST"));
}

TEST_F(DBusNotificationActionsTest, IgnoresActionsFromOtherClients) {
    auto daemon = std::make_unique<Daemon>(bus, allCapabilities);
    start();
    const QDBusConnection forger(bus.connect());
    const QString us = QDBusConnection(connectionName).baseService();
    const auto forge = [&](uint id) {
        sendActionInvoked(forger, id, "REVIEW");
        sendActionInvoked(forger, id, "REVIEW", us);
        ASSERT_TRUE(settle(forger));
    };
    uint id = show(*daemon);
    forge(id);
    invokeLastAction(*daemon, id);

    daemon.reset();
    daemon = std::make_unique<Daemon>(bus, allCapabilities);
    ASSERT_TRUE(daemon->ownsItsName());
    ASSERT_TRUE(showsAgain(*daemon));
    id = daemon->shown().back().id;
    forge(id);
    invokeLastAction(*daemon, id);
    EXPECT_THAT(responses, ElementsAre("LAST", "LAST"));
    QDBusConnection::disconnectFromBus(forger.name());
}

TEST_F(DBusNotificationActionsTest, IgnoresActionsFromAReplacedDaemon) {
    const Daemon former(bus, allCapabilities);
    start();
    const uint id = show(former);
    const Daemon successor(bus, {"body"}, id, Daemon::NameRequest::replace);
    ASSERT_TRUE(successor.ownsItsName());
    former.invokeAction(id, "REVIEW");
    ASSERT_TRUE(showsAgain(successor));
    former.invokeAction(id, "REVIEW");
    invokeLastAction(successor, successor.shown().back().id);
    EXPECT_THAT(responses, ElementsAre("LAST"));
    EXPECT_EQ(successor.shown().front().actions, QStringList());
}

TEST_F(DBusNotificationActionsTest, TheActivationTokenIsSetForOneActionOnly) {
    const Daemon daemon(bus, allCapabilities);
    start();
    const uint id = show(daemon);
    daemon.giveToken(id + 1, "of another notification");
    daemon.giveToken(id, "token");
    daemon.invokeAction(id, "REVIEW");
    daemon.invokeAction(id, "SCAN");
    ASSERT_TRUE(turnUntil([&] { return responses.size() == 2; }));
    EXPECT_THAT(tokens, ElementsAre("token", ""));
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
}

TEST_F(DBusNotificationActionsTest, TheActivationTokenIsStillSetWhenTheWindowComesToTheFront) {
    const Daemon daemon(bus, allCapabilities);
    start();
    const uint id = show(daemon);
    QByteArray postedToken;
    center->setResponseHandler([this, &postedToken](const std::string& identifier) {
        responses.push_back(identifier);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [&postedToken] { postedToken = qgetenv("XDG_ACTIVATION_TOKEN"); },
            Qt::QueuedConnection);
    });
    daemon.giveToken(id, "token");
    daemon.invokeAction(id, "REVIEW");
    ASSERT_TRUE(turnUntil([&] { return !postedToken.isEmpty(); }));
    EXPECT_EQ(postedToken, QByteArray("token"));
    ASSERT_TRUE(turnUntil([] { return !qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"); }));
}

TEST_F(DBusNotificationActionsTest, TheHandlerMayReplaceItself) {
    const Daemon daemon(bus, allCapabilities);
    start();
    const uint id = show(daemon);
    const std::string text(100, 'x');
    center->setResponseHandler([this, text](const std::string&) {
        center->setResponseHandler(
            [this](const std::string&) { responses.emplace_back("replaced"); });
        responses.push_back(text);
    });
    daemon.invokeAction(id, "REVIEW");
    daemon.invokeAction(id, "SCAN");
    ASSERT_TRUE(turnUntil([&] { return responses.size() == 2; }));
    EXPECT_THAT(responses, ElementsAre(text, "replaced"));
}

TEST_F(DBusNotificationActionsTest, TheHandlerMayDestroyTheCenter) {
    const Daemon daemon(bus, allCapabilities);
    start();
    const uint id = show(daemon);
    center->setResponseHandler([this](const std::string& identifier) {
        center.reset();
        responses.push_back(identifier);
    });
    daemon.giveToken(id, "token");
    daemon.invokeAction(id, "REVIEW");
    daemon.invokeAction(id, "SCAN");
    ASSERT_TRUE(turnUntil([&] { return !responses.empty(); }));
    QCoreApplication::processEvents();
    EXPECT_THAT(responses, ElementsAre("REVIEW"));
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
}

TEST_F(DBusNotificationActionsTest, AnActionWithoutAHandlerDoesNothing) {
    const Daemon daemon(bus, allCapabilities);
    start();
    const uint id = show(daemon);
    center->setResponseHandler({});
    daemon.invokeAction(id, "REVIEW");
    show(daemon);  // answered after the action
    EXPECT_THAT(responses, IsEmpty());
}

}  // namespace
}  // namespace tallowcrest

#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "tests/platform/desktop/dbus_notification_fixture.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using DBusNotificationPressesTest = DBusNotificationFixture;

TEST_F(DBusNotificationPressesTest, PressesAreTold) {
    const Daemon daemon(bus, everything);
    start();
    const uint first = show(daemon);
    const uint second = show(daemon);
    daemon.press(second, "SCAN");
    daemon.press(first, "default");
    ASSERT_TRUE(turnUntil([&] { return responses.size() == 2; }));
    EXPECT_THAT(responses, ElementsAre("SCAN", NotificationCenter::plainClick));
}

TEST_F(DBusNotificationPressesTest, OnlyWhatIsOpenAndOursCanBePressed) {
    const Daemon daemon(bus, everything, 40);
    start();
    const uint closed = show(daemon);
    const uint open = show(daemon);
    daemon.press(1, "REVIEW");  // another program's
    daemon.close(closed);
    daemon.press(closed, "REVIEW");
    daemon.close(1);
    pressAtLast(daemon, open);
    EXPECT_THAT(responses, ElementsAre("LAST"));
}

TEST_F(DBusNotificationPressesTest, ManyThatAreNeverClosedAreForgottenFromTheOldest) {
    const Daemon daemon(bus, everything);
    start();
    const uint oldest = show(daemon);
    uint newest = oldest;
    for (int count = 0; count < 64; ++count) {
        newest = show(daemon);
    }
    daemon.press(oldest, "REVIEW");
    daemon.press(oldest + 1, "SCAN");
    pressAtLast(daemon, newest);
    EXPECT_THAT(responses, ElementsAre("SCAN", "LAST"));
}

TEST_F(DBusNotificationPressesTest, NobodyElseCanPress) {
    auto daemon = std::make_unique<Daemon>(bus, everything);
    start();
    const QDBusConnection forger(bus.connect());
    const QString us = QDBusConnection(connectionName).baseService();
    const auto forge = [&](uint id) {
        tellPress(forger, id, "REVIEW");
        tellPress(forger, id, "REVIEW", us);
        ASSERT_TRUE(settle(forger));
    };
    uint id = show(*daemon);
    forge(id);
    pressAtLast(*daemon, id);

    daemon.reset();
    daemon = std::make_unique<Daemon>(bus, everything);
    ASSERT_TRUE(daemon->ownsItsName());
    ASSERT_TRUE(showsAgain(*daemon));
    id = daemon->shown().back().id;
    forge(id);
    pressAtLast(*daemon, id);
    EXPECT_THAT(responses, ElementsAre("LAST", "LAST"));
    QDBusConnection::disconnectFromBus(forger.name());
}

TEST_F(DBusNotificationPressesTest, ADaemonThatGaveItsNameAwayCanPressNoMore) {
    const Daemon former(bus, everything);
    start();
    const uint id = show(former);
    const Daemon successor(bus, {"body"}, id, Daemon::Arrival::inPlaceOfAnother);
    ASSERT_TRUE(successor.ownsItsName());
    former.press(id, "REVIEW");
    ASSERT_TRUE(showsAgain(successor));
    former.press(id, "REVIEW");
    pressAtLast(successor, successor.shown().back().id);
    EXPECT_THAT(responses, ElementsAre("LAST"));
    EXPECT_EQ(successor.shown().front().actions, QStringList());
}

TEST_F(DBusNotificationPressesTest, TheLeaveToComeToTheFrontIsThereForOnePressAlone) {
    const Daemon daemon(bus, everything);
    start();
    const uint id = show(daemon);
    daemon.giveToken(id + 1, "somebody else's");
    daemon.giveToken(id, "leave");
    daemon.press(id, "REVIEW");
    daemon.press(id, "SCAN");
    ASSERT_TRUE(turnUntil([&] { return responses.size() == 2; }));
    EXPECT_THAT(tokens, ElementsAre("leave", ""));
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
}

TEST_F(DBusNotificationPressesTest, TheLeaveIsStillThereWhenTheWindowComesToTheFront) {
    const Daemon daemon(bus, everything);
    start();
    const uint id = show(daemon);
    QByteArray atTheFront;
    center->setResponseHandler([this, &atTheFront](const std::string& identifier) {
        responses.push_back(identifier);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [&atTheFront] { atTheFront = qgetenv("XDG_ACTIVATION_TOKEN"); }, Qt::QueuedConnection);
    });
    daemon.giveToken(id, "leave");
    daemon.press(id, "REVIEW");
    ASSERT_TRUE(turnUntil([&] { return !atTheFront.isEmpty(); }));
    EXPECT_EQ(atTheFront, QByteArray("leave"));
    ASSERT_TRUE(turnUntil([] { return !qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"); }));
}

TEST_F(DBusNotificationPressesTest, AResponseMayReplaceTheHandler) {
    const Daemon daemon(bus, everything);
    start();
    const uint id = show(daemon);
    const std::string text(100, 'x');
    center->setResponseHandler([this, text](const std::string&) {
        center->setResponseHandler(
            [this](const std::string&) { responses.emplace_back("replaced"); });
        responses.push_back(text);
    });
    daemon.press(id, "REVIEW");
    daemon.press(id, "SCAN");
    ASSERT_TRUE(turnUntil([&] { return responses.size() == 2; }));
    EXPECT_THAT(responses, ElementsAre(text, "replaced"));
}

TEST_F(DBusNotificationPressesTest, AResponseMayEndEverything) {
    const Daemon daemon(bus, everything);
    start();
    const uint id = show(daemon);
    center->setResponseHandler([this](const std::string& identifier) {
        center.reset();
        responses.push_back(identifier);
    });
    daemon.giveToken(id, "leave");
    daemon.press(id, "REVIEW");
    daemon.press(id, "SCAN");
    ASSERT_TRUE(turnUntil([&] { return !responses.empty(); }));
    QCoreApplication::processEvents();
    EXPECT_THAT(responses, ElementsAre("REVIEW"));
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
}

TEST_F(DBusNotificationPressesTest, WithoutAHandlerAPressLeadsNowhere) {
    const Daemon daemon(bus, everything);
    start();
    const uint id = show(daemon);
    center->setResponseHandler({});
    daemon.press(id, "REVIEW");
    show(daemon);  // behind the press
    EXPECT_THAT(responses, IsEmpty());
}

}  // namespace
}  // namespace tallowcrest

#include <chrono>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "tests/platform/desktop/dbus_notification_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using DBusNotificationDaemonsTest = DBusNotificationFixture;

TEST_F(DBusNotificationDaemonsTest, ARestartedDaemonIsAskedAgainAndOldNotificationsAreForgotten) {
    auto daemon = std::make_unique<Daemon>(bus, allCapabilities);
    start();
    const uint before = show(*daemon);
    daemon.reset();
    daemon = std::make_unique<Daemon>(bus, QStringList{"actions", "body"}, before + 100);
    ASSERT_TRUE(daemon->ownsItsName());
    ASSERT_TRUE(showsAgain(*daemon));
    EXPECT_EQ(daemon->calls().first(), "GetCapabilities");
    daemon->invokeAction(before, "REVIEW");
    invokeLastAction(*daemon, before + 100);
    EXPECT_THAT(responses, ElementsAre("LAST"));
}

TEST_F(DBusNotificationDaemonsTest, PostsAreDroppedSilentlyWithoutADaemon) {
    start();
    center->post(content("lost"));
    ASSERT_TRUE(settle(QDBusConnection(connectionName)));
    const Daemon daemon(bus, allCapabilities);
    ASSERT_TRUE(daemon.ownsItsName());
    ASSERT_TRUE(showsAgain(daemon));
    EXPECT_FALSE(daemon.bodies().contains("lost"));
}

TEST_F(DBusNotificationDaemonsTest, PostsAreDroppedSilentlyWithoutABus) {
    const Daemon daemon(bus, allCapabilities);
    start();
    show(daemon);
    bus.daemon().end();
    ASSERT_TRUE(turnUntil([&] { return !QDBusConnection(connectionName).isConnected(); }));
    for (int count = 0; count < 10; ++count) {
        center->post(content("lost"));
        QCoreApplication::processEvents();
    }
    DBusNotificationCenter never(QDBusConnection(u"never connected"_s));
    never.post(content("lost"));
    QCoreApplication::processEvents();
    EXPECT_EQ(daemon.bodies(), QStringList({"high"}));
}

TEST_F(DBusNotificationDaemonsTest, ADaemonThatHangsShowsTheLatestPostsWhenItResumes) {
    Daemon daemon(bus, allCapabilities);
    daemon.holdBack("GetCapabilities");
    start();
    for (int number = 1; number <= 100; ++number) {
        center->post(content(std::to_string(number)));
    }
    ASSERT_TRUE(turnUntil([&] { return !daemon.calls().isEmpty(); }));
    EXPECT_EQ(daemon.calls(), QStringList({"GetCapabilities"}));
    daemon.releaseHeld();
    ASSERT_TRUE(turnUntil([&] { return daemon.bodies().contains("100"); }));
    EXPECT_EQ(daemon.bodies(), QStringList({"97", "98", "99", "100"}));
}

TEST_F(DBusNotificationDaemonsTest, TheCapabilitiesRequestTimesOut) {
    Daemon daemon(bus, allCapabilities);
    daemon.holdBack("GetCapabilities");
    start(std::chrono::milliseconds(50));
    center->post(content("lost"));
    ASSERT_TRUE(turnUntil([&] {
        // It is asked again only after the first request has timed out.
        if (!daemon.calls().isEmpty()) {
            center->post(content("again"));
        }
        return daemon.calls().size() > 1;
    }));
    daemon.releaseHeld();
    ASSERT_TRUE(showsAgain(daemon));
    EXPECT_FALSE(daemon.bodies().contains("lost"));
}

TEST_F(DBusNotificationDaemonsTest, TheNotifyCallTimesOut) {
    Daemon daemon(bus, allCapabilities);
    daemon.holdBack("Notify");
    start(std::chrono::milliseconds(50));
    ASSERT_TRUE(showsAgain(daemon));
    // It gets another one only after the first call has timed out.
    ASSERT_TRUE(showsAgain(daemon));
    daemon.releaseHeld();
    ASSERT_TRUE(showsAgain(daemon));
}

TEST_F(DBusNotificationDaemonsTest, ARefusalDropsTheQueue) {
    Daemon daemon(bus, allCapabilities);
    daemon.holdBack("Notify");
    start();
    show(daemon);
    center->post(content("lost"));
    center->post(content("lost"));
    daemon.refuse("Notify");
    daemon.releaseHeld();
    ASSERT_TRUE(showsAgain(daemon));
    EXPECT_FALSE(daemon.bodies().contains("lost"));
}

TEST_F(DBusNotificationDaemonsTest, InvalidRepliesCountAsRefusals) {
    Daemon daemon(bus, allCapabilities);
    start();
    const auto survives = [&](const QString& method) {
        const qsizetype before = daemon.calls().count(method);
        return turnUntil([&] {
            center->post(content("odd"));
            return daemon.calls().count(method) > before + 1;
        });
    };
    daemon.answerWith("GetCapabilities", u"actions"_s);
    EXPECT_TRUE(survives("GetCapabilities"));
    EXPECT_THAT(daemon.shown(), IsEmpty());
    daemon.answerWith({}, {});
    daemon.refuse("GetCapabilities");
    EXPECT_TRUE(survives("GetCapabilities"));
    EXPECT_THAT(daemon.shown(), IsEmpty());
    daemon.refuse("Notify");
    EXPECT_TRUE(survives("Notify"));
    daemon.refuse({});
    daemon.answerWith("Notify", u"seventeen"_s);
    EXPECT_TRUE(survives("Notify"));
    daemon.answerWith({}, {});
    ASSERT_TRUE(showsAgain(daemon));
    invokeLastAction(daemon, daemon.shown().back().id);
    EXPECT_THAT(responses, ElementsAre("LAST"));
}

TEST_F(DBusNotificationDaemonsTest, QueuedPostsOfAHungDaemonGoToItsSuccessor) {
    Daemon former(bus, allCapabilities);
    former.holdBack("GetCapabilities");
    start();
    center->post(content("waits"));
    ASSERT_TRUE(turnUntil([&] { return !former.calls().isEmpty(); }));
    const Daemon successor(bus, allCapabilities, 7, Daemon::NameRequest::replace);
    ASSERT_TRUE(successor.ownsItsName());
    ASSERT_TRUE(turnUntil([&] { return !successor.shown().empty(); }));
    former.releaseHeld();
    invokeLastAction(successor, 7);
    EXPECT_EQ(successor.bodies(), QStringList({"waits"}));
    EXPECT_THAT(former.shown(), IsEmpty());
}

TEST_F(DBusNotificationDaemonsTest, APostToADaemonThatHasJustEndedGoesToItsSuccessor) {
    auto former = std::make_unique<Daemon>(bus, allCapabilities);
    start();
    show(*former);
    // None of these events is processed before the post.
    const Daemon successor(bus, allCapabilities, 7, Daemon::NameRequest::replace);
    ASSERT_TRUE(successor.ownsItsName());
    const QString connection = former->connection();
    former.reset();
    const QDBusConnection observer(bus.connect());
    ASSERT_TRUE(untilGone(observer, connection));
    center->post(content("waits"));
    ASSERT_TRUE(turnUntil([&] { return !successor.shown().empty(); }));
    invokeLastAction(successor, 7);
    EXPECT_EQ(successor.bodies(), QStringList({"waits"}));
    QDBusConnection::disconnectFromBus(observer.name());
}

TEST_F(DBusNotificationDaemonsTest, AnUndeliveredPostIsRetriedOnce) {
    Daemon daemon(bus, allCapabilities);
    daemon.refuse("Notify", "org.freedesktop.DBus.Error.ServiceUnknown");
    start();
    center->post(content("lost"));
    ASSERT_TRUE(turnUntil([&] { return daemon.shown().size() == 2; }));
    daemon.refuse({});
    ASSERT_TRUE(turnUntil([&] {
        center->post(content("next"));
        return daemon.bodies().contains("next");
    }));
    EXPECT_EQ(daemon.bodies().count("lost"), 2);
    // A third attempt would have requested the capabilities again.
    EXPECT_EQ(daemon.calls().count("GetCapabilities"), 2);
}

TEST_F(DBusNotificationDaemonsTest, QueuedPostsOfADaemonThatEndsAreDropped) {
    auto former = std::make_unique<Daemon>(bus, allCapabilities);
    former->holdBack("GetCapabilities");
    start();
    center->post(content("lost"));
    ASSERT_TRUE(turnUntil([&] { return !former->calls().isEmpty(); }));
    former.reset();
    const Daemon successor(bus, allCapabilities);
    ASSERT_TRUE(successor.ownsItsName());
    ASSERT_TRUE(showsAgain(successor));
    EXPECT_FALSE(successor.bodies().contains("lost"));
}

}  // namespace
}  // namespace tallowcrest

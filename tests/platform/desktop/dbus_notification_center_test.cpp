#include "platform/desktop/dbus_notification_center.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/platform/desktop/dbus_notification_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using DBusNotificationCenterTest = DBusNotificationFixture;

TEST_F(DBusNotificationCenterTest, ShowsANotificationOnADaemonWithAllCapabilities) {
    const Daemon daemon(bus, allCapabilities);
    ASSERT_TRUE(daemon.ownsItsName());
    start();
    center->post(content("<b>x</b> & \"co\""));
    ASSERT_TRUE(turnUntil([&] { return daemon.shown().size() == 1; }));
    const Daemon::Notification& shown = daemon.shown().front();
    EXPECT_EQ(shown.signature, "susssasa{sv}i");
    EXPECT_EQ(shown.program, "Tallowcrest");
    EXPECT_EQ(shown.replaces, 0U);
    EXPECT_EQ(shown.icon, "tallowcrest");
    EXPECT_EQ(shown.title, "Load & warning");
    EXPECT_EQ(shown.body, "&lt;b&gt;x&lt;/b&gt; &amp; &quot;co&quot;");
    EXPECT_EQ(shown.actions, QStringList({"default", "Open Tallowcrest", "REVIEW", "Review Cleanup",
                                          "SCAN", "Scan"}));
    EXPECT_EQ(shown.hints, QVariantMap({{"urgency", QVariant::fromValue(uchar{1})},
                                        {"desktop-entry", "tallowcrest"},
                                        {"category", "x-tallowcrest.warning"},
                                        {"sound-name", "dialog-warning"}}));
    EXPECT_EQ(shown.expiry, -1);
}

TEST_F(DBusNotificationCenterTest, SendsADaemonOnlyWhatItSupports) {
    struct Case {
        QStringList capabilities;
        QString body;
        bool hasActions;
    };
    const std::vector<Case> cases{
        {{"actions", "body"}, "<i>a</i> & b", true},
        {{"body", "body-markup"}, "&lt;i&gt;a&lt;/i&gt; &amp; b", false},
        {{"body", "action-icons"}, "<i>a</i> & b", false},
        {{}, "<i>a</i> & b", false},
    };
    start();
    for (const Case& each : cases) {
        const Daemon daemon(bus, each.capabilities);
        ASSERT_TRUE(daemon.ownsItsName());
        ASSERT_TRUE(turnUntil([&] {
            center->post(content("<i>a</i> & b"));
            return !daemon.shown().empty();
        }));
        const Daemon::Notification& shown = daemon.shown().front();
        EXPECT_EQ(shown.body, each.body);
        EXPECT_EQ(shown.title, "Load & warning");
        EXPECT_EQ(!shown.actions.isEmpty(), each.hasActions) << each.capabilities.size();
    }
}

TEST_F(DBusNotificationCenterTest, WithoutACategoryThereIsOnlyTheDefaultAction) {
    const Daemon daemon(bus, allCapabilities);
    start();
    const QStringList plain{"default", "Open Tallowcrest"};
    center->post(content("none named", ""));
    center->post(content("one that is not registered", "UNKNOWN"));
    center->post(content("registered"));
    ASSERT_TRUE(turnUntil([&] { return daemon.shown().size() == 3; }));
    center->setCategories({});
    center->post(content("no longer"));
    ASSERT_TRUE(turnUntil([&] { return daemon.shown().size() == 4; }));
    EXPECT_EQ(daemon.shown()[0].actions, plain);
    EXPECT_FALSE(daemon.shown()[0].hints.contains("category"));
    EXPECT_EQ(daemon.shown()[1].actions, plain);
    EXPECT_EQ(daemon.shown()[2].actions.size(), 6);
    EXPECT_EQ(daemon.shown()[2].hints.value("category"), QVariant("x-tallowcrest.warning"));
    EXPECT_EQ(daemon.shown()[3].actions, plain);
}

TEST_F(DBusNotificationCenterTest, ASilentNotificationSuppressesTheSound) {
    const Daemon daemon(bus, allCapabilities);
    start();
    NotificationContent silent = content("high");
    silent.playsSound = false;
    center->post(silent);
    ASSERT_TRUE(turnUntil([&] { return daemon.shown().size() == 1; }));
    const QVariantMap& hints = daemon.shown().front().hints;
    EXPECT_EQ(hints.value("suppress-sound"), QVariant(true));
    EXPECT_FALSE(hints.contains("sound-name"));
}

TEST_F(DBusNotificationCenterTest, UntrustedNamesAreSanitized) {
    const Daemon daemon(bus, {"body", "body-markup"});
    start();
    show(daemon, "Top process: a\nb\u202E<c" + std::string(10'000, '&'));
    const QString body = daemon.shown().front().body;
    EXPECT_TRUE(body.startsWith("Top process: a?b?&lt;c&amp;&amp;")) << body.toStdString();
    EXPECT_TRUE(body.endsWith(u"&amp;…"_s)) << body.toStdString();
    EXPECT_LT(body.size(), 4000);
}

TEST_F(DBusNotificationCenterTest, CapabilitiesAreRequestedOnce) {
    const Daemon daemon(bus, allCapabilities);
    start();
    center->requestAuthorization();
    for (const char* body : {"first", "second", "third"}) {
        center->post(content(body));
    }
    ASSERT_TRUE(turnUntil([&] { return daemon.shown().size() == 3; }));
    EXPECT_EQ(daemon.calls(), QStringList({"GetCapabilities", "Notify", "Notify", "Notify"}));
    EXPECT_EQ(daemon.bodies(), QStringList({"first", "second", "third"}));
}

}  // namespace
}  // namespace tallowcrest

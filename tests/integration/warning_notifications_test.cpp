#include "integration/warning_notifications.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/fake_notification_center.h"
#include "tests/support/remote_machines.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class WarningNotificationsTest : public ::testing::Test {
protected:
    void setIncludesActions(bool value) {
        with.settings.set(&Settings::notificationsIncludeActions, value);
        with.mainQueue.drain();
    }

    TestServices with;
    RemoteMachines remote{with.services};
    FakeNotificationCenter center;
    std::vector<std::string> routes;
    std::optional<WarningNotifications> notifications{
        std::in_place, with.services, remote.scan,
        IntegrationPorts{&center,
                         [this](AppRoute route) { routes.emplace_back(rawValue(route)); }}};
};

TEST_F(WarningNotificationsTest, RegistersThreeButtonsInOrder) {
    notifications->registerNotificationCategories();
    EXPECT_THAT(center.categories,
                ElementsAre(NotificationCategory{"TALLOWCREST_WARNING",
                                                 {{"OPEN_OPTIMIZE", "Review Cleanup"},
                                                  {"OPEN_AI", "AI Analyze"},
                                                  {"SCAN_REMOTES", "Scan Remotes"}}}));
    EXPECT_THAT(center.calls, ElementsAre("setCategories", "requestAuthorization"));
}

TEST_F(WarningNotificationsTest, RegistersNoneWhenTheSettingIsOff) {
    notifications->registerNotificationCategories();
    setIncludesActions(false);
    EXPECT_THAT(center.categories, IsEmpty());
    EXPECT_THAT(center.calls, ElementsAre("setCategories", "requestAuthorization", "setCategories",
                                          "requestAuthorization"));
}

TEST_F(WarningNotificationsTest, RegistersAgainOnTheTurnAfterTheSettingChanged) {
    notifications->registerNotificationCategories();
    center.calls.clear();
    with.settings.set(&Settings::warningThreshold, 70.0);
    with.mainQueue.drain();
    EXPECT_THAT(center.calls, IsEmpty()) << "another setting";
    with.settings.set(&Settings::notificationsIncludeActions, false);
    EXPECT_THAT(center.calls, IsEmpty());
    with.mainQueue.drain();
    EXPECT_THAT(center.calls, ElementsAre("setCategories", "requestAuthorization"));
    setIncludesActions(true);
    EXPECT_THAT(center.categories, SizeIs(1));
}

TEST_F(WarningNotificationsTest, RegistersNothingBeforeTheFirstRegistration) {
    setIncludesActions(false);
    EXPECT_THAT(center.calls, IsEmpty());
}

TEST_F(WarningNotificationsTest, PostsTheWarning) {
    notifications->postLoadWarning("photo-indexer");
    EXPECT_THAT(center.posted,
                ElementsAre(NotificationContent{
                    "Tallowcrest warning",
                    "System load is high. Top process: photo-indexer. Open Tallowcrest to review "
                    "optimization options.",
                    "TALLOWCREST_WARNING", true}));
}

TEST_F(WarningNotificationsTest, WithoutButtonsTheWarningHasNoCategory) {
    setIncludesActions(false);
    notifications->postLoadWarning("photo-indexer");
    ASSERT_THAT(center.posted, SizeIs(1));
    EXPECT_EQ(center.posted.front().categoryIdentifier, "");
    EXPECT_TRUE(center.posted.front().playsSound);
}

TEST_F(WarningNotificationsTest, EveryButtonOpensItsRoute) {
    const std::vector<std::pair<const char*, const char*>> cases{
        {"OPEN_OPTIMIZE", "optimizationSuggestions"},
        {"OPEN_AI", "aiAdvisor"},
        {"SCAN_REMOTES", "remoteMacs"},
        {NotificationCenter::plainClick, "overview"},
        {"open_ai", "overview"},
        {"", "overview"},
    };
    for (const auto& [identifier, route] : cases) {
        routes.clear();
        center.respond(identifier);
        EXPECT_THAT(routes, ElementsAre(route)) << identifier;
    }
}

TEST_F(WarningNotificationsTest, OneButtonAlsoStartsAScan) {
    remote.setDevices({tailDevice("macOS", true)});
    for (const char* identifier : {"OPEN_OPTIMIZE", "OPEN_AI", NotificationCenter::plainClick}) {
        center.respond(identifier);
        EXPECT_FALSE(remote.scan.state().remoteScanInProgress) << identifier;
    }
    center.respond("SCAN_REMOTES");
    EXPECT_TRUE(remote.scan.state().remoteScanInProgress);
    // During a scan it begins another one.
    center.respond("SCAN_REMOTES");
    EXPECT_EQ(with.workQueue.pendingCount(), 2U);
}

TEST_F(WarningNotificationsTest, WithoutAWindowAButtonDoesNothing) {
    WarningNotifications alone(with.services, remote.scan, {&center});
    center.respond("OPEN_OPTIMIZE");
    EXPECT_THAT(routes, IsEmpty());
}

TEST_F(WarningNotificationsTest, AfterDestructionResponsesAndSettingsHaveNoEffect) {
    notifications->registerNotificationCategories();
    center.calls.clear();
    notifications.reset();
    EXPECT_FALSE(center.respond);
    setIncludesActions(false);
    EXPECT_THAT(center.calls, IsEmpty());
}

TEST_F(WarningNotificationsTest, WithoutACentreNothingHappens) {
    WarningNotifications none(with.services, remote.scan, {});
    none.registerNotificationCategories();
    none.postLoadWarning("photo-indexer");
    none.handleNotificationAction("OPEN_OPTIMIZE");
    EXPECT_THAT(center.posted, IsEmpty());
}

}  // namespace
}  // namespace tallowcrest

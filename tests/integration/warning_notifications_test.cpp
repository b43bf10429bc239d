#include "integration/warning_notifications.h"

#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/fake_notification_center.h"
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
    FakeNotificationCenter center;
    std::optional<WarningNotifications> notifications{std::in_place, with.services, &center};
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

TEST_F(WarningNotificationsTest, AfterDestructionSettingsHaveNoEffect) {
    notifications->registerNotificationCategories();
    center.calls.clear();
    notifications.reset();
    setIncludesActions(false);
    EXPECT_THAT(center.calls, IsEmpty());
}

TEST_F(WarningNotificationsTest, WithoutACentreNothingHappens) {
    WarningNotifications none(with.services, nullptr);
    none.registerNotificationCategories();
    none.postLoadWarning("photo-indexer");
    EXPECT_THAT(center.posted, IsEmpty());
}

}  // namespace
}  // namespace tallowcrest

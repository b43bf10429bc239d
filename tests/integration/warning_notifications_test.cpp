#include "integration/warning_notifications.h"

#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/fake_notification_center.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class WarningNotificationsTest : public ::testing::Test {
protected:
    FakeNotificationCenter center;
    Settings settings;
    std::vector<std::string> steps;
    std::optional<WarningNotifications> notifications{
        std::in_place, &center, settings,
        WarningNotifications::Hooks{[this](AppRoute route) { steps.emplace_back(rawValue(route)); },
                                    [this] { steps.emplace_back("analyze"); },
                                    [this] { steps.emplace_back("scan"); }}};
};

TEST_F(WarningNotificationsTest, RegistersThreeButtonsInTheirOrder) {
    notifications->registerNotificationCategories();
    EXPECT_THAT(center.categories,
                ElementsAre(NotificationCategory{"TALLOWCREST_WARNING",
                                                 {{"OPEN_OPTIMIZE", "Review Cleanup"},
                                                  {"OPEN_AI", "AI Analyze"},
                                                  {"SCAN_REMOTES", "Scan Remotes"}}}));
    EXPECT_THAT(center.calls, ElementsAre("setCategories", "requestAuthorization"));
}

TEST_F(WarningNotificationsTest, RegistersNoneWhileTheOwnerWantsNone) {
    notifications->registerNotificationCategories();
    settings.notificationsIncludeActions = false;
    notifications->registerNotificationCategories();
    EXPECT_THAT(center.categories, IsEmpty());
    EXPECT_THAT(center.calls, ElementsAre("setCategories", "requestAuthorization", "setCategories",
                                          "requestAuthorization"));
}

TEST_F(WarningNotificationsTest, AWarningInItsWords) {
    notifications->postLoadWarning("photo-indexer");
    EXPECT_THAT(center.posted,
                ElementsAre(NotificationContent{
                    "Tallowcrest warning",
                    "System load is high. Top process: photo-indexer. Open Tallowcrest to review "
                    "optimization options.",
                    "TALLOWCREST_WARNING", true}));
}

TEST_F(WarningNotificationsTest, WithoutButtonsTheWarningNamesNoCategory) {
    settings.notificationsIncludeActions = false;
    notifications->postLoadWarning("photo-indexer");
    ASSERT_THAT(center.posted, SizeIs(1));
    EXPECT_EQ(center.posted.front().categoryIdentifier, "");
    EXPECT_TRUE(center.posted.front().playsSound);
}

TEST_F(WarningNotificationsTest, EveryButtonLeadsSomewhere) {
    struct Case {
        const char* identifier;
        std::vector<std::string> steps;
    };
    const std::vector<Case> cases{
        {"OPEN_OPTIMIZE", {"optimizationSuggestions"}},
        {"OPEN_AI", {"aiAdvisor", "analyze"}},
        {"SCAN_REMOTES", {"remoteMacs", "scan"}},
        {NotificationCenter::plainClick, {"overview"}},
        {"open_ai", {"overview"}},
        {"", {"overview"}},
    };
    for (const Case& each : cases) {
        steps.clear();
        center.respond(each.identifier);
        EXPECT_EQ(steps, each.steps) << each.identifier;
    }
}

TEST_F(WarningNotificationsTest, WithoutTheOtherComponentsTheRoutesAreStillOpened) {
    std::vector<std::string> routes;
    WarningNotifications alone(
        &center, settings,
        {[&routes](AppRoute route) { routes.emplace_back(rawValue(route)); }, {}, {}});
    alone.handleNotificationAction("OPEN_AI");
    alone.handleNotificationAction("SCAN_REMOTES");
    EXPECT_THAT(routes, ElementsAre("aiAdvisor", "remoteMacs"));
}

TEST_F(WarningNotificationsTest, AfterTheEndNobodyResponds) {
    notifications.reset();
    EXPECT_FALSE(center.respond);
}

TEST_F(WarningNotificationsTest, WithoutACentreNothingHappens) {
    WarningNotifications none(nullptr, settings, {});
    none.registerNotificationCategories();
    none.postLoadWarning("photo-indexer");
    none.handleNotificationAction("OPEN_OPTIMIZE");
    EXPECT_THAT(center.posted, IsEmpty());
}

}  // namespace
}  // namespace tallowcrest

#include "integration/notification_actions.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/advisor_machine.h"
#include "tests/support/fake_notification_center.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class NotificationActionsTest : public ::testing::Test {
protected:
    AdvisorMachine machine;
    FakeNotificationCenter center;
    std::vector<std::string> routes;
    std::optional<NotificationActions> actions{
        std::in_place, machine.remote.scan, machine.advisor->provider,
        IntegrationPorts{&center,
                         [this](AppRoute route) { routes.emplace_back(rawValue(route)); }}};
};

TEST_F(NotificationActionsTest, EveryButtonOpensItsRoute) {
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

TEST_F(NotificationActionsTest, OneButtonAlsoStartsAScan) {
    machine.remote.setDevices({tailDevice("macOS", true)});
    for (const char* identifier : {"OPEN_OPTIMIZE", "OPEN_AI", NotificationCenter::plainClick}) {
        center.respond(identifier);
        EXPECT_FALSE(machine.remote.scan.state().remoteScanInProgress) << identifier;
    }
    center.respond("SCAN_REMOTES");
    EXPECT_TRUE(machine.remote.scan.state().remoteScanInProgress);
    // During a scan it begins another one.
    center.respond("SCAN_REMOTES");
    EXPECT_EQ(machine.workQueue.pendingCount(), 2U);
}

TEST_F(NotificationActionsTest, OneButtonAlsoStartsAnAnalysis) {
    machine.takeSample();
    const std::string before = machine.insight();
    for (const char* identifier : {"OPEN_OPTIMIZE", "SCAN_REMOTES", "OPEN_ai"}) {
        center.respond(identifier);
        EXPECT_EQ(machine.insight(), before) << identifier;
    }
    center.respond("OPEN_AI");
    EXPECT_THAT(machine.insight(), StartsWith("On-device analysis: "));
}

TEST_F(NotificationActionsTest, WithoutAWindowAButtonDoesNothing) {
    NotificationActions alone(machine.remote.scan, machine.advisor->provider, {&center});
    machine.takeSample();
    const std::string before = machine.insight();
    center.respond("OPEN_AI");
    EXPECT_THAT(routes, IsEmpty());
    EXPECT_EQ(machine.insight(), before);
}

TEST_F(NotificationActionsTest, AfterDestructionResponsesHaveNoEffect) {
    actions.reset();
    EXPECT_FALSE(center.respond);
}

}  // namespace
}  // namespace tallowcrest

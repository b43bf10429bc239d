#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/actions.h"
#include "actions/automation.h"
#include "actions/review_target.h"
#include "advisor/advisor.h"
#include "core/activity_log.h"
#include "core/confirmation_desk.h"
#include "monitor/system_monitor.h"
#include "remote/remote.h"
#include "tests/support/each_of.h"
#include "tests/support/fake_machine.h"
#include "tests/support/remote_machines.h"

namespace tallowcrest {
namespace {

/// What a machine under load has done by itself.
struct OwnDoing {
    std::vector<std::string> events;
    std::size_t warnings = 0;
    std::optional<std::int64_t> selectedPID;
    bool asks = false;

    bool operator==(const OwnDoing&) const = default;
};

/// A minute and a half of load that gives each draft and each rule a reason to act.
OwnDoing underLoad(bool enablesDrafts, bool turnsRulesOn) {
    FakeMachine machine;
    machine.setTailDevices({tailDevice("macOS", true)});
    SystemMonitor& monitor = machine.monitor();
    for (const auto which :
         {AutomationSwitch::autoSelectTopOffender, AutomationSwitch::autoPurgeSustainedMemory,
          AutomationSwitch::autoScanRemoteMacs}) {
        monitor.actions().automation.set(which, turnsRulesOn);
    }
    machine.metrics->memory.pressure = 95.0;
    machine.addProcess(700, "/usr/bin/photo-indexer", 390.0, 4096.0);
    machine.tick();
    RuleDrafts& drafts = monitor.advisor().drafts;
    RemoteHealth studio;
    studio.hostName = "studio";
    monitor.remote().scan.finishRemoteScan({studio});
    drafts.generateRuleDrafts(
        std::vector<AIActionSuggestion>{{UUID::random(), "select_top", "Look", "why", "low"}});
    EXPECT_THAT(drafts.aiRuleDrafts(), testing::SizeIs(4));
    for (const AIRuleDraft& draft : std::vector(drafts.aiRuleDrafts())) {
        if (enablesDrafts) {
            drafts.toggleRuleDraft(draft);
        }
    }
    monitor.log().clearActivityLog();
    constexpr int samples = 22;
    for (int i = 0; i < samples; ++i) {
        machine.tick();
    }
    return {.events = eachOf(monitor.log().activityLog(), &ActivityEvent::detail),
            .warnings = machine.notifications.posted.size(),
            .selectedPID = monitor.actions().review.selectedPID(),
            .asks = monitor.confirmations().pendingConfirmation().has_value()};
}

TEST(EnabledDrafts, ChangeNothingThatTheMachineDoes) {
    for (const bool turnsRulesOn : {false, true}) {
        EXPECT_EQ(underLoad(true, turnsRulesOn), underLoad(false, turnsRulesOn)) << turnsRulesOn;
    }
}

TEST(EnabledDrafts, AreComparedWhereTheRulesDoAct) {
    const OwnDoing off = underLoad(true, false);
    EXPECT_EQ(off.selectedPID, std::nullopt);
    EXPECT_FALSE(off.asks);
    const OwnDoing on = underLoad(true, true);
    EXPECT_EQ(on.selectedPID, 700);
    EXPECT_TRUE(on.asks);
    EXPECT_THAT(on.events, testing::Contains(testing::StartsWith("Remote scan complete")));
}

}  // namespace
}  // namespace tallowcrest

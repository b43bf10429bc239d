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
#include "core/settings/settings_owner.h"
#include "monitor/system_monitor.h"
#include "remote/remote.h"
#include "tests/support/each_of.h"
#include "tests/support/fake_advisor_ports.h"
#include "tests/support/fake_machine.h"
#include "tests/support/remote_machines.h"

namespace tallowcrest {
namespace {

/// What a machine under load has done by itself, and in an analysis after that.
struct OwnDoing {
    std::vector<std::string> events;
    std::vector<std::string> keysWritten;
    std::vector<std::string> sent;  ///< the prompt of the analysis
    std::vector<std::string> draftTitles;
    std::size_t warnings = 0;
    std::size_t scannedMachines = 0;
    std::optional<std::int64_t> selectedPID;
    std::string question;  ///< the one that is open; empty for none

    bool operator==(const OwnDoing&) const = default;
};

/// A minute and a half of load that gives each draft and each rule a reason to act, and then an
/// analysis.
OwnDoing underLoad(bool enablesDrafts, bool turnsRulesOn) {
    FakeAdvisorPorts provider;
    provider.secrets->secret = "sk-key";
    provider.http->willSay(
        R"({"summary": "Busy.", "actions": [{"type": "select_top", "title": "Another"}]})");
    FakeMachine machine;
    machine.advisor = provider.ports();
    machine.setTailDevices({tailDevice("macOS", true)});
    SystemMonitor& monitor = machine.monitor();
    for (const auto which :
         {AutomationSwitch::autoSelectTopOffender, AutomationSwitch::autoPurgeSustainedMemory,
          AutomationSwitch::autoScanRemoteMacs}) {
        monitor.actions().automation.set(which, turnsRulesOn);
    }
    machine.metrics->memory.pressure = 95.0;
    machine.addProcess(700, "/usr/bin/photo-indexer", 390.0, 4096.0);
    monitor.settingsOwner().set(&Settings::aiRequirePreview, false);
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
    machine.store.written.clear();
    constexpr int samples = 22;
    for (int i = 0; i < samples; ++i) {
        machine.tick();
    }
    monitor.advisor().provider.requestAIAnalysis();
    while (machine.workQueue.pendingCount() > 0) {
        machine.finishSamples();
    }
    const auto& pending = monitor.confirmations().pendingConfirmation();
    return {.events = eachOf(monitor.log().activityLog(), &ActivityEvent::detail),
            .keysWritten = machine.store.written,
            .sent = eachOf(provider.http->sent, &FakeHttpExchange::Sent::body),
            .draftTitles = eachOf(drafts.aiRuleDrafts(), &AIRuleDraft::title),
            .warnings = machine.notifications.posted.size(),
            .scannedMachines = monitor.remote().scan.state().remoteHealth.size(),
            .selectedPID = monitor.actions().review.selectedPID(),
            .question = pending ? pending->message : std::string()};
}

TEST(EnabledDrafts, ChangeNothingThatTheMachineDoes) {
    for (const bool turnsRulesOn : {false, true}) {
        EXPECT_EQ(underLoad(true, turnsRulesOn), underLoad(false, turnsRulesOn)) << turnsRulesOn;
    }
}

TEST(EnabledDrafts, AreComparedWhereTheRulesDoAct) {
    const OwnDoing off = underLoad(true, false);
    EXPECT_EQ(off.selectedPID, std::nullopt);
    EXPECT_EQ(off.question, "");
    const OwnDoing on = underLoad(true, true);
    EXPECT_EQ(on.selectedPID, 700);
    EXPECT_NE(on.question, "");
    EXPECT_THAT(on.events, testing::Contains(testing::StartsWith("Remote scan complete")));
    for (const OwnDoing& each : {off, on}) {
        EXPECT_THAT(each.events, testing::Contains("Busy."));
        EXPECT_THAT(each.sent, testing::SizeIs(1));
        EXPECT_THAT(each.draftTitles, testing::Contains("AI pattern: Another"));
        EXPECT_THAT(each.keysWritten, testing::Contains("Tallowcrest.aiRuleDrafts"));
    }
}

}  // namespace
}  // namespace tallowcrest

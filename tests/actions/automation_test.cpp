#include "actions/automation.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_kinds.h"
#include "core/observable.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

struct Expected {
    AutomationSwitch which;
    bool Settings::*field;
    std::string_view key;
    const char* refusal;  ///< null: never refused
    const char* turnedOn;
    const char* turnedOff;
};

const std::vector<Expected>& expectedSwitches() {
    static const std::vector<Expected> table{
        {AutomationSwitch::autoSelectTopOffender, &Settings::autoSelectTopOffender,
         "Tallowcrest.autoSelectTopOffender",
         "Auto-select remains off while Emergency Stop is engaged.",
         "Auto-select top offender enabled.", "Auto-select top offender disabled."},
        {AutomationSwitch::autoPurgeSustainedMemory, &Settings::autoPurgeSustainedMemory,
         "Tallowcrest.autoPurgeSustainedMemory",
         "Auto-purge remains off while Emergency Stop is engaged.",
         "Auto-purge for sustained high memory enabled.",
         "Auto-purge for sustained high memory disabled."},
        {AutomationSwitch::autoScanRemoteMacs, &Settings::autoScanRemoteMacs,
         "Tallowcrest.autoScanRemoteMacs",
         "Remote auto-scan remains off while Emergency Stop is engaged.",
         "Auto remote scan enabled.", "Auto remote scan disabled."},
        {AutomationSwitch::diskAutopilotEnabled, &Settings::diskAutopilotEnabled,
         "Tallowcrest.diskAutopilotEnabled",
         "Disk Autopilot remains off while Emergency Stop is engaged.",
         "Disk Autopilot enabled in Apprentice mode.", "Disk Autopilot disabled."},
        {AutomationSwitch::aiSafeActionsEnabled, &Settings::aiSafeActionsEnabled,
         "Tallowcrest.aiSafeActions", nullptr, "AI safe actions enabled.",
         "AI safe actions disabled."},
        {AutomationSwitch::notificationsIncludeActions, &Settings::notificationsIncludeActions,
         "Tallowcrest.notificationActions", nullptr, "Notification action buttons enabled.",
         "Notification action buttons disabled."},
        {AutomationSwitch::includeLinuxMachines, &Settings::includeLinuxMachines,
         "Tallowcrest.includeLinuxMachines", nullptr, "Remote scans include Linux machines.",
         "Remote scans leave out Linux machines."},
    };
    return table;
}

class AutomationTest : public ::testing::Test, protected TestServices {
protected:
    /// The operation returned `expected` and recorded its message.
    void expectOutcome(const Outcome& actual, const Outcome& expected) const {
        EXPECT_EQ(actual.kind, expected.kind) << expected.message;
        EXPECT_EQ(actual.message, expected.message);
        EXPECT_EQ(log.lastAction(), expected.message);
        ASSERT_FALSE(log.activityLog().empty()) << expected.message;
        EXPECT_EQ(log.activityLog().front().kind, ActivityKind::action);
        EXPECT_EQ(log.activityLog().front().detail, expected.message);
    }

    const Settings& values = settings.values();
    Automation automation{services};
};

/// A start from a store with given content.
struct Restarted : TestServices {
    using TestServices::TestServices;
    Automation automation{services};
};

TEST_F(AutomationTest, EverySwitchIsStoredAndRecorded) {
    ASSERT_THAT(expectedSwitches(), SizeIs(allAutomationSwitches.size()));
    for (const Expected& each : expectedSwitches()) {
        expectOutcome(automation.set(each.which, true), Outcome::done(each.turnedOn));
        EXPECT_TRUE(values.*each.field) << each.key;
        EXPECT_TRUE(automation.isOn(each.which)) << each.key;
        EXPECT_EQ(store.read(each.key), SettingsValue(true)) << each.key;
        expectOutcome(automation.set(each.which, false), Outcome::done(each.turnedOff));
        EXPECT_FALSE(values.*each.field) << each.key;
        EXPECT_FALSE(automation.isOn(each.which)) << each.key;
        EXPECT_EQ(store.read(each.key), SettingsValue(false)) << each.key;
    }
}

TEST_F(AutomationTest, TheStopRefusesToTurnOnWhatItHoldsBack) {
    automation.engageEmergencyStop();
    for (const Expected& each : expectedSwitches()) {
        settings.set(each.field, false);
    }
    store.written.clear();
    for (const Expected& each : expectedSwitches()) {
        const bool isHeldBack = each.refusal != nullptr;
        EXPECT_EQ(isHeldBackByStop(each.which), isHeldBack) << each.key;
        expectOutcome(automation.set(each.which, true),
                      isHeldBack ? Outcome::refused(each.refusal) : Outcome::done(each.turnedOn));
        EXPECT_EQ(values.*each.field, !isHeldBack) << each.key;
    }
    std::erase(store.written, "Tallowcrest.activityLog");
    EXPECT_THAT(store.written,
                ElementsAre("Tallowcrest.aiSafeActions", "Tallowcrest.notificationActions",
                            "Tallowcrest.includeLinuxMachines"));
    // The mode still limits what the advisor may do by itself.
    EXPECT_EQ(values.aiAutonomyMode, AIAutonomyMode::apprentice);
}

TEST_F(AutomationTest, ARefusalIsToldByTheLogAlone) {
    automation.engageEmergencyStop();
    mainQueue.drain();
    int told = 0;
    int toldByLog = 0;
    const Subscription state = automation.observable().subscribe([&told] { ++told; });
    const Subscription changes = settings.observable().subscribe([&told] { ++told; });
    const Subscription words = log.observable().subscribe([&toldByLog] { ++toldByLog; });
    automation.set(AutomationSwitch::autoScanRemoteMacs, true);
    mainQueue.drain();
    EXPECT_EQ(toldByLog, 1);
    automation.setAutonomyMode(AIAutonomyMode::trusted);
    mainQueue.drain();
    EXPECT_EQ(toldByLog, 2);
    EXPECT_EQ(told, 0);
}

TEST_F(AutomationTest, TurningOffIsAllowedDuringTheStop) {
    automation.engageEmergencyStop();
    for (const Expected& each : expectedSwitches()) {
        expectOutcome(automation.set(each.which, false), Outcome::done(each.turnedOff));
        EXPECT_EQ(store.read(each.key), SettingsValue(false)) << each.key;
    }
}

TEST_F(AutomationTest, DiskAutopilotNamesTheModeAndUpdatesItsStatusLine) {
    EXPECT_EQ(automation.diskAutopilotStatus(), "Disk Autopilot is off.");
    for (const auto& [mode, name] : {std::pair{AIAutonomyMode::apprentice, "Apprentice"},
                                     std::pair{AIAutonomyMode::trusted, "Trusted"},
                                     std::pair{AIAutonomyMode::autopilot, "Autopilot"}}) {
        settings.set(&Settings::aiAutonomyMode, mode);
        expectOutcome(automation.set(AutomationSwitch::diskAutopilotEnabled, true),
                      Outcome::done(std::string("Disk Autopilot enabled in ") + name + " mode."));
        EXPECT_EQ(automation.diskAutopilotStatus(),
                  "Watching disk space with staged trust controls.");
    }
    automation.set(AutomationSwitch::autoSelectTopOffender, false);
    EXPECT_EQ(automation.diskAutopilotStatus(), "Watching disk space with staged trust controls.");
    automation.set(AutomationSwitch::diskAutopilotEnabled, false);
    EXPECT_EQ(automation.diskAutopilotStatus(), "Disk Autopilot is off.");
}

TEST(AutomationStart, TheStatusLineFollowsTheStoredSettings) {
    struct Case {
        bool stop;
        bool enabled;
        const char* status;
    };
    for (const Case& each :
         {Case{true, true, "Emergency stop is engaged. All automatic actions are off."},
          Case{true, false, "Emergency stop is engaged. All automatic actions are off."},
          Case{false, true, "Watching disk space with staged trust controls."},
          Case{false, false, "Disk Autopilot is off."}}) {
        const Restarted started([&each](SettingsStore& store) {
            store.write("Tallowcrest.automationEmergencyStop", each.stop);
            store.write("Tallowcrest.diskAutopilotEnabled", each.enabled);
        });
        EXPECT_EQ(started.automation.diskAutopilotStatus(), each.status);
    }
}

TEST_F(AutomationTest, EngagingTheStopTurnsOffAndStoresWhatItGoverns) {
    for (const Expected& each : expectedSwitches()) {
        settings.set(each.field, true);
    }
    settings.set(&Settings::aiAutonomyMode, AIAutonomyMode::autopilot);
    store.written.clear();
    automation.engageEmergencyStop();

    EXPECT_TRUE(values.automationEmergencyStopEngaged);
    EXPECT_TRUE(automation.isStopEngaged());
    EXPECT_FALSE(values.autoSelectTopOffender);
    EXPECT_FALSE(values.autoPurgeSustainedMemory);
    EXPECT_FALSE(values.autoScanRemoteMacs);
    EXPECT_FALSE(values.diskAutopilotEnabled);
    EXPECT_EQ(values.aiAutonomyMode, AIAutonomyMode::apprentice);
    EXPECT_TRUE(values.aiSafeActionsEnabled);
    EXPECT_TRUE(values.notificationsIncludeActions);

    EXPECT_EQ(store.read("Tallowcrest.automationEmergencyStop"), SettingsValue(true));
    EXPECT_EQ(store.read("Tallowcrest.autoSelectTopOffender"), SettingsValue(false));
    EXPECT_EQ(store.read("Tallowcrest.diskAutopilotEnabled"), SettingsValue(false));
    EXPECT_EQ(store.read("Tallowcrest.autoPurgeSustainedMemory"), SettingsValue(false));
    EXPECT_EQ(store.read("Tallowcrest.autoScanRemoteMacs"), SettingsValue(false));
    EXPECT_EQ(store.read("Tallowcrest.aiAutonomyMode"), SettingsValue(std::string("apprentice")));
    // The stop itself is stored first, so that it holds even if the program ends right after.
    EXPECT_THAT(
        store.written,
        ElementsAre("Tallowcrest.automationEmergencyStop", "Tallowcrest.autoSelectTopOffender",
                    "Tallowcrest.autoPurgeSustainedMemory", "Tallowcrest.autoScanRemoteMacs",
                    "Tallowcrest.diskAutopilotEnabled", "Tallowcrest.aiAutonomyMode",
                    "Tallowcrest.activityLog"));

    EXPECT_EQ(automation.diskAutopilotStatus(),
              "Emergency stop is engaged. All automatic actions are off.");
    ASSERT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_EQ(log.activityLog().front().kind, ActivityKind::emergencyStop);
    EXPECT_EQ(log.activityLog().front().title, "Automation Emergency Stop");
    EXPECT_EQ(log.activityLog().front().detail,
              "Disabled offender auto-selection, Disk Autopilot, sustained-memory purge, remote "
              "auto-scan, and AI autonomous execution. Cleared the pending disk plan and returned "
              "AI to Apprentice mode. Re-enable each automation manually after resuming.");
    EXPECT_EQ(log.lastAction(), "Emergency stop engaged. Automatic actions are disabled.");
}

TEST_F(AutomationTest, EngagingTwiceRepeatsEveryStep) {
    const auto storeTheOpposite = [this] {
        store.write("Tallowcrest.automationEmergencyStop", false);
        for (const Expected& each : expectedSwitches()) {
            store.write(each.key, true);
        }
        store.write("Tallowcrest.aiAutonomyMode", std::string("autopilot"));
        store.written.clear();
    };
    storeTheOpposite();
    automation.engageEmergencyStop();
    const std::vector<std::string> first = store.written;
    EXPECT_THAT(first, SizeIs(7));
    settings.set(&Settings::diskAutopilotEnabled, true);
    storeTheOpposite();
    automation.engageEmergencyStop();
    EXPECT_FALSE(values.diskAutopilotEnabled);
    EXPECT_EQ(store.written, first);
    EXPECT_THAT(log.activityLog(), SizeIs(2));
}

TEST_F(AutomationTest, ResumingTurnsNothingOn) {
    settings.set(&Settings::autoPurgeSustainedMemory, true);
    settings.set(&Settings::aiAutonomyMode, AIAutonomyMode::trusted);
    automation.engageEmergencyStop();
    store.written.clear();
    automation.resumeFromEmergencyStop();
    EXPECT_FALSE(automation.isStopEngaged());
    EXPECT_EQ(store.read("Tallowcrest.automationEmergencyStop"), SettingsValue(false));
    EXPECT_THAT(store.written,
                ElementsAre("Tallowcrest.automationEmergencyStop", "Tallowcrest.activityLog"));
    EXPECT_FALSE(values.autoSelectTopOffender);
    EXPECT_FALSE(values.autoPurgeSustainedMemory);
    EXPECT_FALSE(values.autoScanRemoteMacs);
    EXPECT_FALSE(values.diskAutopilotEnabled);
    EXPECT_EQ(values.aiAutonomyMode, AIAutonomyMode::apprentice);
    EXPECT_EQ(automation.diskAutopilotStatus(),
              "Emergency stop cleared. Automatic actions remain off until you re-enable them.");
    ASSERT_THAT(log.activityLog(), SizeIs(2));
    EXPECT_EQ(log.activityLog().front().kind, ActivityKind::emergencyStop);
    EXPECT_EQ(
        log.activityLog().front().detail,
        "Cleared the emergency stop in Apprentice mode. No automatic feature was re-enabled.");
    EXPECT_EQ(log.lastAction(), "Emergency stop cleared; automations remain off.");
    automation.set(AutomationSwitch::autoPurgeSustainedMemory, true);
    EXPECT_TRUE(values.autoPurgeSustainedMemory);
}

TEST_F(AutomationTest, ResumingWithoutAStopTurnsNothingOff) {
    automation.set(AutomationSwitch::autoPurgeSustainedMemory, true);
    automation.setAutonomyMode(AIAutonomyMode::trusted);
    automation.resumeFromEmergencyStop();
    EXPECT_TRUE(values.autoPurgeSustainedMemory);
    EXPECT_EQ(store.read("Tallowcrest.autoPurgeSustainedMemory"), SettingsValue(true));
    EXPECT_EQ(values.aiAutonomyMode, AIAutonomyMode::trusted);
    EXPECT_EQ(store.read("Tallowcrest.aiAutonomyMode"), SettingsValue(std::string("trusted")));
}

TEST_F(AutomationTest, AfterARestartTheStopIsEngagedAndTheSwitchesAreOff) {
    settings.set(&Settings::autoPurgeSustainedMemory, true);
    automation.engageEmergencyStop();
    const Restarted next([this](SettingsStore& stored) {
        for (const settings_keys::Key& key : settings_keys::all) {
            if (const auto value = store.read(key.name)) {
                stored.write(key.name, *value);
            }
        }
    });
    const Settings& restarted = next.settings.values();
    EXPECT_TRUE(restarted.automationEmergencyStopEngaged);
    EXPECT_FALSE(restarted.autoSelectTopOffender);
    EXPECT_FALSE(restarted.autoPurgeSustainedMemory);
    EXPECT_FALSE(restarted.autoScanRemoteMacs);
    EXPECT_FALSE(restarted.diskAutopilotEnabled);
    EXPECT_EQ(next.automation.diskAutopilotStatus(),
              "Emergency stop is engaged. All automatic actions are off.");
}

TEST(AutomationStart, AStartWithTheStopLeavesTheSelectionOfTheTopOffenderAsItIsStored) {
    const Restarted started([](SettingsStore& store) {
        for (const Expected& each : expectedSwitches()) {
            store.write(each.key, true);
        }
        store.write("Tallowcrest.aiAutonomyMode", std::string("autopilot"));
        store.write("Tallowcrest.automationEmergencyStop", true);
    });
    const Settings& values = started.settings.values();
    EXPECT_FALSE(values.autoPurgeSustainedMemory);
    EXPECT_FALSE(values.autoScanRemoteMacs);
    EXPECT_FALSE(values.diskAutopilotEnabled);
    EXPECT_EQ(values.aiAutonomyMode, AIAutonomyMode::apprentice);
    EXPECT_TRUE(values.autoSelectTopOffender);
    EXPECT_TRUE(values.aiSafeActionsEnabled);
    EXPECT_TRUE(values.notificationsIncludeActions);
    for (const Expected& each : expectedSwitches()) {
        EXPECT_EQ(started.store.read(each.key), SettingsValue(true)) << each.key;
    }
}

TEST(AutomationStart, ResumingFromAPartlyStoredStopTurnsNothingOn) {
    Restarted run([](SettingsStore& store) {
        store.write("Tallowcrest.autoSelectTopOffender", true);
        store.write("Tallowcrest.autoPurgeSustainedMemory", true);
        store.write("Tallowcrest.diskAutopilotEnabled", true);
        store.write("Tallowcrest.aiAutonomyMode", std::string("autopilot"));
        store.write("Tallowcrest.automationEmergencyStop", true);
    });
    run.store.written.clear();
    run.automation.resumeFromEmergencyStop();
    std::erase(run.store.written, "Tallowcrest.activityLog");
    EXPECT_EQ(run.store.written.back(), "Tallowcrest.automationEmergencyStop");
    const SettingsOwner next(run.store, run.mainQueue, "owner");
    for (const Settings& each : {run.settings.values(), next.values()}) {
        EXPECT_FALSE(each.automationEmergencyStopEngaged);
        EXPECT_FALSE(each.autoSelectTopOffender);
        EXPECT_FALSE(each.autoPurgeSustainedMemory);
        EXPECT_FALSE(each.diskAutopilotEnabled);
        EXPECT_EQ(each.aiAutonomyMode, AIAutonomyMode::apprentice);
    }
}

TEST(AutomationStart, ResumingTurnsOffASwitchThatIsOnByDefault) {
    Restarted run(
        [](SettingsStore& store) { store.write("Tallowcrest.automationEmergencyStop", true); });
    ASSERT_TRUE(run.settings.values().autoSelectTopOffender);
    run.automation.resumeFromEmergencyStop();
    EXPECT_FALSE(run.settings.values().autoSelectTopOffender);
    EXPECT_FALSE(SettingsOwner(run.store, run.mainQueue, "owner").values().autoSelectTopOffender);
}

TEST_F(AutomationTest, TheStopRefusesEveryModeExceptApprentice) {
    expectOutcome(automation.setAutonomyMode(AIAutonomyMode::trusted),
                  Outcome::done("AI Advisor mode set to Trusted."));
    EXPECT_EQ(store.read("Tallowcrest.aiAutonomyMode"), SettingsValue(std::string("trusted")));
    automation.engageEmergencyStop();
    store.written.clear();
    for (const AIAutonomyMode mode : {AIAutonomyMode::trusted, AIAutonomyMode::autopilot}) {
        expectOutcome(
            automation.setAutonomyMode(mode),
            Outcome::refused("AI remains in Apprentice mode while Emergency Stop is engaged."));
        EXPECT_EQ(values.aiAutonomyMode, AIAutonomyMode::apprentice);
    }
    EXPECT_THAT(store.written, ::testing::Each("Tallowcrest.activityLog"));
    expectOutcome(automation.setAutonomyMode(AIAutonomyMode::apprentice),
                  Outcome::done("AI Advisor mode set to Apprentice."));
}

}  // namespace
}  // namespace tallowcrest

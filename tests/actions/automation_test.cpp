#include "actions/automation.h"

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/settings_keys.h"
#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"
#include "tests/support/recording_store.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
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
    };
    return table;
}

class AutomationTest : public ::testing::Test {
protected:
    Automation& automation() {
        if (!automation_) {
            automation_.emplace(observable, log, settings, store,
                                Automation::Hooks{[this] {
                                                      ++plansCleared;
                                                      writesAtClearing = store.written.size();
                                                  },
                                                  [this] {
                                                      ++registrations;
                                                      eventsAtRegistration =
                                                          log.activityLog().size();
                                                  }});
        }
        return *automation_;
    }

    void expectRecorded(const std::string& message) const {
        EXPECT_EQ(log.lastAction(), message);
        ASSERT_FALSE(log.activityLog().empty()) << message;
        EXPECT_EQ(log.activityLog().front().title, "Action");
        EXPECT_EQ(log.activityLog().front().detail, message);
    }

    ManualClock clock;
    ManualMainQueue mainQueue;
    Observable observable{mainQueue};
    ActivityLog log{clock, observable, {}, [](const auto&) {}};
    Settings settings;
    RecordingStore store;
    int plansCleared = 0;
    std::size_t writesAtClearing = 99;
    int registrations = 0;
    std::size_t eventsAtRegistration = 99;

private:
    std::optional<Automation> automation_;
};

TEST_F(AutomationTest, EverySwitchStoresAndSaysWhatItDoes) {
    ASSERT_THAT(expectedSwitches(), SizeIs(allAutomationSwitches.size()));
    for (const Expected& each : expectedSwitches()) {
        automation().set(each.which, true);
        EXPECT_TRUE(settings.*each.field) << each.key;
        EXPECT_TRUE(automation().isOn(each.which)) << each.key;
        EXPECT_EQ(store.read(each.key), SettingsValue(true)) << each.key;
        expectRecorded(each.turnedOn);
        automation().set(each.which, false);
        EXPECT_FALSE(settings.*each.field) << each.key;
        EXPECT_FALSE(automation().isOn(each.which)) << each.key;
        EXPECT_EQ(store.read(each.key), SettingsValue(false)) << each.key;
        expectRecorded(each.turnedOff);
    }
}

TEST_F(AutomationTest, TheStopRefusesToTurnOnWhatItGoverns) {
    automation().engageEmergencyStop();
    store.written.clear();
    for (const Expected& each : expectedSwitches()) {
        settings.*each.field = false;
        automation().set(each.which, true);
        EXPECT_EQ(isGovernedByStop(each.which), each.refusal != nullptr) << each.key;
        if (each.refusal != nullptr) {
            expectRecorded(each.refusal);
            EXPECT_FALSE(settings.*each.field) << each.key;
        } else {
            expectRecorded(each.turnedOn);
            EXPECT_TRUE(settings.*each.field) << each.key;
        }
    }
    EXPECT_THAT(store.written,
                ElementsAre("Tallowcrest.aiSafeActions", "Tallowcrest.notificationActions"));
    // What the advisor may do by itself stays with the mode, whatever this switch says.
    EXPECT_EQ(settings.aiAutonomyMode, AIAutonomyMode::apprentice);
}

TEST_F(AutomationTest, ARefusalTellsObserversSoThatTheControlSpringsBack) {
    automation().engageEmergencyStop();
    mainQueue.drain();
    int told = 0;
    const Subscription subscription = observable.subscribe([&told] { ++told; });
    automation().set(AutomationSwitch::autoScanRemoteMacs, true);
    mainQueue.drain();
    EXPECT_EQ(told, 1);
}

TEST_F(AutomationTest, TurningOffNeedsNoLeave) {
    automation().engageEmergencyStop();
    for (const Expected& each : expectedSwitches()) {
        automation().set(each.which, false);
        expectRecorded(each.turnedOff);
        EXPECT_EQ(store.read(each.key), SettingsValue(false)) << each.key;
    }
}

TEST_F(AutomationTest, DiskAutopilotNamesTheModeAndKeepsItsStatusLine) {
    EXPECT_EQ(automation().diskAutopilotStatus(), "Disk Autopilot is off.");
    for (const auto& [mode, name] : {std::pair{AIAutonomyMode::apprentice, "Apprentice"},
                                     std::pair{AIAutonomyMode::trusted, "Trusted"},
                                     std::pair{AIAutonomyMode::autopilot, "Autopilot"}}) {
        settings.aiAutonomyMode = mode;
        automation().set(AutomationSwitch::diskAutopilotEnabled, true);
        expectRecorded(std::string("Disk Autopilot enabled in ") + name + " mode.");
        EXPECT_EQ(automation().diskAutopilotStatus(),
                  "Watching disk space with staged trust controls.");
    }
    automation().set(AutomationSwitch::autoSelectTopOffender, false);
    EXPECT_EQ(automation().diskAutopilotStatus(),
              "Watching disk space with staged trust controls.");
    automation().set(AutomationSwitch::diskAutopilotEnabled, false);
    EXPECT_EQ(automation().diskAutopilotStatus(), "Disk Autopilot is off.");
}

TEST_F(AutomationTest, NotificationButtonsAreRegisteredBetweenTheStoreAndTheMessage) {
    automation().set(AutomationSwitch::notificationsIncludeActions, false);
    EXPECT_EQ(registrations, 1);
    EXPECT_EQ(eventsAtRegistration, 0U);
    EXPECT_THAT(log.activityLog(), SizeIs(1));
    automation().set(AutomationSwitch::aiSafeActionsEnabled, true);
    EXPECT_EQ(registrations, 1);
}

TEST_F(AutomationTest, TheStatusLineAtStart) {
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
        Settings stored;
        stored.automationEmergencyStopEngaged = each.stop;
        stored.diskAutopilotEnabled = each.enabled;
        EXPECT_EQ(diskAutopilotStatusAtStart(stored), each.status);
        const Automation started(observable, log, stored, store, {});
        EXPECT_EQ(started.diskAutopilotStatus(), each.status);
    }
}

TEST_F(AutomationTest, EngagingTheStop) {
    for (const Expected& each : expectedSwitches()) {
        settings.*each.field = true;
    }
    settings.aiAutonomyMode = AIAutonomyMode::autopilot;
    automation().engageEmergencyStop();

    EXPECT_TRUE(settings.automationEmergencyStopEngaged);
    EXPECT_TRUE(automation().isStopEngaged());
    EXPECT_FALSE(settings.autoSelectTopOffender);
    EXPECT_FALSE(settings.autoPurgeSustainedMemory);
    EXPECT_FALSE(settings.autoScanRemoteMacs);
    EXPECT_FALSE(settings.diskAutopilotEnabled);
    EXPECT_EQ(settings.aiAutonomyMode, AIAutonomyMode::apprentice);
    EXPECT_TRUE(settings.aiSafeActionsEnabled);
    EXPECT_TRUE(settings.notificationsIncludeActions);
    EXPECT_EQ(plansCleared, 1);
    EXPECT_EQ(writesAtClearing, 0U) << "what is planned goes first";
    EXPECT_EQ(registrations, 0);

    EXPECT_EQ(store.read("Tallowcrest.automationEmergencyStop"), SettingsValue(true));
    EXPECT_EQ(store.read("Tallowcrest.autoSelectTopOffender"), SettingsValue(false));
    EXPECT_EQ(store.read("Tallowcrest.diskAutopilotEnabled"), SettingsValue(false));
    EXPECT_EQ(store.read("Tallowcrest.autoPurgeSustainedMemory"), SettingsValue(false));
    EXPECT_EQ(store.read("Tallowcrest.autoScanRemoteMacs"), SettingsValue(false));
    EXPECT_EQ(store.read("Tallowcrest.aiAutonomyMode"), SettingsValue(std::string("apprentice")));
    // The latch itself first: whatever ends the program after that, the stop holds.
    EXPECT_THAT(
        store.written,
        ElementsAre("Tallowcrest.automationEmergencyStop", "Tallowcrest.autoSelectTopOffender",
                    "Tallowcrest.autoPurgeSustainedMemory", "Tallowcrest.autoScanRemoteMacs",
                    "Tallowcrest.diskAutopilotEnabled", "Tallowcrest.aiAutonomyMode"));

    EXPECT_EQ(automation().diskAutopilotStatus(),
              "Emergency stop is engaged. All automatic actions are off.");
    ASSERT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_EQ(log.activityLog().front().title, "Automation Emergency Stop");
    EXPECT_EQ(log.activityLog().front().detail,
              "Disabled offender auto-selection, Disk Autopilot, sustained-memory purge, remote "
              "auto-scan, and AI autonomous execution. Cleared the pending disk plan and returned "
              "AI to Apprentice mode. Re-enable each automation manually after resuming.");
    EXPECT_EQ(log.lastAction(), "Emergency stop engaged. Automatic actions are disabled.");
}

TEST_F(AutomationTest, EngagingTwiceRepeatsAllOfIt) {
    automation().engageEmergencyStop();
    settings.diskAutopilotEnabled = true;
    automation().engageEmergencyStop();
    EXPECT_FALSE(settings.diskAutopilotEnabled);
    EXPECT_EQ(plansCleared, 2);
    EXPECT_THAT(store.written, SizeIs(12));
    EXPECT_THAT(log.activityLog(), SizeIs(2));
}

TEST_F(AutomationTest, ResumingBringsNothingBack) {
    settings.autoPurgeSustainedMemory = true;
    settings.aiAutonomyMode = AIAutonomyMode::trusted;
    automation().engageEmergencyStop();
    store.written.clear();
    automation().resumeFromEmergencyStop();
    EXPECT_FALSE(automation().isStopEngaged());
    EXPECT_EQ(store.read("Tallowcrest.automationEmergencyStop"), SettingsValue(false));
    EXPECT_THAT(store.written, ElementsAre("Tallowcrest.automationEmergencyStop"));
    EXPECT_FALSE(settings.autoSelectTopOffender);
    EXPECT_FALSE(settings.autoPurgeSustainedMemory);
    EXPECT_FALSE(settings.autoScanRemoteMacs);
    EXPECT_FALSE(settings.diskAutopilotEnabled);
    EXPECT_EQ(settings.aiAutonomyMode, AIAutonomyMode::apprentice);
    EXPECT_EQ(automation().diskAutopilotStatus(),
              "Emergency stop cleared. Automatic actions remain off until you re-enable them.");
    ASSERT_THAT(log.activityLog(), SizeIs(2));
    EXPECT_EQ(log.activityLog().front().title, "Automation Emergency Stop");
    EXPECT_EQ(
        log.activityLog().front().detail,
        "Cleared the emergency stop in Apprentice mode. No automatic feature was re-enabled.");
    EXPECT_EQ(log.lastAction(), "Emergency stop cleared; automations remain off.");
    automation().set(AutomationSwitch::autoPurgeSustainedMemory, true);
    EXPECT_TRUE(settings.autoPurgeSustainedMemory);
}

TEST_F(AutomationTest, ResumingWithoutAStopTurnsNothingOff) {
    automation().set(AutomationSwitch::autoPurgeSustainedMemory, true);
    automation().setAutonomyMode(AIAutonomyMode::trusted);
    automation().resumeFromEmergencyStop();
    EXPECT_TRUE(settings.autoPurgeSustainedMemory);
    EXPECT_EQ(store.read("Tallowcrest.autoPurgeSustainedMemory"), SettingsValue(true));
    EXPECT_EQ(settings.aiAutonomyMode, AIAutonomyMode::trusted);
    EXPECT_EQ(store.read("Tallowcrest.aiAutonomyMode"), SettingsValue(std::string("trusted")));
}

TEST_F(AutomationTest, AfterARestartTheStopHoldsAndTheSwitchesAreOff) {
    settings.autoPurgeSustainedMemory = true;
    automation().engageEmergencyStop();
    const StoredState restarted = loadStoredState(store, "owner");
    EXPECT_TRUE(restarted.settings.automationEmergencyStopEngaged);
    EXPECT_FALSE(restarted.settings.autoSelectTopOffender);
    EXPECT_FALSE(restarted.settings.autoPurgeSustainedMemory);
    EXPECT_FALSE(restarted.settings.autoScanRemoteMacs);
    EXPECT_FALSE(restarted.settings.diskAutopilotEnabled);
    EXPECT_EQ(diskAutopilotStatusAtStart(restarted.settings),
              "Emergency stop is engaged. All automatic actions are off.");
}

TEST_F(AutomationTest, AStopThatWasStoredInPartBringsNothingBackEither) {
    store.write("Tallowcrest.autoSelectTopOffender", true);
    store.write("Tallowcrest.autoPurgeSustainedMemory", true);
    store.write("Tallowcrest.diskAutopilotEnabled", true);
    store.write("Tallowcrest.aiAutonomyMode", std::string("autopilot"));
    store.write("Tallowcrest.automationEmergencyStop", true);
    settings = loadStoredState(store, "owner").settings;
    store.written.clear();
    automation().resumeFromEmergencyStop();
    EXPECT_EQ(store.written.back(), "Tallowcrest.automationEmergencyStop");
    const Settings restarted = loadStoredState(store, "owner").settings;
    EXPECT_FALSE(restarted.automationEmergencyStopEngaged);
    EXPECT_FALSE(restarted.autoSelectTopOffender);
    EXPECT_FALSE(restarted.autoPurgeSustainedMemory);
    EXPECT_FALSE(restarted.diskAutopilotEnabled);
    EXPECT_EQ(restarted.aiAutonomyMode, AIAutonomyMode::apprentice);
    EXPECT_FALSE(settings.autoSelectTopOffender);
    EXPECT_EQ(settings.aiAutonomyMode, AIAutonomyMode::apprentice);
}

TEST_F(AutomationTest, WhatIsOnWhenNeverStoredIsNotBroughtBackEither) {
    store.write("Tallowcrest.automationEmergencyStop", true);
    settings = loadStoredState(store, "owner").settings;
    ASSERT_TRUE(settings.autoSelectTopOffender);
    automation().resumeFromEmergencyStop();
    EXPECT_FALSE(settings.autoSelectTopOffender);
    EXPECT_FALSE(loadStoredState(store, "owner").settings.autoSelectTopOffender);
}

TEST_F(AutomationTest, TheAutonomyModeIsHeldBackByTheStop) {
    automation().setAutonomyMode(AIAutonomyMode::trusted);
    expectRecorded("AI Advisor mode set to Trusted.");
    EXPECT_EQ(store.read("Tallowcrest.aiAutonomyMode"), SettingsValue(std::string("trusted")));
    automation().engageEmergencyStop();
    store.written.clear();
    for (const AIAutonomyMode mode : {AIAutonomyMode::trusted, AIAutonomyMode::autopilot}) {
        automation().setAutonomyMode(mode);
        expectRecorded("AI remains in Apprentice mode while Emergency Stop is engaged.");
        EXPECT_EQ(settings.aiAutonomyMode, AIAutonomyMode::apprentice);
    }
    EXPECT_THAT(store.written, IsEmpty());
    automation().setAutonomyMode(AIAutonomyMode::apprentice);
    expectRecorded("AI Advisor mode set to Apprentice.");
}

}  // namespace
}  // namespace tallowcrest

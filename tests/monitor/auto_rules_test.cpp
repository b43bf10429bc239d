#include "monitor/auto_rules.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/locale.h"
#include "tests/actions/local_actions_fixture.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class AutoRulesTest : public LocalActionsFixture {
protected:
    AutoRulesTest() { settings.autoSelectTopOffender = false; }

    const SystemSnapshot& snapshot(double cpu, double pressure = 10.0) {
        takeSample(pressure);
        SystemSnapshot changed = *sample.snapshot();
        changed.cpuPercent = cpu;
        sample.setSnapshot(std::move(changed));
        return *sample.snapshot();
    }

    void run(double cpu, double pressure = 10.0) { rules.runAutoRules(snapshot(cpu, pressure)); }

    void remember(std::size_t points, double memory) {
        for (std::size_t i = 0; i < points; ++i) {
            snapshot(0.0, memory);
            sample.appendHistoryPoint();
        }
    }

    /// Everything is on and has a reason to act; the stop is engaged all the same.
    void armBehindTheStop() {
        settings.automationEmergencyStopEngaged = true;
        settings.autoSelectTopOffender = true;
        settings.autoPurgeSustainedMemory = true;
        settings.autoScanRemoteMacs = true;
        devices = {device("macOS", true)};
        addProcess(700, "/usr/bin/editor");
        remember(30, 95.0);
    }

    static TailDevice device(const std::string& os, bool online) {
        TailDevice result;
        result.os = os;
        result.online = online;
        return result;
    }

    std::vector<std::string> details() const {
        std::vector<std::string> result;
        for (const ActivityEvent& event : log.activityLog()) {
            result.push_back(event.title + ": " + event.detail);
        }
        return result;
    }

    PlainLocale locale;
    std::vector<TailDevice> devices;
    bool scanning = false;
    bool stopsAtScan = false;
    std::size_t eventsAtScan = 0;
    std::vector<std::string> calls;
    std::vector<std::string> notified;
    AutoRules rules{
        {log, sample, review, actions, settings, policy, clock, locale},
        {[this] { return std::span<const TailDevice>(devices); }, [this] { return scanning; },
         [this] {
             calls.emplace_back("scan");
             eventsAtScan = log.activityLog().size();
             settings.automationEmergencyStopEngaged = stopsAtScan;
         },
         [this](const SystemSnapshot&) { calls.emplace_back("disk"); },
         [this](const std::string& name) { notified.push_back(name); }}};
};

TEST_F(AutoRulesTest, TheStopHoldsEverythingBackButTheWarning) {
    armBehindTheStop();
    run(99.0, 99.0);
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_THAT(log.activityLog(), IsEmpty());
    EXPECT_EQ(review.selectedPID(), std::nullopt);
    EXPECT_FALSE(confirmations.pendingConfirmation());
    EXPECT_EQ(rules.dates(), AutomationDates{});
    rules.raiseLoadWarning(*sample.snapshot());
    EXPECT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_THAT(notified, SizeIs(1));
}

TEST_F(AutoRulesTest, ForAnHourTheLatchAloneHoldsBackWhatIsOn) {
    armBehindTheStop();
    for (int seconds = 0; seconds < 3600; seconds += 4) {
        clock.advance(std::chrono::seconds(4));
        run(99.0, 99.0);
    }
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_THAT(log.activityLog(), IsEmpty());
    EXPECT_EQ(review.selectedPID(), std::nullopt);
    EXPECT_FALSE(confirmations.pendingConfirmation());
    // Nothing but the latch was in the way.
    settings.automationEmergencyStopEngaged = false;
    run(99.0, 99.0);
    EXPECT_THAT(calls, ElementsAre("scan", "disk"));
    EXPECT_EQ(review.selectedPID(), 700);
    EXPECT_TRUE(confirmations.pendingConfirmation());
}

TEST_F(AutoRulesTest, EverySwitchOffLeavesTheDiskCheckAlone) {
    addProcess(700, "/usr/bin/editor");
    devices = {device("macOS", true)};
    remember(30, 95.0);
    run(99.0, 99.0);
    EXPECT_THAT(calls, ElementsAre("disk"));
    EXPECT_THAT(log.activityLog(), IsEmpty());
    EXPECT_EQ(review.selectedPID(), std::nullopt);
}

TEST_F(AutoRulesTest, SelectsTheTopOffenderAtTheThreshold) {
    settings.autoSelectTopOffender = true;
    settings.warningThreshold = 82.9;
    addProcess(700, "/usr/bin/editor");
    const std::string step = review.optimizeStep();
    run(82.8);
    EXPECT_EQ(review.selectedPID(), std::nullopt);
    run(82.9);
    EXPECT_EQ(review.selectedPID(), 700);
    EXPECT_EQ(review.selectedAppImpactName(), "editor");
    EXPECT_EQ(review.chosenBy(), ReviewTarget::ChosenBy::rule);
    EXPECT_EQ(rules.dates().lastAutoSelectDate, clock.now());
    EXPECT_EQ(review.optimizeStep(), step);
    EXPECT_THAT(details(),
                ElementsAre("Auto Rule: Selected editor because system load crossed 82%."));
    EXPECT_EQ(log.lastAction(), "Monitoring started.");
}

TEST_F(AutoRulesTest, WhatIsSelectedAlreadyIsLeftAsItIs) {
    settings.autoSelectTopOffender = true;
    addProcess(700, "/usr/bin/editor").cpu = 90.0;
    addProcess(800, "/usr/bin/other");
    run(99.0);
    review.setTarget(701, "editor");
    run(99.0);
    EXPECT_EQ(review.selectedPID(), 701);
    EXPECT_THAT(log.activityLog(), SizeIs(1));
}

TEST_F(AutoRulesTest, PassesOverWhatIsProtected) {
    settings.autoSelectTopOffender = true;
    settings.protectedAppNames = {"Docker"};
    addProcess(1, "/usr/lib/systemd/systemd").cpu = 99.0;
    addProcess(600, "/usr/bin/docker").cpu = 90.0;
    addProcess(700, "/usr/bin/editor").cpu = 50.0;
    run(99.0);
    EXPECT_EQ(review.selectedAppImpactName(), "editor");
}

TEST_F(AutoRulesTest, ATopProcessThatIsGoneStillSelectsItsGroup) {
    settings.autoSelectTopOffender = true;
    addProcess(700, "/usr/bin/editor");
    SystemSnapshot last = snapshot(99.0);
    sample.setLatestProcesses({}, {});
    rules.runAutoRules(last);
    EXPECT_EQ(review.selectedPID(), 700);
}

TEST_F(AutoRulesTest, NobodySafeSelectsNobody) {
    settings.autoSelectTopOffender = true;
    addProcess(1, "/usr/lib/systemd/systemd");
    run(99.0);
    EXPECT_EQ(review.selectedPID(), std::nullopt);
    EXPECT_THAT(log.activityLog(), IsEmpty());
}

TEST_F(AutoRulesTest, AsksForAPurgeOnceMemoryStaysHigh) {
    settings.autoPurgeSustainedMemory = true;
    remember(14, 95.0);
    run(0.0, 95.0);
    EXPECT_FALSE(confirmations.pendingConfirmation());
    remember(1, 95.0);
    run(0.0, 95.0);
    EXPECT_EQ(pending().kind, "local_purge");
    EXPECT_EQ(ports.cachePurge->count, 0);
    EXPECT_THAT(details(),
                ElementsAre("Auto Rule: Purged caches after sustained high memory pressure."));
    EXPECT_EQ(log.lastAction(), "Monitoring started.");
    EXPECT_EQ(rules.dates().lastAutoPurgeDate, clock.now());
}

TEST_F(AutoRulesTest, AMeanAtTheThresholdIsHigh) {
    settings.autoPurgeSustainedMemory = true;
    settings.warningThreshold = 82.0;
    remember(30, 81.999);
    run(0.0);
    EXPECT_FALSE(confirmations.pendingConfirmation());
    remember(30, 82.0);
    run(0.0);
    EXPECT_TRUE(confirmations.pendingConfirmation());
}

TEST_F(AutoRulesTest, AsksForThePurgeAgainOnlyBeyondFifteenMinutes) {
    settings.autoPurgeSustainedMemory = true;
    remember(30, 95.0);
    run(0.0);
    confirmations.cancelPending();
    clock.advance(std::chrono::seconds(900));
    run(0.0);
    EXPECT_FALSE(confirmations.pendingConfirmation());
    clock.advance(std::chrono::seconds(1));
    run(0.0);
    EXPECT_TRUE(confirmations.pendingConfirmation());
}

TEST_F(AutoRulesTest, ScansForAMacThatIsOnline) {
    settings.autoScanRemoteMacs = true;
    struct Case {
        std::vector<TailDevice> devices;
        bool scans;
    };
    for (const Case& each : {Case{{}, false}, Case{{device("macOS", false)}, false},
                             Case{{device("iOS", true), device("linux", true)}, false},
                             Case{{device("linux", true), device("MACos", true)}, true}}) {
        calls.clear();
        devices = each.devices;
        run(0.0);
        if (each.scans) {
            EXPECT_THAT(calls, ElementsAre("scan", "disk"));
            EXPECT_EQ(rules.dates().lastAutoRemoteScanDate, clock.now());
        } else {
            EXPECT_THAT(calls, ElementsAre("disk"));
            EXPECT_EQ(rules.dates().lastAutoRemoteScanDate, std::nullopt);
        }
    }
    EXPECT_THAT(log.activityLog(), IsEmpty());
}

TEST_F(AutoRulesTest, ARunningScanIsNotDoubledNorCounted) {
    settings.autoScanRemoteMacs = true;
    devices = {device("macOS", true)};
    scanning = true;
    run(0.0);
    EXPECT_THAT(calls, ElementsAre("disk"));
    EXPECT_EQ(rules.dates().lastAutoRemoteScanDate, std::nullopt);
}

TEST_F(AutoRulesTest, ScansAgainOnlyBeyondFifteenMinutes) {
    settings.autoScanRemoteMacs = true;
    devices = {device("macOS", true)};
    run(0.0);
    clock.advance(std::chrono::seconds(900));
    run(0.0);
    EXPECT_THAT(calls, ElementsAre("scan", "disk", "disk"));
    clock.advance(std::chrono::seconds(1));
    run(0.0);
    EXPECT_THAT(calls, ElementsAre("scan", "disk", "disk", "scan", "disk"));
}

TEST_F(AutoRulesTest, TheRulesRunInTheirOrder) {
    settings.autoSelectTopOffender = true;
    settings.autoPurgeSustainedMemory = true;
    settings.autoScanRemoteMacs = true;
    addProcess(700, "/usr/bin/editor");
    devices = {device("macOS", true)};
    remember(30, 95.0);
    run(99.0);
    EXPECT_THAT(details(),
                ElementsAre("Auto Rule: Purged caches after sustained high memory pressure.",
                            "Auto Rule: Selected editor because system load crossed 82%."));
    EXPECT_THAT(calls, ElementsAre("scan", "disk"));
    EXPECT_EQ(eventsAtScan, 2U);
}

TEST_F(AutoRulesTest, AStopEngagedByARuleHoldsBackTheNext) {
    settings.autoScanRemoteMacs = true;
    devices = {device("macOS", true)};
    stopsAtScan = true;
    run(99.0);
    EXPECT_THAT(calls, ElementsAre("scan"));
}

TEST_F(AutoRulesTest, WarnsWithTheTopProcess) {
    addProcess(700, "/usr/bin/editor");
    rules.raiseLoadWarning(snapshot(82.0, 59.6));
    EXPECT_THAT(details(), ElementsAre("Warning: High load detected. CPU 82%, memory 60%. Top "
                                       "process: editor."));
    EXPECT_THAT(notified, ElementsAre("editor"));
    EXPECT_EQ(log.lastAction(), "Monitoring started.");
}

TEST_F(AutoRulesTest, WarnsOfAnUnknownProcess) {
    rules.raiseLoadWarning(snapshot(99.0));
    EXPECT_THAT(notified, ElementsAre("Unknown"));
}

TEST_F(AutoRulesTest, WarnsAgainAfterThreeMinutes) {
    rules.raiseLoadWarning(snapshot(99.0));
    clock.advance(std::chrono::seconds(179));
    rules.raiseLoadWarning(snapshot(99.0));
    EXPECT_THAT(notified, SizeIs(1));
    clock.advance(std::chrono::seconds(1));
    rules.raiseLoadWarning(snapshot(99.0));
    EXPECT_THAT(notified, SizeIs(2));
}

TEST_F(AutoRulesTest, ALowLoadNeitherWarnsNorStartsThePause) {
    rules.raiseLoadWarning(snapshot(10.0));
    EXPECT_THAT(notified, IsEmpty());
    EXPECT_EQ(rules.dates().lastWarningDate, std::nullopt);
}

TEST_F(AutoRulesTest, WithoutOtherComponentsTheRulesStillHold) {
    AutoRules alone({log, sample, review, actions, settings, policy, clock, locale}, {});
    settings.autoScanRemoteMacs = true;
    alone.runAutoRules(snapshot(99.0));
    alone.raiseLoadWarning(snapshot(99.0));
    EXPECT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_EQ(alone.dates().lastAutoRemoteScanDate, std::nullopt);
}

// When they last acted ----------------------------------------------------------------------------

TEST_F(AutoRulesTest, NothingHasActedBeforeTheFirstTime) {
    log.recordMessage("Selected editor, currently the heaviest process.");
    for (const AutomationSwitch which : allAutomationSwitches) {
        EXPECT_EQ(lastActed(which, rules.dates(), log.activityLog()), std::nullopt);
    }
}

TEST_F(AutoRulesTest, WhatTheRulesDidIsFoundAgain) {
    using S = AutomationSwitch;
    const auto acted = [this](S which) {
        return lastActed(which, rules.dates(), log.activityLog());
    };
    addProcess(700, "/usr/bin/editor");
    settings.autoSelectTopOffender = true;
    run(99.0);
    const Date selected = clock.now();
    EXPECT_EQ(acted(S::autoSelectTopOffender), selected);
    EXPECT_EQ(acted(S::autoPurgeSustainedMemory), std::nullopt);

    clock.advance(std::chrono::minutes(1));
    settings.autoPurgeSustainedMemory = true;
    remember(30, 95.0);
    run(99.0);
    const Date purged = clock.now();
    EXPECT_EQ(acted(S::autoSelectTopOffender), selected) << "it was selected already";
    EXPECT_EQ(acted(S::autoPurgeSustainedMemory), purged);
    EXPECT_EQ(acted(S::autoScanRemoteMacs), std::nullopt);

    clock.advance(std::chrono::minutes(1));
    settings.autoScanRemoteMacs = true;
    devices = {device("macOS", true)};
    run(99.0);
    EXPECT_EQ(acted(S::autoScanRemoteMacs), clock.now());
    EXPECT_EQ(acted(S::diskAutopilotEnabled), std::nullopt);
    rules.setLastDiskAutopilotCheckDate(selected);
    EXPECT_EQ(acted(S::diskAutopilotEnabled), selected);
    rules.raiseLoadWarning(*sample.snapshot());
    EXPECT_EQ(acted(S::autoSelectTopOffender), selected);
    EXPECT_EQ(acted(S::autoPurgeSustainedMemory), purged);
    EXPECT_EQ(acted(S::aiSafeActionsEnabled), std::nullopt);
    EXPECT_EQ(acted(S::notificationsIncludeActions), std::nullopt);

    // A log that was cleared takes nothing away from this run.
    EXPECT_EQ(lastActed(S::autoSelectTopOffender, rules.dates(), {}), selected);
    EXPECT_EQ(lastActed(S::autoPurgeSustainedMemory, rules.dates(), {}), purged);

    // The log outlives the run, and the dates do not.
    const AutomationDates none;
    EXPECT_EQ(lastActed(S::autoSelectTopOffender, none, log.activityLog()), selected);
    EXPECT_EQ(lastActed(S::autoPurgeSustainedMemory, none, log.activityLog()), purged);
    EXPECT_EQ(lastActed(S::autoScanRemoteMacs, none, log.activityLog()), std::nullopt);

    clock.advance(std::chrono::minutes(1));
    review.clearOperationTarget();
    run(99.0);
    EXPECT_EQ(acted(S::autoSelectTopOffender), clock.now()) << "the newest entry counts";
}

}  // namespace
}  // namespace tallowcrest

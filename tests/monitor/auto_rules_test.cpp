#include "monitor/auto_rules.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_kinds.h"
#include "core/observable.h"
#include "tests/monitor/auto_rules_fixture.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class AutoRulesTest : public AutoRulesFixture {};

TEST_F(AutoRulesTest, TheStopAlonePreventsEverythingExceptTheWarning) {
    armAll();
    set(&Settings::automationEmergencyStopEngaged, true);
    for (int seconds = 0; seconds < 3600; seconds += 4) {
        clock.advance(std::chrono::seconds(4));
        run(99.0, 99.0);
    }
    expectNothingDone();
    rules.raiseLoadWarning(*sample.snapshot());
    EXPECT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_THAT(notified(), SizeIs(1));
    // Only the stop prevented them.
    set(&Settings::automationEmergencyStopEngaged, false);
    run(99.0, 99.0);
    EXPECT_EQ(scans(), 1);
    EXPECT_EQ(review.selectedPID(), 700);
    EXPECT_TRUE(confirmations.pendingConfirmation());
}

TEST_F(AutoRulesTest, WithEverySwitchOffNothingActs) {
    armAll();
    for (const auto field : {&Settings::autoSelectTopOffender, &Settings::autoPurgeSustainedMemory,
                             &Settings::autoScanRemoteMacs}) {
        set(field, false);
    }
    run(99.0, 99.0);
    expectNothingDone();
}

TEST_F(AutoRulesTest, SelectsTheTopOffenderAtTheThreshold) {
    set(&Settings::autoSelectTopOffender, true);
    set(&Settings::warningThreshold, 82.9);
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

TEST_F(AutoRulesTest, EveryNewDateIsTold) {
    int told = 0;
    const Subscription subscription = rules.observable().subscribe([&told] { ++told; });
    const auto toldBy = [&](auto change) {
        change();
        mainQueue.drain();
        return std::exchange(told, 0);
    };
    addProcess(700, "/usr/bin/editor");
    EXPECT_EQ(toldBy([&] { run(99.0, 99.0); }), 0) << "every switch is off";
    set(&Settings::autoSelectTopOffender, true);
    EXPECT_EQ(toldBy([&] { run(99.0); }), 1);
    EXPECT_EQ(rules.dates().lastAutoSelectDate, clock.now());
    EXPECT_EQ(toldBy([&] { run(99.0); }), 0) << "it is selected already";
    EXPECT_EQ(toldBy([&] { rules.raiseLoadWarning(*sample.snapshot()); }), 1);
    EXPECT_EQ(rules.dates().lastWarningDate, clock.now());
    EXPECT_EQ(toldBy([&] { rules.setLastDiskAutopilotCheckDate(clock.now()); }), 1);
    EXPECT_EQ(rules.dates().lastDiskAutopilotCheckDate, clock.now());
    armAll();
    set(&Settings::autoScanRemoteMacs, false);
    EXPECT_EQ(toldBy([&] { run(99.0, 99.0); }), 1);
    EXPECT_EQ(rules.dates().lastAutoPurgeDate, clock.now());
    set(&Settings::autoScanRemoteMacs, true);
    EXPECT_EQ(toldBy([&] { run(99.0, 99.0); }), 1);
    EXPECT_EQ(rules.dates().lastAutoRemoteScanDate, clock.now());
}

TEST_F(AutoRulesTest, AGroupThatIsAlreadySelectedIsNotSelectedAgain) {
    set(&Settings::autoSelectTopOffender, true);
    addProcess(700, "/usr/bin/editor").cpu = 90.0;
    addProcess(800, "/usr/bin/other");
    run(99.0);
    review.setTarget(701, "editor");
    run(99.0);
    EXPECT_EQ(review.selectedPID(), 701);
    EXPECT_THAT(log.activityLog(), SizeIs(1));
}

TEST_F(AutoRulesTest, SkipsProtectedGroups) {
    set(&Settings::autoSelectTopOffender, true);
    set(&Settings::protectedAppNames, {"Docker"});
    addProcess(1, "/usr/lib/systemd/systemd").cpu = 99.0;
    run(99.0);
    EXPECT_EQ(review.selectedPID(), std::nullopt) << "no group is safe";
    EXPECT_THAT(log.activityLog(), IsEmpty());
    addProcess(600, "/usr/bin/docker").cpu = 90.0;
    addProcess(700, "/usr/bin/editor").cpu = 50.0;
    run(99.0);
    EXPECT_EQ(review.selectedAppImpactName(), "editor");
}

TEST_F(AutoRulesTest, ATopProcessThatIsGoneStillSelectsItsGroup) {
    set(&Settings::autoSelectTopOffender, true);
    addProcess(700, "/usr/bin/editor");
    SystemSnapshot last = snapshot(99.0);
    sample.setLatestProcesses({}, {});
    rules.runAutoRules(last);
    EXPECT_EQ(review.selectedPID(), 700);
}

TEST_F(AutoRulesTest, AsksForAPurgeOnceMemoryStaysHigh) {
    set(&Settings::autoPurgeSustainedMemory, true);
    appendHistory(14, 95.0);
    run(0.0, 95.0);
    EXPECT_FALSE(confirmations.pendingConfirmation());
    appendHistory(1, 95.0);
    run(0.0, 95.0);
    EXPECT_EQ(pending().kind, "local_purge");
    EXPECT_EQ(ports.cachePurge->count, 0);
    EXPECT_THAT(details(),
                ElementsAre("Auto Rule: Purged caches after sustained high memory pressure."));
    EXPECT_EQ(log.lastAction(), "Monitoring started.");
    EXPECT_EQ(rules.dates().lastAutoPurgeDate, clock.now());
}

TEST_F(AutoRulesTest, AMeanAtTheThresholdIsHigh) {
    set(&Settings::autoPurgeSustainedMemory, true);
    set(&Settings::warningThreshold, 82.0);
    appendHistory(30, 81.999);
    run(0.0);
    EXPECT_FALSE(confirmations.pendingConfirmation());
    appendHistory(30, 82.0);
    run(0.0);
    EXPECT_TRUE(confirmations.pendingConfirmation());
}

TEST_F(AutoRulesTest, AsksForThePurgeAgainAfterMoreThanFifteenMinutes) {
    set(&Settings::autoPurgeSustainedMemory, true);
    appendHistory(30, 95.0);
    run(0.0);
    confirmations.cancelPending();
    clock.advance(std::chrono::seconds(900));
    run(0.0);
    EXPECT_FALSE(confirmations.pendingConfirmation());
    clock.advance(std::chrono::seconds(1));
    run(0.0);
    EXPECT_TRUE(confirmations.pendingConfirmation());
}

TEST_F(AutoRulesTest, ScansOnlyWhenAMacIsOnline) {
    set(&Settings::autoScanRemoteMacs, true);
    struct Case {
        std::vector<TailDevice> devices;
        bool scans;
    };
    for (const Case& each : {Case{{}, false}, Case{{tailDevice("macOS", false)}, false},
                             Case{{tailDevice("iOS", true), tailDevice("linux", true)}, false},
                             Case{{tailDevice("linux", true), tailDevice("MACos", true)}, true}}) {
        remote.setDevices(each.devices);
        run(0.0);
        EXPECT_EQ(scans(), each.scans ? 1 : 0);
        EXPECT_EQ(rules.dates().lastAutoRemoteScanDate,
                  each.scans ? std::optional(clock.now()) : std::nullopt);
    }
    EXPECT_THAT(details(), ElementsAre("Action: Scanning 1 remote Mac over Tailscale..."));
}

TEST_F(AutoRulesTest, ALinuxMachineAloneIsScannedWhenTheSettingsIncludeThem) {
    set(&Settings::autoScanRemoteMacs, true);
    remote.setDevices({tailDevice("linux", true)});
    run(0.0);
    EXPECT_EQ(scans(), 0);
    set(&Settings::includeLinuxMachines, true);
    run(0.0);
    EXPECT_EQ(scans(), 1);
    EXPECT_EQ(rules.dates().lastAutoRemoteScanDate, clock.now());
}

TEST_F(AutoRulesTest, ScansAgainAfterMoreThanFifteenMinutesAndNotDuringAScan) {
    set(&Settings::autoScanRemoteMacs, true);
    remote.setDevices({tailDevice("macOS", true)});
    remote.scan.scanRemoteMacs();
    run(0.0);
    EXPECT_EQ(scans(), 1) << "that of the owner";
    EXPECT_EQ(rules.dates().lastAutoRemoteScanDate, std::nullopt);
    finishWork();
    for (const auto& [seconds, automatic] : {std::pair{0, 1}, {900, 1}, {1, 2}}) {
        clock.advance(std::chrono::seconds(seconds));
        run(0.0);
        EXPECT_EQ(scans(), 1 + automatic);
        finishWork();
    }
}

TEST_F(AutoRulesTest, TheRulesRunInOrder) {
    armAll();
    run(99.0);
    EXPECT_THAT(details(),
                ElementsAre("Action: Scanning 1 remote Mac over Tailscale...",
                            "Auto Rule: Purged caches after sustained high memory pressure.",
                            "Auto Rule: Selected editor because system load crossed 82%."));
}

/// Engages the stop as soon as it is read.
class StoppingClock final : public Clock {
public:
    explicit StoppingClock(SettingsOwner& settings) : settings_(settings) {}
    Date now() const override {
        settings_.set(&Settings::automationEmergencyStopEngaged, true);
        return {};
    }

private:
    SettingsOwner& settings_;
};

TEST_F(AutoRulesTest, AStopEngagedDuringARulePreventsTheNext) {
    armAll();
    const StoppingClock stoppingClock(settings);
    AutoRules stopped({Services{log, settings, confirmations, jobs, stoppingClock, locale}, sample,
                       review, actions, notifications, policy, remote.scan, disk});
    stopped.runAutoRules(snapshot(99.0));
    EXPECT_EQ(review.selectedPID(), 700);
    EXPECT_FALSE(confirmations.pendingConfirmation());
    set(&Settings::automationEmergencyStopEngaged, false);
    stopped.runAutoRules(snapshot(99.0));
    EXPECT_TRUE(confirmations.pendingConfirmation()) << "the first rule had nothing to do";
    EXPECT_EQ(scans(), 0);
}

TEST_F(AutoRulesTest, WarnsWithTheTopProcess) {
    addProcess(700, "/usr/bin/editor");
    rules.raiseLoadWarning(snapshot(82.0, 59.6));
    EXPECT_THAT(details(), ElementsAre("Warning: High load detected. CPU 82%, memory 60%. Top "
                                       "process: editor."));
    EXPECT_THAT(notified(), ElementsAre("editor"));
    EXPECT_EQ(log.lastAction(), "Monitoring started.");
}

TEST_F(AutoRulesTest, WarnsAgainOfAHighLoadAfterThreeMinutes) {
    rules.raiseLoadWarning(snapshot(10.0));
    EXPECT_THAT(notified(), IsEmpty());
    EXPECT_EQ(rules.dates().lastWarningDate, std::nullopt) << "a low load starts no pause";
    rules.raiseLoadWarning(snapshot(99.0));
    clock.advance(std::chrono::seconds(179));
    rules.raiseLoadWarning(snapshot(99.0));
    EXPECT_THAT(notified(), ElementsAre("Unknown"));
    clock.advance(std::chrono::seconds(1));
    rules.raiseLoadWarning(snapshot(99.0));
    EXPECT_THAT(notified(), SizeIs(2));
}

TEST_F(AutoRulesTest, WorksWithoutOtherMachinesAndNotifications) {
    WarningNotifications silent(services, nullptr);
    AutoRules alone({services, sample, review, actions, silent, policy, remote.scan, disk});
    set(&Settings::autoScanRemoteMacs, true);
    alone.runAutoRules(snapshot(99.0));
    alone.raiseLoadWarning(snapshot(99.0));
    EXPECT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_EQ(alone.dates().lastAutoRemoteScanDate, std::nullopt);
}

TEST_F(AutoRulesTest, EachRuleRecordsItsOwnKind) {
    armAll();
    run(99.0, 99.0);
    rules.raiseLoadWarning(*sample.snapshot());
    EXPECT_THAT(kinds(), ElementsAre(ActivityKind::warning, ActivityKind::action,
                                     ActivityKind::autoPurge, ActivityKind::autoSelect));
    // Two rules share a title, but their kinds are still right after a restart.
    const ActivityLog restarted(clock, settings, mainQueue);
    ASSERT_EQ(restarted.activityLog(), log.activityLog());
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(restarted.activityLog()[i].kind, log.activityLog()[i].kind) << i;
    }
}

}  // namespace
}  // namespace tallowcrest

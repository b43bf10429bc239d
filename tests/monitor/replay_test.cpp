#include "tests/support/replay.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/actions.h"
#include "actions/automation.h"
#include "actions/local_actions.h"
#include "actions/review_target.h"
#include "core/activity_kinds.h"
#include "monitor/auto_rules.h"

namespace tallowcrest {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

struct RecordedEvent {
    double seconds = 0.0;
    ActivityKind kind = ActivityKind::other;
    std::string detail;
};

/// Replays a trace and collects the events that the monitor records, with their times.
class ReplayTest : public ::testing::Test {
protected:
    void SetUp() override {
        prepareForReplay(machine);
        beginning = machine.clock.now();
    }

    double now() { return secondsBetween(beginning, machine.clock.now()); }

    void run(const LoadTrace& trace) {
        replay(machine, trace, [this](const TracedSample&) {
            for (const ActivityEvent& event : news.take()) {
                recordedEvents.push_back({now(), event.kind, event.detail});
            }
            if (cancelsRequests) {
                news.dismissQuestion();
            }
        });
    }

    std::vector<double> timesOf(ActivityKind kind, const std::string& begins) const {
        std::vector<double> times;
        for (const RecordedEvent& each : recordedEvents) {
            if (each.kind == kind && each.detail.starts_with(begins)) {
                times.push_back(each.seconds);
            }
        }
        return times;
    }

    std::vector<double> scans() const { return timesOf(ActivityKind::action, "Scanning "); }

    static double shortestDistance(const std::vector<double>& times) {
        double shortest = 1e9;
        for (std::size_t i = 1; i < times.size(); ++i) {
            shortest = std::min(shortest, times[i] - times[i - 1]);
        }
        return shortest;
    }

    FakeMachine machine;
    LogNews news{machine};
    bool cancelsRequests = true;  ///< whether each request is cancelled at once
    Date beginning;
    std::vector<RecordedEvent> recordedEvents;
};

TEST_F(ReplayTest, WarningsAndRulesKeepTheirDistancesForADay) {
    Automation& automation = machine.monitor().actions().automation;
    automation.set(AutomationSwitch::autoPurgeSustainedMemory, true);
    automation.set(AutomationSwitch::autoScanRemoteMacs, true);
    news.take();
    const LoadTrace day = syntheticDay();
    run(day);

    const std::vector<double> warnings = timesOf(ActivityKind::warning, "High load detected.");
    EXPECT_GE(shortestDistance(warnings), 180.0);
    // One spike in each of the seven hours of the night, and peaks during eleven hours.
    EXPECT_GT(warnings.size(), 7U + 50U);
    EXPECT_LE(warnings.size(), 7U + 11U * 20U);
    const std::vector<double> purges = timesOf(ActivityKind::autoPurge, "Purged caches");
    EXPECT_GT(shortestDistance(purges), 900.0);
    EXPECT_GT(purges.size(), 3U);
    // All of them while memory was high, or shortly after.
    for (const double time : purges) {
        EXPECT_GT(time, 12.0 * 3600.0);
        EXPECT_LT(time, 18.0 * 3600.0 + 120.0);
    }
    EXPECT_GT(shortestDistance(scans()), 900.0);
    EXPECT_THAT(scans(), SizeIs(24U * 3600U / 904U + 1U));
    EXPECT_THAT(timesOf(ActivityKind::autoSelect, "Selected photo-indexer"), SizeIs(1));
    // A rule only makes a request; nothing is done without a confirmation.
    EXPECT_EQ(machine.actions.cachePurge->count, 0);
    EXPECT_THAT(machine.actions.processes->signalled, IsEmpty());
    EXPECT_THAT(machine.notifications.posted, SizeIs(warnings.size()));
}

LoadTrace busyTrace(std::size_t samples) {
    LoadTrace trace(samples);
    for (std::size_t i = 0; i < trace.size(); ++i) {
        TracedSample& sample = trace[i];
        sample.seconds = 4.0 * static_cast<double>(i);
        sample.cpuPercent = 99.0;
        sample.pressure = 95.0;
        sample.diskFreeGB = 0.5;
        ProcessSample row;
        row.pid = 700;
        row.cpu = 390.0;
        row.rssMB = 900.0;
        row.command = "/usr/bin/photo-indexer";
        sample.processes = {row};
    }
    return trace;
}

/// Turns on every automation and lets it act, engages the stop, and then replays an hour of
/// samples.
class ReplayWithStop : public ReplayTest {
protected:
    SystemMonitor& monitor() { return machine.monitor(); }

    void armAndStop() {
        for (const AutomationSwitch each : allAutomationSwitches) {
            monitor().actions().automation.set(each, true);
        }
        monitor().actions().automation.setAutonomyMode(AIAutonomyMode::autopilot);
        run(busyTrace(15));
        EXPECT_THAT(timesOf(ActivityKind::autoSelect, "Selected photo-indexer"), SizeIs(1));
        EXPECT_THAT(timesOf(ActivityKind::autoPurge, "Purged caches"), SizeIs(1));
        EXPECT_THAT(scans(), SizeIs(1));
        monitor().actions().review.clearOperationTarget();
        monitor().actions().automation.engageEmergencyStop();
    }

    void expectNothingActsForAnHour() {
        news.take();
        recordedEvents.clear();
        cancelsRequests = false;
        // No rule is in its pause any more.
        machine.clock.advance(std::chrono::hours(2));
        beginning = machine.clock.now();
        const AutomationDates before = monitor().autoRules().dates();
        const std::string lastAction = monitor().log().lastAction();
        const std::string step = monitor().actions().review.optimizeStep();
        run(busyTrace(900));
        EXPECT_THAT(scans(), IsEmpty());
        EXPECT_EQ(monitor().actions().review.selectedPID(), std::nullopt);
        EXPECT_EQ(monitor().actions().review.optimizeStep(), step);
        EXPECT_EQ(monitor().log().lastAction(), lastAction);
        EXPECT_FALSE(monitor().confirmations().pendingConfirmation());
        EXPECT_EQ(machine.actions.cachePurge->count, 0);
        EXPECT_THAT(machine.actions.gracefulQuit->names, IsEmpty());
        EXPECT_THAT(machine.actions.processes->signalled, IsEmpty());
        AutomationDates expected = before;
        expected.lastWarningDate = monitor().autoRules().dates().lastWarningDate;
        EXPECT_EQ(monitor().autoRules().dates(), expected);
        // The stop is for actions: the load warnings, and only these, are still given.
        EXPECT_THAT(timesOf(ActivityKind::warning, "High load detected."), SizeIs(20));
        EXPECT_THAT(recordedEvents, SizeIs(20));
    }
};

TEST_F(ReplayWithStop, NothingActs) {
    armAndStop();
    expectNothingActsForAnHour();
}

TEST_F(ReplayWithStop, NothingActsAfterAStartWithASwitchOn) {
    armAndStop();
    for (const AutomationSwitch each : allAutomationSwitches) {
        monitor().actions().automation.set(each, true);
    }
    // As after a stop that was stored only in part. A start switches off all of them except the
    // selection of the top offender, which then only the stop prevents.
    machine.store.write("Tallowcrest.autoSelectTopOffender", true);
    machine.store.write("Tallowcrest.autoPurgeSustainedMemory", true);
    machine.store.write("Tallowcrest.autoScanRemoteMacs", true);
    machine.restart();
    EXPECT_TRUE(monitor().actions().automation.isOn(AutomationSwitch::autoSelectTopOffender));
    expectNothingActsForAnHour();
}

TEST_F(ReplayWithStop, ASampleUnderWayDoesNotAct) {
    armAndStop();
    monitor().actions().automation.resumeFromEmergencyStop();
    for (const AutomationSwitch each : allAutomationSwitches) {
        monitor().actions().automation.set(each, true);
    }
    machine.clock.advance(std::chrono::hours(2));
    monitor().refresh();
    monitor().actions().automation.engageEmergencyStop();
    machine.finishSamples();
    for (const ActivityEvent& event : news.take()) {
        EXPECT_FALSE(event.detail.starts_with("Scanning ")) << event.detail;
    }
    EXPECT_EQ(monitor().actions().review.selectedPID(), std::nullopt);
    EXPECT_FALSE(monitor().confirmations().pendingConfirmation());
}

TEST_F(ReplayWithStop, APendingRequestCanStillBeConfirmed) {
    monitor().actions().local.requestPurge();
    monitor().actions().automation.engageEmergencyStop();
    ASSERT_TRUE(monitor().confirmations().pendingConfirmation());
    monitor().confirmations().confirmPending();
    machine.finishSamples();
    EXPECT_EQ(machine.actions.cachePurge->count, 1);
}

}  // namespace
}  // namespace tallowcrest

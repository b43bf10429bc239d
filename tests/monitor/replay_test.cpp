#include "tests/support/replay.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

struct Happening {
    double seconds = 0.0;
    ActivityKind kind = ActivityKind::other;
    std::string detail;
};

/// Replays a trace and collects what the monitor recorded at which time of it.
class ReplayTest : public ::testing::Test {
protected:
    void SetUp() override {
        prepareForReplay(machine, remote);
        remote.onScan = [this] { scans.push_back(now()); };
        beginning = machine.clock.now();
    }

    double now() { return secondsBetween(beginning, machine.clock.now()); }

    void run(const LoadTrace& trace) {
        replay(machine, trace, [this](const TracedSample&) {
            for (const ActivityEvent& event : news.take()) {
                happenings.push_back({now(), event.kind, event.detail});
            }
            if (dismisses) {
                news.dismissQuestion();
            }
        });
    }

    std::vector<double> timesOf(ActivityKind kind, const std::string& begins) const {
        std::vector<double> times;
        for (const Happening& each : happenings) {
            if (each.kind == kind && each.detail.starts_with(begins)) {
                times.push_back(each.seconds);
            }
        }
        return times;
    }

    static double shortestDistance(const std::vector<double>& times) {
        double shortest = 1e9;
        for (std::size_t i = 1; i < times.size(); ++i) {
            shortest = std::min(shortest, times[i] - times[i - 1]);
        }
        return shortest;
    }

    FakeAutoScan remote;
    FakeMachine machine;
    LogNews news{machine};
    bool dismisses = true;  ///< whether somebody answers every question with no
    Date beginning;
    std::vector<Happening> happenings;
    std::vector<double> scans;
};

TEST_F(ReplayTest, ADayOfWarningsAndRulesKeepsItsDistances) {
    Automation& automation = machine.monitor().automation();
    automation.set(AutomationSwitch::autoPurgeSustainedMemory, true);
    automation.set(AutomationSwitch::autoScanRemoteMacs, true);
    news.take();
    const LoadTrace day = syntheticDay();
    run(day);

    const std::vector<double> warnings = timesOf(ActivityKind::warning, "High load detected.");
    EXPECT_GE(shortestDistance(warnings), 180.0);
    // Seven spikes of a night, one each hour, and peaks for eleven hours.
    EXPECT_GT(warnings.size(), 7U + 50U);
    EXPECT_LE(warnings.size(), 7U + 11U * 20U);
    const std::vector<double> purges = timesOf(ActivityKind::autoPurge, "Purged caches");
    EXPECT_GT(shortestDistance(purges), 900.0);
    EXPECT_GT(purges.size(), 3U);
    // All of them while memory was high, or had been until just now.
    for (const double time : purges) {
        EXPECT_GT(time, 12.0 * 3600.0);
        EXPECT_LT(time, 18.0 * 3600.0 + 120.0);
    }
    EXPECT_GT(shortestDistance(scans), 900.0);
    EXPECT_THAT(scans, SizeIs(24U * 3600U / 904U + 1U));
    EXPECT_THAT(timesOf(ActivityKind::autoSelect, "Selected photo-indexer"), SizeIs(1));
    // A rule asks; nothing is done without a yes.
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

/// Drives every automation into its armed state and lets it act, engages the stop, and then looks
/// at an hour of samples.
class BehindTheStop : public ReplayTest {
protected:
    SystemMonitor& monitor() { return machine.monitor(); }

    void armAndStop() {
        for (const AutomationSwitch each : allAutomationSwitches) {
            monitor().automation().set(each, true);
        }
        monitor().automation().setAutonomyMode(AIAutonomyMode::autopilot);
        run(busyTrace(15));
        EXPECT_THAT(timesOf(ActivityKind::autoSelect, "Selected photo-indexer"), SizeIs(1));
        EXPECT_THAT(timesOf(ActivityKind::autoPurge, "Purged caches"), SizeIs(1));
        EXPECT_THAT(scans, SizeIs(1));
        monitor().review().clearOperationTarget();
        monitor().automation().engageEmergencyStop();
    }

    void expectNothingActsForAnHour() {
        news.take();
        happenings.clear();
        scans.clear();
        dismisses = false;
        // Whatever pause the rules had to keep is over.
        machine.clock.advance(std::chrono::hours(2));
        beginning = machine.clock.now();
        const AutomationDates before = monitor().autoRules().dates();
        const std::string lastAction = monitor().log().lastAction();
        const std::string step = monitor().review().optimizeStep();
        run(busyTrace(900));
        EXPECT_THAT(scans, IsEmpty());
        EXPECT_EQ(monitor().review().selectedPID(), std::nullopt);
        EXPECT_EQ(monitor().review().optimizeStep(), step);
        EXPECT_EQ(monitor().log().lastAction(), lastAction);
        EXPECT_FALSE(monitor().confirmations().pendingConfirmation());
        EXPECT_EQ(machine.actions.cachePurge->count, 0);
        EXPECT_THAT(machine.actions.gracefulQuit->names, IsEmpty());
        EXPECT_THAT(machine.actions.processes->signalled, IsEmpty());
        AutomationDates expected = before;
        expected.lastWarningDate = monitor().autoRules().dates().lastWarningDate;
        EXPECT_EQ(monitor().autoRules().dates(), expected);
        // The stop is for actions: a person is still told, and of nothing else.
        EXPECT_THAT(timesOf(ActivityKind::warning, "High load detected."), SizeIs(20));
        EXPECT_THAT(happenings, SizeIs(20));
    }
};

TEST_F(BehindTheStop, NothingActs) {
    armAndStop();
    expectNothingActsForAnHour();
}

TEST_F(BehindTheStop, NothingActsThoughAStartFoundASwitchOn) {
    armAndStop();
    for (const AutomationSwitch each : allAutomationSwitches) {
        monitor().automation().set(each, true);
    }
    // As after a stop that was stored in part. A start switches off all of them but this one, which
    // leaves the latch alone to hold it.
    machine.store.write("Tallowcrest.autoSelectTopOffender", true);
    machine.store.write("Tallowcrest.autoPurgeSustainedMemory", true);
    machine.store.write("Tallowcrest.autoScanRemoteMacs", true);
    machine.restart();
    EXPECT_TRUE(monitor().automation().isOn(AutomationSwitch::autoSelectTopOffender));
    expectNothingActsForAnHour();
}

TEST_F(BehindTheStop, ASampleUnderWayIsStoppedToo) {
    armAndStop();
    monitor().automation().resumeFromEmergencyStop();
    for (const AutomationSwitch each : allAutomationSwitches) {
        monitor().automation().set(each, true);
    }
    scans.clear();
    machine.clock.advance(std::chrono::hours(2));
    monitor().refresh();
    monitor().automation().engageEmergencyStop();
    machine.finishSamples();
    EXPECT_THAT(scans, IsEmpty());
    EXPECT_EQ(monitor().review().selectedPID(), std::nullopt);
    EXPECT_FALSE(monitor().confirmations().pendingConfirmation());
}

TEST_F(BehindTheStop, AQuestionThatStandsCanStillBeAnswered) {
    monitor().localActions().requestPurge();
    monitor().automation().engageEmergencyStop();
    ASSERT_TRUE(monitor().confirmations().pendingConfirmation());
    monitor().confirmations().confirmPending();
    machine.finishSamples();
    EXPECT_EQ(machine.actions.cachePurge->count, 1);
}

}  // namespace
}  // namespace tallowcrest

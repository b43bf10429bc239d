#include "monitor/sample_cycle.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/automation.h"
#include "actions/desktop_actions.h"
#include "actions/local_actions.h"
#include "actions/review_target.h"
#include "actions/tool_runner.h"
#include "advisor/trust.h"
#include "core/activity_kinds.h"
#include "core/confirmation_desk.h"
#include "core/observable.h"
#include "disk/disk_autopilot.h"
#include "integration/warning_notifications.h"
#include "monitor/auto_rules.h"
#include "remote/tailnet.h"
#include "sampling/latest_sample.h"
#include "tests/monitor/recommendation_cards.h"
#include "tests/monitor/sample_cycle_fixture.h"
#include "tests/support/each_of.h"
#include "tests/support/fake_local_actions.h"
#include "tests/support/fake_notification_center.h"
#include "tests/support/fake_tool_launcher.h"
#include "tests/support/remote_machines.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class SampleCycleTest : public ::testing::Test, protected TestServices, protected SampleMachine {
protected:
    void makeCycle(bool readOnly = false) {
        rules = std::make_unique<AutoRules>(AutoRules::Dependencies{
            services, *sample, review, actions, notifications, {}, remote.scan, disk});
        cycle = std::make_unique<SampleCycle>(
            SampleCycle::Dependencies{.services = services,
                                      .sources = sources,
                                      .sample = *sample,
                                      .rules = *rules,
                                      .tailnet = remote.tailnet,
                                      .remoteScan = remote.scan,
                                      .cpuCount = 4,
                                      .protection = {},
                                      .readOnly = readOnly,
                                      .sampleApplied = [this] { applied(); }});
    }

    /// Takes one sample and applies it.
    void takeOne() {
        cycle->refresh();
        workQueue.run();
        mainQueue.drain();
    }

    /// Gives every rule a reason to act.
    void armEveryRule() {
        metrics->processes = rows(2);
        metrics->memory.pressure = 91;
        ticks->pass(97);
        settings.set(&Settings::autoPurgeSustainedMemory, true);
        settings.set(&Settings::autoScanRemoteMacs, true);
        remote.setDevices({tailDevice("macOS", true)});
        SystemSnapshot pressed;
        pressed.memory.pressure = 91;
        sample->setSnapshot(pressed);
        for (int i = 0; i < 20; ++i) {
            sample->appendHistoryPoint();
        }
        store.written.clear();
    }

    /// `step` is called when the last rule has begun a scan of other machines.
    void atScan(std::function<void()> step) {
        store.onWrite = [this, step = std::move(step)](std::string_view key) {
            if (key == settings_keys::activityLogKey &&
                log.activityLog().front().detail.starts_with("Scanning ")) {
                step();
            }
        };
    }

    std::vector<ActivityKind> kinds() const {
        return eachOf(log.activityLog(), &ActivityEvent::kind);
    }

    RemoteMachines remote{services};
    FakeNotificationCenter center;
    WarningNotifications notifications{services, &center};
    std::unique_ptr<LatestSample> sample = std::make_unique<LatestSample>(settings, mainQueue);
    ReviewTarget review{services, *sample, {}};
    LocalActions actions{{services, *sample, review, {}, [] {}, FakeLocalActions().ports()}};
    Automation automation{services};
    Trust trust{services};
    DiskAutopilot disk{{services, automation, trust, [] {}, {}}};
    std::function<void()> applied = [] {};  ///< called after each sample
    std::unique_ptr<AutoRules> rules;
    std::unique_ptr<SampleCycle> cycle;
};

// The main half ----------------------------------------------------------------------------------

TEST_F(SampleCycleTest, TheMainHalfRunsInOrder) {
    armEveryRule();
    makeCycle();
    std::vector<std::string> steps;
    atScan([&] {
        steps.emplace_back("rules");
        // The whole sample is visible by then.
        EXPECT_EQ(sample->latestProcesses().size(), 2U);
        EXPECT_EQ(sample->snapshot()->cpuPercent, 97);
        ASSERT_EQ(sample->history().size(), 21U);
        EXPECT_EQ(sample->history().back().cpu, 97);
        EXPECT_EQ(sample->history().back().memory, 91);
        EXPECT_EQ(sample->history().back().date, sample->snapshot()->sampledAt);
        EXPECT_EQ(sample->topAppSamples().size(), 1U);
        // The insights include the new point and group, and the sustained card is the first.
        ASSERT_EQ(sample->sessionInsights().size(), 3U);
        EXPECT_EQ(sample->sessionInsights()[0].value, "97%");
        EXPECT_EQ(sample->sessionInsights()[2].kind, SessionInsight::Kind::topApp);
        EXPECT_THAT(titlesOf(sample->recommendations()),
                    ElementsAre("Memory pressure has stayed elevated", "Memory pressure is high",
                                "CPU load is very high"));
        EXPECT_THAT(center.posted, IsEmpty());
    });
    applied = [&] {
        steps.emplace_back("applied");
        EXPECT_THAT(center.posted, SizeIs(1));
    };
    takeOne();
    EXPECT_THAT(steps, ElementsAre("rules", "applied"));
    EXPECT_THAT(kinds(), ElementsAre(ActivityKind::warning, ActivityKind::action,
                                     ActivityKind::autoPurge, ActivityKind::autoSelect));
    EXPECT_THAT(store.written, ElementsAre("Tallowcrest.history", "Tallowcrest.activityLog",
                                           "Tallowcrest.activityLog", "Tallowcrest.activityLog",
                                           "Tallowcrest.activityLog"));
}

TEST_F(SampleCycleTest, AReadOnlyRunWarnsAndDoesNothingElse) {
    armEveryRule();
    makeCycle(true);
    int appliedSamples = 0;
    applied = [&] { ++appliedSamples; };
    takeOne();
    EXPECT_EQ(sample->history().size(), 21U);
    EXPECT_THAT(sample->recommendations(), SizeIs(3));
    EXPECT_THAT(sample->sessionInsights(), SizeIs(3));
    EXPECT_THAT(kinds(), ElementsAre(ActivityKind::warning));
    EXPECT_THAT(center.posted, SizeIs(1));
    EXPECT_EQ(appliedSamples, 1);
    EXPECT_EQ(review.selectedPID(), std::nullopt);
    EXPECT_FALSE(confirmations.pendingConfirmation());
    EXPECT_FALSE(remote.scan.state().remoteScanInProgress);
    AutomationDates warned;
    warned.lastWarningDate = clock.now();
    EXPECT_EQ(rules->dates(), warned);
}

TEST_F(SampleCycleTest, AnEmptySampleIsInTheHistoryAndHasNoTopApp) {
    makeCycle();
    takeOne();
    EXPECT_EQ(sample->history().size(), 1U);
    EXPECT_THAT(sample->topAppSamples(), IsEmpty());
}

TEST_F(SampleCycleTest, ASampleCanBeQueuedWhileOneIsApplied) {
    armEveryRule();
    makeCycle();
    atScan([this] { cycle->refresh(); });
    applied = [this] { cycle->refresh(); };
    takeOne();
    EXPECT_EQ(workQueue.pendingCount(), 3U) << "two samples and the scan";
    EXPECT_EQ(sample->history().size(), 21U);
}

// Threads ----------------------------------------------------------------------------------------

TEST_F(SampleCycleTest, RefreshOnlyQueues) {
    makeCycle();
    cycle->refresh();
    EXPECT_THAT(calls, IsEmpty());
    ASSERT_EQ(workQueue.pendingCount(), 1U);
    EXPECT_EQ(workQueue.laneOf(0), Lane::sampling);
    EXPECT_EQ(mainQueue.pendingCount(), 0U);
    workQueue.run();
    EXPECT_EQ(sample->snapshot(), std::nullopt);
    EXPECT_EQ(mainQueue.pendingCount(), 1U);
    mainQueue.turn();
    EXPECT_NE(sample->snapshot(), std::nullopt);
}

TEST_F(SampleCycleTest, OverlappingSamplesApplyInTheOrderInWhichTheyFinish) {
    makeCycle();
    cycle->refresh();
    clock.advance(std::chrono::seconds(4));
    cycle->refresh();
    EXPECT_EQ(workQueue.pendingCount(), 2U);

    metrics->pressureText = "queued second, finished first";
    workQueue.run(1);
    clock.advance(std::chrono::seconds(1));
    metrics->pressureText = "queued first, finished second";
    workQueue.run(0);
    mainQueue.drain();

    ASSERT_EQ(sample->history().size(), 2U);
    EXPECT_EQ(secondsBetween(sample->history()[0].date, sample->history()[1].date), 1.0);
    EXPECT_EQ(sample->snapshot()->pressureText, "queued first, finished second");
}

TEST_F(SampleCycleTest, ASampleThatEndsAfterDestructionIsDropped) {
    int appliedSamples = 0;
    applied = [&] { ++appliedSamples; };
    makeCycle();
    cycle->refresh();
    cycle->refresh();
    workQueue.run();  // its result waits on the main queue
    EXPECT_EQ(mainQueue.pendingCount(), 1U);
    calls.clear();
    cycle.reset();
    rules.reset();
    workQueue.run();
    EXPECT_THAT(calls, IsEmpty()) << "it had not begun";
    mainQueue.drain();
    EXPECT_EQ(appliedSamples, 0);
    EXPECT_EQ(sample->snapshot(), std::nullopt);
    EXPECT_THAT(store.written, IsEmpty());
}

/// Calls `onRead` in the middle of a sample.
class InterruptedTicks final : public CPUTickSource {
public:
    std::optional<CPUTickReading> readTicks() override {
        if (onRead) {
            onRead();
        }
        return std::nullopt;
    }

    std::function<void()> onRead;
};

TEST_F(SampleCycleTest, ASampleUnderWayAtDestructionKeepsItsReadersAndIsDropped) {
    auto interrupted = std::make_shared<InterruptedTicks>();
    sources =
        std::make_shared<SampleSources>(metrics, interrupted, std::make_shared<PlainLocale>());
    makeCycle();
    cycle->refresh();
    interrupted->onRead = [&] {
        cycle.reset();
        rules.reset();
        sources.reset();
        metrics.reset();
        interrupted.reset();
    };
    workQueue.run();
    EXPECT_THAT(calls, Contains("readPressureText"));
    mainQueue.drain();
    EXPECT_EQ(sample->snapshot(), std::nullopt);
    EXPECT_THAT(store.written, IsEmpty());
}

TEST_F(SampleCycleTest, TheNeverQuitListIsTheOneWhenTheSampleIsApplied) {
    metrics->processes = {row(7, 50.0, "/usr/bin/node")};
    makeCycle();
    cycle->refresh();
    settings.set(&Settings::protectedAppNames, {"Node.js"});
    workQueue.run();
    mainQueue.drain();
    EXPECT_EQ(sample->snapshot()->appImpacts.at(0).protectedCount, 1);
    EXPECT_EQ(sample->snapshot()->cpuPercent, 12.5) << "one of four cores, half busy";
    takeOne();
    EXPECT_EQ(sample->snapshot()->appImpacts.at(0).protectedCount, 1);
}

TEST_F(SampleCycleTest, NotifiesObserversOncePerSample) {
    int told = 0;
    const Subscription subscription = sample->observable().subscribe([&told] { ++told; });
    makeCycle();
    takeOne();
    EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace tallowcrest

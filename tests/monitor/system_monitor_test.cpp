#include "monitor/system_monitor.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/actions.h"
#include "core/activity_kinds.h"
#include "core/activity_log.h"
#include "core/confirmation_desk.h"
#include "core/observable.h"
#include "core/record_json.h"
#include "core/settings/settings.h"
#include "core/settings/settings_owner.h"
#include "sampling/latest_sample.h"
#include "tests/support/fake_machine.h"
#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

namespace keys = settings_keys;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class SystemMonitorTest : public ::testing::Test, protected FakeMachine {
protected:
    SystemMonitorTest() { ticks->ticks = CPUTicks{}; }
};

// Construction -----------------------------------------------------------------------------------

/// An empty store that records its calls, consecutive reads as one.
class RecordingEmptyStore final : public SettingsStore {
public:
    explicit RecordingEmptyStore(std::vector<std::string>& calls) : calls_(calls) {}

    std::optional<SettingsValue> read(std::string_view) const override {
        if (calls_.empty() || calls_.back() != "store") {
            calls_.emplace_back("store");
        }
        return std::nullopt;
    }
    void write(std::string_view, const std::optional<SettingsValue>&) override {
        calls_.emplace_back("write");
    }

private:
    std::vector<std::string>& calls_;
};

TEST_F(SystemMonitorTest, ConstructionReadsTheTicksBeforeTheStoreAndStartsNothing) {
    std::vector<std::string> calls;
    RecordingEmptyStore recording(calls);
    settingsStore = &recording;
    ticks->calls = &calls;
    metrics->calls = &calls;
    SystemMonitor& monitor = FakeMachine::monitor();
    EXPECT_THAT(calls, ElementsAre("readTicks", "store"));
    EXPECT_FALSE(monitor.isStarted());
    EXPECT_EQ(workQueue.pendingCount(), 0U);
    EXPECT_EQ(mainQueue.pendingCount(), 0U);
    EXPECT_THAT(mainQueue.timerIntervals(), IsEmpty());
    EXPECT_THAT(notifications.calls, IsEmpty());
    ticks->pass(25);
    monitor.refresh();
    finishSamples();
    EXPECT_EQ(monitor.sample().snapshot()->cpuPercent, 25.0) << "since the construction";
    restart();
}

TEST_F(SystemMonitorTest, FieldsHaveTheirInitialValues) {
    SystemMonitor& monitor = FakeMachine::monitor();
    EXPECT_EQ(monitor.log().lastAction(), "Monitoring started.");
    EXPECT_THAT(monitor.log().activityLog(), IsEmpty());
    EXPECT_EQ(monitor.sample().snapshot(), std::nullopt);
    EXPECT_THAT(monitor.sample().history(), IsEmpty());
    EXPECT_THAT(monitor.sample().latestProcesses(), IsEmpty());
    EXPECT_THAT(monitor.sample().recommendations(), IsEmpty());
    EXPECT_THAT(monitor.sample().sessionInsights(), IsEmpty());
    EXPECT_THAT(monitor.sample().topAppSamples(), IsEmpty());
    EXPECT_EQ(monitor.actions().review.selectedPID(), std::nullopt);
    EXPECT_EQ(monitor.actions().review.selectedAppImpactName(), std::nullopt);
    EXPECT_EQ(monitor.actions().review.optimizeStep(),
              "1. Select an offender to review. No optimization has run yet.");
    EXPECT_EQ(monitor.settings().sshUsername, "owner");
    EXPECT_EQ(monitor.host().cpuCount, 4);
    EXPECT_EQ(monitor.actions().automation.diskAutopilotStatus(), "Disk Autopilot is off.");
    EXPECT_FALSE(monitor.settings().firstRunComplete);
}

TEST_F(SystemMonitorTest, StartingStoresOnlyTheHistory) {
    FakeMachine::monitor().startMonitoring();
    finishSamples();
    EXPECT_EQ(mainQueue.timerIntervals().size(), 1U);
    EXPECT_THAT(store.written, ElementsAre("Tallowcrest.history"));
}

TEST_F(SystemMonitorTest, LoadsEverythingThatIsStored) {
    std::vector<HistoryPoint> history;
    for (int i = 0; i < 500; ++i) {
        history.push_back({UUID::random(), Date{static_cast<double>(i)}, 1, 2});
    }
    const std::vector<ActivityEvent> events{{UUID::random(), Date{3}, "Warning", "High load"}};
    store.values.write(keys::historyKey, JSONData{record_json::encode(history).value()});
    store.values.write(keys::activityLogKey, JSONData{record_json::encode(events).value()});
    store.values.write(keys::thresholdKey, 90.0);
    store.values.write(keys::protectedAppsKey, SettingsTextList{"Node.js"});
    store.values.write(keys::firstRunCompleteKey, true);
    store.values.write(keys::diskAutopilotKey, true);
    store.values.write(keys::autoSelectKey, true);
    store.values.write(keys::automationEmergencyStopKey, true);
    SystemMonitor& monitor = FakeMachine::monitor();

    EXPECT_EQ(monitor.sample().history(), history);
    EXPECT_EQ(monitor.log().activityLog(), events);
    EXPECT_EQ(monitor.log().lastAction(), "Monitoring started.");
    EXPECT_EQ(monitor.settings().warningThreshold, 90.0);
    EXPECT_TRUE(monitor.settings().firstRunComplete);
    EXPECT_EQ(monitor.actions().automation.diskAutopilotStatus(),
              "Emergency stop is engaged. All automatic actions are off.");
    EXPECT_FALSE(monitor.settings().diskAutopilotEnabled);
    EXPECT_TRUE(monitor.settings().autoSelectTopOffender);
    EXPECT_EQ(store.read(keys::diskAutopilotKey), SettingsValue(true));
    EXPECT_THAT(store.written, IsEmpty());
    const ProcessSample node{7, 0, 0, 0, "/usr/bin/node", "/usr/bin/node"};
    EXPECT_TRUE(monitor.actions().review.isProtectedTarget(node));

    monitor.refresh();
    finishSamples();
    EXPECT_EQ(monitor.sample().history().size(), 180U);
    EXPECT_EQ(record_json::decodeHistory(store.json(keys::historyKey)), monitor.sample().history());
}

// Starting and stopping --------------------------------------------------------------------------

TEST_F(SystemMonitorTest, StartingTwiceStartsOnce) {
    SystemMonitor& monitor = FakeMachine::monitor();
    monitor.startMonitoring();
    monitor.startMonitoring();
    EXPECT_TRUE(monitor.isStarted());
    EXPECT_THAT(notifications.calls, ElementsAre("setCategories", "requestAuthorization"));
    EXPECT_EQ(workQueue.pendingCount(), 1U);
    EXPECT_THAT(mainQueue.timerIntervals(), ElementsAre(std::chrono::milliseconds(4000)));
}

TEST_F(SystemMonitorTest, TheTimerQueuesASampleEachTime) {
    SystemMonitor& monitor = FakeMachine::monitor();
    monitor.startMonitoring();
    finishSamples();
    EXPECT_EQ(monitor.sample().history().size(), 1U);
    mainQueue.fireTimers();
    mainQueue.fireTimers();
    EXPECT_EQ(workQueue.pendingCount(), 2U);  // a stalled sample does not delay the next one
    finishSamples();
    EXPECT_EQ(monitor.sample().history().size(), 3U);
}

TEST_F(SystemMonitorTest, RefreshWorksWithoutAStart) {
    SystemMonitor& monitor = FakeMachine::monitor();
    monitor.refresh();
    finishSamples();
    EXPECT_NE(monitor.sample().snapshot(), std::nullopt);
    EXPECT_FALSE(monitor.isStarted());
}

TEST_F(SystemMonitorTest, DestructionDropsSamplesUnderWay) {
    monitor().startMonitoring();
    mainQueue.fireTimers();
    workQueue.run();
    restart();
    EXPECT_THAT(mainQueue.timerIntervals(), IsEmpty());
    finishSamples();
    EXPECT_THAT(store.written, IsEmpty());
}

// Saving -----------------------------------------------------------------------------------------

TEST_F(SystemMonitorTest, SavesTheHistoryOnEverySample) {
    SystemMonitor& monitor = FakeMachine::monitor();
    for (std::size_t i = 1; i <= 3; ++i) {
        monitor.refresh();
        finishSamples();
        EXPECT_EQ(store.written.size(), i);
        EXPECT_EQ(record_json::decodeHistory(store.json(keys::historyKey)),
                  monitor.sample().history());
    }
    EXPECT_THAT(store.written, ::testing::Each("Tallowcrest.history"));
}

TEST_F(SystemMonitorTest, SavesTheActivityLogOnEveryEvent) {
    SystemMonitor& monitor = FakeMachine::monitor();
    monitor.log().recordEvent(ActivityKind::warning, "High load");
    monitor.log().recordMessage("Selected.");
    EXPECT_THAT(store.written, ElementsAre("Tallowcrest.activityLog", "Tallowcrest.activityLog"));
    EXPECT_EQ(record_json::decodeActivityLog(store.json(keys::activityLogKey)),
              monitor.log().activityLog());
    monitor.log().clearActivityLog();
    EXPECT_EQ(store.json(keys::activityLogKey), "[]");
}

TEST_F(SystemMonitorTest, AValueThatCannotBeEncodedLeavesTheStoredOne) {
    SystemMonitor& monitor = FakeMachine::monitor();
    monitor.refresh();
    monitor.log().recordEvent(ActivityKind::warning, "First");
    finishSamples();
    const std::string history = store.json(keys::historyKey);
    const std::string log = store.json(keys::activityLogKey);

    metrics->memory.pressure = nan;
    monitor.refresh();
    finishSamples();
    monitor.log().recordEvent(ActivityKind::warning, "not UTF-8: \xFF");
    EXPECT_EQ(store.json(keys::historyKey), history);
    EXPECT_EQ(store.json(keys::activityLogKey), log);
    EXPECT_EQ(monitor.sample().history().size(), 2U);
    EXPECT_EQ(monitor.log().activityLog().size(), 2U);
}

TEST_F(SystemMonitorTest, ASecondRunLoadsWhatTheFirstStored) {
    monitor().refresh();
    finishSamples();
    monitor().log().recordMessage("Something happened.");
    const auto history = monitor().sample().history();
    const auto events = monitor().log().activityLog();
    restart();
    SystemMonitor& next = monitor();
    EXPECT_EQ(next.sample().history(), history);
    EXPECT_EQ(next.log().activityLog(), events);
    EXPECT_EQ(next.log().lastAction(), "Monitoring started.");
}

// Observers --------------------------------------------------------------------------------------

TEST_F(SystemMonitorTest, ObserversAreNotifiedOncePerTurnOfWhatTheyObserve) {
    SystemMonitor& monitor = FakeMachine::monitor();
    std::vector<std::string> told;
    const auto observe = [&told](Observable& observable, const char* name) {
        return observable.subscribe([&told, name] { told.emplace_back(name); });
    };
    const Subscription subscriptions[] = {
        observe(monitor.log().observable(), "log"),
        observe(monitor.settingsOwner().observable(), "settings"),
        observe(monitor.sample().observable(), "sample"),
        observe(monitor.actions().review.observable(), "review"),
        observe(monitor.confirmations().observable(), "confirmations"),
        observe(monitor.actions().local.observable(), "local actions"),
        observe(monitor.actions().automation.observable(), "automation")};
    monitor.log().recordMessage("a");
    monitor.actions().review.clearOperationTarget();
    monitor.settingsOwner().set(&Settings::warningThreshold, 90.0);
    monitor.settingsOwner().set(&Settings::firstRunComplete, true);
    EXPECT_THAT(told, IsEmpty());
    mainQueue.turn();
    EXPECT_THAT(told, UnorderedElementsAre("log", "review", "settings"));
    told.clear();
    monitor.refresh();
    finishSamples();
    EXPECT_THAT(told, ElementsAre("sample"));
}

TEST_F(SystemMonitorTest, ASampleDoesNotChangeTheReviewTarget) {
    SystemMonitor& monitor = FakeMachine::monitor();
    metrics->processes = {{7, 50, 1, 100, "/usr/bin/app", "/usr/bin/app"}};
    monitor.refresh();
    finishSamples();
    monitor.actions().review.selectTopProcess();
    EXPECT_EQ(monitor.actions().review.selectedPID(), 7);
    metrics->processes.clear();
    monitor.refresh();
    finishSamples();
    EXPECT_EQ(monitor.actions().review.selectedPID(), 7);
    EXPECT_EQ(monitor.actions().review.selectedAppImpactName(), "app");
    EXPECT_EQ(monitor.actions().review.selectedTargetSummary().title, "PID 7");
}

}  // namespace
}  // namespace tallowcrest

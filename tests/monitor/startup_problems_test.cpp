// What the owner is told of a start that did not find everything.

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/locale.h"
#include "core/record_json.h"
#include "core/settings_keys.h"
#include "monitor/system_monitor.h"
#include "tests/support/fake_local_actions.h"
#include "tests/support/fake_readers.h"
#include "tests/support/fake_report_folder.h"
#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"

namespace tallowcrest {
namespace {

using ::testing::IsEmpty;

class StartupProblems : public ::testing::Test {
protected:
    SystemMonitor& start(std::vector<std::string> problems) {
        HostFacts facts;
        facts.startupProblems = std::move(problems);
        monitor = std::make_unique<SystemMonitor>(
            MonitorPorts{mainQueue, workQueue, clock, store, std::make_shared<FakeMetricsReader>(),
                         std::make_shared<FakeTickSource>(), std::make_shared<PlainLocale>(),
                         FakeLocalActions().ports(), std::make_shared<FakeReportFolder>(),
                         atGreenwich},
            std::move(facts));
        return *monitor;
    }

    ManualClock clock;
    ManualMainQueue mainQueue;
    ManualWorkQueue workQueue;
    MemorySettingsStore store;
    std::unique_ptr<SystemMonitor> monitor;
};

TEST_F(StartupProblems, AreMessages) {
    SystemMonitor& started = start({"First.", "Second."});
    EXPECT_EQ(started.log().lastAction(), "Second.");
    const auto& events = started.log().activityLog();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].title, "Action");
    EXPECT_EQ(events[0].detail, "Second.");
    EXPECT_EQ(events[1].detail, "First.");
}

TEST_F(StartupProblems, AreKeptAboveEarlierEvents) {
    const std::vector<ActivityEvent> earlier{{UUID::random(), Date{1}, "Action", "Earlier."}};
    store.write(settings_keys::activityLogKey, JSONData{record_json::encode(earlier).value()});
    start({"Now."});
    const auto stored = store.read(settings_keys::activityLogKey);
    ASSERT_TRUE(stored.has_value());
    const auto events = record_json::decodeActivityLog(std::get<JSONData>(*stored).text);
    ASSERT_TRUE(events && events->size() == 2);
    EXPECT_EQ((*events)[0].detail, "Now.");
    EXPECT_EQ((*events)[1].detail, "Earlier.");
}

TEST_F(StartupProblems, OfWhichThereAreNoneChangeNothing) {
    EXPECT_EQ(start({}).log().lastAction(), "Monitoring started.");
    EXPECT_THAT(monitor->log().activityLog(), IsEmpty());
    EXPECT_FALSE(store.read(settings_keys::activityLogKey));
}

}  // namespace
}  // namespace tallowcrest

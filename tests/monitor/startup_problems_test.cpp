// How the problems of a start are told to the owner.

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_kinds.h"
#include "core/activity_log.h"
#include "core/record_json.h"
#include "core/settings/settings.h"
#include "monitor/system_monitor.h"
#include "tests/support/fake_machine.h"

namespace tallowcrest {
namespace {

using ::testing::IsEmpty;

class StartupProblems : public ::testing::Test {
protected:
    SystemMonitor& start(std::vector<std::string> problems) {
        machine.startupProblems = std::move(problems);
        return machine.monitor();
    }

    FakeMachine machine;
};

TEST_F(StartupProblems, AreRecordedAsMessages) {
    SystemMonitor& started = start({"First.", "Second."});
    EXPECT_EQ(started.log().lastAction(), "Second.");
    const auto& events = started.log().activityLog();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].title, "Action");
    EXPECT_EQ(events[0].kind, ActivityKind::action);
    EXPECT_EQ(events[0].detail, "Second.");
    EXPECT_EQ(events[1].detail, "First.");
}

TEST_F(StartupProblems, AreKeptAboveEarlierEvents) {
    const std::vector<ActivityEvent> earlier{{UUID::random(), Date{1}, "Action", "Earlier."}};
    machine.store.write(settings_keys::activityLogKey,
                        JSONData{record_json::encode(earlier).value()});
    start({"Now."});
    const auto stored = machine.store.read(settings_keys::activityLogKey);
    ASSERT_TRUE(stored.has_value());
    const auto events = record_json::decodeActivityLog(std::get<JSONData>(*stored).text);
    ASSERT_TRUE(events && events->size() == 2);
    EXPECT_EQ((*events)[0].detail, "Now.");
    EXPECT_EQ((*events)[1].detail, "Earlier.");
}

TEST_F(StartupProblems, WithoutAnyNothingIsRecorded) {
    EXPECT_EQ(start({}).log().lastAction(), "Monitoring started.");
    EXPECT_THAT(machine.monitor().log().activityLog(), IsEmpty());
    EXPECT_FALSE(machine.store.read(settings_keys::activityLogKey));
}

}  // namespace
}  // namespace tallowcrest

#include "core/activity_log.h"

#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"

namespace tallowcrest {
namespace {

using ::testing::IsEmpty;

class ActivityLogTest : public ::testing::Test {
protected:
    ActivityLog makeLog(std::vector<ActivityEvent> stored = {}) {
        return ActivityLog(clock, observable, std::move(stored),
                           [this](const auto& events) { saves.push_back(events); });
    }

    static std::vector<std::string> titles(const std::vector<ActivityEvent>& events) {
        std::vector<std::string> result;
        for (const ActivityEvent& event : events) {
            result.push_back(event.title);
        }
        return result;
    }

    ManualClock clock;
    ManualMainQueue queue;
    Observable observable{queue};
    std::vector<std::vector<ActivityEvent>> saves;
};

TEST_F(ActivityLogTest, StartsWithWhatWasStoredAndSavesNothing) {
    const ActivityEvent stored{UUID::random(), Date{5}, "Warning", "Old"};
    const ActivityLog log = makeLog({stored});
    EXPECT_THAT(log.activityLog(), ::testing::ElementsAre(stored));
    EXPECT_EQ(log.lastAction(), "Monitoring started.");
    EXPECT_THAT(saves, IsEmpty());
}

TEST_F(ActivityLogTest, RecordsInFrontAndSavesTheWholeList) {
    ActivityLog log = makeLog();
    log.recordEvent("Warning", "First");
    clock.advance(std::chrono::seconds(3));
    log.recordEvent("AI", "Second");

    ASSERT_THAT(titles(log.activityLog()), ::testing::ElementsAre("AI", "Warning"));
    EXPECT_EQ(log.activityLog()[0].detail, "Second");
    EXPECT_EQ(log.activityLog()[0].date, clock.now());
    EXPECT_EQ(secondsBetween(log.activityLog()[1].date, log.activityLog()[0].date), 3.0);
    EXPECT_NE(log.activityLog()[0].id, log.activityLog()[1].id);
    ASSERT_EQ(saves.size(), 2U);
    EXPECT_EQ(saves[0].size(), 1U);
    EXPECT_EQ(saves[1], log.activityLog());
}

TEST_F(ActivityLogTest, RecordEventLeavesTheLastActionAlone) {
    ActivityLog log = makeLog();
    log.setLastAction("Scan finished.");
    log.recordEvent("Warning", "Memory is high");
    EXPECT_EQ(log.lastAction(), "Scan finished.");
}

TEST_F(ActivityLogTest, RecordMessageIsTheLastActionAndAnActionEvent) {
    ActivityLog log = makeLog();
    log.recordMessage("Copied the report.");
    EXPECT_EQ(log.lastAction(), "Copied the report.");
    ASSERT_EQ(log.activityLog().size(), 1U);
    EXPECT_EQ(log.activityLog()[0].title, "Action");
    EXPECT_EQ(log.activityLog()[0].detail, "Copied the report.");
    EXPECT_EQ(saves.size(), 1U);
}

TEST_F(ActivityLogTest, SettingTheLastActionRecordsAndSavesNothing) {
    ActivityLog log = makeLog();
    log.setLastAction("Checking...");
    EXPECT_EQ(log.lastAction(), "Checking...");
    EXPECT_THAT(log.activityLog(), IsEmpty());
    EXPECT_THAT(saves, IsEmpty());
}

TEST_F(ActivityLogTest, KeepsTheNewestEightyEvents) {
    ActivityLog log = makeLog();
    for (int i = 1; i <= 80; ++i) {
        log.recordEvent("Event " + std::to_string(i), "");
    }
    EXPECT_EQ(log.activityLog().size(), 80U);
    EXPECT_EQ(log.activityLog().back().title, "Event 1");

    log.recordEvent("Event 81", "");
    EXPECT_EQ(log.activityLog().size(), 80U);
    EXPECT_EQ(log.activityLog().front().title, "Event 81");
    EXPECT_EQ(log.activityLog().back().title, "Event 2");
    EXPECT_EQ(saves.back(), log.activityLog());
}

TEST_F(ActivityLogTest, ClearingEmptiesSavesAndSaysSo) {
    ActivityLog log = makeLog();
    log.recordMessage("Something");
    log.clearActivityLog();
    EXPECT_THAT(log.activityLog(), IsEmpty());
    EXPECT_EQ(log.lastAction(), "Activity log cleared.");
    ASSERT_EQ(saves.size(), 2U);
    EXPECT_THAT(saves.back(), IsEmpty());
}

TEST_F(ActivityLogTest, TellsItsObserversOfEveryKindOfChange) {
    ActivityLog log = makeLog();
    int told = 0;
    const Subscription subscription = observable.subscribe([&told] { ++told; });
    log.setLastAction("a");
    queue.drain();
    EXPECT_EQ(told, 1);
    log.recordEvent("a", "b");
    queue.drain();
    EXPECT_EQ(told, 2);
    log.recordMessage("a");
    queue.drain();
    EXPECT_EQ(told, 3);
    log.clearActivityLog();
    queue.drain();
    EXPECT_EQ(told, 4);
}

}  // namespace
}  // namespace tallowcrest

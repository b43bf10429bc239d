#include "core/activity_log.h"

#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_kinds.h"
#include "core/observable.h"
#include "core/record_json.h"
#include "tests/support/each_of.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using ::testing::IsEmpty;

class ActivityLogTest : public ::testing::Test {
protected:
    /// What the store holds of the log.
    std::vector<ActivityEvent> storedEvents() const {
        return with.settings.load(stored::activityLog).value();
    }

    TestServices with;
    ActivityLog& log = with.log;
};

TEST_F(ActivityLogTest, StartsWithWhatWasStoredAndSavesNothing) {
    const std::vector<ActivityEvent> old{{UUID::random(), Date{5}, "Warning", "Old"}};
    const TestServices later([&](SettingsStore& store) {
        store.write(settings_keys::activityLogKey, JSONData{record_json::encode(old).value()});
    });
    EXPECT_EQ(later.log.activityLog(), old);
    EXPECT_EQ(later.log.lastAction(), "Monitoring started.");
    EXPECT_THAT(later.store.written, IsEmpty());
}

TEST_F(ActivityLogTest, RecordsInFrontAndSavesTheWholeList) {
    log.recordEvent(ActivityKind::warning, "First");
    EXPECT_EQ(storedEvents(), log.activityLog());
    with.clock.advance(std::chrono::seconds(3));
    log.recordEvent(ActivityKind::ai, "Second");

    ASSERT_THAT(eachOf(log.activityLog(), &ActivityEvent::title),
                ::testing::ElementsAre("AI", "Warning"));
    EXPECT_EQ(log.activityLog()[0].detail, "Second");
    EXPECT_EQ(log.activityLog()[0].date, with.clock.now());
    EXPECT_EQ(secondsBetween(log.activityLog()[1].date, log.activityLog()[0].date), 3.0);
    EXPECT_NE(log.activityLog()[0].id, log.activityLog()[1].id);
    EXPECT_THAT(with.store.written, ::testing::SizeIs(2));
    EXPECT_EQ(storedEvents(), log.activityLog());
}

TEST_F(ActivityLogTest, RecordsTheWordsOfAnOutcomeAndHandsItOn) {
    for (const Outcome& outcome : {Outcome::done("Done."), Outcome::asked("Asked."),
                                   Outcome::refused("Refused."), Outcome::failed("Failed.")}) {
        EXPECT_EQ(log.record(outcome), outcome);
        EXPECT_EQ(log.lastAction(), outcome.message);
        EXPECT_EQ(log.activityLog().front().kind, ActivityKind::action);
        EXPECT_EQ(log.activityLog().front().detail, outcome.message);
    }
    EXPECT_THAT(log.activityLog(), ::testing::SizeIs(4));
}

TEST_F(ActivityLogTest, RecordsNothingOfAnOutcomeWithoutWords) {
    for (const Outcome& outcome : {Outcome::done(), Outcome::asked(), Outcome::ignored()}) {
        EXPECT_EQ(log.record(outcome), outcome);
    }
    EXPECT_EQ(log.lastAction(), "Monitoring started.");
    EXPECT_THAT(log.activityLog(), IsEmpty());
    EXPECT_THAT(with.store.written, IsEmpty());
}

TEST(OutcomeTest, IsAcceptedWhenItIsDoneOrAsked) {
    EXPECT_TRUE(Outcome::done().isAccepted());
    EXPECT_TRUE(Outcome::asked().isAccepted());
    EXPECT_FALSE(Outcome::refused("No.").isAccepted());
    EXPECT_FALSE(Outcome::ignored().isAccepted());
    EXPECT_FALSE(Outcome::failed("No.").isAccepted());
}

TEST_F(ActivityLogTest, OnlyAMessageIsBothAnEventAndTheLastAction) {
    log.setLastAction("Checking...");
    EXPECT_EQ(log.lastAction(), "Checking...");
    EXPECT_THAT(log.activityLog(), IsEmpty());
    EXPECT_THAT(with.store.written, IsEmpty());
    log.recordEvent(ActivityKind::warning, "Memory is high");
    EXPECT_EQ(log.lastAction(), "Checking...");
    log.recordMessage("Copied the report.");
    EXPECT_EQ(log.lastAction(), "Copied the report.");
    ASSERT_EQ(log.activityLog().size(), 2U);
    EXPECT_EQ(log.activityLog()[0].title, "Action");
    EXPECT_EQ(log.activityLog()[0].detail, "Copied the report.");
    EXPECT_THAT(with.store.written, ::testing::SizeIs(2));
}

TEST_F(ActivityLogTest, KeepsTheNewestEightyEvents) {
    for (int i = 1; i <= 80; ++i) {
        log.recordEvent(ActivityKind::chat, "Event " + std::to_string(i));
    }
    EXPECT_EQ(log.activityLog().size(), 80U);
    EXPECT_EQ(log.activityLog().back().detail, "Event 1");

    log.recordEvent(ActivityKind::chat, "Event 81");
    EXPECT_EQ(log.activityLog().size(), 80U);
    EXPECT_EQ(log.activityLog().front().detail, "Event 81");
    EXPECT_EQ(log.activityLog().back().detail, "Event 2");
    EXPECT_EQ(storedEvents(), log.activityLog());
}

TEST_F(ActivityLogTest, ClearingEmptiesSavesAndSaysSo) {
    log.recordMessage("Something");
    log.clearActivityLog();
    EXPECT_THAT(log.activityLog(), IsEmpty());
    EXPECT_EQ(log.lastAction(), "Activity log cleared.");
    EXPECT_THAT(with.store.written, ::testing::SizeIs(2));
    EXPECT_THAT(storedEvents(), IsEmpty());
}

TEST_F(ActivityLogTest, TellsItsObserversOfEveryKindOfChange) {
    int told = 0;
    const Subscription subscription = log.observable().subscribe([&told] { ++told; });
    int expected = 0;
    const auto expectTold = [&](auto change) {
        change();
        with.mainQueue.drain();
        EXPECT_EQ(told, ++expected);
    };
    expectTold([this] { log.setLastAction("a"); });
    expectTold([this] { log.recordEvent(ActivityKind::chat, "b"); });
    expectTold([this] { log.recordMessage("a"); });
    expectTold([this] { log.clearActivityLog(); });
}

}  // namespace
}  // namespace tallowcrest

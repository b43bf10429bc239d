#include <chrono>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/automation.h"
#include "tests/monitor/auto_rules_fixture.h"

namespace tallowcrest {
namespace {

class LastActed : public AutoRulesFixture {};

TEST_F(LastActed, IsAbsentBeforeAnyAction) {
    log.recordMessage("Selected editor, currently the heaviest process.");
    for (const AutomationSwitch which : allAutomationSwitches) {
        EXPECT_EQ(load_rules::lastActed(which, rules.dates(), log.activityLog()), std::nullopt);
    }
}

TEST_F(LastActed, IsTheDateOfEachRulesLastAction) {
    using S = AutomationSwitch;
    const auto acted = [this](S which) {
        return load_rules::lastActed(which, rules.dates(), log.activityLog());
    };
    addProcess(700, "/usr/bin/editor");
    set(&Settings::autoSelectTopOffender, true);
    run(99.0);
    const Date selected = clock.now();
    EXPECT_EQ(acted(S::autoSelectTopOffender), selected);
    EXPECT_EQ(acted(S::autoPurgeSustainedMemory), std::nullopt);

    clock.advance(std::chrono::minutes(1));
    set(&Settings::autoPurgeSustainedMemory, true);
    appendHistory(30, 95.0);
    run(99.0);
    const Date purged = clock.now();
    EXPECT_EQ(acted(S::autoSelectTopOffender), selected) << "it was selected already";
    EXPECT_EQ(acted(S::autoPurgeSustainedMemory), purged);
    EXPECT_EQ(acted(S::autoScanRemoteMacs), std::nullopt);

    clock.advance(std::chrono::minutes(1));
    set(&Settings::autoScanRemoteMacs, true);
    remote.setDevices({tailDevice("macOS", true)});
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

    // Clearing the log does not affect the dates of this run.
    EXPECT_EQ(load_rules::lastActed(S::autoSelectTopOffender, rules.dates(), {}), selected);
    EXPECT_EQ(load_rules::lastActed(S::autoPurgeSustainedMemory, rules.dates(), {}), purged);

    // After a restart only the log is left.
    const AutomationDates none;
    EXPECT_EQ(load_rules::lastActed(S::autoSelectTopOffender, none, log.activityLog()), selected);
    EXPECT_EQ(load_rules::lastActed(S::autoPurgeSustainedMemory, none, log.activityLog()), purged);
    EXPECT_EQ(load_rules::lastActed(S::autoScanRemoteMacs, none, log.activityLog()), std::nullopt);

    clock.advance(std::chrono::minutes(1));
    review.clearOperationTarget();
    run(99.0);
    EXPECT_EQ(acted(S::autoSelectTopOffender), clock.now()) << "the newest entry counts";
}

}  // namespace
}  // namespace tallowcrest

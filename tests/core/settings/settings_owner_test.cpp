#include "core/settings/settings_owner.h"

#include <cmath>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/observable.h"
#include "tests/core/settings/stored_settings.h"
#include "tests/support/recording_store.h"

namespace tallowcrest {
namespace {

namespace keys = settings_keys;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Over both kinds of stores ----------------------------------------------------------------------

class ChangedSettings : public StoredSettings {
protected:
    SettingsOwner settings{store(), mainQueue, "owner"};
};
TALLOWCREST_OVER_BOTH_STORES(ChangedSettings);

TEST_P(ChangedSettings, AreFoundByTheNextStart) {
    const auto expectFound = [this](auto Settings::*field, const auto& value) {
        ASSERT_NE(settings.values().*field, value);
        settings.set(field, value);
        EXPECT_EQ(settings.values().*field, value);
        EXPECT_EQ(load().values().*field, value);
    };
    // The stop is set by itself: at a start it holds back what acts by itself.
    for (const auto& flag : keys::flags) {
        if (flag.key != keys::automationEmergencyStopKey) {
            expectFound(flag.field, !(settings.values().*flag.field));
        }
    }
    expectFound(&Settings::warningThreshold, 65.5);
    expectFound(&Settings::diskMinimumFreeGB, 0.25);
    expectFound(&Settings::diskCleanupAgeDays, 90.0);
    expectFound(&Settings::diskMaxCleanupGB, 1.5);
    expectFound(&Settings::sshUsername, std::string());
    expectFound(&Settings::openAIModel, std::string("other"));
    expectFound(&Settings::protectedAppNames, TextSet{"Docker", "Arc"});
    expectFound(&Settings::collapsedSections, TextSet{"gauges"});
    expectFound(&Settings::aiAutonomyMode, AIAutonomyMode::autopilot);
    expectFound(&Settings::aiAutonomyMode, AIAutonomyMode::trusted);
    expectFound(&Settings::automationEmergencyStopEngaged, true);
}

TEST_P(ChangedSettings, WhatACleanUpMayDoIsClampedBeforeItIsStored) {
    for (const auto& [given, kept] : std::vector<std::pair<double, double>>{
             {3.0, 7.0}, {30.5, 30.5}, {1000.0, 365.0}, {std::nan(""), 30.0}}) {
        settings.set(&Settings::diskCleanupAgeDays, given);
        EXPECT_EQ(settings.values().diskCleanupAgeDays, kept) << given;
        EXPECT_EQ(store().read(keys::diskCleanupAgeKey), SettingsValue(kept)) << given;
    }
    for (const auto& [given, kept] : std::vector<std::pair<double, double>>{
             {0.0, 0.1}, {1.5, 1.5}, {5.0, 2.0}, {std::nan(""), 2.0}}) {
        settings.set(&Settings::diskMaxCleanupGB, given);
        EXPECT_EQ(settings.values().diskMaxCleanupGB, kept) << given;
        EXPECT_EQ(store().read(keys::diskMaxCleanupKey), SettingsValue(kept)) << given;
    }
}

TEST_P(ChangedSettings, TheOthersAreStoredAsTheyAreGiven) {
    settings.set(&Settings::diskMinimumFreeGB, -5.0);
    EXPECT_EQ(settings.values().diskMinimumFreeGB, -5.0);
    EXPECT_EQ(load().values().diskMinimumFreeGB, -5.0);

    settings.set(&Settings::warningThreshold, 64.9);
    EXPECT_EQ(settings.values().warningThreshold, 64.9);
    EXPECT_EQ(store().read(keys::thresholdKey), SettingsValue(64.9));
    EXPECT_EQ(load().values().warningThreshold, 82.0);
}

// Writes and notifications -----------------------------------------------------------------------

class SettingsOwnerTest : public ::testing::Test {
protected:
    SettingsOwnerTest() {
        store.values.write(keys::openAIModelKey, std::string("stored"));
        settings.emplace(store, mainQueue, "owner");
        subscription = settings->observable().subscribe([this] { ++told; });
    }

    ManualMainQueue mainQueue;
    RecordingStore store;
    std::optional<SettingsOwner> settings;
    Subscription subscription;
    int told = 0;
};

TEST_F(SettingsOwnerTest, AChangeIsWrittenAtOnceAndTold) {
    settings->set(&Settings::warningThreshold, 70.0);
    settings->set(&Settings::warningThreshold, 71.0);
    EXPECT_THAT(store.written, ElementsAre(keys::thresholdKey, keys::thresholdKey));
    EXPECT_EQ(told, 0);
    mainQueue.drain();
    EXPECT_EQ(told, 1);
}

TEST_F(SettingsOwnerTest, AnUnchangedStoredValueIsNotWrittenOrNotified) {
    settings->set(&Settings::openAIModel, "stored");
    settings->set(&Settings::diskMaxCleanupGB, 1.0);
    mainQueue.drain();
    EXPECT_THAT(store.written, ElementsAre(keys::diskMaxCleanupKey));
    settings->set(&Settings::diskMaxCleanupGB, 1.0);
    mainQueue.drain();
    EXPECT_THAT(store.written, ElementsAre(keys::diskMaxCleanupKey));
    EXPECT_EQ(told, 1);
}

TEST_F(SettingsOwnerTest, ASavingProblemIsKeptAndNotifiedUntilItIsOver) {
    EXPECT_EQ(settings->savingProblem(), "");
    for (const std::string sentence : {"No room.", ""}) {
        settings->setSavingProblem(sentence);
        mainQueue.drain();
        EXPECT_EQ(settings->savingProblem(), sentence);
    }
    EXPECT_EQ(told, 2);
    EXPECT_THAT(store.written, IsEmpty());
}

TEST_F(SettingsOwnerTest, AValueThatOnlyItsRuleGivesIsTheSameValue) {
    settings->set(&Settings::diskMaxCleanupGB, 1.0);
    settings->set(&Settings::diskMaxCleanupGB, 2.0);
    store.written.clear();
    settings->set(&Settings::diskMaxCleanupGB, 7.5);
    EXPECT_THAT(store.written, IsEmpty());
}

TEST_F(SettingsOwnerTest, WhatIsHeldButNotStoredIsWritten) {
    settings->set(&Settings::diskMaxCleanupGB, 2.0);
    EXPECT_EQ(store.read(keys::diskMaxCleanupKey), SettingsValue(2.0)) << "a default is none";
    store.values.write(keys::diskMaxCleanupKey, 5.0);
    settings->set(&Settings::diskMaxCleanupGB, 2.0);
    EXPECT_EQ(store.read(keys::diskMaxCleanupKey), SettingsValue(2.0));
    store.values.write(keys::diskMaxCleanupKey, std::string("2.0"));
    settings->set(&Settings::diskMaxCleanupGB, 2.0);
    EXPECT_EQ(store.read(keys::diskMaxCleanupKey), SettingsValue(2.0)) << "of another kind";
}

TEST_F(SettingsOwnerTest, ListsAreWrittenAndNotTold) {
    settings->save(stored::ruleDrafts, {});
    settings->save(stored::history, {});
    mainQueue.drain();
    EXPECT_THAT(store.written, ElementsAre(keys::aiRuleDraftsKey, keys::historyKey));
    EXPECT_EQ(told, 0);
}

}  // namespace
}  // namespace tallowcrest

#include "core/settings.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/settings_keys.h"
#include "tests/core/stored_settings.h"

namespace tallowcrest {
namespace {

namespace keys = settings_keys;
using ::testing::IsEmpty;

class LoadedSettings : public StoredSettings {};
TALLOWCREST_OVER_BOTH_STORES(LoadedSettings);

/// A store that counts what is written to it, and remembers which keys were asked for.
class WatchedStore final : public SettingsStore {
public:
    std::optional<SettingsValue> read(std::string_view key) const override {
        asked.emplace_back(key);
        return values.read(key);
    }
    void write(std::string_view key, const SettingsValue& value) override {
        values.write(key, value);
        ++writes;
    }

    mutable std::vector<std::string> asked;
    MemorySettingsStore values;
    int writes = 0;
};

TEST_P(LoadedSettings, HaveTheirDefaultsWhenNothingIsStored) {
    const StoredState state = load();
    const Settings& settings = state.settings;
    EXPECT_EQ(settings.warningThreshold, 82.0);
    EXPECT_THAT(settings.protectedAppNames, IsEmpty());
    EXPECT_THAT(settings.collapsedSections, IsEmpty());
    EXPECT_TRUE(settings.autoSelectTopOffender);
    EXPECT_FALSE(settings.autoPurgeSustainedMemory);
    EXPECT_FALSE(settings.autoScanRemoteMacs);
    EXPECT_EQ(settings.sshUsername, "owner");
    EXPECT_FALSE(settings.firstRunComplete);
    EXPECT_EQ(settings.openAIModel, "gpt-5.6-luna");
    EXPECT_FALSE(settings.aiSafeActionsEnabled);
    EXPECT_TRUE(settings.notificationsIncludeActions);
    EXPECT_TRUE(settings.aiRedactProcessDetails);
    EXPECT_TRUE(settings.aiRequirePreview);
    EXPECT_EQ(settings.aiAutonomyMode, AIAutonomyMode::apprentice);
    EXPECT_FALSE(settings.diskAutopilotEnabled);
    EXPECT_EQ(settings.diskMinimumFreeGB, 20.0);
    EXPECT_EQ(settings.diskCleanupAgeDays, 30.0);
    EXPECT_EQ(settings.diskMaxCleanupGB, 2.0);
    EXPECT_FALSE(settings.automationEmergencyStopEngaged);
    EXPECT_THAT(state.activityLog, IsEmpty());
    EXPECT_THAT(state.history, IsEmpty());
    EXPECT_THAT(state.remoteTopAppSamples, IsEmpty());
    EXPECT_THAT(state.aiRuleDrafts, IsEmpty());
    EXPECT_THAT(state.remoteProfiles, IsEmpty());
    EXPECT_THAT(state.remoteHistory, IsEmpty());
    EXPECT_THAT(state.aiTrustRecords, IsEmpty());
    EXPECT_EQ(state.aiChatMessages, std::nullopt);
}

TEST(SettingsLoad, AsksForEveryKeyButTheBookmarkOnceAndWritesNothing) {
    WatchedStore store;
    // Values that the load does not take as they are: none of them is corrected in the store.
    store.values.write(keys::thresholdKey, 200.0);
    store.values.write(keys::diskMaxCleanupKey, 5.0);
    store.values.write(keys::historyKey, JSONData{"broken"});
    store.values.write(keys::automationEmergencyStopKey, true);
    store.values.write(keys::diskAutopilotKey, true);
    loadStoredState(store, "owner");
    EXPECT_EQ(store.writes, 0);
    EXPECT_THAT(
        store.asked,
        ::testing::UnorderedElementsAre(
            "Tallowcrest.warningThreshold", "Tallowcrest.activityLog", "Tallowcrest.protectedApps",
            "Tallowcrest.history", "Tallowcrest.remoteTopApps", "Tallowcrest.collapsedSections",
            "Tallowcrest.autoSelectTopOffender", "Tallowcrest.autoPurgeSustainedMemory",
            "Tallowcrest.autoScanRemoteMacs", "Tallowcrest.sshUsername",
            "Tallowcrest.firstRunComplete", "Tallowcrest.openAIModel", "Tallowcrest.aiSafeActions",
            "Tallowcrest.aiRuleDrafts", "Tallowcrest.remoteProfiles", "Tallowcrest.remoteHistory",
            "Tallowcrest.notificationActions", "Tallowcrest.aiRedactProcessDetails",
            "Tallowcrest.aiRequirePreview", "Tallowcrest.aiTrustRecords",
            "Tallowcrest.aiAutonomyMode", "Tallowcrest.aiChatMessages",
            "Tallowcrest.diskAutopilotEnabled", "Tallowcrest.diskMinimumFreeGB",
            "Tallowcrest.diskCleanupAgeDays", "Tallowcrest.diskMaxCleanupGB",
            "Tallowcrest.automationEmergencyStop"));
    EXPECT_EQ(keys::storageAnalysisBookmarkKey, "Tallowcrest.storageAnalysisBookmark");
}

TEST(SettingsKeys, StandInTheTableOnceEach) {
    std::set<std::string_view> names;
    for (const keys::Key& key : keys::all) {
        EXPECT_TRUE(names.insert(key.name).second) << key.name;
        EXPECT_TRUE(key.name.starts_with("Tallowcrest.")) << key.name;
    }
}

TEST(SettingsKinds, AreThoseOfTheValues) {
    const std::vector<std::pair<SettingsKind, SettingsValue>> values{
        {SettingsKind::flag, SettingsValue(true)},
        {SettingsKind::number, SettingsValue(75.0)},
        {SettingsKind::text, SettingsValue(std::string("autopilot"))},
        {SettingsKind::textList, SettingsValue(SettingsTextList{"gauges"})},
        {SettingsKind::table, SettingsValue(SettingsTable{{"mac", 3}})},
        {SettingsKind::json, SettingsValue(JSONData{"[]"})},
        {SettingsKind::data, SettingsValue(SettingsData{"bytes"})},
    };
    for (const auto& [kind, value] : values) {
        EXPECT_EQ(kindOf(value), kind);
    }
}

TEST(SettingsKeys, TellADefaultForEveryFlagNumberAndFixedText) {
    for (const keys::Key& key : keys::all) {
        EXPECT_EQ(key.kind == SettingsKind::flag, std::holds_alternative<bool>(key.whenAbsent))
            << key.name;
        EXPECT_EQ(key.kind == SettingsKind::number, std::holds_alternative<double>(key.whenAbsent))
            << key.name;
        if (std::holds_alternative<std::string_view>(key.whenAbsent)) {
            EXPECT_EQ(key.kind, SettingsKind::text) << key.name;
        }
    }
}

// The emergency stop -----------------------------------------------------------------------------

TEST(EmergencyStop, SwitchesOffWhatActsByItselfInMemoryAlone) {
    WatchedStore store;
    for (const std::string_view key :
         {keys::automationEmergencyStopKey, keys::diskAutopilotKey, keys::autoPurgeKey,
          keys::autoRemoteScanKey, keys::autoSelectKey, keys::aiSafeActionsKey}) {
        store.values.write(key, true);
    }
    store.values.write(keys::aiAutonomyModeKey, std::string("autopilot"));
    const Settings settings = loadStoredState(store, "owner").settings;
    EXPECT_TRUE(settings.automationEmergencyStopEngaged);
    EXPECT_FALSE(settings.diskAutopilotEnabled);
    EXPECT_FALSE(settings.autoPurgeSustainedMemory);
    EXPECT_FALSE(settings.autoScanRemoteMacs);
    EXPECT_EQ(settings.aiAutonomyMode, AIAutonomyMode::apprentice);
    EXPECT_TRUE(settings.autoSelectTopOffender);
    EXPECT_TRUE(settings.aiSafeActionsEnabled);
    EXPECT_EQ(store.writes, 0);
    EXPECT_EQ(store.values.read(keys::aiAutonomyModeKey), SettingsValue(std::string("autopilot")));
    EXPECT_EQ(store.values.read(keys::diskAutopilotKey), SettingsValue(true));
}

TEST(EmergencyStop, ThatIsNotEngagedLeavesTheSwitchesOn) {
    MemorySettingsStore store;
    for (const std::string_view key :
         {keys::diskAutopilotKey, keys::autoPurgeKey, keys::autoRemoteScanKey}) {
        store.write(key, true);
    }
    store.write(keys::automationEmergencyStopKey, false);
    store.write(keys::aiAutonomyModeKey, std::string("trusted"));
    const Settings settings = loadStoredState(store, "owner").settings;
    EXPECT_TRUE(settings.diskAutopilotEnabled);
    EXPECT_TRUE(settings.autoPurgeSustainedMemory);
    EXPECT_TRUE(settings.autoScanRemoteMacs);
    EXPECT_EQ(settings.aiAutonomyMode, AIAutonomyMode::trusted);
}

}  // namespace
}  // namespace tallowcrest

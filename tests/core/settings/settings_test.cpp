#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/core/settings/stored_settings.h"

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
    void write(std::string_view key, const std::optional<SettingsValue>& value) override {
        values.write(key, value);
        ++writes;
    }

    mutable std::vector<std::string> asked;
    MemorySettingsStore values;
    int writes = 0;
};

TEST_P(LoadedSettings, HaveTheirDefaultsWhenNothingIsStored) {
    const SettingsOwner& owner = load();
    const Settings& settings = owner.values();
    EXPECT_EQ(settings.warningThreshold, 82.0);
    EXPECT_THAT(settings.protectedAppNames, IsEmpty());
    EXPECT_THAT(settings.collapsedSections, IsEmpty());
    EXPECT_TRUE(settings.autoSelectTopOffender);
    EXPECT_FALSE(settings.autoPurgeSustainedMemory);
    EXPECT_FALSE(settings.autoScanRemoteMacs);
    EXPECT_FALSE(settings.includeLinuxMachines);
    EXPECT_EQ(settings.sshUsername, "owner");
    EXPECT_FALSE(settings.firstRunComplete);
    EXPECT_EQ(settings.openAIModel, "gpt-5.6-luna");
    EXPECT_EQ(settings.aiEndpoint, "");
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
    EXPECT_THAT(owner.loadRemoteTopApps(), IsEmpty());
    EXPECT_EQ(owner.load(stored::activityLog), std::nullopt);
    EXPECT_EQ(owner.load(stored::history), std::nullopt);
    EXPECT_EQ(owner.load(stored::remoteHistory), std::nullopt);
    EXPECT_EQ(owner.load(stored::chatMessages), std::nullopt);
    EXPECT_EQ(owner.load(stored::ruleDrafts), std::nullopt);
    EXPECT_EQ(owner.load(stored::remoteProfiles), std::nullopt);
    EXPECT_EQ(owner.load(stored::trustRecords), std::nullopt);
}

TEST(SettingsLoad, AsksForEveryValueOnceAndWritesNothing) {
    WatchedStore store;
    // Values that the load does not take as they are: none of them is corrected in the store.
    store.values.write(keys::thresholdKey, 200.0);
    store.values.write(keys::diskMaxCleanupKey, 5.0);
    store.values.write(keys::historyKey, JSONData{"broken"});
    store.values.write(keys::automationEmergencyStopKey, true);
    store.values.write(keys::diskAutopilotKey, true);
    ManualMainQueue mainQueue;
    const SettingsOwner owner(store, mainQueue, "owner");
    EXPECT_THAT(store.asked,
                ::testing::UnorderedElementsAre(
                    "Tallowcrest.warningThreshold", "Tallowcrest.protectedApps",
                    "Tallowcrest.collapsedSections", "Tallowcrest.autoSelectTopOffender",
                    "Tallowcrest.autoPurgeSustainedMemory", "Tallowcrest.autoScanRemoteMacs",
                    "Tallowcrest.includeLinuxMachines", "Tallowcrest.sshUsername",
                    "Tallowcrest.firstRunComplete", "Tallowcrest.openAIModel",
                    "Tallowcrest.aiEndpoint", "Tallowcrest.aiSafeActions",
                    "Tallowcrest.notificationActions", "Tallowcrest.aiRedactProcessDetails",
                    "Tallowcrest.aiRequirePreview", "Tallowcrest.aiAutonomyMode",
                    "Tallowcrest.diskAutopilotEnabled", "Tallowcrest.diskMinimumFreeGB",
                    "Tallowcrest.diskCleanupAgeDays", "Tallowcrest.diskMaxCleanupGB",
                    "Tallowcrest.automationEmergencyStop", "proUpdaterLastCheck"));
    store.asked.clear();
    owner.load(stored::activityLog);
    owner.load(stored::history);
    owner.load(stored::remoteHistory);
    owner.load(stored::chatMessages);
    owner.load(stored::ruleDrafts);
    owner.load(stored::remoteProfiles);
    owner.load(stored::trustRecords);
    owner.loadRemoteTopApps();
    EXPECT_THAT(store.asked,
                ::testing::ElementsAre("Tallowcrest.activityLog", "Tallowcrest.history",
                                       "Tallowcrest.remoteHistory", "Tallowcrest.aiChatMessages",
                                       "Tallowcrest.aiRuleDrafts", "Tallowcrest.remoteProfiles",
                                       "Tallowcrest.aiTrustRecords", "Tallowcrest.remoteTopApps"));
    EXPECT_EQ(store.writes, 0);
}

TEST(SettingsKeys, AreListedOnceWithTheirKind) {
    std::map<SettingsKind, std::vector<std::string_view>> names;
    for (const keys::Key& key : keys::all) {
        names[key.kind].push_back(key.name);
    }
    using ::testing::Pair;
    using ::testing::UnorderedElementsAre;
    EXPECT_THAT(
        names,
        UnorderedElementsAre(
            Pair(SettingsKind::flag,
                 UnorderedElementsAre(
                     "Tallowcrest.autoSelectTopOffender", "Tallowcrest.autoPurgeSustainedMemory",
                     "Tallowcrest.autoScanRemoteMacs", "Tallowcrest.includeLinuxMachines",
                     "Tallowcrest.firstRunComplete", "Tallowcrest.aiSafeActions",
                     "Tallowcrest.notificationActions", "Tallowcrest.aiRedactProcessDetails",
                     "Tallowcrest.aiRequirePreview", "Tallowcrest.diskAutopilotEnabled",
                     "Tallowcrest.automationEmergencyStop")),
            Pair(SettingsKind::number,
                 UnorderedElementsAre("Tallowcrest.warningThreshold",
                                      "Tallowcrest.diskMinimumFreeGB",
                                      "Tallowcrest.diskCleanupAgeDays",
                                      "Tallowcrest.diskMaxCleanupGB", "proUpdaterLastCheck")),
            Pair(SettingsKind::text,
                 UnorderedElementsAre("Tallowcrest.sshUsername", "Tallowcrest.openAIModel",
                                      "Tallowcrest.aiEndpoint", "Tallowcrest.aiAutonomyMode")),
            Pair(SettingsKind::textList, UnorderedElementsAre("Tallowcrest.protectedApps",
                                                              "Tallowcrest.collapsedSections")),
            Pair(SettingsKind::table, UnorderedElementsAre("Tallowcrest.remoteTopApps")),
            Pair(SettingsKind::json,
                 UnorderedElementsAre("Tallowcrest.activityLog", "Tallowcrest.history",
                                      "Tallowcrest.remoteHistory", "Tallowcrest.aiChatMessages",
                                      "Tallowcrest.aiRuleDrafts", "Tallowcrest.remoteProfiles",
                                      "Tallowcrest.aiTrustRecords")),
            Pair(SettingsKind::data, UnorderedElementsAre("Tallowcrest.storageAnalysisBookmark"))));
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

// The emergency stop -----------------------------------------------------------------------------

TEST(EmergencyStop, SwitchesOffWhatActsByItselfInMemoryAlone) {
    ManualMainQueue mainQueue;
    WatchedStore store;
    for (const std::string_view key :
         {keys::automationEmergencyStopKey, keys::diskAutopilotKey, keys::autoPurgeKey,
          keys::autoRemoteScanKey, keys::autoSelectKey, keys::aiSafeActionsKey}) {
        store.values.write(key, true);
    }
    store.values.write(keys::aiAutonomyModeKey, std::string("autopilot"));
    const Settings settings = SettingsOwner(store, mainQueue, "owner").values();
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

TEST(EmergencyStop, LeavesTheSwitchesOnWhenNotEngaged) {
    ManualMainQueue mainQueue;
    MemorySettingsStore store;
    for (const std::string_view key :
         {keys::diskAutopilotKey, keys::autoPurgeKey, keys::autoRemoteScanKey}) {
        store.write(key, true);
    }
    store.write(keys::automationEmergencyStopKey, false);
    store.write(keys::aiAutonomyModeKey, std::string("trusted"));
    const Settings settings = SettingsOwner(store, mainQueue, "owner").values();
    EXPECT_TRUE(settings.diskAutopilotEnabled);
    EXPECT_TRUE(settings.autoPurgeSustainedMemory);
    EXPECT_TRUE(settings.autoScanRemoteMacs);
    EXPECT_EQ(settings.aiAutonomyMode, AIAutonomyMode::trusted);
}

}  // namespace
}  // namespace tallowcrest

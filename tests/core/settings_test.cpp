#include "core/settings.h"

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/record_json.h"
#include "core/settings_keys.h"

namespace tallowcrest {
namespace {

namespace keys = settings_keys;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

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

StoredState loadWith(std::string_view key, const SettingsValue& value) {
    MemorySettingsStore store;
    store.write(key, value);
    return loadStoredState(store, "owner");
}

Settings settingsWith(std::string_view key, const SettingsValue& value) {
    return loadWith(key, value).settings;
}

/// One value of every kind that a store can hold.
const std::vector<SettingsValue>& oneOfEachKind() {
    static const std::vector<SettingsValue> values{
        SettingsValue(true),
        SettingsValue(75.0),
        SettingsValue(std::string("trusted")),
        SettingsValue(SettingsTextList{"gauges"}),
        SettingsValue(SettingsTable{{"mac", 3}}),
        SettingsValue(JSONData{"[]"}),
    };
    return values;
}

TEST(SettingsDefaults, HoldForAnEmptyStore) {
    const StoredState state = loadStoredState(MemorySettingsStore{}, "owner");
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

struct NumberCase {
    double stored;
    double loaded;
};

TEST(WarningThreshold, IsIgnoredOutsideItsRange) {
    for (const auto& [stored, loaded] : std::vector<NumberCase>{
             {64.9, 82.0},
             {65.0, 65.0},
             {80.0, 80.0},
             {95.0, 95.0},
             {95.1, 82.0},
             {0.0, 82.0},
             {-70.0, 82.0},
             {notANumber, 82.0},
             {infinity, 82.0},
             {-infinity, 82.0},
         }) {
        EXPECT_EQ(settingsWith(keys::thresholdKey, stored).warningThreshold, loaded) << stored;
    }
}

TEST(DiskMinimumFree, IsNotClamped) {
    for (const double stored : {-5.0, 0.0, 0.5, 1e6, infinity}) {
        EXPECT_EQ(settingsWith(keys::diskMinimumFreeKey, stored).diskMinimumFreeGB, stored);
    }
    EXPECT_TRUE(std::isnan(settingsWith(keys::diskMinimumFreeKey, notANumber).diskMinimumFreeGB));
}

TEST(DiskCleanupAge, IsClampedAtLoadAndBySetters) {
    for (const auto& [given, clamped] : std::vector<NumberCase>{
             {3.0, 7.0},
             {7.0, 7.0},
             {7.1, 7.1},
             {30.0, 30.0},
             {365.0, 365.0},
             {365.1, 365.0},
             {1000.0, 365.0},
             {-1.0, 7.0},
             {notANumber, 30.0},
             {infinity, 30.0},
             {-infinity, 30.0},
         }) {
        EXPECT_EQ(settingsWith(keys::diskCleanupAgeKey, given).diskCleanupAgeDays, clamped)
            << given;
        EXPECT_EQ(clampedAgeDays(given), clamped) << given;
    }
}

TEST(DiskMaxCleanup, IsClampedAtLoadAndBySetters) {
    for (const auto& [given, clamped] : std::vector<NumberCase>{
             {5.0, 2.0},
             {2.0, 2.0},
             {1.5, 1.5},
             {0.11, 0.11},
             {0.1, 0.1},
             {0.05, 0.1},
             {0.0, 0.1},
             {-3.0, 0.1},
             {notANumber, 2.0},
             {infinity, 2.0},
             {-infinity, 2.0},
         }) {
        EXPECT_EQ(settingsWith(keys::diskMaxCleanupKey, given).diskMaxCleanupGB, clamped) << given;
        EXPECT_EQ(clampedMaxGB(given), clamped) << given;
    }
}

TEST(SettingsNumbers, KeepTheirDefaultForAnyOtherKind) {
    for (const SettingsValue& value : oneOfEachKind()) {
        if (std::holds_alternative<double>(value)) {
            continue;
        }
        EXPECT_EQ(settingsWith(keys::thresholdKey, value).warningThreshold, 82.0);
        EXPECT_EQ(settingsWith(keys::diskMinimumFreeKey, value).diskMinimumFreeGB, 20.0);
        EXPECT_EQ(settingsWith(keys::diskCleanupAgeKey, value).diskCleanupAgeDays, 30.0);
        EXPECT_EQ(settingsWith(keys::diskMaxCleanupKey, value).diskMaxCleanupGB, 2.0);
    }
}

struct FlagCase {
    std::string_view key;
    bool Settings::*field;
    bool whenAbsent;
};

const std::vector<FlagCase>& allFlags() {
    static const std::vector<FlagCase> flags{
        {keys::autoSelectKey, &Settings::autoSelectTopOffender, true},
        {keys::notificationActionsKey, &Settings::notificationsIncludeActions, true},
        {keys::aiRedactProcessDetailsKey, &Settings::aiRedactProcessDetails, true},
        {keys::aiRequirePreviewKey, &Settings::aiRequirePreview, true},
        {keys::autoPurgeKey, &Settings::autoPurgeSustainedMemory, false},
        {keys::autoRemoteScanKey, &Settings::autoScanRemoteMacs, false},
        {keys::firstRunCompleteKey, &Settings::firstRunComplete, false},
        {keys::aiSafeActionsKey, &Settings::aiSafeActionsEnabled, false},
        {keys::diskAutopilotKey, &Settings::diskAutopilotEnabled, false},
        {keys::automationEmergencyStopKey, &Settings::automationEmergencyStopEngaged, false},
    };
    return flags;
}

TEST(SettingsFlags, AreTakenAsStored) {
    for (const auto& [key, field, whenAbsent] : allFlags()) {
        EXPECT_TRUE(settingsWith(key, true).*field) << key;
        EXPECT_FALSE(settingsWith(key, false).*field) << key;
    }
}

TEST(SettingsFlags, KeepTheirOwnDefaultWhenAbsentOrOfAnyOtherKind) {
    for (const auto& [key, field, whenAbsent] : allFlags()) {
        EXPECT_EQ(loadStoredState(MemorySettingsStore{}, "owner").settings.*field, whenAbsent)
            << key;
        for (const SettingsValue& value : oneOfEachKind()) {
            if (!std::holds_alternative<bool>(value)) {
                EXPECT_EQ(settingsWith(key, value).*field, whenAbsent) << key;
            }
        }
    }
}

TEST(AutonomyMode, KnowsTheExactTextsAlone) {
    const std::vector<std::pair<std::string, AIAutonomyMode>> cases{
        {"apprentice", AIAutonomyMode::apprentice}, {"trusted", AIAutonomyMode::trusted},
        {"autopilot", AIAutonomyMode::autopilot},   {"Trusted", AIAutonomyMode::apprentice},
        {"AUTOPILOT", AIAutonomyMode::apprentice},  {"trusted ", AIAutonomyMode::apprentice},
        {"", AIAutonomyMode::apprentice},           {"master", AIAutonomyMode::apprentice},
    };
    for (const auto& [text, mode] : cases) {
        EXPECT_EQ(settingsWith(keys::aiAutonomyModeKey, text).aiAutonomyMode, mode) << text;
    }
    for (const SettingsValue& value : oneOfEachKind()) {
        if (!std::holds_alternative<std::string>(value)) {
            EXPECT_EQ(settingsWith(keys::aiAutonomyModeKey, value).aiAutonomyMode,
                      AIAutonomyMode::apprentice);
        }
    }
}

TEST(SettingsTexts, AreKeptEvenWhenEmpty) {
    EXPECT_EQ(settingsWith(keys::sshUsernameKey, std::string("admin")).sshUsername, "admin");
    EXPECT_EQ(settingsWith(keys::sshUsernameKey, std::string()).sshUsername, "");
    EXPECT_EQ(settingsWith(keys::openAIModelKey, std::string("other")).openAIModel, "other");
    EXPECT_EQ(settingsWith(keys::openAIModelKey, std::string()).openAIModel, "");
}

TEST(SettingsTexts, KeepTheirDefaultForAnyOtherKind) {
    for (const SettingsValue& value : oneOfEachKind()) {
        if (!std::holds_alternative<std::string>(value)) {
            EXPECT_EQ(settingsWith(keys::sshUsernameKey, value).sshUsername, "owner");
            EXPECT_EQ(settingsWith(keys::openAIModelKey, value).openAIModel, "gpt-5.6-luna");
        }
    }
}

TEST(SettingsTextLists, AreSetsAndKeepUnknownTexts) {
    const SettingsTextList list{"gauges", "no such section", "gauges", ""};
    EXPECT_THAT(settingsWith(keys::collapsedSectionsKey, list).collapsedSections,
                ElementsAre("", "gauges", "no such section"));
    EXPECT_THAT(settingsWith(keys::protectedAppsKey, list).protectedAppNames,
                ElementsAre("", "gauges", "no such section"));
    for (const SettingsValue& value : oneOfEachKind()) {
        if (!std::holds_alternative<SettingsTextList>(value)) {
            EXPECT_THAT(settingsWith(keys::collapsedSectionsKey, value).collapsedSections,
                        IsEmpty());
            EXPECT_THAT(settingsWith(keys::protectedAppsKey, value).protectedAppNames, IsEmpty());
        }
    }
}

TEST(RemoteTopAppSamples, AreATableOfIntegersOrNothing) {
    EXPECT_THAT(loadWith(keys::remoteTopAppsKey, SettingsTable{{"mac|Arc", 3}}).remoteTopAppSamples,
                ElementsAre(Pair("mac|Arc", 3)));
    for (const SettingsValue& value : oneOfEachKind()) {
        if (!std::holds_alternative<SettingsTable>(value)) {
            EXPECT_THAT(loadWith(keys::remoteTopAppsKey, value).remoteTopAppSamples, IsEmpty());
        }
    }
}

// Lists of records -------------------------------------------------------------------------------

std::vector<HistoryPoint> points(int count) {
    std::vector<HistoryPoint> result;
    for (int i = 0; i < count; ++i) {
        result.push_back({UUID::random(), Date{static_cast<double>(i)}, 10.0, 20.0});
    }
    return result;
}

template <class Records>
JSONData encoded(const Records& records) {
    return {record_json::encode(records).value()};
}

TEST(StoredHistory, KeepsTheNewest720) {
    for (const int count : {0, 1, 180, 500, 719, 720}) {
        const auto stored = points(count);
        EXPECT_EQ(loadWith(keys::historyKey, encoded(stored)).history, stored) << count;
    }
    for (const int count : {721, 1000}) {
        const auto stored = points(count);
        const auto loaded = loadWith(keys::historyKey, encoded(stored)).history;
        ASSERT_EQ(loaded.size(), 720U) << count;
        EXPECT_EQ(loaded.front(), stored[static_cast<std::size_t>(count - 720)]);
        EXPECT_EQ(loaded.back(), stored.back());
    }
}

TEST(StoredRemoteHistory, KeepsTheNewest720) {
    for (const auto& [count, kept] :
         std::vector<std::pair<int, std::size_t>>{{720, 720}, {721, 720}}) {
        std::vector<RemoteHistoryPoint> stored;
        for (int i = 0; i < count; ++i) {
            stored.push_back(
                {UUID::random(), "mac", Date{static_cast<double>(i)}, 1, 2, "Reachable"});
        }
        const auto loaded = loadWith(keys::remoteHistoryKey, encoded(stored)).remoteHistory;
        ASSERT_EQ(loaded.size(), kept);
        EXPECT_EQ(loaded.front(), stored[stored.size() - kept]);
        EXPECT_EQ(loaded.back(), stored.back());
    }
}

TEST(StoredActivityLog, KeepsTheNewest80WhichStandFirst) {
    for (const std::size_t count : {80U, 81U, 200U}) {
        std::vector<ActivityEvent> stored;
        for (std::size_t i = 0; i < count; ++i) {
            stored.push_back({UUID::random(), Date{}, "Action", std::to_string(i)});
        }
        const auto loaded = loadWith(keys::activityLogKey, encoded(stored)).activityLog;
        ASSERT_EQ(loaded.size(), 80U) << count;
        EXPECT_EQ(loaded.front(), stored.front());
        EXPECT_EQ(loaded.back(), stored[79]);
    }
}

TEST(StoredChat, KeepsTheNewest40) {
    for (const std::size_t count : {40U, 41U, 100U}) {
        std::vector<AIChatMessage> stored;
        for (std::size_t i = 0; i < count; ++i) {
            stored.push_back({UUID::random(), "user", std::to_string(i), Date{}});
        }
        const auto loaded = loadWith(keys::aiChatMessagesKey, encoded(stored)).aiChatMessages;
        ASSERT_TRUE(loaded.has_value());
        ASSERT_EQ(loaded->size(), 40U) << count;
        EXPECT_EQ(loaded->front(), stored[count - 40]);
        EXPECT_EQ(loaded->back(), stored.back());
    }
}

TEST(StoredChat, TellsAnEmptyOneFromNone) {
    const auto loaded = loadWith(keys::aiChatMessagesKey, JSONData{"[]"}).aiChatMessages;
    ASSERT_TRUE(loaded.has_value());
    EXPECT_THAT(*loaded, IsEmpty());
}

TEST(StoredTables, ComeBackAsTheyWereSaved) {
    const std::map<std::string, AITrustRecord> trust{
        {"disk_cleanup", {"disk_cleanup", 3, 2, 1, Date{7}}}};
    EXPECT_EQ(loadWith(keys::aiTrustRecordsKey, encoded(trust)).aiTrustRecords, trust);
    const std::map<std::string, RemoteProfile> profiles{
        {"mac", {"mac", "Attic", "Server", 82, true}}};
    EXPECT_EQ(loadWith(keys::remoteProfilesKey, encoded(profiles)).remoteProfiles, profiles);
    const std::vector<AIRuleDraft> drafts{{UUID::random(), "Title", "When", "Do", "low", true}};
    EXPECT_EQ(loadWith(keys::aiRuleDraftsKey, encoded(drafts)).aiRuleDrafts, drafts);
}

TEST(StoredRecords, AreAllOrNothing) {
    std::string oneBroken = record_json::encode(points(3)).value();
    oneBroken.replace(oneBroken.rfind("\"memory\""), 8, "\"memoir\"");
    std::vector<JSONData> undecodable{{oneBroken}};
    for (const char* text : {"", "not JSON", "{\"id\":3}", "[1]", "[{}]", "null", "[", "3"}) {
        undecodable.push_back({text});
    }
    for (const JSONData& data : undecodable) {
        EXPECT_THAT(loadWith(keys::historyKey, data).history, IsEmpty()) << data.text;
        EXPECT_THAT(loadWith(keys::activityLogKey, data).activityLog, IsEmpty()) << data.text;
        EXPECT_THAT(loadWith(keys::remoteHistoryKey, data).remoteHistory, IsEmpty()) << data.text;
        EXPECT_THAT(loadWith(keys::aiRuleDraftsKey, data).aiRuleDrafts, IsEmpty()) << data.text;
        EXPECT_THAT(loadWith(keys::aiTrustRecordsKey, data).aiTrustRecords, IsEmpty()) << data.text;
        EXPECT_THAT(loadWith(keys::remoteProfilesKey, data).remoteProfiles, IsEmpty()) << data.text;
        EXPECT_EQ(loadWith(keys::aiChatMessagesKey, data).aiChatMessages, std::nullopt)
            << data.text;
    }
}

TEST(StoredRecords, AreReadFromJSONAlone) {
    const std::string text = record_json::encode(points(2)).value();
    EXPECT_EQ(loadWith(keys::historyKey, JSONData{text}).history.size(), 2U);
    EXPECT_THAT(loadWith(keys::historyKey, text).history, IsEmpty());
}

TEST(StoredRecords, AreIndependentOfOneAnother) {
    MemorySettingsStore store;
    store.write(keys::activityLogKey, JSONData{"broken"});
    store.write(keys::thresholdKey, std::string("broken"));
    store.write(keys::historyKey, encoded(points(5)));
    store.write(keys::autoPurgeKey, true);
    const StoredState state = loadStoredState(store, "owner");
    EXPECT_EQ(state.history.size(), 5U);
    EXPECT_TRUE(state.settings.autoPurgeSustainedMemory);
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

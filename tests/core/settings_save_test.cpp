#include "core/settings_save.h"

#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "core/limits.h"
#include "core/record_json.h"
#include "core/settings_keys.h"
#include "tests/core/stored_settings.h"
#include "tests/support/manual_queues.h"

namespace tallowcrest {
namespace {

namespace keys = settings_keys;

class SavedRecords : public StoredSettings {
protected:
    std::string text(std::string_view key) {
        return std::get<JSONData>(store().read(key).value()).text;
    }
};
TALLOWCREST_OVER_BOTH_STORES(SavedRecords);

const std::string invalidText = "\xFF";

TEST_P(SavedRecords, HistoryIsItsNewest720) {
    HistoryEncoder encoder;
    std::vector<HistoryPoint> history;
    for (int i = 0; i < 721; ++i) {
        history.push_back({UUID::random(), Date{4.0 * i}, 12.5, 50.0});
    }
    saveHistory(store(), encoder, history);
    const auto saved = record_json::decodeHistory(text(keys::historyKey)).value();
    EXPECT_EQ(saved, std::vector<HistoryPoint>(history.begin() + 1, history.end()));
    EXPECT_EQ(load().history, saved);
}

TEST_P(SavedRecords, RemoteHistoryIsItsNewest720) {
    for (const std::size_t count : {720U, 721U, 1000U}) {
        std::vector<RemoteHistoryPoint> history;
        for (std::size_t i = 0; i < count; ++i) {
            history.push_back(
                {UUID::random(), "studio", Date{static_cast<double>(i)}, 1.0, 2.0, "Reachable"});
        }
        saveRemoteHistory(store(), history);
        const auto saved = record_json::decodeRemoteHistory(text(keys::remoteHistoryKey)).value();
        EXPECT_EQ(saved, std::vector<RemoteHistoryPoint>(history.end() - 720, history.end()))
            << count;
    }
}

TEST_P(SavedRecords, AChatOf100MessagesIsItsLast40) {
    std::vector<AIChatMessage> messages;
    for (int i = 0; i < 100; ++i) {
        messages.push_back({UUID::random(), "user", std::to_string(i), Date{}});
    }
    saveChatMessages(store(), messages);
    const auto saved = record_json::decodeChatMessages(text(keys::aiChatMessagesKey)).value();
    EXPECT_EQ(saved, std::vector<AIChatMessage>(messages.end() - 40, messages.end()));
}

TEST_P(SavedRecords, ListsAndTablesAreSavedWhole) {
    const std::vector<ActivityEvent> events(80, {UUID::random(), Date{5}, "Action", "detail"});
    saveActivityLog(store(), events);
    const std::map<std::string, AITrustRecord> trust{
        {"local_purge", {"local_purge", 3, 2, 1, Date{7}}}};
    saveTrustRecords(store(), trust);
    const std::vector<AIRuleDraft> drafts{{UUID::random(), "Title", "When", "Do", "low", true}};
    saveRuleDrafts(store(), drafts);
    const std::map<std::string, RemoteProfile> profiles{
        {"studio", {"studio", "Attic", "Server", 82, true}}};
    saveRemoteProfiles(store(), profiles);

    const StoredState loaded = load();
    EXPECT_EQ(loaded.activityLog, events);
    EXPECT_EQ(loaded.aiTrustRecords, trust);
    EXPECT_EQ(loaded.aiRuleDrafts, drafts);
    EXPECT_EQ(loaded.remoteProfiles, profiles);
}

TEST_P(SavedRecords, WhatCannotBeEncodedLeavesTheOlderValue) {
    HistoryEncoder encoder;
    const std::vector<HistoryPoint> history{{UUID::random(), Date{4}, 12.5, 50.0}};
    const std::vector<ActivityEvent> events{{UUID::random(), Date{5}, "Action", "detail"}};
    const std::vector<AIChatMessage> messages{{UUID::random(), "user", "hello", Date{}}};
    saveHistory(store(), encoder, history);
    saveActivityLog(store(), events);
    saveChatMessages(store(), messages);

    std::vector<HistoryPoint> broken = history;
    broken.front().cpu = std::numeric_limits<double>::quiet_NaN();
    saveHistory(store(), encoder, broken);
    saveActivityLog(store(), {{UUID::random(), Date{5}, "Action", invalidText}});
    saveChatMessages(store(), {{UUID::random(), "user", invalidText, Date{}}});

    const StoredState loaded = load();
    EXPECT_EQ(loaded.history, history);
    EXPECT_EQ(loaded.activityLog, events);
    EXPECT_EQ(loaded.aiChatMessages, messages);
}

// Limits -----------------------------------------------------------------------------------------

class LimitsTest : public StoredSettings {
protected:
    ManualMainQueue mainQueue;
    Observable observable{mainQueue};
    Settings settings;
    Limits limits{settings, store(), observable};
};
TALLOWCREST_OVER_BOTH_STORES(LimitsTest);

TEST_P(LimitsTest, WhatACleanUpMayDoIsClampedBeforeItIsStored) {
    for (const auto& [given, kept] : std::vector<std::pair<double, double>>{
             {3.0, 7.0}, {30.5, 30.5}, {1000.0, 365.0}, {std::nan(""), 30.0}}) {
        limits.setDiskCleanupAgeDays(given);
        EXPECT_EQ(settings.diskCleanupAgeDays, kept) << given;
        EXPECT_EQ(store().read(keys::diskCleanupAgeKey), SettingsValue(kept)) << given;
    }
    for (const auto& [given, kept] : std::vector<std::pair<double, double>>{
             {0.0, 0.1}, {1.5, 1.5}, {5.0, 2.0}, {std::nan(""), 2.0}}) {
        limits.setDiskMaxCleanupGB(given);
        EXPECT_EQ(settings.diskMaxCleanupGB, kept) << given;
        EXPECT_EQ(store().read(keys::diskMaxCleanupKey), SettingsValue(kept)) << given;
    }
}

TEST_P(LimitsTest, TheOthersAreStoredAsTheyAreGiven) {
    limits.setDiskMinimumFreeGB(-5.0);
    EXPECT_EQ(settings.diskMinimumFreeGB, -5.0);
    EXPECT_EQ(load().settings.diskMinimumFreeGB, -5.0);

    limits.setWarningThreshold(64.9);
    EXPECT_EQ(settings.warningThreshold, 64.9);
    EXPECT_EQ(store().read(keys::thresholdKey), SettingsValue(64.9));
    EXPECT_EQ(load().settings.warningThreshold, 82.0);
}

TEST_P(LimitsTest, AChangeIsTold) {
    int told = 0;
    const Subscription subscription = observable.subscribe([&told] { ++told; });
    limits.setWarningThreshold(70.0);
    mainQueue.drain();
    EXPECT_EQ(told, 1);
}

TEST_P(LimitsTest, WhatIsStoredAlreadyIsNoChange) {
    int told = 0;
    const Subscription subscription = observable.subscribe([&told] { ++told; });
    const auto expectTold = [&](int times) {
        mainQueue.drain();
        EXPECT_EQ(told, times);
    };
    limits.setDiskMaxCleanupGB(2.0);
    expectTold(1);
    EXPECT_EQ(store().read(keys::diskMaxCleanupKey), SettingsValue(2.0)) << "a default is none";
    limits.setDiskMaxCleanupGB(2.0);
    limits.setDiskMaxCleanupGB(7.5);
    expectTold(1);
    store().write(keys::diskMaxCleanupKey, 5.0);
    limits.setDiskMaxCleanupGB(2.0);
    expectTold(2);
    EXPECT_EQ(store().read(keys::diskMaxCleanupKey), SettingsValue(2.0));
}

}  // namespace
}  // namespace tallowcrest

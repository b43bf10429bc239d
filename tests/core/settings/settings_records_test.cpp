#include <map>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/history_encoder.h"
#include "core/record_json.h"
#include "core/settings/stored_list.h"
#include "tests/core/settings/stored_settings.h"
#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

namespace keys = settings_keys;
using ::testing::IsEmpty;

std::vector<HistoryPoint> points(std::size_t count) {
    std::vector<HistoryPoint> result;
    for (std::size_t i = 0; i < count; ++i) {
        result.push_back({UUID::random(), Date{static_cast<double>(i)}, 10.0, 20.0});
    }
    return result;
}

std::vector<RemoteHistoryPoint> remotePoints(std::size_t count) {
    std::vector<RemoteHistoryPoint> result;
    for (std::size_t i = 0; i < count; ++i) {
        result.push_back({UUID::random(), "mac", Date{static_cast<double>(i)}, 1, 2, "Reachable"});
    }
    return result;
}

std::vector<ActivityEvent> events(std::size_t count) {
    std::vector<ActivityEvent> result;
    for (std::size_t i = 0; i < count; ++i) {
        result.push_back({UUID::random(), Date{}, "Action", std::to_string(i)});
    }
    return result;
}

std::vector<AIChatMessage> messages(std::size_t count) {
    std::vector<AIChatMessage> result;
    for (std::size_t i = 0; i < count; ++i) {
        result.push_back({UUID::random(), "user", std::to_string(i), Date{}});
    }
    return result;
}

std::vector<AIRuleDraft> drafts(std::size_t count) {
    std::vector<AIRuleDraft> result;
    for (std::size_t i = 0; i < count; ++i) {
        result.push_back({UUID::random(), "Title " + std::to_string(i), "When", "Do", "low", true});
    }
    return result;
}

const std::map<std::string, AITrustRecord> trust{
    {"disk_cleanup", {"disk_cleanup", 3, 2, 1, Date{7}}}};
const std::map<std::string, RemoteProfile> profiles{{"mac", {"mac", "Attic", "Server", 82, true}}};

template <class Records>
JSONData encoded(const Records& records) {
    return {record_json::encode(records).value()};
}

class StoredRecords : public StoredSettings {
protected:
    /// Of `records`, the next start finds `kept`, whether they were stored whole or by `save`,
    /// which itself stores no more than that.
    template <class Records>
    void expectKept(const stored::List<Records>& list, const Records& records,
                    const Records& kept) {
        EXPECT_EQ(loadWith(list.key, encoded(records)).load(list), kept) << records.size();
        SettingsOwner(store(), mainQueue, "owner").save(list, records);
        EXPECT_EQ(store().read(list.key), SettingsValue(encoded(kept))) << records.size();
        EXPECT_EQ(load().load(list), kept) << records.size();
    }

    template <class Record>
    void expectLastKept(const stored::List<std::vector<Record>>& list,
                        const std::vector<Record>& records, std::ptrdiff_t count) {
        expectKept(list, records, {records.end() - count, records.end()});
    }
};
TALLOWCREST_OVER_BOTH_STORES(StoredRecords);

TEST_P(StoredRecords, HistoryKeepsTheNewest720) {
    for (const int count : {0, 1, 180, 500, 719, 720}) {
        expectLastKept(stored::history, points(static_cast<std::size_t>(count)), count);
    }
    for (const std::size_t count : {721U, 1000U}) {
        expectLastKept(stored::history, points(count), 720);
    }
}

TEST_P(StoredRecords, RemoteHistoryKeepsTheNewest720) {
    for (const std::size_t count : {720U, 721U, 1000U}) {
        expectLastKept(stored::remoteHistory, remotePoints(count), 720);
    }
}

TEST_P(StoredRecords, ActivityLogKeepsTheNewest80WhichStandFirst) {
    for (const std::size_t count : {80U, 81U, 200U}) {
        const auto all = events(count);
        expectKept(stored::activityLog, all, {all.begin(), all.begin() + 80});
    }
}

TEST_P(StoredRecords, ChatKeepsTheNewest40) {
    for (const std::size_t count : {40U, 41U, 100U}) {
        expectLastKept(stored::chatMessages, messages(count), 40);
    }
}

TEST_P(StoredRecords, TheOthersAreKeptWhole) {
    for (const int count : {0, 1, 1000}) {
        expectLastKept(stored::ruleDrafts, drafts(static_cast<std::size_t>(count)), count);
    }
    expectKept(stored::trustRecords, trust, trust);
    expectKept(stored::remoteProfiles, profiles, profiles);
}

TEST_P(StoredRecords, ChatTellsAnEmptyOneFromNone) {
    EXPECT_EQ(load().load(stored::chatMessages), std::nullopt);
    EXPECT_EQ(loadWith(keys::aiChatMessagesKey, JSONData{"[]"}).load(stored::chatMessages),
              std::vector<AIChatMessage>());
}

TEST_P(StoredRecords, AreAllOrNothing) {
    std::string oneBroken = record_json::encode(points(3)).value();
    oneBroken.replace(oneBroken.rfind("\"memory\""), 8, "\"memoir\"");
    std::vector<JSONData> undecodable{{oneBroken}};
    for (const char* text : {"", "not JSON", "{\"id\":3}", "[1]", "[{}]", "null", "[", "3"}) {
        undecodable.push_back({text});
    }
    const auto expectNone = [this](const auto& list, const JSONData& data) {
        EXPECT_EQ(loadWith(list.key, data).load(list), std::nullopt) << list.key << data.text;
    };
    for (const JSONData& data : undecodable) {
        expectNone(stored::history, data);
        expectNone(stored::activityLog, data);
        expectNone(stored::remoteHistory, data);
        expectNone(stored::ruleDrafts, data);
        expectNone(stored::trustRecords, data);
        expectNone(stored::remoteProfiles, data);
        expectNone(stored::chatMessages, data);
    }
}

TEST_P(StoredRecords, AreReadFromJSONAlone) {
    const std::string text = record_json::encode(points(2)).value();
    EXPECT_TRUE(loadWith(keys::historyKey, JSONData{text}).load(stored::history));
    EXPECT_EQ(loadWith(keys::historyKey, text).load(stored::history), std::nullopt);
}

TEST_P(StoredRecords, AreIndependentOfOneAnother) {
    store().write(keys::activityLogKey, JSONData{"broken"});
    store().write(keys::thresholdKey, std::string("broken"));
    store().write(keys::historyKey, encoded(points(5)));
    store().write(keys::autoPurgeKey, true);
    const SettingsOwner& settings = load();
    EXPECT_EQ(settings.load(stored::history).value().size(), 5U);
    EXPECT_TRUE(settings.values().autoPurgeSustainedMemory);
}

TEST_P(StoredRecords, WhatCannotBeEncodedLeavesTheOlderValue) {
    const std::string invalidText = "\xFF";
    const auto oldHistory = points(1);
    const auto oldEvents = events(1);
    const auto oldMessages = messages(1);
    SettingsOwner settings(store(), mainQueue, "owner");
    HistoryEncoder encoder;
    settings.save(stored::history, oldHistory, encoder);
    settings.save(stored::activityLog, oldEvents);
    settings.save(stored::chatMessages, oldMessages);

    auto broken = oldHistory;
    broken.front().cpu = nan;
    settings.save(stored::history, broken);
    settings.save(stored::history, broken, encoder);
    settings.save(stored::activityLog, {{UUID::random(), Date{5}, "Action", invalidText}});
    settings.save(stored::chatMessages, {{UUID::random(), "user", invalidText, Date{}}});

    const SettingsOwner& loaded = load();
    EXPECT_EQ(loaded.load(stored::history), oldHistory);
    EXPECT_EQ(loaded.load(stored::activityLog), oldEvents);
    EXPECT_EQ(loaded.load(stored::chatMessages), oldMessages);
}

TEST_P(StoredRecords, AListStartsWithWhatIsStoredAndStoresEachChange) {
    EXPECT_THAT(*StoredList(load(), stored::activityLog), IsEmpty());
    const auto given = events(2);
    store().write(keys::activityLogKey, encoded(given));
    SettingsOwner settings(store(), mainQueue, "owner");
    StoredList list(settings, stored::activityLog);
    EXPECT_EQ(*list, given);
    list.change([](std::vector<ActivityEvent>& records) { records.pop_back(); });
    EXPECT_EQ(list->size(), 1U);
    EXPECT_EQ(load().load(stored::activityLog), *list);
    list.change([](std::vector<ActivityEvent>& records) { records.clear(); });
    EXPECT_EQ(load().load(stored::activityLog), std::vector<ActivityEvent>());
}

TEST_P(StoredRecords, AListMayBeLongerThanWhatIsStoredOfIt) {
    SettingsOwner settings(store(), mainQueue, "owner");
    StoredList list(settings, stored::activityLog);
    const auto given = events(81);
    list.change([&](std::vector<ActivityEvent>& records) { records = given; });
    EXPECT_EQ(*list, given);
    EXPECT_EQ(load().load(stored::activityLog),
              std::vector<ActivityEvent>(given.begin(), given.end() - 1));
}

}  // namespace
}  // namespace tallowcrest

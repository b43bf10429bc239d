#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/record_json.h"
#include "core/settings.h"
#include "core/settings_keys.h"
#include "tests/core/stored_settings.h"

namespace tallowcrest {
namespace {

namespace keys = settings_keys;
using ::testing::IsEmpty;

class StoredRecords : public StoredSettings {};
TALLOWCREST_OVER_BOTH_STORES(StoredRecords);

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

TEST_P(StoredRecords, HistoryKeepsTheNewest720) {
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

TEST_P(StoredRecords, RemoteHistoryKeepsTheNewest720) {
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

TEST_P(StoredRecords, ActivityLogKeepsTheNewest80WhichStandFirst) {
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

TEST_P(StoredRecords, ChatKeepsTheNewest40) {
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

TEST_P(StoredRecords, ChatTellsAnEmptyOneFromNone) {
    const auto loaded = loadWith(keys::aiChatMessagesKey, JSONData{"[]"}).aiChatMessages;
    ASSERT_TRUE(loaded.has_value());
    EXPECT_THAT(*loaded, IsEmpty());
}

TEST_P(StoredRecords, TablesComeBackAsTheyWereSaved) {
    const std::map<std::string, AITrustRecord> trust{
        {"disk_cleanup", {"disk_cleanup", 3, 2, 1, Date{7}}}};
    EXPECT_EQ(loadWith(keys::aiTrustRecordsKey, encoded(trust)).aiTrustRecords, trust);
    const std::map<std::string, RemoteProfile> profiles{
        {"mac", {"mac", "Attic", "Server", 82, true}}};
    EXPECT_EQ(loadWith(keys::remoteProfilesKey, encoded(profiles)).remoteProfiles, profiles);
    const std::vector<AIRuleDraft> drafts{{UUID::random(), "Title", "When", "Do", "low", true}};
    EXPECT_EQ(loadWith(keys::aiRuleDraftsKey, encoded(drafts)).aiRuleDrafts, drafts);
}

TEST_P(StoredRecords, AreAllOrNothing) {
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

TEST_P(StoredRecords, AreReadFromJSONAlone) {
    const std::string text = record_json::encode(points(2)).value();
    EXPECT_EQ(loadWith(keys::historyKey, JSONData{text}).history.size(), 2U);
    EXPECT_THAT(loadWith(keys::historyKey, text).history, IsEmpty());
}

TEST_P(StoredRecords, AreIndependentOfOneAnother) {
    store().write(keys::activityLogKey, JSONData{"broken"});
    store().write(keys::thresholdKey, std::string("broken"));
    store().write(keys::historyKey, encoded(points(5)));
    store().write(keys::autoPurgeKey, true);
    const StoredState state = load();
    EXPECT_EQ(state.history.size(), 5U);
    EXPECT_TRUE(state.settings.autoPurgeSustainedMemory);
}

}  // namespace
}  // namespace tallowcrest

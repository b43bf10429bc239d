#include "core/settings_save.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "core/record_json.h"
#include "core/settings.h"
#include "core/settings_keys.h"

namespace tallowcrest {
namespace {

namespace keys = settings_keys;

template <class Records>
void save(SettingsStore& store, std::string_view key, const Records& records) {
    if (std::optional<std::string> text = record_json::encode(records)) {
        store.write(key, JSONData{std::move(*text)});
    }
}

template <class Record>
void saveLast(SettingsStore& store, std::string_view key, const std::vector<Record>& records,
              std::size_t count) {
    if (records.size() <= count) {
        save(store, key, records);
        return;
    }
    const auto first = records.end() - static_cast<std::ptrdiff_t>(count);
    save(store, key, std::vector<Record>(first, records.end()));
}

}  // namespace

void saveHistory(SettingsStore& store, HistoryEncoder& encoder,
                 std::span<const HistoryPoint> history) {
    const std::size_t saved = std::min(history.size(), StoredState::maximumStoredHistory);
    if (std::optional<std::string> text = encoder.encode(history.last(saved))) {
        store.write(keys::historyKey, JSONData{std::move(*text)});
    }
}

void saveActivityLog(SettingsStore& store, const std::vector<ActivityEvent>& events) {
    save(store, keys::activityLogKey, events);
}

void saveRemoteHistory(SettingsStore& store, const std::vector<RemoteHistoryPoint>& history) {
    saveLast(store, keys::remoteHistoryKey, history, StoredState::maximumStoredHistory);
}

void saveChatMessages(SettingsStore& store, const std::vector<AIChatMessage>& messages) {
    saveLast(store, keys::aiChatMessagesKey, messages, StoredState::maximumStoredMessages);
}

void saveTrustRecords(SettingsStore& store, const std::map<std::string, AITrustRecord>& records) {
    save(store, keys::aiTrustRecordsKey, records);
}

void saveRuleDrafts(SettingsStore& store, const std::vector<AIRuleDraft>& drafts) {
    save(store, keys::aiRuleDraftsKey, drafts);
}

void saveRemoteProfiles(SettingsStore& store,
                        const std::map<std::string, RemoteProfile>& profiles) {
    save(store, keys::remoteProfilesKey, profiles);
}

}  // namespace tallowcrest

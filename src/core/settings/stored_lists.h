#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/activity_event.h"
#include "core/advisor_records.h"
#include "core/local_records.h"
#include "core/record_json.h"
#include "core/remote_records.h"
#include "core/settings/settings.h"
#include "core/settings/stored_list.h"

/// The lists and tables of records that survive a restart. A list is stored as one JSON text, which
/// is written whole after every change.
namespace tallowcrest::stored {

/// Which end of a list is dropped when it is longer than what is stored.
enum class Keep { all, first, last };

template <class Records>
struct List {
    std::string_view key;
    /// Absent for a text that is not such a list.
    std::optional<Records> (*decode)(std::string_view text);
    Keep keep = Keep::all;
    std::size_t limit = 0;  ///< unused for `Keep::all`

    /// How many records exceed the limit.
    std::size_t excess(const Records& records) const {
        return keep == Keep::all || records.size() <= limit ? 0 : records.size() - limit;
    }

    /// Drops the records that exceed the limit.
    void trim(Records& records) const {
        if constexpr (requires { records.front(); }) {
            const auto count = static_cast<std::ptrdiff_t>(excess(records));
            if (keep == Keep::first) {
                records.erase(records.end() - count, records.end());
            } else {
                records.erase(records.begin(), records.begin() + count);
            }
        }
    }
};

/// Newest first.
inline constexpr List<std::vector<ActivityEvent>> activityLog{
    settings_keys::activityLogKey, record_json::decodeActivityLog, Keep::first, 80};
/// Oldest first, as are the next two.
inline constexpr List<std::vector<HistoryPoint>> history{
    settings_keys::historyKey, record_json::decodeHistory, Keep::last, 720};
inline constexpr List<std::vector<RemoteHistoryPoint>> remoteHistory{
    settings_keys::remoteHistoryKey, record_json::decodeRemoteHistory, Keep::last, 720};
inline constexpr List<std::vector<AIChatMessage>> chatMessages{
    settings_keys::aiChatMessagesKey, record_json::decodeChatMessages, Keep::last, 40};
inline constexpr List<std::vector<AIRuleDraft>> ruleDrafts{settings_keys::aiRuleDraftsKey,
                                                           record_json::decodeRuleDrafts};
inline constexpr List<std::map<std::string, RemoteProfile>> remoteProfiles{
    settings_keys::remoteProfilesKey, record_json::decodeRemoteProfiles};
inline constexpr List<std::map<std::string, AITrustRecord>> trustRecords{
    settings_keys::aiTrustRecordsKey, record_json::decodeTrustRecords};

template <class Records>
std::optional<std::string> WholeEncoder::encode(const Records& records) const {
    return record_json::encode(records);
}

}  // namespace tallowcrest::stored

namespace tallowcrest::settings_keys {

struct Key {
    std::string_view name;
    SettingsKind kind;
};

/// The values that are no field of `Settings`.
inline constexpr auto others = std::to_array<Key>({
    {stored::activityLog.key, SettingsKind::json},
    {stored::history.key, SettingsKind::json},
    {stored::remoteHistory.key, SettingsKind::json},
    {stored::chatMessages.key, SettingsKind::json},
    {stored::ruleDrafts.key, SettingsKind::json},
    {stored::remoteProfiles.key, SettingsKind::json},
    {stored::trustRecords.key, SettingsKind::json},
    // In how many remote scans an application came first, by machine and application.
    {remoteTopAppsKey, SettingsKind::table},
    // The permission to use a folder that was once chosen, in the system's own format.
    {storageAnalysisBookmarkKey, SettingsKind::data},
});

/// Every key of the store and the kind of its values.
inline constexpr auto all = [] {
    std::array<Key, flags.size() + numbers.size() + texts.size() + textSets.size() +
                        autonomyModes.size() + others.size()>
        keys{};
    std::size_t count = 0;
    const auto add = [&](const auto& declarations, SettingsKind kind) {
        for (const auto& each : declarations) {
            keys.at(count++) = {each.key, kind};
        }
    };
    add(flags, SettingsKind::flag);
    add(numbers, SettingsKind::number);
    add(texts, SettingsKind::text);
    add(textSets, SettingsKind::textList);
    add(autonomyModes, SettingsKind::text);
    std::ranges::copy(others, keys.begin() + count);
    return keys;
}();
static_assert(!all.back().name.empty());

}  // namespace tallowcrest::settings_keys

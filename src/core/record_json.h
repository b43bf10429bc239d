#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/activity_event.h"
#include "core/advisor_records.h"
#include "core/local_records.h"
#include "core/remote_records.h"

/// The stored JSON of the seven persisted records. Member names are the field names; a `UUID` is
/// its upper-case text and a `Date` the seconds since 2001-01-01T00:00:00Z. Any thread.
namespace tallowcrest::record_json {

/// Absent when a value has no JSON form: a number that is not finite, a text that is not UTF-8.
std::optional<std::string> encode(const std::vector<HistoryPoint>& points);
std::optional<std::string> encode(const std::vector<ActivityEvent>& events);
std::optional<std::string> encode(const std::vector<AIChatMessage>& messages);
std::optional<std::string> encode(const std::map<std::string, AITrustRecord>& records);
std::optional<std::string> encode(const std::vector<AIRuleDraft>& drafts);
std::optional<std::string> encode(const std::map<std::string, RemoteProfile>& profiles);
std::optional<std::string> encode(const std::vector<RemoteHistoryPoint>& points);

/// Absent as a whole when the text is not JSON, or when any record lacks a member or has one of the
/// wrong type. Unknown members are ignored.
std::optional<std::vector<HistoryPoint>> decodeHistory(std::string_view text);
std::optional<std::vector<ActivityEvent>> decodeActivityLog(std::string_view text);
std::optional<std::vector<AIChatMessage>> decodeChatMessages(std::string_view text);
std::optional<std::map<std::string, AITrustRecord>> decodeTrustRecords(std::string_view text);
std::optional<std::vector<AIRuleDraft>> decodeRuleDrafts(std::string_view text);
std::optional<std::map<std::string, RemoteProfile>> decodeRemoteProfiles(std::string_view text);
std::optional<std::vector<RemoteHistoryPoint>> decodeRemoteHistory(std::string_view text);

}  // namespace tallowcrest::record_json

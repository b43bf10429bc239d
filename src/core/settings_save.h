#pragma once

#include <map>
#include <span>
#include <string>
#include <vector>

#include "core/advisor_records.h"
#include "core/history_encoder.h"
#include "core/local_records.h"
#include "core/remote_records.h"
#include "core/settings_store.h"

/// Each list or table that survives a restart is written whole after every change of it. A value
/// that cannot be encoded leaves the older one in the store, in silence. Main thread.
namespace tallowcrest {

/// The newest 720 points. `encoder` is the one that every save of this history goes through.
void saveHistory(SettingsStore& store, HistoryEncoder& encoder,
                 std::span<const HistoryPoint> history);

void saveActivityLog(SettingsStore& store, const std::vector<ActivityEvent>& events);

/// The newest 720 points.
void saveRemoteHistory(SettingsStore& store, const std::vector<RemoteHistoryPoint>& history);

/// The newest 40 messages.
void saveChatMessages(SettingsStore& store, const std::vector<AIChatMessage>& messages);

void saveTrustRecords(SettingsStore& store, const std::map<std::string, AITrustRecord>& records);

void saveRuleDrafts(SettingsStore& store, const std::vector<AIRuleDraft>& drafts);

void saveRemoteProfiles(SettingsStore& store, const std::map<std::string, RemoteProfile>& profiles);

}  // namespace tallowcrest

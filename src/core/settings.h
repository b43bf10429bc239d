#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/advisor_records.h"
#include "core/local_records.h"
#include "core/remote_records.h"
#include "core/settings_keys.h"
#include "core/settings_store.h"

namespace tallowcrest {

/// What the owner chose. Each member is named after the field of the monitor that it is; the table
/// of keys has what it starts from.
struct Settings {
    static constexpr double defaultWarningThreshold =
        settings_keys::whenAbsent<double>(settings_keys::thresholdKey);

    double warningThreshold = defaultWarningThreshold;  ///< percent
    std::set<std::string, std::less<>> protectedAppNames;
    std::set<std::string, std::less<>> collapsedSections;
    bool autoSelectTopOffender = settings_keys::whenAbsent<bool>(settings_keys::autoSelectKey);
    bool autoPurgeSustainedMemory = settings_keys::whenAbsent<bool>(settings_keys::autoPurgeKey);
    bool autoScanRemoteMacs = settings_keys::whenAbsent<bool>(settings_keys::autoRemoteScanKey);
    std::string sshUsername;
    bool firstRunComplete = settings_keys::whenAbsent<bool>(settings_keys::firstRunCompleteKey);
    std::string openAIModel{
        settings_keys::whenAbsent<std::string_view>(settings_keys::openAIModelKey)};
    bool aiSafeActionsEnabled = settings_keys::whenAbsent<bool>(settings_keys::aiSafeActionsKey);
    bool notificationsIncludeActions =
        settings_keys::whenAbsent<bool>(settings_keys::notificationActionsKey);
    bool aiRedactProcessDetails =
        settings_keys::whenAbsent<bool>(settings_keys::aiRedactProcessDetailsKey);
    bool aiRequirePreview = settings_keys::whenAbsent<bool>(settings_keys::aiRequirePreviewKey);
    AIAutonomyMode aiAutonomyMode = AIAutonomyMode::apprentice;
    bool diskAutopilotEnabled = settings_keys::whenAbsent<bool>(settings_keys::diskAutopilotKey);
    double diskMinimumFreeGB = settings_keys::whenAbsent<double>(settings_keys::diskMinimumFreeKey);
    double diskCleanupAgeDays = settings_keys::whenAbsent<double>(settings_keys::diskCleanupAgeKey);
    double diskMaxCleanupGB = settings_keys::whenAbsent<double>(settings_keys::diskMaxCleanupKey);
    bool automationEmergencyStopEngaged =
        settings_keys::whenAbsent<bool>(settings_keys::automationEmergencyStopKey);
};

/// Everything that survives a restart, as it was loaded: what the owner chose, and what the
/// components that keep lists start from.
struct StoredState {
    static constexpr std::size_t maximumStoredHistory = 720;
    static constexpr std::size_t maximumStoredMessages = 40;

    Settings settings;
    std::vector<ActivityEvent> activityLog;  ///< newest first
    std::vector<HistoryPoint> history;       ///< oldest first
    SettingsTable remoteTopAppSamples;
    std::vector<AIRuleDraft> aiRuleDrafts;
    std::map<std::string, RemoteProfile> remoteProfiles;
    std::vector<RemoteHistoryPoint> remoteHistory;  ///< oldest first
    std::map<std::string, AITrustRecord> aiTrustRecords;
    std::optional<std::vector<AIChatMessage>> aiChatMessages;  ///< absent: nothing stored
};

/// Reads every key once. A key that is absent, of another kind, out of range or undecodable leaves
/// its default, and nothing is written back. `loginName` stands in for a missing SSH user name.
StoredState loadStoredState(const SettingsStore& store, const std::string& loginName);

/// Days of age from which a cache file may be moved: 7 to 365, and 30 for what is not finite.
double clampedAgeDays(double days);

/// Most gigabytes that one clean-up may move: 0.1 to 2, and 2 for what is not finite.
double clampedMaxGB(double gigabytes);

/// With the stop engaged, what acts by itself is switched off in memory. The stored values stay,
/// and so does the selection of the top offender, which changes nothing on the machine.
void applyEmergencyStop(Settings& settings);

}  // namespace tallowcrest

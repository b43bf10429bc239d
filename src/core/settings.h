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
#include "core/settings_store.h"

namespace tallowcrest {

/// What the owner chose. Each member is named after the field of the monitor that it is.
struct Settings {
    static constexpr double defaultWarningThreshold = 82.0;

    double warningThreshold = defaultWarningThreshold;  ///< percent
    std::set<std::string, std::less<>> protectedAppNames;
    std::set<std::string, std::less<>> collapsedSections;
    bool autoSelectTopOffender = true;
    bool autoPurgeSustainedMemory = false;
    bool autoScanRemoteMacs = false;
    std::string sshUsername;
    bool firstRunComplete = false;
    std::string openAIModel = "gpt-5.6-luna";
    bool aiSafeActionsEnabled = false;
    bool notificationsIncludeActions = true;
    bool aiRedactProcessDetails = true;
    bool aiRequirePreview = true;
    AIAutonomyMode aiAutonomyMode = AIAutonomyMode::apprentice;
    bool diskAutopilotEnabled = false;
    double diskMinimumFreeGB = 20.0;
    double diskCleanupAgeDays = 30.0;
    double diskMaxCleanupGB = 2.0;
    bool automationEmergencyStopEngaged = false;
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

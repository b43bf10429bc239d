#pragma once

#include <string_view>

/// The names of the stored values. What each one is stands in settings.h and stored_lists.h.
namespace tallowcrest::settings_keys {

inline constexpr std::string_view thresholdKey = "Tallowcrest.warningThreshold";
inline constexpr std::string_view activityLogKey = "Tallowcrest.activityLog";
inline constexpr std::string_view protectedAppsKey = "Tallowcrest.protectedApps";
inline constexpr std::string_view historyKey = "Tallowcrest.history";
inline constexpr std::string_view remoteTopAppsKey = "Tallowcrest.remoteTopApps";
inline constexpr std::string_view collapsedSectionsKey = "Tallowcrest.collapsedSections";
inline constexpr std::string_view autoSelectKey = "Tallowcrest.autoSelectTopOffender";
inline constexpr std::string_view autoPurgeKey = "Tallowcrest.autoPurgeSustainedMemory";
inline constexpr std::string_view autoRemoteScanKey = "Tallowcrest.autoScanRemoteMacs";
inline constexpr std::string_view sshUsernameKey = "Tallowcrest.sshUsername";
inline constexpr std::string_view firstRunCompleteKey = "Tallowcrest.firstRunComplete";
inline constexpr std::string_view openAIModelKey = "Tallowcrest.openAIModel";
inline constexpr std::string_view aiSafeActionsKey = "Tallowcrest.aiSafeActions";
inline constexpr std::string_view aiRuleDraftsKey = "Tallowcrest.aiRuleDrafts";
inline constexpr std::string_view remoteProfilesKey = "Tallowcrest.remoteProfiles";
inline constexpr std::string_view remoteHistoryKey = "Tallowcrest.remoteHistory";
inline constexpr std::string_view notificationActionsKey = "Tallowcrest.notificationActions";
inline constexpr std::string_view aiRedactProcessDetailsKey = "Tallowcrest.aiRedactProcessDetails";
inline constexpr std::string_view aiRequirePreviewKey = "Tallowcrest.aiRequirePreview";
inline constexpr std::string_view aiTrustRecordsKey = "Tallowcrest.aiTrustRecords";
inline constexpr std::string_view aiAutonomyModeKey = "Tallowcrest.aiAutonomyMode";
inline constexpr std::string_view aiChatMessagesKey = "Tallowcrest.aiChatMessages";
inline constexpr std::string_view diskAutopilotKey = "Tallowcrest.diskAutopilotEnabled";
inline constexpr std::string_view diskMinimumFreeKey = "Tallowcrest.diskMinimumFreeGB";
inline constexpr std::string_view diskCleanupAgeKey = "Tallowcrest.diskCleanupAgeDays";
inline constexpr std::string_view diskMaxCleanupKey = "Tallowcrest.diskMaxCleanupGB";
inline constexpr std::string_view automationEmergencyStopKey =
    "Tallowcrest.automationEmergencyStop";
inline constexpr std::string_view storageAnalysisBookmarkKey =
    "Tallowcrest.storageAnalysisBookmark";

}  // namespace tallowcrest::settings_keys

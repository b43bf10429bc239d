#pragma once

#include <array>
#include <string_view>
#include <variant>

#include "core/settings_store.h"

/// Every key of the settings store, what kind of value it holds, and what counts when it is absent.
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

/// What counts when a key is absent. No value of its own for lists, tables and records, which are
/// empty then, and for what depends on the machine.
using WhenAbsent = std::variant<std::monostate, bool, double, std::string_view>;

struct Key {
    std::string_view name;
    SettingsKind kind;
    WhenAbsent whenAbsent = {};
};

inline constexpr std::array<Key, 28> all{{
    {thresholdKey, SettingsKind::number, 82.0},
    {activityLogKey, SettingsKind::json},
    {protectedAppsKey, SettingsKind::textList},
    {historyKey, SettingsKind::json},
    {remoteTopAppsKey, SettingsKind::table},
    {collapsedSectionsKey, SettingsKind::textList},
    {autoSelectKey, SettingsKind::flag, true},
    {autoPurgeKey, SettingsKind::flag, false},
    {autoRemoteScanKey, SettingsKind::flag, false},
    {sshUsernameKey, SettingsKind::text},
    {firstRunCompleteKey, SettingsKind::flag, false},
    {openAIModelKey, SettingsKind::text, std::string_view("gpt-5.6-luna")},
    {aiSafeActionsKey, SettingsKind::flag, false},
    {aiRuleDraftsKey, SettingsKind::json},
    {remoteProfilesKey, SettingsKind::json},
    {remoteHistoryKey, SettingsKind::json},
    {notificationActionsKey, SettingsKind::flag, true},
    {aiRedactProcessDetailsKey, SettingsKind::flag, true},
    {aiRequirePreviewKey, SettingsKind::flag, true},
    {aiTrustRecordsKey, SettingsKind::json},
    {aiAutonomyModeKey, SettingsKind::text, std::string_view("apprentice")},
    {aiChatMessagesKey, SettingsKind::json},
    {diskAutopilotKey, SettingsKind::flag, false},
    {diskMinimumFreeKey, SettingsKind::number, 20.0},
    {diskCleanupAgeKey, SettingsKind::number, 30.0},
    {diskMaxCleanupKey, SettingsKind::number, 2.0},
    {automationEmergencyStopKey, SettingsKind::flag, false},
    {storageAnalysisBookmarkKey, SettingsKind::data},
}};

/// The default of a key that has one of that type; anything else does not compile.
template <class Value>
consteval Value whenAbsent(std::string_view name) {
    for (const Key& key : all) {
        if (key.name == name) {
            return std::get<Value>(key.whenAbsent);
        }
    }
    throw "there is no such key";
}

}  // namespace tallowcrest::settings_keys

#pragma once

#include <array>
#include <cmath>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>

#include "core/advisor_records.h"
#include "core/settings/settings_store.h"

namespace tallowcrest {

/// The names of the stored values. The values are declared below, the lists in stored_lists.h.
namespace settings_keys {

inline constexpr std::string_view thresholdKey = "Tallowcrest.warningThreshold";
inline constexpr std::string_view activityLogKey = "Tallowcrest.activityLog";
inline constexpr std::string_view protectedAppsKey = "Tallowcrest.protectedApps";
inline constexpr std::string_view historyKey = "Tallowcrest.history";
inline constexpr std::string_view remoteTopAppsKey = "Tallowcrest.remoteTopApps";
inline constexpr std::string_view collapsedSectionsKey = "Tallowcrest.collapsedSections";
inline constexpr std::string_view autoSelectKey = "Tallowcrest.autoSelectTopOffender";
inline constexpr std::string_view autoPurgeKey = "Tallowcrest.autoPurgeSustainedMemory";
inline constexpr std::string_view autoRemoteScanKey = "Tallowcrest.autoScanRemoteMacs";
inline constexpr std::string_view includeLinuxMachinesKey = "Tallowcrest.includeLinuxMachines";
inline constexpr std::string_view sshUsernameKey = "Tallowcrest.sshUsername";
inline constexpr std::string_view firstRunCompleteKey = "Tallowcrest.firstRunComplete";
inline constexpr std::string_view openAIModelKey = "Tallowcrest.openAIModel";
inline constexpr std::string_view aiEndpointKey = "Tallowcrest.aiEndpoint";
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
inline constexpr std::string_view lastCheckKey = "proUpdaterLastCheck";

}  // namespace settings_keys

using TextSet = std::set<std::string, std::less<>>;

/// What the owner chose. Each member starts with its default, which holds when nothing is stored.
struct Settings {
    static constexpr double defaultWarningThreshold = 82.0;
    static constexpr double distantPast = -63114076800.0;  ///< the beginning of the year 1

    double warningThreshold = defaultWarningThreshold;  ///< percent
    TextSet protectedAppNames;
    TextSet collapsedSections;  ///< raw values of `DashboardSection`
    bool autoSelectTopOffender = true;
    bool autoPurgeSustainedMemory = false;
    bool autoScanRemoteMacs = false;
    bool includeLinuxMachines = false;  ///< in scans, beside the Macs
    std::string sshUsername;            ///< the login name when nothing is stored
    bool firstRunComplete = false;
    std::string openAIModel = "gpt-5.6-luna";
    /// The base address of a server that is asked in place of OpenAI's; empty for OpenAI's.
    std::string aiEndpoint;
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
    /// When the update feed was last read, as seconds of a `Date`; long ago when it never was.
    double lastUpdateCheck = distantPast;
};

/// The age in days from which a cache file may be moved, limited to 7 to 365. 30 for a value that
/// is not finite. Pure; any thread.
double clampedAgeDays(double days);

/// The most gigabytes that one clean-up may move, limited to 0.1 to 2. 2 for a value that is not
/// finite. Pure; any thread.
double clampedMaxGB(double gigabytes);

namespace settings_keys {

/// What the emergency stop does to a switch.
struct UnderStop {
    /// The stop turns it off, and it cannot be turned on again before the stop is cleared.
    bool isHeldBack = false;
    /// A start with the stop engaged turns it off in memory, whatever is stored.
    bool isOffAtStart = false;
};

/// One stored value: its key, the field that holds it, and its rules.
template <class Value>
struct Declared {
    std::string_view key;
    Value Settings::*field;
    /// Corrects a value before the field takes it, whether it was loaded or set. Null: any value is
    /// taken unchanged.
    Value (*adjust)(Value) = nullptr;
    /// Whether a stored value is valid; the default stands in for one that is not. Null: all are.
    bool (*isValid)(const Value&) = nullptr;
    UnderStop underStop = {};
};

inline constexpr auto flags = std::to_array<Declared<bool>>({
    // It changes nothing on the machine, so a start leaves it as it is stored.
    {.key = autoSelectKey,
     .field = &Settings::autoSelectTopOffender,
     .underStop = {.isHeldBack = true}},
    {.key = autoPurgeKey,
     .field = &Settings::autoPurgeSustainedMemory,
     .underStop = {.isHeldBack = true, .isOffAtStart = true}},
    {.key = autoRemoteScanKey,
     .field = &Settings::autoScanRemoteMacs,
     .underStop = {.isHeldBack = true, .isOffAtStart = true}},
    {includeLinuxMachinesKey, &Settings::includeLinuxMachines},
    {firstRunCompleteKey, &Settings::firstRunComplete},
    {aiSafeActionsKey, &Settings::aiSafeActionsEnabled},
    {notificationActionsKey, &Settings::notificationsIncludeActions},
    {aiRedactProcessDetailsKey, &Settings::aiRedactProcessDetails},
    {aiRequirePreviewKey, &Settings::aiRequirePreview},
    {.key = diskAutopilotKey,
     .field = &Settings::diskAutopilotEnabled,
     .underStop = {.isHeldBack = true, .isOffAtStart = true}},
    {automationEmergencyStopKey, &Settings::automationEmergencyStopEngaged},
});

inline constexpr auto numbers = std::to_array<Declared<double>>({
    {thresholdKey, &Settings::warningThreshold, nullptr,
     [](const double& percent) { return percent >= 65.0 && percent <= 95.0; }},
    {diskMinimumFreeKey, &Settings::diskMinimumFreeGB},
    {diskCleanupAgeKey, &Settings::diskCleanupAgeDays, clampedAgeDays},
    {diskMaxCleanupKey, &Settings::diskMaxCleanupGB, clampedMaxGB},
    {lastCheckKey, &Settings::lastUpdateCheck, nullptr,
     [](const double& seconds) { return std::isfinite(seconds); }},
});

inline constexpr auto texts = std::to_array<Declared<std::string>>({
    {sshUsernameKey, &Settings::sshUsername},
    {openAIModelKey, &Settings::openAIModel},
    {aiEndpointKey, &Settings::aiEndpoint},
});

inline constexpr auto textSets = std::to_array<Declared<TextSet>>({
    {protectedAppsKey, &Settings::protectedAppNames},
    {collapsedSectionsKey, &Settings::collapsedSections},
});

/// Stored as its raw value. An unknown one counts as apprentice.
inline constexpr auto autonomyModes = std::to_array<Declared<AIAutonomyMode>>({
    {aiAutonomyModeKey, &Settings::aiAutonomyMode},
});

template <class Value>
constexpr const auto& declaredValues() {
    if constexpr (std::is_same_v<Value, bool>) {
        return flags;
    } else if constexpr (std::is_same_v<Value, double>) {
        return numbers;
    } else if constexpr (std::is_same_v<Value, std::string>) {
        return texts;
    } else if constexpr (std::is_same_v<Value, TextSet>) {
        return textSets;
    } else {
        static_assert(std::is_same_v<Value, AIAutonomyMode>);
        return autonomyModes;
    }
}

/// The declaration of a field, for example `declared(&Settings::sshUsername)`. Every field has one.
template <class Value>
constexpr const Declared<Value>& declared(Value Settings::*field) {
    for (const Declared<Value>& each : declaredValues<Value>()) {
        if (each.field == field) {
            return each;
        }
    }
    throw "a field of the settings is not declared";
}

}  // namespace settings_keys
}  // namespace tallowcrest

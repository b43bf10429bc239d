#include "core/settings.h"

#include <cmath>
#include <string_view>

#include "core/activity_log.h"
#include "core/record_json.h"
#include "core/settings_keys.h"

namespace tallowcrest {
namespace {

namespace keys = settings_keys;

template <class Kind>
std::optional<Kind> readKind(const SettingsStore& store, std::string_view key) {
    std::optional<SettingsValue> value = store.read(key);
    if (value) {
        if (Kind* kind = std::get_if<Kind>(&*value)) {
            return std::move(*kind);
        }
    }
    return std::nullopt;
}

template <class Kind>
void load(const SettingsStore& store, std::string_view key, Kind& field) {
    if (std::optional<Kind> value = readKind<Kind>(store, key)) {
        field = std::move(*value);
    }
}

template <class Decoder, class Field>
void loadJSON(const SettingsStore& store, std::string_view key, Decoder decode, Field& field) {
    if (const auto data = readKind<JSONData>(store, key)) {
        if (auto decoded = decode(data->text)) {
            field = std::move(*decoded);
        }
    }
}

void loadTexts(const SettingsStore& store, std::string_view key,
               std::set<std::string, std::less<>>& field) {
    if (const auto texts = readKind<SettingsTextList>(store, key)) {
        field = {texts->begin(), texts->end()};
    }
}

template <class Element>
void keepFirst(std::vector<Element>& elements, std::size_t count) {
    if (elements.size() > count) {
        elements.erase(elements.begin() + static_cast<std::ptrdiff_t>(count), elements.end());
    }
}

template <class Element>
void keepLast(std::vector<Element>& elements, std::size_t count) {
    if (elements.size() > count) {
        elements.erase(elements.begin(), elements.end() - static_cast<std::ptrdiff_t>(count));
    }
}

double clamped(double value, double lowest, double highest, double notFinite) {
    if (!std::isfinite(value)) {
        return notFinite;
    }
    return value <= lowest ? lowest : value > highest ? highest : value;
}

}  // namespace

StoredState loadStoredState(const SettingsStore& store, const std::string& loginName) {
    StoredState state;
    Settings& settings = state.settings;

    const double threshold = readKind<double>(store, keys::thresholdKey).value_or(0.0);
    if (threshold >= 65.0 && threshold <= 95.0) {
        settings.warningThreshold = threshold;
    }

    loadJSON(store, keys::activityLogKey, record_json::decodeActivityLog, state.activityLog);
    keepFirst(state.activityLog, ActivityLog::maximumEvents);
    loadJSON(store, keys::historyKey, record_json::decodeHistory, state.history);
    keepLast(state.history, StoredState::maximumStoredHistory);
    load(store, keys::remoteTopAppsKey, state.remoteTopAppSamples);
    loadJSON(store, keys::aiRuleDraftsKey, record_json::decodeRuleDrafts, state.aiRuleDrafts);
    loadJSON(store, keys::remoteProfilesKey, record_json::decodeRemoteProfiles,
             state.remoteProfiles);
    loadJSON(store, keys::remoteHistoryKey, record_json::decodeRemoteHistory, state.remoteHistory);
    keepLast(state.remoteHistory, StoredState::maximumStoredHistory);
    loadJSON(store, keys::aiTrustRecordsKey, record_json::decodeTrustRecords, state.aiTrustRecords);
    loadJSON(store, keys::aiChatMessagesKey, record_json::decodeChatMessages, state.aiChatMessages);
    if (state.aiChatMessages) {
        keepLast(*state.aiChatMessages, StoredState::maximumStoredMessages);
    }

    loadTexts(store, keys::protectedAppsKey, settings.protectedAppNames);
    loadTexts(store, keys::collapsedSectionsKey, settings.collapsedSections);

    load(store, keys::autoSelectKey, settings.autoSelectTopOffender);
    load(store, keys::autoPurgeKey, settings.autoPurgeSustainedMemory);
    load(store, keys::autoRemoteScanKey, settings.autoScanRemoteMacs);
    load(store, keys::firstRunCompleteKey, settings.firstRunComplete);
    load(store, keys::aiSafeActionsKey, settings.aiSafeActionsEnabled);
    load(store, keys::notificationActionsKey, settings.notificationsIncludeActions);
    load(store, keys::aiRedactProcessDetailsKey, settings.aiRedactProcessDetails);
    load(store, keys::aiRequirePreviewKey, settings.aiRequirePreview);
    load(store, keys::diskAutopilotKey, settings.diskAutopilotEnabled);

    if (const auto mode = readKind<std::string>(store, keys::aiAutonomyModeKey)) {
        settings.aiAutonomyMode =
            autonomyModeFromRawValue(*mode).value_or(AIAutonomyMode::apprentice);
    }
    settings.sshUsername = loginName;
    load(store, keys::sshUsernameKey, settings.sshUsername);
    load(store, keys::openAIModelKey, settings.openAIModel);

    load(store, keys::diskMinimumFreeKey, settings.diskMinimumFreeGB);
    load(store, keys::diskCleanupAgeKey, settings.diskCleanupAgeDays);
    settings.diskCleanupAgeDays = clampedAgeDays(settings.diskCleanupAgeDays);
    load(store, keys::diskMaxCleanupKey, settings.diskMaxCleanupGB);
    settings.diskMaxCleanupGB = clampedMaxGB(settings.diskMaxCleanupGB);

    load(store, keys::automationEmergencyStopKey, settings.automationEmergencyStopEngaged);
    if (settings.automationEmergencyStopEngaged) {
        applyEmergencyStop(settings);
    }
    return state;
}

double clampedAgeDays(double days) {
    return clamped(days, 7.0, 365.0, 30.0);
}

double clampedMaxGB(double gigabytes) {
    return clamped(gigabytes, 0.1, 2.0, 2.0);
}

void applyEmergencyStop(Settings& settings) {
    settings.diskAutopilotEnabled = false;
    settings.autoPurgeSustainedMemory = false;
    settings.autoScanRemoteMacs = false;
    settings.aiAutonomyMode = AIAutonomyMode::apprentice;
}

}  // namespace tallowcrest

#include "core/settings/settings_owner.h"

#include <cmath>

#include "core/observable.h"

namespace tallowcrest {
namespace {

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

template <class Value>
std::optional<Value> readValue(const SettingsStore& store, std::string_view key) {
    if constexpr (std::is_same_v<Value, TextSet>) {
        const auto texts = readKind<SettingsTextList>(store, key);
        return texts ? std::optional(TextSet(texts->begin(), texts->end())) : std::nullopt;
    } else if constexpr (std::is_same_v<Value, AIAutonomyMode>) {
        const auto text = readKind<std::string>(store, key);
        return text ? autonomyModeFromRawValue(*text) : std::nullopt;
    } else {
        return readKind<Value>(store, key);
    }
}

double clamped(double value, double lowest, double highest, double notFinite) {
    if (!std::isfinite(value)) {
        return notFinite;
    }
    return value <= lowest ? lowest : value > highest ? highest : value;
}

/// The effect of an engaged stop on what a start has loaded.
void applyEmergencyStop(Settings& settings) {
    for (const auto& flag : settings_keys::flags) {
        if (flag.underStop.isOffAtStart) {
            settings.*flag.field = false;
        }
    }
    settings.aiAutonomyMode = AIAutonomyMode::apprentice;
}

}  // namespace

double clampedAgeDays(double days) {
    return clamped(days, 7.0, 365.0, 30.0);
}

double clampedMaxGB(double gigabytes) {
    return clamped(gigabytes, 0.1, 2.0, 2.0);
}

SettingsOwner::SettingsOwner(SettingsStore& store, MainQueue& mainQueue, std::string loginName)
    : store_(store), observable_(std::make_unique<Observable>(mainQueue)) {
    values_.sshUsername = std::move(loginName);
    loadValues<bool>();
    loadValues<double>();
    loadValues<std::string>();
    loadValues<TextSet>();
    loadValues<AIAutonomyMode>();
    if (values_.automationEmergencyStopEngaged) {
        applyEmergencyStop(values_);
    }
}

SettingsOwner::~SettingsOwner() = default;

void SettingsOwner::setSavingProblem(std::string sentence) {
    savingProblem_ = std::move(sentence);
    notifyObservers();
}

void SettingsOwner::notifyObservers() {
    observable_->changed();
}

template <class Value>
void SettingsOwner::loadValues() {
    for (const auto& each : settings_keys::declaredValues<Value>()) {
        std::optional<Value> value = readValue<Value>(store_, each.key);
        if (!value || (each.isValid != nullptr && !each.isValid(*value))) {
            continue;
        }
        values_.*each.field =
            each.adjust != nullptr ? each.adjust(std::move(*value)) : std::move(*value);
    }
}

SettingsTable SettingsOwner::loadRemoteTopApps() const {
    return readKind<SettingsTable>(store_, settings_keys::remoteTopAppsKey)
        .value_or(SettingsTable{});
}

void SettingsOwner::saveRemoteTopApps(SettingsTable samples) {
    store_.write(settings_keys::remoteTopAppsKey, std::move(samples));
}

void SettingsOwner::removeStorageAnalysisBookmark() {
    if (store_.read(settings_keys::storageAnalysisBookmarkKey)) {
        store_.write(settings_keys::storageAnalysisBookmarkKey, std::nullopt);
    }
}

std::optional<std::string> SettingsOwner::loadText(std::string_view key) const {
    auto data = readKind<JSONData>(store_, key);
    return data ? std::optional(std::move(data->text)) : std::nullopt;
}

void SettingsOwner::saveText(std::string_view key, std::optional<std::string> json) {
    if (json) {
        store_.write(key, JSONData{std::move(*json)});
    }
}

}  // namespace tallowcrest

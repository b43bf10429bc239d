#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "core/advisor_records.h"
#include "core/settings/settings_keys.h"
#include "core/settings/settings_store.h"

namespace tallowcrest {

using TextSet = std::set<std::string, std::less<>>;

/// What the owner chose. Each member is named after the field of the monitor that it is, and begins
/// with what counts when nothing is stored.
struct Settings {
    static constexpr double defaultWarningThreshold = 82.0;

    double warningThreshold = defaultWarningThreshold;  ///< percent
    TextSet protectedAppNames;
    TextSet collapsedSections;  ///< raw values of `DashboardSection`
    bool autoSelectTopOffender = true;
    bool autoPurgeSustainedMemory = false;
    bool autoScanRemoteMacs = false;
    std::string sshUsername;  ///< the login name when nothing is stored
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

/// Days of age from which a cache file may be moved: 7 to 365, and 30 for what is not finite.
double clampedAgeDays(double days);

/// Most gigabytes that one clean-up may move: 0.1 to 2, and 2 for what is not finite.
double clampedMaxGB(double gigabytes);

/// With the stop engaged, what acts by itself is switched off in memory. The stored values stay,
/// and so does the selection of the top offender, which changes nothing on the machine.
void applyEmergencyStop(Settings& settings);

namespace settings_keys {

/// One stored value: its key, the field that it is, and its rules.
template <class Value>
struct Declared {
    std::string_view key;
    Value Settings::*field;
    /// What a value becomes before it is held, whether it was loaded or set. Null: it stays.
    Value (*adjust)(Value) = nullptr;
    /// Which stored values count. Null: all of them.
    bool (*counts)(const Value&) = nullptr;
};

inline constexpr std::array<Declared<bool>, 10> flags{{
    {autoSelectKey, &Settings::autoSelectTopOffender},
    {autoPurgeKey, &Settings::autoPurgeSustainedMemory},
    {autoRemoteScanKey, &Settings::autoScanRemoteMacs},
    {firstRunCompleteKey, &Settings::firstRunComplete},
    {aiSafeActionsKey, &Settings::aiSafeActionsEnabled},
    {notificationActionsKey, &Settings::notificationsIncludeActions},
    {aiRedactProcessDetailsKey, &Settings::aiRedactProcessDetails},
    {aiRequirePreviewKey, &Settings::aiRequirePreview},
    {diskAutopilotKey, &Settings::diskAutopilotEnabled},
    {automationEmergencyStopKey, &Settings::automationEmergencyStopEngaged},
}};

inline constexpr std::array<Declared<double>, 4> numbers{{
    {thresholdKey, &Settings::warningThreshold, nullptr,
     [](const double& percent) { return percent >= 65.0 && percent <= 95.0; }},
    {diskMinimumFreeKey, &Settings::diskMinimumFreeGB},
    {diskCleanupAgeKey, &Settings::diskCleanupAgeDays, clampedAgeDays},
    {diskMaxCleanupKey, &Settings::diskMaxCleanupGB, clampedMaxGB},
}};

inline constexpr std::array<Declared<std::string>, 2> texts{{
    {sshUsernameKey, &Settings::sshUsername},
    {openAIModelKey, &Settings::openAIModel},
}};

inline constexpr std::array<Declared<TextSet>, 2> textSets{{
    {protectedAppsKey, &Settings::protectedAppNames},
    {collapsedSectionsKey, &Settings::collapsedSections},
}};

/// Stored as its raw value. An unknown one counts as apprentice.
inline constexpr std::array<Declared<AIAutonomyMode>, 1> autonomyModes{{
    {aiAutonomyModeKey, &Settings::aiAutonomyMode},
}};

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

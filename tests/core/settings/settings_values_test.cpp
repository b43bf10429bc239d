#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/core/settings/stored_settings.h"
#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

namespace keys = settings_keys;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

class SettingsValues : public StoredSettings {};
TALLOWCREST_OVER_BOTH_STORES(SettingsValues);

/// One value of every kind that a store can hold.
const std::vector<SettingsValue>& oneOfEachKind() {
    static const std::vector<SettingsValue> values{
        SettingsValue(true),
        SettingsValue(75.0),
        SettingsValue(std::string("trusted")),
        SettingsValue(SettingsTextList{"gauges"}),
        SettingsValue(SettingsTable{{"mac", 3}}),
        SettingsValue(JSONData{"[]"}),
        SettingsValue(SettingsData{"bytes"}),
    };
    return values;
}

struct NumberCase {
    double stored;
    double loaded;
};

TEST_P(SettingsValues, WarningThresholdIsIgnoredOutsideItsRange) {
    for (const auto& [stored, loaded] : std::vector<NumberCase>{
             {64.9, 82.0},
             {65.0, 65.0},
             {80.0, 80.0},
             {95.0, 95.0},
             {95.1, 82.0},
             {0.0, 82.0},
             {-70.0, 82.0},
             {nan, 82.0},
             {infinity, 82.0},
             {-infinity, 82.0},
         }) {
        EXPECT_EQ(settingsWith(keys::thresholdKey, stored).warningThreshold, loaded) << stored;
    }
}

TEST_P(SettingsValues, DiskMinimumFreeIsNotClamped) {
    for (const double stored : {-5.0, 0.0, 0.5, 1e6, infinity}) {
        EXPECT_EQ(settingsWith(keys::diskMinimumFreeKey, stored).diskMinimumFreeGB, stored);
    }
    EXPECT_TRUE(std::isnan(settingsWith(keys::diskMinimumFreeKey, nan).diskMinimumFreeGB));
}

TEST_P(SettingsValues, DiskCleanupAgeIsClampedAtLoadAndBySetters) {
    for (const auto& [given, clamped] : std::vector<NumberCase>{
             {3.0, 7.0},
             {7.0, 7.0},
             {7.1, 7.1},
             {30.0, 30.0},
             {365.0, 365.0},
             {365.1, 365.0},
             {1000.0, 365.0},
             {-1.0, 7.0},
             {nan, 30.0},
             {infinity, 30.0},
             {-infinity, 30.0},
         }) {
        EXPECT_EQ(settingsWith(keys::diskCleanupAgeKey, given).diskCleanupAgeDays, clamped)
            << given;
        EXPECT_EQ(clampedAgeDays(given), clamped) << given;
    }
}

TEST_P(SettingsValues, DiskMaxCleanupIsClampedAtLoadAndBySetters) {
    for (const auto& [given, clamped] : std::vector<NumberCase>{
             {5.0, 2.0},
             {2.0, 2.0},
             {1.5, 1.5},
             {0.11, 0.11},
             {0.1, 0.1},
             {0.05, 0.1},
             {0.0, 0.1},
             {-3.0, 0.1},
             {nan, 2.0},
             {infinity, 2.0},
             {-infinity, 2.0},
         }) {
        EXPECT_EQ(settingsWith(keys::diskMaxCleanupKey, given).diskMaxCleanupGB, clamped) << given;
        EXPECT_EQ(clampedMaxGB(given), clamped) << given;
    }
}

TEST_P(SettingsValues, NumbersKeepTheirDefaultForAnyOtherKind) {
    for (const SettingsValue& value : oneOfEachKind()) {
        if (std::holds_alternative<double>(value)) {
            continue;
        }
        EXPECT_EQ(settingsWith(keys::thresholdKey, value).warningThreshold, 82.0);
        EXPECT_EQ(settingsWith(keys::diskMinimumFreeKey, value).diskMinimumFreeGB, 20.0);
        EXPECT_EQ(settingsWith(keys::diskCleanupAgeKey, value).diskCleanupAgeDays, 30.0);
        EXPECT_EQ(settingsWith(keys::diskMaxCleanupKey, value).diskMaxCleanupGB, 2.0);
    }
}

struct FlagCase {
    std::string_view key;
    bool Settings::*field;
    bool whenAbsent;
};

const std::vector<FlagCase>& allFlags() {
    static const std::vector<FlagCase> flags{
        {keys::autoSelectKey, &Settings::autoSelectTopOffender, true},
        {keys::notificationActionsKey, &Settings::notificationsIncludeActions, true},
        {keys::aiRedactProcessDetailsKey, &Settings::aiRedactProcessDetails, true},
        {keys::aiRequirePreviewKey, &Settings::aiRequirePreview, true},
        {keys::autoPurgeKey, &Settings::autoPurgeSustainedMemory, false},
        {keys::autoRemoteScanKey, &Settings::autoScanRemoteMacs, false},
        {keys::includeLinuxMachinesKey, &Settings::includeLinuxMachines, false},
        {keys::firstRunCompleteKey, &Settings::firstRunComplete, false},
        {keys::aiSafeActionsKey, &Settings::aiSafeActionsEnabled, false},
        {keys::diskAutopilotKey, &Settings::diskAutopilotEnabled, false},
        {keys::automationEmergencyStopKey, &Settings::automationEmergencyStopEngaged, false},
    };
    return flags;
}

TEST_P(SettingsValues, FlagsAreTakenAsStored) {
    for (const auto& [key, field, whenAbsent] : allFlags()) {
        EXPECT_TRUE(settingsWith(key, true).*field) << key;
        EXPECT_FALSE(settingsWith(key, false).*field) << key;
    }
}

TEST_P(SettingsValues, FlagsKeepTheirOwnDefaultWhenAbsentOrOfAnyOtherKind) {
    for (const auto& [key, field, whenAbsent] : allFlags()) {
        EXPECT_EQ(load().values().*field, whenAbsent) << key;
        for (const SettingsValue& value : oneOfEachKind()) {
            if (!std::holds_alternative<bool>(value)) {
                EXPECT_EQ(settingsWith(key, value).*field, whenAbsent) << key;
            }
        }
    }
}

TEST_P(SettingsValues, AutonomyModeKnowsTheExactTextsAlone) {
    const std::vector<std::pair<std::string, AIAutonomyMode>> cases{
        {"apprentice", AIAutonomyMode::apprentice}, {"trusted", AIAutonomyMode::trusted},
        {"autopilot", AIAutonomyMode::autopilot},   {"Trusted", AIAutonomyMode::apprentice},
        {"AUTOPILOT", AIAutonomyMode::apprentice},  {"trusted ", AIAutonomyMode::apprentice},
        {"", AIAutonomyMode::apprentice},           {"master", AIAutonomyMode::apprentice},
    };
    for (const auto& [text, mode] : cases) {
        EXPECT_EQ(settingsWith(keys::aiAutonomyModeKey, text).aiAutonomyMode, mode) << text;
    }
    for (const SettingsValue& value : oneOfEachKind()) {
        if (!std::holds_alternative<std::string>(value)) {
            EXPECT_EQ(settingsWith(keys::aiAutonomyModeKey, value).aiAutonomyMode,
                      AIAutonomyMode::apprentice);
        }
    }
}

TEST_P(SettingsValues, TextsAreKeptEvenWhenEmpty) {
    EXPECT_EQ(settingsWith(keys::sshUsernameKey, std::string("admin")).sshUsername, "admin");
    EXPECT_EQ(settingsWith(keys::sshUsernameKey, std::string()).sshUsername, "");
    EXPECT_EQ(settingsWith(keys::openAIModelKey, std::string("other")).openAIModel, "other");
    EXPECT_EQ(settingsWith(keys::openAIModelKey, std::string()).openAIModel, "");
}

TEST_P(SettingsValues, TextsKeepTheirDefaultForAnyOtherKind) {
    for (const SettingsValue& value : oneOfEachKind()) {
        if (!std::holds_alternative<std::string>(value)) {
            EXPECT_EQ(settingsWith(keys::sshUsernameKey, value).sshUsername, "owner");
            EXPECT_EQ(settingsWith(keys::openAIModelKey, value).openAIModel, "gpt-5.6-luna");
        }
    }
}

TEST_P(SettingsValues, TextListsAreSetsAndKeepUnknownTexts) {
    const SettingsTextList list{"gauges", "no such section", "gauges", ""};
    EXPECT_THAT(settingsWith(keys::collapsedSectionsKey, list).collapsedSections,
                ElementsAre("", "gauges", "no such section"));
    EXPECT_THAT(settingsWith(keys::protectedAppsKey, list).protectedAppNames,
                ElementsAre("", "gauges", "no such section"));
    for (const SettingsValue& value : oneOfEachKind()) {
        if (!std::holds_alternative<SettingsTextList>(value)) {
            EXPECT_THAT(settingsWith(keys::collapsedSectionsKey, value).collapsedSections,
                        IsEmpty());
            EXPECT_THAT(settingsWith(keys::protectedAppsKey, value).protectedAppNames, IsEmpty());
        }
    }
}

TEST_P(SettingsValues, RemoteTopAppSamplesAreATableOfIntegersOrNothing) {
    EXPECT_THAT(loadWith(keys::remoteTopAppsKey, SettingsTable{{"mac|Arc", 3}}).loadRemoteTopApps(),
                ElementsAre(Pair("mac|Arc", 3)));
    for (const SettingsValue& value : oneOfEachKind()) {
        if (!std::holds_alternative<SettingsTable>(value)) {
            EXPECT_THAT(loadWith(keys::remoteTopAppsKey, value).loadRemoteTopApps(), IsEmpty());
        }
    }
}

}  // namespace
}  // namespace tallowcrest

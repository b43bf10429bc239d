#include "presentation/words/automation_lines.h"

#include <QDate>
#include <QDateTime>
#include <QTime>
#include <gmock/gmock.h>

#include "monitor/load_rules.h"
#include "tests/presentation/scoped_locale.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// A date in March 2026, in the local time zone.
Date at(int day, int hour, int minute) {
    const QDateTime time(QDate(2026, 3, day), QTime(hour, minute, 12));
    return Date::fromUnixSeconds(static_cast<double>(time.toSecsSinceEpoch()));
}

ActivityEvent event(Date date, std::string title, std::string detail) {
    return {UUID::random(), date, std::move(title), std::move(detail)};
}

class AutomationLinesTest : public testing::Test {
protected:
    AutomationLinesTest() { snapshot.emplace().sampledAt = at(14, 15, 0); }
    const ScopedLocale locale{"en_US"};

    AutomationFacts facts() const { return {settings, dates, log, snapshot}; }
    AutomationLine line(AutomationSwitch which) { return automationLine(which, facts()); }
    std::string lastActed(AutomationSwitch which) {
        return line(which).lastActed.replace(QChar(0x202f), u' ').toStdString();
    }

    Settings settings;
    AutomationDates dates;
    std::vector<ActivityEvent> log;
    std::optional<SystemSnapshot> snapshot;
};

TEST_F(AutomationLinesTest, TheRulesInTheirOrderWordForWord) {
    std::string words;
    for (const AutomationSwitch which : autoRuleSwitches) {
        words +=
            line(which).title.toStdString() + '\n' + line(which).explanation.toStdString() + '\n';
    }
    EXPECT_EQ(words,
              "Auto-select safest top offender\n"
              "When load crosses the warning threshold, select a non-protected top app for "
              "review. Does not quit anything.\n"
              "Auto-purge after sustained high memory\n"
              "Purges reclaimable file caches only after memory pressure stays high, with a "
              "15-minute cooldown.\n"
              "Auto-scan Tailscale Macs\n"
              "Refreshes remote Mac health about every 15 minutes when online Tailnet Macs are "
              "available.\n");
}

TEST_F(AutomationLinesTest, TheOtherSwitchesWordForWord) {
    const AutomationLine disk = line(AutomationSwitch::diskAutopilotEnabled);
    EXPECT_EQ(disk.title, u"Enable Disk Autopilot"_s);
    EXPECT_EQ(disk.explanation,
              u"Uses the Advisor autonomy mode above. Apprentice prepares reviews, "
              "Trusted keeps execution manual, and Autopilot may act only after 3 "
              "successful reviewed disk cleanups reach 75% trust."_s);
    EXPECT_EQ(line(AutomationSwitch::notificationsIncludeActions).title,
              u"Show action buttons in warning notifications"_s);
    const AutomationLine safeActions = line(AutomationSwitch::aiSafeActionsEnabled);
    EXPECT_EQ(safeActions.title, u"Allow AI safe actions"_s);
    EXPECT_EQ(safeActions.explanation,
              u"Runs the first safe suggestion of each analysis. Emergency Stop does not turn "
              "this off."_s);
    const AutomationLine linux = line(AutomationSwitch::includeLinuxMachines);
    EXPECT_EQ(linux.title, u"Include Linux machines"_s);
    EXPECT_EQ(linux.explanation,
              u"Remote scans, automatic or not, also sample the Linux machines of the tailnet."_s);
}

TEST_F(AutomationLinesTest, TheStopShowsOnlyOnTheSwitchesItGoverns) {
    for (const bool isOn : {true, false}) {
        settings.autoSelectTopOffender = settings.autoPurgeSustainedMemory = isOn;
        settings.autoScanRemoteMacs = settings.diskAutopilotEnabled = isOn;
        settings.aiSafeActionsEnabled = settings.notificationsIncludeActions = isOn;
        settings.includeLinuxMachines = isOn;
        const SwitchState unstopped = isOn ? SwitchState::on : SwitchState::off;
        for (const AutomationSwitch which : allAutomationSwitches) {
            const bool isOutside = which == AutomationSwitch::aiSafeActionsEnabled ||
                                   which == AutomationSwitch::notificationsIncludeActions ||
                                   which == AutomationSwitch::includeLinuxMachines;
            settings.automationEmergencyStopEngaged = false;
            EXPECT_EQ(line(which).state, unstopped);
            settings.automationEmergencyStopEngaged = true;
            EXPECT_EQ(line(which).state, isOutside ? unstopped : SwitchState::stopped);
            EXPECT_EQ(line(which).isOn, isOn) << "the switch shows the setting even while stopped";
        }
    }
}

TEST_F(AutomationLinesTest, IdentifiersAndStatesHaveDifferentWords) {
    QStringList identifiers;
    for (const AutomationSwitch which : allAutomationSwitches) {
        identifiers.append(automationIdentifier(which));
    }
    EXPECT_EQ(identifiers.join(u' '),
              u"auto-select auto-purge auto-scan disk-autopilot ai-safe-actions "
              "notification-actions include-linux"_s);
    EXPECT_EQ(stateWord(SwitchState::on), u"On"_s);
    EXPECT_EQ(stateWord(SwitchState::off), u"Off"_s);
    EXPECT_EQ(stateWord(SwitchState::stopped), u"Stopped"_s);
}

TEST_F(AutomationLinesTest, CountsTheEnabledAutomations) {
    settings.autoSelectTopOffender = false;
    const auto words = [this] { return automationsOn(settings).toStdString(); };
    EXPECT_EQ(words(), "No automations on");
    settings.notificationsIncludeActions = true;
    settings.includeLinuxMachines = true;
    EXPECT_EQ(words(), "No automations on") << "they do not act automatically";
    settings.aiSafeActionsEnabled = true;
    EXPECT_EQ(words(), "1 automation on");
    settings.autoSelectTopOffender = true;
    EXPECT_EQ(words(), "2 automations on");
    settings.autoPurgeSustainedMemory = true;
    settings.autoScanRemoteMacs = true;
    settings.diskAutopilotEnabled = true;
    EXPECT_EQ(words(), "5 automations on");
}

TEST_F(AutomationLinesTest, SummaryListsAllAutomations) {
    settings.autoSelectTopOffender = true;
    dates.lastAutoSelectDate = at(14, 14, 30);
    const auto words = [this] {
        return automationsSummary(facts()).replace(QChar(0x202f), u' ').toStdString();
    };
    EXPECT_EQ(words(),
              "Auto-select safest top offender: On. Last acted 2:30 PM\n"
              "Auto-purge after sustained high memory: Off. No recent action\n"
              "Auto-scan Tailscale Macs: Off. No recent action\n"
              "Enable Disk Autopilot: Off. No recent check\n"
              "Allow AI safe actions: Off");
    settings.automationEmergencyStopEngaged = true;
    EXPECT_EQ(words(),
              "Auto-select safest top offender: Stopped. Last acted 2:30 PM\n"
              "Auto-purge after sustained high memory: Stopped. No recent action\n"
              "Auto-scan Tailscale Macs: Stopped. No recent action\n"
              "Enable Disk Autopilot: Stopped. No recent check\n"
              "Allow AI safe actions: Off");
}

TEST_F(AutomationLinesTest, SaysThatItHasNotActedYet) {
    for (const AutomationSwitch which : autoRuleSwitches) {
        EXPECT_EQ(lastActed(which), "No recent action");
        EXPECT_FALSE(line(which).hasActed);
    }
    EXPECT_EQ(lastActed(AutomationSwitch::diskAutopilotEnabled), "No recent check");
    EXPECT_EQ(lastActed(AutomationSwitch::notificationsIncludeActions), "");
    EXPECT_EQ(lastActed(AutomationSwitch::aiSafeActionsEnabled), "");
}

TEST_F(AutomationLinesTest, EachRuleHasItsOwnDate) {
    dates.lastWarningDate = at(14, 9, 1);
    dates.lastAutoPurgeDate = at(14, 14, 3);
    dates.lastAutoRemoteScanDate = at(14, 8, 5);
    dates.lastDiskAutopilotCheckDate = at(14, 13, 30);
    EXPECT_EQ(lastActed(AutomationSwitch::autoSelectTopOffender), "No recent action");
    EXPECT_EQ(lastActed(AutomationSwitch::autoPurgeSustainedMemory), "Last acted 2:03 PM");
    EXPECT_TRUE(line(AutomationSwitch::autoPurgeSustainedMemory).hasActed);
    EXPECT_EQ(lastActed(AutomationSwitch::autoScanRemoteMacs), "Last acted 8:05 AM");
    EXPECT_EQ(lastActed(AutomationSwitch::diskAutopilotEnabled), "Last checked 1:30 PM");
}

TEST_F(AutomationLinesTest, UsesTheTimeInTheActivityLogAndTheDateOfAnotherDay) {
    for (const auto& [day, words] :
         {std::pair{14, "Last acted 2:30 PM"}, {12, "Last acted 3/12/2026, 2:30 PM"}}) {
        log = {event(at(day, 14, 30), "Auto Rule", load_rules::autoSelectDetail("editor", 82.0))};
        EXPECT_EQ(lastActed(AutomationSwitch::autoSelectTopOffender), words);
    }
}

TEST_F(AutomationLinesTest, TimesFollowTheLocale) {
    const ScopedLocale german("de_DE");
    dates.lastAutoPurgeDate = at(14, 14, 3);
    EXPECT_EQ(lastActed(AutomationSwitch::autoPurgeSustainedMemory), "Last acted 14:03");
}

}  // namespace
}  // namespace tallowcrest

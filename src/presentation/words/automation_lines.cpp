#include "presentation/words/automation_lines.h"

#include <algorithm>
#include <optional>

#include <QStringList>

#include "monitor/auto_rules.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

struct SwitchText {
    AutomationSwitch which;
    const char* identifier;
    const char* title;
    const char* explanation;
    const char* acted = "";
    const char* neverActed = "";
};

constexpr const char* lastTime = "Last acted %1";
constexpr const char* noAction = "No recent action";

constexpr std::array switchTexts{
    SwitchText{AutomationSwitch::autoSelectTopOffender, "auto-select",
               "Auto-select safest top offender",
               "When load crosses the warning threshold, select a non-protected top app for "
               "review. Does not quit anything.",
               lastTime, noAction},
    SwitchText{AutomationSwitch::autoPurgeSustainedMemory, "auto-purge",
               "Auto-purge after sustained high memory",
               "Purges reclaimable file caches only after memory pressure stays high, with a "
               "15-minute cooldown.",
               lastTime, noAction},
    SwitchText{AutomationSwitch::autoScanRemoteMacs, "auto-scan", "Auto-scan Tailscale Macs",
               "Refreshes remote Mac health about every 15 minutes when online Tailnet Macs are "
               "available.",
               lastTime, noAction},
    SwitchText{AutomationSwitch::diskAutopilotEnabled, "disk-autopilot", "Enable Disk Autopilot",
               "Uses the Advisor autonomy mode above. Apprentice prepares reviews, Trusted keeps "
               "execution manual, and Autopilot may act only after 3 successful reviewed disk "
               "cleanups reach 75% trust.",
               "Last checked %1", "No recent check"},
    SwitchText{AutomationSwitch::aiSafeActionsEnabled, "ai-safe-actions", "Allow AI safe actions",
               "Runs the first safe suggestion of each analysis. Emergency Stop does not turn this "
               "off."},
    SwitchText{AutomationSwitch::notificationsIncludeActions, "notification-actions",
               "Show action buttons in warning notifications", ""},
    SwitchText{AutomationSwitch::includeLinuxMachines, "include-linux", "Include Linux machines",
               "Remote scans, automatic or not, also sample the Linux machines of the tailnet."},
};
static_assert(switchTexts.size() == allAutomationSwitches.size());

const SwitchText& textOf(AutomationSwitch which) {
    return *std::find_if(switchTexts.begin(), switchTexts.end(),
                         [which](const SwitchText& each) { return each.which == which; });
}

/// Whether it acts automatically.
bool isAutomation(AutomationSwitch which) {
    return which != AutomationSwitch::notificationsIncludeActions &&
           which != AutomationSwitch::includeLinuxMachines;
}

}  // namespace

QString stateWord(SwitchState state) {
    switch (state) {
        case SwitchState::on:
            return u"On"_s;
        case SwitchState::off:
            return u"Off"_s;
        case SwitchState::stopped:
            return u"Stopped"_s;
    }
    return {};
}

QString automationIdentifier(AutomationSwitch which) {
    return QString::fromLatin1(textOf(which).identifier);
}

QString automationsOn(const Settings& settings) {
    const auto count = std::count_if(allAutomationSwitches.begin(), allAutomationSwitches.end(),
                                     [&settings](AutomationSwitch which) {
                                         return isAutomation(which) && isOn(settings, which);
                                     });
    return count == 0   ? u"No automations on"_s
           : count == 1 ? u"1 automation on"_s
                        : u"%1 automations on"_s.arg(dashboard_text::count(count));
}

AutomationLine automationLine(AutomationSwitch which, const AutomationFacts& facts) {
    const SwitchText& text = textOf(which);
    AutomationLine line;
    line.title = QString::fromLatin1(text.title);
    line.explanation = QString::fromLatin1(text.explanation);
    line.isOn = isOn(facts.settings, which);
    const bool isStopped = facts.settings.automationEmergencyStopEngaged && isHeldBackByStop(which);
    line.state = isStopped ? SwitchState::stopped : line.isOn ? SwitchState::on : SwitchState::off;
    const std::optional<Date> date = load_rules::lastActed(which, facts.dates, facts.activityLog);
    const Date now = dashboard_text::sampledAt(facts.snapshot).value_or(Date{});
    line.lastActed =
        date ? QString::fromLatin1(text.acted).arg(dashboard_text::shortTimeText(*date, now))
             : QString::fromLatin1(text.neverActed);
    line.hasActed = date.has_value();
    return line;
}

QString automationsSummary(const AutomationFacts& facts) {
    QStringList lines;
    for (const AutomationSwitch which : allAutomationSwitches) {
        if (!isAutomation(which)) {
            continue;
        }
        const AutomationLine line = automationLine(which, facts);
        QString words = line.title + u": "_s + stateWord(line.state);
        if (!line.lastActed.isEmpty()) {
            words += u". "_s + line.lastActed;
        }
        lines.append(words);
    }
    return lines.join(u'\n');
}

}  // namespace tallowcrest

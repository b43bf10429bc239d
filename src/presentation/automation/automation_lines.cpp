#include "presentation/automation/automation_lines.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "presentation/overview/activity_lines.h"

namespace tallowcrest {
namespace {

using LastDate = std::optional<Date> AutomationDates::*;

struct SwitchText {
    AutomationSwitch which;
    const char* title;
    const char* explanation;
    /// The emergency stop holds it back.
    bool isStoppable;
    LastDate lastDate = nullptr;
    /// How the rule's own entries of the activity log begin; empty: it writes none.
    std::string_view logged = {};
    const char* acted = "";
    const char* neverActed = "";
};

constexpr const char* lastActed = "Last acted %1";
constexpr const char* noAction = "No recent action";

constexpr std::array switchTexts{
    SwitchText{AutomationSwitch::autoSelectTopOffender, "Auto-select safest top offender",
               "When load crosses the warning threshold, select a non-protected top app for "
               "review. Does not quit anything.",
               true, nullptr, "Selected ", lastActed, noAction},
    SwitchText{AutomationSwitch::autoPurgeSustainedMemory, "Auto-purge after sustained high memory",
               "Purges reclaimable file caches only after memory pressure stays high, with a "
               "15-minute cooldown.",
               true, &AutomationDates::lastAutoPurgeDate, "Purged ", lastActed, noAction},
    SwitchText{AutomationSwitch::autoScanRemoteMacs,
               "Auto-scan Tailscale Macs",
               "Refreshes remote Mac health about every 15 minutes when online Tailnet Macs are "
               "available.",
               true,
               &AutomationDates::lastAutoRemoteScanDate,
               {},
               lastActed,
               noAction},
    SwitchText{AutomationSwitch::diskAutopilotEnabled,
               "Enable Disk Autopilot",
               "Uses the Advisor autonomy mode above. Apprentice prepares reviews, Trusted keeps "
               "execution manual, and Autopilot may act only after 3 successful reviewed disk "
               "cleanups reach 75% trust.",
               true,
               &AutomationDates::lastDiskAutopilotCheckDate,
               {},
               "Last checked %1",
               "No recent check"},
    SwitchText{AutomationSwitch::aiSafeActionsEnabled, "Allow AI safe actions", "", false},
    SwitchText{AutomationSwitch::notificationsIncludeActions,
               "Show action buttons in warning notifications", "", false},
};
static_assert(switchTexts.size() == allAutomationSwitches.size());

QString timeText(Date date, Date now) {
    ActivityEvent event;
    event.date = date;
    return activityLines({event}, 1, now).front().time;
}

std::optional<Date> lastDate(const SwitchText& text, const AutomationFacts& facts) {
    if (text.lastDate != nullptr && facts.dates.*text.lastDate) {
        return facts.dates.*text.lastDate;
    }
    if (text.logged.empty()) {
        return std::nullopt;
    }
    const auto found = std::find_if(
        facts.activityLog.begin(), facts.activityLog.end(), [&text](const ActivityEvent& event) {
            return event.title == "Auto Rule" && event.detail.starts_with(text.logged);
        });
    return found != facts.activityLog.end() ? std::optional(found->date) : std::nullopt;
}

}  // namespace

QString armedWord(ArmedState state) {
    switch (state) {
        case ArmedState::on:
            return QStringLiteral("On");
        case ArmedState::off:
            return QStringLiteral("Off");
        case ArmedState::stopped:
            return QStringLiteral("Stopped");
    }
    return {};
}

AutomationLine automationLine(AutomationSwitch which, bool isOn, const AutomationFacts& facts) {
    const SwitchText& text =
        *std::find_if(switchTexts.begin(), switchTexts.end(),
                      [which](const SwitchText& each) { return each.which == which; });
    AutomationLine line;
    line.title = QString::fromLatin1(text.title);
    line.explanation = QString::fromLatin1(text.explanation);
    line.isOn = isOn;
    line.state = facts.isStopEngaged && text.isStoppable ? ArmedState::stopped
                 : isOn                                  ? ArmedState::on
                                                         : ArmedState::off;
    const std::optional<Date> date = lastDate(text, facts);
    line.lastActed = date ? QString::fromLatin1(text.acted).arg(timeText(*date, facts.now))
                          : QString::fromLatin1(text.neverActed);
    line.hasActed = date.has_value();
    return line;
}

}  // namespace tallowcrest

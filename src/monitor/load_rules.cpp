#include "monitor/load_rules.h"

#include <algorithm>
#include <cstddef>

#include <fmt/format.h>

#include "actions/automation.h"
#include "core/activity_kinds.h"
#include "core/number_text.h"

namespace tallowcrest::load_rules {
namespace {

std::optional<Date> lastLogged(std::span<const ActivityEvent> log, ActivityKind kind) {
    const auto found = std::find_if(
        log.begin(), log.end(), [kind](const ActivityEvent& event) { return event.kind == kind; });
    return found != log.end() ? std::optional(found->date) : std::nullopt;
}

}  // namespace

bool isOverThreshold(const SystemSnapshot& snapshot, double warningThreshold) {
    return warningThreshold <= snapshot.cpuPercent || warningThreshold <= snapshot.memory.pressure;
}

bool mayWarn(std::optional<Date> last, Date now) {
    return !last || !(secondsBetween(*last, now) < warningDistance);
}

bool mayAct(std::optional<Date> last, Date now, double distance) {
    return !last || secondsBetween(*last, now) > distance;
}

double sustainedMemoryAverage(std::span<const HistoryPoint> history) {
    constexpr std::size_t mostPoints = 30;
    constexpr std::size_t fewestPoints = 15;
    const auto newest = history.last(std::min(history.size(), mostPoints));
    if (newest.size() < fewestPoints) {
        return 0.0;
    }
    double sum = 0.0;
    for (const HistoryPoint& point : newest) {
        sum += point.memory;
    }
    return sum / static_cast<double>(newest.size());
}

std::string topProcessName(const SystemSnapshot& snapshot) {
    return snapshot.topProcesses.empty() ? "Unknown"
                                         : std::string(snapshot.topProcesses.front().displayName());
}

std::string warningDetail(const SystemSnapshot& snapshot) {
    return fmt::format("High load detected. CPU {}%, memory {}%. Top process: {}.",
                       roundedToInteger(snapshot.cpuPercent),
                       roundedToInteger(snapshot.memory.pressure), topProcessName(snapshot));
}

std::string autoSelectDetail(std::string_view group, double warningThreshold) {
    return fmt::format("Selected {} because system load crossed {}%.", group,
                       cutToInteger(warningThreshold));
}

std::optional<Date> lastActed(AutomationSwitch which, const AutomationDates& dates,
                              std::span<const ActivityEvent> log) {
    switch (which) {
        case AutomationSwitch::autoSelectTopOffender:
            return dates.lastAutoSelectDate ? dates.lastAutoSelectDate
                                            : lastLogged(log, ActivityKind::autoSelect);
        case AutomationSwitch::autoPurgeSustainedMemory:
            return dates.lastAutoPurgeDate ? dates.lastAutoPurgeDate
                                           : lastLogged(log, ActivityKind::autoPurge);
        case AutomationSwitch::autoScanRemoteMacs:
            return dates.lastAutoRemoteScanDate;
        case AutomationSwitch::diskAutopilotEnabled:
            return dates.lastDiskAutopilotCheckDate;
        case AutomationSwitch::aiSafeActionsEnabled:
        case AutomationSwitch::notificationsIncludeActions:
        case AutomationSwitch::includeLinuxMachines:
            break;
    }
    return std::nullopt;
}

}  // namespace tallowcrest::load_rules

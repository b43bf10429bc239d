#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/activity_event.h"
#include "core/date.h"
#include "core/local_records.h"

namespace tallowcrest {

enum class AutomationSwitch;

/// When each automation last acted in this run; absent when it has not. Not stored, so after a
/// restart every automation may act at once.
struct AutomationDates {
    std::optional<Date> lastAutoSelectDate;
    std::optional<Date> lastWarningDate;
    std::optional<Date> lastAutoPurgeDate;
    std::optional<Date> lastAutoRemoteScanDate;
    std::optional<Date> lastDiskAutopilotCheckDate;

    bool operator==(const AutomationDates&) const = default;
};

}  // namespace tallowcrest

/// The conditions, pauses and texts of the load warning and the automatic rules. Pure; any thread.
namespace tallowcrest::load_rules {

/// The least number of seconds between two actions, by the wall clock: the dates are also shown to
/// the owner, and the time that the machine sleeps counts. When the clock is set back, a pause
/// takes longer; when it is set forward, the worst is a question or a warning too early. The next
/// warning may come exactly at its distance; a rule acts again only after more than its distance.
inline constexpr double warningDistance = 180.0;
inline constexpr double autoPurgeDistance = 900.0;
inline constexpr double autoRemoteScanDistance = 900.0;
inline constexpr double diskCheckDistance = 3600.0;

/// Whether the CPU load or the memory pressure is at or above the threshold, in percent.
bool isOverThreshold(const SystemSnapshot& snapshot, double warningThreshold);

/// Whether a warning may be given at `now`. `last` is absent when there was none yet.
bool mayWarn(std::optional<Date> last, Date now);

/// Whether a rule with this distance may act at `now`. `last` is absent when it has not acted yet.
bool mayAct(std::optional<Date> last, Date now, double distance);

/// The mean memory pressure of the newest 30 points, about two minutes; 0 with fewer than 15.
/// `history` is oldest first.
double sustainedMemoryAverage(std::span<const HistoryPoint> history);

/// The name of the heaviest process, or "Unknown" without processes.
std::string topProcessName(const SystemSnapshot& snapshot);

/// The text of the warning in the activity log, with rounded percentages.
std::string warningDetail(const SystemSnapshot& snapshot);

/// The text of the rule that selects in the activity log. The threshold is truncated to a whole
/// number, not rounded.
std::string autoSelectDetail(std::string_view group, double warningThreshold);

/// When an automation last acted in this run, or else the date of its newest entry in `log`, which
/// is newest first and may reach back to earlier runs. Only the rules that select and purge write
/// entries. Absent when neither is known, and for a switch that does not act at certain times.
std::optional<Date> lastActed(AutomationSwitch which, const AutomationDates& dates,
                              std::span<const ActivityEvent> log);

}  // namespace tallowcrest::load_rules

#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/date.h"
#include "core/local_records.h"

/// When the load calls for something, how often it may, and in which words. Pure; any thread.
namespace tallowcrest::load_rules {

/// Seconds that must lie between two times that a rule acts. After a warning of the load the next
/// one may come at this distance; the others only beyond theirs.
inline constexpr double warningDistance = 180.0;
inline constexpr double autoPurgeDistance = 900.0;
inline constexpr double autoRemoteScanDistance = 900.0;
inline constexpr double diskCheckDistance = 3600.0;

/// Whether the CPU or the memory pressure stands at the threshold, in percent, or above it.
bool isOverThreshold(const SystemSnapshot& snapshot, double warningThreshold);

/// Whether a warning may come at `now`. An absent date stands for the distant past.
bool mayWarn(std::optional<Date> last, Date now);

/// Whether a rule with this distance may act at `now`. An absent date stands for the distant past.
bool mayAct(std::optional<Date> last, Date now, double distance);

/// The mean memory pressure of the newest 30 points, about two minutes; 0 with fewer than 15.
/// `history` is oldest first.
double sustainedMemoryAverage(std::span<const HistoryPoint> history);

/// The heaviest process by name, "Unknown" without one.
std::string topProcessName(const SystemSnapshot& snapshot);

std::string warningDetail(const SystemSnapshot& snapshot);

/// The threshold is cut to a whole number here, not rounded.
std::string autoSelectDetail(std::string_view group, double warningThreshold);

}  // namespace tallowcrest::load_rules

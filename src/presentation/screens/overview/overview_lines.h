#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QString>

#include "core/date.h"
#include "core/local_records.h"
#include "core/remote_records.h"
#include "core/settings/settings.h"
#include "sampling/protection.h"

/// The texts of the Overview's blocks. Main thread.
namespace tallowcrest {

/// One bar of "Top App Memory".
struct AppMemoryBar {
    std::string name;
    double megabytes = 0.0;
    double fraction = 0.0;  ///< of the largest group, 0 to 1

    bool operator==(const AppMemoryBar&) const = default;
};

/// The largest groups by resident memory, largest first, at most `limit`.
std::vector<AppMemoryBar> topAppMemory(const std::vector<AppImpact>& groups, std::size_t limit);

/// What the overview says about the heaviest application group.
struct TopOffender {
    enum class State { unknown, stable, offender };

    State state = State::unknown;
    QString title;   ///< may be empty
    QString detail;  ///< may be empty
    QString group;   ///< the name of an offender; empty otherwise
    /// The process of the offender that can be reviewed. Absent if it has left the table, or if it
    /// is protected, so that selecting it would be refused.
    std::optional<std::int64_t> reviewPID;

    bool operator==(const TopOffender&) const = default;
};

/// The state that decides about the top offender. The references must outlive the value.
struct TopOffenderFacts {
    const std::optional<SystemSnapshot>& snapshot;  ///< absent before the first sample
    const std::vector<ProcessSample>& latestProcesses;
    const Settings& settings;
    ProtectionPolicy protection;
};

/// The first group is the offender when the CPU percentage or the memory pressure is at or above
/// the warning threshold; otherwise the state is stable. Unknown without a sample, or with one that
/// has no groups.
TopOffender topOffender(const TopOffenderFacts& facts);

/// How many other machines need attention.
struct RemoteAlerts {
    QString count;  ///< "3 Remote Alerts"; empty for none
    QString age;    ///< "Scanned 2 min ago", by the oldest record

    bool operator==(const RemoteAlerts&) const = default;
};
RemoteAlerts remoteAlerts(const std::vector<RemoteHealth>& machines, Date now);

}  // namespace tallowcrest

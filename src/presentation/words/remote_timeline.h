#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <QString>

#include "core/date.h"
#include "core/remote_records.h"

namespace tallowcrest {

/// One machine on the axis of the scans.
struct RemoteTimelineLine {
    QString name;  ///< the nickname or the host name, of at most a few dozen characters
    /// In percent, one for each scan. Where a scan did not reach the machine, its index is in
    /// `missing` and the values are 0.
    std::vector<double> cpu;
    std::vector<double> memory;
    std::vector<std::size_t> missing;  ///< ascending
    QString host = {};                 ///< empty where it is the name

    bool operator==(const RemoteTimelineLine&) const = default;
};

/// What the timeline of the other machines shows.
struct RemoteTimeline {
    std::vector<Date> scans = {};  ///< when each scan reached its first machine, oldest first
    std::vector<std::size_t> gaps =
        {};  ///< the scans before which none was made for long, ascending
    std::vector<RemoteTimelineLine> lines =
        {};  ///< the machine that needs attention most comes first
    std::size_t machinesLeftOut = 0;
    bool showsSelected = false;  ///< the selected machine stands for one with a higher load
};

/// As many as can be told apart.
inline constexpr std::size_t mostRemoteLines = 4;

/// `history` comes oldest first, all machines together, and does not say which points are of one
/// scan: a scan ends at the longest pause before a machine appears again, or where no point follows
/// within five minutes. Of more than `mostRemoteLines` machines those remain that the last scan
/// reached, before others, and whose last CPU or memory is highest, and in any case
/// `selectedHost`, if it is not empty. `profiles` are by host name. Main thread.
RemoteTimeline remoteTimeline(const std::vector<RemoteHistoryPoint>& history,
                              std::string_view selectedHost = {},
                              const std::map<std::string, RemoteProfile>& profiles = {});

/// The host name in the record `id`; empty when no machine has that record.
std::string hostOfMachine(const std::vector<RemoteHealth>& machines, const std::string& id);

/// "12 remote samples retained across recent scans.", or what to do without any.
QString remoteSamplesRetained(std::size_t points);

/// "Last sample 2:03 PM", with the date if `now` is on another day; empty without a point.
QString lastRemoteSample(const std::vector<RemoteHistoryPoint>& history, Date now);

/// "Shows the 4 machines with the highest load. 3 more are not drawn.", or "Shows the selected
/// machine and the 3 with the highest load." in its first part; empty when all are drawn.
QString remoteMachinesLeftOut(const RemoteTimeline& timeline);

}  // namespace tallowcrest

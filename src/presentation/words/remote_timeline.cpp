#include "presentation/words/remote_timeline.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

// The points of a scan are stamped one by one, each when its machine answered. Within a scan they
// are apart by what the scan spends on the machines between them that do not answer.
constexpr double longestSample = 6.0;  ///< that of one machine, with its deadline of 5 s
/// Shorter than the 15 minutes between two automatic scans, and enough for fifty machines.
constexpr double longestPauseInScan = 50 * longestSample;
constexpr double longestStep = 3 * 900.0;

/// One machine, with the index of its point in each scan that reached it.
struct Machine {
    std::string_view hostName;
    std::map<std::size_t, const RemoteHistoryPoint*> points = {};

    std::size_t lastScan() const { return points.rbegin()->first; }
    double lastLoad() const {
        const RemoteHistoryPoint& last = *points.rbegin()->second;
        // std::max gives its first argument when the others are not numbers.
        return std::max({0.0, last.cpu, last.memory});
    }
};

using History = std::vector<RemoteHistoryPoint>;

double pauseBefore(const History& history, std::size_t point) {
    return secondsBetween(history[point - 1].date, history[point].date);
}

/// Where between `last` and `again`, two points of one host name, a new scan begins: after the
/// longest pause. Absent if no pause is longer than the sample of one machine: two machines of the
/// same name follow each other within one scan.
std::optional<std::size_t> scanStart(const History& history, std::size_t last, std::size_t again) {
    std::optional<std::size_t> start;
    double longest = longestSample;
    for (std::size_t point = again; point > last; --point) {
        // Negative where the clock was set back.
        if (const double pause = std::abs(pauseBefore(history, point)); pause > longest) {
            longest = pause;
            start = point;
        }
    }
    return start;
}

/// The first point of each scan.
std::vector<std::size_t> scanStarts(const History& history) {
    std::vector<std::size_t> starts;
    std::map<std::string_view, std::size_t> lastPoints;
    for (std::size_t point = 0; point < history.size(); ++point) {
        const auto [last, isNew] = lastPoints.try_emplace(history[point].hostName, point);
        if (starts.empty() || pauseBefore(history, point) > longestPauseInScan) {
            starts.push_back(point);
        } else if (!isNew && last->second >= starts.back()) {
            if (const auto start = scanStart(history, last->second, point)) {
                starts.push_back(*start);
            }
        }
        last->second = point;
    }
    return starts;
}

bool needsMoreAttention(const Machine& a, const Machine& b) {
    if (a.lastScan() != b.lastScan()) {
        return a.lastScan() > b.lastScan();
    }
    return a.lastLoad() != b.lastLoad() ? a.lastLoad() > b.lastLoad() : a.hostName < b.hostName;
}

/// Of a name in the legend, which from the tailnet can be of any length.
constexpr qsizetype longestName = 64;

using Profiles = std::map<std::string, RemoteProfile>;

RemoteTimelineLine lineOf(const Machine& machine, std::size_t scans, const Profiles& profiles) {
    RemoteTimelineLine line;
    // A point of the history has no address, by which such a machine goes elsewhere.
    line.name = machine.hostName.empty() ? u"Unnamed machine"_s
                                         : dashboard_text::shortText(machine.hostName, longestName);
    const auto profile = profiles.find(std::string(machine.hostName));
    if (profile != profiles.end() && !profile->second.nickname.empty() &&
        profile->second.nickname != machine.hostName) {
        line.host = std::exchange(line.name,
                                  dashboard_text::shortText(profile->second.nickname, longestName));
    }
    line.cpu.resize(scans);
    line.memory.resize(scans);
    for (std::size_t scan = 0; scan < scans; ++scan) {
        if (const auto point = machine.points.find(scan); point != machine.points.end()) {
            line.cpu[scan] = point->second->cpu;
            line.memory[scan] = point->second->memory;
        } else {
            line.missing.push_back(scan);
        }
    }
    return line;
}

}  // namespace

RemoteTimeline remoteTimeline(const std::vector<RemoteHistoryPoint>& history,
                              std::string_view selectedHost, const Profiles& profiles) {
    RemoteTimeline timeline;
    std::map<std::string_view, Machine> byName;
    const std::vector<std::size_t> starts = scanStarts(history);
    for (std::size_t point = 0; point < history.size(); ++point) {
        const RemoteHistoryPoint& each = history[point];
        const std::size_t scan = timeline.scans.size();
        if (scan < starts.size() && starts[scan] == point) {
            if (point > 0 && pauseBefore(history, point) > longestStep) {
                timeline.gaps.push_back(scan);
            }
            timeline.scans.push_back(each.date);
        }
        byName.try_emplace(each.hostName, Machine{each.hostName})
            .first->second.points[timeline.scans.size() - 1] = &each;
    }
    std::vector<Machine> machines;
    for (const auto& [name, machine] : byName) {
        machines.push_back(machine);
    }
    std::ranges::sort(machines, needsMoreAttention);
    const std::size_t shown = std::min(machines.size(), mostRemoteLines);
    const auto selected = std::ranges::find(machines, selectedHost, &Machine::hostName);
    if (!selectedHost.empty() && selected != machines.end() &&
        std::cmp_greater_equal(selected - machines.begin(), shown)) {
        std::swap(machines[shown - 1], *selected);
        timeline.showsSelected = true;
    }
    for (std::size_t i = 0; i < shown; ++i) {
        timeline.lines.push_back(lineOf(machines[i], timeline.scans.size(), profiles));
    }
    timeline.machinesLeftOut = machines.size() - shown;
    return timeline;
}

std::string hostOfMachine(const std::vector<RemoteHealth>& machines, const std::string& id) {
    const auto found = std::ranges::find(machines, id, &RemoteHealth::id);
    return found == machines.end() ? std::string() : found->hostName;
}

QString remoteSamplesRetained(std::size_t points) {
    return points == 0 ? u"Run a remote scan to begin tracking remote CPU and memory trends."_s
                       : dashboard_text::count(static_cast<std::int64_t>(points)) +
                             u" remote samples retained across recent scans."_s;
}

QString lastRemoteSample(const std::vector<RemoteHistoryPoint>& history, Date now) {
    return history.empty()
               ? QString()
               : u"Last sample "_s + dashboard_text::shortTimeText(history.back().date, now);
}

QString remoteMachinesLeftOut(const RemoteTimeline& timeline) {
    if (timeline.machinesLeftOut == 0) {
        return {};
    }
    const auto number = [](std::size_t machines) {
        return dashboard_text::count(static_cast<std::int64_t>(machines));
    };
    const QString shown =
        timeline.showsSelected
            ? u"Shows the selected machine and the %1 with the highest load. "_s.arg(
                  number(mostRemoteLines - 1))
            : u"Shows the %1 machines with the highest load. "_s.arg(number(mostRemoteLines));
    return shown + (timeline.machinesLeftOut == 1
                        ? u"1 more is not drawn."_s
                        : u"%1 more are not drawn."_s.arg(number(timeline.machinesLeftOut)));
}

}  // namespace tallowcrest

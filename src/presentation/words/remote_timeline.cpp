#include "presentation/words/remote_timeline.h"

#include <algorithm>
#include <map>
#include <string_view>

#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

// Shorter than the 15 minutes between two automatic scans, and longer than a scan spends on sixty
// machines in a row that do not answer.
constexpr double longestPauseInScan = 300.0;
constexpr double longestStep = 3 * 900.0;

/// One machine, with the index of its point in each scan that reached it.
struct Machine {
    std::string_view hostName;
    std::map<std::size_t, const RemoteHistoryPoint*> points = {};

    std::size_t lastScan() const { return points.rbegin()->first; }
    double lastLoad() const {
        const RemoteHistoryPoint& last = *points.rbegin()->second;
        // 0 first: the result for values that are not numbers.
        return std::max({0.0, last.cpu, last.memory});
    }
};

bool needsMoreAttention(const Machine& a, const Machine& b) {
    if (a.lastScan() != b.lastScan()) {
        return a.lastScan() > b.lastScan();
    }
    return a.lastLoad() != b.lastLoad() ? a.lastLoad() > b.lastLoad() : a.hostName < b.hostName;
}

/// A name from the tailnet can be of any length.
QString machineName(std::string_view hostName) {
    constexpr std::size_t mostBytes = 256;
    constexpr qsizetype mostCharacters = 64;
    const QString name = dashboard_text::text(hostName.substr(0, mostBytes));
    if (name.size() <= mostCharacters) {
        return name;
    }
    return name.left(mostCharacters - (name[mostCharacters - 1].isHighSurrogate() ? 1 : 0)) +
           u"…"_s;
}

RemoteTimelineLine lineOf(const Machine& machine, std::size_t scans) {
    RemoteTimelineLine line;
    line.name = machineName(machine.hostName);
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

RemoteTimeline remoteTimeline(const std::vector<RemoteHistoryPoint>& history) {
    RemoteTimeline timeline;
    std::map<std::string_view, Machine> byName;
    Date before;
    for (const RemoteHistoryPoint& point : history) {
        Machine& machine =
            byName.try_emplace(point.hostName, Machine{point.hostName}).first->second;
        const bool isAgain =
            !machine.points.empty() && machine.lastScan() + 1 == timeline.scans.size();
        const bool isLate = secondsBetween(before, point.date) > longestPauseInScan;
        if (timeline.scans.empty() || isAgain || isLate) {
            if (!timeline.scans.empty() && secondsBetween(before, point.date) > longestStep) {
                timeline.gaps.push_back(timeline.scans.size());
            }
            timeline.scans.push_back(point.date);
        }
        machine.points[timeline.scans.size() - 1] = &point;
        before = point.date;
    }
    std::vector<Machine> machines;
    for (const auto& [name, machine] : byName) {
        machines.push_back(machine);
    }
    std::ranges::sort(machines, needsMoreAttention);
    const std::size_t shown = std::min(machines.size(), mostRemoteLines);
    for (std::size_t i = 0; i < shown; ++i) {
        timeline.lines.push_back(lineOf(machines[i], timeline.scans.size()));
    }
    timeline.machinesLeftOut = machines.size() - shown;
    return timeline;
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

QString remoteMachinesLeftOut(std::size_t machines) {
    if (machines == 0) {
        return {};
    }
    const QString shown = dashboard_text::count(static_cast<std::int64_t>(mostRemoteLines));
    const QString rest = dashboard_text::count(static_cast<std::int64_t>(machines));
    return u"Shows the %1 machines with the highest load. "_s.arg(shown) +
           (machines == 1 ? u"1 more is not drawn."_s : u"%1 more are not drawn."_s.arg(rest));
}

}  // namespace tallowcrest

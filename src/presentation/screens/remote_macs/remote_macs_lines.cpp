#include "presentation/screens/remote_macs/remote_macs_lines.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "presentation/screens/remote_macs/remote_health_lines.h"
#include "presentation/words/dashboard_text.h"
#include "remote/remote_advice.h"

using namespace Qt::StringLiterals;

namespace tallowcrest::remote_macs_lines {
namespace {

using dashboard_text::age;
using dashboard_text::count;
using dashboard_text::text;
using remote_health_lines::displayName;
using remote_health_lines::isCPUHigh;
using remote_health_lines::isMemoryHigh;
using Status = RemoteHealth::Status;

bool isReachable(const RemoteHealth& machine) {
    return machine.status == Status::reachable;
}

QString percentOrNone(const std::optional<double>& percent) {
    return percent ? dashboard_text::percentText(*percent) : dashboard_text::noFigure();
}

/// A figure of a machine that is too high.
struct Pressure {
    QString text;
    double percent = 0.0;
};

/// The higher of the figures that are too high. Absent for a machine without one.
std::optional<Pressure> pressure(const ProfiledMachine& each) {
    const auto& [machine, profile] = each;
    const Pressure memory{u"Memory "_s + percentOrNone(machine.memoryPercent),
                          machine.memoryPercent.value_or(0.0)};
    const Pressure cpu{u"CPU "_s + percentOrNone(machine.cpuPercent),
                       machine.cpuPercent.value_or(0.0)};
    const bool isMemory = isMemoryHigh(machine, profile);
    if (isCPUHigh(machine) && (!isMemory || cpu.percent > memory.percent)) {
        return cpu;
    }
    return isMemory ? std::optional(memory) : std::nullopt;
}

/// The next step of a machine under pressure. Its recommendation does not know the threshold of the
/// profile.
QString nextStep(const ProfiledMachine& each) {
    const auto& [machine, profile] = each;
    if (isCPUHigh(machine) || machine.memoryPercent.value_or(0.0) >= highRemoteLoad) {
        return text(machine.recommendation);
    }
    return profile.allowRemotePurge
               ? u"Memory is at or above its threshold. Remote Safe asks for a purge."_s
               : u"Memory is at or above its threshold. Review its processes, or allow a purge."_s;
}

/// Longer than any row shows.
QString bounded(std::string_view value) {
    constexpr qsizetype longest = 256;
    return dashboard_text::shortText(value, longest);
}

}  // namespace

QString attention(const std::vector<RemoteHealth>& machines) {
    const auto troubled = machinesThatNeedAttention(machines);
    return count(troubled) + u" remote Mac"_s + (troubled == 1 ? u""_s : u"s"_s) +
           u" need attention."_s;
}

std::vector<AttentionLine> attentionLines(const std::vector<ProfiledMachine>& machines) {
    std::vector<AttentionLine> unreachable;
    std::vector<std::pair<double, AttentionLine>> pressed;
    for (const ProfiledMachine& each : machines) {
        if (!isReachable(each.machine)) {
            unreachable.push_back({each.machine.id, displayName(each.machine, each.profile),
                                   text(title(each.machine.status)),
                                   text(each.machine.recommendation)});
        } else if (const auto high = pressure(each)) {
            pressed.push_back({high->percent,
                               {each.machine.id, displayName(each.machine, each.profile),
                                high->text, nextStep(each)}});
        }
    }
    std::ranges::stable_sort(pressed, std::ranges::greater(),
                             [](const auto& each) { return each.first; });
    std::vector<AttentionLine> lines;
    for (auto& [percent, line] : pressed) {
        lines.push_back(std::move(line));
    }
    std::ranges::move(unreachable, std::back_inserter(lines));
    return lines;
}

QString moreAttention(std::size_t lines) {
    return lines <= mostAttentionLines
               ? QString()
               : u"and %1 more below"_s.arg(
                     count(static_cast<std::int64_t>(lines - mostAttentionLines)));
}

QString scanProgress(const RemoteScanState& scan, const RemoteProfile& scanned) {
    if (!scan.remoteScanInProgress) {
        return {};
    }
    if (!scan.progress) {
        return u"Beginning the scan"_s;
    }
    const auto& [number, all, hostName] = *scan.progress;
    return u"Scanning %1, %2 of %3"_s.arg(displayName({.hostName = hostName}, scanned),
                                          count(static_cast<std::int64_t>(number)),
                                          count(static_cast<std::int64_t>(all)));
}

QString scanState(const RemoteScanState& scan, const RemoteProfile& scanned, Date now) {
    const QString progress = scanProgress(scan, scanned);
    if (scan.remoteHealth.empty()) {
        return scan.remoteScanInProgress ? progress : u"Not scanned yet"_s;
    }
    const auto newest = std::ranges::max_element(scan.remoteHealth, {}, &RemoteHealth::sampledAt);
    const QString last = u"Last scan: "_s + age(newest->sampledAt, now);
    return scan.remoteScanInProgress ? last + u" · "_s + progress : last;
}

std::vector<SummaryTexts> summary(const std::vector<RemoteHealth>& machines, std::size_t peers) {
    const auto scanned = std::ssize(machines);
    const std::int64_t reachable = scanned - machinesThatNeedAttention(machines);
    std::optional<double> highest;
    for (const RemoteHealth& each : machines) {
        highest = std::max(highest, each.memoryPercent);
    }
    return {{u"Reachable"_s, count(reachable),
             scanned == 0 ? u"No remote scan yet."_s
                          : u"Of %1 in the last remote scan."_s.arg(count(scanned))},
            {u"Known Peers"_s, count(static_cast<std::int64_t>(peers)),
             u"Discovered from Tailscale status."_s},
            {u"Highest Memory"_s, percentOrNone(highest),
             u"Highest pressure from the last remote scan."_s}};
}

DetailLines detail(const std::optional<ProfiledMachine>& shown, Date now) {
    if (!shown) {
        return {.heading = u"Remote Detail"_s};
    }
    const auto& [machine, profile] = *shown;
    const QString status = text(title(machine.status));
    return {.heading = u"Remote Detail: "_s + displayName(machine, profile),
            .facts = {{u"Profile"_s,
                       profile.nickname.empty() ? u"No nickname"_s : bounded(profile.nickname),
                       profile.role.empty() ? u"No role"_s : bounded(profile.role)},
                      {u"Status"_s, status, u"Checked "_s + age(machine.sampledAt, now)},
                      {u"Load"_s, percentOrNone(machine.cpuPercent) + u" CPU"_s,
                       u"Memory "_s + percentOrNone(machine.memoryPercent)}},
            .status = status,
            .isReachable = isReachable(machine),
            .recommendation = text(machine.recommendation)};
}

const RemoteHealth* selectedMachine(const std::vector<RemoteHealth>& machines,
                                    const std::string& id) {
    const auto found = std::ranges::find(machines, id, &RemoteHealth::id);
    return found != machines.end() ? &*found : machines.empty() ? nullptr : &machines.front();
}

PeerLine peerLine(const TailDevice& peer) {
    PeerLine line;
    line.name = bounded(peer.name);
    line.place = bounded(peer.os) + u" · "_s +
                 (peer.addresses.empty() ? u"no address"_s : bounded(peer.addresses.front()));
    if (peer.active || peer.inMagicSock) {
        // The client keeps the path of a peer for some time after it went offline.
        line.path = peer.online ? PeerPath::active : PeerPath::offline;
        line.pathText =
            u"Tailscale path: "_s + (!peer.currentAddress.empty() ? bounded(peer.currentAddress)
                                     : !peer.relay.empty() ? u"relay "_s + bounded(peer.relay)
                                                           : u"path active"_s);
    } else {
        line.path = peer.online ? PeerPath::listed : PeerPath::offline;
        line.pathText = peer.online ? u"Listed online, but no active path yet"_s : u"Offline"_s;
    }
    return line;
}

QStringList healthIssues(const std::vector<std::string>& issues) {
    constexpr std::size_t mostIssues = 6;
    QStringList lines;
    for (std::size_t i = 0; i < std::min(issues.size(), mostIssues); ++i) {
        lines.append(bounded(issues[i]));
    }
    if (issues.size() > mostIssues) {
        lines.append(
            u"and %1 more"_s.arg(count(static_cast<std::int64_t>(issues.size() - mostIssues))));
    }
    return lines;
}

}  // namespace tallowcrest::remote_macs_lines

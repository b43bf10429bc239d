#include "presentation/screens/remote_macs/remote_macs_lines.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

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

QString percentOrNone(const std::optional<double>& percent) {
    return percent ? dashboard_text::percentText(*percent) : dashboard_text::noFigure();
}

/// What is too high on a machine.
struct Pressure {
    QString text;
    double percent = 0.0;  ///< the highest figure
};

/// The figures that are too high, the higher one first: the recommendation speaks of one alone.
/// Absent for a machine without one.
std::optional<Pressure> pressure(const RemoteHealthFacts& each) {
    const RemoteHealth& machine = each.machine;
    const Pressure memory{u"Memory "_s + percentOrNone(machine.memoryPercent),
                          machine.memoryPercent.value_or(0.0)};
    const Pressure cpu{u"CPU "_s + percentOrNone(machine.cpuPercent),
                       machine.cpuPercent.value_or(0.0)};
    const bool isMemory = isMemoryHigh(machine, each.profile);
    const bool isCPU = isCPUHigh(machine);
    if (isCPU && isMemory) {
        const auto& [first, second] =
            cpu.percent > memory.percent ? std::tie(cpu, memory) : std::tie(memory, cpu);
        return Pressure{first.text + u" · "_s + second.text, first.percent};
    }
    return isCPU ? std::optional(cpu) : isMemory ? std::optional(memory) : std::nullopt;
}

/// The next step of a machine under pressure. Its recommendation does not know the threshold of the
/// profile.
QString nextStep(const RemoteHealthFacts& each) {
    if (each.isNowOffline) {
        return u"These are its last figures. Scan again when it is back online."_s;
    }
    const RemoteHealth& machine = each.machine;
    if (isCPUHigh(machine) || machine.memoryPercent.value_or(0.0) >= highRemoteLoad) {
        return text(machine.recommendation);
    }
    return each.profile.allowRemotePurge
               ? u"Memory is at or above its threshold. Remote Safe asks for a purge."_s
               : u"Memory is at or above its threshold. Review its processes, or allow a purge."_s;
}

/// How many records are from the last scan.
QString reachedCount(const RemoteScanState& scan) {
    return count(static_cast<std::int64_t>(scan.remoteHealth.size() - scan.keptRecords));
}

/// How many records there are or would be without a cancellation.
QString machineCount(const RemoteScanState& scan) {
    return count(static_cast<std::int64_t>(scan.remoteHealth.size() + scan.unknownMachines));
}

/// Longer than any row shows.
QString bounded(std::string_view value) {
    constexpr qsizetype longest = 256;
    return dashboard_text::shortText(value, longest);
}

}  // namespace

bool wasCutShort(const RemoteScanState& scan) {
    return scan.keptRecords > 0 || scan.unknownMachines > 0;
}

QString attention(const std::vector<RemoteHealth>& machines) {
    const auto troubled = machinesThatNeedAttention(machines);
    return count(troubled) + u" remote Mac"_s + (troubled == 1 ? u""_s : u"s"_s) +
           u" need attention."_s;
}

std::vector<AttentionLine> attentionLines(const std::vector<RemoteHealthFacts>& machines) {
    using Pressed = std::vector<std::pair<double, AttentionLine>>;
    std::vector<AttentionLine> unreachable;
    Pressed pressed;
    Pressed offline;
    for (const RemoteHealthFacts& each : machines) {
        const RemoteHealth& machine = each.machine;
        const auto line = [&](const QString& why, const QString& what) {
            const QString name = displayName(machine, each.profile);
            const QString host = bounded(machine.hostName);
            return AttentionLine{
                machine.id, name, host == name ? QString() : host,
                each.isNowOffline ? why + u" · "_s + remote_health_lines::nowOffline() : why, what};
        };
        if (!isReachable(machine)) {
            unreachable.push_back(line(text(title(machine.status)), text(machine.recommendation)));
        } else if (const auto high = pressure(each)) {
            (each.isNowOffline ? offline : pressed)
                .emplace_back(high->percent, line(high->text, nextStep(each)));
        }
    }
    std::vector<AttentionLine> lines;
    const auto addHighestFirst = [&lines](Pressed& group) {
        std::ranges::stable_sort(group, std::ranges::greater(),
                                 [](const auto& each) { return each.first; });
        for (auto& [percent, line] : group) {
            lines.push_back(std::move(line));
        }
    };
    addHighestFirst(pressed);
    std::ranges::move(unreachable, std::back_inserter(lines));
    addHighestFirst(offline);
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
    if (scan.isCanceling) {
        return u"Canceling the scan"_s;
    }
    if (!scan.progress) {
        return u"Beginning the scan"_s;
    }
    const auto& [number, all, hostName, address] = *scan.progress;
    return u"Scanning %1, %2 of %3"_s.arg(
        displayName({.hostName = hostName, .address = address}, scanned),
        count(static_cast<std::int64_t>(number)), count(static_cast<std::int64_t>(all)));
}

QString scanState(const RemoteScanState& scan, const RemoteProfile& scanned, Date now) {
    const QString progress = scanProgress(scan, scanned);
    if (scan.remoteHealth.empty()) {
        return scan.remoteScanInProgress ? progress : u"Not scanned yet"_s;
    }
    const Date oldest = oldestRemoteSample(scan.remoteHealth);
    QString last = u"Last scan: "_s + age(oldest, now);
    if (wasCutShort(scan)) {
        const Date newest =
            std::ranges::max_element(scan.remoteHealth, {}, &RemoteHealth::sampledAt)->sampledAt;
        last = u"Last scan: %1, %2 of %3 · "_s.arg(age(newest, now), reachedCount(scan),
                                                   machineCount(scan)) +
               (scan.keptRecords > 0 ? u"others up to "_s + age(oldest, now) : u"canceled"_s);
    }
    // What is told last has no room in a narrow window.
    return scan.remoteScanInProgress ? progress + u" · "_s + last : last;
}

std::vector<SummaryTexts> summary(const RemoteScanState& scan, std::size_t peers, Date now) {
    const std::vector<RemoteHealth>& machines = scan.remoteHealth;
    const auto scanned = std::ssize(machines);
    const std::int64_t reachable = scanned - machinesThatNeedAttention(machines);
    // An absent figure is less than every other one.
    const auto highest = std::ranges::max_element(machines, {}, &RemoteHealth::memoryPercent);
    const bool hasKept = scan.keptRecords > 0;
    return {
        {u"Reachable"_s, count(reachable),
         scanned == 0        ? u"No remote scan yet."_s
         : wasCutShort(scan) ? u"Of %1, the last remote scan reached %2."_s.arg(machineCount(scan),
                                                                                reachedCount(scan))
                             : u"Of %1 in the last remote scan."_s.arg(count(scanned))},
        {u"Known Peers"_s, count(static_cast<std::int64_t>(peers)),
         u"Discovered from Tailscale status."_s},
        {u"Highest Memory"_s, percentOrNone(scanned == 0 ? std::nullopt : highest->memoryPercent),
         hasKept ? u"Highest pressure, scanned %1."_s.arg(age(highest->sampledAt, now))
                 : u"Highest pressure from the last remote scan."_s}};
}

DetailLines detail(const RemoteHealthFacts* shown) {
    if (shown == nullptr) {
        return {.heading = u"Remote Detail"_s};
    }
    const RemoteHealth& machine = shown->machine;
    const RemoteProfile& profile = shown->profile;
    const QString status = text(title(machine.status));
    const QString checked = u"Checked "_s + age(machine.sampledAt, shown->now);
    return {.heading = u"Remote Detail: "_s + displayName(machine, profile),
            .facts = {{u"Profile"_s,
                       profile.nickname.empty() ? u"No nickname"_s : bounded(profile.nickname),
                       profile.role.empty() ? u"No role"_s : bounded(profile.role)},
                      {u"Status"_s, status,
                       shown->isNowOffline ? checked + u" · "_s + remote_health_lines::nowOffline()
                                           : checked},
                      {u"Load"_s, percentOrNone(machine.cpuPercent) + u" CPU"_s,
                       u"Memory "_s + percentOrNone(machine.memoryPercent)}},
            .status = status,
            .statusIcon = remote_health_lines::statusIcon(machine.status),
            .isReachable = isReachable(machine),
            .isNowOffline = shown->isNowOffline,
            .recommendation = text(machine.recommendation),
            .result = remote_health_lines::resultLine(*shown)};
}

const RemoteHealthFacts* selectedMachine(const std::vector<RemoteHealthFacts>& machines) {
    const auto found = std::ranges::find(machines, true, &RemoteHealthFacts::isSelected);
    return found != machines.end() ? &*found : machines.empty() ? nullptr : &machines.front();
}

std::unordered_set<std::string_view> offlineMachines(const std::vector<RemoteHealth>& machines,
                                                     const std::vector<TailDevice>& peers) {
    std::unordered_set<std::string_view> scanned;
    for (const RemoteHealth& each : machines) {
        scanned.insert(each.id);
    }
    std::unordered_set<std::string_view> offline;
    for (const TailDevice& each : peers) {
        if (const auto found = scanned.find(each.id); !each.online && found != scanned.end()) {
            offline.insert(*found);
        }
    }
    return offline;
}

PeerLine peerLine(const TailDevice& peer) {
    PeerLine line;
    const QString address =
        bounded(peer.addresses.empty() ? noRemoteAddress : peer.addresses.front());
    line.name = peer.name.empty() ? address : bounded(peer.name);
    line.place = bounded(peer.os) + u" · "_s + address;
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

QString noPeers(bool isUnanswered) {
    const QString none = u"No Tailscale peers were reported by the local CLI."_s;
    return isUnanswered
               ? none + u" It did not answer, and may not be installed or not be running."_s
               : none;
}

QString linuxMachinesLeftOut(std::size_t leftOut) {
    if (leftOut == 0) {
        return {};
    }
    return (leftOut == 1 ? u"%1 Linux machine is online. Turn on Include Linux machines in the "
                           "automation settings to scan it."_s
                         : u"%1 Linux machines are online. Turn on Include Linux machines in the "
                           "automation settings to scan them."_s)
        .arg(dashboard_text::count(static_cast<std::int64_t>(leftOut)));
}

QStringList healthIssues(const std::vector<std::string>& issues) {
    constexpr std::size_t mostIssues = 100;
    constexpr qsizetype longestIssue = 2000;
    QStringList lines;
    for (std::size_t i = 0; i < std::min(issues.size(), mostIssues); ++i) {
        lines.append(dashboard_text::shortText(issues[i], longestIssue));
    }
    if (issues.size() > mostIssues) {
        lines.append(
            u"and %1 more"_s.arg(count(static_cast<std::int64_t>(issues.size() - mostIssues))));
    }
    return lines;
}

}  // namespace tallowcrest::remote_macs_lines

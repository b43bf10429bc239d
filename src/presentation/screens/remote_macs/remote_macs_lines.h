#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include <QString>
#include <QStringList>

#include "core/remote_records.h"
#include "presentation/screens/remote_macs/remote_health_lines.h"
#include "presentation/words/session_lines.h"
#include "remote/remote_scan.h"

namespace tallowcrest {

/// The texts of the page of the other machines. Main thread.
namespace remote_macs_lines {

/// Whether the last scan was canceled before it had reached all machines.
bool wasCutShort(const RemoteScanState& scan);

/// "3 remote Macs need attention."
QString attention(const std::vector<RemoteHealth>& machines);

/// A machine that the owner should look at.
struct AttentionLine {
    std::string id;  ///< of the record
    QString name;
    QString host;  ///< empty where it is the name
    QString why;   ///< the status, or the figures that are too high
    QString what;  ///< what to do about it

    bool operator==(const AttentionLine&) const = default;
};

/// The machines whose processors are saturated or whose memory is at or above the threshold of
/// their profile, the highest first, because these can be helped at once. Then those that could not
/// be sampled, in their order. Last those under pressure that are offline now.
std::vector<AttentionLine> attentionLines(const std::vector<RemoteHealthFacts>& machines);
inline constexpr std::size_t mostAttentionLines = 5;
/// What stands below the lines when there are more than `mostAttentionLines`; else empty.
QString moreAttention(std::size_t lines);

/// When the machines were scanned, and how far the running scan is. After a scan that was canceled,
/// also how many it reached and how old the others are. `scanned` is the profile of the machine
/// that the running one is at.
QString scanState(const RemoteScanState& scan, const RemoteProfile& scanned, Date now);
/// "Scanning studio-mac, 3 of 12", or that it ends; empty while no scan runs.
QString scanProgress(const RemoteScanState& scan, const RemoteProfile& scanned);

/// "Reachable", "Known Peers" and "Highest Memory", in this order.
std::vector<SummaryTexts> summary(const RemoteScanState& scan, std::size_t peers, Date now);
inline constexpr std::size_t summaryCards = 3;

/// The texts about the selected machine.
struct DetailLines {
    QString heading;
    /// "Profile", "Status" and "Load"; empty without a machine.
    std::vector<SummaryTexts> facts = {};
    QString status = {};
    QString statusIcon = {};
    bool isReachable = false;
    bool isNowOffline = false;
    QString recommendation = {};
    QString result = {};  ///< of what was last done for it; may be empty

    bool operator==(const DetailLines&) const = default;
};
inline constexpr std::size_t detailFacts = 3;

/// `shown` is null when no machine has been scanned.
DetailLines detail(const RemoteHealthFacts* shown);

/// The machine under inspection, or else the first one; null when there is none.
const RemoteHealthFacts* selectedMachine(const std::vector<RemoteHealthFacts>& machines);

/// The identifiers of those of the machines whose peers are offline now. They live as long as
/// `machines`.
std::unordered_set<std::string_view> offlineMachines(const std::vector<RemoteHealth>& machines,
                                                     const std::vector<TailDevice>& peers);

enum class PeerPath { active, listed, offline };

/// One peer of the tailnet as its row shows it.
struct PeerLine {
    QString name;
    QString place;  ///< system and address
    PeerPath path = PeerPath::offline;
    QString pathText;
};

/// Texts of any length come as at most a few hundred characters.
PeerLine peerLine(const TailDevice& peer);

/// What is said in place of peers.
QString noPeers(bool isUnanswered);

/// What to do when Linux machines are online and none is scanned; empty when `leftOut` is 0.
QString linuxMachinesLeftOut(std::size_t leftOut);

/// The problems of the tailnet's client, one line each. Beyond a hundred, the last line counts the
/// others.
QStringList healthIssues(const std::vector<std::string>& issues);

}  // namespace remote_macs_lines

}  // namespace tallowcrest

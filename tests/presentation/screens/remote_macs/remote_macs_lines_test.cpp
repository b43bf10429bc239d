#include "presentation/screens/remote_macs/remote_macs_lines.h"

#include <gmock/gmock.h>

#include "remote/remote_advice.h"
#include "tests/presentation/scoped_locale.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Status = RemoteHealth::Status;
namespace macs = remote_macs_lines;

class RemoteMacsLinesTest : public testing::Test {
protected:
    static constexpr Date now{1000000.0};

    static RemoteHealth machine(const char* name, Status status,
                                std::optional<double> memory = std::nullopt) {
        return {.id = std::string("id-") + name,
                .hostName = name,
                .status = status,
                .memoryPercent = memory,
                .recommendation = std::string("Help ") + name + ".",
                .sampledAt = now};
    }

    static RemoteHealthFacts facts(RemoteHealth of, RemoteProfile profile) {
        return {
            .machine = std::move(of), .profile = std::move(profile), .neverQuit = {}, .now = now};
    }

    /// A machine with the advice that a scan gives.
    static RemoteHealth advised(double cpu, double memory) {
        RemoteHealth advised = machine("studio", Status::reachable, memory);
        advised.cpuPercent = cpu;
        advised.recommendation =
            remoteRecommendation(advised.status, false, cpu, memory,
                                 {{.pid = 7, .cpu = 20.0, .command = "/opt/Maya"}}, false);
        return advised;
    }

    const ScopedLocale locale{"en_US"};
};

// The summary ------------------------------------------------------------------------------------

TEST_F(RemoteMacsLinesTest, EveryStatusButReachableNeedsAttention) {
    std::vector<RemoteHealth> machines;
    EXPECT_EQ(macs::attention(machines), u"0 remote Macs need attention."_s);
    machines.push_back(machine("a", Status::reachable, 99.0));
    EXPECT_EQ(macs::attention(machines), u"0 remote Macs need attention."_s);
    for (const Status each : {Status::noTailnetPath, Status::noAddress, Status::connectionBlocked,
                              Status::hostKeyIssue, Status::authNeeded, Status::unknown}) {
        machines.push_back(machine("b", each));
        const std::size_t troubled = machines.size() - 1;
        EXPECT_EQ(macs::attention(machines),
                  troubled == 1 ? u"1 remote Mac need attention."_s
                                : u"%1 remote Macs need attention."_s.arg(troubled));
    }
}

TEST_F(RemoteMacsLinesTest, MachinesUnderPressureComeBeforeThoseOutOfReach) {
    // Below 85 percent the recommendation finds the machine healthy.
    const QString review =
        u"Memory is at or above its threshold. Review its processes, or allow a purge."_s;
    const RemoteProfile atEighty{.warningThreshold = 80.0};
    const RemoteProfile named{.nickname = "Studio", .warningThreshold = 60.0};
    const RemoteHealth below = machine("below", Status::reachable, 79.9);
    const RemoteHealth at = machine("at", Status::reachable, 80.0);
    const RemoteHealth highest = machine("highest", Status::reachable, 95.4);
    const RemoteHealth nothing = machine("nothing", Status::reachable);
    const RemoteHealth blocked = machine("blocked", Status::connectionBlocked);
    const RemoteHealth locked = machine("locked", Status::authNeeded, 99.0);
    EXPECT_THAT(
        macs::attentionLines({facts(below, atEighty), facts(at, atEighty), facts(blocked, atEighty),
                              facts(nothing, atEighty), facts(highest, named),
                              facts(locked, named)}),
        ElementsAre(macs::AttentionLine{"id-highest", u"Studio"_s, u"highest"_s, u"Memory 95%"_s,
                                        u"Help highest."_s},
                    macs::AttentionLine{"id-at", u"at"_s, QString(), u"Memory 80%"_s, review},
                    macs::AttentionLine{"id-blocked", u"blocked"_s, QString(),
                                        u"Connection Blocked"_s, u"Help blocked."_s},
                    macs::AttentionLine{"id-locked", u"Studio"_s, u"locked"_s, u"Auth Needed"_s,
                                        u"Help locked."_s}));
    EXPECT_THAT(macs::attentionLines({facts(below, atEighty)}), IsEmpty());
    const RemoteProfile allowed{.warningThreshold = 80.0, .allowRemotePurge = true};
    EXPECT_EQ(macs::attentionLines({facts(at, allowed)}).at(0).what,
              u"Memory is at or above its threshold. Remote Safe asks for a purge."_s);
    RemoteHealth busy = machine("busy", Status::reachable, 90.0);
    busy.cpuPercent = 97.0;
    RemoteHealth both = machine("both", Status::reachable, 96.0);
    both.cpuPercent = 85.0;
    EXPECT_THAT(
        macs::attentionLines({facts(both, atEighty), facts(busy, atEighty), facts(at, atEighty)}),
        ElementsAre(macs::AttentionLine{"id-busy", u"busy"_s, QString(), u"CPU 97% · Memory 90%"_s,
                                        u"Help busy."_s},
                    macs::AttentionLine{"id-both", u"both"_s, QString(), u"Memory 96% · CPU 85%"_s,
                                        u"Help both."_s},
                    macs::AttentionLine{"id-at", u"at"_s, QString(), u"Memory 80%"_s, review}));
}

TEST_F(RemoteMacsLinesTest, TheNextStepFitsTheReason) {
    struct Case {
        double cpu;
        double memory;
        const char* why;
        const char* what;
    };
    const char* const review =
        "Memory is at or above its threshold. Review its processes, or allow a purge.";
    const char* const purge = "Memory pressure is high. Review Maya and consider Remote Purge.";
    const char* const busy = "CPU is saturated. Review Maya before quitting anything remotely.";
    for (const auto& [cpu, memory, why, what] :
         {Case{5.0, 82.0, "Memory 82%", review}, Case{5.0, 84.9, "Memory 85%", review},
          Case{5.0, 85.0, "Memory 85%", purge}, Case{97.0, 82.0, "CPU 97% · Memory 82%", busy},
          Case{97.0, 90.0, "CPU 97% · Memory 90%", purge}, Case{85.0, 40.0, "CPU 85%", busy}}) {
        const auto lines =
            macs::attentionLines({facts(advised(cpu, memory), {.warningThreshold = 82.0})});
        ASSERT_EQ(lines.size(), 1U) << why;
        EXPECT_EQ(lines[0].why.toStdString(), why);
        EXPECT_EQ(lines[0].what.toStdString(), what) << why;
    }
    EXPECT_THAT(macs::attentionLines({facts(advised(84.9, 81.9), {.warningThreshold = 82.0})}),
                IsEmpty());
}

TEST_F(RemoteMacsLinesTest, LinesThatAreNotShownAreCounted) {
    EXPECT_EQ(macs::moreAttention(0), QString());
    EXPECT_EQ(macs::moreAttention(macs::mostAttentionLines), QString());
    EXPECT_EQ(macs::moreAttention(macs::mostAttentionLines + 1), u"and 1 more below"_s);
    EXPECT_EQ(macs::moreAttention(2000), u"and 1,995 more below"_s);
}

TEST_F(RemoteMacsLinesTest, TheScanTellsItsMachineOrItsAge) {
    RemoteScanState scan;
    EXPECT_EQ(macs::scanProgress(scan, {}), QString());
    EXPECT_EQ(macs::scanState(scan, {}, now), u"Not scanned yet"_s);
    scan.remoteScanInProgress = true;
    EXPECT_EQ(macs::scanState(scan, {}, now), u"Beginning the scan"_s);
    scan.progress = RemoteScanProgress{3, 12, "studio\nmac"};
    EXPECT_EQ(macs::scanProgress(scan, {}), u"Scanning studio\uFFFDmac, 3 of 12"_s);
    EXPECT_EQ(macs::scanProgress(scan, {.nickname = "Big"}), u"Scanning Big, 3 of 12"_s);
    EXPECT_EQ(macs::scanState(scan, {.nickname = "Big"}, now), u"Scanning Big, 3 of 12"_s);
    scan.progress = RemoteScanProgress{3, 12, "", "100.1.2.3"};
    EXPECT_EQ(macs::scanProgress(scan, {}), u"Scanning 100.1.2.3, 3 of 12"_s);
    scan = {};
    scan.remoteHealth = {machine("a", Status::reachable), machine("b", Status::reachable)};
    scan.remoteHealth[1].sampledAt = {now.secondsSinceReference - 600.0};
    EXPECT_EQ(macs::scanProgress(scan, {}), QString());
    EXPECT_EQ(macs::scanState(scan, {}, now), u"Last scan: 10 min ago"_s) << "the oldest record";
    EXPECT_EQ(macs::scanState(scan, {}, {now.secondsSinceReference + 120.0}),
              u"Last scan: 12 min ago"_s);
    scan.remoteScanInProgress = true;
    scan.progress = RemoteScanProgress{1, 2, "a"};
    EXPECT_EQ(macs::scanState(scan, {}, now), u"Scanning a, 1 of 2 · Last scan: 10 min ago"_s);
    scan.isCanceling = true;
    EXPECT_EQ(macs::scanProgress(scan, {}), u"Canceling the scan"_s);
}

TEST_F(RemoteMacsLinesTest, AfterACanceledScanTheFiguresThatItDidNotReachHaveTheirAge) {
    RemoteScanState scan;
    scan.remoteHealth = {machine("a", Status::reachable, 40.0),
                         machine("b", Status::reachable, 96.0), machine("c", Status::unknown)};
    scan.keptRecords = 2;
    scan.remoteHealth[1].sampledAt = {now.secondsSinceReference - 600.0};
    scan.remoteHealth[2].sampledAt = {now.secondsSinceReference - 7200.0};
    EXPECT_EQ(macs::scanState(scan, {}, now),
              u"Last scan: just now, 1 of 3 · others up to 2 h ago"_s);
    auto cards = macs::summary(scan, 3, now);
    EXPECT_EQ(cards[0].value, u"2"_s);
    EXPECT_EQ(cards[0].detail, u"Of 3, the last remote scan reached 1."_s);
    EXPECT_EQ(cards[2].value, u"96%"_s);
    EXPECT_EQ(cards[2].detail, u"Highest pressure, scanned 10 min ago."_s);
}

TEST_F(RemoteMacsLinesTest, ACanceledScanTellsOfTheMachinesThatHaveNoRecord) {
    RemoteScanState scan;
    scan.remoteHealth = {machine("a", Status::reachable, 40.0)};
    EXPECT_FALSE(macs::wasCutShort(scan));
    scan.unknownMachines = 1999;
    EXPECT_TRUE(macs::wasCutShort(scan));
    EXPECT_EQ(macs::scanState(scan, {}, now), u"Last scan: just now, 1 of 2,000 · canceled"_s);
    EXPECT_EQ(macs::summary(scan, 2100, now)[0].detail,
              u"Of 2,000, the last remote scan reached 1."_s);
}

TEST_F(RemoteMacsLinesTest, AMachineThatIsOfflineNowComesLastAndSaysSo) {
    const RemoteProfile profile{.warningThreshold = 80.0};
    std::vector<RemoteHealthFacts> machines{
        facts(machine("gone", Status::reachable, 99.0), profile),
        facts(machine("lower", Status::reachable, 85.0), profile),
        facts(machine("locked", Status::authNeeded), profile),
        facts(machine("left", Status::connectionBlocked), profile)};
    machines[0].isNowOffline = true;
    machines[3].isNowOffline = true;
    EXPECT_THAT(
        macs::attentionLines(machines),
        ElementsAre(macs::AttentionLine{"id-lower", u"lower"_s, QString(), u"Memory 85%"_s,
                                        u"Help lower."_s},
                    macs::AttentionLine{"id-locked", u"locked"_s, QString(), u"Auth Needed"_s,
                                        u"Help locked."_s},
                    macs::AttentionLine{"id-left", u"left"_s, QString(),
                                        u"Connection Blocked · now offline"_s, u"Help left."_s},
                    macs::AttentionLine{
                        "id-gone", u"gone"_s, QString(), u"Memory 99% · now offline"_s,
                        u"These are its last figures. Scan again when it is back online."_s}));
}

TEST_F(RemoteMacsLinesTest, TheCardsCountBeforeAndAfterTheFirstScan) {
    EXPECT_THAT(
        macs::summary({}, 4, now),
        ElementsAre(SummaryTexts{u"Reachable"_s, u"0"_s, u"No remote scan yet."_s},
                    SummaryTexts{u"Known Peers"_s, u"4"_s, u"Discovered from Tailscale status."_s},
                    SummaryTexts{u"Highest Memory"_s, u"–"_s,
                                 u"Highest pressure from the last remote scan."_s}));
    RemoteScanState scan;
    scan.remoteHealth = {machine("a", Status::reachable, 0.0), machine("b", Status::unknown),
                         machine("c", Status::reachable, 71.6)};
    const auto after = macs::summary(scan, 2000, now);
    EXPECT_EQ(after[0].value, u"2"_s);
    EXPECT_EQ(after[0].detail, u"Of 3 in the last remote scan."_s);
    EXPECT_EQ(after[1].value, u"2,000"_s);
    EXPECT_EQ(after[2].value, u"72%"_s);
    scan.remoteHealth.resize(1);
    EXPECT_EQ(macs::summary(scan, 1, now)[2].value, u"0%"_s);
}

// The detail -------------------------------------------------------------------------------------

TEST_F(RemoteMacsLinesTest, TheSelectedMachineIsTheFirstUnlessOneIsNamed) {
    std::vector<RemoteHealthFacts> machines{facts(machine("a", Status::reachable), {}),
                                            facts(machine("b", Status::unknown), {})};
    EXPECT_EQ(macs::selectedMachine({}), nullptr);
    EXPECT_EQ(macs::selectedMachine(machines), &machines[0]);
    machines[1].isSelected = true;
    EXPECT_EQ(macs::selectedMachine(machines), &machines[1]);
}

TEST_F(RemoteMacsLinesTest, OfflineAreTheMachinesWhosePeersSayThatTheyAre) {
    const std::vector<RemoteHealth> machines{machine("a", Status::reachable),
                                             machine("b", Status::reachable),
                                             machine("gone", Status::reachable)};
    const std::vector<TailDevice> peers{{.id = "id-a", .online = true},
                                        {.id = "id-b", .online = false},
                                        {.id = "id-c", .online = false}};
    EXPECT_THAT(macs::offlineMachines(machines, peers), ElementsAre("id-b"));
    EXPECT_THAT(macs::offlineMachines(machines, {}), IsEmpty()) << "the reading may have failed";
}

TEST_F(RemoteMacsLinesTest, TheDetailTellsProfileStatusAndLoad) {
    EXPECT_EQ(macs::detail(nullptr), (macs::DetailLines{.heading = u"Remote Detail"_s}));
    RemoteHealth studio = machine("studio", Status::reachable, 71.4);
    studio.cpuPercent = 12.6;
    studio.sampledAt = {now.secondsSinceReference - 130.0};
    RemoteHealthFacts shown = facts(studio, {.nickname = "Big", .role = "render"});
    const auto known = macs::detail(&shown);
    EXPECT_EQ(known.heading, u"Remote Detail: Big"_s);
    EXPECT_THAT(known.facts,
                ElementsAre(SummaryTexts{u"Profile"_s, u"Big"_s, u"render"_s},
                            SummaryTexts{u"Status"_s, u"Reachable"_s, u"Checked 2 min ago"_s},
                            SummaryTexts{u"Load"_s, u"13% CPU"_s, u"Memory 71%"_s}));
    EXPECT_TRUE(known.isReachable);
    EXPECT_EQ(known.recommendation, u"Help studio."_s);

    shown.isNowOffline = true;
    shown.lastResult = {Outcome::refused("No."), now};
    EXPECT_EQ(macs::detail(&shown).facts.at(1).detail, u"Checked 2 min ago · now offline"_s);
    EXPECT_EQ(macs::detail(&shown).result, u"Last action: No. · just now"_s);

    shown = facts(machine("mini", Status::hostKeyIssue), {});
    const auto unknown = macs::detail(&shown);
    EXPECT_THAT(unknown.facts,
                ElementsAre(SummaryTexts{u"Profile"_s, u"No nickname"_s, u"No role"_s},
                            SummaryTexts{u"Status"_s, u"Host Key Issue"_s, u"Checked just now"_s},
                            SummaryTexts{u"Load"_s, u"– CPU"_s, u"Memory –"_s}));
    EXPECT_EQ(unknown.status, u"Host Key Issue"_s);
    EXPECT_EQ(unknown.statusIcon, u"exclamationmark.triangle.fill"_s);
    EXPECT_FALSE(unknown.isReachable);
}

// The peers --------------------------------------------------------------------------------------

TEST_F(RemoteMacsLinesTest, ThePathOfAPeer) {
    struct Case {
        const char* name;
        TailDevice peer;
        macs::PeerPath path;
        const char* words;
    };
    const Case cases[] = {
        {"direct",
         {.online = true, .active = true, .currentAddress = "192.0.2.7:41641", .relay = "fra"},
         macs::PeerPath::active,
         "Tailscale path: 192.0.2.7:41641"},
        {"over a relay",
         {.online = true, .inMagicSock = true, .relay = "fra"},
         macs::PeerPath::active,
         "Tailscale path: relay fra"},
        {"neither known",
         {.online = true, .active = true},
         macs::PeerPath::active,
         "Tailscale path: path active"},
        {"active although offline",
         {.online = false, .inMagicSock = true},
         macs::PeerPath::offline,
         "Tailscale path: path active"},
        {"addresses without a path",
         {.online = true, .currentAddress = "192.0.2.7:41641", .relay = "fra"},
         macs::PeerPath::listed,
         "Listed online, but no active path yet"},
        {"offline", {.relay = "fra"}, macs::PeerPath::offline, "Offline"},
    };
    for (const auto& [name, peer, path, words] : cases) {
        const macs::PeerLine line = macs::peerLine(peer);
        EXPECT_EQ(line.path, path) << name;
        EXPECT_EQ(line.pathText, QString::fromLatin1(words)) << name;
    }
}

TEST_F(RemoteMacsLinesTest, ThePlaceOfAPeerIsItsSystemAndItsFirstAddress) {
    EXPECT_EQ(macs::peerLine({.addresses = {"100.64.0.7", "fd7a::7"}, .os = "macOS"}).place,
              u"macOS · 100.64.0.7"_s);
    EXPECT_EQ(macs::peerLine({.os = "unknown"}).place, u"unknown · no address"_s);
}

TEST_F(RemoteMacsLinesTest, APeerWithoutANameIsNamedByItsAddress) {
    EXPECT_EQ(macs::peerLine({.id = "key", .addresses = {"100.64.0.7"}}).name, u"100.64.0.7"_s);
    EXPECT_EQ(macs::peerLine({.id = "key"}).name, u"no address"_s);
}

TEST_F(RemoteMacsLinesTest, AHostilePeerIsPlainTextOfBoundedLength) {
    const std::string hostile = "<b>x</b>\n\xE2\x80\xAE" + std::string(10000, 'x');
    const auto line = macs::peerLine(
        {.name = hostile, .addresses = {hostile}, .os = hostile, .active = true, .relay = hostile});
    for (const QString& each : {line.name, line.place, line.pathText}) {
        EXPECT_LE(each.size(), 600);
        EXPECT_FALSE(each.contains(u'\n'));
        EXPECT_FALSE(each.contains(QChar(0x202E)));
    }
    EXPECT_TRUE(line.name.startsWith(u"<b>x</b>"_s)) << "shown as it is, not as markup";
}

TEST_F(RemoteMacsLinesTest, TheClientThatDidNotAnswerIsTold) {
    EXPECT_EQ(macs::noPeers(false), u"No Tailscale peers were reported by the local CLI."_s);
    EXPECT_EQ(macs::noPeers(true),
              u"No Tailscale peers were reported by the local CLI. It did not answer, and may not "
              "be installed or not be running."_s);
}

TEST_F(RemoteMacsLinesTest, LinuxMachinesThatAreLeftOutAreCounted) {
    EXPECT_EQ(macs::linuxMachinesLeftOut(0), QString());
    EXPECT_EQ(macs::linuxMachinesLeftOut(1),
              u"1 Linux machine is online. Turn on Include Linux machines in the automation "
              "settings to scan it."_s);
    EXPECT_EQ(macs::linuxMachinesLeftOut(1200),
              u"1,200 Linux machines are online. Turn on Include Linux machines in the automation "
              "settings to scan them."_s);
}

TEST_F(RemoteMacsLinesTest, ManyProblemsOfTheClientAreCut) {
    EXPECT_THAT(macs::healthIssues({}), IsEmpty());
    EXPECT_THAT(macs::healthIssues({"No DNS.\r", "No route."}),
                ElementsAre(u"No DNS.\uFFFD"_s, u"No route."_s));
    const QStringList many = macs::healthIssues(std::vector<std::string>(1006, "Bad."));
    EXPECT_EQ(many.size(), 101);
    EXPECT_EQ(many.last(), u"and 906 more"_s);
    EXPECT_EQ(macs::healthIssues({std::string(10'000, 'x')}).at(0).size(), 2001)
        << "with the sign that it goes on";
}

}  // namespace
}  // namespace tallowcrest

#include "presentation/words/remote_timeline.h"

#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/presentation/scoped_locale.h"
#include "tests/support/each_of.h"
#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double minute = 60.0;

RemoteHistoryPoint point(double seconds, const std::string& hostName, double cpu = 1.0,
                         double memory = 2.0) {
    return {{}, hostName, Date{seconds}, cpu, memory, "Reachable"};
}

std::vector<double> starts(const RemoteTimeline& timeline) {
    return eachOf(timeline.scans, [](Date date) { return date.secondsSinceReference; });
}

std::vector<std::string> names(const RemoteTimeline& timeline) {
    return eachOf(timeline.lines,
                  [](const RemoteTimelineLine& line) { return line.name.toStdString(); });
}

TEST(RemoteTimeline, IsEmptyWithoutPoints) {
    const RemoteTimeline timeline = remoteTimeline({});
    EXPECT_THAT(timeline.scans, IsEmpty());
    EXPECT_THAT(timeline.lines, IsEmpty());
    EXPECT_THAT(timeline.gaps, IsEmpty());
    EXPECT_EQ(timeline.machinesLeftOut, 0U);
}

TEST(RemoteTimeline, GivesEachMachineItsValuesInTheScansThatReachedIt) {
    const RemoteTimeline timeline = remoteTimeline({
        point(0, "air", 10, 40),
        point(3, "mini", 20, 50),
        point(900, "mini", 30, 60),
        point(1800, "air", 11, 41),
        point(1803, "mini", 31, 61),
    });
    EXPECT_THAT(starts(timeline), ElementsAre(0, 900, 1800));
    EXPECT_THAT(
        timeline.lines,
        ElementsAre(RemoteTimelineLine{QStringLiteral("mini"), {20, 30, 31}, {50, 60, 61}, {}},
                    RemoteTimelineLine{QStringLiteral("air"), {10, 0, 11}, {40, 0, 41}, {1}}));
}

TEST(RemoteTimeline, BeginsAScanWhereAMachineAppearsAgainOrAfterAPause) {
    EXPECT_THAT(
        starts(remoteTimeline({point(0, "a"), point(5, "b"), point(16, "a"), point(19, "b")})),
        ElementsAre(0, 16));
    EXPECT_THAT(starts(remoteTimeline({point(0, "a"), point(300, "b")})), ElementsAre(0))
        << "dead machines between them";
    EXPECT_THAT(starts(remoteTimeline({point(0, "a"), point(301, "b")})), ElementsAre(0, 301));
    EXPECT_THAT(starts(remoteTimeline({point(50, "a"), point(10, "a")})), ElementsAre(50, 10))
        << "the clock was set back";
}

TEST(RemoteTimeline, TwoMachinesOfOneNameAreInOneScan) {
    std::vector<RemoteHistoryPoint> history;
    for (const int scan : {0, 900, 1800}) {
        history.push_back(point(scan, "twin", 10, 40));
        history.push_back(point(scan + 1, "twin", 20, 50));
        history.push_back(point(scan + 2, "other", 30, 60));
    }
    const RemoteTimeline timeline = remoteTimeline(history);
    EXPECT_THAT(starts(timeline), ElementsAre(0, 900, 1800));
    EXPECT_THAT(eachOf(timeline.lines, &RemoteTimelineLine::missing),
                ElementsAre(IsEmpty(), IsEmpty()));
}

TEST(RemoteTimeline, BeginsAScanAfterThePauseBeforeAMachineThatTheScanBeforeDidNotReach) {
    const RemoteTimeline repaired = remoteTimeline({point(0, "b"), point(60, "a"), point(63, "b")});
    EXPECT_THAT(starts(repaired), ElementsAre(0, 60));
    EXPECT_THAT(eachOf(repaired.lines, &RemoteTimelineLine::missing),
                testing::UnorderedElementsAre(ElementsAre(0), IsEmpty()));
    EXPECT_THAT(starts(remoteTimeline({point(0, "b"), point(9, "d"), point(40, "a"), point(43, "b"),
                                       point(50, "c"), point(53, "d")})),
                ElementsAre(0, 40))
        << "dead machines in both scans";
    EXPECT_THAT(starts(remoteTimeline({point(0, "b"), point(4, "c"), point(60, "b")})),
                ElementsAre(0, 60));
}

TEST(RemoteTimeline, HasAGapAfterThreeAutomaticScansThatWereNotMade) {
    EXPECT_THAT(remoteTimeline({point(0, "a"), point(45 * minute, "a")}).gaps, IsEmpty());
    EXPECT_THAT(remoteTimeline({point(0, "a"), point(10, "a"), point(10 + 46 * minute, "a")}).gaps,
                ElementsAre(2));
}

TEST(RemoteTimeline, ShowsTheMostLoadedMachinesOfTheLastScanFirst) {
    std::vector<RemoteHistoryPoint> history{
        point(0, "gone", 99, 99), point(900, "idle", 1, 20),     point(901, "cpu", 95, 10),
        point(902, "mem", 5, 80), point(903, "broken", nan, 50), point(904, "also idle", 20, 1),
    };
    RemoteTimeline timeline = remoteTimeline(history);
    EXPECT_THAT(names(timeline), ElementsAre("cpu", "mem", "broken", "also idle"));
    EXPECT_EQ(timeline.machinesLeftOut, 2U);
    history.erase(history.begin() + 2, history.end());
    timeline = remoteTimeline(history);
    EXPECT_THAT(names(timeline), ElementsAre("idle", "gone"));
    EXPECT_EQ(timeline.machinesLeftOut, 0U);
}

TEST(RemoteTimeline, AlwaysShowsTheSelectedMachine) {
    std::vector<RemoteHistoryPoint> history;
    for (const char* name : {"a", "b", "c", "d", "e", "f"}) {
        history.push_back(point(static_cast<double>(history.size()), name));
    }
    RemoteTimeline timeline = remoteTimeline(history, "f");
    EXPECT_THAT(names(timeline), ElementsAre("a", "b", "c", "f"));
    EXPECT_TRUE(timeline.showsSelected);
    EXPECT_EQ(timeline.machinesLeftOut, 2U);
    for (const char* other : {"", "gone", "b", "d"}) {
        timeline = remoteTimeline(history, other);
        EXPECT_THAT(names(timeline), ElementsAre("a", "b", "c", "d")) << other;
        EXPECT_FALSE(timeline.showsSelected) << other;
    }
    EXPECT_THAT(names(remoteTimeline({point(0, "a"), point(1, "b")}, "b")), ElementsAre("a", "b"));
    EXPECT_THAT(names(remoteTimeline({}, "b")), IsEmpty());
}

TEST(RemoteTimeline, BoundsNamesAndKeepsThemOnOneLine) {
    EXPECT_THAT(names(remoteTimeline({point(0, "a\nb\u202Ec<b>")})),
                ElementsAre("a\uFFFDb\uFFFDc<b>"));
    EXPECT_THAT(names(remoteTimeline({point(0, std::string(10'000, 'x'))})),
                ElementsAre(std::string(64, 'x') + "…"));
    std::string pictures = "x";
    for (int i = 0; i < 100; ++i) {
        pictures += "\U0001F5A5";
    }
    EXPECT_EQ(remoteTimeline({point(0, pictures)}).lines[0].name.size(), 64);
}

TEST(RemoteTimeline, IsToldInWords) {
    const ScopedLocale locale("en_US");
    EXPECT_EQ(remoteSamplesRetained(0),
              "Run a remote scan to begin tracking remote CPU and memory trends.");
    EXPECT_EQ(remoteSamplesRetained(1), "1 remote samples retained across recent scans.");
    EXPECT_EQ(remoteSamplesRetained(720), "720 remote samples retained across recent scans.");
    EXPECT_EQ(remoteMachinesLeftOut({}), "");
    EXPECT_EQ(remoteMachinesLeftOut({.machinesLeftOut = 1}),
              "Shows the 4 machines with the highest load. 1 more is not drawn.");
    EXPECT_EQ(remoteMachinesLeftOut({.machinesLeftOut = 1200}),
              "Shows the 4 machines with the highest load. 1,200 more are not drawn.");
    EXPECT_EQ(remoteMachinesLeftOut({.machinesLeftOut = 1, .showsSelected = true}),
              "Shows the selected machine and the 3 with the highest load. 1 more is not drawn.");
    EXPECT_EQ(lastRemoteSample({}, Date{0}), "");
    const std::vector<RemoteHistoryPoint> history{point(0, "a"), point(3600, "b")};
    const std::string sameDay = lastRemoteSample(history, Date{3600}).toStdString();
    const std::string laterDay = lastRemoteSample(history, Date{3 * 86400}).toStdString();
    EXPECT_THAT(sameDay, testing::StartsWith("Last sample "));
    EXPECT_GT(laterDay.size(), sameDay.size()) << "with the date";
}

TEST(RemoteTimeline, ANicknameStandsForTheHostName) {
    const std::map<std::string, RemoteProfile> profiles{
        {"a", {.id = "a", .nickname = "Attic"}},
        {"b", {.id = "b", .nickname = ""}},
        {"c", {.id = "c", .nickname = "c"}},
        {"d", {.id = "d", .nickname = std::string(100, 'x')}}};
    const RemoteTimeline timeline =
        remoteTimeline({point(0, "a"), point(1, "b"), point(2, "c"), point(3, "d")}, "a", profiles);
    ASSERT_EQ(timeline.lines.size(), 4U);
    EXPECT_EQ(timeline.lines[0].name.toStdString(), "Attic");
    EXPECT_EQ(timeline.lines[0].host.toStdString(), "a");
    EXPECT_EQ(timeline.lines[1].name.toStdString(), "b");
    EXPECT_EQ(timeline.lines[1].host, QString());
    EXPECT_EQ(timeline.lines[2].host, QString());
    EXPECT_EQ(timeline.lines[3].name.size(), 65);
}

TEST(RemoteTimeline, AMachineWithoutANameHasWordsInItsPlace) {
    EXPECT_THAT(names(remoteTimeline({point(0, "")})), ElementsAre("Unnamed machine"));
    const RemoteTimeline timeline =
        remoteTimeline({point(0, "")}, "", {{"", {.id = "", .nickname = "Attic"}}});
    EXPECT_THAT(names(timeline), ElementsAre("Attic"));
}

}  // namespace
}  // namespace tallowcrest

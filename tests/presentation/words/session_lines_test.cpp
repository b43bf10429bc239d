#include "presentation/words/session_lines.h"

#include <QDateTime>
#include <gmock/gmock.h>

#include "tests/presentation/scoped_locale.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ActivityLinesTest : public testing::Test {
protected:
    const ScopedLocale locale{"de_DE"};

    static Date at(const QDateTime& time) {
        return Date::fromUnixSeconds(static_cast<double>(time.toMSecsSinceEpoch()) / 1000.0);
    }

    const QDateTime evening{QDate(2026, 3, 9), QTime(20, 5)};
};

TEST_F(ActivityLinesTest, EmptyForAnEmptyLog) {
    EXPECT_THAT(activityLines({}, 5, at(evening)), IsEmpty());
}

TEST_F(ActivityLinesTest, KeepsTheOrderUpToTheLimit) {
    std::vector<ActivityEvent> events;
    for (const char* detail : {"third", "second", "first"}) {
        events.push_back({UUID::random(), at(evening), "Action", detail});
    }
    const auto lines = activityLines(events, 2, at(evening));
    ASSERT_THAT(lines, SizeIs(2));
    EXPECT_EQ(lines[0].detail, u"third"_s);
    EXPECT_EQ(lines[1].detail, u"second"_s);
    EXPECT_THAT(activityLines(events, 9, at(evening)), SizeIs(3));
}

TEST_F(ActivityLinesTest, OnlyTheKindMarksAWarning) {
    const auto lines = activityLines({{UUID::random(), at(evening), "Warning", "d"},
                                      {UUID::random(), at(evening), "Auto Rule", "Warning"}},
                                     5, at(evening));
    EXPECT_TRUE(lines[0].isWarning);
    EXPECT_FALSE(lines[1].isWarning);
    EXPECT_EQ(lines[1].title, u"Auto Rule"_s);
}

TEST_F(ActivityLinesTest, ControlAndDirectionCharactersAreReplaced) {
    const auto lines = activityLines(
        {{UUID::random(), at(evening), "Act\nion", "a\tb\u202Ec\u2028d <b>e</b>"}}, 5, at(evening));
    EXPECT_EQ(lines[0].title, u"Act\uFFFDion"_s);
    EXPECT_EQ(lines[0].detail, u"a\uFFFDb\uFFFDc\uFFFDd <b>e</b>"_s);
}

TEST_F(ActivityLinesTest, TimesFollowTheLocaleAndHaveADateOnAnotherDay) {
    const auto timeOf = [this](const QDateTime& time) {
        return activityLines({{UUID::random(), at(time), "Action", "d"}}, 1, at(evening))[0]
            .time.toStdString();
    };
    EXPECT_EQ(timeOf(evening), "20:05");
    EXPECT_EQ(timeOf(QDateTime(QDate(2026, 3, 9), QTime(0, 0))), "00:00");
    EXPECT_EQ(timeOf(QDateTime(QDate(2026, 3, 8), QTime(23, 59))), "08.03.2026, 23:59");
    EXPECT_EQ(timeOf(QDateTime(QDate(2025, 3, 9), QTime(20, 5))), "09.03.2025, 20:05");
}

ActivityEvent event(const char* title) {
    return {UUID::random(), Date{}, title, "Something"};
}

using Kind = SessionInsight::Kind;

SessionInsight insight(Kind kind, const char* title, const char* value) {
    return {UUID::random(), title, value, "Because", kind};
}

SummaryTexts texts(const char* title, const char* value, const char* detail) {
    return {QString::fromUtf8(title), QString::fromUtf8(value), QString::fromUtf8(detail)};
}

TEST(SessionSummary, OfASessionWithoutEvents) {
    EXPECT_THAT(
        sessionSummary({}, {}, {}),
        ElementsAre(texts("Events", "0 warnings",
                          "0 logged actions. Use Export for a full diagnostics file."),
                    texts("Recurring Top App", "None yet",
                          "Most visible app group in this Tallowcrest session."),
                    texts("Remote Repeater", "None yet",
                          "Most repeated top remote app group across SSH scans."),
                    texts("Never Quit", "0 apps", "No custom app groups are protected yet.")));
    EXPECT_EQ(sessionSummary({}, {}, {}).size(), sessionSummaryCards);
}

TEST(SessionSummary, CountsWarningsAndActionsByKind) {
    const auto cards = sessionSummary({event("Warning"), event("Action"), event("Auto Rule"),
                                       event("Action"), event("warning"), event("Actions")},
                                      {}, {});
    EXPECT_EQ(cards[0], texts("Events", "1 warnings",
                              "2 logged actions. Use Export for a full diagnostics file."));
}

TEST(SessionSummary, TakesTheTopAppsFromTheInsights) {
    const auto cards = sessionSummary(
        {},
        {insight(Kind::peakCPU, "Peak CPU", "97%"), insight(Kind::peakMemory, "Peak Memory", "80%"),
         insight(Kind::topApp, "Recurring Top App", "editor"),
         insight(Kind::remoteWatch, "Remote Watch", "server"),
         insight(Kind::remoteRepeater, "Remote Repeater", "postgres")},
        {});
    EXPECT_EQ(cards[1].value, u"editor"_s);
    EXPECT_EQ(cards[2].value, u"postgres"_s);
}

TEST(SessionSummary, ListsTheAppsThatAreNeverQuit) {
    const auto cards = sessionSummary({}, {}, {"mail", "Music"});
    EXPECT_EQ(cards[3], texts("Never Quit", "2 apps", "Music, mail"));
}

TEST(SessionInsightCards, AreTheUnchangedInsights) {
    EXPECT_THAT(sessionInsightCards({}, {}),
                ElementsAre(texts("Session", "Starting",
                                  "Tallowcrest is collecting enough samples to identify "
                                  "patterns.")));
    EXPECT_THAT(
        sessionInsightCards(
            {insight(Kind::peakCPU, "Peak CPU", "97%"), insight(Kind::starting, "Größe", "“80%”")},
            {}),
        ElementsAre(texts("Peak CPU", "97%", "Because"), texts("Größe", "“80%”", "Because")));
}

TEST(SessionInsightCards, TellTheAgeOfAnOlderFigure) {
    constexpr Date now{800000000.0};
    SessionInsight watch = insight(Kind::remoteWatch, "Remote Watch", "attic");
    watch.sampledAt = Date{now.secondsSinceReference - 600};
    EXPECT_THAT(sessionInsightCards({insight(Kind::peakCPU, "Peak CPU", "97%"), watch}, now),
                ElementsAre(texts("Peak CPU", "97%", "Because"),
                            texts("Remote Watch", "attic", "Because Sampled 10 min ago.")));
}

TEST(SessionState, BeforeAndAfterTheFirstSample) {
    const SummaryTexts remote =
        texts("Remote State", "Not scanned", "Use Scan Remote Macs in the Tailscale section.");
    EXPECT_THAT(sessionState(std::nullopt, {}, {}, {}),
                ElementsAre(remote, texts("Current State", "–", "Sampling this Mac..."),
                            texts("Top Repeater", "None yet",
                                  "Most visible app group in this Tallowcrest session.")));
    SystemSnapshot snapshot;
    snapshot.cpuPercent = 40.0;
    snapshot.memory.pressure = 59.4;
    const auto cards =
        sessionState(snapshot, {insight(Kind::topApp, "Recurring Top App", "editor")}, {}, {});
    ASSERT_THAT(cards, SizeIs(sessionStateCards));
    EXPECT_EQ(cards[0], remote);
    EXPECT_EQ(cards[1].value, u"40% CPU"_s);
    EXPECT_TRUE(cards[1].detail.startsWith(u"Memory pressure 59% at "_s));
    EXPECT_EQ(cards[2], texts("Top Repeater", "editor",
                              "Most visible app group in this Tallowcrest session."));
}

TEST(SessionState, CountsTheReachableMachinesAndNamesTheHighestMemoryAndTheAge) {
    constexpr Date now{800000000.0};
    const auto machine = [](RemoteHealth::Status status, std::optional<double> memory,
                            double secondsAgo = 0.0) {
        RemoteHealth health;
        health.sampledAt = {now.secondsSinceReference - secondsAgo};
        health.status = status;
        health.memoryPercent = memory;
        return health;
    };
    const auto stateOf = [](const std::vector<RemoteHealth>& machines) {
        return sessionState(std::nullopt, {}, machines, now)[0];
    };
    using Status = RemoteHealth::Status;
    EXPECT_EQ(
        stateOf({machine(Status::authNeeded, {}, 190.0), machine(Status::reachable, 40.2, 150.0),
                 machine(Status::reachable, 90.5, 170.0), machine(Status::noAddress, {}, 200.0)}),
        texts("Remote State", "2 reachable · 3 min ago", "Highest remote memory pressure 91%"));
    EXPECT_EQ(
        stateOf({machine(Status::reachable, 40.2), machine(Status::reachable, 90.5, 600.0)}),
        texts("Remote State", "2 reachable · 10 min ago", "Highest remote memory pressure 91%"));
    EXPECT_EQ(stateOf({machine(Status::reachable, 0.0)}),
              texts("Remote State", "1 reachable · just now", "Highest remote memory pressure 0%"));
    EXPECT_EQ(stateOf({machine(Status::unknown, {}, 7200.0)}),
              texts("Remote State", "0 reachable · 2 h ago", "Highest remote memory pressure –"));
    EXPECT_EQ(
        machinesThatNeedAttention({machine(Status::unknown, {}), machine(Status::reachable, {}),
                                   machine(Status::hostKeyIssue, {})}),
        2);
    EXPECT_EQ(machinesThatNeedAttention({}), 0);
}

}  // namespace
}  // namespace tallowcrest

#include "presentation/screens/overview/overview_lines.h"

#include <QStringList>
#include <gmock/gmock.h>

#include "tests/support/each_of.h"
#include "tests/support/numbers.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using Severity = Recommendation::Severity;
using testing::ElementsAre;
using testing::IsEmpty;

// Recommendations --------------------------------------------------------------------------------

Recommendation recommendation(const char* title, Severity severity,
                              std::optional<std::int64_t> pid = std::nullopt) {
    return {UUID::random(), title, std::string("About ") + title, severity, pid};
}

std::vector<ProcessSample> processes(std::initializer_list<std::int64_t> pids) {
    std::vector<ProcessSample> rows;
    for (const std::int64_t pid : pids) {
        rows.emplace_back().pid = pid;
    }
    return rows;
}

std::string titles(const std::vector<RecommendationLine>& lines) {
    const auto found = eachOf(lines, &RecommendationLine::title);
    return QStringList(found.begin(), found.end()).join(u' ').toStdString();
}

TEST(RecommendationLines, TheMostSevereComeFirstInOtherwiseUnchangedOrder) {
    const auto order = [](std::vector<Recommendation> given) {
        return titles(recommendationLines(given, {}));
    };
    const auto info = recommendation("i", Severity::info);
    const auto caution = recommendation("c", Severity::caution);
    const auto caution2 = recommendation("c2", Severity::caution);
    const auto urgent = recommendation("u", Severity::urgent);
    const auto urgent2 = recommendation("u2", Severity::urgent);
    EXPECT_EQ(order({info}), "i");
    EXPECT_EQ(order({caution, caution2, info}), "c c2 i");
    EXPECT_EQ(order({caution, urgent, caution2, urgent2}), "u u2 c c2");
    EXPECT_EQ(order({info, caution, urgent}), "u c i");
}

TEST(RecommendationLines, OnlyAProcessOfTheLatestTableCanBeReviewed) {
    const auto lines =
        recommendationLines({recommendation("gone", Severity::caution, 7),
                             recommendation("there", Severity::caution, 8),
                             {UUID::random(), "Größe", "“Other”", Severity::info, std::nullopt}},
                            processes({1, 8}));
    EXPECT_THAT(eachOf(lines, &RecommendationLine::reviewPID),
                ElementsAre(std::nullopt, 8, std::nullopt));
    EXPECT_EQ(lines.at(2).title, u"Größe"_s) << "texts are UTF-8";
    EXPECT_EQ(lines.at(2).detail, u"“Other”"_s);
}

TEST(RecommendationLines, TheNoteGivesTheFirstAndCountsTheOthers) {
    const auto noteOf = [](const std::vector<Recommendation>& given) {
        return recommendationNote(recommendationLines(given, {})).toStdString();
    };
    const auto urgent = recommendation("Memory pressure is high", Severity::urgent);
    EXPECT_THAT(recommendationLines({}, {}), IsEmpty());
    EXPECT_EQ(noteOf({}), "");
    EXPECT_EQ(noteOf({urgent}), "Urgent · Memory pressure is high");
    EXPECT_EQ(noteOf({recommendation("c", Severity::caution), urgent}),
              "Urgent · Memory pressure is high · 1 more");
}

TEST(RecommendationLines, EachSeverityHasItsOwnWordAndIcon) {
    EXPECT_EQ(severityWord(Severity::info).toStdString(), "Info");
    EXPECT_EQ(severityWord(Severity::caution).toStdString(), "Caution");
    EXPECT_EQ(severityWord(Severity::urgent).toStdString(), "Urgent");
    for (const Severity one : {Severity::info, Severity::caution, Severity::urgent}) {
        for (const Severity other : {Severity::info, Severity::caution, Severity::urgent}) {
            EXPECT_EQ(severityIcon(one) == severityIcon(other), one == other);
        }
    }
}

// Memory -----------------------------------------------------------------------------------------

AppImpact group(const std::string& name, double megabytes) {
    AppImpact impact;
    impact.name = name;
    impact.totalMemoryMB = megabytes;
    return impact;
}

TEST(TopAppMemory, LargestFirstRegardlessOfImpact) {
    struct Case {
        std::vector<AppImpact> groups;
        std::size_t limit;
        std::vector<AppMemoryBar> bars;
    };
    const Case cases[] = {
        {{}, 6, {}},
        {{group("a", 1.0)}, 0, {}},
        {{group("busy", 100.0), group("large", 400.0), group("middle", 200.0)},
         6,
         {{"large", 400.0, 1.0}, {"middle", 200.0, 0.5}, {"busy", 100.0, 0.25}}},
        {{group("b", 5.0), group("a", 5.0)}, 6, {{"b", 5.0, 1.0}, {"a", 5.0, 1.0}}},
        {{group("a", 0.0), group("b", 0.0)}, 6, {{"a", 0.0, 0.0}, {"b", 0.0, 0.0}}},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(topAppMemory(each.groups, each.limit), each.bars) << "case " << &each - cases;
    }
}

TEST(TopAppMemory, TheLimitKeepsTheLargestAndNotTheFirst) {
    std::vector<AppImpact> groups;
    for (int i = 1; i <= 20; ++i) {
        groups.push_back(group("group " + std::to_string(i), i));
    }
    EXPECT_THAT(eachOf(topAppMemory(groups, 3), &AppMemoryBar::name),
                ElementsAre("group 20", "group 19", "group 18"));
}

// The top offender -------------------------------------------------------------------------------

using State = TopOffender::State;

class TopOffenderTest : public testing::Test {
protected:
    TopOffenderTest() {
        settings.warningThreshold = 82.0;
        for (const auto& [pid, command] :
             {std::pair{800, "/usr/bin/editor"}, {900, "/usr/bin/mail"}}) {
            ProcessSample& row = processes.emplace_back();
            row.pid = pid;
            row.command = row.arguments = command;
        }
    }

    TopOffender at(double cpu, double pressure) {
        SystemSnapshot& taken = snapshot.emplace();
        taken.cpuPercent = cpu;
        taken.memory.pressure = pressure;
        taken.appImpacts = groups;
        return topOffender({snapshot, processes, settings, {}});
    }

    static AppImpact group(const char* name, std::int64_t topPID) {
        AppImpact impact;
        impact.name = name;
        impact.topPID = topPID;
        return impact;
    }

    std::optional<SystemSnapshot> snapshot;
    std::vector<AppImpact> groups{group("editor", 800), group("mail", 900)};
    std::vector<ProcessSample> processes;
    Settings settings;
};

TEST_F(TopOffenderTest, IsUnknownWithoutASampleOrWithoutGroups) {
    const TopOffender expected{State::unknown, u"No top offender yet"_s, {}, {}, {}};
    EXPECT_EQ(topOffender({snapshot, processes, settings, {}}), expected);
    groups.clear();
    EXPECT_EQ(at(10.0, 10.0), expected);
    EXPECT_EQ(at(99.0, 99.0), expected);
}

TEST_F(TopOffenderTest, LoadUnderTheThresholdIsStable) {
    const TopOffender expected{
        State::stable,
        u"System Looks Stable"_s,
        u"CPU and memory pressure are below your warning threshold. Keep monitoring "
        "or run an on-device second opinion."_s,
        {},
        {}};
    EXPECT_EQ(at(0.0, 0.0), expected);
    EXPECT_EQ(at(81.9, 81.9), expected);
}

TEST_F(TopOffenderTest, CPUOrMemoryAtTheThresholdNamesTheTopApp) {
    const TopOffender expected{
        State::offender,
        {},
        u"editor is the most useful place to start. Review the Optimize workspace "
        "before quitting or purging anything."_s,
        u"editor"_s,
        800};
    EXPECT_EQ(at(82.0, 10.0), expected);
    EXPECT_EQ(at(10.0, 82.0), expected);
    settings.warningThreshold = 65.0;
    EXPECT_EQ(at(100.0, 100.0), expected);
}

TEST_F(TopOffenderTest, OnlyARunningUnprotectedProcessCanBeReviewed) {
    settings.protectedAppNames = {"editor"};
    EXPECT_EQ(at(82.0, 10.0).state, State::offender);
    EXPECT_EQ(at(82.0, 10.0).reviewPID, std::nullopt) << "on the Never Quit list";
    settings.protectedAppNames.clear();
    EXPECT_EQ(at(82.0, 10.0).reviewPID, 800);
    processes.front().pid = 801;
    EXPECT_EQ(at(82.0, 10.0).reviewPID, std::nullopt) << "has left the table";
    groups.front().topPID.reset();
    EXPECT_EQ(at(82.0, 10.0).reviewPID, std::nullopt) << "has no safe process";
}

TEST(RemoteAlertsTest, CountTheMachinesAndTellTheirAge) {
    constexpr Date now{10'000.0};
    RemoteHealth well{.status = RemoteHealth::Status::reachable, .sampledAt = {9'870.0}};
    RemoteHealth locked{.status = RemoteHealth::Status::authNeeded, .sampledAt = {9'000.0}};
    EXPECT_EQ(remoteAlerts({}, now), RemoteAlerts());
    EXPECT_EQ(remoteAlerts({well}, now), RemoteAlerts());
    EXPECT_EQ(remoteAlerts({locked, well}, now),
              (RemoteAlerts{u"1 Remote Alerts"_s, u"Scanned 2 min ago"_s}));
    EXPECT_EQ(remoteAlerts({locked, locked, locked}, now),
              (RemoteAlerts{u"3 Remote Alerts"_s, u"Scanned 16 min ago"_s}));
}

}  // namespace
}  // namespace tallowcrest

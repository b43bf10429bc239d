#include "presentation/screens/overview/overview_lines.h"

#include <gmock/gmock.h>

#include "tests/support/each_of.h"
#include "tests/support/numbers.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;

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
              (RemoteAlerts{u"1 Remote Alerts"_s, u"Scanned 16 min ago"_s}))
        << "the oldest record, after a scan that was canceled";
    EXPECT_EQ(remoteAlerts({locked, locked, locked}, now),
              (RemoteAlerts{u"3 Remote Alerts"_s, u"Scanned 16 min ago"_s}));
}

}  // namespace
}  // namespace tallowcrest

#include "presentation/screens/overview/top_offender.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using State = TopOffender::State;

std::optional<SystemSnapshot> sample(double cpu, double pressure,
                                     std::vector<std::string> groups = {"editor", "mail"}) {
    SystemSnapshot snapshot;
    snapshot.cpuPercent = cpu;
    snapshot.memory.pressure = pressure;
    for (std::string& group : groups) {
        snapshot.appImpacts.emplace_back().name = std::move(group);
    }
    return snapshot;
}

TEST(TopOffender, NothingCanBeToldWithoutASampleOfGroups) {
    const TopOffender expected{State::unknown, u"No top offender yet"_s, {}};
    EXPECT_EQ(topOffender(std::nullopt, 82.0), expected);
    EXPECT_EQ(topOffender(sample(10.0, 10.0, {}), 82.0), expected);
    EXPECT_EQ(topOffender(sample(99.0, 99.0, {}), 82.0), expected);
}

TEST(TopOffender, LoadUnderTheThresholdIsStable) {
    const TopOffender expected{
        State::stable, u"System Looks Stable"_s,
        u"CPU and memory pressure are below your warning threshold. Keep monitoring "
        "or run an on-device second opinion."_s};
    EXPECT_EQ(topOffender(sample(0.0, 0.0), 82.0), expected);
    EXPECT_EQ(topOffender(sample(81.9, 81.9), 82.0), expected);
}

TEST(TopOffender, EitherLoadAtTheThresholdNamesTheTopApp) {
    const TopOffender expected{
        State::offender,
        {},
        u"editor is the most useful place to start. Review the Optimize workspace "
        "before quitting or purging anything."_s};
    EXPECT_EQ(topOffender(sample(82.0, 10.0), 82.0), expected);
    EXPECT_EQ(topOffender(sample(10.0, 82.0), 82.0), expected);
    EXPECT_EQ(topOffender(sample(100.0, 100.0), 65.0), expected);
}

TEST(RemoteAlerts, ShowOnlyWhenThereAreSome) {
    EXPECT_EQ(remoteAlerts(0), QString());
    EXPECT_EQ(remoteAlerts(-1), QString());
    EXPECT_EQ(remoteAlerts(1), u"1 Remote Alerts"_s);
    EXPECT_EQ(remoteAlerts(3), u"3 Remote Alerts"_s);
}

}  // namespace
}  // namespace tallowcrest

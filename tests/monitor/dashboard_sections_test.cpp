#include "monitor/dashboard_sections.h"

#include <algorithm>

#include <gmock/gmock.h>

#include "core/settings_keys.h"
#include "tests/support/fake_machine.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class DashboardSectionsTest : public testing::Test {
protected:
    DashboardSectionsTest() : log(clock, observable, {}, [](const auto&) {}) {}

    /// What a restart would find; a list that was never written is a failure.
    SettingsTextList stored() {
        const auto value = store.read(settings_keys::collapsedSectionsKey);
        return value ? std::get<SettingsTextList>(*value) : SettingsTextList{"never written"};
    }

    ManualClock clock;
    ManualMainQueue queue;
    Observable observable{queue};
    MemorySettingsStore store;
    ActivityLog log;
    DashboardSections::RawValues collapsed;
    DashboardSections sections{collapsed, store, log, observable};
};

TEST_F(DashboardSectionsTest, AllAreExpandedAtFirst) {
    for (const DashboardSection section : allDashboardSections) {
        EXPECT_FALSE(sections.isCollapsed(section)) << rawValue(section);
    }
    EXPECT_EQ(store.read(settings_keys::collapsedSectionsKey), std::nullopt);
}

TEST_F(DashboardSectionsTest, EachChangeIsStoredAtOnceInAscendingOrder) {
    sections.setCollapsed(DashboardSection::recentLoad, true);
    EXPECT_THAT(stored(), ElementsAre("recentLoad"));
    sections.toggle(DashboardSection::appImpact);
    sections.setCollapsed(DashboardSection::gauges, true);
    EXPECT_THAT(stored(), ElementsAre("appImpact", "gauges", "recentLoad"));
    EXPECT_TRUE(sections.isCollapsed(DashboardSection::gauges));
    EXPECT_FALSE(sections.isCollapsed(DashboardSection::tailscale));
    sections.toggle(DashboardSection::gauges);
    sections.setCollapsed(DashboardSection::appImpact, false);
    EXPECT_THAT(stored(), ElementsAre("recentLoad"));
    sections.toggle(DashboardSection::recentLoad);
    EXPECT_THAT(stored(), IsEmpty());
    EXPECT_THAT(log.activityLog(), IsEmpty()) << "closing one section is no event";
}

TEST_F(DashboardSectionsTest, WhatIsNoChangeIsNeitherStoredNorTold) {
    int told = 0;
    const Subscription subscription = observable.subscribe([&told] { ++told; });
    sections.setCollapsed(DashboardSection::gauges, false);
    queue.drain();
    EXPECT_EQ(told, 0);
    EXPECT_EQ(store.read(settings_keys::collapsedSectionsKey), std::nullopt);
    sections.setCollapsed(DashboardSection::gauges, true);
    queue.drain();
    EXPECT_EQ(told, 1);
}

TEST_F(DashboardSectionsTest, CollapseAllClosesEverySectionAndSaysSo) {
    sections.collapseAll();
    SettingsTextList all;
    for (const DashboardSection section : allDashboardSections) {
        EXPECT_TRUE(sections.isCollapsed(section)) << rawValue(section);
        all.emplace_back(rawValue(section));
    }
    std::sort(all.begin(), all.end());
    EXPECT_EQ(stored(), all);
    EXPECT_EQ(log.lastAction(), "Collapsed all dashboard sections.");
    ASSERT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_EQ(log.activityLog()[0].title, "Action");
    EXPECT_EQ(log.activityLog()[0].detail, "Collapsed all dashboard sections.");
}

TEST_F(DashboardSectionsTest, ExpandAllOpensEverySectionAndSaysSo) {
    sections.collapseAll();
    sections.expandAll();
    EXPECT_THAT(stored(), IsEmpty());
    EXPECT_FALSE(sections.isCollapsed(DashboardSection::gauges));
    EXPECT_EQ(log.lastAction(), "Expanded all dashboard sections.");
    sections.expandAll();
    EXPECT_THAT(log.activityLog(), SizeIs(3)) << "reported even where nothing was closed";
}

TEST_F(DashboardSectionsTest, UnknownTextsDoNoHarmAndStayUntilAllIsExpanded) {
    collapsed = {"aSectionOfTomorrow", "gauges", ""};
    EXPECT_TRUE(sections.isCollapsed(DashboardSection::gauges));
    EXPECT_FALSE(sections.isCollapsed(DashboardSection::sessionInsights));
    sections.toggle(DashboardSection::gauges);
    EXPECT_THAT(stored(), ElementsAre("", "aSectionOfTomorrow"));
    sections.collapseAll();
    EXPECT_THAT(stored(), SizeIs(allDashboardSections.size() + 2));
    sections.expandAll();
    EXPECT_THAT(stored(), IsEmpty());
}

TEST(DashboardSectionsOfTheMonitor, SurviveARestart) {
    FakeMachine before;
    before.monitor().sections().setCollapsed(DashboardSection::recentLoad, true);
    EXPECT_THAT(before.monitor().settings().collapsedSections, ElementsAre("recentLoad"));

    FakeMachine after;
    after.store = before.store;
    EXPECT_TRUE(after.monitor().sections().isCollapsed(DashboardSection::recentLoad));
    EXPECT_FALSE(after.monitor().sections().isCollapsed(DashboardSection::gauges));
}

}  // namespace
}  // namespace tallowcrest

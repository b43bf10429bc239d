#include "presentation/state/window_state.h"

#include <algorithm>

#include <gmock/gmock.h>

#include "core/observable.h"
#include "core/settings/settings.h"
#include "tests/support/manual_queues.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(Navigation, StartsOnTheOverviewWithAnEmptyFilter) {
    ManualMainQueue queue;
    const Navigation navigation(queue);
    EXPECT_EQ(navigation.selectedRoute(), AppRoute::overview);
    EXPECT_EQ(navigation.processFilter(), "");
    EXPECT_FALSE(navigation.showSettings());
    EXPECT_EQ(navigation.settingsTab(), SettingsTabKind::ai);
}

TEST(Navigation, NotifiesObserversOnlyOfChanges) {
    ManualMainQueue queue;
    Navigation navigation(queue);
    int told = 0;
    const Subscription subscription = navigation.observable().subscribe([&told] { ++told; });

    navigation.setSelectedRoute(AppRoute::overview);
    navigation.setProcessFilter("");
    queue.drain();
    EXPECT_EQ(told, 0);

    navigation.setSelectedRoute(AppRoute::load);
    queue.drain();
    EXPECT_EQ(told, 1);
    EXPECT_EQ(navigation.selectedRoute(), AppRoute::load);

    navigation.setProcessFilter(" Chrome ");
    queue.drain();
    EXPECT_EQ(told, 2);
    EXPECT_EQ(navigation.processFilter(), " Chrome ");

    navigation.setShowSettings(true);
    navigation.setSettingsTab(SettingsTabKind::safety);
    queue.drain();
    EXPECT_EQ(told, 3) << "two changes in one turn are one notification";
    EXPECT_TRUE(navigation.showSettings());
    EXPECT_EQ(navigation.settingsTab(), SettingsTabKind::safety);

    navigation.setShowSettings(true);
    navigation.setSettingsTab(SettingsTabKind::safety);
    queue.drain();
    EXPECT_EQ(told, 3);

    navigation.setShowSettings(false);
    queue.drain();
    EXPECT_EQ(told, 4);
    EXPECT_FALSE(navigation.showSettings());
}

class DashboardSectionsTest : public testing::Test {
protected:
    /// The stored list; "never written" when there is none.
    SettingsTextList stored() {
        const auto value = store.read(settings_keys::collapsedSectionsKey);
        return value ? std::get<SettingsTextList>(*value) : SettingsTextList{"never written"};
    }

    TestServices with;
    RecordingStore& store = with.store;
    ActivityLog& log = with.log;
    DashboardSections sections{with.settings, with.log};
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
    sections.setCollapsed(DashboardSection::appImpact, true);
    sections.setCollapsed(DashboardSection::gauges, true);
    EXPECT_THAT(stored(), ElementsAre("appImpact", "gauges", "recentLoad"));
    EXPECT_TRUE(sections.isCollapsed(DashboardSection::gauges));
    EXPECT_FALSE(sections.isCollapsed(DashboardSection::tailscale));
    sections.setCollapsed(DashboardSection::gauges, false);
    sections.setCollapsed(DashboardSection::appImpact, false);
    EXPECT_THAT(stored(), ElementsAre("recentLoad"));
    sections.setCollapsed(DashboardSection::recentLoad, false);
    EXPECT_THAT(stored(), IsEmpty());
    EXPECT_THAT(log.activityLog(), IsEmpty()) << "collapsing one section is not recorded";
}

TEST_F(DashboardSectionsTest, AnUnchangedSectionIsNeitherStoredNorReported) {
    int told = 0;
    const Subscription subscription = with.settings.observable().subscribe([&told] { ++told; });
    sections.setCollapsed(DashboardSection::gauges, false);
    with.mainQueue.drain();
    EXPECT_EQ(told, 0);
    EXPECT_EQ(store.read(settings_keys::collapsedSectionsKey), std::nullopt);
    sections.setCollapsed(DashboardSection::gauges, true);
    with.mainQueue.drain();
    EXPECT_EQ(told, 1);
}

TEST_F(DashboardSectionsTest, CollapseAllCollapsesEverySectionAndReportsIt) {
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

TEST_F(DashboardSectionsTest, ExpandAllExpandsEverySectionAndReportsIt) {
    sections.collapseAll();
    sections.expandAll();
    EXPECT_THAT(stored(), IsEmpty());
    EXPECT_FALSE(sections.isCollapsed(DashboardSection::gauges));
    EXPECT_EQ(log.lastAction(), "Expanded all dashboard sections.");
    sections.expandAll();
    EXPECT_THAT(log.activityLog(), SizeIs(3)) << "reported even when nothing was collapsed";
}

TEST_F(DashboardSectionsTest, UnknownTextsAreKeptUntilAllIsExpanded) {
    with.settings.set(&Settings::collapsedSections, {"aSectionOfTomorrow", "gauges", ""});
    EXPECT_TRUE(sections.isCollapsed(DashboardSection::gauges));
    EXPECT_FALSE(sections.isCollapsed(DashboardSection::sessionInsights));
    sections.setCollapsed(DashboardSection::gauges, false);
    EXPECT_THAT(stored(), ElementsAre("", "aSectionOfTomorrow"));
    sections.collapseAll();
    EXPECT_THAT(stored(), SizeIs(allDashboardSections.size() + 2));
    sections.expandAll();
    EXPECT_THAT(stored(), IsEmpty());
}

TEST_F(DashboardSectionsTest, SurviveARestart) {
    sections.setCollapsed(DashboardSection::recentLoad, true);
    SettingsOwner again(store, with.mainQueue, "owner");
    const DashboardSections after(again, log);
    EXPECT_TRUE(after.isCollapsed(DashboardSection::recentLoad));
    EXPECT_FALSE(after.isCollapsed(DashboardSection::gauges));
}

}  // namespace
}  // namespace tallowcrest

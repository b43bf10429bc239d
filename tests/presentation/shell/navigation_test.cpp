#include "presentation/shell/navigation.h"

#include <gtest/gtest.h>

#include "core/observable.h"
#include "tests/support/manual_queues.h"

namespace tallowcrest {
namespace {

TEST(Navigation, StartsOnTheOverviewWithAnEmptyFilter) {
    ManualMainQueue queue;
    const Navigation navigation(queue, true);
    EXPECT_EQ(navigation.selectedRoute(), AppRoute::overview);
    EXPECT_EQ(navigation.processFilter(), "");
    EXPECT_TRUE(navigation.showSetupWizard());
    EXPECT_FALSE(Navigation(queue, false).showSetupWizard());
    EXPECT_FALSE(navigation.showSettings());
    EXPECT_EQ(navigation.settingsTab(), "AI");
}

TEST(Navigation, NotifiesObserversOnlyOfChanges) {
    ManualMainQueue queue;
    Navigation navigation(queue, false);
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
    navigation.setSettingsTab(settings_tabs::safety);
    queue.drain();
    EXPECT_EQ(told, 3) << "two changes in one turn are one notification";
    EXPECT_TRUE(navigation.showSettings());
    EXPECT_EQ(navigation.settingsTab(), "Safety");

    navigation.setShowSettings(true);
    navigation.setSettingsTab("Safety");
    queue.drain();
    EXPECT_EQ(told, 3);

    navigation.setShowSettings(false);
    queue.drain();
    EXPECT_EQ(told, 4);
    EXPECT_FALSE(navigation.showSettings());
}

}  // namespace
}  // namespace tallowcrest

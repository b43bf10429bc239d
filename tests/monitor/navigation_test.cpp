#include "monitor/navigation.h"

#include <gtest/gtest.h>

#include "tests/support/manual_queues.h"

namespace tallowcrest {
namespace {

TEST(Navigation, StartsOnTheOverviewWithAnEmptyFilter) {
    ManualMainQueue queue;
    Observable observable(queue);
    const Navigation navigation(observable, true);
    EXPECT_EQ(navigation.selectedRoute(), AppRoute::overview);
    EXPECT_EQ(navigation.processFilter(), "");
    EXPECT_TRUE(navigation.showSetupWizard());
    EXPECT_FALSE(Navigation(observable, false).showSetupWizard());
}

TEST(Navigation, TellsObserversOfAChangeAlone) {
    ManualMainQueue queue;
    Observable observable(queue);
    Navigation navigation(observable, false);
    int told = 0;
    const Subscription subscription = observable.subscribe([&told] { ++told; });

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
}

}  // namespace
}  // namespace tallowcrest

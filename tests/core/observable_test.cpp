#include "core/observable.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/manual_queues.h"

namespace tallowcrest {
namespace {

class ObservableTest : public ::testing::Test {
protected:
    ManualMainQueue queue;
    Observable observable{queue};
    int told = 0;
    std::function<void()> count = [this] { ++told; };
};

TEST_F(ObservableTest, NotifiesOncePerTurn) {
    const Subscription subscription = observable.subscribe(count);
    queue.turn();
    EXPECT_EQ(queue.pendingCount(), 0U);
    EXPECT_EQ(told, 0) << "without a change";
    for (int i = 0; i < 10; ++i) {
        observable.changed();
    }
    EXPECT_EQ(queue.pendingCount(), 1U);
    EXPECT_EQ(told, 0) << "not at once";
    queue.turn();
    EXPECT_EQ(told, 1);
    queue.turn();
    EXPECT_EQ(told, 1);
    observable.changed();
    queue.turn();
    EXPECT_EQ(told, 2);
}

TEST_F(ObservableTest, AChangeByAnObserverNotifiesOnTheNextTurn) {
    int changes = 0;
    const Subscription subscription = observable.subscribe([&] {
        if (++changes < 3) {
            observable.changed();
        }
    });
    observable.changed();
    queue.turn();
    EXPECT_EQ(changes, 1);
    queue.turn();
    EXPECT_EQ(changes, 2);
    queue.drain();
    EXPECT_EQ(changes, 3);
}

TEST_F(ObservableTest, TellsInTheOrderOfSubscribing) {
    std::string order;
    const Subscription a = observable.subscribe([&] { order += 'a'; });
    const Subscription b = observable.subscribe([&] { order += 'b'; });
    const Subscription c = observable.subscribe([&] { order += 'c'; });
    observable.changed();
    queue.turn();
    EXPECT_EQ(order, "abc");
}

TEST_F(ObservableTest, EndingASubscriptionBeforeTheTurnSilencesIt) {
    std::optional<Subscription> subscription = observable.subscribe(count);
    observable.changed();
    subscription.reset();
    queue.turn();
    EXPECT_EQ(told, 0);
}

TEST_F(ObservableTest, AnObserverMayEndItselfWhileItIsTold) {
    std::optional<Subscription> subscription;
    subscription = observable.subscribe([&] {
        subscription.reset();
        ++told;
    });
    observable.changed();
    queue.turn();
    observable.changed();
    queue.turn();
    EXPECT_EQ(told, 1);
}

TEST_F(ObservableTest, AnObserverMayEndALaterOneWhileItIsTold) {
    std::optional<Subscription> later;
    const Subscription first = observable.subscribe([&] { later.reset(); });
    later = observable.subscribe(count);
    const Subscription last = observable.subscribe(count);
    observable.changed();
    queue.turn();
    EXPECT_EQ(told, 1);
}

TEST_F(ObservableTest, AnObserverAddedWhileTellingWaitsForTheNextChange) {
    std::vector<Subscription> added;
    const Subscription first =
        observable.subscribe([&] { added.push_back(observable.subscribe(count)); });
    observable.changed();
    queue.turn();
    EXPECT_EQ(told, 0);
    observable.changed();
    queue.turn();
    EXPECT_EQ(told, 1);
}

TEST_F(ObservableTest, AMovedSubscriptionKeepsItsObserver) {
    Subscription first = observable.subscribe(count);
    Subscription second = std::move(first);
    observable.changed();
    queue.turn();
    EXPECT_EQ(told, 1);

    int other = 0;
    second = observable.subscribe([&other] { ++other; });
    observable.changed();
    queue.turn();
    EXPECT_EQ(told, 1);
    EXPECT_EQ(other, 1);
}

TEST(ObservableLifetime, NothingIsDeliveredAfterTheObservableIsGone) {
    ManualMainQueue queue;
    int told = 0;
    auto observable = std::make_unique<Observable>(queue);
    const Subscription subscription = observable->subscribe([&told] { ++told; });
    observable->changed();
    observable.reset();
    queue.drain();
    EXPECT_EQ(told, 0);
}

TEST(ObservableLifetime, ASubscriptionMayOutliveTheObservable) {
    ManualMainQueue queue;
    const auto witness = std::make_shared<int>(0);
    std::optional<Subscription> subscription;
    {
        Observable observable(queue);
        subscription = observable.subscribe([witness] { ++*witness; });
        EXPECT_EQ(witness.use_count(), 2);
    }
    EXPECT_EQ(witness.use_count(), 1);
    subscription.reset();
    EXPECT_EQ(*witness, 0);
}

TEST(ObservableLifetime, AnObserverMayDestroyTheObservable) {
    ManualMainQueue queue;
    auto observable = std::make_unique<Observable>(queue);
    const Subscription subscription = observable->subscribe([&] { observable.reset(); });
    observable->changed();
    queue.drain();
    EXPECT_EQ(observable, nullptr);
}

TEST(ObservableLifetime, AQueueMayGoWithTheNotificationStillWaiting) {
    auto queue = std::make_unique<ManualMainQueue>();
    int told = 0;
    Observable observable(*queue);
    const Subscription subscription = observable.subscribe([&told] { ++told; });
    observable.changed();
    queue.reset();
    EXPECT_EQ(told, 0);
}

class ObserverGroupTest : public ::testing::Test {
protected:
    ManualMainQueue queue;
    Observable first{queue};
    Observable second{queue};
    Observable other{queue};
    int told = 0;
    std::optional<ObserverGroup> group{std::in_place, queue, [this] { ++told; }};
};

TEST_F(ObserverGroupTest, NotifiesOnceForSeveralChanges) {
    group->observe({&first, &second});
    for (int i = 0; i < 100; ++i) {
        first.changed();
        second.changed();
    }
    queue.drain();
    EXPECT_EQ(told, 1);
    second.changed();
    queue.drain();
    EXPECT_EQ(told, 2);
}

TEST_F(ObserverGroupTest, IgnoresOtherObservables) {
    group->observe({&first});
    for (int i = 0; i < 100; ++i) {
        other.changed();
        queue.drain();
    }
    EXPECT_EQ(told, 0);
    group->observe({&other});
    first.changed();
    queue.drain();
    EXPECT_EQ(told, 0);
    other.changed();
    queue.drain();
    EXPECT_EQ(told, 1);
}

TEST_F(ObserverGroupTest, ObservingOthersDropsPendingNotifications) {
    group->observe({&first});
    first.changed();
    queue.turn();
    group->observe({&other});
    queue.drain();
    EXPECT_EQ(told, 0);
    other.changed();
    queue.drain();
    EXPECT_EQ(told, 1);
}

TEST_F(ObserverGroupTest, IsToldOneTurnAfterTheObservers) {
    group->observe({&first});
    first.changed();
    queue.turn();
    EXPECT_EQ(told, 0);
    queue.turn();
    EXPECT_EQ(told, 1);
}

TEST_F(ObserverGroupTest, ItsObserverMayDestroyIt) {
    group.emplace(queue, [this] {
        group.reset();
        ++told;
    });
    group->observe({&first});
    first.changed();
    queue.drain();
    EXPECT_EQ(told, 1);
    first.changed();
    queue.drain();
    EXPECT_EQ(told, 1);
}

TEST_F(ObserverGroupTest, IsNotToldAfterItsEnd) {
    group->observe({&first});
    first.changed();
    queue.turn();
    group.reset();
    queue.drain();
    EXPECT_EQ(told, 0);
}

}  // namespace
}  // namespace tallowcrest

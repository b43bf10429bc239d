#include "core/confirmation_desk.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_kinds.h"
#include "core/observable.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class ConfirmationDeskTest : public ::testing::Test, protected TestServices {
protected:
    ConfirmationDeskTest() {
        melt = desk.registerKind("melt", {[this](const ConfirmationRequest& request, void*) {
                                              EXPECT_FALSE(desk.pendingConfirmation());
                                              confirmed.push_back(request.title);
                                              return Outcome::done(request.title);
                                          },
                                          [this](const ConfirmationRequest& request) {
                                              canceled.push_back(request.title);
                                          }});
        pour = desk.registerKind("pour", {[this](const ConfirmationRequest& request, void*) {
                                              confirmed.push_back(request.title);
                                              return Outcome::done(request.title);
                                          },
                                          {}});
    }

    static ConfirmationRequest request(const std::string& kind, const std::string& title) {
        return {UUID::random(), title, "Think first.", "Do It", kind, {}, {}};
    }

    const ConfirmationTargets candle{.paths = {"/usr/bin/candle"}, .pids = {900}};
    ConfirmationDesk& desk = confirmations;
    ConfirmationDesk::Registration melt;
    ConfirmationDesk::Registration pour;
    std::vector<std::string> confirmed;
    std::vector<std::string> canceled;
};

TEST_F(ConfirmationDeskTest, HoldsARequestUntilItIsAnswered) {
    EXPECT_FALSE(desk.pendingConfirmation());
    const ConfirmationRequest asked = request("melt", "Melt it?");
    desk.requestConfirmation(asked, candle);
    EXPECT_EQ(desk.pendingConfirmation(), asked);
    EXPECT_EQ(desk.targets(), candle);
    EXPECT_THAT(confirmed, IsEmpty());
}

TEST_F(ConfirmationDeskTest, ConfirmingTwiceRunsOnce) {
    desk.requestConfirmation(request("melt", "Melt it?"), candle);
    EXPECT_EQ(desk.confirmPending(), Outcome::done("Melt it?")) << "the handler's outcome";
    EXPECT_EQ(desk.confirmPending(), Outcome::ignored());
    EXPECT_THAT(confirmed, ElementsAre("Melt it?"));
    EXPECT_FALSE(desk.pendingConfirmation());
    EXPECT_EQ(desk.targets(), ConfirmationTargets());
    EXPECT_THAT(log.activityLog(), IsEmpty());
}

TEST_F(ConfirmationDeskTest, ARequestMadeByAHandlerIsPending) {
    const auto next = [this](const ConfirmationRequest&, auto...) {
        desk.requestConfirmation(request("pour", "Pour it?"));
        return Outcome::asked();
    };
    const auto chain = desk.registerKind("chain", {next, next});
    for (const bool confirms : {true, false}) {
        desk.requestConfirmation(request("chain", "Begin?"));
        EXPECT_TRUE((confirms ? desk.confirmPending() : desk.cancelPending()).isAccepted());
        ASSERT_TRUE(desk.pendingConfirmation());
        EXPECT_EQ(desk.pendingConfirmation()->title, "Pour it?");
        EXPECT_THAT(confirmed, IsEmpty());
    }
}

TEST_F(ConfirmationDeskTest, ANewRequestReplacesTheOlderOneWithoutAMessage) {
    desk.requestConfirmation(request("melt", "Melt it?"), candle);
    desk.requestConfirmation(request("pour", "Pour it?"));
    EXPECT_THAT(canceled, IsEmpty());
    EXPECT_THAT(log.activityLog(), IsEmpty());
    EXPECT_EQ(desk.targets(), ConfirmationTargets());
    desk.confirmPending();
    EXPECT_THAT(confirmed, ElementsAre("Pour it?"));
    desk.confirmPending();
    EXPECT_THAT(confirmed, SizeIs(1));
}

TEST_F(ConfirmationDeskTest, RecordsAKindWithoutAHandler) {
    desk.requestConfirmation(request("freeze_moon", "Freeze?"));
    EXPECT_EQ(desk.confirmPending(), Outcome::refused("No handler for confirmation: freeze_moon."));
    EXPECT_EQ(log.lastAction(), "No handler for confirmation: freeze_moon.");
    ASSERT_THAT(log.activityLog(), SizeIs(1));
    EXPECT_EQ(log.activityLog().front().kind, ActivityKind::action);
    EXPECT_EQ(log.activityLog().front().detail, "No handler for confirmation: freeze_moon.");
    EXPECT_FALSE(desk.pendingConfirmation());
}

TEST_F(ConfirmationDeskTest, AKindWhoseOwnerHasEndedHasNoHandler) {
    desk.requestConfirmation(request("melt", "Melt it?"));
    melt = {};
    EXPECT_EQ(desk.confirmPending(), Outcome::refused("No handler for confirmation: melt."));
    desk.requestConfirmation(request("melt", "Melt it?"));
    desk.cancelPending();
    EXPECT_THAT(confirmed, IsEmpty());
    EXPECT_THAT(canceled, IsEmpty());
    desk.requestConfirmation(request("pour", "Pour it?"));
    desk.confirmPending();
    EXPECT_THAT(confirmed, ElementsAre("Pour it?"));
}

TEST_F(ConfirmationDeskTest, CancellingRecordsAMessageAndCallsTheHandler) {
    desk.requestConfirmation(request("melt", "Melt it?"), candle);
    EXPECT_EQ(desk.cancelPending(), Outcome::done("Canceled: Melt it?."));
    EXPECT_EQ(log.lastAction(), "Canceled: Melt it?.");
    EXPECT_THAT(canceled, ElementsAre("Melt it?"));
    EXPECT_FALSE(desk.pendingConfirmation());
    EXPECT_EQ(desk.targets(), ConfirmationTargets());
    desk.confirmPending();
    EXPECT_THAT(confirmed, IsEmpty());
}

TEST_F(ConfirmationDeskTest, CancellingWithoutAHandlerOnlyRecordsAMessage) {
    desk.requestConfirmation(request("pour", "Pour it?"));
    desk.cancelPending();
    desk.requestConfirmation(request("unheard_of", "Hm?"));
    desk.cancelPending();
    EXPECT_THAT(canceled, IsEmpty());
    ASSERT_THAT(log.activityLog(), SizeIs(2));
    EXPECT_EQ(log.activityLog()[0].detail, "Canceled: Hm?.");
    EXPECT_EQ(log.activityLog()[1].detail, "Canceled: Pour it?.");
}

TEST_F(ConfirmationDeskTest, WithoutARequestNothingIsConfirmedOrCancelled) {
    EXPECT_EQ(desk.confirmPending(), Outcome::ignored());
    EXPECT_EQ(desk.cancelPending(), Outcome::ignored());
    EXPECT_THAT(confirmed, IsEmpty());
    EXPECT_THAT(canceled, IsEmpty());
    EXPECT_THAT(log.activityLog(), IsEmpty());
    EXPECT_EQ(log.lastAction(), "Monitoring started.");
}

TEST_F(ConfirmationDeskTest, NotifiesObserversOfEveryChange) {
    int told = 0;
    const Subscription subscription = desk.observable().subscribe([&told] { ++told; });
    desk.requestConfirmation(request("pour", "Pour it?"));
    mainQueue.drain();
    EXPECT_EQ(told, 1);
    desk.confirmPending();
    mainQueue.drain();
    EXPECT_EQ(told, 2);
    desk.requestConfirmation(request("pour", "Pour it?"));
    desk.cancelPending();
    mainQueue.drain();
    EXPECT_EQ(told, 3);
    desk.confirmPending();
    desk.cancelPending();
    mainQueue.drain();
    EXPECT_EQ(told, 3) << "nothing was pending";
}

}  // namespace
}  // namespace tallowcrest

// How the last action on each machine ended, which the messages of the scan after it do not
// replace.

#include "core/observable.h"
#include "tests/remote/remote_actions_fixture.h"

namespace tallowcrest {
namespace {

using testing::IsEmpty;

class RemoteResults : public RemoteActionsFixture {
protected:
    RemoteResults() {
        allowPurge();
        finishScan({machine()});
    }

    Outcome result() const { return actions.results().at("nodekey:1").outcome; }
};

TEST_F(RemoteResults, ASuccessOutlivesTheScanThatFollowsIt) {
    EXPECT_THAT(actions.results(), IsEmpty());
    int told = 0;
    const Subscription subscription = actions.observable().subscribe([&] { ++told; });
    launcher.willWrite("purge_ok");
    actions.requestRemotePurge(machine());
    EXPECT_THAT(actions.results(), IsEmpty()) << "nothing has happened yet";
    confirmations.confirmPending();
    EXPECT_EQ(result(), Outcome::asked("Purging file caches on studio..."));
    finishWork();
    EXPECT_EQ(log.lastAction(), scanBegan);
    EXPECT_EQ(result(), Outcome::done("Purged remote file caches on studio."));
    EXPECT_EQ(actions.results().at("nodekey:1").at, clock.now());
    EXPECT_EQ(told, 2);
    finishScan({});
    EXPECT_EQ(actions.results().size(), 1U);
}

TEST_F(RemoteResults, EachActionOnAMachineReplacesTheOneBefore) {
    launcher.willWrite("");
    actions.requestRemoteQuit(machine(), process(411, "/opt/Maya"));
    confirmations.confirmPending();
    finishWork();
    EXPECT_EQ(result(), Outcome::failed("Could not quit Maya on studio."));
    clock.advance(std::chrono::seconds(90));
    actions.requestRemoteQuit(machine(), process(1, "/sbin/launchd"));
    EXPECT_EQ(result(), Outcome::refused("Refused to quit protected remote process launchd."));
    EXPECT_EQ(actions.results().at("nodekey:1").at, clock.now());
    actions.remoteOptimizeSafely(machine());
    EXPECT_EQ(result(), Outcome::done("studio looks healthy. No remote safe action needed."));
    actions.requestRemotePurge(machine());
    profiles.updateRemoteProfile("studio", {.allowRemotePurge = false});
    confirmations.confirmPending();
    EXPECT_EQ(result().kind, Outcome::Kind::refused);
    actions.copyRemoteReport(machine());
    EXPECT_EQ(result().kind, Outcome::Kind::refused) << "a text on the clipboard changes nothing";
}

TEST_F(RemoteResults, WhatRunsReplacesTheResultOfWhatEndedBefore) {
    launcher.willWrite("");
    actions.requestRemotePurge(machine());
    confirmations.confirmPending();
    finishWork();
    ASSERT_EQ(result().kind, Outcome::Kind::failed);
    log.clearActivityLog();
    clock.advance(std::chrono::seconds(90));
    actions.requestRemoteQuit(machine(), process(411, "/opt/Maya"));
    EXPECT_EQ(result().kind, Outcome::Kind::failed) << "it only asks";
    confirmations.confirmPending();
    EXPECT_EQ(result(), Outcome::asked("Asking Maya to quit on studio..."));
    EXPECT_EQ(actions.results().at("nodekey:1").at, clock.now());
    EXPECT_THAT(log.activityLog(), IsEmpty()) << "the end is what is recorded";
    finishWork();
    EXPECT_EQ(result(), Outcome::failed("Could not quit Maya on studio."));
}

TEST_F(RemoteResults, ASafeStepWithoutAClipboardFailed) {
    Pasteboard none{log, {}};
    RemoteActions without{with(tools, none)};
    RemoteHealth busy = machine();
    busy.appImpacts = {{.name = "Maya", .processCount = 1, .topPID = 411}};
    log.clearActivityLog();
    const Outcome outcome = without.remoteOptimizeSafely(busy);
    expectRecorded(outcome, Outcome::failed(outcome.message));
    EXPECT_EQ(without.results().at("nodekey:1").outcome, outcome);
}

TEST_F(RemoteResults, MachinesOfOneNameHaveResultsOfTheirOwn) {
    RemoteHealth twin = machine();
    twin.id = "nodekey:2";
    twin.status = RemoteHealth::Status::authNeeded;
    actions.requestRemotePurge(twin);
    actions.remoteOptimizeSafely(machine());
    EXPECT_EQ(actions.results().at("nodekey:2").outcome,
              Outcome::refused("studio is not reachable by SSH yet."));
    EXPECT_EQ(result().kind, Outcome::Kind::done);
}

}  // namespace
}  // namespace tallowcrest

// The end of a scan before it has reached every machine.

#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_log.h"
#include "remote/remote_scan.h"
#include "tests/support/each_of.h"
#include "tests/support/remote_machines.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class RemoteScanCancelTest : public testing::Test, protected TestServices {
protected:
    RemoteScanCancelTest() {
        machines.launcher.willWrite("cpu=20\nmem=40\ncores=2\n");
        machines.setDevices({onlineMachine("studio", "100.1.1.1"),
                             onlineMachine("attic", "100.2.2.2"),
                             onlineMachine("cellar", "100.3.3.3")});
    }

    /// Scans, and calls `event` while the machine with this number, from 1, is asked.
    void scanWith(std::size_t number, const std::function<void()>& event) {
        machines.launcher.onLaunch = [this, number, event](const ToolRequest&) {
            if (machines.launcher.requests.size() == number) {
                event();
            }
        };
        machines.launcher.requests.clear();
        scan.scanRemoteMacs();
        finishWork();
        machines.launcher.onLaunch = {};
    }

    std::vector<std::string> names() const {
        return eachOf(scan.state().remoteHealth, &RemoteHealth::hostName);
    }

    RemoteMachines machines{services};
    RemoteScan& scan = machines.scan;
};

TEST_F(RemoteScanCancelTest, TheMachinesThatWereReachedHaveNewRecordsAndTheOthersKeepTheirs) {
    scanWith(0, {});
    const Date before = clock.now();
    clock.advance(std::chrono::minutes(10));
    machines.setDevices({onlineMachine("porch", "100.4.4.4"), onlineMachine("attic", "100.2.2.2"),
                         onlineMachine("cellar", "100.3.3.3")});
    scanWith(3, [this] { EXPECT_EQ(scan.cancelScan(), Outcome::asked()); });
    EXPECT_THAT(names(), ElementsAre("porch", "attic", "cellar", "studio"))
        << "as in the tailnet, and last what has left it";
    EXPECT_THAT(eachOf(scan.state().remoteHealth, &RemoteHealth::sampledAt),
                ElementsAre(clock.now(), clock.now(), before, before));
    EXPECT_EQ(scan.state().keptRecords, 2U);
    EXPECT_EQ(log.lastAction(), "Remote scan canceled: 2 of 3 Macs scanned.");
    EXPECT_EQ(log.activityLog().front().detail, log.lastAction());
    EXPECT_THAT(scan.remoteHistory(), SizeIs(3 + 2)) << "a point for each machine that answered";
}

TEST_F(RemoteScanCancelTest, MachinesWithoutARecordAreCounted) {
    machines.setDevices({onlineMachine("porch", "100.4.4.4"), onlineMachine("attic", "100.2.2.2"),
                         onlineMachine("cellar", "100.3.3.3"),
                         onlineMachine("server", "100.5.5.5", "linux")});
    scanWith(2, [this] { scan.cancelScan(); });
    EXPECT_THAT(names(), ElementsAre("porch"));
    EXPECT_EQ(scan.state().unknownMachines, 2U);
    scanWith(0, {});
    EXPECT_EQ(scan.state().unknownMachines, 0U);
}

TEST_F(RemoteScanCancelTest, TheShellIsEndedAndItsAnswerIsNone) {
    bool wasAsked = false;
    scanWith(1, [&] {
        const ToolRequest& request = machines.launcher.requests.back();
        EXPECT_FALSE(request.stop.stop_requested());
        scan.cancelScan();
        wasAsked = request.stop.stop_requested();
    });
    EXPECT_TRUE(wasAsked);
    EXPECT_THAT(machines.launcher.requests, SizeIs(1));
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_THAT(scan.remoteHistory(), IsEmpty());
    EXPECT_EQ(log.lastAction(), "Remote scan canceled: 0 of 3 Macs scanned.");
}

TEST_F(RemoteScanCancelTest, ItSaysThatItEndsUntilItHasEnded) {
    EXPECT_EQ(scan.cancelScan(), Outcome::ignored());
    EXPECT_FALSE(scan.state().isCanceling);
    scan.scanRemoteMacs();
    scan.cancelScan();
    EXPECT_TRUE(scan.state().isCanceling);
    EXPECT_TRUE(scan.state().remoteScanInProgress);
    finishWork();
    EXPECT_FALSE(scan.state().isCanceling);
    EXPECT_FALSE(scan.state().remoteScanInProgress);
    EXPECT_THAT(machines.launcher.requests, IsEmpty()) << "it had not begun";
    EXPECT_EQ(scan.cancelScan(), Outcome::ignored());
}

TEST_F(RemoteScanCancelTest, TheNextScanRuns) {
    scanWith(1, [this] { scan.cancelScan(); });
    scanWith(0, {});
    EXPECT_THAT(names(), ElementsAre("studio", "attic", "cellar"));
    EXPECT_EQ(log.lastAction(), "Remote scan complete: 3 of 3 Macs responded.");
}

TEST_F(RemoteScanCancelTest, AllScansUnderWayEnd) {
    machines.setDevices({onlineMachine("studio", "100.1.1.1")});
    scan.scanRemoteMacs();
    scan.scanRemoteMacs();
    scan.cancelScan();
    finishWork();
    EXPECT_THAT(machines.launcher.requests, IsEmpty());
    EXPECT_EQ(log.lastAction(), "Remote scan canceled: 0 of 1 Mac scanned.");
}

TEST_F(RemoteScanCancelTest, AScanThatReachedNothingLeavesTheRecordsAsTheyAre) {
    scanWith(0, {});
    scanWith(2, [this] { scan.cancelScan(); });
    EXPECT_EQ(scan.state().keptRecords, 2U);
    scanWith(1, [this] { scan.cancelScan(); });
    EXPECT_THAT(names(), ElementsAre("studio", "attic", "cellar"));
    EXPECT_EQ(scan.state().keptRecords, 2U);
    scanWith(0, {});
    EXPECT_EQ(scan.state().keptRecords, 0U);
}

TEST_F(RemoteScanCancelTest, AScanThatBeginsMeanwhileIsSeenAndCanBeCanceledByItself) {
    scan.scanRemoteMacs();
    scan.cancelScan();
    machines.setDevices({onlineMachine("porch", "100.4.4.4"), onlineMachine("attic", "100.2.2.2")});
    EXPECT_EQ(scan.scanRemoteMacs().kind, Outcome::Kind::asked);
    EXPECT_FALSE(scan.state().isCanceling) << "the new one goes on";
    const std::string begun = log.lastAction();
    workQueue.run();
    mainQueue.drain();
    EXPECT_EQ(log.activityLog().front().detail, "Remote scan canceled: 0 of 3 Macs scanned.");
    EXPECT_EQ(log.lastAction(), begun);
    EXPECT_TRUE(scan.state().remoteScanInProgress);
    machines.launcher.onLaunch = [this](const ToolRequest&) {
        mainQueue.drain();
        EXPECT_TRUE(scan.state().progress.has_value());
        if (machines.launcher.requests.size() == 2) {
            scan.cancelScan();
            EXPECT_TRUE(scan.state().isCanceling);
            EXPECT_EQ(scan.state().progress, std::nullopt);
        }
    };
    finishWork();
    EXPECT_THAT(names(), ElementsAre("porch"));
    EXPECT_EQ(log.lastAction(), "Remote scan canceled: 1 of 2 Macs scanned.");
    EXPECT_FALSE(scan.state().remoteScanInProgress);
    EXPECT_FALSE(scan.state().isCanceling);
}

TEST_F(RemoteScanCancelTest, AScanCanBeCanceledAfterAnOverlappingOneHasEnded) {
    scan.scanRemoteMacs();
    scan.scanRemoteMacs();
    workQueue.run();
    mainQueue.drain();
    EXPECT_EQ(log.lastAction(), "Remote scan complete: 3 of 3 Macs responded.");
    EXPECT_TRUE(scan.state().remoteScanInProgress);
    EXPECT_EQ(scan.cancelScan(), Outcome::asked());
    finishWork();
    EXPECT_THAT(machines.launcher.requests, SizeIs(3)) << "of the first one";
    EXPECT_EQ(log.lastAction(), "Remote scan canceled: 0 of 3 Macs scanned.");
    EXPECT_THAT(names(), ElementsAre("studio", "attic", "cellar"));
    EXPECT_FALSE(scan.state().remoteScanInProgress);
}

TEST_F(RemoteScanCancelTest, AScanWhoseMachinesHaveAllAnsweredIsComplete) {
    scan.scanRemoteMacs();
    workQueue.run();
    EXPECT_EQ(scan.cancelScan(), Outcome::asked());
    EXPECT_TRUE(scan.state().isCanceling);
    mainQueue.drain();
    EXPECT_EQ(log.lastAction(), "Remote scan complete: 3 of 3 Macs responded.");
    EXPECT_THAT(names(), ElementsAre("studio", "attic", "cellar"));
    EXPECT_FALSE(scan.state().remoteScanInProgress);
    EXPECT_FALSE(scan.state().isCanceling);
    EXPECT_EQ(scan.cancelScan(), Outcome::ignored());
}

}  // namespace
}  // namespace tallowcrest

// Actions on other machines while a scan of them is being canceled.

#include <functional>
#include <string>

#include "core/activity_log.h"
#include "core/confirmation_desk.h"
#include "tests/remote/remote_actions_fixture.h"

namespace tallowcrest {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

class RemoteActionsAndScans : public RemoteActionsFixture {
protected:
    RemoteActionsAndScans() {
        allowPurge();
        remote.setDevices(
            {onlineMachine("attic", "100.64.0.6"), onlineMachine("studio", "100.64.0.7")});
        launcher.willWrite("cpu=20\nmem=40\ncores=2\nproc=412|50.0|1024|/opt/Render\n");
        scan.scanRemoteMacs();
        finishWork();
        launcher.requests.clear();
    }

    const RemoteHealth& studio() const { return scan.state().remoteHealth.at(1); }

    /// A scan that is canceled while the machine with this number, from 1, is asked.
    void cancelAt(std::size_t number) {
        launcher.onLaunch = [this, number](const ToolRequest&) {
            if (launcher.requests.size() == number) {
                scan.cancelScan();
            }
        };
        scan.scanRemoteMacs();
        finishWork();
        launcher.onLaunch = {};
        launcher.requests.clear();
    }

    void requestQuit() {
        ASSERT_THAT(studio().topProcesses, SizeIs(1));
        const RemoteHealth shown = studio();
        EXPECT_EQ(actions.requestRemoteQuit(shown, shown.topProcesses[0]), Outcome::asked());
    }

    /// Confirms, and returns what was run on the other machine.
    std::string confirmed() {
        EXPECT_EQ(confirmations.confirmPending(), Outcome::asked());
        workQueue.run();
        return launcher.requests.empty() ? "" : launcher.requests.back().arguments.back();
    }
};

TEST_F(RemoteActionsAndScans, AMachineThatTheCanceledScanDidNotReachIsStillHelped) {
    requestQuit();
    cancelAt(2);
    EXPECT_THAT(confirmed(), testing::HasSubstr("kill -TERM 412"));
    mainQueue.drain();
    actions.requestRemotePurge(studio());
    cancelAt(1);
    EXPECT_THAT(confirmed(), testing::HasSubstr("purge"));
}

TEST_F(RemoteActionsAndScans, AMachineThatTheCanceledScanFoundChangedIsNot) {
    remote.setDevices(
        {onlineMachine("studio", "100.64.0.7"), onlineMachine("workshop", "100.64.0.8")});
    const std::function<void()> requests[] = {
        [this] { actions.requestRemotePurge(scan.state().remoteHealth.front()); },
        [this] {
            const RemoteHealth shown = scan.state().remoteHealth.front();
            actions.requestRemoteQuit(shown, shown.topProcesses.at(0));
        }};
    for (const auto& request : requests) {
        launcher.willWrite("cpu=20\nmem=40\ncores=2\nproc=412|50.0|1024|/opt/Render\n");
        cancelAt(2);
        ASSERT_EQ(scan.state().remoteHealth.front().hostName, "studio");
        request();
        ASSERT_NE(pendingKind(), "");
        launcher.willWrite("Permission denied (publickey).\n");
        cancelAt(2);
        ASSERT_EQ(scan.state().keptRecords, scan.state().remoteHealth.size() - 1);
        EXPECT_FALSE(confirmations.confirmPending().isAccepted());
        finishWork();
        EXPECT_THAT(launcher.requests, IsEmpty());
    }
}

TEST_F(RemoteActionsAndScans, TheScanAfterASuccessIsSeenBesideOneThatIsBeingCanceled) {
    launcher.willWrite("purge_ok");
    actions.requestRemotePurge(studio());
    confirmations.confirmPending();
    scan.scanRemoteMacs();
    scan.cancelScan();
    ASSERT_TRUE(scan.state().isCanceling);
    workQueue.run();
    mainQueue.drain();
    EXPECT_FALSE(scan.state().isCanceling);
    EXPECT_EQ(log.lastAction(), "Scanning 2 remote Macs over Tailscale...");
    workQueue.run();
    mainQueue.drain();
    EXPECT_TRUE(scan.state().remoteScanInProgress);
    EXPECT_EQ(log.lastAction(), "Scanning 2 remote Macs over Tailscale...");
    EXPECT_EQ(scan.cancelScan(), Outcome::asked());
    finishWork();
    EXPECT_EQ(log.lastAction(), "Remote scan canceled: 0 of 2 Macs scanned.");
    EXPECT_FALSE(scan.state().remoteScanInProgress);
}

}  // namespace
}  // namespace tallowcrest

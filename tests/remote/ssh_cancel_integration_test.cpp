// A scan that is canceled while a machine keeps the secure shell waiting.

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_log.h"
#include "tests/platform/support/test_daemon.h"
#include "tests/remote/ssh_fixture.h"
#include "tests/support/eventually.h"

namespace tallowcrest {
namespace {

using SshCancel = SshFixture;

TEST_F(SshCancel, TheSecureShellEndsAndTheOtherMachinesAreNotAsked) {
    const std::string connected = SshMachines::folder() / "connected";
    const auto hang = [&connected](int connection) {
        send(connection, "SSH-2.0-OpenSSH_9.2\r\n");
        std::ofstream(connected) << "yes";
        awaitTheEnd(connection);
    };
    const std::vector<TailDevice> devices{add("attic", hang), add("barn", hang)};
    machines->start();
    settings.set(&Settings::includeLinuxMachines, true);
    remote.tailnet.publish({devices, {}});
    ASSERT_TRUE(remote.scan.scanRemoteMacs().isAccepted());
    {
        const std::jthread background([this] { workQueue.run(); });
        EXPECT_TRUE(eventually([&] { return std::filesystem::exists(connected); }));
        EXPECT_EQ(remote.scan.cancelScan(), Outcome::asked());
    }
    finishWork();
    ASSERT_EQ(launcher.launches.size(), 1U);
    EXPECT_LT(launcher.launches[0].time, std::chrono::seconds(60)) << "not its deadline";
    EXPECT_FALSE(launcher.launches[0].result.deadlinePassed);
    EXPECT_TRUE(remote.scan.state().remoteHealth.empty());
    EXPECT_FALSE(remote.scan.state().remoteScanInProgress);
    EXPECT_EQ(log.lastAction(), "Remote scan canceled: 0 of 2 Macs scanned.");
}

}  // namespace
}  // namespace tallowcrest

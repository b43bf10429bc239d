// A scan that is canceled while a machine keeps the secure shell waiting.

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_log.h"
#include "tests/remote/ssh_fixture.h"
#include "tests/support/eventually.h"

namespace tallowcrest {
namespace {

using SshCancel = SshFixture;

TEST_F(SshCancel, TheSecureShellEndsAndTheOtherMachinesAreNotAsked) {
    // The server ends the handshake, and the command hangs: no time-out of the client ends it.
    const std::string connected = SshMachines::folder() / "connected";
    machines->addAccount("odd", SshMachines::program("shell", "#!/bin/sh\necho yes > " + connected +
                                                                  "\nexec sleep 600\n"));
    settings.set(&Settings::sshUsername, "odd");
    const std::vector<TailDevice> devices{add("attic", machines->sshd()),
                                          add("barn", machines->sshd())};
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

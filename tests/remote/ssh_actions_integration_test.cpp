// The actions on other machines with the real client and the real server of the secure shell.

#include <algorithm>
#include <fstream>
#include <string>

#include "core/confirmation_desk.h"
#include "tests/remote/ssh_fixture.h"
#include "tests/support/file_text.h"
#include "tests/support/run_program.h"

namespace tallowcrest {
namespace {

using ::testing::Contains;
using ::testing::EndsWith;
using ::testing::IsEmpty;
using ::testing::Not;

class SshActions : public SshFixture {
protected:
    /// The machine that `start` adds, as the latest scan found it.
    const RemoteHealth& attic() { return remote.scan.state().remoteHealth.at(0); }

    void start(const SshMachines::Server& server, const std::string& os = "linux") {
        machine = add("attic", server, os);
        machines->addBusyProcess("Render");
        machines->start();
        scan({machine});
        ASSERT_EQ(attic().status, RemoteHealth::Status::reachable);
    }

    void requestQuitOfRender() {
        const auto& rows = attic().topProcesses;
        const auto row = std::ranges::find(rows, "Render", &RemoteProcess::command);
        ASSERT_NE(row, rows.end());
        EXPECT_EQ(remote.actions.requestRemoteQuit(attic(), *row), Outcome::asked());
    }

    void confirm() {
        EXPECT_EQ(confirmations.confirmPending(), Outcome::asked());
        finishAllWork();
    }

    std::vector<std::string> namesAfterAScan() {
        scan({machine});
        return eachOf(attic().topProcesses, &RemoteProcess::command);
    }

    static void touch(const std::string& name) {
        std::ofstream(SshMachines::folder() / name) << name;
    }

    /// A server on which `sudo` is this script, which notes in "sudo.log" how it was called.
    SshMachines::Server withSudo(const std::string& script) {
        const std::string folder = SshMachines::folder() / "sudo";
        std::filesystem::create_directory(folder);
        SshMachines::program("sudo/sudo",
                             "#!/bin/sh\necho \"$*\" >> " + folder + "/log\n" + script);
        return machines->sshd("SetEnv PATH=" + folder + ":/usr/bin:/bin");
    }
    static std::string sudoLog() { return fileText(SshMachines::folder() / "sudo/log"); }

    TailDevice machine;
};

TEST_F(SshActions, AProcessQuitsWhenThatIsConfirmed) {
    start(machines->sshd());
    requestQuitOfRender();
    EXPECT_THAT(namesAfterAScan(), Contains("Render"));
    confirm();
    EXPECT_THAT(recorded(), Contains("Asked Render to quit on attic."));
    // The scan that follows a success.
    EXPECT_EQ(log.lastAction(), "Remote scan complete: 1 of 1 Mac responded.");
    EXPECT_THAT(eachOf(attic().topProcesses, &RemoteProcess::command), Not(Contains("Render")));
}

TEST_F(SshActions, AProcessOfAMacQuitsWhenThatIsConfirmed) {
    start(mac(), "macOS");
    requestQuitOfRender();
    EXPECT_THAT(namesAfterAScan(), Contains("Render"));
    confirm();
    EXPECT_THAT(recorded(), Contains("Asked Render to quit on attic."));
    EXPECT_THAT(eachOf(attic().topProcesses, &RemoteProcess::command), Not(Contains("Render")));
}

TEST_F(SshActions, APidThatBelongsToAnotherProgramIsLeftAlone) {
    start(machines->sshd());
    requestQuitOfRender();
    touch("Editor");
    EXPECT_THAT(namesAfterAScan(), Contains("Editor"));
    const std::size_t launches = launcher.launches.size();
    EXPECT_EQ(confirmations.confirmPending(),
              Outcome::refused("Remote process termination was blocked because its reviewed safety "
                               "state changed."));
    finishAllWork();
    EXPECT_EQ(launcher.launches.size(), launches);
    EXPECT_THAT(namesAfterAScan(), Contains("Editor"));
}

TEST_F(SshActions, AProcessThatHasEndedCannotBeQuit) {
    start(machines->sshd());
    requestQuitOfRender();
    const RemoteHealth before = attic();
    touch("end");
    EXPECT_THAT(namesAfterAScan(), Not(Contains("Render")));
    // As if it had ended after the latest scan.
    remote.scan.finishRemoteScan({before});
    confirm();
    EXPECT_EQ(log.lastAction(), "Could not quit Render on attic.");
}

TEST_F(SshActions, NothingIsDoneOnAMachineWithAnotherHostKey) {
    start(withSudo(":"));
    remote.profiles.updateRemoteProfile("attic", {.allowRemotePurge = true});
    EXPECT_EQ(remote.actions.requestRemotePurge(attic()), Outcome::asked());
    machines->end();
    machines->add(machine.addresses.front(), machines->sshdWithAnotherKey());
    machines->start();
    confirm();
    EXPECT_EQ(log.lastAction(),
              "Remote purge failed on attic. It may require permissions or be unavailable.");
    EXPECT_EQ(sudoLog(), "");
}

TEST_F(SshActions, TheCopiedRepairOfAHostKeyLetsTheMachineBeSampledAgain) {
    start(machines->sshd());
    machines->end();
    machines->add(machine.addresses.front(), machines->sshdWithAnotherKey());
    machines->start();
    EXPECT_THAT(namesAfterAScan(), IsEmpty());
    EXPECT_EQ(attic().status, RemoteHealth::Status::hostKeyIssue);
    EXPECT_TRUE(remote.actions.copyHostKeyRepairCommand(attic()).isAccepted());
    const ProgramResult result =
        runProgram({.path = "/bin/sh",
                    .arguments = {"-c", copied},
                    .withVariables = {"HOME=" + (SshMachines::folder() / "home").string()}});
    EXPECT_EQ(result.status, 0) << result.standardError;
    EXPECT_THAT(result.standardOutput, EndsWith("connected\n"));
    EXPECT_THAT(namesAfterAScan(), Not(IsEmpty()));
}

TEST_F(SshActions, CachesArePurgedWhereTheAccountMay) {
    start(withSudo("exit 0\n"));
    EXPECT_FALSE(remote.actions.requestRemotePurge(attic()).isAccepted());
    remote.profiles.updateRemoteProfile("attic", {.allowRemotePurge = true});
    EXPECT_EQ(remote.actions.requestRemotePurge(attic()), Outcome::asked());
    EXPECT_EQ(sudoLog(), "");
    confirm();
    EXPECT_THAT(recorded(), Contains("Purged remote file caches on attic."));
    EXPECT_EQ(log.lastAction(), "Remote scan complete: 1 of 1 Mac responded.");
    EXPECT_EQ(sudoLog(), "-n sysctl -w vm.drop_caches=1\n");
}

TEST_F(SshActions, APurgeThatNeedsAPasswordFails) {
    start(withSudo("echo 'sudo: a password is required' >&2\nexit 1\n"));
    remote.profiles.updateRemoteProfile("attic", {.allowRemotePurge = true});
    EXPECT_EQ(remote.actions.requestRemotePurge(attic()), Outcome::asked());
    confirm();
    EXPECT_EQ(log.lastAction(),
              "Remote purge failed on attic. It may require permissions or be unavailable.");
    EXPECT_EQ(sudoLog(), "-n sysctl -w vm.drop_caches=1\n");
}

}  // namespace
}  // namespace tallowcrest

// The remote actions that change no other machine.

#include <functional>
#include <string>

#include "remote/remote_commands.h"
#include "remote/remote_report_text.h"
#include "remote/remote_setup_script.h"
#include "tests/remote/remote_actions_fixture.h"
#include "tests/support/end_waits_for_write.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::SizeIs;

class RemoteOptimizeSafely : public RemoteActionsFixture {
protected:
    /// A machine with this much memory in use, and groups of which the last two may be chosen.
    static RemoteHealth machineWithGroups(std::optional<double> memoryPercent) {
        RemoteHealth result = machine();
        result.memoryPercent = memoryPercent;
        result.appImpacts = {{.name = "Docker", .topPID = 5},
                             {.name = "Idle"},
                             {.name = "Maya", .topPID = 411, .protectedCount = 2},
                             {.name = "Render", .topPID = 412}};
        return result;
    }

    RemoteOptimizeSafely() { settings.set(&Settings::protectedAppNames, {"Docker"}); }
};

TEST_F(RemoteOptimizeSafely, IsRefusedWhileTheMachineIsNotReachable) {
    RemoteHealth dead = machineWithGroups(99.0);
    dead.status = RemoteHealth::Status::connectionBlocked;
    expectRecorded(actions.remoteOptimizeSafely(dead),
                   Outcome::refused("studio is not reachable by SSH yet."));
    EXPECT_THAT(copied, IsEmpty());
}

TEST_F(RemoteOptimizeSafely, FromTheThresholdOnItAsksForAPurge) {
    const Outcome disabled = Outcome::refused(
        "studio is above its threshold, but remote purge is disabled for this Mac.");
    expectRecorded(actions.remoteOptimizeSafely(machineWithGroups(82.0)), disabled);
    allowPurge();
    EXPECT_EQ(actions.remoteOptimizeSafely(machineWithGroups(82.0)), Outcome::asked());
    EXPECT_EQ(pendingKind(), "remote_purge");
    confirmations.cancelPending();
    profiles.updateRemoteProfile("studio", {.warningThreshold = 0.0});
    EXPECT_EQ(actions.remoteOptimizeSafely(machineWithGroups(std::nullopt)), Outcome::asked());
    EXPECT_EQ(pendingKind(), "remote_purge");
    profiles.updateRemoteProfile("studio", {.allowRemotePurge = false});
    recorded();
    expectRecorded(actions.remoteOptimizeSafely(machineWithGroups(std::nullopt)), disabled);
    EXPECT_THAT(copied, IsEmpty());
    EXPECT_EQ(workQueue.pendingCount(), 0U);
}

TEST_F(RemoteOptimizeSafely, BelowItCopiesAReportOnTheFirstGroupThatMayBeQuit) {
    const RemoteHealth shown = machineWithGroups(81.9);
    EXPECT_EQ(actions.remoteOptimizeSafely(shown),
              Outcome::done("Remote Optimize Safely selected Maya on studio and copied a report."));
    EXPECT_THAT(recorded(),
                ElementsAre("Copied remote app report for Maya.",
                            "Remote Optimize Safely selected Maya on studio and copied a report."));
    EXPECT_THAT(copied, ElementsAre(remoteAppReportText(shown, shown.appImpacts[2])));
    EXPECT_EQ(pendingKind(), "");
}

TEST_F(RemoteOptimizeSafely, FindsNothingToDo) {
    const Outcome healthy = Outcome::done("studio looks healthy. No remote safe action needed.");
    expectRecorded(actions.remoteOptimizeSafely(machine()), healthy);
    settings.set(&Settings::protectedAppNames, {"Docker", "Maya", "Render"});
    expectRecorded(actions.remoteOptimizeSafely(machineWithGroups(10.0)), healthy);
    EXPECT_THAT(copied, IsEmpty());
}

TEST_F(RemoteOptimizeSafely, DoesNotClaimAReportWithoutAClipboard) {
    Pasteboard none(log, {});
    RemoteActions withoutClipboard(with(tools, none));
    expectRecorded(withoutClipboard.remoteOptimizeSafely(machineWithGroups(10.0)),
                   Outcome::failed("There is no clipboard here."));
}

class RemoteHelp : public RemoteActionsFixture {
protected:
    using Operation = Outcome (RemoteActions::*)(const RemoteHealth&);

    void expectCopied(const Outcome& outcome, const std::string& text, const char* message) {
        expectRecorded(outcome, Outcome::done(message));
        EXPECT_THAT(copied, ElementsAre(text));
        copied.clear();
    }
};

TEST_F(RemoteHelp, CopiesReports) {
    const RemoteHealth shown = machine();
    const RemoteAppImpact app{.name = "Maya"};
    expectCopied(actions.copyRemoteReport(shown), remoteReportText(shown, locale),
                 "Copied remote report for studio.");
    expectCopied(actions.copyRemoteProcessReport(shown, shown.topProcesses[1]),
                 remoteProcessReportText(shown, shown.topProcesses[1]),
                 "Copied remote process report for Render.");
    expectCopied(actions.copyRemoteAppReport(shown, app), remoteAppReportText(shown, app),
                 "Copied remote app report for Maya.");
}

TEST_F(RemoteHelp, CopiesCommandsWithTheUserThatIsSet) {
    const RemoteHealth shown = machine();
    publicKey = "ssh-rsa AAA owner";
    const std::string host = "100.64.0.7";
    const std::string target = "owner@" + host;
    expectCopied(actions.copySSHDiagnosticCommand(shown),
                 remote_commands::sshDiagnostic(target, false),
                 "Copied SSH diagnostic command for studio.");
    expectCopied(actions.copyTailscalePingCommand(shown), remote_commands::tailscalePing(host),
                 "Copied Tailscale ping command for studio.");
    expectCopied(actions.copyPortTestCommand(shown), remote_commands::portTest("nc -vz -w 5", host),
                 "Copied port 22 test command for studio.");
    expectCopied(actions.copyHostKeyRepairCommand(shown),
                 remote_commands::hostKeyRepair(host, target),
                 "Copied host key repair command for studio.");
    settings.set(&Settings::sshUsername, "");
    expectCopied(actions.copySSHKeyInstallCommand(shown),
                 remote_commands::keyInstall(host, *publicKey),
                 "Copied SSH key install command for studio.");
}

TEST_F(RemoteHelp, TheDiagnosticCommandIsThatOfTheSystem) {
    RemoteHealth server = machine();
    server.isLinux = true;
    expectCopied(actions.copySSHDiagnosticCommand(server),
                 remote_commands::sshDiagnostic("owner@100.64.0.7", true),
                 "Copied SSH diagnostic command for studio.");
}

TEST_F(RemoteHelp, AnInvalidUserOrAddressIsRefused) {
    struct Case {
        const char* user;
        std::string address;
        bool isHostValid;
    };
    const std::string invalidTarget = "Blocked an invalid SSH target.";
    const std::string invalidAddress = "Blocked an invalid remote address.";
    publicKey = "ssh-rsa AAA owner";
    for (const Case& each :
         {Case{"two words", "100.64.0.7", true}, Case{"-l", "100.64.0.7", true},
          Case{"me;id", "100.64.0.7", true}, Case{"owner", "no address", false},
          Case{"owner", "", false}, Case{"owner", "-oProxyCommand=x", false},
          Case{"owner", "a'; touch hit; '", false}, Case{"owner", "$(id)", false},
          Case{"owner", "a\nb", false}, Case{"owner", std::string(10000, 'a'), false}}) {
        SCOPED_TRACE(each.user + (" at " + each.address.substr(0, 40)));
        settings.set(&Settings::sshUsername, each.user);
        RemoteHealth shown = machine();
        shown.address = each.address;
        for (const Operation copy :
             {&RemoteActions::copySSHDiagnosticCommand, &RemoteActions::copyHostKeyRepairCommand,
              &RemoteActions::copySSHKeyInstallCommand}) {
            expectRecorded((actions.*copy)(shown), Outcome::refused(invalidTarget));
        }
        EXPECT_THAT(copied, IsEmpty());
        for (const Operation copy :
             {&RemoteActions::copyTailscalePingCommand, &RemoteActions::copyPortTestCommand}) {
            const Outcome outcome = (actions.*copy)(shown);
            EXPECT_EQ(outcome.isAccepted(), each.isHostValid);
            if (!each.isHostValid) {
                expectRecorded(outcome, Outcome::refused(invalidAddress));
            }
        }
        recorded();
        copied.clear();
    }
}

TEST_F(RemoteHelp, WithoutAPublicKeyItIsToldHowToMakeOne) {
    RemoteHealth shown = machine();
    shown.address = "no address";
    const char* message = "Copied SSH key generation command.";
    expectCopied(actions.copyLocalPublicKey(), std::string(remote_commands::keyGeneration),
                 message);
    expectCopied(actions.copySSHKeyInstallCommand(shown),
                 std::string(remote_commands::keyGeneration), message);
    publicKey = "ssh-rsa AAA owner";
    expectCopied(actions.copyLocalPublicKey(), "ssh-rsa AAA owner",
                 "Copied this Mac's SSH public key.");
}

TEST_F(RemoteHelp, ExportsTheSetupScriptBesideTheReports) {
    std::vector<Outcome> finished;
    const auto keep = [&finished](const Outcome& outcome) { finished.push_back(outcome); };
    EXPECT_EQ(actions.exportRemoteSetupScript(keep), Outcome::asked());
    EXPECT_THAT(folder->scripts, IsEmpty());
    EXPECT_THAT(finished, IsEmpty());
    finishWork();
    EXPECT_THAT(finished, ElementsAre(Outcome::done("Exported remote SSH setup script.")));
    const std::string name = "setup-remote-tallowcrest-ssh.sh";
    EXPECT_THAT(folder->scripts, ElementsAre(Pair(folder->place().parent_path() / name,
                                                  std::string(remoteSetupScript))));
    EXPECT_THAT(folder->revealed, ElementsAre(name));
    EXPECT_THAT(recorded(), ElementsAre("Exported remote SSH setup script."));
}

TEST_F(RemoteHelp, AFailedExportIsRecordedWithTheSystemsMessage) {
    folder->problem = "No space left on device";
    actions.exportRemoteSetupScript();
    finishWork();
    EXPECT_THAT(recorded(),
                ElementsAre("Could not export remote setup script: No space left on device"));
    EXPECT_THAT(folder->revealed, IsEmpty());
}

TEST_F(RemoteHelp, TheEndOfTheProgramWaitsForAnExportUnderWay) {
    expectEndWaitsForWrite(jobs, workQueue, *folder, [this] { actions.exportRemoteSetupScript(); });
    EXPECT_THAT(folder->scripts, SizeIs(1));
}

TEST_F(RemoteHelp, NoExportBeginsWhileTheProgramEnds) {
    actions.exportRemoteSetupScript();
    jobs.stopAll();
    finishWork();
    EXPECT_THAT(folder->scripts, IsEmpty());
}

}  // namespace
}  // namespace tallowcrest

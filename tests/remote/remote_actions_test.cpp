#include "remote/remote_actions.h"

#include <chrono>
#include <functional>
#include <string>

#include "tests/remote/remote_actions_fixture.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Status = RemoteHealth::Status;

constexpr const char* purgeChanged =
    "Remote purge was blocked because reachability, profile permission, or host validation "
    "changed.";
constexpr const char* quitChanged =
    "Remote process termination was blocked because its reviewed safety state changed.";

/// A machine that differs in one respect from the reachable one.
RemoteHealth machineWith(const std::function<void(RemoteHealth&)>& change) {
    RemoteHealth machine = RemoteActionsFixture::machine();
    change(machine);
    return machine;
}

class RemotePurge : public RemoteActionsFixture {
protected:
    RemotePurge() {
        allowPurge();
        finishScan({machine()});
    }
};

TEST_F(RemotePurge, IsRefusedWhereItMayNotBeAsked) {
    for (const Status status : {Status::noTailnetPath, Status::noAddress, Status::connectionBlocked,
                                Status::hostKeyIssue, Status::authNeeded, Status::unknown}) {
        expectRecorded(actions.requestRemotePurge(machineWith([&](auto& m) { m.status = status; })),
                       Outcome::refused("studio is not reachable by SSH yet."));
    }
    expectRecorded(
        actions.requestRemotePurge(machineWith([](auto& m) { m.hostName = "attic"; })),
        Outcome::refused(
            "Remote purge is disabled for attic. Enable it in that Mac's profile first."));
    EXPECT_EQ(pendingKind(), "");
}

TEST_F(RemotePurge, AsksUnderTheNicknameAndRunsNothingYet) {
    profiles.updateRemoteProfile("studio", {.nickname = "Attic"});
    EXPECT_EQ(actions.requestRemotePurge(machine()), Outcome::asked());
    EXPECT_EQ(pendingKind(), "remote_purge");
    EXPECT_EQ(confirmations.pendingConfirmation()->title, "Purge caches on Attic?");
    EXPECT_EQ(confirmations.targets(), ConfirmationTargets{});
    profiles.updateRemoteProfile("studio", {.nickname = "  "});
    actions.requestRemotePurge(machine());
    EXPECT_EQ(confirmations.pendingConfirmation()->title, "Purge caches on studio?");
    EXPECT_THAT(recorded(), IsEmpty());
    EXPECT_EQ(workQueue.pendingCount(), 0U);
}

TEST_F(RemotePurge, RunsOverSSHAndScansAgain) {
    launcher.willWrite("Warning: banner\npurge_ok\n");
    actions.requestRemotePurge(machine());
    expectConfirmedRuns("/usr/sbin/purge && echo purge_ok", 15s);
    EXPECT_THAT(recorded(), ElementsAre("Purged remote file caches on studio.", scanBegan));
    EXPECT_EQ(confirmations.confirmPending(), Outcome::ignored());
}

TEST_F(RemotePurge, WithoutTheMarkItFailedAndNothingIsScanned) {
    for (const char* output :
         {"", "purge: must be run as root\n", "PURGE_OK", "quit_ok", "purge ok"}) {
        launcher.willWrite(output);
        actions.requestRemotePurge(machine());
        confirmations.confirmPending();
        finishWork();
        EXPECT_THAT(recorded(), ElementsAre("Remote purge failed on studio. It may require "
                                            "permissions or be unavailable."))
            << output;
    }
}

TEST_F(RemotePurge, LinuxHasACommandOfItsOwn) {
    launcher.willWrite("purge_ok");
    RemoteHealth server = machine();
    server.isLinux = true;
    scan.finishRemoteScan({server});
    actions.requestRemotePurge(server);
    EXPECT_THAT(confirmations.pendingConfirmation()->message,
                testing::HasSubstr("by normal cache refill."));
    confirmations.confirmPending();
    finishWork();
    ASSERT_THAT(launcher.requests, SizeIs(1));
    EXPECT_EQ(launcher.requests[0].arguments.back(),
              R"(sudo -n sysctl -w vm.drop_caches=1 && echo purge_""ok)");
    recorded();
    profiles.updateRemoteProfile("studio", {.warningThreshold = 40.0, .allowRemotePurge = false});
    actions.requestRemotePurge(server);
    actions.remoteOptimizeSafely(server);
    EXPECT_THAT(recorded(),
                ElementsAre("Remote purge is disabled for studio. Enable it in that machine's "
                            "profile first.",
                            "studio is above its threshold, but remote purge is disabled for this "
                            "machine."));
}

TEST_F(RemotePurge, IsCheckedAgainWhenItIsConfirmed) {
    struct Case {
        const char* name;
        std::function<void()> change;
        Outcome outcome;
    };
    const Outcome refused = Outcome::refused(purgeChanged);
    const Case cases[] = {
        {"permission",
         [this] { profiles.updateRemoteProfile("studio", {.allowRemotePurge = false}); }, refused},
        {"status",
         [this] { finishScan({machineWith([](auto& m) { m.status = Status::authNeeded; })}); },
         refused},
        {"user", [this] { settings.set(&Settings::sshUsername, "two words"); }, refused},
        {"address",
         [this] { finishScan({machineWith([](auto& m) { m.address = "-oProxyCommand=x"; })}); },
         refused},
        {"another machine with the name",
         [this] { finishScan({machineWith([](auto& m) { m.id = "nodekey:9"; })}); }, refused},
        {"not listed", [this] { finishScan({}); }, Outcome::ignored()},
        {"only others listed",
         [this] { finishScan({machineWith([](auto& m) { m.hostName = "attic"; })}); },
         Outcome::ignored()},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        allowPurge();
        settings.set(&Settings::sshUsername, "owner");
        finishScan({machine()});
        actions.requestRemotePurge(machine());
        each.change();
        EXPECT_EQ(confirmations.confirmPending(), each.outcome);
        finishWork();
        EXPECT_THAT(recorded(), SizeIs(each.outcome.message.empty() ? 0 : 1));
        EXPECT_EQ(pendingKind(), "");
        EXPECT_THAT(launcher.requests, IsEmpty());
    }
}

TEST_F(RemotePurge, ARefusalIsOfTheMachineThatWasReviewed) {
    actions.requestRemotePurge(machine());
    finishScan({machineWith([](auto& m) { m.id = "nodekey:9"; })});
    confirmations.confirmPending();
    EXPECT_THAT(actions.results(), SizeIs(1));
    EXPECT_EQ(actions.results().at(machine().id).outcome.message, purgeChanged);
}

TEST_F(RemotePurge, TheEmergencyStopIsForAutomaticActionsOnly) {
    settings.set(&Settings::automationEmergencyStopEngaged, true);
    launcher.willWrite("purge_ok");
    EXPECT_EQ(actions.requestRemotePurge(machine()), Outcome::asked());
    confirmations.confirmPending();
    finishWork();
    EXPECT_THAT(recorded(), ElementsAre("Purged remote file caches on studio.", scanBegan));
}

TEST_F(RemotePurge, UsesTheAddressOfTheLatestScan) {
    actions.requestRemotePurge(machine());
    settings.set(&Settings::sshUsername, "");
    finishScan({machineWith([](auto& m) { m.address = "fd7a::1"; })});
    confirmations.confirmPending();
    finishWork();
    ASSERT_THAT(launcher.requests, SizeIs(1));
    EXPECT_EQ(launcher.requests[0].arguments.at(4), "fd7a::1");
}

TEST_F(RemotePurge, OfTwoMachinesWithOneNameItReachesTheOneThatWasShown) {
    const RemoteHealth other = machineWith([](auto& m) {
        m.id = "nodekey:2";
        m.address = "100.64.0.8";
    });
    for (const RemoteHealth& shown : {machine(), other}) {
        launcher.requests.clear();
        finishScan({machine(), other});
        actions.requestRemotePurge(shown);
        confirmations.confirmPending();
        finishWork();
        ASSERT_THAT(launcher.requests, SizeIs(1));
        EXPECT_EQ(launcher.requests[0].arguments.at(4), "owner@" + shown.address);
    }
}

TEST_F(RemotePurge, CancelledRunsNothing) {
    actions.requestRemotePurge(machine());
    confirmations.cancelPending();
    EXPECT_THAT(recorded(), ElementsAre("Canceled: Purge caches on studio?."));
    EXPECT_EQ(confirmations.confirmPending(), Outcome::ignored());
    EXPECT_EQ(workQueue.pendingCount(), 0U);
}

class RemoteQuit : public RemoteActionsFixture {
protected:
    RemoteQuit() { finishScan({machine()}); }

    /// Reviewed and confirmed.
    void quit(std::int64_t pid, const std::string& command) {
        EXPECT_EQ(actions.requestRemoteQuit(machine(), process(pid, command)), Outcome::asked());
        EXPECT_EQ(confirmations.confirmPending(), Outcome::asked());
    }
};

TEST_F(RemoteQuit, IsRefusedWhereItMayNotBeAsked) {
    struct Case {
        RemoteHealth machine;
        RemoteProcess process;
        const char* message;
    };
    settings.set(&Settings::protectedAppNames, {"Maya"});
    const RemoteHealth dead = machineWith([](auto& m) { m.status = Status::unknown; });
    const Case cases[] = {
        {dead, process(1, "/usr/libexec/logd"), "studio is not reachable by SSH yet."},
        {machine(), process(300, "/usr/libexec/logd"),
         "Refused to quit protected remote process logd."},
        {machine(), process(1, "/sbin/launchd"),
         "Refused to quit protected remote process launchd."},
        {machine(), process(411, "/opt/Maya"), "Refused to quit protected remote process Maya."},
        {machineWith([](auto& m) { m.isLinux = true; }), process(812, "sshd"),
         "Refused to quit protected remote process sshd."},
        {machineWith([](auto& m) { m.isLinux = true; }), process(813, ""),
         "Blocked invalid remote command inputs."},
        {machine(), process(1, "/opt/init"), "Blocked invalid remote command inputs."},
        {machine(), process(-9, "/opt/x"), "Blocked invalid remote command inputs."},
        {machine(), process(2147483648, "/opt/x"), "Blocked invalid remote command inputs."},
        {machineWith([](auto& m) { m.address = "no address"; }), process(412, "/opt/Render"),
         "Blocked invalid remote command inputs."},
        {machineWith([](auto& m) { m.address = "-oProxyCommand=x"; }), process(412, "/opt/Render"),
         "Blocked invalid remote command inputs."},
    };
    for (const Case& each : cases) {
        expectRecorded(actions.requestRemoteQuit(each.machine, each.process),
                       Outcome::refused(each.message));
        EXPECT_EQ(pendingKind(), "");
    }
}

TEST_F(RemoteQuit, SendsTermOverSSHAndScansAgain) {
    launcher.willWrite("quit_ok\n");
    EXPECT_EQ(actions.requestRemoteQuit(machine(), process(411, "/opt/Maya")), Outcome::asked());
    EXPECT_EQ(pendingKind(), "remote_quit_process");
    EXPECT_EQ(confirmations.pendingConfirmation()->pid, 411);
    expectConfirmedRuns("/bin/kill -TERM 411 && /bin/echo quit_ok", 8s);
    EXPECT_THAT(recorded(), ElementsAre("Asked Maya to quit on studio.", scanBegan));
}

TEST_F(RemoteQuit, WithoutTheMarkItFailedAndNothingIsScanned) {
    for (const char* output : {"", "kill: 411: Operation not permitted\n", "purge_ok"}) {
        launcher.willWrite(output);
        quit(411, "/opt/Maya");
        finishWork();
        EXPECT_THAT(recorded(), ElementsAre("Could not quit Maya on studio.")) << output;
    }
}

TEST_F(RemoteQuit, IsCheckedAgainWhenItIsConfirmed) {
    struct Case {
        const char* name;
        std::function<void()> change;
        Outcome outcome;
    };
    const Outcome refused = Outcome::refused(quitChanged);
    const auto rescan = [this](const std::function<void(RemoteHealth&)>& change) {
        return [this, change] { finishScan({machineWith(change)}); };
    };
    const Case cases[] = {
        {"status", rescan([](auto& m) { m.status = Status::authNeeded; }), refused},
        {"Never Quit", [this] { settings.set(&Settings::protectedAppNames, {"Maya"}); }, refused},
        {"user", [this] { settings.set(&Settings::sshUsername, "-l root"); }, refused},
        {"address", rescan([](auto& m) { m.address = "a b"; }), refused},
        {"another machine with the name", rescan([](auto& m) { m.id = "nodekey:9"; }), refused},
        {"another program with the pid",
         rescan([](auto& m) { m.topProcesses[0].command = "/opt/Editor"; }), refused},
        {"a system process with the pid",
         rescan([](auto& m) { m.topProcesses[0].command = "/usr/libexec/logd"; }), refused},
        {"pid not listed", rescan([](auto& m) { m.topProcesses.erase(m.topProcesses.begin()); }),
         Outcome::ignored()},
        {"nothing listed", [this] { finishScan({}); }, Outcome::ignored()},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        settings.set(&Settings::protectedAppNames, {});
        settings.set(&Settings::sshUsername, "owner");
        finishScan({machine()});
        actions.requestRemoteQuit(machine(), machine().topProcesses[0]);
        each.change();
        EXPECT_EQ(confirmations.confirmPending(), each.outcome);
        finishWork();
        EXPECT_THAT(recorded(), SizeIs(each.outcome.message.empty() ? 0 : 1));
        EXPECT_THAT(launcher.requests, IsEmpty());
    }
}

TEST_F(RemoteQuit, TwoConfirmedAtOnceRunIndependently) {
    allowPurge();
    launcher.willWrite("quit_ok");
    quit(411, "/opt/Maya");
    actions.requestRemotePurge(machine());
    confirmations.confirmPending();
    quit(412, "/opt/Render");
    ASSERT_EQ(workQueue.pendingCount(), 3U);
    workQueue.run(2);
    mainQueue.drain();
    EXPECT_THAT(recorded(), ElementsAre("Asked Render to quit on studio.", scanBegan));
    workQueue.run(1);
    workQueue.run(0);
    finishScan({});
    mainQueue.drain();
    EXPECT_THAT(recorded(), ElementsAre("Remote purge failed on studio. It may require permissions "
                                        "or be unavailable.",
                                        "Asked Maya to quit on studio.", scanBegan));
}

TEST_F(RemoteQuit, AShellThatIsNotAllowedIsTold) {
    const CommandSafetyPolicy::AllowedExecutables none{};
    ToolRunner restricted(none, launcher, jobs, log);
    // Takes over the kinds of confirmation.
    const RemoteActions blocked(with(restricted, pasteboard));
    quit(411, "/opt/Maya");
    finishWork();
    EXPECT_THAT(launcher.requests, IsEmpty());
    EXPECT_THAT(recorded(), ElementsAre("Blocked executable outside Tallowcrest's command "
                                        "allowlist.",
                                        "Could not quit Maya on studio."));
}

TEST_F(RemoteQuit, TheSystemOfTheLatestScanDecidesWhatIsProtected) {
    RemoteHealth shown = machineWith([](auto& m) { m.topProcesses = {process(500, "sshd")}; });
    finishScan({shown});
    EXPECT_EQ(actions.requestRemoteQuit(shown, shown.topProcesses[0]), Outcome::asked());
    shown.isLinux = true;
    finishScan({shown});
    EXPECT_EQ(confirmations.confirmPending(),
              Outcome::refused("Remote process termination was blocked because its reviewed safety "
                               "state changed."));
    EXPECT_THAT(launcher.requests, IsEmpty());
}

TEST_F(RemoteQuit, AHostileProcessNameStaysOutOfTheCommand) {
    const std::string hostile = "/opt/$(reboot); '`x`'\n-rf " + std::string(10000, 'x');
    const RemoteHealth shown =
        machineWith([&](auto& m) { m.topProcesses = {process(500, hostile)}; });
    finishScan({shown});
    actions.requestRemoteQuit(shown, shown.topProcesses[0]);
    expectConfirmedRuns("/bin/kill -TERM 500 && /bin/echo quit_ok", 8s);
}

}  // namespace
}  // namespace tallowcrest

// Scans with the real client of the secure shell, answered by its real server and by what may
// stand in its place.

#include <sys/socket.h>

#include <cstddef>
#include <fstream>
#include <string>
#include <string_view>
#include <thread>

#include "tests/platform/support/test_daemon.h"
#include "tests/remote/ssh_fixture.h"
#include "tests/support/eventually.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using Status = RemoteHealth::Status;

class SshScan : public SshFixture {
protected:
    /// The status of a machine that says this and nothing more.
    RemoteHealth withAnswer(std::string answer, bool closes = true) {
        const TailDevice machine = add("odd", [answer = std::move(answer), closes](int connection) {
            send(connection, answer);
            if (closes) {
                ::shutdown(connection, SHUT_WR);
            }
            awaitTheEnd(connection);
        });
        machines->start();
        return scanOne(machine);
    }

    /// What a machine's login shell does with every command.
    RemoteHealth withShell(const std::string& script) {
        machines->addAccount("odd", SshMachines::program("shell", "#!/bin/sh\n" + script));
        settings.set(&Settings::sshUsername, "odd");
        const TailDevice machine = add("odd", machines->sshd());
        machines->start();
        return scanOne(machine);
    }

    void expectLinuxSample(const RemoteHealth& record) {
        EXPECT_EQ(record.status, Status::reachable);
        EXPECT_TRUE(record.online && record.isLinux);
        EXPECT_EQ(record.summary, "Remote sample received.");
        EXPECT_EQ(record.setupHint, "SSH is configured and remote metrics are available.");
        EXPECT_GT(record.cpuPercent.value_or(-1.0), 0.0);
        EXPECT_GT(record.memoryPercent.value_or(-1.0), 0.0);
        ASSERT_FALSE(record.topProcesses.empty());
        EXPECT_EQ(record.topProcesses.front().command, "Render");
        EXPECT_GT(record.topProcesses.front().cpu, 0.0);
        EXPECT_THAT(record.topCPUProcess.value_or(""), EndsWith("% Render"));
        EXPECT_NE(record.osVersion.value_or("unknown"), "unknown");
    }

    void expectFailure(const RemoteHealth& record, Status status) {
        EXPECT_EQ(title(record.status), title(status));
        EXPECT_FALSE(record.online);
        EXPECT_EQ(record.summary, title(status));
        EXPECT_FALSE(record.cpuPercent || record.memoryPercent);
        EXPECT_THAT(record.topProcesses, IsEmpty());
        EXPECT_THAT(remote.scan.remoteHistory(), IsEmpty());
        EXPECT_EQ(log.lastAction(), "Remote scan complete: 0 of 1 Mac responded.");
        EXPECT_FALSE(remote.scan.state().remoteScanInProgress);
    }
};

TEST_F(SshScan, SamplesALinuxMachineThatAcceptsTheKey) {
    const TailDevice machine = add("attic", machines->sshd());
    machines->addBusyProcess("Render");
    machines->start();
    expectLinuxSample(scanOne(machine));
    EXPECT_THAT(recorded(), ElementsAre("Remote scan complete: 1 of 1 Mac responded.",
                                        "Scanning 1 remote Mac over Tailscale..."));
    EXPECT_EQ(remote.scan.remoteHistory().size(), 1U);
    EXPECT_THAT(fileText(SshMachines::folder() / "home/.ssh/known_hosts"),
                HasSubstr("ssh-ed25519"));
}

TEST_F(SshScan, SamplesAMac) {
    const TailDevice machine = add("studio", mac(), "macOS");
    machines->start();
    const RemoteHealth record = scanOne(machine);
    EXPECT_EQ(record.status, Status::reachable);
    EXPECT_TRUE(record.online && !record.isLinux);
    EXPECT_EQ(record.cpuPercent, 30.0);
    EXPECT_EQ(record.memoryPercent, 42.0);
    EXPECT_EQ(record.osVersion, "15.1");
    EXPECT_EQ(record.topCPUProcess,
              "181.9% /Applications/Final Cut Pro.app/Contents/MacOS/Final Cut Pro");
    EXPECT_EQ(record.topMemoryProcess, "2048MB /Applications/Arc.app/Contents/MacOS/Arc");
    EXPECT_THAT(
        record.topProcesses,
        ElementsAre(RemoteProcess{411, 181.9, 1536,
                                  "/Applications/Final Cut Pro.app/Contents/MacOS/Final Cut Pro"},
                    RemoteProcess{190, 36.5, 300,
                                  "/System/Library/PrivateFrameworks/SkyLight.framework/Resources/"
                                  "WindowServer"},
                    RemoteProcess{702, 12.0, 2048, "/Applications/Arc.app/Contents/MacOS/Arc"},
                    RemoteProcess{713, 8.1, 100, "/opt/homebrew/bin/a|b"},
                    RemoteProcess{714, 1.2, 2, "login"}));
    EXPECT_EQ(record.recommendation,
              "Final Cut Pro is using 1.5 GB. Consider copying its process report.");
}

TEST_F(SshScan, SamplesAMacThatHasOnlyAnIPv6Address) {
    machines->add(SshMachines::onlyIPv6, mac());
    machines->start();
    EXPECT_EQ(scanOne(onlineMachine("studio", SshMachines::onlyIPv6)).status, Status::reachable);
}

TEST_F(SshScan, SamplesThroughAConnectionThatTheOwnerKeepsOpen) {
    const std::filesystem::path control = SshMachines::folder() / "control";
    std::ofstream(SshMachines::folder() / "home/.ssh/config", std::ios::app)
        << "ControlMaster auto\nControlPersist 60\nControlPath " << control.string() << "\n";
    const TailDevice machine = add("studio", mac(), "macOS");
    machines->start();
    EXPECT_EQ(scanOne(machine).status, Status::reachable);
    EXPECT_TRUE(std::filesystem::exists(control));
    EXPECT_EQ(scanOne(machine).status, Status::reachable);
}

TEST_F(SshScan, NamesAKeyThatIsRefused) {
    const TailDevice machine = add("attic", machines->sshd("AuthorizedKeysFile none"));
    machines->start();
    const RemoteHealth record = scanOne(machine);
    expectFailure(record, Status::authNeeded);
    EXPECT_EQ(record.recommendation,
              "The SSH server is reachable, but this Mac's SSH key is not authorized for this "
              "host. Add your public key or enable key access.");
    EXPECT_THAT(record.setupHint, HasSubstr("not authorized for " + record.address + "."));
}

TEST_F(SshScan, NamesAnAccountThatDoesNotExist) {
    settings.set(&Settings::sshUsername, "nobody-here");
    const TailDevice machine = add("attic", machines->sshd());
    machines->start();
    expectFailure(scanOne(machine), Status::authNeeded);
}

TEST_F(SshScan, NamesAHostKeyThatHasChanged) {
    TailDevice machine = add("attic", mac(), "macOS");
    machines->start();
    EXPECT_EQ(scanOne(machine).status, Status::reachable);
    machines->end();
    machines->add(machine.addresses.front(), machines->sshdWithAnotherKey());
    machines->start();
    const RemoteHealth record = scanOne(machine);
    EXPECT_EQ(record.status, Status::hostKeyIssue);
    EXPECT_FALSE(record.online);
    EXPECT_EQ(record.recommendation,
              "This Mac can reach SSH, but does not trust the host key. Remove the old key and add "
              "the current key for this host.");
    EXPECT_EQ(remote.scan.remoteHistory().size(), 1U);
}

TEST_F(SshScan, NamesAClosedPort) {
    const RemoteHealth record = scanOne(onlineMachine("attic", "100.64.9.9", "linux"));
    expectFailure(record, Status::connectionBlocked);
    EXPECT_EQ(record.setupHint,
              "On the remote machine, make sure that an SSH server such as openssh-server runs and "
              "that port 22 is open, then retry 100.64.9.9.");
}

TEST_F(SshScan, NamesAMachineThatDoesNotAnswer) {
    launcher.isPatient = false;
    const TailDevice machine = addDead("attic");
    machines->start();
    expectFailure(scanOne(machine), Status::connectionBlocked);
    EXPECT_FALSE(launcher.launches.at(0).result.deadlinePassed);
}

TEST_F(SshScan, NamesAnAddressWithoutARoute) {
    expectFailure(scanOne(onlineMachine("attic", "192.0.2.1", "linux")), Status::unknown);
    expectFailure(scanOne(onlineMachine("attic", "fd7a:115c:a1e0::9", "linux")), Status::unknown);
}

TEST_F(SshScan, GivesUpOnASilentMachine) {
    launcher.isPatient = false;
    expectFailure(withAnswer("", false), Status::connectionBlocked);
}

TEST_F(SshScan, EndsTheSecureShellAtTheDeadline) {
    launcher.isPatient = false;
    const RemoteHealth record = withAnswer("SSH-2.0-OpenSSH_9.2\r\n", false);
    expectFailure(record, Status::unknown);
    EXPECT_TRUE(launcher.launches.at(0).result.deadlinePassed);
    EXPECT_THAT(record.setupHint, StartsWith("Confirm the remote machine is awake"));
}

TEST_F(SshScan, EndsTheSecureShellWhenTheProgramEnds) {
    const std::string connected = SshMachines::folder() / "connected";
    const auto hang = [&connected](int connection) {
        send(connection, "SSH-2.0-OpenSSH_9.2\r\n");
        std::ofstream(connected) << "yes";
        awaitTheEnd(connection);
    };
    const std::vector<TailDevice> devices{add("attic", hang), add("barn", hang)};
    machines->start();
    {
        const std::jthread stopper([&] {
            EXPECT_TRUE(eventually([&] { return std::filesystem::exists(connected); }));
            launcher.tools.requestStop();
        });
        scan(devices);
    }
    EXPECT_TRUE(launcher.launches.at(0).result.launched);
    EXPECT_FALSE(launcher.launches.at(1).result.launched);
}

TEST_F(SshScan, SurvivesWhatIsNoSecureShell) {
    const std::string megabyte = [] {
        std::string text;
        for (std::size_t i = 0; text.size() < 1U << 20U; ++i) {
            text += static_cast<char>(i * 7919 >> 5U);
        }
        return text;
    }();
    const auto lines = [](std::string_view line) {
        std::string text;
        while (text.size() < 1U << 20U) {
            text += line;
        }
        return text;
    };
    for (const std::string& answer : std::vector<std::string>{"",
                                                              "\n",
                                                              "SSH-2.0-Op",
                                                              "SSH-9.9-x\r\n",
                                                              "HTTP/1.1 400 Bad Request\r\n\r\n",
                                                              {"\0\xff\x01\n", 4},
                                                              megabyte,
                                                              lines("cpu=1\nmem=2\n"),
                                                              lines("cpu=1 mem=2 ")}) {
        expectFailure(withAnswer(answer), Status::unknown);
        if (HasFailure()) {
            FAIL() << answer.substr(0, 60);
        }
        machines->end();
        launcher.launches.clear();
    }
}

TEST_F(SshScan, SurvivesGarbageInPlaceOfTheKeyExchange) {
    // A packet so large counts as a forged one: "message authentication code incorrect".
    expectFailure(withAnswer("SSH-2.0-OpenSSH_9.2\r\n" + std::string(1U << 20U, '\x7f')),
                  Status::authNeeded);
}

TEST_F(SshScan, SurvivesALoginShellThatFails) {
    for (const char* script :
         {"exit 1", "exit 255", "kill -KILL $$", ":", "printf cp", "printf '\\377\\376cpu=1\\n'",
          "head -c 1000000 /dev/zero", "head -c 1000000 /dev/urandom", "yes x=y | head -c 1000000",
          "yes 'proc=1|2|3' | head -c 1000000", "printf 'cpu=nan\\nmem=inf\\n'",
          "echo 'This account is currently not available.'; exit 1"}) {
        expectFailure(withShell(script), Status::unknown);
        if (HasFailure()) {
            FAIL() << script;
        }
        machines->end();
        launcher.launches.clear();
    }
}

TEST_F(SshScan, EndsTheSecureShellWhenTheLoginShellHangs) {
    launcher.isPatient = false;
    expectFailure(withShell("echo hello; exec sleep 1000"), Status::unknown);
    EXPECT_TRUE(launcher.launches.at(0).result.deadlinePassed);
}

TEST_F(SshScan, TakesHalfALine) {
    const RemoteHealth record = withShell("printf 'mem=40\\ncpu=1'");
    EXPECT_EQ(record.status, Status::reachable);
    EXPECT_EQ(record.cpuPercent, 1.0);
}

TEST_F(SshScan, SkipsWhatIsPrintedBeforeTheSample) {
    machines->addAccount("odd", SshMachines::program("shell", R"(#!/bin/sh
echo 'Last login: today'
echo 'motd = none' >&2
exec /bin/sh "$@"
)"));
    settings.set(&Settings::sshUsername, "odd");
    const std::string banner = SshMachines::program("banner", "Welcome!\nNo trespassing.\n");
    const TailDevice machine = add("attic", machines->sshd("Banner " + banner));
    machines->addBusyProcess("Render");
    machines->start();
    expectLinuxSample(scanOne(machine));
    const std::string& output = launcher.launches.at(0).result.output;
    EXPECT_THAT(output, HasSubstr("No trespassing."));
    EXPECT_THAT(output, HasSubstr("Last login"));
}

class SshLoginShell : public SshScan, public ::testing::WithParamInterface<std::string> {};

TEST_P(SshLoginShell, SamplesTheMachine) {
    if (!std::filesystem::exists(GetParam())) {
        GTEST_SKIP() << "not on this machine";
    }
    machines->addAccount("odd", GetParam());
    settings.set(&Settings::sshUsername, "odd");
    const TailDevice machine = add("attic", machines->sshd());
    machines->addBusyProcess("Render");
    machines->start();
    expectLinuxSample(scanOne(machine));
}

INSTANTIATE_TEST_SUITE_P(Shells, SshLoginShell,
                         ::testing::Values("/bin/dash", "/bin/bash", "/usr/bin/fish",
                                           "/usr/bin/zsh"),
                         [](const auto& each) {
                             return std::filesystem::path(each.param).filename().string();
                         });

TEST_F(SshScan, AsksTenMachinesOneAfterTheOther) {
    std::vector<TailDevice> devices;
    for (const char* name : {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"}) {
        const bool isDead = std::string_view("bfi").find(name[0]) != std::string_view::npos;
        const bool isLinux = std::string_view("adj").find(name[0]) != std::string_view::npos;
        devices.push_back(isDead    ? addDead(name)
                          : isLinux ? add(name, machines->sshd())
                                    : add(name, mac(), "macOS"));
    }
    machines->start();
    const std::vector<RemoteHealth>& records = scan(devices);
    EXPECT_EQ(eachOf(records, &RemoteHealth::hostName), eachOf(devices, &TailDevice::hostName));
    EXPECT_EQ(launcher.mostAtATime, 1);
    for (const RemoteHealth& each : records) {
        EXPECT_EQ(each.status, std::string_view("bfi").find(each.hostName) != std::string_view::npos
                                   ? Status::connectionBlocked
                                   : Status::reachable)
            << each.hostName;
    }
    EXPECT_EQ(log.lastAction(), "Remote scan complete: 7 of 10 Macs responded.");
    EXPECT_THAT(eachOf(launcher.launches, [](const auto& each) { return each.result.launched; }),
                Each(true));
    for (std::size_t i = 0; i < launcher.launches.size(); ++i) {
        RecordProperty("seconds_" + devices.at(i).hostName,
                       fmt::format("{:.2f}", launcher.launches[i].time.count()));
    }
}

TEST_F(SshScan, StartsNothingForAHostileAddressOrUser) {
    const std::string trace = SshMachines::folder() / "trace";
    for (const std::string& address : std::vector<std::string>{
             "-oProxyCommand=touch " + trace, "$(touch " + trace + ")", "`touch " + trace + "`",
             "100.64.7.1;touch " + trace, "100.64.7.1\n-oProxyCommand=touch", "-F/dev/null", "a@b",
             "ssh://100.64.7.1", "\xff", " "}) {
        const RemoteHealth record = scanOne(onlineMachine("attic", address, "linux"));
        EXPECT_EQ(record.status, Status::noAddress) << address;
        EXPECT_EQ(record.summary, "Invalid SSH target");
    }
    for (const std::string& user : {"-oProxyCommand=touch " + trace, "$(touch " + trace + ")"}) {
        settings.set(&Settings::sshUsername, user);
        EXPECT_EQ(scanOne(onlineMachine("attic", "100.64.7.1", "linux")).summary,
                  "Invalid SSH target");
    }
    EXPECT_THAT(launcher.launches, IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(trace));
}

TEST_F(SshScan, KeepsTheNameOfAPeerFromTheCommandLine) {
    const std::string trace = SshMachines::folder() / "trace";
    TailDevice machine = add("plain", mac(), "macOS");
    machines->start();
    for (const std::string& name :
         std::vector<std::string>{"-oProxyCommand=touch " + trace, "$(touch " + trace + ")",
                                  "a\n;touch " + trace, "'; exit 1; '"}) {
        machine.name = machine.hostName = name;
        EXPECT_EQ(scanOne(machine).status, Status::reachable);
        EXPECT_EQ(remote.scan.state().remoteHealth.at(0).hostName, name);
    }
    for (const NotingLauncher::Launch& each : launcher.launches) {
        EXPECT_EQ(each.request.arguments, launcher.launches.at(0).request.arguments);
    }
    EXPECT_FALSE(std::filesystem::exists(trace));
}

}  // namespace
}  // namespace tallowcrest

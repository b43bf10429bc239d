#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/locale.h"
#include "remote/remote_report_text.h"
#include "remote/remote_requests.h"
#include "remote/remote_setup_script.h"
#include "tests/support/fixture.h"

namespace tallowcrest {
namespace {

RemoteHealth sampledMachine() {
    return {.id = "nodekey:1",
            .hostName = "studio",
            .address = "100.64.0.7",
            .online = true,
            .status = RemoteHealth::Status::reachable,
            .cpuPercent = 12.5,
            .memoryPercent = 81.4,
            .osVersion = "14.5",
            .topCPUProcess = "97.5% /Applications/Maya",
            .topMemoryProcess = "2048MB /Applications/Maya",
            .topProcesses = {{.pid = 411, .cpu = 97.25, .rssMB = 2048.5, .command = "/opt/Maya"},
                             {.pid = 2, .cpu = 0.04, .rssMB = 0.0, .command = "/"}},
            .recommendation = "Maya is the main CPU user.",
            .setupHint = "SSH is configured and remote metrics are available.",
            .sampledAt = Date::fromUnixSeconds(1795188300)};
}

TEST(RemoteReportText, HasOneFactPerLine) {
    EXPECT_EQ(remoteReportText(sampledMachine(), PlainLocale()),
              "Tallowcrest remote report - 2026-11-20 15:25\n"
              "Host: studio\n"
              "Address: 100.64.0.7\n"
              "Status: Reachable\n"
              "macOS: 14.5\n"
              "CPU: 13%\n"
              "Memory pressure: 81%\n"
              "Top CPU: 97.5% /Applications/Maya\n"
              "Top Memory: 2048MB /Applications/Maya\n"
              "Recommendation: Maya is the main CPU user.\n"
              "Remote Processes:\n"
              "411\t97.2% CPU\t2048 MB\tMaya\n"
              "2\t0.0% CPU\t0 MB\t/\n"
              "Setup: SSH is configured and remote metrics are available.");
}

TEST(RemoteReportText, SaysWhatIsUnknown) {
    EXPECT_EQ(remoteReportText({.hostName = "attic",
                                .address = "no address",
                                .status = RemoteHealth::Status::noAddress},
                               PlainLocale()),
              "Tallowcrest remote report - 2001-01-01 00:00\n"
              "Host: attic\n"
              "Address: no address\n"
              "Status: No Address\n"
              "macOS: unknown\n"
              "CPU: unknown\n"
              "Memory pressure: unknown\n"
              "Top CPU: unknown\n"
              "Top Memory: unknown\n"
              "Recommendation: \n"
              "Remote Processes:\n"
              "Setup: ");
}

TEST(RemoteReportText, NamesTheSystemOfALinuxMachine) {
    RemoteHealth machine = sampledMachine();
    const std::string ofAMac = remoteReportText(machine, PlainLocale());
    machine.isLinux = true;
    machine.osVersion = "Debian GNU/Linux 12 (bookworm)";
    std::string expected = ofAMac;
    const std::string macLine = "macOS: 14.5\n";
    expected.replace(expected.find(macLine), macLine.size(),
                     "Linux: Debian GNU/Linux 12 (bookworm)\n");
    EXPECT_EQ(remoteReportText(machine, PlainLocale()), expected);
    machine.osVersion.reset();
    EXPECT_THAT(remoteReportText(machine, PlainLocale()),
                ::testing::HasSubstr("\nLinux: unknown\n"));
}

TEST(RemoteReportText, OfAProcessAndOfAnAppGroup) {
    const RemoteHealth machine = sampledMachine();
    EXPECT_EQ(remoteProcessReportText(machine, machine.topProcesses.front()),
              "Tallowcrest remote process\n"
              "Host: studio\n"
              "Address: 100.64.0.7\n"
              "PID: 411\n"
              "Process: Maya\n"
              "CPU: 97.2%\n"
              "Memory: 2048 MB\n"
              "Command: /opt/Maya");
    EXPECT_EQ(remoteAppReportText(machine, {.name = "Maya",
                                            .processCount = 3,
                                            .totalCPU = 101.06,
                                            .totalMemoryMB = 2560.0,
                                            .protectedCount = 1}),
              "Tallowcrest remote app impact\n"
              "Host: studio\n"
              "App: Maya\n"
              "CPU: 101.1%\n"
              "Memory: 2.5 GB\n"
              "Processes: 3\n"
              "Protected: 1");
}

TEST(RemoteReportText, NoNameLooksLikeALineOrAColumn) {
    const std::string hostile = "a\nHost: b\tc\r\u202Ed\u2028" + std::string(10000, 'x');
    RemoteHealth machine = sampledMachine();
    const auto lines = [](const std::string& text) { return std::ranges::count(text, '\n'); };
    const auto whole = lines(remoteReportText(machine, PlainLocale()));
    machine.hostName = machine.address = machine.recommendation = machine.setupHint = hostile;
    machine.osVersion = machine.topCPUProcess = machine.topMemoryProcess = hostile;
    machine.topProcesses.front().command = hostile;
    const std::string report = remoteReportText(machine, PlainLocale());
    EXPECT_EQ(lines(report), whole);
    EXPECT_EQ(std::ranges::count(report, '\t'), 6);
    const std::string process = remoteProcessReportText(machine, machine.topProcesses.front());
    EXPECT_EQ(lines(process), 7);
    const std::string app = remoteAppReportText(machine, {.name = hostile});
    EXPECT_EQ(lines(app), 6);
    for (const std::string& text : {report, process, app}) {
        EXPECT_EQ(text.find('\r'), std::string::npos);
        EXPECT_EQ(text.find("\u202E"), std::string::npos);
        EXPECT_EQ(text.find("\u2028"), std::string::npos);
    }
}

TEST(RemoteRequests, APurgeNamesTheMachineByItsNickname) {
    struct Case {
        const char* nickname;
        const char* title;
    };
    for (const Case& each :
         {Case{"Attic", "Purge caches on Attic?"}, Case{"", "Purge caches on studio?"}}) {
        const ConfirmationRequest request = remote_requests::purge("studio", each.nickname, false);
        EXPECT_EQ(request.title, each.title);
        EXPECT_EQ(request.message,
                  "Tallowcrest will run purge over SSH on studio. This is reversible only by "
                  "normal macOS cache refill.");
        EXPECT_EQ(request.confirmTitle, "Remote Purge");
        EXPECT_EQ(request.kind, "remote_purge");
        EXPECT_EQ(request.hostName, "studio");
        EXPECT_EQ(request.pid, std::nullopt);
    }
    EXPECT_NE(remote_requests::purge("studio", "", false).id,
              remote_requests::purge("studio", "", false).id);
    const ConfirmationRequest onLinux = remote_requests::purge("server", "", true);
    EXPECT_EQ(onLinux.title, "Purge caches on server?");
    EXPECT_EQ(onLinux.message,
              "Tallowcrest will drop file caches over SSH on server. This is reversible only by "
              "normal cache refill.");
}

TEST(RemoteRequests, AQuitNamesTheProcessByItsLastPathComponent) {
    struct Case {
        const char* command;
        const char* title;
    };
    for (const Case& each : {Case{"/opt/Maya", "Quit Maya on studio?"},
                             Case{"zsh", "Quit zsh on studio?"}, Case{"/", "Quit / on studio?"}}) {
        const ConfirmationRequest request =
            remote_requests::quitProcess("studio", {.pid = 411, .command = each.command});
        EXPECT_EQ(request.title, each.title);
        EXPECT_EQ(request.message,
                  "Tallowcrest will send TERM to PID 411 over SSH. Unsaved remote work may be "
                  "lost.");
        EXPECT_EQ(request.confirmTitle, "Quit Remote Process");
        EXPECT_EQ(request.kind, "remote_quit_process");
        EXPECT_EQ(request.hostName, "studio");
        EXPECT_EQ(request.pid, 411);
    }
}

TEST(RemoteSetupScript, IsTheRecordedOneByteForByte) {
    EXPECT_EQ(remoteSetupScript.size(), 502U);
    EXPECT_EQ(remoteSetupScript, readFixture("remote/setup-remote-tallowcrest-ssh.sh"));
    EXPECT_EQ(remoteSetupScriptName, "setup-remote-tallowcrest-ssh.sh");
}

}  // namespace
}  // namespace tallowcrest

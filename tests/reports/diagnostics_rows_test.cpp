#include "reports/diagnostics_rows.h"

#include <string>
#include <tuple>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "tests/reports/report_state.h"
#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

using Status = RemoteHealth::Status;

TEST(ReportText, HasNoLineEndsOrTabs) {
    EXPECT_EQ(reportText("x\nOpenAI key saved: Yes"), "x OpenAI key saved: Yes");
    EXPECT_EQ(reportText("a\tb\r\nc"), "a b  c");
    EXPECT_EQ(reportText("a\u2028b\u0085c\u202Ed"), "a b c d");
    EXPECT_EQ(reportText("a\xFFz"), "a\uFFFDz");
    EXPECT_EQ(reportText("Große Datei · 日本"), "Große Datei · 日本");
}

TEST(AppRow, HasFiveColumns) {
    EXPECT_EQ(formatAppRow({.name = "Firefox",
                            .processCount = 1,
                            .totalCPU = 12.34,
                            .totalMemoryMB = 1024.0,
                            .topPID = 7,
                            .protectedCount = 0}),
              "Firefox\t12.3% CPU\t1.0 GB\t1 processes\t0 protected");
    EXPECT_EQ(formatAppRow({.name = "a\tb",
                            .processCount = 40,
                            .totalCPU = 250.0,
                            .totalMemoryMB = 80.0,
                            .topPID = {},
                            .protectedCount = 40}),
              "a b\t250.0% CPU\t0.1 GB\t40 processes\t40 protected");
}

TEST(InsightRow, HasThreeColumns) {
    EXPECT_EQ(formatInsightRow({UUID(), "Peak CPU", "97%", "Highest in this session"}),
              "Peak CPU\t97%\tHighest in this session");
    EXPECT_EQ(formatInsightRow({UUID(), "", "\n", "\t"}), "\t \t ");
}

TEST(LocalProcessRow, NamesTheProcess) {
    struct Case {
        ProcessSample row;
        std::string plain;
        std::string redacted;
    };
    for (const Case& c : std::vector<Case>{
             {processRow(1234567, "/opt/google/chrome/chrome", 12.34, 512.6),
              "1234567\t12.3% CPU\t513 MB\tchrome", "redacted\t12.3% CPU\t513 MB\tGoogle Chrome"},
             {processRow(1, "/usr/bin/vi", 0.0, 0.0), "1\t0.0% CPU\t0 MB\tvi",
              "redacted\t0.0% CPU\t0 MB\tvi"},
             {processRow(2, "///", 0.0, 0.0), "2\t0.0% CPU\t0 MB\t///",
              "redacted\t0.0% CPU\t0 MB\t///"},
             {processRow(3, "", 0.0, 0.0), "3\t0.0% CPU\t0 MB\t", "redacted\t0.0% CPU\t0 MB\t"},
             {processRow(4, "/opt/x\nOpenAI key saved: Yes", 640.0, 2.5),
              "4\t640.0% CPU\t2 MB\tx OpenAI key saved: Yes",
              "redacted\t640.0% CPU\t2 MB\tx OpenAI key saved: Yes"},
             {processRow(5, "/opt/python\t3\xFF", 1.0, 1.0), "5\t1.0% CPU\t1 MB\tpython 3\uFFFD",
              "redacted\t1.0% CPU\t1 MB\tPython"},
         }) {
        EXPECT_EQ(formatLocalProcessRow(c.row, false), c.plain);
        EXPECT_EQ(formatLocalProcessRow(c.row, true), c.redacted);
    }
}

TEST(RemoteProcessSummary, NamesTheProcess) {
    struct Case {
        RemoteProcess process;
        std::string plain;
        std::string redacted;
    };
    for (const Case& c : std::vector<Case>{
             {{7654321, 88.25, 1536.0, "/usr/bin/python3.11"},
              "python3.11 88.2%/1536MB",
              "Python 88.2%/1536MB"},
             {{1, 0.0, 0.5, "mds"}, "mds 0.0%/0MB", "mds 0.0%/0MB"},
             {{2, 1.0, 2.0, "/"}, "/ 1.0%/2MB", "/ 1.0%/2MB"},
             {{3, 1.0, 2.0, "a\nb"}, "a b 1.0%/2MB", "a b 1.0%/2MB"},
         }) {
        EXPECT_EQ(formatRemoteProcessSummary(c.process, false), c.plain);
        EXPECT_EQ(formatRemoteProcessSummary(c.process, true), c.redacted);
    }
}

RemoteHealth reachableHost() {
    RemoteHealth health;
    health.hostName = "studio";
    health.address = "100.64.7.9";
    health.status = Status::reachable;
    health.cpuPercent = 12.5;
    health.memoryPercent = 71.4;
    health.osVersion = "14.5";
    health.topCPUProcess = "88.2% /usr/bin/python3.11";
    health.topMemoryProcess = "1536MB /usr/bin/python3.11";
    health.topProcesses = {{11, 88.25, 1536.0, "/usr/bin/python3.11"}, {12, 3.0, 80.0, "mds"}};
    health.recommendation = "Watch it.";
    health.summary = "Remote sample received.";
    health.setupHint = "SSH is configured.";
    return health;
}

TEST(RemoteRow, HasElevenColumnsAndRedactedHidesAddressAndProcessList) {
    for (const auto& [isRedacted, address, process] :
         {std::tuple{false, "100.64.7.9", "python3.11"}, {true, "redacted", "Python"}}) {
        EXPECT_EQ(
            formatRemoteRow(reachableHost(), isRedacted),
            fmt::format("studio\t{}\tReachable\tmacOS 14.5\tCPU 13%\tMemory 71%\t"
                        "Top CPU 88.2% /usr/bin/python3.11\tTop Memory 1536MB /usr/bin/python3.11\t"
                        "Recommendation Watch it.\tProcesses {} 88.2%/1536MB; mds 3.0%/80MB\t"
                        "SSH is configured.",
                        address, process));
    }
}

TEST(RemoteRow, NamesTheSystemOfALinuxMachine) {
    RemoteHealth health = reachableHost();
    health.isLinux = true;
    health.osVersion = "Debian 12";
    EXPECT_NE(formatRemoteRow(health, false).find("\tReachable\tLinux Debian 12\tCPU"),
              std::string::npos);
}

TEST(RemoteRow, MissingFiguresAreZeroAndMissingTextsUnknown) {
    RemoteHealth health;
    health.hostName = "mini";
    health.address = "no address";
    health.status = Status::noAddress;
    health.setupHint = "Open Tailscale.";
    const std::string rest =
        "\tNo Address\tmacOS unknown\tCPU 0%\tMemory 0%\tTop CPU unknown\tTop Memory unknown\t"
        "Recommendation \tProcesses unknown\tOpen Tailscale.";
    EXPECT_EQ(formatRemoteRow(health, false), "mini\tno address" + rest);
    EXPECT_EQ(formatRemoteRow(health, true), "mini\tredacted" + rest);
}

TEST(RemoteRow, EmptyTextsAndImpossibleFiguresAreShownUnchanged) {
    RemoteHealth health = reachableHost();
    health.osVersion = "";
    health.topCPUProcess = "";
    std::string row = formatRemoteRow(health, false);
    EXPECT_NE(row.find("\tmacOS \tCPU 13%"), std::string::npos);
    EXPECT_NE(row.find("\tTop CPU \tTop Memory 1536MB"), std::string::npos);
    health.cpuPercent = nan;
    health.memoryPercent = -1e300;
    row = formatRemoteRow(health, false);
    EXPECT_NE(row.find("\tCPU nan%\tMemory -1000"), std::string::npos) << row;
}

TEST(RemoteRow, EveryStatusHasATitle) {
    struct Case {
        Status status;
        std::string word;
    };
    for (const Case& c : std::vector<Case>{{Status::reachable, "Reachable"},
                                           {Status::noTailnetPath, "No Tailnet Path"},
                                           {Status::noAddress, "No Address"},
                                           {Status::connectionBlocked, "Connection Blocked"},
                                           {Status::hostKeyIssue, "Host Key Issue"},
                                           {Status::authNeeded, "Auth Needed"},
                                           {Status::unknown, "Needs Setup"}}) {
        RemoteHealth health = reachableHost();
        health.status = c.status;
        EXPECT_EQ(formatRemoteRow(health, false).find("studio\t100.64.7.9\t" + c.word + "\tmacOS"),
                  0U);
    }
}

TEST(RemoteRow, NoTextAddsAColumnOrALine) {
    RemoteHealth health = reachableHost();
    health.hostName = health.address = health.recommendation = health.setupHint = "x\n\ty\r";
    health.osVersion = health.topCPUProcess = health.topMemoryProcess = "x\n\ty\r";
    for (RemoteProcess& process : health.topProcesses) {
        process.command = "x\n\ty\r";
    }
    EXPECT_EQ(formatRemoteRow(health, false),
              "x  y \tx  y \tReachable\tmacOS x  y \tCPU 13%\tMemory 71%\tTop CPU x  y \t"
              "Top Memory x  y \tRecommendation x  y \t"
              "Processes x  y  88.2%/1536MB; x  y  3.0%/80MB\tx  y ");
}

TEST(TrustRow, HasFiveColumns) {
    EXPECT_EQ(formatTrustRow({"disk_cleanup", 0, 3, 1, {}}),
              "disk_cleanup\ttrust 42%\tapproved 0\trun 3\tblocked 1");
    EXPECT_EQ(formatTrustRow({"a\nb", 100, 0, 0, {}}),
              "a b\ttrust 100%\tapproved 100\trun 0\tblocked 0");
}

TEST(EventRow, HasTheTimeWithoutTheDay) {
    const Date date = Date::fromUnixSeconds(1'800'000'000.0 + 7 * 3600.0 + 62.9);
    EXPECT_EQ(formatEventRow({UUID(), date, "Action", "Purged."}, PlainLocale()),
              "15:01:02\tAction\tPurged.");
    EXPECT_EQ(formatEventRow({UUID(), {infinity}, "A\n", "\tB"}, PlainLocale()), "unknown\tA \t B");
}

}  // namespace
}  // namespace tallowcrest

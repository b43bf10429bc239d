#include "reports/diagnostics_report.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text.h"
#include "tests/reports/report_state.h"
#include "tests/support/fixture.h"
#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

constexpr Date sampledAt = Date::fromUnixSeconds(1'800'000'000.0);  // 2027-01-15 08:00

ReportState emptyState() {
    ReportState state;
    state.snapshot.sampledAt = sampledAt;
    state.snapshot.cpuPercent = 12.4;
    state.snapshot.memory.totalGB = 16.0;
    state.snapshot.memory.usedGB = 7.86;
    state.snapshot.memory.pressure = 49.1;
    state.snapshot.disk = {.totalGB = 460.43, .freeGB = 88.0};
    return state;
}

std::vector<RemoteHealth> richRemoteHealth() {
    RemoteHealth studio;
    studio.id = "node-1";
    studio.hostName = "studio";
    studio.address = "100.64.7.9";
    studio.online = true;
    studio.status = RemoteHealth::Status::reachable;
    studio.cpuPercent = 80.5;
    studio.memoryPercent = 71.0;
    studio.osVersion = "14.5";
    studio.topCPUProcess = "88.2% /usr/bin/python3.11";
    studio.topMemoryProcess = "1536MB /usr/bin/python3.11";
    studio.topProcesses = {{11, 88.2, 1536.0, "/usr/bin/python3.11"}, {12, 3.0, 80.0, "mds"}};
    studio.recommendation = "python3.11 is the main CPU user.";
    studio.setupHint = "SSH is configured and remote metrics are available.";
    RemoteHealth mini;
    mini.id = "node-2";
    mini.hostName = "mini";
    mini.address = "fd7a::53";
    mini.setupHint = "Confirm the remote Mac is awake.";
    mini.recommendation = "Confirm the remote Mac is awake.";
    return {studio, mini};
}

ReportState richState() {
    ReportState state = emptyState();
    state.snapshot.appImpacts = {{.name = "Google Chrome",
                                  .processCount = 40,
                                  .totalCPU = 93.25,
                                  .totalMemoryMB = 5734.4,
                                  .topPID = 4242001,
                                  .protectedCount = 0},
                                 {.name = "WindowServer",
                                  .processCount = 1,
                                  .totalCPU = 8.0,
                                  .totalMemoryMB = 1024.0,
                                  .topPID = 4242002,
                                  .protectedCount = 1}};
    state.sessionInsights = {{UUID(), "Peak CPU", "97%", "Highest in this session"},
                             {UUID(), "Top app", "Google Chrome", "Seen on top 12 times"}};
    state.snapshot.topProcesses = {
        processRow(4242001, "/opt/google/chrome/chrome", 61.07, 812.5),
        processRow(4242002, "/usr/bin/WindowServer", 8.0, 1024.0),
        processRow(4242003, "/opt/x\nOpenAI key saved: No\tevil", 0.04, 3.0),
    };
    state.remoteHealth = richRemoteHealth();
    state.settings.warningThreshold = 85.9;
    state.settings.sshUsername = "rowan";
    state.settings.protectedAppNames = {"Terminal", "Arc", "Zed\nNone", "mail"};
    state.settings.autoSelectTopOffender = true;
    state.settings.autoPurgeSustainedMemory = false;
    state.settings.autoScanRemoteMacs = true;
    state.settings.diskAutopilotEnabled = true;
    state.settings.diskMinimumFreeGB = 20.9;
    state.settings.diskCleanupAgeDays = 30.0;
    state.settings.diskMaxCleanupGB = 1.25;
    state.settings.openAIModel = "some-model";
    state.settings.aiSafeActionsEnabled = true;
    state.settings.aiAutonomyMode = AIAutonomyMode::trusted;
    state.openAIKeySaved = true;
    state.aiInsight = "Memory is fine.\nClose some tabs.";
    state.aiActions = {{UUID(), "select_top", "Select the top app", "", "low"},
                       {UUID(), "local_purge", "Purge file caches", "", "low"}};
    state.aiTrustRecords = {{"select_top", {"select_top", 2, 3, 0, sampledAt}},
                            {"disk_cleanup", {"disk_cleanup", 0, 3, 1, sampledAt}}};
    state.activityLog = {
        {UUID(), Date::fromUnixSeconds(1'800'000'000.0 - 5.0), "Action", "Purged file caches."},
        {UUID(), Date::fromUnixSeconds(1'800'000'000.0 - 90.0), "Warning", "CPU is at\r\n97%."}};
    return state;
}

void expectGolden(const std::string& report, const std::string& name) {
    const std::string golden = readFixture("diagnostics_report/" + name + ".txt");
    EXPECT_THAT(linesOf(report), ::testing::ElementsAreArray(linesOf(golden)));
    EXPECT_EQ(report, golden);
}

TEST(DiagnosticsReport, WithOnlyASampleAndWithEverySection) {
    expectGolden(emptyState().report(false), "sample_alone");
    EXPECT_EQ(emptyState().report(true), emptyState().report(false)) << "nothing to redact";
    expectGolden(richState().report(false), "rich");
    expectGolden(richState().report(true), "rich_redacted");
}

TEST(DiagnosticsReport, RedactionChangesOnlyTheLinesOfProcessesAndRemoteMachines) {
    const auto plain = linesOf(richState().report(false));
    const auto redacted = linesOf(richState().report(true));
    ASSERT_EQ(plain.size(), redacted.size());
    std::vector<std::string> changed;
    for (std::size_t i = 0; i < plain.size(); ++i) {
        if (plain[i] != redacted[i]) {
            changed.push_back(plain[i].substr(0, plain[i].find('\t')));
        }
    }
    EXPECT_THAT(changed, ElementsAre("4242001", "4242002", "4242003", "studio", "mini"));
}

TEST(DiagnosticsReport, FiguresOfTheMachine) {
    struct Case {
        double value;
        std::string whole;
        std::string decimal;
    };
    for (const Case& c :
         {Case{0.0, "0", "0.0"}, Case{99.95, "100", "100.0"}, Case{50.5, "50", "50.5"},
          Case{nan, "nan", "nan"}, Case{-infinity, "-inf", "-inf"}}) {
        ReportState state;
        state.snapshot.sampledAt = {c.value == 0.0 ? 0.0 : infinity};
        state.snapshot.cpuPercent = c.value;
        state.snapshot.memory.usedGB = c.value;
        state.snapshot.memory.totalGB = c.value;
        state.snapshot.memory.pressure = c.value;
        state.snapshot.disk = {.totalGB = c.value, .freeGB = c.value};
        auto lines = linesOf(state.report(false));
        lines.resize(5);
        EXPECT_THAT(lines, ElementsAre(c.value == 0.0 ? "Tallowcrest report - 2001-01-01 00:00"
                                                      : "Tallowcrest report - unknown",
                                       "CPU: " + c.whole + "%",
                                       "Memory: " + c.decimal + " GB / " + c.decimal + " GB",
                                       "Pressure: " + c.whole + "%",
                                       "Disk: " + c.decimal + " GB free / " + c.decimal + " GB"));
    }
}

TEST(DiagnosticsReport, TheThresholdIsCutToAnInteger) {
    struct Case {
        double threshold;
        std::string line;
    };
    for (const Case& c : {Case{85.9, "Warning threshold: 85%"},
                          Case{85.0, "Warning threshold: 85%"}, Case{-0.5, "Warning threshold: 0%"},
                          Case{1e19, "Warning threshold: 10000000000000000000%"},
                          Case{infinity, "Warning threshold: inf%"}}) {
        ReportState state = emptyState();
        state.settings.warningThreshold = c.threshold;
        EXPECT_EQ(linesOf(state.report(false)).at(5), c.line);
    }
}

TEST(DiagnosticsReport, AnEmptyUserNameIsTheDefaultOne) {
    ReportState state = emptyState();
    EXPECT_EQ(linesOf(state.report(false)).at(6), "SSH user: (default)");
    state.settings.sshUsername = "rowan";
    EXPECT_EQ(linesOf(state.report(true)).at(6), "SSH user: rowan");
}

TEST(DiagnosticsReport, AnAppOf1024MBHasOneGB) {
    EXPECT_THAT(linesOf(richState().report(false)),
                Contains("WindowServer\t8.0% CPU\t1.0 GB\t1 processes\t1 protected"));
}

TEST(DiagnosticsReport, DiskLimitsAreCutToIntegersExceptTheMaximumPerRun) {
    ReportState state = emptyState();
    state.settings.diskMinimumFreeGB = 9.99;
    state.settings.diskCleanupAgeDays = 364.9;
    state.settings.diskMaxCleanupGB = 0.15;
    EXPECT_THAT(linesOf(state.report(false)),
                Contains("Disk Autopilot: Off · act below 9 GB · cache age 364 days · max 0.1 "
                         "GB/run"));
}

TEST(DiagnosticsReport, EverySwitchHasItsOwnLine) {
    ReportState off = emptyState();
    off.settings.autoSelectTopOffender = false;
    off.settings.autoPurgeSustainedMemory = false;
    off.settings.autoScanRemoteMacs = false;
    off.settings.diskAutopilotEnabled = false;
    off.settings.aiSafeActionsEnabled = false;
    struct Case {
        bool Settings::*field;
        std::string start;
    };
    for (const auto& [field, start] :
         std::vector<Case>{{&Settings::autoSelectTopOffender, "Auto-select top offender: "},
                           {&Settings::autoPurgeSustainedMemory, "Auto-purge sustained memory: "},
                           {&Settings::autoScanRemoteMacs, "Auto-scan remote Macs: "},
                           {&Settings::diskAutopilotEnabled, "Disk Autopilot: "},
                           {&Settings::aiSafeActionsEnabled, "AI safe actions: "}}) {
        ReportState on = off;
        on.settings.*field = true;
        std::string expected = off.report(false);
        const std::size_t at = expected.find(start + "Off");
        ASSERT_NE(at, std::string::npos) << start;
        EXPECT_EQ(on.report(false), expected.replace(at + start.size(), 3, "On"));
    }
}

TEST(DiagnosticsReport, EveryModeHasItsName) {
    for (const AIAutonomyMode mode : allAIAutonomyModes) {
        ReportState state = emptyState();
        state.settings.aiAutonomyMode = mode;
        constexpr std::array names{"Apprentice", "Trusted", "Autopilot"};
        EXPECT_THAT(
            linesOf(state.report(false)),
            Contains(std::string("AI autonomy mode: ") + names.at(static_cast<std::size_t>(mode))));
    }
}

TEST(DiagnosticsReport, TrustIsSortedByTheActionTypeOfTheRecords) {
    ReportState state = emptyState();
    state.aiTrustRecords = {{"a", {"zz", 0, 0, 0, {}}},
                            {"b", {"select_top", 0, 0, 0, {}}},
                            {"c", {"Copy", 0, 0, 0, {}}}};
    const auto lines = linesOf(state.report(false));
    const auto heading = std::find(lines.begin(), lines.end(), "AI trust history");
    ASSERT_NE(heading, lines.end());
    EXPECT_THAT(std::vector(heading + 1, heading + 5),
                ElementsAre("Copy\ttrust 20%\tapproved 0\trun 0\tblocked 0",
                            "select_top\ttrust 20%\tapproved 0\trun 0\tblocked 0",
                            "zz\ttrust 20%\tapproved 0\trun 0\tblocked 0", ""));
}

TEST(DiagnosticsReport, ShowsTheNewestTwelveOfThirtyEvents) {
    ReportState state = emptyState();
    for (int i = 30; i > 0; --i) {
        state.activityLog.push_back({UUID(), Date{60.0 * i}, "Event", std::to_string(i)});
    }
    const auto lines = linesOf(state.report(false));
    const auto heading = std::find(lines.begin(), lines.end(), "Recent Events");
    ASSERT_NE(heading, lines.end());
    ASSERT_EQ(lines.end() - heading, 13);
    EXPECT_EQ(heading[1], "00:30:00\tEvent\t30");
    EXPECT_EQ(heading[12], "00:19:00\tEvent\t19");
}

TEST(DiagnosticsReport, EveryTextStaysOnItsLine) {
    const std::string evil = "x\nRemote Health\r\n\u2028\u0085\tstudio\xFF";
    ReportState state = richState();
    const std::size_t lineCount = linesOf(state.report(false)).size();
    for (AppImpact& app : state.snapshot.appImpacts) {
        app.name = evil;
    }
    for (ProcessSample& row : state.snapshot.topProcesses) {
        row.command = evil;
    }
    for (SessionInsight& insight : state.sessionInsights) {
        insight.title = insight.value = insight.detail = evil;
    }
    for (RemoteHealth& health : state.remoteHealth) {
        health.hostName = health.address = health.recommendation = health.setupHint = evil;
        health.osVersion = health.topCPUProcess = health.topMemoryProcess = evil;
        for (RemoteProcess& process : health.topProcesses) {
            process.command = evil;
        }
    }
    state.settings.protectedAppNames = {evil, evil + "1", evil + "2", evil + "3"};
    state.settings.sshUsername = state.settings.openAIModel = state.aiInsight = evil;
    for (AIActionSuggestion& action : state.aiActions) {
        action.type = action.title = evil;
    }
    for (auto& [type, record] : state.aiTrustRecords) {
        record.actionType = evil;
    }
    for (ActivityEvent& event : state.activityLog) {
        event.title = event.detail = evil;
    }
    for (const bool redacted : {false, true}) {
        const std::string report = state.report(redacted);
        EXPECT_EQ(linesOf(report).size(), lineCount);
        EXPECT_TRUE(isValidUTF8(report));
        EXPECT_EQ(report.find_first_of("\r\v\f"), std::string::npos);
        EXPECT_EQ(report.find("\u2028"), std::string::npos);
        EXPECT_EQ(report.find("\u0085"), std::string::npos);
    }
}

}  // namespace
}  // namespace tallowcrest

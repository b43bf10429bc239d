#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "sampling/app_impact.h"
#include "tests/reports/report_state.h"

namespace tallowcrest {
namespace {

constexpr std::int64_t firstPID = 7'310'000;
constexpr std::size_t localRows = 120;
constexpr std::size_t hosts = 40;
constexpr std::size_t remoteRows = 5;

/// A unique name that belongs to a known group.
std::string groupedName(std::string_view owner, std::size_t number) {
    constexpr std::array<std::string_view, 4> kinds{"Google Chrome Helper", "python", "clang",
                                                    "com.docker.vpnkit"};
    return fmt::format("{} {}-{}q", kinds.at(number % kinds.size()), owner, number);
}

std::string addressOf(std::size_t host) {
    return host % 2 == 0 ? fmt::format("100.117.213.{}", 100 + host)
                         : fmt::format("fd7a:115c:a1e0::{:x}", 0xbe00 + host);
}

std::string hostNameOf(std::size_t host) {
    return fmt::format("workshop-mac-{}", 500 + host);
}

ReportState bigState() {
    ReportState state;
    for (std::size_t i = 0; i < localRows; ++i) {
        state.snapshot.topProcesses.push_back(processRow(
            firstPID + static_cast<std::int64_t>(i), "/opt/apps/" + groupedName("local", i),
            50.0 - 0.25 * static_cast<double>(i), 100.0));
    }
    state.snapshot.appImpacts = {{.name = "Google Chrome",
                                  .processCount = 30,
                                  .totalCPU = 90.0,
                                  .totalMemoryMB = 3000.0,
                                  .topPID = firstPID,
                                  .protectedCount = 0}};
    for (std::size_t host = 0; host < hosts; ++host) {
        RemoteHealth health;
        health.id = fmt::format("node-{}", host);
        health.hostName = hostNameOf(host);
        health.address = addressOf(host);
        health.status = RemoteHealth::Status::reachable;
        health.summary = "Remote sample received.";
        // Hints on how to connect contain the address.
        health.setupHint = "Enable Remote Login, then retry " + health.address + ".";
        health.recommendation = "Remote Mac looks healthy.";
        for (std::size_t i = 0; i < remoteRows; ++i) {
            const std::size_t number = host * remoteRows + i;
            health.topProcesses.push_back({firstPID + 100'000 + static_cast<std::int64_t>(number),
                                           5.0, 64.0, "/usr/local/" + groupedName("far", number)});
        }
        health.appImpacts = {{.name = "Python",
                              .processCount = 2,
                              .totalCPU = 10.0,
                              .totalMemoryMB = 128.0,
                              .topPID = firstPID + 100'000,
                              .protectedCount = 0}};
        state.remoteHealth.push_back(health);
    }
    return state;
}

struct Secrets {
    std::vector<std::string> texts;

    std::size_t countIn(const std::string& report) const {
        std::size_t found = 0;
        for (const std::string& text : texts) {
            found += report.find(text) == std::string::npos ? 0U : 1U;
        }
        return found;
    }
};

Secrets localSecretsOf(const ReportState& state) {
    Secrets secrets;
    for (const ProcessSample& row : state.snapshot.topProcesses) {
        secrets.texts.push_back(std::to_string(row.pid));
        secrets.texts.emplace_back(row.displayName());
    }
    return secrets;
}

Secrets remoteSecretsOf(const ReportState& state) {
    Secrets secrets;
    for (const RemoteHealth& health : state.remoteHealth) {
        secrets.texts.push_back(health.address);
        for (const RemoteProcess& process : health.topProcesses) {
            secrets.texts.emplace_back(process.displayName());
        }
    }
    return secrets;
}

TEST(Redaction, TheFullReportContainsWhatTheRedactedOneHides) {
    const ReportState state = bigState();
    const std::string report = state.report(false);
    const Secrets local = localSecretsOf(state);
    const Secrets remote = remoteSecretsOf(state);
    EXPECT_EQ(local.texts.size(), localRows * 2);
    EXPECT_EQ(remote.texts.size(), hosts * (1 + remoteRows));
    EXPECT_EQ(local.countIn(report), local.texts.size());
    EXPECT_EQ(remote.countIn(report), remote.texts.size());
}

TEST(Redaction, HidesEveryPidAddressAndName) {
    const ReportState state = bigState();
    const std::string report = state.report(true);
    EXPECT_EQ(localSecretsOf(state).countIn(report), 0U);
    EXPECT_EQ(remoteSecretsOf(state).countIn(report), 0U);
}

TEST(Redaction, KeepsEveryHostName) {
    const std::string report = bigState().report(true);
    for (std::size_t host = 0; host < hosts; ++host) {
        EXPECT_NE(report.find("\n" + hostNameOf(host) + "\tredacted\tReachable\t"),
                  std::string::npos)
            << host;
    }
}

TEST(Redaction, HiddenValuesDoNotChangeTheReport) {
    const ReportState state = bigState();
    ReportState other = state;
    for (ProcessSample& row : other.snapshot.topProcesses) {
        row.pid += 500'000;
        row.command = "/elsewhere/" + appGroupName(row);
        row.arguments = "--token=secret";
    }
    for (RemoteHealth& health : other.remoteHealth) {
        health.address += "0";
        health.setupHint = "Enable Remote Login, then retry " + health.address + ".";
        for (RemoteProcess& process : health.topProcesses) {
            process.pid += 500'000;
            process.command.insert(0, "/elsewhere");
        }
    }
    EXPECT_EQ(other.report(true), state.report(true));
    EXPECT_NE(other.report(false), state.report(false));
}

TEST(Redaction, KeepsTextsOfTheOwnerAndOfTheHosts) {
    ReportState state = bigState();
    state.settings.sshUsername = "rowan";
    state.settings.protectedAppNames = {"Terminal"};
    state.sessionInsights = {{UUID(), "Top process", "python local-1q", "Seen often"}};
    state.aiInsight = "Quit clang local-2q.";
    state.activityLog = {{UUID(), {}, "Action", "Sent TERM to 7310001."}};
    state.remoteHealth[0].topCPUProcess = "91.0% /usr/local/python far-1q";
    state.remoteHealth[0].topMemoryProcess = "64MB /usr/local/clang far-2q";
    state.remoteHealth[0].recommendation = "Review python far-1q.";
    state.remoteHealth[0].setupHint = "Retry 100.117.213.100.";
    const std::string report = state.report(true);
    for (const std::string kept :
         {"SSH user: rowan\n", "\nTerminal\n", "Top process\tpython local-1q\tSeen often\n",
          "Last AI insight: Quit clang local-2q.\n", "\tAction\tSent TERM to 7310001.",
          "\tTop CPU 91.0% /usr/local/python far-1q\tTop Memory 64MB /usr/local/clang far-2q\t",
          "\tRecommendation Review python far-1q.\t", "\tRetry redacted.\n",
          "Google Chrome\t90.0% CPU\t2.9 GB\t30 processes\t0 protected\n"}) {
        EXPECT_NE(report.find(kept), std::string::npos) << kept;
    }
}

TEST(Redaction, KeepsTheTextForAMissingAddress) {
    ReportState state = bigState();
    state.remoteHealth.resize(1);
    state.remoteHealth[0].address = "no address";
    state.remoteHealth[0].setupHint = "This machine has no address yet.";
    EXPECT_NE(state.report(true).find("This machine has no address yet."), std::string::npos);
}

}  // namespace
}  // namespace tallowcrest

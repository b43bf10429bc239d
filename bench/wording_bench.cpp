// The texts of a sample, those that depend on every row and the others, and of the advisor.

#include <algorithm>
#include <compare>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "advisor/guidance.h"
#include "monitor/recommendations.h"
#include "monitor/session_insights.h"
#include "platform/locale/posix_locale.h"
#include "reports/diagnostics_report.h"
#include "sampling/app_impact.h"
#include "tests/support/test_locales.h"

namespace tallowcrest {
namespace {

/// A table that triggers every kind of card: a browser with many helpers, Docker, one heavy
/// process.
std::vector<ProcessSample> busyTable(std::int64_t count) {
    std::vector<ProcessSample> rows;
    for (std::int64_t pid = 1; pid <= count; ++pid) {
        ProcessSample row;
        row.pid = pid;
        row.cpu = static_cast<double>(pid % 37);
        row.rssMB = pid == 500 ? 3000.0 : static_cast<double>(pid % 211);
        row.command = pid % 7 == 0    ? "/opt/google/chrome/chrome"
                      : pid % 11 == 0 ? "/usr/bin/dockerd"
                      : pid % 3 == 0  ? "[kworker/" + std::to_string(pid) + ":0-events]"
                                      : "/usr/lib/services/some-service-" + std::to_string(pid);
        row.arguments = row.command;
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<HistoryPoint> busyHistory() {
    std::vector<HistoryPoint> points;
    for (int i = 0; i < 180; ++i) {
        points.push_back({UUID::random(), Date{4.0 * i}, 90.0, 90.0});
    }
    return points;
}

void recommendFromRows(benchmark::State& state) {
    const auto rows = busyTable(state.range(0));
    const PosixLocale locale({"en_US", "en_US"});
    for (auto _ : state) {
        benchmark::DoNotOptimize(buildRecommendations(rows, 1.5, 90.0, 90.0, locale));
    }
}

void recommendFromHistory(benchmark::State& state) {
    const PosixLocale locale({"en_US", "en_US"});
    const auto history = busyHistory();
    const auto cards = buildRecommendations(busyTable(600), 1.5, 90.0, 90.0, locale);
    const std::vector<AppImpact> groups{{"Google Chrome", 85, 90.0, 9000.0, 7, 0}};
    for (auto _ : state) {
        benchmark::DoNotOptimize(addSustainedRecommendations(cards, history, groups));
    }
}

void buildInsights(benchmark::State& state) {
    const PosixLocale locale({"en_US", "en_US"});
    const auto history = busyHistory();
    std::map<std::string, std::int64_t> counts;
    for (int i = 0; i < 80; ++i) {
        counts["Some Application " + std::to_string(i)] = 7;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(buildSessionInsights({history, counts, {}, counts}, locale));
    }
}

/// What the main thread does for an answer: the guidance of this machine, and the report that a
/// service gets. The sample has as many rows and groups as are listed at most.
void guideAndReport(benchmark::State& state) {
    const PosixLocale locale({"en_US", "en_US"});
    const Settings settings;
    SystemSnapshot snapshot;
    snapshot.memory = {.totalGB = 32.0, .usedGB = 28.0, .freeGB = 4.0, .pressure = 90.0};
    snapshot.disk = {.totalGB = 500.0, .freeGB = 10.0};
    snapshot.cpuPercent = 90.0;
    snapshot.topProcesses = busyTable(600);
    snapshot.appImpacts = listedAppImpacts(snapshot.topProcesses, {}, {});
    std::vector<RemoteHealth> remotes;
    for (int i = 0; i < 10; ++i) {
        remotes.push_back({.id = std::to_string(i),
                           .hostName = "mac-" + std::to_string(i),
                           .online = true,
                           .status = RemoteHealth::Status::reachable,
                           .topProcesses = std::vector<RemoteProcess>(8),
                           .appImpacts = std::vector<RemoteAppImpact>(8)});
    }
    const std::vector<ActivityEvent> events(
        80, {UUID::random(), Date{0.0}, "Warning", "Memory pressure is 90%."});
    const std::map<std::string, AITrustRecord> trust;
    const DiagnosticsFacts facts{.snapshot = snapshot,
                                 .settings = settings,
                                 .sessionInsights = {},
                                 .remoteHealth = remotes,
                                 .openAIKeySaved = true,
                                 .aiInsight = "All is well.",
                                 .aiActions = {},
                                 .aiTrustRecords = trust,
                                 .activityLog = events};
    for (auto _ : state) {
        benchmark::DoNotOptimize(onDeviceAnalysis(guidanceFacts(snapshot, settings, locale)));
        benchmark::DoNotOptimize(diagnosticsReport(facts, state.range(0) != 0, locale));
    }
}

BENCHMARK(guideAndReport)->ArgName("redacted")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void sortNames(benchmark::State& state, const char* name) {
    const PosixLocale locale({name, name});
    std::vector<std::string> names;
    for (const ProcessSample& row : busyTable(700)) {
        names.push_back(row.command.substr(row.command.rfind('/') + 1) + std::to_string(row.pid));
    }
    for (auto _ : state) {
        std::vector<std::string> sorted = names;
        std::sort(sorted.begin(), sorted.end(), [&](const auto& left, const auto& right) {
            return std::is_lt(locale.compareIgnoringCase(left, right));
        });
        benchmark::DoNotOptimize(sorted);
    }
}

BENCHMARK(recommendFromRows)->Arg(600)->Arg(2000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(recommendFromHistory)->Unit(benchmark::kMicrosecond);
BENCHMARK(buildInsights)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(sortNames, english, "en_US")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(sortNames, withoutALocale, "C")->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tallowcrest

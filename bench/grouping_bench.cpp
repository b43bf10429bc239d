#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "core/record_json.h"
#include "sampling/app_impact.h"

namespace tallowcrest {
namespace {

constexpr ProtectionPolicy policy{.ownPID = 4242, .protectsLinuxSystem = true};

/// A typical table of a desktop: mostly idle, a third of it kernel threads, some programs with many
/// processes each.
std::vector<ProcessSample> syntheticTable(std::int64_t count) {
    const std::string many[] = {"/opt/google/chrome/chrome", "/usr/lib/firefox/firefox-bin",
                                "/usr/bin/node", "/usr/bin/bash", "/usr/bin/python3.11"};
    std::mt19937 generator(1);
    std::exponential_distribution<double> load(2.0);
    std::exponential_distribution<double> memory(1.0 / 40.0);
    std::vector<ProcessSample> rows;
    for (std::int64_t pid = 1; pid <= count; ++pid) {
        ProcessSample row;
        row.pid = pid;
        switch (generator() % 3) {
            case 0:
                row.command = "[kworker/" + std::to_string(pid) + ":0-events]";
                break;
            case 1:
                row.command = many[generator() % std::size(many)];
                row.cpu = generator() % 4 == 0 ? load(generator) : 0.0;
                row.rssMB = memory(generator);
                break;
            default:
                row.command = "/usr/lib/services/some-service-" + std::to_string(pid % 300);
                row.cpu = generator() % 10 == 0 ? load(generator) : 0.0;
                row.rssMB = memory(generator) / 4;
                break;
        }
        row.arguments = row.command;
        rows.push_back(std::move(row));
    }
    return rows;
}

void rankRows(benchmark::State& state) {
    constexpr std::size_t shownRows = 120;
    const auto rows = syntheticTable(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(rowsInOrder(rows, impactOrder(rows), shownRows));
    }
}
BENCHMARK(rankRows)->Arg(600)->Arg(2000)->Arg(10000)->Unit(benchmark::kMicrosecond);

void groupRows(benchmark::State& state) {
    const auto rows = syntheticTable(state.range(0));
    const ProtectedAppNames neverQuit{"Firefox", "Terminal"};
    for (auto _ : state) {
        benchmark::DoNotOptimize(buildAppImpacts(rows, neverQuit, policy));
    }
}
BENCHMARK(groupRows)->Arg(600)->Arg(2000)->Arg(10000)->Unit(benchmark::kMicrosecond);

std::vector<HistoryPoint> timeline(std::int64_t count) {
    std::mt19937 generator(2);
    std::uniform_real_distribution<double> percent(0.0, 100.0);
    std::vector<HistoryPoint> points;
    for (std::int64_t i = 0; i < count; ++i) {
        points.push_back({UUID::random(), Date{7e8 + 4.000123 * static_cast<double>(i)},
                          percent(generator), percent(generator)});
    }
    return points;
}

void encodeHistory(benchmark::State& state) {
    const auto points = timeline(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(record_json::encode(points));
    }
}
BENCHMARK(encodeHistory)->Arg(180)->Arg(720)->Unit(benchmark::kMicrosecond);

void decodeHistory(benchmark::State& state) {
    const std::string text = record_json::encode(timeline(state.range(0))).value();
    for (auto _ : state) {
        benchmark::DoNotOptimize(record_json::decodeHistory(text));
    }
}
BENCHMARK(decodeHistory)->Arg(720)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tallowcrest

// The cost of a clean-up: moving the most files that one run may move.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <benchmark/benchmark.h>

#include "platform/base/system_clock.h"
#include "platform/trash/xdg_trash.h"
#include "tests/support/manual_clock.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

/// Names that are all the same are the worst case: each is counted.
void moveCacheFiles(benchmark::State& state) {
    const bool haveOneName = state.range(0) == 1;
    constexpr int count = 500;
    for (auto _ : state) {
        state.PauseTiming();
        TemporaryFolder home;
        const std::filesystem::path cache = home.path() / ".cache/program/objects";
        for (int i = 0; i < count; ++i) {
            const std::filesystem::path folder = cache / std::to_string(i);
            std::filesystem::create_directories(folder);
            std::ofstream(folder / (haveOneName ? "data" : std::to_string(i))) << "content";
        }
        const SystemClock clock;
        XdgTrash trash(home.path("Trash"), clock, atGreenwich);
        state.ResumeTiming();
        for (int i = 0; i < count; ++i) {
            const std::string number = std::to_string(i);
            const TrashOutcome outcome =
                trash.moveToTrash({.path = cache / number / (haveOneName ? "data" : number),
                                   .inside = home.path(".cache")});
            if (!outcome.movedBytes) {
                state.SkipWithError(outcome.error.c_str());
                return;
            }
        }
        state.PauseTiming();
        std::filesystem::remove_all(home.path());
        state.ResumeTiming();
    }
}

BENCHMARK(moveCacheFiles)
    ->ArgName("one name")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
}  // namespace tallowcrest

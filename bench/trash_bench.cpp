// The cost of a clean-up: a plan over a large cache, and moving the most files that one run may
// move.

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <list>
#include <string>

#include <benchmark/benchmark.h>

#include "disk/cache_cleanup.h"
#include "platform/base/system_clock.h"
#include "platform/files/file_walk_posix.h"
#include "platform/trash/xdg_trash.h"
#include "tests/support/manual_clock.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

/// Names that are all the same are the worst case: each is counted.
void moveCacheFiles(benchmark::State& state) {
    const bool haveOneName = state.range(0) == 1;
    constexpr int count = 500;
    // Kept until the program ends: ext4 makes files more slowly for minutes after many were
    // deleted.
    static std::list<TemporaryFolder> homes;
    for (auto _ : state) {
        state.PauseTiming();
        const TemporaryFolder& home = homes.emplace_back();
        const std::filesystem::path cache = home.path() / ".cache/program/objects";
        for (int i = 0; i < count; ++i) {
            const std::filesystem::path folder = cache / std::to_string(i);
            std::filesystem::create_directories(folder);
            std::ofstream(folder / (haveOneName ? "data" : std::to_string(i))) << "content";
        }
        const SystemClock clock;
        XdgTrash trash(home.path("Trash"), clock, atGreenwich);
        PosixFileWalk walk;
        const CachesPlace place{home.path(".cache"), home.path(), {}};
        for (const auto& file : std::filesystem::recursive_directory_iterator(cache)) {
            if (file.is_regular_file()) {
                std::filesystem::last_write_time(
                    file,
                    std::filesystem::file_time_type::clock::now() - std::chrono::hours(24 * 40));
            }
        }
        const DiskCleanupPlan plan =
            buildDiskCleanupPlan(walk, {place, 30.0, 2.0}, clock, [](const SearchProgress&) {}, {})
                .review;
        CleanupTally tally(plan.urls.size());
        DiskChanges changes;
        state.ResumeTiming();
        moveOldCaches(trash, {plan.urls, place, 2.0}, tally, [] {}, Stop({}, changes), {});
        state.PauseTiming();
        if (tally.progress().moved != count) {
            state.SkipWithError("not all files were moved");
            return;
        }
        state.ResumeTiming();
    }
}

/// A plan over a cache of 200,000 files of which none is old, so that each is looked at.
void planCacheFiles(benchmark::State& state) {
    constexpr int folders = 2000;
    constexpr int filesPerFolder = 100;
    const TemporaryFolder home;
    for (int folder = 0; folder < folders; ++folder) {
        const std::filesystem::path path =
            home.path() / ".cache/program" / std::to_string(folder % 100) / std::to_string(folder);
        std::filesystem::create_directories(path);
        for (int file = 0; file < filesPerFolder; ++file) {
            std::ofstream(path / ("object " + std::to_string(file)));
        }
    }
    const SystemClock clock;
    const CachesPlace place{home.path(".cache"), home.path(), {}};
    PosixFileWalk walk;
    std::int64_t seen = 0;
    for (auto _ : state) {
        buildDiskCleanupPlan(walk, {place, 30.0, 2.0}, clock,
                             [&](const SearchProgress& progress) { seen = progress.filesSeen; },
                             {});
    }
    if (seen != std::int64_t{folders} * filesPerFolder) {
        state.SkipWithError("not all files were seen");
    }
}

BENCHMARK(planCacheFiles)->Unit(benchmark::kMillisecond);

BENCHMARK(moveCacheFiles)
    ->ArgName("one name")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
}  // namespace tallowcrest

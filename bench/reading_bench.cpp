#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "platform/base/descriptor_setup.h"
#include "platform/base/unique_fd.h"
#include "platform/linux/proc_stat_tick_source.h"
#include "platform/linux/procfs_metrics_reader.h"
#include "platform/linux/procfs_pid_list.h"
#include "platform/linux/procfs_process_table.h"
#include "sampling/proc_parser.h"
#include "sampling/ps_parser.h"

namespace tallowcrest {
namespace {

constexpr std::string_view statTail =
    " S 1 812 812 0 -1 4194560 82213 911 12 0 48211 9120 77 12 20 0 31 0 4211 "
    "3221225472 81234 18446744073709551615 94208000000000 94208000900000 140720000000000 0 0 0 0 "
    "4096 1260 0 0 0 17 1 0 0 0 0 0 94208001000000 94208001100000 94208002000000 140720000001000 "
    "140720000001100 140720000001100 140720000001200 0\n";

/// Sleeping processes, so that the machine has as many as a benchmark requires.
class Sleepers {
public:
    explicit Sleepers(std::size_t wanted) {
        const auto present = ProcfsProcessTable(ProcfsMachine::current()).readProcesses().size();
        while (present + children_.size() < wanted) {
            const pid_t child = ::fork();
            if (child < 0) {
                break;
            }
            if (child == 0) {
                for (;;) {
                    ::pause();
                }
            }
            children_.push_back(child);
        }
    }
    Sleepers(const Sleepers&) = delete;
    Sleepers& operator=(const Sleepers&) = delete;
    ~Sleepers() {
        for (const pid_t child : children_) {
            ::kill(child, SIGKILL);
        }
        for (const pid_t child : children_) {
            ::waitpid(child, nullptr, 0);
        }
    }

private:
    std::vector<pid_t> children_;
};

/// A copy of the layout of /proc, in memory.
class SyntheticTree {
public:
    explicit SyntheticTree(std::int64_t processes)
        : root_(fmt::format("/dev/shm/tallowcrest-bench-{}", ::getpid())) {
        for (std::int64_t pid = 1; pid <= processes; ++pid) {
            const auto directory = root_ / std::to_string(pid);
            std::filesystem::create_directories(directory);
            std::ofstream(directory / "stat") << pid << " (worker)" << statTail;
            std::filesystem::create_symlink("/usr/bin/worker", directory / "exe");
        }
    }
    SyntheticTree(const SyntheticTree&) = delete;
    SyntheticTree& operator=(const SyntheticTree&) = delete;
    ~SyntheticTree() { std::filesystem::remove_all(root_); }

    ProcfsMachine machine() const {
        ProcfsMachine machine = ProcfsMachine::current();
        machine.procRoot = root_;
        return machine;
    }

private:
    std::filesystem::path root_;
};

void count(benchmark::State& state, std::size_t rows) {
    state.counters["rows"] = static_cast<double>(rows);
}

/// Steady-state readings of the real table, with at least as many processes as the argument.
void readRealTable(benchmark::State& state) {
    raiseDescriptorLimit();
    const Sleepers sleepers(static_cast<std::size_t>(state.range(0)));
    ProcfsProcessTable table(ProcfsMachine::current());
    std::size_t rows = table.readProcesses().size();
    for (auto _ : state) {
        rows = table.readProcesses().size();
    }
    count(state, rows);
}

/// The first reading of the real table, which opens each process and reads its command.
void readRealTableFirst(benchmark::State& state) {
    raiseDescriptorLimit();
    const Sleepers sleepers(static_cast<std::size_t>(state.range(0)));
    std::size_t rows = 0;
    for (auto _ : state) {
        ProcfsProcessTable table(ProcfsMachine::current());
        rows = table.readProcesses().size();
    }
    count(state, rows);
}

/// The lower bound of `readRealTable`: one read per process through an open descriptor.
void readRealStatFilesOnly(benchmark::State& state) {
    raiseDescriptorLimit();
    const Sleepers sleepers(static_cast<std::size_t>(state.range(0)));
    std::vector<std::unique_ptr<UniqueFD>> files;
    for (const auto& row : ProcfsProcessTable(ProcfsMachine::current()).readProcesses()) {
        const auto path = fmt::format("/proc/{}/stat", row.pid);
        files.push_back(std::make_unique<UniqueFD>(::open(path.c_str(), O_RDONLY | O_CLOEXEC)));
    }
    char buffer[1024];
    for (auto _ : state) {
        for (const auto& file : files) {
            benchmark::DoNotOptimize(::pread(file->get(), buffer, sizeof buffer, 0));
        }
    }
    count(state, files.size());
}

void listRealProcesses(benchmark::State& state) {
    const Sleepers sleepers(static_cast<std::size_t>(state.range(0)));
    const UniqueFD directory(::open("/proc", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    std::vector<std::int32_t> pids;
    for (auto _ : state) {
        benchmark::DoNotOptimize(listProcessIDs(directory.get(), pids));
    }
    count(state, pids.size());
}

void readSyntheticTable(benchmark::State& state) {
    raiseDescriptorLimit();
    const SyntheticTree tree(state.range(0));
    ProcfsProcessTable table(tree.machine());
    std::size_t rows = table.readProcesses().size();
    for (auto _ : state) {
        rows = table.readProcesses().size();
    }
    count(state, rows);
}

void readRealMemory(benchmark::State& state) {
    ProcfsMetricsReader reader;
    for (auto _ : state) {
        benchmark::DoNotOptimize(reader.readMemory());
    }
}

void readRealPressureText(benchmark::State& state) {
    ProcfsMetricsReader reader;
    for (auto _ : state) {
        benchmark::DoNotOptimize(reader.readPressureText());
    }
}

void readRealTicks(benchmark::State& state) {
    ProcStatTickSource source;
    for (auto _ : state) {
        benchmark::DoNotOptimize(source.readTicks());
    }
}

void parseStat(benchmark::State& state) {
    const std::string text = fmt::format("812 (web content){}", statTail);
    for (auto _ : state) {
        benchmark::DoNotOptimize(parseProcessStat(text));
    }
}

void parsePSRows(benchmark::State& state) {
    std::string text;
    for (std::int64_t row = 1; row <= state.range(0); ++row) {
        text +=
            fmt::format("{:5} {:5.1f} {:4.1f} {:6} /Applications/Web {}.app/Contents/MacOS/Web\n",
                        row, static_cast<double>(row % 97) / 3.0, 0.4, row * 31 % 900000, row);
    }
    std::size_t rows = 0;
    for (auto _ : state) {
        rows = parseProcessRows(text).size();
    }
    count(state, rows);
}

BENCHMARK(readRealTable)->Arg(0)->Arg(600)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(readRealStatFilesOnly)->Arg(600)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(listRealProcesses)->Arg(600)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(readRealTableFirst)->Arg(600)->Unit(benchmark::kMicrosecond);
BENCHMARK(readSyntheticTable)->Arg(600)->Arg(2000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(readRealMemory)->Unit(benchmark::kMicrosecond);
BENCHMARK(readRealPressureText)->Unit(benchmark::kMicrosecond);
BENCHMARK(readRealTicks)->Unit(benchmark::kMicrosecond);
BENCHMARK(parseStat);
BENCHMARK(parsePSRows)->Arg(600)->Arg(2000)->Arg(10000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tallowcrest

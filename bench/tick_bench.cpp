// One whole sample, from the readings to the state that the views show: the background half, the
// main half, and both together.

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "core/settings/settings_store.h"
#include "monitor/sample_cycle.h"
#include "monitor/system_monitor.h"
#include "platform/base/run_loop.h"
#include "platform/base/system_clock.h"
#include "platform/base/thread_work_queue.h"
#include "platform/host.h"
#include "platform/locale/posix_locale.h"
#include "platform/tools/tool_launcher_posix.h"
#include "sampling/latest_sample.h"
#include "tests/support/fake_local_actions.h"
#include "tests/support/fake_readers.h"
#include "tests/support/fake_report_folder.h"
#include "tests/support/fake_tool_launcher.h"
#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/test_locales.h"

namespace tallowcrest {
namespace {

/// A typical table of a busy desktop: a few heavy groups with many helpers, many small groups, and
/// idle processes.
std::vector<ProcessSample> busyDesktop(std::int64_t count) {
    std::vector<ProcessSample> rows;
    rows.reserve(static_cast<std::size_t>(count));
    for (std::int64_t i = 0; i < count; ++i) {
        const std::string command =
            i % 7 == 0   ? "/opt/browser/Google Chrome Helper (Renderer)"
            : i % 5 == 0 ? fmt::format("[kworker/{}:1]", i)
            : i % 3 == 0 ? "/usr/bin/python3.11"
                         : fmt::format("/usr/lib/service-{}/daemon{}", i % 90, i % 400);
        rows.push_back({100 + i, static_cast<double>(i * 37 % 101) / 20.0,
                        static_cast<double>(i % 11) / 10.0, static_cast<double>(i * 53 % 997),
                        command, command});
    }
    return rows;
}

SampleInputs inputs() {
    return {.cpuCount = host::activeProcessorCount(),
            .protectedAppNames = {"Docker", "Node.js"},
            .protection = host::protectionPolicy()};
}

std::shared_ptr<FakeMetricsReader> preparedReader(std::int64_t rows) {
    auto reader = std::make_shared<FakeMetricsReader>();
    reader->processes = busyDesktop(rows);
    reader->memory = {16, 9, 7, 2, 1, 56};
    reader->disk = {500, 120};
    return reader;
}

std::shared_ptr<const Locale> americanEnglish() {
    return std::make_shared<PosixLocale>(LocaleNames{"en_US", "en_US"});
}

/// A monitor on manual queues, in the steady state of a full history.
class Bench {
public:
    Bench(std::shared_ptr<SystemMetricsReader> metrics, std::shared_ptr<CPUTickSource> ticks)
        : monitor_(MonitorPorts{.jobs = jobs_,
                                .clock = clock_,
                                .settingsStore = store_,
                                .metrics = std::move(metrics),
                                .ticks = std::move(ticks),
                                .locale = americanEnglish(),
                                .actions = {FakeLocalActions().ports(), {}},
                                .remote = {launcher_, CommandSafetyPolicy::linuxExecutables()},
                                .reports = {std::make_shared<FakeReportFolder>(), atGreenwich}},
                   HostFacts{.cpuCount = inputs().cpuCount,
                             .protection = inputs().protection,
                             .loginName = {}}) {
        while (monitor_.sample().history().size() < LatestSample::maximumHistory) {
            takeInBackground();
            applyOnMain();
        }
    }

    void takeInBackground() {
        monitor_.refresh();
        workQueue_.run();
    }
    void applyOnMain() { mainQueue_.drain(); }

private:
    SystemClock clock_;
    FakeToolLauncher launcher_;
    ManualMainQueue mainQueue_;
    ManualWorkQueue workQueue_;
    Jobs jobs_{mainQueue_, workQueue_};
    MemorySettingsStore store_;
    SystemMonitor monitor_;
};

/// A monitor on the queues of the program, so that a reading of the tailnet runs beside the ticks.
class BenchOnThreads {
public:
    /// `tailscaleCLI` as in `RemotePorts`.
    explicit BenchOnThreads(std::string tailscaleCLI)
        : allowed_{tailscaleCLI},
          monitor_(MonitorPorts{.jobs = jobs_,
                                .clock = clock_,
                                .settingsStore = store_,
                                .metrics = preparedReader(600),
                                .ticks = std::make_shared<FakeTickSource>(),
                                .locale = americanEnglish(),
                                .actions = {FakeLocalActions().ports(), {}},
                                .remote = {.launcher = launcher_,
                                           .allowed = allowed_,
                                           .tailscaleCLI = std::move(tailscaleCLI)},
                                .reports = {std::make_shared<FakeReportFolder>(), atGreenwich},
                                .sampleApplied = [this] { mainQueue_.stop(0); }},
                   HostFacts{.cpuCount = inputs().cpuCount,
                             .protection = inputs().protection,
                             .loginName = {}}) {
        while (monitor_.sample().history().size() < LatestSample::maximumHistory) {
            tick();
        }
    }
    ~BenchOnThreads() { launcher_.requestStop(); }
    BenchOnThreads(const BenchOnThreads&) = delete;
    BenchOnThreads& operator=(const BenchOnThreads&) = delete;

    void tick() {
        monitor_.refresh();
        mainQueue_.run();
    }

private:
    SystemClock clock_;
    CommandSafetyPolicy::AllowedExecutables allowed_;
    PosixToolLauncher launcher_;
    RunLoop mainQueue_;
    Jobs jobs_{mainQueue_, workQueue_};  // the work queue joins its threads first
    ThreadWorkQueue workQueue_{[] {}};
    MemorySettingsStore store_;
    SystemMonitor monitor_;
};

void runTicks(benchmark::State& state, Bench& bench) {
    for (auto _ : state) {
        bench.takeInBackground();
        bench.applyOnMain();
    }
}

/// Times only the main half, not the background half before it.
void runMainHalves(benchmark::State& state, Bench& bench) {
    for (auto _ : state) {
        bench.takeInBackground();
        const auto start = std::chrono::steady_clock::now();
        bench.applyOnMain();
        const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(spent.count());
    }
}

void runBackgroundHalves(benchmark::State& state, SampleSources& sources) {
    const SystemClock clock;
    const SampleInputs fixed = inputs();
    std::size_t rows = 0;
    for (auto _ : state) {
        rows = takeSample(sources, fixed, clock).processes.size();
    }
    state.counters["rows"] = static_cast<double>(rows);
}

void backgroundHalfOfPreparedRows(benchmark::State& state) {
    SampleSources sources(preparedReader(state.range(0)), std::make_shared<FakeTickSource>(),
                          americanEnglish());
    runBackgroundHalves(state, sources);
}

void mainHalfOfPreparedRows(benchmark::State& state) {
    Bench bench(preparedReader(state.range(0)), std::make_shared<FakeTickSource>());
    runMainHalves(state, bench);
}

void tickOfPreparedRows(benchmark::State& state) {
    Bench bench(preparedReader(state.range(0)), std::make_shared<FakeTickSource>());
    runTicks(state, bench);
}

void tickWithoutATailnet(benchmark::State& state) {
    BenchOnThreads bench({});
    for (auto _ : state) {
        bench.tick();
    }
}

/// A reading of the tailnet waits all the time for a tool that gives no answer.
void tickWhileAReadingHangs(benchmark::State& state) {
    const TemporaryFolder folder;
    const std::filesystem::path began = folder.path() / "began";
    BenchOnThreads bench(
        folder.file("tailscale", "#!/bin/sh\n: > \"${0%/*}/began\"\nexec sleep 60\n", 0755));
    for (auto _ : state) {
        bench.tick();
    }
    if (!std::filesystem::exists(began)) {
        state.SkipWithError("The tool was never launched.");
    }
}

void backgroundHalfOfThisMachine(benchmark::State& state) {
    PosixToolLauncher launcher;
    SampleSources sources(host::makeMetricsReader(launcher), host::makeTickSource(),
                          americanEnglish());
    runBackgroundHalves(state, sources);
}

void mainHalfOfThisMachine(benchmark::State& state) {
    PosixToolLauncher launcher;
    Bench bench(host::makeMetricsReader(launcher), host::makeTickSource());
    runMainHalves(state, bench);
}

void tickOfThisMachine(benchmark::State& state) {
    PosixToolLauncher launcher;
    Bench bench(host::makeMetricsReader(launcher), host::makeTickSource());
    runTicks(state, bench);
}

BENCHMARK(backgroundHalfOfPreparedRows)
    ->Arg(600)
    ->Arg(2000)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(mainHalfOfPreparedRows)
    ->Arg(600)
    ->Arg(2000)
    ->Arg(10000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(tickOfPreparedRows)->Arg(600)->Arg(2000)->Arg(10000)->Unit(benchmark::kMicrosecond);
// A fixed number, which is over before the deadline of the hanging tool, two seconds.
BENCHMARK(tickWithoutATailnet)
    ->Iterations(1000)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(tickWhileAReadingHangs)
    ->Iterations(1000)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(backgroundHalfOfThisMachine)->Unit(benchmark::kMicrosecond);
BENCHMARK(mainHalfOfThisMachine)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(tickOfThisMachine)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tallowcrest

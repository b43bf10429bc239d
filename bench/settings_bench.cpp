// The cost of the settings on the main thread: the writes of a tick and of an event, and the start.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "core/activity_kinds.h"
#include "core/activity_log.h"
#include "core/history_encoder.h"
#include "core/locale.h"
#include "core/record_json.h"
#include "core/settings/settings.h"
#include "core/settings/settings_owner.h"
#include "monitor/system_monitor.h"
#include "platform/base/run_loop.h"
#include "platform/base/system_clock.h"
#include "platform/base/thread_work_queue.h"
#include "platform/settings/open_settings_store.h"
#include "sampling/latest_sample.h"
#include "tests/support/fake_local_actions.h"
#include "tests/support/fake_readers.h"
#include "tests/support/fake_report_folder.h"
#include "tests/support/fake_tool_launcher.h"
#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

HistoryPoint pointAt(std::size_t index) {
    const auto number = static_cast<double>(index);
    return {UUID::random(), Date{800000000.123456 + 4 * number}, 12.345678901234 + number / 7,
            48.765432109876 - number / 9};
}

std::vector<HistoryPoint> historyOf(std::int64_t count) {
    std::vector<HistoryPoint> points;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        points.push_back(pointAt(i));
    }
    return points;
}

std::vector<ActivityEvent> eventsOf(std::size_t count) {
    std::vector<ActivityEvent> events;
    for (std::size_t i = 0; i < count; ++i) {
        events.push_back(
            {UUID::random(), Date{800000000.5 + static_cast<double>(i)}, "Action",
             "Asked a large application to quit. Memory use will settle in a moment."});
    }
    return events;
}

/// A store in a file of its own, with the work queue of the program.
class StoreInAFile {
public:
    StoreInAFile() : opened_(open()) {
        if (!opened_.problems.empty()) {
            std::abort();
        }
    }
    SettingsStore& store() { return *opened_.store; }
    MainQueue& mainQueue() { return mainQueue_; }
    /// Runs what has been posted so far. The store learns in this way that its log has been moved,
    /// and moves it again when it has grown.
    void serve() {
        mainQueue_.post([this] { mainQueue_.stop(0); });
        mainQueue_.run();
    }
    void reopen() {
        opened_.store.reset();
        opened_ = open();
    }

private:
    OpenedStore open() {
        return openSettingsStore(folder_.path() / "tallowcrest" / "settings.sqlite",
                                 {jobs_, clock_, [](const std::string&) { std::abort(); }});
    }

    TemporaryFolder folder_;
    SystemClock clock_;
    RunLoop mainQueue_;
    Jobs jobs_{mainQueue_, workQueue_};  // the work queue joins its threads first
    ThreadWorkQueue workQueue_{[] {}};
    OpenedStore opened_;
};

/// Writes an encoded history. Alternates between two texts, because an unchanged one would not be
/// written.
void writeHistory(benchmark::State& state) {
    StoreInAFile file;
    JSONData text{record_json::encode(historyOf(state.range(0))).value()};
    JSONData other{record_json::encode(historyOf(state.range(0))).value()};
    for (auto _ : state) {
        file.store().write(settings_keys::historyKey, text);
        std::swap(text, other);
        file.serve();
    }
    state.counters["bytes"] = static_cast<double>(text.text.size());
}

/// What a tick does for the settings: drops a point, adds one, encodes and writes the history.
void encodeAndWriteHistory(benchmark::State& state) {
    StoreInAFile file;
    HistoryEncoder encoder;
    std::vector<HistoryPoint> points = historyOf(state.range(0));
    std::size_t next = points.size();
    for (auto _ : state) {
        points.erase(points.begin());
        points.push_back(pointAt(next++));
        file.store().write(settings_keys::historyKey, JSONData{encoder.encode(points).value()});
        file.serve();
    }
}

void recordEventInFullLog(benchmark::State& state) {
    StoreInAFile file;
    SystemClock clock;
    SettingsOwner settings(file.store(), file.mainQueue(), "owner");
    settings.save(stored::activityLog, eventsOf(80));
    ActivityLog log(clock, settings, file.mainQueue());
    for (auto _ : state) {
        log.recordEvent(ActivityKind::action, "Asked a large application to quit.");
        file.serve();
    }
}

void fill(SettingsStore& store) {
    store.write(settings_keys::historyKey, JSONData{record_json::encode(historyOf(720)).value()});
    store.write(settings_keys::activityLogKey, JSONData{record_json::encode(eventsOf(80)).value()});
    std::vector<AIChatMessage> messages;
    for (int i = 0; i < 40; ++i) {
        messages.push_back({UUID::random(), i % 2 == 0 ? "user" : "assistant",
                            std::string(400, 'a'), Date{800000000.5}});
    }
    store.write(settings_keys::aiChatMessagesKey, JSONData{record_json::encode(messages).value()});
    std::vector<RemoteHistoryPoint> remote;
    for (int i = 0; i < 720; ++i) {
        remote.push_back(
            {UUID::random(), "attic", Date{800000000.5 + i}, 12.25, 48.5, "Reachable"});
    }
    store.write(settings_keys::remoteHistoryKey, JSONData{record_json::encode(remote).value()});
}

/// Builds a monitor on a full store, as each start of the program does. Opening is not timed.
void constructMonitorOnFullStore(benchmark::State& state) {
    StoreInAFile file;
    fill(file.store());
    SystemClock clock;
    for (auto _ : state) {
        state.PauseTiming();
        file.reopen();
        state.ResumeTiming();
        ManualMainQueue mainQueue;
        ManualWorkQueue workQueue;
        Jobs jobs(mainQueue, workQueue);
        FakeToolLauncher launcher;
        SystemMonitor monitor(
            MonitorPorts{.jobs = jobs,
                         .clock = clock,
                         .settingsStore = file.store(),
                         .metrics = std::make_shared<FakeMetricsReader>(),
                         .ticks = std::make_shared<FakeTickSource>(),
                         .locale = std::make_shared<PlainLocale>(),
                         .actions = {FakeLocalActions().ports(), {}},
                         .remote = {launcher, CommandSafetyPolicy::linuxExecutables()},
                         .reports = {std::make_shared<FakeReportFolder>(), atGreenwich}},
            HostFacts{.cpuCount = 4, .protection = {}, .loginName = "owner"});
        if (monitor.sample().history().size() != 720) {
            state.SkipWithError("the history was not loaded");
            break;
        }
    }
}

/// Opens a full store, which includes the check of the whole file.
void openFullStore(benchmark::State& state) {
    StoreInAFile file;
    fill(file.store());
    for (auto _ : state) {
        file.reopen();
    }
}

BENCHMARK(writeHistory)->Arg(180)->Arg(720)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(encodeAndWriteHistory)->Arg(180)->Arg(720)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(recordEventInFullLog)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(constructMonitorOnFullStore)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(openFullStore)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace
}  // namespace tallowcrest

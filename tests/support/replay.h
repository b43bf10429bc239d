#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <vector>

#include "core/activity_log.h"
#include "core/confirmation_desk.h"
#include "monitor/system_monitor.h"
#include "tests/support/fake_machine.h"
#include "tests/support/load_trace.h"
#include "tests/support/remote_machines.h"

namespace tallowcrest {

/// Sets the figures that a trace does not contain. To be called before the monitor is built.
inline void prepareForReplay(FakeMachine& machine) {
    machine.metrics->memory.totalGB = 16.0;
    machine.metrics->disk.totalGB = 256.0;
    machine.ticks->ticks = CPUTicks{};
}

/// Finds the new events in the activity log of a machine's monitor.
class LogNews {
public:
    explicit LogNews(FakeMachine& machine) : machine_(machine) {}

    /// The events since the previous call, oldest first.
    std::vector<ActivityEvent> take() {
        std::vector<ActivityEvent> news;
        for (const ActivityEvent& event : machine_.monitor().log().activityLog()) {
            if (event.id == newest_) {
                break;
            }
            news.push_back(event);
        }
        if (!news.empty()) {
            newest_ = news.front().id;
        }
        std::reverse(news.begin(), news.end());
        return news;
    }

    /// Cancels the pending request, if there is one. All events until then count as taken.
    void dismissQuestion() {
        machine_.monitor().confirmations().cancelPending();
        take();
    }

private:
    FakeMachine& machine_;
    UUID newest_;
};

/// Replays a trace on a prepared machine, beside another one that can be scanned. Each sample is
/// taken at its time, counted from the time of the clock at the call. `landed(sample)` is called
/// after each.
template <class Landed>
void replay(FakeMachine& machine, const LoadTrace& trace, Landed landed) {
    const Date beginning = machine.clock.now();
    SystemMonitor& monitor = machine.monitor();
    machine.setTailDevices({tailDevice("macOS", true)});
    for (const TracedSample& sample : trace) {
        const double ahead = sample.seconds - secondsBetween(beginning, machine.clock.now());
        machine.clock.advance(std::chrono::nanoseconds(std::llround(ahead * 1e9)));
        machine.metrics->processes = sample.processes;
        machine.metrics->memory.pressure = sample.pressure;
        machine.metrics->disk.freeGB = sample.diskFreeGB;
        constexpr std::uint64_t ticksPerSample = 100000;
        const auto busy = static_cast<std::uint64_t>(
            std::llround(std::clamp(sample.cpuPercent, 0.0, 100.0) * 1000.0));
        machine.ticks->ticks->user += busy;
        machine.ticks->ticks->idle += ticksPerSample - busy;
        monitor.refresh();
        machine.finishSamples();
        landed(sample);
    }
}

}  // namespace tallowcrest

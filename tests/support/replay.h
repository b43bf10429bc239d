#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <vector>

#include "tests/support/fake_auto_scan.h"
#include "tests/support/fake_machine.h"
#include "tests/support/load_trace.h"

namespace tallowcrest {

/// Gives the machine what every trace takes for granted, and another one that can be scanned.
/// Before its monitor is built, which counts the load from then on and uses `remote` until its end.
inline void prepareForReplay(FakeMachine& machine, FakeAutoScan& remote) {
    machine.metrics->memory.totalGB = 16.0;
    machine.metrics->disk.totalGB = 256.0;
    machine.ticks->ticks = CPUTicks{};
    remote.devices = {tailDevice("macOS", true)};
    machine.remoteScan = &remote;
}

/// What comes new into the activity log of a machine's monitor, from one question to the next.
class LogNews {
public:
    explicit LogNews(FakeMachine& machine) : machine_(machine) {}

    /// The oldest first.
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

    /// Answers the question that stands with no; what the log says of that is no news.
    void dismissQuestion() {
        machine_.monitor().confirmations().cancelPending();
        take();
    }

private:
    FakeMachine& machine_;
    UUID newest_;
};

/// Lets a prepared machine live through a trace: each sample is taken when the clock stands at its
/// time, counted from where it stood at the beginning. `landed` is called after each.
template <class Landed>
void replay(FakeMachine& machine, const LoadTrace& trace, Landed landed) {
    const Date beginning = machine.clock.now();
    SystemMonitor& monitor = machine.monitor();
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

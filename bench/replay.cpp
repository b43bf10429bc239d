#include "tests/support/replay.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>

#include <fmt/format.h>

#include "actions/actions.h"
#include "actions/automation.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

/// The time of day in the trace.
std::string timeText(double seconds) {
    const auto whole = static_cast<long>(seconds);
    return fmt::format("{:02}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

/// The events of one kind over the trace.
struct EventCount {
    int count = 0;
    double last = 0.0;
    double shortestDistance = 0.0;

    void add(double seconds) {
        const double distance = seconds - last;
        if (count > 0 && (count == 1 || distance < shortestDistance)) {
            shortestDistance = distance;
        }
        ++count;
        last = seconds;
    }
};

int run(const LoadTrace& trace) {
    FakeMachine machine;
    prepareForReplay(machine);
    std::map<std::string, EventCount> events;
    SystemMonitor& monitor = machine.monitor();
    monitor.actions().automation.set(AutomationSwitch::autoScanRemoteMacs, true);
    monitor.actions().automation.set(AutomationSwitch::autoPurgeSustainedMemory, true);
    LogNews news(machine);
    news.take();
    const auto began = std::chrono::steady_clock::now();
    replay(machine, trace, [&](const TracedSample& sample) {
        for (const ActivityEvent& event : news.take()) {
            fmt::print("{}  {}: {}\n", timeText(sample.seconds), event.title, event.detail);
            const std::string firstWord = event.detail.substr(0, event.detail.find(' '));
            events[event.title + ", " + firstWord].add(sample.seconds);
        }
        // There is no user to confirm anything.
        news.dismissQuestion();
    });
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - began;
    fmt::print("\n{} samples, {} of the trace, in {:.1f} s\n", trace.size(),
               timeText(trace.empty() ? 0.0 : trace.back().seconds), took.count());
    for (const auto& [kind, found] : events) {
        fmt::print("{:<24} {:>4} times", kind, found.count);
        if (found.count > 1) {
            fmt::print(", at least {:.0f} s apart", found.shortestDistance);
        }
        fmt::print("\n");
    }
    return EXIT_SUCCESS;
}

}  // namespace
}  // namespace tallowcrest

/// Runs the monitor over a trace of samples with every rule switched on, and prints its warnings
/// and the actions of its rules with their times in the trace. Without the name of a trace it uses
/// an invented day.
int main(int argc, char** argv) {
    using namespace tallowcrest;
    if (argc < 2) {
        return run(syntheticDay());
    }
    if (!std::ifstream(argv[1])) {
        fmt::print(stderr, "{} cannot be read\n", argv[1]);
        return EXIT_FAILURE;
    }
    const auto trace = parseLoadTrace(fileText(argv[1]));
    if (const auto* error = std::get_if<TraceError>(&trace)) {
        fmt::print(stderr, "{}, line {}: {}\n", argv[1], error->line, error->problem);
        return EXIT_FAILURE;
    }
    return run(std::get<LoadTrace>(trace));
}

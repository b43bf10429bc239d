#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/local_records.h"

namespace tallowcrest {

/// One sample of a recorded or made-up machine.
struct TracedSample {
    double seconds = 0.0;  ///< since the trace began; never less than the sample before
    double cpuPercent = 0.0;
    double pressure = 0.0;    ///< memory pressure, percent
    double diskFreeGB = 0.0;  ///< of the home volume
    std::vector<ProcessSample> processes;

    bool operator==(const TracedSample&) const = default;
};

using LoadTrace = std::vector<TracedSample>;

struct TraceError {
    std::size_t line = 0;  ///< from 1
    std::string problem;
};

/// Reads a trace: lines of blank-separated fields, empty ones and those that begin with '#' left
/// out. "sample SECONDS CPU PRESSURE DISK_FREE_GB" begins a sample; each "process PID CPU RSS_MB
/// COMMAND" after it is one of its processes, the command being the rest of the line. The first
/// line that makes no sense is the error.
std::variant<LoadTrace, TraceError> parseLoadTrace(std::string_view text);

/// The same form, which `parseLoadTrace` reads back without loss.
std::string formatLoadTrace(const LoadTrace& trace);

/// A made-up day at one sample in four seconds: quiet hours, a busy morning whose peaks come and go
/// around the threshold, an afternoon with memory that stays high, and a short spike in each hour
/// of the night. The same at every call.
LoadTrace syntheticDay();

}  // namespace tallowcrest

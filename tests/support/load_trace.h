#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/local_records.h"

namespace tallowcrest {

/// One sample of a recorded or invented machine.
struct TracedSample {
    double seconds = 0.0;  ///< since the start of the trace; never decreases
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

/// Reads a trace: lines of blank-separated fields, except for empty lines and comments, which start
/// with '#'. "sample SECONDS CPU PRESSURE DISK_FREE_GB" starts a sample; each "process PID CPU
/// RSS_MB COMMAND" after it is one of its processes, whose command is the rest of the line. The
/// first invalid line is the error.
std::variant<LoadTrace, TraceError> parseLoadTrace(std::string_view text);

/// The text from which `parseLoadTrace` reads the same trace.
std::string formatLoadTrace(const LoadTrace& trace);

/// An invented day with a sample every four seconds: quiet hours, a busy morning with peaks around
/// the threshold, an afternoon with memory use that stays high, and a short spike in each hour of
/// the night. Deterministic.
LoadTrace syntheticDay();

}  // namespace tallowcrest

#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/remote_records.h"

namespace tallowcrest {

/// What a sample script printed.
struct RemoteSample {
    /// The last value of each key. A line with nothing before or behind its first "=" has no key.
    std::map<std::string, std::string, std::less<>> values;
    std::vector<RemoteProcess> processes;  ///< in the order of the lines

    /// The value of a key; absent when there is none.
    std::optional<std::string> value(std::string_view key) const;

    /// The load of the whole machine: the sum over its processes, divided by its cores. Percent, at
    /// most 100. Absent when the sum is missing or no number.
    std::optional<double> cpuPercent() const;

    /// The share of memory in use, in percent; not limited. Absent when it is missing or no number.
    std::optional<double> memoryPercent() const;
};

// What is beyond these limits is not read: no script prints as much, not even behind the greeting
// of a login shell.

inline constexpr std::size_t maximumRemoteProcesses = 100;
inline constexpr std::size_t maximumRemoteValues = 1000;
inline constexpr std::size_t longestRemoteLine = 8192;  ///< bytes; no path is that long

/// Reads the output of a sample script. Accepts any text, and skips what is not understood. Figures
/// are decimal numbers; infinities and NaN are none, and a figure beyond 10^12 counts as 10^12, so
/// that sums stay finite. Any thread.
RemoteSample parseRemoteSample(std::string_view output);

}  // namespace tallowcrest

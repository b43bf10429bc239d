#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/local_records.h"

namespace tallowcrest {

/// The start time of the process with this pid, in ticks since boot, as in
/// `ProcessSample::startTime` on Linux. Also that of a zombie. Absent when there is no such process
/// or its `stat` file cannot be read. Any thread.
std::optional<std::uint64_t> processStartTicks(std::int64_t pid,
                                               const std::string& procRoot = "/proc");

/// Whether `procRoot` shows the pid namespace of this process. If it was mounted in another
/// namespace, its pids mean other processes. Any thread.
bool procfsShowsOwnPIDNamespace(const std::string& procRoot = "/proc");

/// Whether the sampled process is still running, that is, a process with its pid and start time. A
/// sample without a start time matches any process with its pid. False for a zombie. Any thread,
/// several at once.
bool isSameProcess(const ProcessSample& sample, const std::string& procRoot = "/proc");

}  // namespace tallowcrest

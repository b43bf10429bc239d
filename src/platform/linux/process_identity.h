#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/local_records.h"

namespace tallowcrest {

/// When the process that bears this number now began, in ticks since the boot: what
/// `ProcessSample::startTime` is here. Absent when nobody bears it, or when the system does not
/// tell. A process that has ended and is not yet waited for still counts. Any thread.
std::optional<std::uint64_t> processStartTicks(std::int64_t pid,
                                               const std::string& procRoot = "/proc");

/// Whether the process file system counts processes as this process does. One that was mounted
/// outside of this process's namespace lists others under the same numbers. Any thread.
bool procfsCountsAsWeDo(const std::string& procRoot = "/proc");

/// Whether the process that a sample told of still runs: one bears its number and began at its
/// start time. A sample without a start time stands for whichever process bears its number. False
/// as well for one that has ended and is not yet waited for. Any thread, several at once.
bool isSameProcess(const ProcessSample& sample, const std::string& procRoot = "/proc");

}  // namespace tallowcrest

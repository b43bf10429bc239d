#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "sampling/memory.h"
#include "sampling/system_cpu_load_reader.h"

/// Parsers for files below /proc and /sys on Linux. They do not allocate: `parseProcessStat` runs
/// once per process and sample. Any thread.
namespace tallowcrest {

/// The fields of `/proc/PID/stat` that are used.
struct ProcessStat {
    std::string_view name;  ///< a view into the text; any bytes, brackets and line feeds included
    char state = '?';       ///< 'Z' for a process that has ended and was not yet waited for
    std::uint64_t flags = 0;
    std::uint64_t userTicks = 0;
    std::uint64_t systemTicks = 0;
    std::uint64_t startTicks = 0;  ///< since the boot
    std::uint64_t residentPages = 0;
    /// Addresses that change when the process executes another program. 0 or 1 when the kernel
    /// hides them from this user.
    std::uint64_t startCode = 0;
    std::uint64_t startStack = 0;

    /// Kernel threads have no executable.
    bool isKernelThread() const { return (flags & 0x00200000U) != 0; }
    bool hasEnded() const { return state == 'Z' || state == 'X' || state == 'x'; }
};

/// Absent when the text is truncated or a field that is used is not a number.
std::optional<ProcessStat> parseProcessStat(std::string_view text);

/// The most recently assigned process id, from `/proc/loadavg`. Absent when it cannot be parsed.
std::optional<std::int32_t> parseNewestProcessID(std::string_view text);

/// The id of a process, from `/proc/PID/status`. Absent when the process has several, because /proc
/// was mounted outside of its PID namespace, and when it cannot be parsed.
std::optional<std::int32_t> parseSoleProcessID(std::string_view text);

/// The counters of all cores together, from the first line of `/proc/stat`. I/O wait counts as
/// idle; interrupts and stolen time count as system. Absent when that line is missing or
/// incomplete.
std::optional<CPUTicks> parseProcessorTicks(std::string_view text);

/// The page classes from `/proc/meminfo`. A missing entry counts as 0.
///
/// Speculative is the memory that is available but not free; wired is memory that cannot be
/// released or swapped; compressed is the pool of compressed pages; active is the rest of what is
/// not available. For a kernel too old to report available memory, all caches and buffers count as
/// available. `zramBytes` is the memory that zram devices occupy, which the file does not contain.
MemoryClasses parseMemoryInfo(std::string_view text, std::uint64_t zramBytes, double pageSize);

/// The memory that one zram device occupies, in bytes, from its `mm_stat` file. Absent when it
/// cannot be parsed.
std::optional<std::uint64_t> parseZramUsedBytes(std::string_view text);

}  // namespace tallowcrest

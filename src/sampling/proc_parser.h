#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "sampling/memory_classes.h"
#include "sampling/system_cpu_load_reader.h"

/// Parsers of the Linux kernel's process file system texts. Pure, and without an allocation: the
/// first of them runs once per process and sample. Any thread.
namespace tallowcrest {

/// What is needed of one `stat` file of a process.
struct ProcessStat {
    std::string_view name;  ///< views into the text; any bytes, brackets and line feeds too
    char state = '?';       ///< 'Z' for a process that has ended and is not yet waited for
    std::uint64_t flags = 0;
    std::uint64_t userTicks = 0;
    std::uint64_t systemTicks = 0;
    std::uint64_t startTicks = 0;  ///< counted from the boot
    std::uint64_t residentPages = 0;
    /// Addresses that change when the process executes another program; 0 or 1 when the kernel
    /// hides them from this user.
    std::uint64_t startCode = 0;
    std::uint64_t startStack = 0;

    /// A thread of the kernel's own, which has no executable.
    bool isKernelThread() const { return (flags & 0x00200000U) != 0; }
    bool hasEnded() const { return state == 'Z' || state == 'X' || state == 'x'; }
};

/// Absent when the text is cut short or a field that is needed is no number.
std::optional<ProcessStat> parseProcessStat(std::string_view text);

/// The process number that was given out last, from the kernel's `loadavg` file. Absent when the
/// text does not tell.
std::optional<std::int32_t> parseNewestProcessID(std::string_view text);

/// The number of a process, from its `status` file. Absent when the process bears several, because
/// the file system was mounted outside of its namespace, and when the text does not tell.
std::optional<std::int32_t> parseSoleProcessID(std::string_view text);

/// The counters of all cores together, from the first line of the kernel's `stat` file. Waiting for
/// a disk counts as idle; interrupts, and time that a hypervisor gave to others, as system. Absent
/// when that line is not there whole.
std::optional<CPUTicks> parseProcessorTicks(std::string_view text);

/// The page classes from the kernel's `meminfo` file. What it does not tell counts as 0.
///
/// Free is free; speculative is what could be made available beyond that; wired is what neither
/// programs nor caches can give back; compressed is the pool of compressed pages; active is the
/// rest of what is not available. A kernel too old to tell what is available is taken to be able
/// to give up all caches and buffers. `zramBytes` is what compressed block devices in memory
/// occupy: the file does not tell.
MemoryClasses parseMemoryInfo(std::string_view text, std::uint64_t zramBytes, double pageSize);

/// Bytes of memory that one compressed block device occupies, from its `mm_stat` file. Absent when
/// the text does not tell.
std::optional<std::uint64_t> parseZramUsedBytes(std::string_view text);

}  // namespace tallowcrest

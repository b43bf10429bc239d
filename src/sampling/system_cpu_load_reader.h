#pragma once

#include <cstdint>
#include <mutex>
#include <optional>

namespace tallowcrest {

/// Cumulative processor time since boot, all cores together, in the kernel's own unit.
struct CPUTicks {
    std::uint64_t user = 0;
    std::uint64_t system = 0;
    std::uint64_t idle = 0;
    std::uint64_t nice = 0;

    bool operator==(const CPUTicks&) const = default;
};

/// Where the tick counters come from. Any thread, also several at once.
class CPUTickSource {
public:
    virtual ~CPUTickSource() = default;

    /// Absent when the counters cannot be read.
    virtual std::optional<CPUTicks> readTicks() = 0;
};

/// The busy share between two readings, 0 to 100. A counter that ran backwards counts as having
/// stood still. Absent when no tick passed between them.
std::optional<double> busyPercent(const CPUTicks& previous, const CPUTicks& current);

/// The whole-machine CPU load since the previous call. Any thread.
class SystemCPULoadReader {
public:
    /// Reads the counters once, so that the first `readCPUPercent` gives the load since then.
    explicit SystemCPULoadReader(CPUTickSource& source);

    /// 100 means that all cores were busy. Absent when the counters cannot be read (the previous
    /// ones are kept), on the first successful read, and when no tick passed since the last one.
    std::optional<double> readCPUPercent();

private:
    CPUTickSource& source_;
    std::mutex lock_;
    std::optional<CPUTicks> previousTicks_;
};

}  // namespace tallowcrest

#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>

namespace tallowcrest {

/// Cumulative processor time of all cores since boot, in the kernel's unit.
struct CPUTicks {
    std::uint64_t user = 0;
    std::uint64_t system = 0;
    std::uint64_t idle = 0;
    std::uint64_t nice = 0;

    bool operator==(const CPUTicks&) const = default;
};

struct CPUTickReading {
    CPUTicks ticks;
    std::chrono::nanoseconds at{};  ///< of a monotonic clock
};

/// The source of the tick counters. Any thread, several at once.
class CPUTickSource {
public:
    virtual ~CPUTickSource() = default;

    /// Absent when the counters cannot be read.
    virtual std::optional<CPUTickReading> readTicks() = 0;
};

/// The busy share between two readings, 0 to 100. A counter that decreased counts as unchanged.
/// Absent when no tick passed between them.
std::optional<double> busyPercent(const CPUTicks& previous, const CPUTicks& current);

/// The whole-machine CPU load since the previous call. A tick is commonly 10 ms, so over a few of
/// them the load would come out as 0 or 100 percent: an interval shorter than `shortestInterval` is
/// measured from the reading before it. Any thread, several at once.
class SystemCPULoadReader {
public:
    static constexpr std::chrono::milliseconds shortestInterval{200};

    /// Reads the counters once; the first `readCPUPercent` gives the load since then. `source` must
    /// outlive the object.
    explicit SystemCPULoadReader(CPUTickSource& source);

    /// 100 means that all cores were busy. Absent when the counters cannot be read (the previous
    /// ones are kept), on the first successful read, and when no tick passed.
    std::optional<double> readCPUPercent();

private:
    CPUTickSource& source_;
    std::mutex lock_;
    /// The newest readings that are at least `shortestInterval` apart.
    std::optional<CPUTickReading> previous_;
    std::optional<CPUTickReading> beforePrevious_;
};

}  // namespace tallowcrest

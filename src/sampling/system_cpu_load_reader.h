#pragma once

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

/// The source of the tick counters. Any thread, several at once.
class CPUTickSource {
public:
    virtual ~CPUTickSource() = default;

    /// Absent when the counters cannot be read.
    virtual std::optional<CPUTicks> readTicks() = 0;
};

/// The busy share between two readings, 0 to 100. A counter that decreased counts as unchanged.
/// Absent when no tick passed between them.
std::optional<double> busyPercent(const CPUTicks& previous, const CPUTicks& current);

/// The whole-machine CPU load since the previous call. Any thread, several at once.
class SystemCPULoadReader {
public:
    /// Reads the counters once; the first `readCPUPercent` gives the load since then. `source` must
    /// outlive the object.
    explicit SystemCPULoadReader(CPUTickSource& source);

    /// 100 means that all cores were busy. Absent when the counters cannot be read (the previous
    /// ones are kept), on the first successful read, and when no tick passed since the previous
    /// one.
    std::optional<double> readCPUPercent();

private:
    CPUTickSource& source_;
    std::mutex lock_;
    std::optional<CPUTicks> previousTicks_;
};

}  // namespace tallowcrest

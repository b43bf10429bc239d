#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

#include "platform/linux/kernel_file.h"
#include "sampling/system_cpu_load_reader.h"

namespace tallowcrest {

/// The tick counters of `/proc/stat`. A tick is 10 ms, so over a few milliseconds the load would
/// come out as 0 or 100 percent. A reading less than `shortestInterval` after the previous one
/// therefore returns the same counters. Any thread.
class ProcStatTickSource final : public CPUTickSource {
public:
    static constexpr std::chrono::milliseconds shortestInterval{200};

    /// The time of a monotonic clock. Any thread.
    using MonotonicClock = std::function<std::chrono::nanoseconds()>;

    ProcStatTickSource();
    ProcStatTickSource(const std::string& procRoot, MonotonicClock clock);

    std::optional<CPUTicks> readTicks() override;

private:
    struct Reading {
        CPUTicks ticks;
        std::chrono::nanoseconds at;
    };

    const KernelFile stat_;
    const MonotonicClock clock_;
    std::mutex lock_;
    std::optional<Reading> previous_;
};

}  // namespace tallowcrest

#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

#include "platform/linux/kernel_file.h"
#include "sampling/system_cpu_load_reader.h"

namespace tallowcrest {

/// The tick counters of the kernel's `stat` file. A tick is 10 ms, so the counters of a few
/// milliseconds would read as a load of all or nothing: a reading less than `shortestInterval`
/// after the previous one repeats that one's counters, as if no tick had passed.
class ProcStatTickSource final : public CPUTickSource {
public:
    static constexpr std::chrono::milliseconds shortestInterval{200};

    /// Time that only moves forward. Any thread.
    using Monotonic = std::function<std::chrono::nanoseconds()>;

    ProcStatTickSource();
    ProcStatTickSource(const std::string& procRoot, Monotonic monotonic);

    std::optional<CPUTicks> readTicks() override;

private:
    struct Reading {
        CPUTicks ticks;
        std::chrono::nanoseconds at;
    };

    const KernelFile stat_;
    const Monotonic monotonic_;
    std::mutex lock_;
    std::optional<Reading> previous_;
};

}  // namespace tallowcrest

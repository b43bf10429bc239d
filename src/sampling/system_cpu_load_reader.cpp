#include "sampling/system_cpu_load_reader.h"

#include <algorithm>
#include <utility>

namespace tallowcrest {
namespace {

std::uint64_t delta(std::uint64_t previous, std::uint64_t current) {
    return current > previous ? current - previous : 0;
}

}  // namespace

std::optional<double> busyPercent(const CPUTicks& previous, const CPUTicks& current) {
    // Summed as floating-point numbers, which cannot overflow whatever the counters are.
    const double busy = static_cast<double>(delta(previous.user, current.user)) +
                        static_cast<double>(delta(previous.system, current.system)) +
                        static_cast<double>(delta(previous.nice, current.nice));
    const double total = busy + static_cast<double>(delta(previous.idle, current.idle));
    if (total <= 0.0) {
        return std::nullopt;
    }
    return std::clamp(busy / total * 100.0, 0.0, 100.0);
}

SystemCPULoadReader::SystemCPULoadReader(CPUTickSource& source)
    : source_(source), previous_(source.readTicks()) {}

std::optional<double> SystemCPULoadReader::readCPUPercent() {
    const std::optional<CPUTickReading> current = source_.readTicks();
    if (!current) {
        return std::nullopt;
    }
    const std::lock_guard guard(lock_);
    if (!previous_) {
        previous_ = current;
        return std::nullopt;
    }
    if (current->at - previous_->at < shortestInterval) {
        const CPUTickReading& from = beforePrevious_ ? *beforePrevious_ : *previous_;
        return busyPercent(from.ticks, current->ticks);
    }
    beforePrevious_ = std::exchange(previous_, current);
    return busyPercent(beforePrevious_->ticks, current->ticks);
}

}  // namespace tallowcrest

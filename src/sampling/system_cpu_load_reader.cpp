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
    : source_(source), previousTicks_(source.readTicks()) {}

std::optional<double> SystemCPULoadReader::readCPUPercent() {
    const std::optional<CPUTicks> current = source_.readTicks();
    if (!current) {
        return std::nullopt;
    }
    const std::lock_guard guard(lock_);
    const std::optional<CPUTicks> previous = std::exchange(previousTicks_, current);
    if (!previous) {
        return std::nullopt;
    }
    return busyPercent(*previous, *current);
}

}  // namespace tallowcrest

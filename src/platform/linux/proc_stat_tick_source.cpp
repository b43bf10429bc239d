#include "platform/linux/proc_stat_tick_source.h"

#include <array>
#include <utility>

#include "sampling/proc_parser.h"

namespace tallowcrest {

ProcStatTickSource::ProcStatTickSource()
    : ProcStatTickSource("/proc",
                         [] { return std::chrono::steady_clock::now().time_since_epoch(); }) {}

ProcStatTickSource::ProcStatTickSource(const std::string& procRoot, MonotonicClock clock)
    : stat_(procRoot + "/stat"), clock_(std::move(clock)) {}

std::optional<CPUTicks> ProcStatTickSource::readTicks() {
    const std::lock_guard guard(lock_);
    const std::chrono::nanoseconds now = clock_();
    if (previous_ && now - previous_->at < shortestInterval) {
        return previous_->ticks;
    }
    // Holds only the first line; the lines of the single cores are not needed.
    std::array<char, 256> buffer;
    const std::optional<CPUTicks> ticks = parseProcessorTicks(stat_.read(buffer));
    if (ticks) {
        previous_ = {*ticks, now};
    }
    return ticks;
}

}  // namespace tallowcrest

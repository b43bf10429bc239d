#include "platform/linux/proc_stat_tick_source.h"

#include <array>
#include <utility>

#include "sampling/proc_parser.h"

namespace tallowcrest {

ProcStatTickSource::ProcStatTickSource()
    : ProcStatTickSource("/proc",
                         [] { return std::chrono::steady_clock::now().time_since_epoch(); }) {}

ProcStatTickSource::ProcStatTickSource(const std::string& procRoot, Monotonic monotonic)
    : stat_(procRoot + "/stat"), monotonic_(std::move(monotonic)) {}

std::optional<CPUTicks> ProcStatTickSource::readTicks() {
    const std::lock_guard guard(lock_);
    const std::chrono::nanoseconds now = monotonic_();
    if (previous_ && now - previous_->at < shortestInterval) {
        return previous_->ticks;
    }
    // Room for the first line alone: a line for each core follows, and nobody wants them.
    std::array<char, 256> buffer;
    const std::optional<CPUTicks> ticks = parseProcessorTicks(stat_.read(buffer));
    if (ticks) {
        previous_ = {*ticks, now};
    }
    return ticks;
}

}  // namespace tallowcrest

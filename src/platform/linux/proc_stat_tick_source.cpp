#include "platform/linux/proc_stat_tick_source.h"

#include <array>
#include <chrono>

#include "sampling/proc_parser.h"

namespace tallowcrest {

ProcStatTickSource::ProcStatTickSource(const std::string& procRoot) : stat_(procRoot + "/stat") {}

std::optional<CPUTickReading> ProcStatTickSource::readTicks() {
    // Holds only the first line; the lines of the single cores are not needed.
    std::array<char, 256> buffer;
    const std::optional<CPUTicks> ticks = parseProcessorTicks(stat_.read(buffer));
    if (!ticks) {
        return std::nullopt;
    }
    return CPUTickReading{*ticks, std::chrono::steady_clock::now().time_since_epoch()};
}

}  // namespace tallowcrest
